// The real host opens generated media and logs one "dialog: <operation> ..." line per report,
// then "media batch reported: ..."; it dismisses its dialogs itself (KLIPVANE_DISMISS_DIALOGS_MS)
// as Escape would, keeping the files.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

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
        QTest::newRow("truncated and renamed text: failed files")
            << QStringList{"truncated.mp4", "notes.mp4"} << QStringList{"showHasFailedFiles removal offered, message \"\""}
            << QStringLiteral("2 failed, 0 removed");
        QTest::newRow("H.265 dialog instead of the failed-files one")
            << QStringList{"truncated.mp4", "h265.mp4", "notes.mp4"}
            << QStringList{"showHasH265FailedFiles 1 file(s): @/h265.mp4"} << QStringLiteral("3 failed, 0 removed");
        QTest::newRow("HDR notice") << QStringList{"hdr_h264.mp4", "h264_tiny.mp4"}
                                    << QStringList{"showInfo \"Automatic color conversion\""}
                                    << QStringLiteral("0 failed, 0 removed");
        QTest::newRow("everything opens: no dialog")
            << QStringList{"h264_tiny.mp4", "h264_1080p.mp4", "still.png", "audio.m4a"} << QStringList{}
            << QStringLiteral("0 failed, 0 removed");
    }

    void reportsForTheBatch()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, dialogs);
        QFETCH(QString, batch);
        // Every launch gets its own folders: nothing of an earlier launch may reach it.
        QTemporaryDir folder, home;
        const QString root = QDir(folder.path()).canonicalPath();
        const QDir media(TestMedia::folder());
        for (const QString& name : media.entryList(QDir::Files))
            QVERIFY(QFile::copy(media.filePath(name), folder.filePath(name)));
        // A plain text file that only has a video's name.
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("text.mp4")), folder.filePath(QStringLiteral("notes.mp4"))));

        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        QProcess host;
        host.setProcessEnvironment(environment);
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.setWorkingDirectory(root);
        // English whatever the machine's language: the HDR notice is recognised by its title.
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), QStringList{"--locale", "en_US"} + files);
        // The host keeps running after the batch; it is followed until the reports are over.
        QByteArray log;
        const auto reported = [&] {
            log += host.readAll();
            return !KvTest::logged(log, QStringLiteral("media batch reported: ")).isEmpty()
                || host.state() == QProcess::NotRunning;
        };
        QVERIFY(QTest::qWaitFor(reported, 60000));
        host.terminate();
        host.waitForFinished(10000);
        QCOMPARE(KvTest::logged(log, QStringLiteral("media batch reported: ")), QStringList{batch});
        QCOMPARE(KvTest::logged(log, QStringLiteral("dialog: ")), dialogs.replaceInStrings("@", root));
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneMedia)
#include "tst_klipvane_media.moc"
