// Starts the real reference host with a command line and follows what it did through its
// log: one "command: <Name> <payload>" line per command it received.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestSandbox.h"

#if __has_include("TestMedia.h")
#include "TestMedia.h"
#define KV_HAVE_TEST_MEDIA 1
#endif

namespace {

struct Run
{
    int exitCode = -1;
    bool finished = false;
    QByteArray out;
    QByteArray err;
    QStringList commands; // the text after "command: ", in log order
};

} // namespace

// Files in the data rows are names inside the row's temporary folder; they exist.
class TestKlipvaneCli : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void slideshowBeforeFilesAndOnlySupportedFiles();
    void commandLines_data();
    void commandLines();
    void logAlsoWrittenToTheLogFolder();

private:
    Run start(const QStringList& arguments);
    QString path(const QString& name) const { return m_root + QLatin1Char('/') + name; }

    QString m_program;
    std::unique_ptr<QTemporaryDir> m_files;
    QString m_root; // m_files as the host sees it from inside (symbolic links resolved)
    std::unique_ptr<QTemporaryDir> m_home;
};

void TestKlipvaneCli::initTestCase()
{
    m_program = KvTest::builtProgram(QStringLiteral("klipvane"));
    QVERIFY2(QFileInfo(m_program).isExecutable(), qPrintable(m_program));
}

void TestKlipvaneCli::init()
{
    // Every run gets its own files and its own per-user folders: one launch must not find
    // another's settings, log or single-instance socket.
    m_files = std::make_unique<QTemporaryDir>();
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_files->isValid() && m_home->isValid());
    m_root = QDir(m_files->path()).canonicalPath();
    // Real media where the generator can make it (the host may open what it is given);
    // otherwise stand-ins: the command log only depends on names and extensions.
    const std::pair<const char*, const char*> files[] = {
        {"a.mp4", "h264_tiny.mp4"}, {"b.png", "still.png"}, {"notes.txt", nullptr}};
    for (const auto& [name, media] : files) {
        const QString target = path(QString::fromLatin1(name));
#ifdef KV_HAVE_TEST_MEDIA
        const QString source = media ? TestMedia::path(media) : QString();
#else
        Q_UNUSED(media)
        const QString source;
#endif
        if (!source.isEmpty()) {
            QVERIFY(QFile::copy(source, target));
            continue;
        }
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("klipvane test file");
    }
}

Run TestKlipvaneCli::start(const QStringList& arguments)
{
    const QProcessEnvironment environment = KvTest::hostEnvironment(*m_home);

    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_files->path());
    process.start(m_program, QStringList{QStringLiteral("--quit-after-ready"), QStringLiteral("0")} + arguments);
    Run run;
    if (!process.waitForStarted(10000))
        return run;
    run.finished = process.waitForFinished(30000);
    if (!run.finished) {
        process.kill();
        process.waitForFinished(5000);
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    run.commands = KvTest::logged(run.err, QStringLiteral("command: "));
    return run;
}

void TestKlipvaneCli::slideshowBeforeFilesAndOnlySupportedFiles()
{
    const Run run = start({QStringLiteral("--mode"), QStringLiteral("slideshow"), path(QStringLiteral("a.mp4")),
                           path(QStringLiteral("notes.txt"))});
    QVERIFY2(run.finished, run.err.constData());
    QCOMPARE(run.exitCode, 0);

    const int slideshow = run.commands.indexOf(QStringLiteral("StartSlideshow"));
    const int files = run.commands.indexOf(QStringLiteral("AddFiles ") + path(QStringLiteral("a.mp4")));
    QVERIFY2(slideshow >= 0, run.err.constData());
    QVERIFY2(files >= 0, run.err.constData());
    QVERIFY2(slideshow < files, qPrintable(run.commands.join(QLatin1Char('\n'))));
    for (const QString& command : run.commands)
        QVERIFY2(!command.contains(QLatin1String("notes.txt")), qPrintable(command));
    QCOMPARE(run.commands.filter(QRegularExpression(QStringLiteral("^AddFiles"))).size(), 1);
}

// Arguments as the host receives them; plain names are files of the row's folder given
// as relative paths (the host runs in that folder). Expected: the StartSlideshow and
// AddFiles commands it logs, with "@" standing for the folder.
void TestKlipvaneCli::commandLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("relative paths made absolute, order kept")
        << QStringList{"b.png", "notes.txt", "./a.mp4"} << QStringList{"AddFiles @/b.png @/a.mp4"};
    QTest::newRow("normal mode") << QStringList{"--mode=normal", "a.mp4"} << QStringList{"AddFiles @/a.mp4"};
    QTest::newRow("unknown mode") << QStringList{"--mode", "kiosk", "a.mp4"} << QStringList{"AddFiles @/a.mp4"};
    QTest::newRow("--help neither prints nor exits") << QStringList{"--help", "a.mp4"}
                                                     << QStringList{"AddFiles @/a.mp4"};
    QTest::newRow("unknown option") << QStringList{"--fullscreen", "-z", "b.png"} << QStringList{"AddFiles @/b.png"};
    QTest::newRow("mode without value") << QStringList{"a.mp4", "--mode"} << QStringList{"AddFiles @/a.mp4"};
    QTest::newRow("only unsupported and missing") << QStringList{"notes.txt", "gone.mp4"} << QStringList{};
}

void TestKlipvaneCli::commandLines()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);

    const Run run = start(arguments);
    QVERIFY2(run.finished, run.err.constData());
    QCOMPARE(run.exitCode, 0);
    QVERIFY2(!run.out.contains("Usage:"), run.out.constData());
    QVERIFY2(!run.err.contains("Usage:"), run.err.constData());

    const QStringList seen = run.commands.filter(QRegularExpression(QStringLiteral("^(StartSlideshow|AddFiles)")));
    QStringList wanted;
    for (QString line : expected)
        wanted << line.replace(QLatin1Char('@'), m_root);
    QCOMPARE(seen, wanted);
}

void TestKlipvaneCli::logAlsoWrittenToTheLogFolder()
{
    const Run run = start({path(QStringLiteral("a.mp4"))});
    QVERIFY2(run.finished, run.err.constData());
    QCOMPARE(run.exitCode, 0);

    QByteArray written;
    // glog writes every line into the INFO file (and links to it); WARNING and ERROR files
    // only repeat some of them.
    QDirIterator it(m_home->filePath(QStringLiteral("log")), {QStringLiteral("*INFO*")}, QDir::Files | QDir::NoSymLinks);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            written += file.readAll();
    }
    QVERIFY2(!written.isEmpty(), "no log file in KLIPVANE_LOG_DIR");
    QCOMPARE(KvTest::logged(written, QStringLiteral("command: ")), run.commands);
}

QTEST_GUILESS_MAIN(TestKlipvaneCli)
#include "tst_klipvane_cli.moc"
