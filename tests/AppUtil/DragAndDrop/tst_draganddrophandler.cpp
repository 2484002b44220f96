#include <DragAndDropHandler.h>

#include <AppEvents/AppEvents.h>
#include <EditorCollection/Collection.h>
#include <FileAdder/FileAdder.h>
#include <Mime/MimeUtils.h>
#include <Timeline/TimelineModel.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

#include "TestSandbox.h"

#include <glog/logging.h>

#include <memory>

Q_DECLARE_METATYPE(DragAndDropHandler::Types)
Q_DECLARE_METATYPE(Timeline::IClip*)

namespace {

// A collection whose items the test sets; registered under its name while it lives.
class TestCollection : public EditorCollection::ICollection
{
public:
    QString name() const override { return QStringLiteral("TestItems"); }
    void showPage() override {}
    std::shared_ptr<const EditorCollection::Item> findItem(const QString& id) const override
    {
        return items.value(id);
    }
    QHash<QString, std::shared_ptr<const EditorCollection::Item>> items;
};

// The log lines written while it lives.
class LogCapture : public google::LogSink
{
public:
    LogCapture() { google::AddLogSink(this); }
    ~LogCapture() override { google::RemoveLogSink(this); }
    void send(google::LogSeverity, const char*, const char*, int, const google::LogMessageTime&, const char* message,
              size_t length) override
    {
        lines << QString::fromUtf8(message, int(length));
    }
    QStringList lines;
};

// A view that records the drag events that reached it after the filters.
class View : public QWidget
{
public:
    View() { setAcceptDrops(true); }
    int seen = 0;

protected:
    void dragEnterEvent(QDragEnterEvent*) override { ++seen; }
    void dropEvent(QDropEvent*) override { ++seen; }
};

// A view registered with a handler that routes its events, over a timeline.
struct Rig
{
    Rig(DragAndDropHandler::Types types, Statistics::AddingMethod method)
    {
        view.setObjectName(QStringLiteral("testView"));
        handler.setTimeline(&timeline);
        if (types)
            handler.registerSource(&view, types, method);
        handler.installEventFilterTo(&view);
    }
    Timeline::TimelineModel timeline;
    DragAndDropHandler handler;
    View view;
};

// What a drag enter, a move and a drop of `data` onto `target` end with: whether each was accepted.
struct Outcome
{
    bool enter = false;
    bool move = false;
    bool drop = false;
};

Outcome dragAndDrop(QWidget* target, QMimeData* data, bool dropIt = true)
{
    Outcome outcome;
    const QPoint at(10, 10);
    QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    outcome.enter = enter.isAccepted();
    // As Qt delivers them: moves and the drop reach only a target that accepted the enter.
    QDragMoveEvent move(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &move);
    outcome.move = move.isAccepted();
    if (dropIt) {
        QDropEvent drop(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        outcome.drop = drop.isAccepted();
    } else {
        QDragLeaveEvent leave;
        QApplication::sendEvent(target, &leave);
    }
    return outcome;
}

// Data of a drag from another application, as the platform hands it over: its bytes as
// sent. (QMimeData::setData would parse a uri-list with QUrl and give back its own encoding.)
class ForeignMimeData : public QMimeData
{
public:
    ForeignMimeData(const QString& format, const QByteArray& bytes) : m_format(format), m_bytes(bytes) {}
    QStringList formats() const override { return {m_format}; }
    bool hasFormat(const QString& format) const override { return format == m_format; }

protected:
    QVariant retrieveData(const QString& format, QVariant::Type) const override
    {
        return format == m_format ? QVariant(m_bytes) : QVariant();
    }

private:
    QString m_format;
    QByteArray m_bytes;
};

QMimeData* uriList(const QByteArray& list)
{
    return new ForeignMimeData(MimeUtils::UriListType, list);
}

} // namespace

class tst_DragAndDropHandler : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_root;
    QList<FileAdder::MediaFilesNotification> m_slices;
    std::unique_ptr<PubSub::Subscription<FileAdder::MediaFilesNotification>> m_intake;
    QList<Statistics::ClipsAddedNotification> m_additions;
    std::unique_ptr<PubSub::Subscription<Statistics::ClipsAddedNotification>> m_additionsSpy;
    QList<Statistics::CollectionInteractionNotification> m_interactions;
    std::unique_ptr<PubSub::Subscription<Statistics::CollectionInteractionNotification>> m_interactionsSpy;
    std::shared_ptr<TestCollection> m_collection;

