// Media intake: how the opening of a batch of files ends, what the user is told about the
// files that failed, the reference host's media bin and the probe tool on generated media.
#include "TestSandbox.h"
#include "FakeCustomization.h"
#include "ScriptedDialogStrategy.h"
#include "TestMedia.h"

#include "MediaBin.h"

#include <Customization.h>
#include <ErrorDescription.h>
#include <FileOpenHandler.h>
#include <MediaStatistics.h>

#include <App/ILinksManager.h>
#include <Media/FilePool.h>
#include <Settings/Settings.h>

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListWidget>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtTest>

#include <stdexcept>

using Media::File;
using Media::FilePool;
using Product = FileOpenHandler::AnalyzedProduct;

namespace {

const QString formatsUrl = QStringLiteral("https://support.klipvane.test/formats");

class Links : public Tavrin::App::ILinksManager
{
public:
    QString url(Tavrin::URLKeys key) const override
    {
        return key == Tavrin::URLKeys::HELP_URL_supported_formats ? formatsUrl : QString();
    }
    QString generateUrl(const QString& base, const Tavrin::App::UrlParameters&) const override { return base; }
    bool openUrl(const QString&) override { return false; }
    bool openUrl(Tavrin::URLKeys) override { return false; }
    void setLinksOpener(std::shared_ptr<Tavrin::App::ILinksOpener>) override {}
};

// Marks every text with the context it was looked up in, so a test sees both.
class ContextMarkingTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        return QLatin1String(context) + QLatin1Char('|') + QString::fromUtf8(sourceText);
    }
    bool isEmpty() const override { return false; }
};

// "ok", "hdr" (opens, HLG) or "fail" (corrupt input), each optionally with ":codec" per
// unsupported codec ("fail:h265"), then more error codes ("fail 34").
Media::OpenResult outcome(const QString& spec)
{
    QStringList codes = spec.split(' ');
    const QStringList parts = codes.takeFirst().split(':');
    Media::OpenResult result;
    result.unsupportedCodecs = parts.mid(1);
    result.state = parts[0] == "fail" ? File::State::Failed : File::State::Opened;
    if (result.state == File::State::Failed)
        codes.prepend(QString::number(parts.size() > 1 ? Tavrin::Proc::UnsupportedCodec
                                                       : Tavrin::Proc::InputCorruptedOrMissing));
    for (const QString& code : codes)
        result.errors.emplace_back(Tavrin::Proc::TranscodingErrors(code.toInt()), "test", "test", 1, "failure", "file");
    if (result.state == File::State::Opened)
        result.video.push_back({});
    if (parts[0] == "hdr")
        result.video.back().transfer = "arib-std-b67";
    return result;
}

QString paths(const QList<const File*>& files, bool sorted = false)
{
    QStringList out;
    for (const File* file : files)
        out << file->filePath();
    if (sorted)
        out.sort();
    return out.join(' ');
}

// The handler as an import page uses it: the failed-files dialog, then the HDR notice.
class TestHandler : public FileOpenHandler
{
public:
    std::vector<Product> products;
    QStringList described; // of each pass: "<failed files>|<files added, after duringPass>"
    bool showDialogs = false, offerDeletion = false;
    std::function<void()> duringPass;

    using FileOpenHandler::processedFilesCount;
    using FileOpenHandler::processing;
    using FileOpenHandler::totalFilesCount;

private:
    bool allowToDeleteClips(const AnalyzedProduct&) override { return offerDeletion; }
    void postProcessing(AnalyzedProduct product) override
    {
        products.push_back(product);
        const QString failed = paths({product.failedFiles.begin(), product.failedFiles.end()}, true);
        if (duringPass)
            duringPass(); // may remove the product's files
        described << failed + '|' + paths(addedFiles());
        if (showDialogs && (!product.failedFiles.empty() || !product.openedUnsupportedCodecFiles.empty()))
            showFailedFilesDialog(product);
        if (showDialogs && product.hasHDR)
            showHDRFilesAddedDialog();
    }
};

void addReported(FilePool& pool, const QString& path, const QString& spec)
{
    pool.finishOpening(pool.addFile(path, FilePool::Opening::Manual), outcome(spec));
}

