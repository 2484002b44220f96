#include "DropTargets.h"

#include "HostServices.h"
#include "MainWindow.h"
#include "MediaBin.h"
#include "ProjectController.h"
#include "TimelinePanel.h"

#include <EditorCollection/Collection.h>
#include <FileAdder/FileAdder.h>
#include <Mime/MimeUtils.h>
#include <Settings/FileDialogPaths.h>

#include <QAbstractScrollArea>
#include <QApplication>
#include <QBoxLayout>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDrag>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QPersistentModelIndex>
#include <QTimer>
#include <QUrl>

#include <glog/logging.h>

#include <algorithm>
#include <memory>

namespace {

const QString kBinCollection = QStringLiteral("MediaBin");

// The media bin as a collection: its items by path, for drags out of it.
class BinCollection : public EditorCollection::ICollection
{
public:
    explicit BinCollection(QListWidget* bin) : m_bin(bin) {}
    QString name() const override { return kBinCollection; }
    void showPage() override {}
    std::shared_ptr<const EditorCollection::Item> findItem(const QString& id) const override
    {
        if (!m_bin)
            return nullptr;
        for (int i = 0; i < m_bin->count(); ++i) {
            if (m_bin->item(i)->data(Qt::UserRole).toString() != id)
                continue;
            auto item = std::make_shared<EditorCollection::Item>();
            item->content.kind = Timeline::CollectionItem::Kind::Media;
            item->content.name = QFileInfo(id).fileName();
            item->content.filePath = id;
            return item;
        }
        return nullptr;
    }

private:
    QPointer<QListWidget> m_bin;
};

// Starts a drag of a list's item with the data `make` builds for it.
class DragStarter : public QObject
{
public:
    using MakeData = std::function<QMimeData*(QListWidgetItem*)>;
    DragStarter(QListWidget* list, MakeData make) : QObject(list), m_list(list), m_make(std::move(make))
    {
        list->viewport()->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonPress) {
            const auto* press = static_cast<QMouseEvent*>(event);
            m_pressAt = press->pos();
            m_pressed = press->button() == Qt::LeftButton ? QPersistentModelIndex(m_list->indexAt(m_pressAt))
                                                           : QPersistentModelIndex();
        } else if (event->type() == QEvent::MouseMove && m_pressed.isValid()) {
            const auto* move = static_cast<QMouseEvent*>(event);
            if (!(move->buttons() & Qt::LeftButton)
                || (move->pos() - m_pressAt).manhattanLength() < QApplication::startDragDistance())
                return false;
            QListWidgetItem* item = m_list->item(m_pressed.row());
            m_pressed = QPersistentModelIndex();
            if (!item)
                return false;
            auto* drag = new QDrag(m_list);
            drag->setMimeData(m_make(item));
            drag->exec(Qt::CopyAction);
            return true;
        } else if (event->type() == QEvent::MouseButtonRelease) {
            m_pressed = QPersistentModelIndex();
        }
        return false;
    }

private:
    QListWidget* m_list;
    MakeData m_make;
    QPoint m_pressAt;
    QPersistentModelIndex m_pressed;
};

// What an item of the media bin carries when dragged.
QMimeData* binDragData(QListWidgetItem* item)
{
    const QString path = item->data(Qt::UserRole).toString();
    auto* data = new QMimeData;
    EditorCollection::ImportObject object;
    object.payload = {kBinCollection, path};
    MimeUtils::setImportObject(data, object);
    // Dropped outside the editor, the item is its file.
    data->setData(MimeUtils::UriListType, QUrl::fromLocalFile(path).toEncoded() + "\r\n");
    return data;
}

// What a preset of the Overlays page carries when dragged.
QMimeData* overlayDragData(QListWidgetItem* item)
{
    auto* data = new QMimeData;
    Timeline::OverlayPreset preset;
    preset.name = item->text();
    preset.text = item->data(Qt::UserRole).toString();
    MimeUtils::setOverlayPresets(data, {preset});
    MimeUtils::setAsrc(data, MimeUtils::CollectionSource);
    return data;
}