    void touch(const QString& relative)
    {
        QFile file(m_root + QLatin1Char('/') + relative);
        QDir().mkpath(QFileInfo(file).absolutePath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x");
    }

    QStringList delivered() const
    {
        QStringList files;
        for (const auto& slice : m_slices)
            files << slice.files;
        return files;
    }

    bool batchDone() const { return !m_slices.isEmpty() && m_slices.last().last; }

    QMimeData* importDrag(int kind, const QString& item, qint64 first = 0, qint64 second = 0)
    {
        auto* data = new QMimeData;
        EditorCollection::ImportObject object;
        object.kind = kind;
        object.payload = {m_collection->name(), item};
        object.first = first;
        object.second = second;
        MimeUtils::setImportObject(data, object);
        // Collections name their files too, as a desktop would read them.
        data->setData(MimeUtils::UriListType, QFile::encodeName(QStringLiteral("file://") + m_root + QStringLiteral("/a.mp4\r\n")));
        return data;
    }

    QMimeData* overlayDrag(const QString& name)
    {
        auto* data = new QMimeData;
        Timeline::OverlayPreset preset;
        preset.name = name;
        preset.text = QStringLiteral("Hello");
        MimeUtils::setOverlayPresets(data, {preset});
        return data;
    }

private slots:
    void initTestCase()
    {
        qRegisterMetaType<Timeline::IClip*>();
        QVERIFY(m_dir.isValid());
        m_root = m_dir.path();
        for (const char* name : {"a.mp4", "b.png", "c.MP3", "with space.mp4", "notes.txt", "sub/d.mov", "sub/e.txt",
                                 "x#y.mp4", "100%.mp4", "project.kvproj"})
            touch(QString::fromLatin1(name));
        m_intake = std::make_unique<PubSub::Subscription<FileAdder::MediaFilesNotification>>(
            FileAdder::globalObject(), [this](const FileAdder::MediaFilesNotification& m) { m_slices << m; });
        m_additionsSpy = std::make_unique<PubSub::Subscription<Statistics::ClipsAddedNotification>>(
            Statistics::globalObject(), [this](const Statistics::ClipsAddedNotification& m) { m_additions << m; });
        m_interactionsSpy = std::make_unique<PubSub::Subscription<Statistics::CollectionInteractionNotification>>(
            Statistics::globalObject(),
            [this](const Statistics::CollectionInteractionNotification& m) { m_interactions << m; });
        m_collection = std::make_shared<TestCollection>();
        auto media = std::make_shared<EditorCollection::Item>();
        media->content.kind = Timeline::CollectionItem::Kind::Media;
        media->content.name = QStringLiteral("Clip A");
        media->content.filePath = m_root + QStringLiteral("/a.mp4");
        media->importProperties.insert(QStringLiteral("category"), QStringLiteral("Imported"));
        m_collection->items.insert(QStringLiteral("a"), media);
        EditorCollection::CollectionProvider::add(m_collection);
    }

    void cleanupTestCase() { EditorCollection::CollectionProvider::remove(m_collection->name()); }

    void init()
    {
        QTRY_COMPARE(FileAdder::pendingBatches(), 0);
        m_slices.clear();
        m_additions.clear();
        m_interactions.clear();
    }

    // What the reader takes from what desktops and file managers send.
    void extractFiles_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QStringList>("expected"); // "@" stands for the test folder

        const QByteArray host = QSysInfo::machineHostName().toUtf8();
        const auto row = [](const char* name, const QString& format, const QByteArray& payload, const QStringList& expected) {
            QTest::newRow(name) << format << payload << expected;
        };
        const QString uri = MimeUtils::UriListType;
        row("CRLF lines", uri, "file://@/a.mp4\r\nfile://@/b.png\r\n", {"@/a.mp4", "@/b.png"});
        row("bare LF lines", uri, "file://@/a.mp4\nfile://@/b.png", {"@/a.mp4", "@/b.png"});
        row("comments", uri, "# from a file manager\r\nfile://@/a.mp4\r\n#file://@/b.png\r\n", {"@/a.mp4"});
        row("percent-encoded", uri, "file://@/with%20space.mp4\r\nfile://@/x%23y.mp4\r\nfile://@/100%25.mp4\r\n",
            {"@/with space.mp4", "@/x#y.mp4", "@/100%.mp4"});
        row("localhost", uri, "file://localhost@/a.mp4\r\n", {"@/a.mp4"});
        row("this host", uri, "file://" + host + "@/a.mp4\r\n", {"@/a.mp4"});
        row("file:/ without host", uri, "file:@/a.mp4\r\n", {"@/a.mp4"});
        row("upper-case scheme and extension", uri, "FILE://@/c.MP3\r\n", {"@/c.MP3"});
        row("another host", uri, "file://elsewhere.example@/a.mp4\r\n", {});
        row("remote schemes", uri, "http://example.com/a.mp4\r\nsmb://server/share/a.mp4\r\nsftp://h/a.mp4\r\n", {});
        row("unsupported extension", uri, "file://@/notes.txt\r\nfile://@/a.mp4\r\n", {"@/a.mp4"});
        row("folder kept for expansion", uri, "file://@/sub\r\n", {"@/sub"});
        row("each file once", uri, "file://@/a.mp4\r\nfile://localhost@/a.mp4\r\nfile:@/a.mp4\r\n", {"@/a.mp4"});
        row("bad percent escape", uri, "file://@/a%zz.mp4\r\nfile://@/a%2\r\nfile://@/b.png\r\n", {"@/b.png"});
        row("encoded NUL", uri, "file://@/a%00.mp4\r\n", {});
        row("malformed lines", uri, "not a uri\r\n://x\r\nfile:relative/a.mp4\r\nfile://\r\nfile://host\r\n", {});
        row("trailing NUL and blanks", uri, QByteArray("file://@/a.mp4 \r\n\0", 19), {"@/a.mp4"});
        row("query and fragment", uri, "file://@/a.mp4?x=1\r\nfile://@/b.png#frag\r\n", {"@/a.mp4", "@/b.png"});
        row("name not UTF-8", uri, "file://@/%FF%FE.mp4\r\n", {"@/\uFFFD\uFFFD.mp4"});
        row("empty", uri, "", {});
        row("KDE list", MimeUtils::KdeUriListType, "file://@/a.mp4\r\n", {"@/a.mp4"});
        row("plain text paths", QStringLiteral("text/plain"), "@/a.mp4\n@/b.png\nhello\n", {"@/a.mp4", "@/b.png"});
        row("plain text URLs", QStringLiteral("text/plain"), "file://@/with%20space.mp4\r\nhttps://x/y.mp4\r\n",
            {"@/with space.mp4"});
    }