// The value at `pointer` ("files/0/videoTracks/0/width") as text: an array's items joined
// by commas, or with a trailing "#" its size.
QString at(QJsonValue value, const QString& pointer)
{
    for (const QString& key : pointer.split('/'))
        value = value.isArray() ? value.toArray().at(key.toInt()) : value.toObject().value(QString(key).remove('#'));
    if (pointer.endsWith('#'))
        return QString::number(value.toArray().size());
    return value.isArray() ? value.toVariant().toStringList().join(',') : value.toVariant().toString();
}
} // namespace

class tst_MediaIntake : public QObject
{
    Q_OBJECT

    QTemporaryDir m_config;
    std::shared_ptr<ScriptedDialogStrategy> m_dialogs;

private slots:
    void initTestCase()
    {
        Tavrin::App::ServiceRegistry::instance().set<Tavrin::App::ILinksManager>(std::make_shared<Links>());
        FakeCustomization::install();
    }

    void init()
    {
        Settings::setFileName(m_config.filePath(QStringLiteral("klipvane-%1.ini").arg(QTest::currentTestFunction())));
        m_dialogs = std::make_shared<ScriptedDialogStrategy>();
        Dialog::initialize(m_dialogs);
    }

    void cleanup() { Dialog::initialize({}); }

    void errorDescription_data()
    {
        QTest::addColumn<int>("context");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("expected"); // "{support}": the request to contact the support centre
        const QString unknown = "Common|An unknown error has occurred";
        const auto row = [](int context, int code, const QString& expected) {
            const char* names[] = {"Export", "Capture", "Analyze", "Stabilization", "FreezeFrame", "none"};
            QTest::addRow("%s %d", names[qBound(0, context, 5)], code) << context << code << expected;
        };
        // Export: some texts are catalogued under the generic object context; unknown codes say nothing.
        row(Error::Export, 6, "QObject|Conversion error. Invalid preset settings: unsupported codec for specified "
                              "format.");
        row(Error::Export, 22, "QObject|No more space left on device");
        row(Error::Export, 36, "Export|The input file is corrupted or missing from the specified location.");
        row(Error::Export, 8, unknown);
        row(Error::Export, 7, QString());
        // Capture: 35 is not out of memory here, and its fallback keeps the catalogued spelling.
        row(Error::Capture, 22, "Capture|No more space left on device");
        row(Error::Capture, 34, "Capture|Out of memory");
        row(Error::Capture, 35, "Capture|An unknown error has occured");
        row(Error::Analyze, 35, "Analyze|Out of memory");
        row(Error::Analyze, 8, "Analyze|An unknown error has occurred. {support}");
        row(Error::Stabilization, 43, "Stabilization|Path to stabilized files could not be used. Please select a "
                                      "different directory in Preferences.");
        row(Error::FreezeFrame, 26, "FreezeFrame|An unknown error has occurred. {support}");
        row(Error::FreezeFrame, 11, unknown);
        row(5, 36, unknown); // none of ours
    }

    void errorDescription()
    {
        QFETCH(int, context);
        QFETCH(int, code);
        QFETCH(QString, expected);
        ContextMarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        expected.replace("{support}", QString("Common|Please contact us at %1 to get assistance.")
                                          .arg(Customization::supportCenterHRef()));
        const Tavrin::Proc::ProcessingError error(Tavrin::Proc::TranscodingErrors(code), "test", "test", 1, "test", "");
        QCOMPARE(Error::describeTranscodingError(error, Error::Context(context)), expected);
    }

