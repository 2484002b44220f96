#include "TestSandbox.h"
#include "MediaTestServices.h"
#include "ScriptedDialogStrategy.h"
#include "TestMedia.h"

#include <FileOpenHandler.h>
#include <MediaStatistics.h>

#include <Conf/Codecs.h>
#include <Media/FilePool.h>
#include <Settings/Settings.h>

#include <QEventLoop>
#include <QTemporaryDir>
#include <QtTest>

#include <stdexcept>

using Media::File;
using Media::FilePool;
using Product = FileOpenHandler::AnalyzedProduct;

namespace {

// The handler as an import page would use it: dialogs for failed files and HDR.
class TestHandler : public FileOpenHandler
{
public:
    std::vector<Product> products;
    bool offerDeletion = false;
    bool showDialogs = true;
    bool answer = false;
    std::function<void()> duringPass;
    bool throwInPass = false;

    using FileOpenHandler::addedFiles;
    using FileOpenHandler::processedFilesCount;
    using FileOpenHandler::processing;
    using FileOpenHandler::showHDRFilesAddedDialog;
    using FileOpenHandler::totalFilesCount;

private:
    bool allowToDeleteClips(const AnalyzedProduct&) override { return offerDeletion; }
    void postProcessing(AnalyzedProduct product) override
    {
        products.push_back(product);
        if (duringPass)
            duringPass();
        if (throwInPass)
            throw std::runtime_error("pass failed");
        if (!showDialogs)
            return;
        if (!product.failedFiles.empty() || !product.openedUnsupportedCodecFiles.empty())
            answer = showFailedFilesDialog(product);
        if (product.hasHDR)
            showHDRFilesAddedDialog();
    }
};

Media::OpenResult opened(QStringList unsupported = {}, QString transfer = QString())
{
    Media::OpenResult result;
    result.state = File::State::Opened;
    result.unsupportedCodecs = unsupported;
    Media::VideoTrack track;
    track.codecId = QStringLiteral("h264");
    track.transfer = transfer;
    result.video.push_back(track);
    return result;
}

Media::OpenResult failed(int code, QStringList unsupported = {})
{
    Media::OpenResult result;
    result.state = File::State::Failed;
    result.unsupportedCodecs = unsupported;
    result.errors.emplace_back(Tavrin::Proc::TranscodingErrors(code), "test", "test", 1, "failure", "file");
    return result;
}

QString codecLinkMessage()
{
    return QStringLiteral("Some videos used in this project could not be opened. They may be corrupted, or their "
                          "codecs <a href=\"%1\">are not supported.</a>")
        .arg(MediaTestServices::formatsUrl());
}

} // namespace

class tst_FileOpenHandler : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void passRunsAfterLastReportOnLaterTurn();
    void removalBeforeReportCompletesBatch();
    void removalKeepsTheOthersInOrder();
    void removalInsidePassAndReusedAddress();
    void manyCallbacksOnePass();
    void analysisSorts();
    void failedFilesMessage_data();
    void failedFilesMessage();
    void h265TakesPrecedence();
    void hdrNoticeOnceAndItsSetting();
    void errorRecordSurvivesBatches();
    void codecStatisticsPerFile();
    void passThatThrowsStillEndsBatch();
    void nestedPassIsIgnored();
    void realMedia();

private:
    QTemporaryDir m_config;
    std::shared_ptr<ScriptedDialogStrategy> m_dialogs;
};

void tst_FileOpenHandler::initTestCase()
{
    MediaTestServices::install();
}

void tst_FileOpenHandler::init()
{
    Settings::setFileName(m_config.filePath(QStringLiteral("klipvane-%1.ini").arg(QTest::currentTestFunction())));
    m_dialogs = std::make_shared<ScriptedDialogStrategy>();
    Dialog::initialize(m_dialogs);
}

void tst_FileOpenHandler::cleanup()
{
    Dialog::initialize({});
    m_dialogs.reset();
}

