#pragma once

#include "AppUtil_export.h"

#include <Statistics/TimelineWatcher.h>
#include <Timeline/Timeline.h>

#include <QFlags>
#include <QObject>
#include <QPoint>

#include <functional>
#include <memory>

class QEvent;

// Routes the drag events of the editor's views ("sources") to handlers that recognise one
// kind of dragged data each and add it to the project: files from the desktop, items of
// the editor's collections, overlay presets. A view is registered once with the kinds it
// accepts and the way its additions are counted.
//
//   auto* dnd = new DragAndDropHandler(window);
//   dnd->registerSource(timelineView, DragAndDropHandler::MediaFiles | DragAndDropHandler::CollectionItems
//                                         | DragAndDropHandler::OverlayPresets,
//                       Statistics::AddingMethod::DropOnTimeline);
//   dnd->installEventFilterTo(timelineView);
//   dnd->setTimeline(&timeline);
//   connect(dnd, &DragAndDropHandler::editRequested, editor, &TitleEditor::edit);
//
// The handlers registered last are asked first. Nothing here swallows an event: a view
// that shows its own drop feedback still sees the events, accepted or not. Files are handed
// to FileAdder::addMediaFiles, which expands folders off the GUI thread.
class APPUTIL_EXPORT DragAndDropHandler : public QObject
{
    Q_OBJECT
public:
    enum Type {
        ProjectFiles = 0x1,
        OverlayPresets = 0x2,
        Packages = 0x4,
        MediaFiles = 0x8,
        CollectionItems = 0x10,
    };
    Q_DECLARE_FLAGS(Types, Type)

    // Where a drop at `position` (in the source's coordinates) puts clips.
    using Placement = std::function<void(const QPoint& position, Timeline::ClipBuildingStrategy& strategy)>;

    explicit DragAndDropHandler(QObject* parent = nullptr);
    ~DragAndDropHandler() override;

    void registerSource(QObject* source, const QFlags<DragAndDropHandler::Type>& types, Statistics::AddingMethod method);
    // Clips dropped onto `source` go where `placement` says (else at the end of their track).
    void setPlacement(QObject* source, Placement placement);
    // Routes every event of `object` through handleEvent(), and lets it pass on.
    void installEventFilterTo(QObject* object);
    // For views that process drag events themselves.
    void handleEvent(QObject* object, QEvent* event);
    void setEnabled(bool enabled);
    bool isEnabled() const;
    void setTimeline(Timeline::ITimeline* timeline);

signals:
    // An overlay preset was dropped; `clip` is the one the timeline offers for editing.
    void editRequested(Timeline::IClip* clip);

private:
    class Impl;
    std::unique_ptr<Impl> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(DragAndDropHandler::Types)
