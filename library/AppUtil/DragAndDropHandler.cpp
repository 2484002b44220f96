#include "DragAndDropHandler.h"

#include <AppEvents/AppEvents.h>
#include <EditorCollection/Collection.h>
#include <FileAdder/FileAdder.h>
#include <FileUtil/FileUtil.h>
#include <Mime/MimeUtils.h>
#include <Settings/FileDialogPaths.h>

#include <QDropEvent>
#include <QHash>
#include <QMultiMap>
#include <QPointer>
#include <QSet>

#include <glog/logging.h>

#include <functional>
#include <utility>

namespace {

std::string nameOf(const QObject* object)
{
    return object ? object->objectName().toStdString() : std::string();
}

QSet<QString> extensionSet(const QFlags<DragAndDropHandler::Type>& types)
{
    QSet<QString> extensions;
    const auto add = [&extensions](const QStringList& list) {
        for (const QString& extension : list)
            extensions.insert(extension.toLower());
    };
    if (types & DragAndDropHandler::MediaFiles) {
        add(FileUtil::videoExtensions());
        add(FileUtil::pictureExtensions());
        add(FileUtil::musicExtensions());
    }
    if (types & DragAndDropHandler::Packages)
        add({Settings::packageExtension()});
    if (types & DragAndDropHandler::ProjectFiles)
        add(Settings::supportedProjectFileExtensions());
    return extensions;
}

// One kind of dragged data and how to add it. Its parent is the source it serves.
class AbstractHandler : public QObject
{
public:
    explicit AbstractHandler(QObject* source) : QObject(source) {}
    virtual void setTimeline(Timeline::ITimeline* timeline) { m_timeline = timeline; }
    virtual void dragEnter(QDragEnterEvent* event) = 0;
    virtual void dragMove(QDragMoveEvent* event) = 0;
    virtual void drop(QDropEvent* event) = 0;

protected:
    Timeline::ITimeline* m_timeline = nullptr;
};

} // namespace

class DragAndDropHandler::Impl : public QObject, public PubSub::Subscriber<AppEvents::TutorialStateNotification>
{
public:
    explicit Impl(DragAndDropHandler* owner) : q(owner) { subscribe(AppEvents::globalObject()); }
    ~Impl() override
    {
        unsubscribe(AppEvents::globalObject());
        // The handlers live with their sources; without this object they would route nothing.
        for (AbstractHandler* handler : handlers)
            delete handler;
    }

    void notify(const AppEvents::TutorialStateNotification& message) override
    {
        tutorialRunning = message.running;
        LOG(INFO) << "drop: " << (tutorialRunning ? "paused for a tutorial" : "resumed after a tutorial");
    }

    void forget(QObject* source)
    {
        handlers.remove(source);
        methods.remove(source);
        placements.remove(source);
    }

    Timeline::ClipBuildingStrategy strategyFor(QObject* source, const QPoint& position) const
    {
        Timeline::ClipBuildingStrategy strategy;
        if (methods.contains(source))
            strategy.addingMethod = int(methods.value(source));
        if (const Placement placement = placements.value(source))
            placement(position, strategy);
        return strategy;
    }

    bool hasTimeline(QObject* source, const QString& what) const
    {
        if (!timeline)
            LOG(WARNING) << "drop: " << nameOf(source) << " has no timeline for " << what.toStdString();
        return timeline;
    }

    // The item callback: a collection item of any kind but 4.
    void addItem(const EditorCollection::Item& item, QObject* source, const QPoint& position)
    {
        if (!hasTimeline(source, item.content.name))
            return;
        Timeline::ClipBuildingStrategy strategy = strategyFor(source, position);
        if (item.isImportItem())
            strategy.applyImportItemProperties(item.importProperties);
        const QList<Timeline::IClip*> clips = timeline->addCollectionItem(item.content, strategy);
        LOG(INFO) << "drop: " << nameOf(source) << " item \"" << item.content.name.toStdString() << "\", "
                  << clips.size() << " clip(s)";
    }

    // The kind-4 callback: a part of a media item.
    void addMediaRange(const EditorCollection::Item& item, qint64 first, qint64 second, QObject* source,
                       const QPoint& position)
    {
        if (!hasTimeline(source, item.content.name))
            return;
        Statistics::TimelineWatcher watcher(timeline);
        const QList<Timeline::IClip*> clips =
            timeline->addMediaRange(item.content, MediaTime::fromMicroseconds(first), MediaTime::fromMicroseconds(second),
                                    strategyFor(source, position));
        if (methods.contains(source))
            watcher.reportAddition(methods.value(source));
        LOG(INFO) << "drop: " << nameOf(source) << " part of \"" << item.content.name.toStdString() << "\", "
                  << clips.size() << " clip(s)";
    }