    void batch_data()
    {
        // Steps: "add <names>", "<name> <outcome>", "remove <name>", "bulk <n>" (adds and opens n files),
        // "removeFailedInPass", "nestedLoopInPass" (another handler's batch ends while the pass spins an event
        // loop, as a dialog does), "throwingPass" (runs a throwing pass now); checks: "passes <n>", "inner <n>"
        // (passes of that other handler), "counts <processed>/<total>", "pass <described>", "record <codes>".
        QTest::addColumn<QStringList>("steps");
        QTest::newRow("pass on a later turn after the last report")
            << QStringList{"add a b c", "a ok", "b ok", "passes 0", "counts 2/3", "c fail", "passes 1",
                           "pass c|a b c"};
        QTest::newRow("removal before the report completes the batch, in order")
            << QStringList{"add a b c d e", "b fail", "remove b", "remove d", "remove d", "counts 0/3", "e ok",
                           "a fail", "c ok", "passes 1", "pass a|a c e", "add f g", "f ok", "remove g", "passes 2",
                           "pass |f"};
        // The files added next may reuse the memory of the removed ones.
        QTest::newRow("files removed inside the pass")
            << QStringList{"removeFailedInPass", "add a b c d", "a fail", "b ok", "c fail:h265", "d ok", "passes 1",
                           "pass a c|b d", "add e f", "remove e", "passes 1", "add g", "counts 0/2", "f ok", "g fail",
                           "passes 2", "pass g|f"};
        QTest::newRow("one pass for many reports") << QStringList{"bulk 200", "passes 1"};
        QTest::newRow("error record outlives batches")
            << QStringList{"add a", "a fail 34", "passes 1", "remove a", "add b", "b fail", "passes 2",
                           "record 34 36 36"};
        QTest::newRow("no pass inside another's")
            << QStringList{"nestedLoopInPass", "add a", "a ok", "passes 1", "inner 0"};
        QTest::newRow("a pass that throws still ends the batch")
            << QStringList{"add a", "a ok", "throwingPass", "counts 0/0", "passes 1"};
    }

    void batch()
    {
        QFETCH(QStringList, steps);
        FilePool pool;
        TestHandler handler, inner;
        pool.addView(&handler);
        std::map<QString, const File*> files;
        bool removeFailed = false, nestedLoop = false, throwing = false;
        handler.duringPass = [&] {
            const std::set<const File*> noFiles;
            for (const File* file : removeFailed ? handler.products.back().failedFiles : noFiles)
                pool.removeFile(file);
            if (std::exchange(nestedLoop, false)) {
                pool.addView(&inner);
                addReported(pool, "b", "ok");
                QEventLoop loop;
                QTimer::singleShot(50, &loop, &QEventLoop::quit);
                loop.exec();
            }
            if (throwing)
                throw std::runtime_error("pass failed");
        };
        for (const QString& step : steps) {
            const QString command = step.section(' ', 0, 0), argument = step.section(' ', 1);
            const size_t passesBefore = handler.products.size();
            if (command == "add") {
                for (const QString& name : argument.split(' '))
                    files[name] = pool.addFile(name, FilePool::Opening::Manual);
            } else if (command == "bulk") {
                for (int i = 0; i < argument.toInt(); ++i)
                    addReported(pool, QString::number(i), "ok");
            } else if (command == "remove") {
                pool.removeFile(files[argument]);
            } else if (command == "removeFailedInPass" || command == "nestedLoopInPass") {
                (command == "removeFailedInPass" ? removeFailed : nestedLoop) = true;
            } else if (command == "throwingPass") {
                throwing = true;
                QVERIFY_EXCEPTION_THROWN(handler.processing(), std::runtime_error);
            } else if (command == "passes") {
                QVERIFY(QTest::qWaitFor([&] { return int(handler.products.size()) >= argument.toInt(); }));
                QCoreApplication::processEvents();
                QCOMPARE(int(handler.products.size()), argument.toInt());
            } else if (command == "counts") {
                const int processed = handler.processedFilesCount(), total = handler.totalFilesCount();
                QCOMPARE(QString("%1/%2").arg(processed).arg(total), argument);
            } else if (command == "pass") {
                QCOMPARE(handler.described.last(), argument);
            } else if (command == "inner") {
                QCOMPARE(int(inner.products.size()), argument.toInt());
            } else if (command == "record") {
                QStringList codes;
                for (const auto& entry : handler.errorRecord())
                    codes << QString::number(entry.first);
                QCOMPARE(codes.join(' '), argument);
            } else {
                QVERIFY2(files.count(command), qPrintable(step));
                pool.finishOpening(files[command], outcome(argument));
            }
            if (command != "passes" && command != "throwingPass") // never inside a media-model callback
                QCOMPARE(handler.products.size(), passesBefore);
        }
        QCOMPARE(handler.processedFilesCount() + handler.totalFilesCount(), 0);
    }

