#pragma once

#include "Effect/Effect.h"
#include "Media/File.h"
#include "Media/Video.h"
#include "MediaTime.h"

#include <QFlags>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <memory>

class QUndoStack;

namespace Timeline {

// What a clip is. A clip has one bit; a filter asks with several. The values are stored
// in project files: append only.
enum class ClipType : quint32 {
    Video = 0x1,   // a moving picture from a media file (with or without sound)
    Audio = 0x2,   // sound only: a music file, or the sound of a video (see isNativeAudio)
    Image = 0x4,   // a still picture from a media file
    Title = 0x8,   // text made in the editor, no media file
    Overlay = 0x10 // an overlay preset (a title, a frame) laid over the picture
};
using ClipTypes = QFlags<ClipType>;

enum class TrackKind { Video = 0, Audio = 1 };

// How a clip plays its source: the part of the media it uses and how.
class ClipTiming
{
public:
    MediaTime sourceIn;     // where in the media the clip starts
    MediaTime sourceLength; // how much of the media it uses (at speed 1)
    double speed = 1.0;     // playback speed; 2.0 plays twice as fast
    bool reversed = false;
    bool speedCompensated = false; // the pitch kept when the speed changes ("Original tone")
    bool stabilized = false;       // the picture shown steadied (video media only)

    bool isReversed() const { return reversed; }
    bool isSpeedCompensated() const { return speedCompensated; }
    bool isStabilized() const { return stabilized; }
    // The time the clip lasts on the timeline.
    MediaTime duration() const { return MediaTime::fromMicroseconds(qint64(double(sourceLength.microseconds()) / speed)); }
};

// Where a clip sits in the composition: [start, start + length).
struct CompositionRange
{
    MediaTime start;
    MediaTime length;
    MediaTime end() const { return start + length; }
    bool contains(MediaTime t) const { return t >= start && t < end(); }
};

// A clip's descriptive record: what the user sees as its name, and the category of what
// it was made from ("Video", "Music", "Special effects", ...).
struct ClipDescription
{
    QString name;
    QString category;
};

class ITimeline;

// A clip of the timeline. Clips are owned by their timeline; a pointer stays valid while
// the clip is on the timeline or can come back to it through undo.
class IClip
{
public:
    virtual ~IClip();

    // The timeline that holds the clip (its owning container).
    virtual ITimeline* timeline() const = 0;
    // Unique in the timeline; kept in project files.
    virtual QString id() const = 0;
    virtual ClipTypes type() const = 0;
    // True for the sound of a video, placed with it and belonging to it.
    virtual bool isNativeAudio() const = 0;
    // The clip that carries the timing of this clip's group (the video of a native
    // audio clip); the clip itself when it is not grouped.
    virtual IClip* timingClip() const = 0;

    // The media file, from the host's media model; null for titles, for missing media
    // and while the host has not opened it.
    virtual const Media::File* mediaFile() const = 0;
    // The media path the clip was made from (absolute); empty for titles.
    virtual QString mediaPath() const = 0;
    virtual bool isMediaMissing() const = 0;
    virtual Media::Type mediaType() const = 0;
    // The video track of the file the clip shows, or null.
    virtual const Media::VideoTrack* currentVideoTrack() const = 0;
    virtual int currentVideoTrackIndex() const = 0;
    virtual ClipDescription description() const = 0;

    virtual int track() const = 0;
    virtual ClipTiming timing() const = 0;
    virtual double speed() const = 0;
    virtual CompositionRange compositionRange() const = 0;

    virtual QList<const Effect::Object*> effects() const = 0;
    virtual const Effect::Object* findEffect(const QString& id, const QString& uid) const = 0;
    // The first effect with identifier `id` (Effect::Id::Transpose, ...), or null.
    virtual const Effect::Object* findEffect(const QString& id) const = 0;
    // Changes through the timeline's undo stack; false when nothing was changed.
    virtual bool addEffect(std::shared_ptr<Effect::Object> effect) = 0;
    virtual bool removeEffect(const QString& id, const QString& uid) = 0;
    // Puts `effect` in place of the clip's effect with the same id and uid (an inner effect
    // of a group is replaced by replacing its group).
    virtual bool replaceEffect(std::shared_ptr<Effect::Object> effect) = 0;

    // Whether the clip has adjustments of its own (asks the timeline).
    virtual bool takesAdjustments() const = 0;
    // Stills and titles have no speed to adjust.
    virtual bool hasNoAdjustableSpeed() const = 0;
    // The video track shown stabilized: null unless the clip is stabilized and shows the
    // moving picture of a video track.
    virtual const Media::VideoTrack* stabilizableSource() const = 0;
};

// A library item placed on the timeline: a media file, a title, an effect to apply to the
// selection.
struct CollectionItem
{
    enum class Kind { Media, Title, Effect };
    Kind kind = Kind::Media;
    QString name;
    QString category;
    QString filePath; // Media
    QString effectId; // Effect
    QString text;     // Title
};

// An overlay preset (a title style, a frame) dropped onto the timeline.
struct OverlayPreset
{
    QString name;
    QString text;
    MediaTime duration = MediaTime::fromSeconds(5);
};

// How a new clip is built: where it goes and what it keeps of where it came from.
struct ClipBuildingStrategy
{
    int track = -1;             // -1: the first track of the clip's kind
    MediaTime position;         // where the clip starts
    bool atEnd = true;          // true: after the last clip of its track, ignoring position
    int addingMethod = 0;       // how the user added it, for usage statistics
    MediaTime stillDuration = MediaTime::fromSeconds(5); // length of pictures and titles
    QVariantMap properties;     // an import item's properties (name, category, ...)