    // The overlay callback.
    void addOverlay(const Timeline::OverlayPreset& preset, QObject* source, const QPoint& position)
    {
        if (!hasTimeline(source, preset.name))
            return;
        Timeline::IClip* clip = nullptr;
        {
            // Over before editRequested: whoever answers it may run an event loop.
            Statistics::TimelineWatcher watcher(timeline);
            if (methods.contains(source))
                PubSub::publish(Statistics::CollectionInteractionNotification(
                    Statistics::InteractionKind::Dropped, QStringLiteral("OverlayPresets"), preset.name));
            clip = timeline->addOverlayPreset(preset, strategyFor(source, position));
            watcher.reportAddition(methods.value(source, Statistics::AddingMethod::Unknown));
        }
        LOG(INFO) << "drop: " << nameOf(source) << " overlay \"" << preset.name.toStdString() << "\""
                  << (clip ? "" : " not placed");
        if (!clip)
            return;
        // The new overlay is the one to edit: it becomes the selection the editor opens.
        timeline->select({clip}, Timeline::ITimeline::SelectionMode::Replace);
        if (Timeline::IClip* selected = timeline->firstSelectedClip())
            emit q->editRequested(selected);
    }

    DragAndDropHandler* q;
    Timeline::ITimeline* timeline = nullptr;
    // values(source) lists the most recently inserted first: the asking order.
    QMultiMap<QObject*, AbstractHandler*> handlers;
    QHash<QObject*, Statistics::AddingMethod> methods;
    QHash<QObject*, Placement> placements;
    bool enabled = true;
    bool tutorialRunning = false;
    QObject* filter = nullptr;
};

namespace {

class FileHandler : public AbstractHandler
{
public:
    FileHandler(QObject* source, QSet<QString> extensions) : AbstractHandler(source), m_extensions(std::move(extensions)) {}

    void dragEnter(QDragEnterEvent* event) override
    {
        const MimeUtils::Reader reader(event->mimeData());
        // A drag out of the editor's own collections names its files too; it is the import
        // handler's. The list of an earlier drag must not be dropped instead.
        if (reader.asrc() == MimeUtils::CollectionSource) {
            m_files.clear();
            return;
        }
        m_files = reader.extractFiles(m_extensions);
        if (!m_files.isEmpty())
            event->acceptProposedAction();
    }

    void dragMove(QDragMoveEvent* event) override
    {
        if (!m_files.isEmpty())
            event->acceptProposedAction();
    }

    void drop(QDropEvent* event) override
    {
        if (m_files.isEmpty())
            return;
        const QStringList files = std::exchange(m_files, QStringList());
        LOG(INFO) << "drop: " << nameOf(parent()) << ' ' << files.size() << " file(s)";
        FileAdder::addMediaFiles(files, FileAdder::Source::DragAndDrop, FileAdder::Contexts());
        event->acceptProposedAction();
    }

private:
    QSet<QString> m_extensions;
    QStringList m_files;
};

class ImportHandler : public AbstractHandler
{
public:
    using ItemCallback = std::function<void(const EditorCollection::Item&, QObject*, const QPoint&)>;
    using RangeCallback = std::function<void(const EditorCollection::Item&, qint64, qint64, QObject*, const QPoint&)>;

    ImportHandler(QObject* source, ItemCallback item, RangeCallback range)
        : AbstractHandler(source), m_item(std::move(item)), m_range(std::move(range))
    {
    }

    void dragEnter(QDragEnterEvent* event) override { acceptObject(event); }
    void dragMove(QDragMoveEvent* event) override { acceptObject(event); }

    void drop(QDropEvent* event) override
    {
        const MimeUtils::Reader reader(event->mimeData());
        const std::optional<EditorCollection::ImportObject> object = reader.popObject<EditorCollection::ImportObject>();
        if (!object)
            return;
        const EditorCollection::Payload& payload = object->payload;
        PubSub::publish(Statistics::CollectionInteractionNotification(Statistics::InteractionKind::Dropped,
                                                                      payload.collection, payload.itemId));
        const std::shared_ptr<const EditorCollection::Item> item = payload.findItem();
        if (!item) {
            LOG(WARNING) << "drop: " << nameOf(parent()) << ": \"" << payload.itemId.toStdString() << "\" is no longer in "
                         << payload.collection.toStdString();
            return;
        }
        if (object->kind == EditorCollection::ImportObject::MediaRange)
            m_range(*item, object->first, object->second, parent(), event->pos());
        else
            m_item(*item, parent(), event->pos());
        event->acceptProposedAction();
    }

private:
    static void acceptObject(QDragMoveEvent* event)
    {
        if (MimeUtils::Reader(event->mimeData()).hasObject<EditorCollection::ImportObject>())
            event->acceptProposedAction();
    }

