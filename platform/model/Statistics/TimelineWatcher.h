#pragma once

#include "PubSub/Channels.h"
#include "PubSub/PubSub.h"
#include "Timeline/Timeline.h"

#include <QString>

// Usage-statistics messages about what enters a project and how, published on
// Statistics::globalObject() for the statistics tracker the host owns.
namespace Statistics {

// How the user brought something into the project. Recorded by the statistics tracker:
// values are never reused or renumbered.
enum class AddingMethod {
    Unknown = 0,
    ImportDialog = 1,     // File > Import and the import page's buttons
    CommandLine = 2,      // named on the command line or handed over by a second launch
    DropOnMediaBin = 3,
    DropOnTimeline = 4,
    DropOnPreview = 5,
    DropOnImportPage = 6,
    PlaceButton = 7,      // the timeline's "Place on timeline" and its context menu
};

// Interactions with items of the editor's collections, by kind.
enum class InteractionKind {
    Opened = 1,
    Previewed = 2,
    Dropped = 6, // dragged out of its collection and dropped onto a view
};

// The user did `kind` with an item of a collection (an overlay preset, a bin item).
struct CollectionInteractionNotification : Message::Types::Notification<Object>
{
    CollectionInteractionNotification(InteractionKind kind, QString collection, QString item)
        : Notification(globalObject()), kind(kind), collection(std::move(collection)), item(std::move(item))
    {
    }
    InteractionKind kind;
    QString collection;
    QString item;
};

// Clips entered the timeline by `method`: how many, and of which types.
struct ClipsAddedNotification : Message::Types::Notification<Object>
{
    ClipsAddedNotification(AddingMethod method, int clips, Timeline::ClipTypes types)
        : Notification(globalObject()), method(method), clips(clips), types(types)
    {
    }
    AddingMethod method;
    int clips;
    Timeline::ClipTypes types;
};

// Files were handed to the project by adding source `source` (FileAdder::Source).
struct FilesAddedNotification : Message::Types::Notification<Object>
{
    FilesAddedNotification(int source, int files) : Notification(globalObject()), source(source), files(files) {}
    int source;
    int files;
};

// Counts the clips a timeline gains while it lives, so that an operation whose result does
// not say what it added (a library item may become a clip and its sound, or nothing) can be
// reported afterwards. Clips inserted by undo/redo during its life count too; keep it to
// the scope of the one operation.
//
//   Statistics::TimelineWatcher watcher(timeline);
//   timeline->addOverlayPreset(preset, strategy);
//   watcher.reportAddition(Statistics::AddingMethod::DropOnTimeline);
class TimelineWatcher : public Timeline::TimelineWatcher
{
public:
    explicit TimelineWatcher(Timeline::ITimeline* timeline) : Timeline::TimelineWatcher(timeline) {}

    int addedClips() const { return m_clips; }
    Timeline::ClipTypes addedTypes() const { return m_types; }
    // Publishes ClipsAddedNotification when clips were added; returns whether it did.
    bool reportAddition(AddingMethod method) const;

    void clipsInserted(Timeline::ITimeline&, const QList<Timeline::IClip*>& clips) override;

private:
    int m_clips = 0;
    Timeline::ClipTypes m_types;
};

} // namespace Statistics