// A title's text, edited after it was dropped.
QString askTitleText(QWidget* parent, const QString& text, bool* accepted)
{
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("titleEditDialog"));
    dialog.setWindowTitle(DropTargets::tr("Edit title"));
    auto* form = new QFormLayout(&dialog);
    auto* edit = new QLineEdit(text);
    edit->setObjectName(QStringLiteral("titleTextEdit"));
    form->addRow(DropTargets::tr("Text"), edit);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (const int dismissAfter = HostServices::dismissDialogsAfterMs(); dismissAfter >= 0)
        QTimer::singleShot(dismissAfter, &dialog, [&dialog] {
            LOG(INFO) << "dialog dismissed: titleEdit";
            dialog.reject();
        });
    LOG(INFO) << "dialog: titleEdit";
    *accepted = dialog.exec() == QDialog::Accepted;
    return edit->text();
}

} // namespace

// Files of drops onto a view with a placement, waiting to be opened before they are placed.
struct DropTargets::Pending
{
    struct Placement
    {
        QStringList paths;
        Timeline::ClipBuildingStrategy strategy;
        bool complete = false;
        int checked = 0; // paths before this one have an outcome
    };
    QHash<quint64, Placement> byBatch;
    QHash<QString, const Media::File*> files; // the bin's files by path
};

struct DropTargets::Subscriptions
{
    PubSub::Subscription<FileAdder::BatchStartedNotification> started;
    PubSub::Subscription<FileAdder::MediaFilesNotification> slices;
};

DropTargets::DropTargets(MainWindow* window, MediaBin* bin, ProjectController* project, QObject* parent)
    : QObject(parent), m_window(window), m_project(project), m_handler(new DragAndDropHandler(this)),
      m_pending(std::make_unique<Pending>())
{
    m_handler->setTimeline(project->timeline());
    m_subscriptions.reset(new Subscriptions{
        {FileAdder::globalObject(),
         [this](const FileAdder::BatchStartedNotification& m) {
             const DragAndDropHandler::Placement placement = m_placements.value(m_dropTarget.data());
             if (!m_dropTarget || !placement)
                 return;
             Pending::Placement waiting;
             placement(m_dropAt, waiting.strategy);
             waiting.strategy.addingMethod = int(Statistics::AddingMethod::DropOnTimeline);
             m_pending->byBatch.insert(m.batch, waiting);
         }},
        {FileAdder::globalObject(),
         [this](const FileAdder::MediaFilesNotification& m) { filesArrived(m.files, m.batch, m.last); }}});

    Media::FilePool& pool = bin->pool();
    for (const Media::File* file : pool.files())
        m_pending->files.insert(file->filePath(), file);
    connect(&pool, &Media::FilePool::fileAdded, this,
            [this](const Media::File* file) { m_pending->files.insert(file->filePath(), file); });
    connect(&pool, &Media::FilePool::fileRemoved, this, [this](const Media::File* file) {
        if (m_pending->files.value(file->filePath()) == file)
            m_pending->files.remove(file->filePath());
        placeOpened();
    });
    connect(&pool, &Media::FilePool::fileOpened, this, &DropTargets::placeOpened);
    connect(&pool, &Media::FilePool::fileFailed, this, &DropTargets::placeOpened);

    // An overlay is opened for editing once the drop is over, not inside it.
    connect(m_handler, &DragAndDropHandler::editRequested, this, [this](Timeline::IClip* clip) {
        const QString id = clip->id();
        QTimer::singleShot(0, this, [this, id] { editOverlay(id); });
    });

    QListWidget* list = window->mediaBin();
    EditorCollection::CollectionProvider::add(std::make_shared<BinCollection>(list));
    new DragStarter(list, binDragData);

    using DnD = DragAndDropHandler;
    registerWidget(list, DnD::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
    TimelinePanel* panel = project->panel();
    registerWidget(panel->view(), DnD::MediaFiles | DnD::CollectionItems | DnD::OverlayPresets,
                   Statistics::AddingMethod::DropOnTimeline,
                   [panel](const QPoint& at, Timeline::ClipBuildingStrategy& strategy) { panel->dropPlacement(at, strategy); });
    registerWidget(window->importPage(), DnD::MediaFiles | DnD::ProjectFiles, Statistics::AddingMethod::DropOnImportPage);
}

DropTargets::~DropTargets()
{
    EditorCollection::CollectionProvider::remove(kBinCollection);
}

void DropTargets::registerWidget(QWidget* widget, DragAndDropHandler::Types types, Statistics::AddingMethod method,
                                 const DragAndDropHandler::Placement& placement)
{
    if (!widget)
        return;
    m_handler->registerSource(widget, types, method);
    if (placement) {
        m_handler->setPlacement(widget, placement);
        m_placements.insert(widget, placement);
        connect(widget, &QObject::destroyed, this, [this](QObject* gone) { m_placements.remove(gone); });
    }
    widget->setAcceptDrops(true);
    if (auto* area = qobject_cast<QAbstractScrollArea*>(widget)) {
        // A scroll area gets its drags on the viewport, and its own handlers refuse what
        // they do not know: the viewport's events are routed here and kept when taken.
        area->viewport()->setAcceptDrops(true);
        m_viewports.insert(area->viewport(), area);
        area->viewport()->installEventFilter(this);
        return;
    }
    m_handler->installEventFilterTo(widget);
    widget->installEventFilter(this); // asked before the handler's filter: notes where a drop lands
}

bool DropTargets::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return false;
    const bool viewport = m_viewports.contains(watched);
    QObject* source = viewport ? m_viewports.value(watched).data() : watched;
    if (!source)
        return false;
    if (type == QEvent::Drop) {
        m_dropTarget = source;
        m_dropAt = static_cast<QDropEvent*>(event)->pos();
        // The intake starts inside the drop; after it, no batch is this drop's.
        QTimer::singleShot(0, this, [this] { m_dropTarget = nullptr; });
    }
    if (!viewport)
        return false;
    m_handler->handleEvent(source, event);
    return event->isAccepted();
}