void tst_FileOpenHandler::passRunsAfterLastReportOnLaterTurn()
{
    FilePool pool;
    TestHandler handler;
    pool.addView(&handler);
    const auto files = pool.addFiles({"a.mp4", "b.mp4", "c.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(files[0], opened());
    pool.finishOpening(files[1], opened());
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    QVERIFY(handler.products.empty());
    QCOMPARE(handler.processedFilesCount(), 2);
    QCOMPARE(handler.totalFilesCount(), 3);

    pool.finishOpening(files[2], failed(36));
    QVERIFY(handler.products.empty()); // not inside the callback
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(int(handler.products.size()), 1);
    QCOMPARE(handler.products[0].failedFiles, std::set<const File*>{files[2]});
    QCOMPARE(handler.totalFilesCount(), 0);
    QCOMPARE(handler.processedFilesCount(), 0);
}

void tst_FileOpenHandler::removalBeforeReportCompletesBatch()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    const auto files = pool.addFiles({"a.mp4", "b.mp4", "c.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(files[0], opened());
    pool.removeFile(files[2]);
    QCOMPARE(handler.totalFilesCount(), 2);
    pool.finishOpening(files[1], failed(36));
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(handler.products[0].failedFiles, std::set<const File*>{files[1]});

    // A reported file removed while the others still open is not counted either.
    const auto next = pool.addFiles({"d.mp4", "e.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(next[0], failed(36));
    pool.removeFile(next[0]);
    QCOMPARE(handler.processedFilesCount(), 0);
    pool.finishOpening(next[1], opened());
    QVERIFY(QTest::qWaitFor([&] { return handler.products.size() == 2; }));
    QVERIFY(handler.products[1].failedFiles.empty());
}

void tst_FileOpenHandler::removalKeepsTheOthersInOrder()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    const auto files = pool.addFiles({"a.mp4", "b.mp4", "c.mp4", "d.mp4", "e.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(files[1], failed(36));
    pool.removeFile(files[1]);
    pool.removeFile(files[3]);
    pool.removeFile(files[3]); // a second removal of the same file changes nothing
    QCOMPARE(handler.totalFilesCount(), 3);
    QCOMPARE(handler.processedFilesCount(), 0);
    QCOMPARE(handler.addedFiles(), (QList<const File*>{files[0], files[2], files[4]}));

    QList<const File*> seenInPass;
    handler.duringPass = [&] { seenInPass = handler.addedFiles(); };
    pool.finishOpening(files[4], opened());
    pool.finishOpening(files[0], failed(36));
    pool.finishOpening(files[2], opened());
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(seenInPass, (QList<const File*>{files[0], files[2], files[4]}));
    QCOMPARE(handler.products[0].failedFiles, std::set<const File*>{files[0]});
}

// A derived class removes the failed files it was just told about; the files added next
// (which may reuse the memory of the removed ones) form a batch of their own.
void tst_FileOpenHandler::removalInsidePassAndReusedAddress()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    QList<const File*> leftInPass;
    handler.duringPass = [&] {
        for (const File* file : handler.products.back().failedFiles)
            pool.removeFile(file);
        leftInPass = handler.addedFiles();
    };
    const auto files = pool.addFiles({"a.mp4", "b.mp4", "c.mp4", "d.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(files[0], failed(36));
    pool.finishOpening(files[1], opened());
    pool.finishOpening(files[2], failed(11, {QStringLiteral("h265")}));
    pool.finishOpening(files[3], opened());
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(leftInPass, (QList<const File*>{files[1], files[3]}));
    QCOMPARE(pool.files(), (QList<const File*>{files[1], files[3]}));
    QCOMPARE(handler.totalFilesCount(), 0);

    // Mid-batch: a file removed before it reports, then a new one, quite possibly at the
    // removed file's address once the pool has deleted it.
    handler.duringPass = nullptr;
    const File* gone = pool.addFile(QStringLiteral("e.mp4"), FilePool::Opening::Manual);
    const File* kept = pool.addFile(QStringLiteral("f.mp4"), FilePool::Opening::Manual);
    pool.removeFile(gone);
    QCoreApplication::processEvents();
    const File* added = pool.addFile(QStringLiteral("g.mp4"), FilePool::Opening::Manual);
    if (added != gone)
        qInfo("the new file did not reuse the removed one's address");
    QCOMPARE(handler.addedFiles(), (QList<const File*>{kept, added}));
    QCOMPARE(handler.totalFilesCount(), 2);
    pool.finishOpening(kept, opened());
    pool.finishOpening(added, failed(36));
    QVERIFY(QTest::qWaitFor([&] { return handler.products.size() == 2; }));
    QCOMPARE(handler.products[1].failedFiles, std::set<const File*>{added});
    QVERIFY(handler.products[1].openedUnsupportedCodecFiles.empty());
}

void tst_FileOpenHandler::manyCallbacksOnePass()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    QStringList paths;
    for (int i = 0; i < 200; ++i)
        paths << QStringLiteral("clip%1.mp4").arg(i);
    const auto files = pool.addFiles(paths, FilePool::Opening::Manual);
    for (const File* file : files)
        pool.finishOpening(file, opened());
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCoreApplication::processEvents();
    QCOMPARE(int(handler.products.size()), 1);
}

void tst_FileOpenHandler::analysisSorts()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    const auto files = pool.addFiles({"ok.mp4", "dts.mkv", "bad.mp4", "h265.mp4", "hlg.mp4"}, FilePool::Opening::Manual);
    pool.finishOpening(files[0], opened());
    pool.finishOpening(files[1], opened({QStringLiteral("dts")}));
    pool.finishOpening(files[2], failed(36));
    pool.finishOpening(files[3], failed(11, {QStringLiteral("h265")}));
    pool.finishOpening(files[4], opened({}, QStringLiteral("arib-std-b67")));
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    const Product& product = handler.products[0];
    QCOMPARE(product.failedFiles, (std::set<const File*>{files[2], files[3]}));
    QCOMPARE(product.failedUnsupportedCodecFiles, std::set<const File*>{files[3]});
    QCOMPARE(product.openedUnsupportedCodecFiles, std::set<const File*>{files[1]});
    QVERIFY(product.hasHDR);
}

void tst_FileOpenHandler::failedFilesMessage_data()
{
    QTest::addColumn<QStringList>("outcomes"); // "fail", "fail:codec", "open:codec", "open"
    QTest::addColumn<bool>("offerDeletion");
    QTest::addColumn<bool>("answer");
    QTest::addColumn<bool>("codecMessage");

    QTest::newRow("all failures have codecs") << QStringList{"fail:codec", "fail:codec"} << false << false << true;
    QTest::newRow("one failure has another cause") << QStringList{"fail:codec", "fail"} << true << true << false;
    QTest::newRow("other cause, opened file with codec") << QStringList{"fail", "open:codec"} << false << false << true;
    QTest::newRow("only an opened file with codec") << QStringList{"open:codec", "open"} << true << false << true;
    QTest::newRow("plain failure") << QStringList{"fail"} << true << true << false;
}

void tst_FileOpenHandler::failedFilesMessage()
{
    QFETCH(QStringList, outcomes);
    QFETCH(bool, offerDeletion);
    QFETCH(bool, answer);
    QFETCH(bool, codecMessage);

    std::vector<std::pair<bool, bool>> statistics;
    PubSub::Subscription<Statistics::DeleteFailedFilesEventNotification> subscription(
        Statistics::globalObject(), [&](const Statistics::DeleteFailedFilesEventNotification& n) {
            statistics.emplace_back(n.deletionOffered, n.deletionChosen);
        });
    m_dialogs->answer(QStringLiteral("showHasFailedFiles"), answer);

    FilePool pool;
    TestHandler handler;
    handler.offerDeletion = offerDeletion;
    pool.addView(&handler);
    for (int i = 0; i < outcomes.size(); ++i) {
        const File* file = pool.addFile(QStringLiteral("f%1.mkv").arg(i), FilePool::Opening::Manual);
        const QString& outcome = outcomes[i];
        const QStringList codecs = outcome.endsWith(QLatin1String(":codec")) ? QStringList{QStringLiteral("dts")} : QStringList();
        pool.finishOpening(file, outcome.startsWith(QLatin1String("fail")) ? failed(11, codecs) : opened(codecs));
    }
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasFailedFiles")), 1);
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasH265FailedFiles")), 0);
    const QVariantList arguments = m_dialogs->lastArguments(QStringLiteral("showHasFailedFiles"));
    QCOMPARE(arguments.at(0).toBool(), offerDeletion);
    QCOMPARE(arguments.at(1).toString(), codecMessage ? codecLinkMessage() : QString());
    QCOMPARE(handler.answer, answer);
    QCOMPARE(statistics, (std::vector<std::pair<bool, bool>>{{offerDeletion, answer}}));
}

void tst_FileOpenHandler::h265TakesPrecedence()
{
    std::vector<std::pair<bool, bool>> statistics;
    PubSub::Subscription<Statistics::DeleteFailedFilesEventNotification> subscription(
        Statistics::globalObject(), [&](const Statistics::DeleteFailedFilesEventNotification& n) {
            statistics.emplace_back(n.deletionOffered, n.deletionChosen);
        });
    m_dialogs->answer(QStringLiteral("showHasH265FailedFiles"), true);

    FilePool pool;
    TestHandler handler;
    handler.offerDeletion = true;
    pool.addView(&handler);
    const File* h265 = pool.addFile(QStringLiteral("/m/phone.mov"), FilePool::Opening::Manual);
    const File* broken = pool.addFile(QStringLiteral("/m/broken.mp4"), FilePool::Opening::Manual);
    const File* upper = pool.addFile(QStringLiteral("/m/upper.mp4"), FilePool::Opening::Manual);
    pool.finishOpening(h265, opened({QStringLiteral("h265")}));
    pool.finishOpening(broken, failed(36));
    pool.finishOpening(upper, failed(11, {QStringLiteral("H265")})); // not the identifier: case matters
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasFailedFiles")), 0);
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasH265FailedFiles")), 1);
    QCOMPARE(m_dialogs->lastArguments(QStringLiteral("showHasH265FailedFiles")).at(0).toStringList(),
             QStringList{QStringLiteral("/m/phone.mov")});
    QVERIFY(handler.answer);
    QCOMPARE(statistics, (std::vector<std::pair<bool, bool>>{{true, true}}));
}

void tst_FileOpenHandler::hdrNoticeOnceAndItsSetting()
{
    const QString key = QStringLiteral("HDRFilesInfoDontShow");
    auto addHdrBatch = [](FilePool& pool, TestHandler& handler) {
        const auto before = handler.products.size();
        const File* file = pool.addFile(QStringLiteral("hdr.mp4"), FilePool::Opening::Manual);
        pool.finishOpening(file, opened({}, QStringLiteral("smpte2084")));
        return QTest::qWaitFor([&] { return handler.products.size() > before; });
    };

    {
        // Acknowledged without the check box: shown once in this handler's life.
        FilePool pool;
        TestHandler handler;
        pool.addView(&handler);
        QVERIFY(addHdrBatch(pool, handler));
        QVERIFY(addHdrBatch(pool, handler));
        QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 1);
        const QVariantList arguments = m_dialogs->lastArguments(QStringLiteral("showInfo"));
        QCOMPARE(arguments.at(0).toString(), QStringLiteral("Automatic color conversion"));
        QCOMPARE(arguments.at(1).toString(),
                 QStringLiteral("You've added an HDR video. We've converted it to SDR so the colors in the video are "
                                "correctly displayed within the program. The changes won't affect anything "
                                "you\u2019re working on in Tavrin Klipvane"));
        QVERIFY(!arguments.at(2).toString().isEmpty());
        QVERIFY(!arguments.at(3).toString().isEmpty());
        QVERIFY(!Settings::dontShowDialog(key));
    }
    {
        // A new handler shows it again; ticking the box writes the setting.
        m_dialogs->answer(QStringLiteral("showInfo"), 0x400 | 1);
        FilePool pool;
        TestHandler handler;
        pool.addView(&handler);
        QVERIFY(addHdrBatch(pool, handler));
        QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 2);
        QVERIFY(Settings::dontShowDialog(key));
    }
    {
        FilePool pool;
        TestHandler handler;
        pool.addView(&handler);
        QVERIFY(addHdrBatch(pool, handler));
        QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 2);
    }
}

void tst_FileOpenHandler::errorRecordSurvivesBatches()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    pool.addView(&handler);
    const File* first = pool.addFile(QStringLiteral("a.mp4"), FilePool::Opening::Manual);
    Media::OpenResult twoErrors = failed(36);
    twoErrors.errors.emplace_back(Tavrin::Proc::OutOfMemory, "test", "test", 2, "again", "a.mp4");
    pool.finishOpening(first, twoErrors);
    QVERIFY(QTest::qWaitFor([&] { return handler.products.size() == 1; }));
    pool.removeFile(first);

    const File* second = pool.addFile(QStringLiteral("b.mp4"), FilePool::Opening::Manual);
    pool.finishOpening(second, failed(36));
    QVERIFY(QTest::qWaitFor([&] { return handler.products.size() == 2; }));

    const auto& record = handler.errorRecord();
    QCOMPARE(int(record.size()), 3);
    QCOMPARE(int(record.count(36)), 2);
    QCOMPARE(int(record.count(34)), 1);
    QCOMPARE(record.find(34)->second, first);

    // Another handler hears only the files it watches.
    TestHandler other;
    QVERIFY(other.errorRecord().empty());
}

void tst_FileOpenHandler::codecStatisticsPerFile()
{
    std::vector<std::pair<QString, QStringList>> messages;
    PubSub::Subscription<Statistics::CodecsFailed> subscription(
        Statistics::globalObject(),
        [&](const Statistics::CodecsFailed& m) { messages.emplace_back(m.extension, m.codecs); });
    FilePool pool;
    TestHandler handler;
    pool.addView(&handler);
    const File* a = pool.addFile(QStringLiteral("/m/A.MKV"), FilePool::Opening::Manual);
    const File* b = pool.addFile(QStringLiteral("/m/b.mov"), FilePool::Opening::Manual);
    const File* c = pool.addFile(QStringLiteral("/m/c.mp4"), FilePool::Opening::Manual);
    pool.finishOpening(a, opened({QStringLiteral("dts"), QStringLiteral("cavs")}));
    pool.finishOpening(b, failed(11, {QStringLiteral("h265")}));
    pool.finishOpening(c, failed(36));
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
    QCOMPARE(int(messages.size()), 2);
    std::sort(messages.begin(), messages.end());
    QCOMPARE(messages[0].first, QStringLiteral("mkv"));
    QCOMPARE(messages[0].second, (QStringList{QStringLiteral("DTS"), QStringLiteral("cavs")}));
    QCOMPARE(messages[1].first, QStringLiteral("mov"));
    QCOMPARE(messages[1].second, QStringList{QStringLiteral("H.265/HEVC")});
}

void tst_FileOpenHandler::passThatThrowsStillEndsBatch()
{
    FilePool pool;
    TestHandler handler;
    handler.showDialogs = false;
    handler.throwInPass = true;
    pool.addView(&handler);
    const File* file = pool.addFile(QStringLiteral("a.mp4"), FilePool::Opening::Manual);
    // Reported while no event loop turns, so the pass is run here, where the throw can be caught.
    pool.finishOpening(file, opened());
    QVERIFY_EXCEPTION_THROWN(handler.processing(), std::runtime_error);
    QCOMPARE(handler.totalFilesCount(), 0);
    QCOMPARE(handler.processedFilesCount(), 0);
    QCOMPARE(int(handler.products.size()), 1);
}

void tst_FileOpenHandler::nestedPassIsIgnored()
{
    // A dialog of one handler spins a nested event loop; another handler's pass must not
    // run inside it.
    FilePool pool;
    TestHandler outer;
    TestHandler inner;
    outer.showDialogs = inner.showDialogs = false;
    pool.addView(&outer);
    const File* first = pool.addFile(QStringLiteral("a.mp4"), FilePool::Opening::Manual);
    bool innerRanInside = false;
    outer.duringPass = [&] {
        pool.addView(&inner);
        const File* second = pool.addFile(QStringLiteral("b.mp4"), FilePool::Opening::Manual);
        pool.finishOpening(second, opened());
        QEventLoop loop;
        QTimer::singleShot(50, &loop, &QEventLoop::quit);
        loop.exec();
        innerRanInside = !inner.products.empty();
        outer.duringPass = nullptr;
    };
    pool.finishOpening(first, opened());
    QVERIFY(QTest::qWaitFor([&] { return !outer.products.empty() && !outer.duringPass; }));
    QVERIFY(!innerRanInside);
    QVERIFY(inner.products.empty());
}

void tst_FileOpenHandler::realMedia()
{
    if (TestMedia::folder().isEmpty())
        QSKIP("ffmpeg is not installed: no test media");
    FilePool pool;
    TestHandler handler;
    pool.addView(&handler);
    const File* ok = pool.addFile(TestMedia::path("h264_1080p.mp4"));
    const File* h265 = pool.addFile(TestMedia::path("h265.mp4"));
    const File* h265Audio = pool.addFile(TestMedia::path("h265_aac.mp4"));
    const File* hdr = pool.addFile(TestMedia::path("hdr_h264.mp4"));
    const File* text = pool.addFile(TestMedia::path("text.mp4"));
    const File* truncated = pool.addFile(TestMedia::path("truncated.mp4"));
    QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }, 30000));
    const Product& product = handler.products[0];
    QCOMPARE(product.failedFiles, (std::set<const File*>{h265, text, truncated}));
    QCOMPARE(product.failedUnsupportedCodecFiles, std::set<const File*>{h265});
    QCOMPARE(product.openedUnsupportedCodecFiles, std::set<const File*>{h265Audio});
    QVERIFY(product.hasHDR);
    QVERIFY(ok->isOpened());
    QVERIFY(hdr->isOpened());
    QCOMPARE(m_dialogs->count(QStringLiteral("showHasH265FailedFiles")), 1);
    QCOMPARE(m_dialogs->count(QStringLiteral("showInfo")), 1);
    QCOMPARE(int(handler.errorRecord().count(36)), 2);
    QCOMPARE(int(handler.errorRecord().count(11)), 1);
}

QTEST_GUILESS_MAIN(tst_FileOpenHandler)
#include "tst_fileopenhandler.moc"
