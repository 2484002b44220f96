// Starts the real reference host with generated media on its command line and follows,
// through its log, which reports it gave for the batch: one "dialog: <operation> ..." line
// per dialog shown, then "media batch reported: ..." once the batch's reports are over.
// Dialogs are dismissed by the host itself (KLIPVANE_DISMISS_DIALOGS_MS), as Escape would.

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

namespace {

struct Run
{
    bool reported = false;   // the host logged the end of the batch's reports
    QByteArray log;          // everything it wrote
    QStringList dialogs;     // the text after "dialog: ", in log order
    QStringList answers;     // the text after "dialog answer: ", in log order
    QString batch;           // the text after "media batch reported: "
};

} // namespace

class TestKlipvaneMedia : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void reportsForTheBatch_data();
    void reportsForTheBatch();

private:
    Run start(const QStringList& arguments);

    QString m_program;
    std::unique_ptr<QTemporaryDir> m_files;
    QString m_root; // m_files with symbolic links resolved, as the host logs paths
    std::unique_ptr<QTemporaryDir> m_home;
};

void TestKlipvaneMedia::initTestCase()
{
    m_program = KvTest::builtProgram(QStringLiteral("klipvane"));
    QVERIFY2(QFileInfo(m_program).isExecutable(), qPrintable(m_program));
    if (TestMedia::folder().isEmpty())
        QSKIP("ffmpeg is not installed; no media to open");
}

void TestKlipvaneMedia::init()
{
    // Every launch gets its own per-user folders: no settings, log or single-instance
    // socket of an earlier launch (ended by a signal) may reach it.
    m_files = std::make_unique<QTemporaryDir>();
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_files->isValid() && m_home->isValid());
    m_root = QDir(m_files->path()).canonicalPath();
    const QDir media(TestMedia::folder());
    for (const QString& name : media.entryList(QDir::Files))
        QVERIFY(QFile::copy(media.filePath(name), m_files->filePath(name)));
    // A plain text file that only has a video's name.
    QVERIFY(QFile::copy(media.filePath(QStringLiteral("text.mp4")), m_files->filePath(QStringLiteral("notes.mp4"))));
}

Run TestKlipvaneMedia::start(const QStringList& arguments)
{
    QProcessEnvironment environment = KvTest::hostEnvironment(*m_home);
    environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));

    QProcess process;
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(m_files->path());
    // English whatever the machine's language: the HDR notice is recognised by its title.
    process.start(m_program, QStringList{QStringLiteral("--locale"), QStringLiteral("en_US")} + arguments);
    Run run;
    if (!process.waitForStarted(10000))
        return run;
    // The host keeps running after the batch; it is followed until the batch's reports are
    // over (or it ended, or a generous limit passed on a machine that is far too slow).
    QElapsedTimer limit;
    limit.start();
    while (!run.reported && process.state() == QProcess::Running && limit.elapsed() < 60000) {
        process.waitForReadyRead(200);
        run.log += process.readAll();
        run.reported = !KvTest::logged(run.log, QStringLiteral("media batch reported: ")).isEmpty();
    }
    if (process.state() != QProcess::NotRunning) {
        process.terminate();
        if (!process.waitForFinished(10000)) {
            process.kill();
            process.waitForFinished(5000);
        }
    }
    run.log += process.readAll();
    run.dialogs = KvTest::logged(run.log, QStringLiteral("dialog: "));
    run.answers = KvTest::logged(run.log, QStringLiteral("dialog answer: "));
    const QStringList batches = KvTest::logged(run.log, QStringLiteral("media batch reported: "));
    run.batch = batches.value(0);
    return run;
}

// Files are names in the row's folder, given as relative paths; in the expected dialog
// lines "@" stands for the folder. Dismissed dialogs answer "keep the files" and leave the
// HDR notice's check box unticked.
void TestKlipvaneMedia::reportsForTheBatch_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("dialogs");
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<QString>("batch");

    const QString hdrNotice = QStringLiteral("showInfo \"Automatic color conversion\"");
    QTest::newRow("truncated and renamed text: failed files, no codec message")
        << QStringList{"truncated.mp4", "notes.mp4"}
        << QStringList{"showHasFailedFiles removal offered, message \"\""}
        << QStringList{"showHasFailedFiles false"} << QStringLiteral("2 failed, 0 removed");
    QTest::newRow("empty file fails too") << QStringList{"empty.mp4"}
                                          << QStringList{"showHasFailedFiles removal offered, message \"\""}
                                          << QStringList{"showHasFailedFiles false"}
                                          << QStringLiteral("1 failed, 0 removed");
    QTest::newRow("H.265 dialog instead of the failed-files one")
        << QStringList{"truncated.mp4", "h265.mp4", "notes.mp4"}
        << QStringList{"showHasH265FailedFiles 1 file(s): @/h265.mp4"}
        << QStringList{"showHasH265FailedFiles false"} << QStringLiteral("3 failed, 0 removed");
    QTest::newRow("H.265 stream in a file that opens") << QStringList{"h265_aac.mp4"}
                                                       << QStringList{"showHasH265FailedFiles 1 file(s): @/h265_aac.mp4"}
                                                       << QStringList{"showHasH265FailedFiles false"}
                                                       << QStringLiteral("0 failed, 0 removed");
    QTest::newRow("HDR notice") << QStringList{"hdr_h264.mp4", "h264_tiny.mp4"} << QStringList{hdrNotice}
                                << QStringList{"showInfo 0"} << QStringLiteral("0 failed, 0 removed");
    QTest::newRow("H.265 HDR10: both, H.265 first")
        << QStringList{"hdr10.mp4"} << QStringList{"showHasH265FailedFiles 1 file(s): @/hdr10.mp4", hdrNotice}
        << QStringList{"showHasH265FailedFiles false", "showInfo 0"} << QStringLiteral("1 failed, 0 removed");
    QTest::newRow("H.265, HDR, truncated, renamed text")
        << QStringList{"h265.mp4", "hdr_h264.mp4", "truncated.mp4", "notes.mp4"}
        << QStringList{"showHasH265FailedFiles 1 file(s): @/h265.mp4", hdrNotice}
        << QStringList{"showHasH265FailedFiles false", "showInfo 0"} << QStringLiteral("3 failed, 0 removed");
    QTest::newRow("every H.265 file in one dialog")
        << QStringList{"h265_aac.mp4", "h265.mp4", "h264_1080p.mp4"}
        << QStringList{"showHasH265FailedFiles 2 file(s): @/h265.mp4, @/h265_aac.mp4"}
        << QStringList{"showHasH265FailedFiles false"} << QStringLiteral("1 failed, 0 removed");
    QTest::newRow("everything opens: no dialog")
        << QStringList{"h264_tiny.mp4", "h264_1080p.mp4", "still.png", "audio.m4a"} << QStringList{} << QStringList{}
        << QStringLiteral("0 failed, 0 removed");
}

void TestKlipvaneMedia::reportsForTheBatch()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, dialogs);
    QFETCH(QStringList, answers);
    QFETCH(QString, batch);

    const Run run = start(files);
    QVERIFY2(run.reported, run.log.constData());
    QStringList expected;
    for (QString line : dialogs)
        expected << line.replace(QLatin1Char('@'), m_root);
    QCOMPARE(run.dialogs, expected);
    QCOMPARE(run.answers, answers);
    QCOMPARE(run.batch, batch);
}

QTEST_GUILESS_MAIN(TestKlipvaneMedia)
#include "tst_klipvane_media.moc"