    void extractFiles()
    {
        QFETCH(QString, format);
        QFETCH(QByteArray, payload);
        QFETCH(QStringList, expected);
        payload.replace('@', QFile::encodeName(m_root));
        for (QString& path : expected)
            path.replace(QLatin1Char('@'), m_root);
        const ForeignMimeData data(format, payload);
        const QStringList extensions{QStringLiteral("mp4"), QStringLiteral("png"), QStringLiteral("mp3"),
                                     QStringLiteral("mov")};
        QCOMPARE(MimeUtils::Reader(&data).extractFiles(extensions), expected);
    }

    // A desktop that offers its list in several formats is read once, from the standard one.
    void uriListPreferredOverOtherFormats()
    {
        QMimeData data;
        data.setData(MimeUtils::UriListType, QFile::encodeName(QStringLiteral("file://") + m_root + QStringLiteral("/a.mp4\r\n")));
        data.setData(MimeUtils::KdeUriListType, "desktop:/b.png\r\n");
        data.setText(m_root + QStringLiteral("/b.png"));
        QCOMPARE(MimeUtils::Reader(&data).extractFiles(QStringList{QStringLiteral("mp4"), QStringLiteral("png")}),
                 QStringList{m_root + QStringLiteral("/a.mp4")});
    }

    void routing_data()
    {
        QTest::addColumn<DragAndDropHandler::Types>("types");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("media: video") << DragAndDropHandler::Types(DragAndDropHandler::MediaFiles) << "a.mp4" << true;
        QTest::newRow("media: picture") << DragAndDropHandler::Types(DragAndDropHandler::MediaFiles) << "b.png" << true;
        QTest::newRow("media: text file") << DragAndDropHandler::Types(DragAndDropHandler::MediaFiles) << "notes.txt" << false;
        QTest::newRow("media: project") << DragAndDropHandler::Types(DragAndDropHandler::MediaFiles) << "project.kvproj" << false;
        QTest::newRow("projects: project") << DragAndDropHandler::Types(DragAndDropHandler::ProjectFiles) << "project.kvproj" << true;
        QTest::newRow("projects: video") << DragAndDropHandler::Types(DragAndDropHandler::ProjectFiles) << "a.mp4" << false;
        QTest::newRow("collection only: video") << DragAndDropHandler::Types(DragAndDropHandler::CollectionItems) << "a.mp4" << false;
        QTest::newRow("media: folder") << DragAndDropHandler::Types(DragAndDropHandler::MediaFiles) << "sub" << true;
    }