    void dialogs_data()
    {
        QTest::addColumn<QStringList>("outcomes");
        QTest::addColumn<bool>("offerDeletion");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<QString>("dialog"); // "codec message", "plain" (no text of its own) or "H.265"
        QTest::addColumn<QStringList>("codecStatistics");
        QTest::addColumn<QStringList>("named"); // the failed files the generic dialog names, with their reasons
        const QStringList dts{"mkv: DTS"};
        const QString codec = "The chosen codec is not supported.";
        const QString corrupt = "The input file is corrupted or missing from the specified location.";
        QTest::newRow("all failures have codecs")
            << QStringList{"fail:dts", "fail:dts"} << false << false << "codec message" << dts + dts
            << QStringList{"F0.MKV: " + codec, "F1.MKV: " + codec};
        QTest::newRow("one failure has another cause")
            << QStringList{"fail:dts", "fail"} << true << true << "plain" << dts
            << QStringList{"F0.MKV: " + codec, "F1.MKV: " + corrupt};
        QTest::newRow("another cause, an opened file with codecs")
            << QStringList{"fail", "ok:dts:cavs"} << false << false << "codec message" << QStringList{"mkv: DTS,cavs"}
            << QStringList{"F0.MKV: " + corrupt};
        QTest::newRow("only an opened file with codec")
            << QStringList{"ok:dts", "ok"} << true << false << "codec message" << dts << QStringList{};
        // Only the exact identifier counts as H.265.
        QTest::newRow("H.265 first") << QStringList{"ok:h265", "fail", "fail:H265"} << true << true << "H.265"
                                     << QStringList{"mkv: H.265/HEVC", "mkv: H265"} << QStringList{};
    }

    void dialogs()
    {
        QFETCH(QStringList, outcomes);
        QFETCH(bool, offerDeletion);
        QFETCH(bool, answer);
        QFETCH(QString, dialog);
        QFETCH(QStringList, codecStatistics);
        QFETCH(QStringList, named);
        QStringList statistics;
        PubSub::Subscription<Statistics::DeleteFailedFilesEventNotification> deletion(Statistics::globalObject(),
            [&](const auto& n) { statistics << QString("delete %1 %2").arg(n.deletionOffered).arg(n.deletionChosen); });
        PubSub::Subscription<Statistics::CodecsFailed> codecs(Statistics::globalObject(),
            [&](const auto& m) { statistics << m.extension + ": " + m.codecs.join(','); });
        const char* shown = dialog == "H.265" ? "showHasH265FailedFiles" : "showHasFailedFiles";
        m_dialogs->answer(shown, answer);

        FilePool pool;
        TestHandler handler;
        handler.showDialogs = true;
        handler.offerDeletion = offerDeletion;
        pool.addView(&handler);
        for (int i = 0; i < outcomes.size(); ++i)
            addReported(pool, QString("/m/F%1.MKV").arg(i), outcomes[i]);
        QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
        QCOMPARE(m_dialogs->count("showHasFailedFiles") + m_dialogs->count("showHasH265FailedFiles"), 1);
        const QString codecText = QString("Some videos used in this project could not be opened. They may be "
                                          "corrupted, or their codecs <a href=\"%1\">are not supported.</a>")
                                      .arg(formatsUrl);
        QString message = dialog == "plain" ? "Some of the files can't be opened." : codecText;
        if (!named.isEmpty())
            message += "<br><br>" + named.replaceInStrings(QRegularExpression("^(.*): "), "<b>\\1</b>: ").join("<br>");
        const QVariantList shownWith = dialog == "H.265" ? QVariantList{QStringList{"/m/F0.MKV"}}
                                                         : QVariantList{offerDeletion, message};
        QCOMPARE(m_dialogs->lastArguments(shown), shownWith);
        codecStatistics << QString("delete %1 %2").arg(offerDeletion).arg(answer);
        codecStatistics.sort();
        statistics.sort();
        QCOMPARE(statistics, codecStatistics);
    }

    // Each failed path is named once, sorted and escaped; a long batch is cut short.
    void failedFilesNamed()
    {
        FilePool pool;
        TestHandler handler;
        handler.showDialogs = true;
        pool.addView(&handler);
        addReported(pool, "/m/b<1>.mp4", "fail");
        addReported(pool, "/m/b<1>.mp4", "fail");
        for (int i = 13; i >= 0; --i)
            addReported(pool, QString("/m/a%1.mp4").arg(i, 2, 10, QChar('0')), "fail");
        QVERIFY(QTest::qWaitFor([&] { return !handler.products.empty(); }));
        const QStringList lines = m_dialogs->lastArguments("showHasFailedFiles").at(1).toString().split("<br>");
        QCOMPARE(lines.size(), 2 + 12 + 1);
        QCOMPARE(lines.at(0), QString("Some of the files can't be opened."));
        QCOMPARE(lines.at(2), QString("<b>a00.mp4</b>: The input file is corrupted or missing from the specified location."));
        QVERIFY(lines.at(13).startsWith("<b>a11.mp4</b>"));
        QCOMPARE(lines.last(), QString("and 3 more file(s)"));
    }

