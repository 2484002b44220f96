#pragma once

#include <DragAndDropHandler.h>

#include <QHash>
#include <QObject>
#include <QPointer>

#include <memory>

class MainWindow;
class MediaBin;
class ProjectController;
class QListWidget;
class QListWidgetItem;
class QMimeData;
class QWidget;

// The host's drop targets: the media bin, the timeline, the import page (and any view
// registered later, such as a preview area) take files from the desktop, items of the bin
// and overlay presets through one DragAndDropHandler.
//
//   DropTargets drops(&window, &mediaBin, &project);
//   drops.registerWidget(previewArea, DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnPreview);
//
// Files dropped anywhere join the media bin (each once: a file the bin holds is not added
// again); files dropped on the timeline are then placed where they were dropped, once all
// of them have opened, as one undo step. Bin items dragged out carry an import object of
// the "MediaBin" collection; the Overlays page's presets carry overlay presets, which open
// in a title editor once dropped. Log lines:
//   drop: <source> <n> file(s)                      (the library)
//   drop: placing <n> file(s) on the timeline once opened
//   timeline: placed <n> clip(s) from <m> file(s)
//   overlay: edited <clip id> "<text>"
class DropTargets : public QObject
{
    Q_OBJECT
public:
    DropTargets(MainWindow* window, MediaBin* bin, ProjectController* project, QObject* parent = nullptr);
    ~DropTargets() override;

    DragAndDropHandler* handler() const { return m_handler; }

    // Registers `widget` as a source and makes it take drops (through its viewport, for a
    // scroll area). With `placement`, clips dropped there go where it says.
    void registerWidget(QWidget* widget, DragAndDropHandler::Types types, Statistics::AddingMethod method,
                        const DragAndDropHandler::Placement& placement = {});

    // Fills the Overlays collection page with presets that drag onto the timeline.
    void installOverlayPresets(QWidget* overlaysPage);

    // Drops the text/uri-list in `listFile` onto the registered widget named `target`, with
    // real drag events, as a file manager would. False (and logged) when it cannot.
    bool simulateDrop(const QString& listFile, const QString& target);
    // Drops the Overlays page's preset `name` onto the timeline, and the effect `id` onto
    // the timeline's first clip of a media file, the same way.
    bool simulateOverlayDrop(const QString& name);
    // Drops the media bin's item shown as `name` onto the timeline.
    bool simulateBinItemDrop(const QString& name);
    bool simulateEffectDrop(const QString& id);

private:
    struct Pending;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void filesArrived(const QStringList& files, quint64 batch, bool last);
    void placeOpened();
    void editOverlay(const QString& clipId);
    bool deliver(QMimeData& data, QWidget* widget, const QString& target, QPoint at);
    bool simulateItemDrop(QListWidget* list, const QString& name, QMimeData* (*makeData)(QListWidgetItem*), QPoint at);

    MainWindow* m_window;
    ProjectController* m_project;
    DragAndDropHandler* m_handler;
    QHash<QObject*, QPointer<QWidget>> m_viewports;     // viewport -> its scroll area (the source)
    QHash<QObject*, DragAndDropHandler::Placement> m_placements;
    QPointer<QObject> m_dropTarget; // the source of the drop being handled, during it
    QPoint m_dropAt;
    QListWidget* m_overlayPresets = nullptr;
    struct Subscriptions;
    std::unique_ptr<Subscriptions> m_subscriptions;
    std::unique_ptr<Pending> m_pending;
};