    // Files from outside: accepted when their kind is, handed to the intake once with source 11.
    void routing()
    {
        QFETCH(DragAndDropHandler::Types, types);
        QFETCH(QString, file);
        QFETCH(bool, accepted);
        Rig rig(types, Statistics::AddingMethod::DropOnMediaBin);
        std::unique_ptr<QMimeData> data(uriList(QFile::encodeName(QStringLiteral("file://") + m_root + QLatin1Char('/') + file)));
        const Outcome outcome = dragAndDrop(&rig.view, data.get());
        QCOMPARE(outcome.enter, accepted);
        QCOMPARE(outcome.move, accepted);
        QCOMPARE(outcome.drop, accepted);
        // The filter let the events pass on; Qt delivers no drop after a refused enter.
        QCOMPARE(rig.view.seen, accepted ? 2 : 1);
        if (!accepted) {
            QTest::qWait(20);
            QVERIFY(m_slices.isEmpty());
            return;
        }
        QTRY_VERIFY(batchDone());
        QCOMPARE(m_slices.last().source, int(FileAdder::Source::DragAndDrop));
        const QString expected = file == QLatin1String("sub") ? QStringLiteral("sub/d.mov") : file;
        QCOMPARE(delivered(), QStringList{m_root + QLatin1Char('/') + expected});
    }