void DropTargets::filesArrived(const QStringList& files, quint64 batch, bool last)
{
    QStringList toBin;
    for (const QString& file : files)
        if (!m_pending->files.contains(file))
            toBin << file;
    if (!toBin.isEmpty())
        m_window->addFiles(toBin);
    const auto waiting = m_pending->byBatch.find(batch);
    if (waiting == m_pending->byBatch.end())
        return;
    const QStringList projects = Settings::supportedProjectFileExtensions();
    for (const QString& file : files)
        if (!projects.contains(QFileInfo(file).suffix().toLower()))
            waiting->paths << file;
    if (!last)
        return;
    waiting->complete = true;
    LOG(INFO) << "drop: placing " << waiting->paths.size() << " file(s) on the timeline once opened";
    placeOpened();
}

void DropTargets::placeOpened()
{
    for (auto it = m_pending->byBatch.begin(); it != m_pending->byBatch.end();) {
        Pending::Placement& waiting = it.value();
        if (!waiting.complete) {
            ++it;
            continue;
        }
        // Files open roughly in order: the scan resumes where the last one stopped.
        while (waiting.checked < waiting.paths.size()) {
            const Media::File* file = m_pending->files.value(waiting.paths.at(waiting.checked));
            if (file && file->isOpening())
                break;
            ++waiting.checked;
        }
        if (waiting.checked < waiting.paths.size()) {
            ++it;
            continue;
        }
        QStringList opened;
        for (const QString& path : waiting.paths)
            if (const Media::File* file = m_pending->files.value(path); file && file->isOpened())
                opened << path;
        const Timeline::ClipBuildingStrategy strategy = waiting.strategy;
        it = m_pending->byBatch.erase(it);
        if (opened.isEmpty())
            continue;
        const QList<Timeline::IClip*> clips = m_project->timeline()->placeMedia(opened, strategy);
        LOG(INFO) << "timeline: placed " << clips.size() << " clip(s) from " << opened.size() << " file(s)";
    }
}

void DropTargets::installOverlayPresets(QWidget* overlaysPage)
{
    auto* layout = overlaysPage ? qobject_cast<QBoxLayout*>(overlaysPage->layout()) : nullptr;
    if (!layout)
        return;
    auto* list = new QListWidget;
    list->setObjectName(QStringLiteral("overlayPresets"));
    const std::pair<QString, QString> presets[] = {
        {tr("Title"), tr("Your title")},
        {tr("Lower third"), tr("Name \u2014 Role")},
        {tr("Caption"), tr("Caption text")},
    };
    for (const auto& [name, text] : presets) {
        auto* item = new QListWidgetItem(name, list);
        item->setData(Qt::UserRole, text);
        item->setToolTip(tr("Drag onto the timeline"));
    }
    new DragStarter(list, overlayDragData);
    layout->insertWidget(2, list);
    m_overlayPresets = list;
}