    void failedFileDescription_data()
    {
        QTest::addColumn<int>("problem");
        QTest::addColumn<bool>("failed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("corrupt") << int(File::PathProblem::None) << true
                                 << "Analyze|The input file is corrupted or missing from the specified location.";
        QTest::newRow("name not UTF-8") << int(File::PathProblem::UnreadableName) << true
                                        << "Analyze|The file name cannot be read: it is not valid UTF-8.";
        QTest::newRow("link loop") << int(File::PathProblem::SymlinkLoop) << true
                                   << "Analyze|The file is a symbolic link that leads back to itself.";
        QTest::newRow("opened") << int(File::PathProblem::None) << false << "";
    }

    void failedFileDescription()
    {
        QFETCH(int, problem);
        QFETCH(bool, failed);
        ContextMarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        File file("/m/a.mp4");
        outcome(failed ? "fail" : "ok").applyTo(file);
        file.setPathProblem(File::PathProblem(problem));
        QTEST(Error::describeFailedFile(file), "expected");
    }

    void hdrNoticeOnceAndItsSetting()
    {
        // The notices shown so far, after `batches` batches with an HDR file in a new handler.
        const auto notices = [&](int batches) {
            FilePool pool;
            TestHandler handler;
            handler.showDialogs = true;
            pool.addView(&handler);
            for (int i = 0; i < batches; ++i) {
                addReported(pool, "hdr.mp4", "hdr");
                if (!QTest::qWaitFor([&] { return int(handler.products.size()) > i; }))
                    return -1;
            }
            return m_dialogs->count("showInfo");
        };
        QCOMPARE(notices(2), 1); // acknowledged without the check box: once in the handler's life
        const QVariantList arguments = m_dialogs->lastArguments("showInfo");
        QCOMPARE(arguments.at(0).toString(), QString("Automatic color conversion"));
        QVERIFY(!arguments.at(3).toString().isEmpty()); // the check box
        QVERIFY(!Settings::dontShowDialog("HDRFilesInfoDontShow"));
        m_dialogs->answer("showInfo", 0x400 | 1); // ticked this time
        QCOMPARE(notices(1), 2);
        QVERIFY(Settings::dontShowDialog("HDRFilesInfoDontShow"));
        QCOMPARE(notices(1), 2);
    }

    void mediaBinStates()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
        m_dialogs->answer("showHasFailedFiles", true); // "Remove" in the first batch, "Keep" in the second
        QListWidget list;
        MediaBin mediaBin(&list);
        QSignalSpy reported(&mediaBin, &MediaBin::batchReported);
        // Appends items as the main window does, then hands the paths to the bin.
        const auto add = [&](const QStringList& names) {
            QStringList paths;
            for (const QString& name : names) {
                paths << TestMedia::path(name.toUtf8().constData());
                (new QListWidgetItem(name, &list))->setData(Qt::UserRole, paths.last());
            }
            mediaBin.addFiles(paths);
        };
        // "<state>: <facts>" of each item.
        const auto items = [&] {
            QStringList shown;
            for (int row = 0; row < list.count(); ++row)
                shown << list.item(row)->data(MediaBin::StateRole).toString() + ": "
                        + list.item(row)->data(MediaBin::FactsRole).toString();
            return shown.join('\n');
        };

        add({"h264_1080p.mp4", "text.mp4", "hdr_h264.mp4"});
        QVERIFY2(items().startsWith("opening"), qPrintable(items()));
        QVERIFY(reported.wait(20000));
        // The failed file was removed; the others show their facts.
        QCOMPARE(mediaBin.pool().files().size(), 2);
        const QRegularExpression openedFacts("^opened: .*1920\u00d71080.*\nopened: .*HDR$");
        QVERIFY2(openedFacts.match(items()).hasMatch(), qPrintable(items()));
        QCOMPARE(m_dialogs->count("showInfo"), 1); // the HDR notice

        QCOMPARE(reported.last(), (QVariantList{3, 1}));

        // A file kept after failing shows why.
        add({"truncated.mp4"});
        QVERIFY(reported.wait(20000));
        QVERIFY2(items().contains("\nfailed: Can't be opened: The input file is corrupted"), qPrintable(items()));

        // "Got It" in the H.265 notice takes away only the failed files it listed.
        m_dialogs->answer("showHasH265FailedFiles", true);
        add({"h265.mp4", "text.mp4"});
        QVERIFY(reported.wait(20000));
        QCOMPARE(m_dialogs->count("showHasH265FailedFiles"), 1);
        QCOMPARE(reported.last(), (QVariantList{2, 2}));
        QStringList names;
        for (int row = 0; row < list.count(); ++row)
            names << list.item(row)->text();
        QCOMPARE(names, (QStringList{"h264_1080p.mp4", "hdr_h264.mp4", "truncated.mp4", "text.mp4"}));

        // Several selected items go together, by the Delete key.
        list.show();
        list.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&list));
        list.setFocus();
        list.item(0)->setSelected(true);
        list.item(2)->setSelected(true);
        QTest::keyClick(&list, Qt::Key_Delete);
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.item(0)->text(), QString("hdr_h264.mp4"));
        QCOMPARE(list.item(1)->text(), QString("text.mp4"));
        QCOMPARE(mediaBin.pool().files().size(), 2);
    }

    // The probe tool as a support engineer runs it: a real process on generated media.
    void probe_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("expected"); // "<pointer>=<value>"
        QTest::newRow("opened, HDR notice")
            << QStringList{"h264_1080p.mp4", "audio.m4a", "still.png", "hdr_h264.mp4"}
            << QStringList{"files#=4", "dialog=none", "hdrNotice=true", "analysis/failedFiles#=0",
                           "files/0/videoTracks/0/width=1920"};
        QTest::newRow("failures")
            << QStringList{"h264_tiny.mp4", "text.mp4", "empty.mp4", "truncated.mp4", "missing.mp4", "."}
            << QStringList{"files#=6", "dialog=failed-files", "analysis/failedFiles#=5"};
        QTest::newRow("H.265 first")
            << QStringList{"h265_aac.mp4", "text.mp4", "h265.mp4", "hdr10.mp4"}
            << QStringList{"dialog=h265", "hdrNotice=false", "analysis/failedFiles#=3",
                           "files/0/unsupportedCodecNames=H.265/HEVC",
                           "files/2/error=The chosen codec is not supported."};
        QTest::newRow("usage") << QStringList() << QStringList();
    }

    void probe()
    {
        QFETCH(QStringList, names);
        QFETCH(QStringList, expected);
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
        QStringList paths;
        for (const QString& name : names)
            paths << TestMedia::path(name.toUtf8().constData());
        QProcess probe;
        probe.start(qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR") + "/kvprobe", paths);
        QVERIFY(probe.waitForFinished(60000));
        QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
        QCOMPARE(probe.exitCode(), names.isEmpty() ? 2 : 0); // without files it prints its usage
        const QJsonObject report = QJsonDocument::fromJson(probe.readAllStandardOutput()).object();
        for (const QString& check : expected)
            QCOMPARE(check.section('=', 0, 0) + '=' + at(report, check.section('=', 0, 0)), check);
        // Every file either opened or failed, and every failure carries the text the user would read.
        for (const QJsonValue& file : report.value("files").toArray()) {
            QVERIFY(file["opened"].toBool() != file["failed"].toBool());
            QCOMPARE(file["error"].isString(), file["failed"].toBool());
        }
        // Failed files are listed in the order they were given, whatever order they finished in.
        QStringList given;
        for (const QString& path : paths)
            given << QFileInfo(path).absoluteFilePath();
        int previous = -1;
        for (const QJsonValue& failed : report["analysis"]["failedFiles"].toArray()) {
            const int index = given.indexOf(failed.toString());
            QVERIFY2(index > previous, qPrintable(failed.toString()));
            previous = index;
        }
    }
};

QTEST_MAIN(tst_MediaIntake)
#include "tst_mediaintake.moc"