    void disabledAndTutorial()
    {
        Rig rig(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
        const QByteArray list = QFile::encodeName(QStringLiteral("file://") + m_root + QStringLiteral("/a.mp4"));
        std::unique_ptr<QMimeData> data(uriList(list));
        rig.handler.setEnabled(false);
        QCOMPARE(dragAndDrop(&rig.view, data.get()).drop, false);
        rig.handler.setEnabled(true);
        PubSub::publish(AppEvents::TutorialStateNotification(true));
        QCOMPARE(dragAndDrop(&rig.view, data.get()).enter, false);
        PubSub::publish(AppEvents::TutorialStateNotification(false));
        QCOMPARE(dragAndDrop(&rig.view, data.get()).drop, true);
        QTRY_VERIFY(batchDone());
        QCOMPARE(delivered().size(), 1); // only the drop made while routing
    }

    // Collection drags onto a source that takes files and items are the import handler's;
    // the item lands on the timeline once, with the source's adding method.
    void collectionDragIsImport()
    {
        Rig rig(DragAndDropHandler::MediaFiles | DragAndDropHandler::CollectionItems, Statistics::AddingMethod::DropOnTimeline);
        std::unique_ptr<QMimeData> data(importDrag(EditorCollection::ImportObject::Media, QStringLiteral("a")));
        QVERIFY(dragAndDrop(&rig.view, data.get()).drop);
        QCOMPARE(rig.timeline.clipCount(), 1);
        QCOMPARE(rig.timeline.clips().first()->description().category, QStringLiteral("Imported"));
        QCOMPARE(m_interactions.size(), 1);
        QCOMPARE(m_interactions.first().kind, Statistics::InteractionKind::Dropped);
        // The object was taken: the same drag dropped again adds nothing.
        QCOMPARE(dragAndDrop(&rig.view, data.get()).drop, false);
        QCOMPARE(rig.timeline.clipCount(), 1);
        QTest::qWait(20);
        QVERIFY(m_slices.isEmpty()); // never the file handler
    }

    // A files drag that left without a drop must not be dropped by a later collection drag
    // that no handler takes.
    void leftDragIsNotDroppedLater()
    {
        Rig rig(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
        std::unique_ptr<QMimeData> files(uriList(QFile::encodeName(QStringLiteral("file://") + m_root + QStringLiteral("/a.mp4"))));
        QVERIFY(dragAndDrop(&rig.view, files.get(), false).enter);
        std::unique_ptr<QMimeData> collection(importDrag(EditorCollection::ImportObject::Media, QStringLiteral("a")));
        const Outcome outcome = dragAndDrop(&rig.view, collection.get());
        QVERIFY(!outcome.move);
        QVERIFY(!outcome.drop);
        QTest::qWait(20);
        QVERIFY(m_slices.isEmpty());
    }

    void itemGoneBeforeDrop()
    {
        Rig rig(DragAndDropHandler::CollectionItems, Statistics::AddingMethod::DropOnTimeline);
        std::unique_ptr<QMimeData> data(importDrag(EditorCollection::ImportObject::Media, QStringLiteral("removed")));
        const Outcome outcome = dragAndDrop(&rig.view, data.get());
        QVERIFY(outcome.enter);
        QVERIFY(!outcome.drop);
        QCOMPARE(rig.timeline.clipCount(), 0);
    }

    void undecodableImportObject()
    {
        Rig rig(DragAndDropHandler::CollectionItems, Statistics::AddingMethod::DropOnTimeline);
        for (const QByteArray& junk : {QByteArray("{"), QByteArray("[]"), QByteArray(R"({"kind":9,"collection":"TestItems","item":"a"})"),
                                       QByteArray(R"({"kind":4,"collection":"TestItems","item":"a","first":-5})")}) {
            QMimeData data;
            data.setData(EditorCollection::ImportObject::mimeType(), junk);
            QVERIFY(!dragAndDrop(&rig.view, &data).drop);
        }
        QCOMPARE(rig.timeline.clipCount(), 0);
    }

    // Kind 4 is a part of a media file; its addition is reported with the source's method.
    void mediaRange()
    {
        Rig rig(DragAndDropHandler::CollectionItems, Statistics::AddingMethod::DropOnPreview);
        std::unique_ptr<QMimeData> data(importDrag(EditorCollection::ImportObject::MediaRange, QStringLiteral("a"), 2000000, 3000000));
        QVERIFY(dragAndDrop(&rig.view, data.get()).drop);
        QCOMPARE(rig.timeline.clipCount(), 1);
        const Timeline::ClipTiming timing = rig.timeline.clips().first()->timing();
        QCOMPARE(timing.sourceIn.microseconds(), qint64(2000000));
        QCOMPARE(timing.sourceLength.microseconds(), qint64(3000000));
        QCOMPARE(m_additions.size(), 1);
        QCOMPARE(m_additions.first().method, Statistics::AddingMethod::DropOnPreview);
        QCOMPARE(m_additions.first().clips, 1);
    }

    // An overlay preset is placed, selected, reported, and offered for editing.
    void overlayPreset()
    {
        Rig rig(DragAndDropHandler::OverlayPresets, Statistics::AddingMethod::DropOnTimeline);
        rig.handler.setPlacement(&rig.view, [](const QPoint& at, Timeline::ClipBuildingStrategy& strategy) {
            strategy.atEnd = false;
            strategy.position = MediaTime::fromSeconds(at.x());
        });
        QSignalSpy edits(&rig.handler, &DragAndDropHandler::editRequested);
        std::unique_ptr<QMimeData> data(overlayDrag(QStringLiteral("Lower third")));
        QVERIFY(dragAndDrop(&rig.view, data.get()).drop);
        QCOMPARE(rig.timeline.clipCount(), 1);
        Timeline::IClip* clip = rig.timeline.clips().first();
        QCOMPARE(clip->type(), Timeline::ClipTypes(Timeline::ClipType::Overlay));
        QCOMPARE(clip->compositionRange().start.microseconds(), qint64(10000000));
        QCOMPARE(edits.count(), 1);
        QCOMPARE(edits.first().first().value<Timeline::IClip*>(), clip);
        QCOMPARE(m_additions.size(), 1);
        QCOMPARE(m_additions.first().types, Timeline::ClipTypes(Timeline::ClipType::Overlay));

        QMimeData junk;
        junk.setData(MimeUtils::OverlayPresetsType, R"([{"text":"no name"}, 5, {"name":"ok","duration":-1}])");
        QVERIFY(dragAndDrop(&rig.view, &junk).drop);
        QCOMPARE(rig.timeline.clipCount(), 1);
    }

    // The handlers of a later registration are asked first.
    void laterRegistrationAskedFirst_data()
    {
        QTest::addColumn<bool>("overlaysFirst");
        QTest::newRow("overlays, then items") << true;
        QTest::newRow("items, then overlays") << false;
    }

    void laterRegistrationAskedFirst()
    {
        QFETCH(bool, overlaysFirst);
        Rig rig({}, Statistics::AddingMethod::DropOnTimeline);
        const DragAndDropHandler::Types order[] = {DragAndDropHandler::OverlayPresets, DragAndDropHandler::CollectionItems};
        rig.handler.registerSource(&rig.view, order[overlaysFirst ? 0 : 1], Statistics::AddingMethod::DropOnTimeline);
        rig.handler.registerSource(&rig.view, order[overlaysFirst ? 1 : 0], Statistics::AddingMethod::DropOnTimeline);
        std::unique_ptr<QMimeData> data(importDrag(EditorCollection::ImportObject::Media, QStringLiteral("a")));
        Timeline::OverlayPreset preset;
        preset.name = QStringLiteral("Title");
        MimeUtils::setOverlayPresets(data.get(), {preset});
        QVERIFY(dragAndDrop(&rig.view, data.get()).drop);
        QCOMPARE(rig.timeline.clipCount(), 1);
        QCOMPARE(rig.timeline.clips().first()->type(), overlaysFirst ? Timeline::ClipTypes(Timeline::ClipType::Video)
                                                                 : Timeline::ClipTypes(Timeline::ClipType::Overlay));
    }

    // A destroyed source leaves nothing behind, even for an object that reuses its address.
    void destroyedSourceIsForgotten()
    {
        DragAndDropHandler handler;
        std::unique_ptr<QMimeData> data(uriList(QFile::encodeName(QStringLiteral("file://") + m_root + QStringLiteral("/a.mp4"))));
        for (int i = 0; i < 20; ++i) {
            auto view = std::make_unique<View>();
            if (i % 2 == 0) {
                handler.registerSource(view.get(), DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
                continue; // destroyed at once
            }
            QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
            handler.handleEvent(view.get(), &enter);
            QVERIFY(!enter.isAccepted());
        }
    }

    // A source destroyed while its drop is handled (the editor reacts to an overlay by
    // closing the view) ends the drop without touching it again.
    void sourceDestroyedDuringDrop()
    {
        Timeline::TimelineModel timeline;
        DragAndDropHandler handler;
        handler.setTimeline(&timeline);
        auto* view = new View;
        handler.registerSource(view, DragAndDropHandler::OverlayPresets, Statistics::AddingMethod::DropOnTimeline);
        handler.installEventFilterTo(view);
        connect(&handler, &DragAndDropHandler::editRequested, view, [view] { delete view; });
        auto* data = new QMimeData;
        std::unique_ptr<QMimeData> owner(data);
        Timeline::OverlayPreset preset;
        preset.name = QStringLiteral("One");
        MimeUtils::setOverlayPresets(data, {preset, preset, preset});
        QDropEvent drop(QPoint(1, 1), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QPointer<View> guard(view);
        handler.handleEvent(view, &drop);
        QVERIFY(!guard);
        QCOMPARE(timeline.clipCount(), 1);
    }

    // A file removed between the drag and the drop is told and skipped; the rest arrives.
    void fileVanishedBeforeDrop()
    {
        touch(QStringLiteral("gone.mp4"));
        Rig rig(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
        const QByteArray prefix = QFile::encodeName(QStringLiteral("file://") + m_root);
        std::unique_ptr<QMimeData> data(uriList(prefix + "/gone.mp4\r\n" + prefix + "/a.mp4\r\n"));
        QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&rig.view, &enter);
        QVERIFY(enter.isAccepted());
        QVERIFY(QFile::remove(m_root + QStringLiteral("/gone.mp4")));
        QDropEvent drop(QPoint(1, 1), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&rig.view, &drop);
        QVERIFY(drop.isAccepted());
        QTRY_VERIFY(batchDone());
        QCOMPARE(delivered(), QStringList{m_root + QStringLiteral("/a.mp4")});
    }

    // A drag crossing several views is refused once, not once per view or per entry.
    void refusalsToldOnce()
    {
        Rig bin(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
        Rig timeline(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnTimeline);
        const QByteArray prefix = QFile::encodeName(QStringLiteral("file://") + m_root);
        std::unique_ptr<QMimeData> data(
            uriList(prefix + "/notes.txt\r\nhttp://example.com/x.mp4\r\n" + prefix + "/a.mp4\r\n"));
        LogCapture log;
        for (Rig* rig : {&bin, &timeline, &bin}) {
            QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&rig->view, &enter);
            QVERIFY(enter.isAccepted());
            QDragLeaveEvent leave;
            QApplication::sendEvent(&rig->view, &leave);
        }
        QCOMPARE(log.lines.filter(QStringLiteral("drop: refused")),
                 (QStringList{QStringLiteral("drop: refused (unsupported): ") + m_root + QStringLiteral("/notes.txt"),
                              QStringLiteral("drop: refused (remote): http://example.com/x.mp4")}));
    }

    // Many files arrive in slices, each once, in order (ten thousand: bench/run_draganddrop.sh).
    void manyFiles()
    {
        QTemporaryDir many;
        QByteArray list;
        QStringList expected;
        for (int i = 0; i < 1200; ++i) {
            const QString path = many.path() + QStringLiteral("/f%1.mp4").arg(i, 5, 10, QLatin1Char('0'));
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            expected << path;
            list += "file://" + QFile::encodeName(path) + "\r\n";
        }
        list += list; // every file twice
        Rig rig(DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnMediaBin);
        std::unique_ptr<QMimeData> data(uriList(list));
        QVERIFY(dragAndDrop(&rig.view, data.get()).drop);
        QTRY_VERIFY(batchDone());
        QCOMPARE(delivered(), expected);
        for (const auto& slice : m_slices)
            QVERIFY(slice.files.size() <= FileAdder::filesPerSlice);
    }
};

QTEST_MAIN(tst_DragAndDropHandler)
#include "tst_draganddrophandler.moc"