void DropTargets::editOverlay(const QString& clipId)
{
    Timeline::TimelineModel* timeline = m_project->timeline();
    Timeline::Clip* clip = timeline->clipById(clipId);
    if (!clip)
        return;
    bool accepted = false;
    const QString text = askTitleText(m_window, clip->text(), &accepted);
    // The dialog's loop may have run an undo that took the clip away.
    clip = timeline->clipById(clipId);
    if (!accepted || !clip || !timeline->setClipText(clip, text))
        return;
    LOG(INFO) << "overlay: edited " << clipId.toStdString() << " \"" << text.toStdString() << '"';
}

bool DropTargets::simulateDrop(const QString& listFile, const QString& target)
{
    QFile file(listFile);
    if (!file.open(QIODevice::ReadOnly)) {
        LOG(ERROR) << "drop: cannot read " << listFile.toStdString() << ": " << file.errorString().toStdString();
        return false;
    }
    QWidget* widget = nullptr;
    for (QWidget* candidate : m_window->findChildren<QWidget*>(target))
        if (candidate->acceptDrops())
            widget = candidate;
    if (!widget) {
        LOG(ERROR) << "drop: no drop target named " << target.toStdString();
        return false;
    }
    if (auto* area = qobject_cast<QAbstractScrollArea*>(widget))
        widget = area->viewport();
    QMimeData data;
    data.setData(MimeUtils::UriListType, file.readAll());
    // Inside the first track of the timeline, and inside any other view big enough.
    return deliver(data, widget, target, widget->rect().contains(QPoint(60, 40)) ? QPoint(60, 40) : widget->rect().center());
}

bool DropTargets::simulateOverlayDrop(const QString& name)
{
    // On the second track, above the video of the first.
    return simulateItemDrop(m_overlayPresets, name, overlayDragData, QPoint(60, 90));
}

bool DropTargets::simulateBinItemDrop(const QString& name)
{
    return simulateItemDrop(m_window->mediaBin(), name, binDragData, QPoint(60, 40));
}

bool DropTargets::simulateItemDrop(QListWidget* list, const QString& name, QMimeData* (*makeData)(QListWidgetItem*),
                                   QPoint at)
{
    const QList<QListWidgetItem*> found = list ? list->findItems(name, Qt::MatchExactly) : QList<QListWidgetItem*>();
    if (found.isEmpty()) {
        LOG(ERROR) << "drop: no item named " << name.toStdString() << " to drag";
        return false;
    }
    std::unique_ptr<QMimeData> data(makeData(found.first()));
    QWidget* view = m_project->panel()->view();
    return deliver(*data, view, view->objectName(), at);
}

bool DropTargets::simulateEffectDrop(const QString& id)
{
    QList<Timeline::IClip*> clips = m_project->timeline()->clips();
    clips.erase(std::remove_if(clips.begin(), clips.end(), [](const Timeline::IClip* c) { return c->mediaPath().isEmpty(); }),
                clips.end());
    if (clips.isEmpty()) {
        LOG(ERROR) << "drop: no media clip for the effect " << id.toStdString();
        return false;
    }
    QMimeData data;
    data.setData(MimeUtils::EffectType, id.toUtf8());
    QWidget* view = m_project->panel()->view();
    return deliver(data, view, view->objectName(), m_project->panel()->clipCenter(clips.first()));
}

// Real drag events, as the platform delivers a drag from another application.
bool DropTargets::deliver(QMimeData& data, QWidget* widget, const QString& target, QPoint at)
{
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &enter);
    if (!enter.isAccepted()) {
        LOG(WARNING) << "drop: " << target.toStdString() << " refused the drag";
        QDragLeaveEvent leave;
        QApplication::sendEvent(widget, &leave);
        return false;
    }
    QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &move);
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &drop);
    return drop.isAccepted();
}