    ItemCallback m_item;
    RangeCallback m_range;
};

class OverlayHandler : public AbstractHandler
{
public:
    using Callback = std::function<void(const Timeline::OverlayPreset&, QObject*, const QPoint&)>;
    OverlayHandler(QObject* source, Callback callback) : AbstractHandler(source), m_callback(std::move(callback)) {}

    void dragEnter(QDragEnterEvent* event) override { acceptPresets(event); }
    void dragMove(QDragMoveEvent* event) override { acceptPresets(event); }

    void drop(QDropEvent* event) override
    {
        event->acceptProposedAction();
        // The editor's reaction to a preset may destroy the source, and this handler with it.
        const Callback callback = m_callback;
        const QPoint position = event->pos();
        QPointer<QObject> source = parent();
        for (const Timeline::OverlayPreset& preset : MimeUtils::makeOverlayPresetList(event->mimeData())) {
            if (!source)
                return;
            callback(preset, source, position);
        }
    }

private:
    static void acceptPresets(QDragMoveEvent* event)
    {
        if (MimeUtils::isOverlayPresetCompatible(event->mimeData()))
            event->acceptProposedAction();
    }

    Callback m_callback;
};

// Routes every event of the objects it is installed on, and lets each pass on.
class RoutingFilter : public QObject
{
public:
    RoutingFilter(DragAndDropHandler* handler, QObject* parent) : QObject(parent), m_handler(handler) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_handler->handleEvent(watched, event);
        return QObject::eventFilter(watched, event);
    }

private:
    DragAndDropHandler* m_handler;
};

} // namespace

DragAndDropHandler::DragAndDropHandler(QObject* parent) : QObject(parent), d(std::make_unique<Impl>(this)) {}

DragAndDropHandler::~DragAndDropHandler() = default;

void DragAndDropHandler::registerSource(QObject* source, const QFlags<DragAndDropHandler::Type>& types,
                                        Statistics::AddingMethod method)
{
    if (!source)
        return;
    const bool known = d->methods.contains(source) || d->handlers.contains(source);
    if (types & OverlayPresets)
        d->handlers.insert(source, new OverlayHandler(source, [this](const Timeline::OverlayPreset& preset, QObject* from,
                                                                      const QPoint& at) { d->addOverlay(preset, from, at); }));
    const QSet<QString> extensions = extensionSet(types);
    if (!extensions.isEmpty())
        d->handlers.insert(source, new FileHandler(source, extensions));
    if (types & CollectionItems)
        d->handlers.insert(source, new ImportHandler(
                                       source,
                                       [this](const EditorCollection::Item& item, QObject* from, const QPoint& at) {
                                           d->addItem(item, from, at);
                                       },
                                       [this](const EditorCollection::Item& item, qint64 first, qint64 second,
                                              QObject* from, const QPoint& at) {
                                           d->addMediaRange(item, first, second, from, at);
                                       }));
    for (AbstractHandler* handler : d->handlers.values(source))
        handler->setTimeline(d->timeline);
    d->methods.insert(source, method);
    if (!known)
        connect(source, &QObject::destroyed, d.get(), [this](QObject* gone) { d->forget(gone); });
}

void DragAndDropHandler::setPlacement(QObject* source, Placement placement)
{
    if (source)
        d->placements.insert(source, std::move(placement));
}

void DragAndDropHandler::installEventFilterTo(QObject* object)
{
    if (!object)
        return;
    if (!d->filter)
        d->filter = new RoutingFilter(this, d.get());
    object->installEventFilter(d->filter);
}

void DragAndDropHandler::handleEvent(QObject* object, QEvent* event)
{
    if (!d->enabled || d->tutorialRunning || !object || !event)
        return;
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return;
    event->setAccepted(false);
    // Guarded: adding a drop may run the editor's reactions, which may destroy the source.
    QList<QPointer<AbstractHandler>> asked;
    for (AbstractHandler* handler : d->handlers.values(object))
        asked << handler;
    for (const QPointer<AbstractHandler>& handler : asked) {
        if (!handler)
            continue;
        switch (type) {
        case QEvent::DragEnter:
            handler->dragEnter(static_cast<QDragEnterEvent*>(event));
            break;
        case QEvent::DragMove:
            handler->dragMove(static_cast<QDragMoveEvent*>(event));
            break;
        default:
            handler->drop(static_cast<QDropEvent*>(event));
            break;
        }
        if (event->isAccepted())
            break;
    }
}

void DragAndDropHandler::setEnabled(bool enabled)
{
    d->enabled = enabled;
}

bool DragAndDropHandler::isEnabled() const
{
    return d->enabled;
}

void DragAndDropHandler::setTimeline(Timeline::ITimeline* timeline)
{
    if (timeline == d->timeline)
        return;
    d->timeline = timeline;
    for (AbstractHandler* handler : d->handlers)
        handler->setTimeline(timeline);
}