    void applyImportItemProperties(const QVariantMap& itemProperties);
};

class ITimelineObserver;

// The project timeline: tracks of clips over the project video, a selection, and every
// change through one undo stack.
//
//   Timeline::TimelineModel timeline;
//   timeline.setMediaResolver([&](const QString& path) { return bin.fileFor(path); });
//   auto clips = timeline.placeMedia({"/m/a.mp4"}, {});   // one undo step
//   timeline.undoStack()->undo();                           // gone again
class ITimeline
{
public:
    virtual ~ITimeline();

    virtual const Media::Video* video() const = 0;
    virtual int trackCount() const = 0;
    virtual TrackKind trackKind(int track) const = 0;
    // Clips of one track by start time; all clips by track, then start time.
    virtual QList<IClip*> clips(int track) const = 0;
    virtual QList<IClip*> clips() const = 0;
    virtual int clipCount() const = 0;
    virtual MediaTime duration() const = 0;

    // Places media files (one clip each, plus the native audio of videos), a library item or
    // an overlay preset. Returns the new clips; one undo step each call.
    virtual QList<IClip*> placeMedia(const QStringList& paths, const ClipBuildingStrategy& strategy) = 0;
    virtual QList<IClip*> addCollectionItem(const CollectionItem& item, const ClipBuildingStrategy& strategy) = 0;
    virtual IClip* addOverlayPreset(const OverlayPreset& preset, const ClipBuildingStrategy& strategy) = 0;
    // Places a part of a media item: from `sourceIn` into the file, `sourceLength` long (cut
    // to the file's end when the file is opened). Nothing for an item that is not media.
    virtual QList<IClip*> addMediaRange(const CollectionItem& item, MediaTime sourceIn, MediaTime sourceLength,
                                        const ClipBuildingStrategy& strategy) = 0;

    // Moves a clip (and its group) to `start` on `track`; false when the track is of the
    // wrong kind or the clip is not here.
    virtual bool moveClip(IClip* clip, int track, MediaTime start) = 0;
    // Removes the clips and the clips grouped with them, as one undo step.
    virtual void removeClips(const QList<IClip*>& clips) = 0;

    enum class SelectionMode { Replace, Add, Toggle };
    virtual QList<IClip*> selectedClips() const = 0;
    virtual IClip* firstSelectedClip() const = 0;
    virtual bool isSelected(const IClip* clip) const = 0;
    virtual void select(const QList<IClip*>& clips, SelectionMode mode) = 0;
    virtual void selectAll() = 0;
    virtual void clearSelection() = 0;

    // The clip that carries `clip`'s timing (grouped clips share one).
    virtual IClip* timingClip(IClip* clip) const = 0;
    virtual bool takesAdjustments(const IClip* clip) const = 0;
    // Timing changes apply to the timing clip and its whole group.
    virtual bool setSpeed(IClip* clip, double speed) = 0;
    virtual bool setReversed(IClip* clip, bool reversed) = 0;
    virtual bool setSpeedCompensated(IClip* clip, bool compensated) = 0;
    // Only a clip of video media can be stabilized.
    virtual bool setStabilized(IClip* clip, bool stabilized) = 0;

    virtual bool addEffect(IClip* clip, std::shared_ptr<Effect::Object> effect) = 0;
    virtual bool removeEffect(IClip* clip, const QString& id, const QString& uid) = 0;
    virtual bool replaceEffect(IClip* clip, std::shared_ptr<Effect::Object> effect) = 0;

    virtual QUndoStack* undoStack() const = 0;
    virtual void addObserver(ITimelineObserver* observer) = 0;
    virtual void removeObserver(ITimelineObserver* observer) = 0;
};

// Told of every change of a timeline, after it happened, on the GUI thread.
class ITimelineObserver
{
public:
    virtual ~ITimelineObserver();
    // The clips of one insertion (a placement, an undone removal), in timeline order.
    virtual void clipsInserted(ITimeline& timeline, const QList<IClip*>& clips) = 0;
    // Still alive during the call.
    virtual void clipsRemoved(ITimeline& timeline, const QList<IClip*>& clips) = 0;
    // Moved, retimed, or their effects replaced.
    virtual void clipsChanged(ITimeline& timeline, const QList<IClip*>& clips) = 0;
    virtual void selectionChanged(ITimeline& timeline) = 0;
    virtual void videoChanged(ITimeline& timeline, const Media::Video& previous) = 0;
    // Everything replaced at once (a project was opened, or a new one started).
    virtual void timelineReset(ITimeline& timeline) = 0;
};

// An observer that follows one timeline at a time and ignores what it does not override.
//
//   class Adjuster : public Timeline::TimelineWatcher {
//       void clipsInserted(Timeline::ITimeline& t, const QList<Timeline::IClip*>& clips) override;
//   };
//   adjuster.watch(timeline);
class TimelineWatcher : public ITimelineObserver
{
public:
    TimelineWatcher() = default;
    explicit TimelineWatcher(ITimeline* timeline) { watch(timeline); }
    TimelineWatcher(const TimelineWatcher&) = delete;
    TimelineWatcher& operator=(const TimelineWatcher&) = delete;
    ~TimelineWatcher() override;

    void watch(ITimeline* timeline);
    ITimeline* watchedTimeline() const { return m_timeline; }

    void clipsInserted(ITimeline&, const QList<IClip*>&) override {}
    void clipsRemoved(ITimeline&, const QList<IClip*>&) override {}
    void clipsChanged(ITimeline&, const QList<IClip*>&) override {}
    void selectionChanged(ITimeline&) override {}
    void videoChanged(ITimeline&, const Media::Video&) override {}
    void timelineReset(ITimeline&) override {}

private:
    friend class TimelineModel;
    ITimeline* m_timeline = nullptr;
};

} // namespace Timeline

Q_DECLARE_OPERATORS_FOR_FLAGS(Timeline::ClipTypes)
