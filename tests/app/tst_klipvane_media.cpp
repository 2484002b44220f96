// The real host opens generated media and logs one "dialog: <operation> ..." line per report,
// then "media batch reported: ..."; it dismisses its dialogs itself (KLIPVANE_DISMISS_DIALOGS_MS)
// as Escape would, keeping the files.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

#include <cstdio>
#include <unistd.h>

class TestKlipvaneMedia : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed; no media to open");
    }

    // Files are names in the launch's folder, given as relative paths; in the expected
    // dialog lines "@" stands for the folder.
    void reportsForTheBatch_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QStringList>("dialogs");
        QTest::addColumn<QString>("batch");
        QTest::addColumn<QString>("status");
        const QString corrupt = "The input file is corrupted or missing from the specified location.";
        // The failed files are named with their reasons.
        QTest::newRow("truncated and renamed text: failed files")
            << QStringList{"truncated.mp4", "notes.mp4"}
            << QStringList{"showHasFailedFiles removal offered, message \"Some of the files can't be opened.<br><br>"
                           "<b>notes.mp4</b>: " + corrupt + "<br><b>truncated.mp4</b>: " + corrupt + "\""}
            << QStringLiteral("2 failed, 0 removed") << QStringLiteral("2 file(s) added, 2 could not be opened");
        QTest::newRow("H.265 dialog instead of the failed-files one")
            << QStringList{"truncated.mp4", "h265.mp4", "notes.mp4"}
            << QStringList{"showHasH265FailedFiles 1 file(s): @/h265.mp4"} << QStringLiteral("3 failed, 0 removed")
            << QStringLiteral("3 file(s) added, 3 could not be opened");
        // A failed file shows nothing: no HDR notice for it.
        QTest::newRow("HDR file that fails") << QStringList{"hdr10.mp4"}
                                             << QStringList{"showHasH265FailedFiles 1 file(s): @/hdr10.mp4"}
                                             << QStringLiteral("1 failed, 0 removed")
                                             << QStringLiteral("1 file(s) added, 1 could not be opened");
        // Found in a folder, a name whose bytes are not UTF-8 is reported as such.
        QTest::newRow("name not UTF-8")
            << QStringList{"odd"}
            << QStringList{"showHasFailedFiles removal offered, message \"Some of the files can't be opened.<br><br>"
                           "<b>clip\ufffd.mp4</b>: The file name cannot be read: it is not valid UTF-8.\""}
            << QStringLiteral("1 failed, 0 removed") << QStringLiteral("1 file(s) added, 1 could not be opened");
        QTest::newRow("HDR notice") << QStringList{"hdr_h264.mp4", "h264_tiny.mp4"}
                                    << QStringList{"showInfo \"Automatic color conversion\""}
                                    << QStringLiteral("0 failed, 0 removed") << QStringLiteral("2 file(s) added");
        QTest::newRow("everything opens: no dialog")
            << QStringList{"h264_tiny.mp4", "h264_1080p.mp4", "still.png", "audio.m4a"} << QStringList{}
            << QStringLiteral("0 failed, 0 removed") << QStringLiteral("4 file(s) added");
    }

    void reportsForTheBatch()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, dialogs);
        QFETCH(QString, batch);
        QFETCH(QString, status);
        // Every launch gets its own folders: nothing of an earlier launch may reach it.
        QTemporaryDir folder, home;
        const QString root = QDir(folder.path()).canonicalPath();
        const QDir media(TestMedia::folder());
        for (const QString& name : media.entryList(QDir::Files))
            QVERIFY(QFile::copy(media.filePath(name), folder.filePath(name)));
        // A plain text file that only has a video's name.
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("text.mp4")), folder.filePath(QStringLiteral("notes.mp4"))));
        // A folder with a video whose name is not UTF-8 (written as bytes).
        QVERIFY(QDir(root).mkdir(QStringLiteral("odd")));
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("h264_tiny.mp4")), root + QStringLiteral("/odd/clip.mp4")));
        const QByteArray oddName = QFile::encodeName(root + "/odd/clip") + "\xff.mp4";
        QCOMPARE(::rename(QFile::encodeName(root + "/odd/clip.mp4").constData(), oddName.constData()), 0);
        // Qt cannot name it to remove it.
        const auto removeOdd = qScopeGuard([&] { ::unlink(oddName.constData()); });

        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        QProcess host;
        host.setProcessEnvironment(environment);
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.setWorkingDirectory(root);
        // English whatever the machine's language: the HDR notice is recognised by its title.
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), QStringList{"--locale", "en_US"} + files);
        // The host keeps running after the batch; it is followed until the reports are over
        // (the status line comes after the batch's report, later still under the sanitizers).
        QByteArray log;
        const auto reported = [&] {
            log += host.readAll();
            return (!KvTest::logged(log, QStringLiteral("media batch reported: ")).isEmpty()
                    && !KvTest::logged(log, QStringLiteral("status: ")).isEmpty())
                || host.state() == QProcess::NotRunning;
        };
        QVERIFY(QTest::qWaitFor(reported, 60000));
        host.terminate();
        host.waitForFinished(10000);
        QCOMPARE(KvTest::logged(log, QStringLiteral("media batch reported: ")), QStringList{batch});
        QCOMPARE(KvTest::logged(log, QStringLiteral("dialog: ")), dialogs.replaceInStrings("@", root));
        QCOMPARE(KvTest::logged(log, QStringLiteral("status: ")), QStringList{status});
    }

    // The pages of the collections are titled in the user's language, not by their names.
    void pageTitlesAreUserTexts()
    {
        QTemporaryDir home;
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), {"--locale", "de_DE", "--quit-after-ready", "0"});
        QVERIFY(host.waitForFinished(30000));
        QCOMPARE(KvTest::logged(host.readAll(), QStringLiteral("collection page: ")),
                 (QStringList{"UserFiles \"Ihre Dateien\"", "Effects \"Effekte\"", "Overlays \"Einblendungen\""}));
    }

    // Quitting while hundreds of files are still opening: the media threads are stopped
    // before the process's statics go (under AddressSanitizer they were read after being
    // freed), and the editor ends normally.
    void quitWhileFilesOpen()
    {
        QTemporaryDir folder, home;
        QStringList files;
        for (int i = 0; i < 400; ++i) {
            files << folder.filePath(QStringLiteral("clip%1.mp4").arg(i));
            QVERIFY(QFile::link(TestMedia::path("h264_1080p.mp4"), files.last()));
        }
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), QStringList{"--quit-after-ready", "300"} + files);
        QVERIFY(host.waitForFinished(60000));
        const QByteArray log = host.readAll();
        QVERIFY2(!log.contains("Sanitizer") && !log.contains("runtime error"), log.right(4000).constData());
        QCOMPARE(host.exitStatus(), QProcess::NormalExit);
        QCOMPARE(host.exitCode(), 0);
        QCOMPARE(KvTest::logged(log, QStringLiteral("exit: ")), QStringList{"0"});
        QCOMPARE(KvTest::logged(log, QStringLiteral("Media openings stopped: ")).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneMedia)
#include "tst_klipvane_media.moc"
