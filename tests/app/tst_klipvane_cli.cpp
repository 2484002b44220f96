// Starts the real reference host with a command line and follows what it did through its
// log: one "command: <Name> <payload>" line per command it received.

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

class TestKlipvaneCli : public QObject
{
    Q_OBJECT

    QTemporaryDir m_files;
    QString m_root; // m_files as the host sees it (symbolic links resolved)

private slots:
    void initTestCase()
    {
        m_root = QDir(m_files.path()).canonicalPath();
        // Real media where it can be made (the host may open what it is given), else stand-ins.
        const std::pair<const char*, const char*> files[] = {{"a.mp4", "h264_tiny.mp4"}, {"b.png", "still.png"}, {"notes.txt", ""}};
        for (const auto& [name, media] : files) {
            const QString target = m_root + QLatin1Char('/') + QLatin1String(name);
            if (*media && !TestMedia::folder().isEmpty()) {
                QVERIFY(QFile::copy(TestMedia::path(media), target));
                continue;
            }
            QFile file(target);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("klipvane test file") > 0);
        }
    }

    // Arguments as the host receives them, run in the files' folder ("@" stands for it), and
    // the StartSlideshow and AddFiles commands it logs.
    void commandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("--mode slideshow: StartSlideshow before AddFiles, only the supported file")
            << QStringList{"--mode", "slideshow", "@/a.mp4", "@/notes.txt"}
            << QStringList{"StartSlideshow", "AddFiles @/a.mp4"};
        QTest::newRow("relative paths made absolute, order kept")
            << QStringList{"b.png", "notes.txt", "./a.mp4"} << QStringList{"AddFiles @/b.png @/a.mp4"};
        QTest::newRow("unknown options and mode") << QStringList{"--fullscreen", "-z", "--mode", "kiosk", "b.png"}
                                                  << QStringList{"AddFiles @/b.png"};
        QTest::newRow("only unsupported and missing") << QStringList{"notes.txt", "gone.mp4"} << QStringList{};
    }

    void commandLines()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, expected);
        QTemporaryDir home; // per-user folders: no launch finds another's settings, log or socket
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.setWorkingDirectory(m_root);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   QStringList{"--quit-after-ready", "0"} + arguments.replaceInStrings("@", m_root));
        if (!host.waitForFinished(30000)) {
            host.kill();
            QFAIL("the host did not quit");
        }
        const QByteArray out = host.readAllStandardOutput(), err = host.readAllStandardError();
        QVERIFY2(host.exitStatus() == QProcess::NormalExit && host.exitCode() == 0, err.constData());
        QVERIFY2(!out.contains("Usage:") && !err.contains("Usage:"), out.constData());
        const QStringList commands = KvTest::logged(err, QStringLiteral("command: "));
        QCOMPARE(commands.filter(QRegularExpression(QStringLiteral("^(StartSlideshow|AddFiles)"))),
                 expected.replaceInStrings("@", m_root));

        // glog writes every line into the INFO file of the log folder as well.
        QByteArray written;
        QDirIterator it(home.filePath(QStringLiteral("log")), {QStringLiteral("*.log")}, QDir::Files | QDir::NoSymLinks);
        while (it.hasNext()) {
            QFile file(it.next());
            written += file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        QCOMPARE(KvTest::logged(written, QStringLiteral("command: ")), commands);
    }

    // Help and version are answered before anything starts: printed on stdout, exit 0, no
    // editor, no log file. Files beside them are not opened.
    void helpAndVersion_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("printed");
        QTest::newRow("klipvane --help") << "klipvane" << QStringList{"--help", "a.mp4"} << "Usage: klipvane";
        QTest::newRow("klipvane -h") << "klipvane" << QStringList{"-h"} << "--mode <mode>";
        QTest::newRow("klipvane --version") << "klipvane" << QStringList{"a.mp4", "--version"} << "klipvane 0.";
        QTest::newRow("kvprobe --help") << "kvprobe" << QStringList{"--help"} << "usage: kvprobe";
        QTest::newRow("kvprobe --version") << "kvprobe" << QStringList{"--version", "a.mp4"} << "kvprobe 0.";
    }

    void helpAndVersion()
    {
        QFETCH(QString, program);
        QFETCH(QStringList, arguments);
        QFETCH(QString, printed);
        QTemporaryDir home;
        QProcess process;
        process.setProcessEnvironment(KvTest::hostEnvironment(home));
        process.setWorkingDirectory(m_root);
        process.start(KvTest::builtProgram(program), arguments);
        QVERIFY(process.waitForFinished(10000));
        const QByteArray out = process.readAllStandardOutput();
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
                 process.readAllStandardError().constData());
        QVERIFY2(out.contains(printed.toUtf8()), out.constData());
        QCOMPARE(QDir(home.filePath(QStringLiteral("log"))).entryList(QDir::Files), QStringList());
    }

    // A launch that hands its files to the running editor leaves no log file of its own; a
    // newline in a file name stays inside its log line.
    void handOffLeavesOnlyTheEditorsLog()
    {
        QTemporaryDir home;
        const QString clip = m_root + QStringLiteral("/line\nbreak.mp4");
        QVERIFY(QFile::copy(m_root + QStringLiteral("/a.mp4"), clip));
        KvTest::Host editor(KvTest::hostEnvironment(home), KvTest::builtProgram(QStringLiteral("klipvane")),
                            {QStringLiteral("--quit-after-ready"), QStringLiteral("20000")});
        QVERIFY2(editor.waitForLog("] startup: "), editor.log().constData());
        const QDir logs(home.filePath(QStringLiteral("log")));
        QCOMPARE(logs.entryList(QDir::Files).size(), 1);

        QProcess second;
        second.setProcessEnvironment(KvTest::hostEnvironment(home));
        second.start(KvTest::builtProgram(QStringLiteral("klipvane")), {clip});
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY2(editor.waitForLog("] command: AddFiles ", 5000), editor.log().constData());
        editor.terminate();
        QVERIFY(editor.waitForFinished(5000));

        const QStringList files = logs.entryList(QDir::Files);
        QCOMPARE(files.size(), 1);
        QFile written(logs.filePath(files.first()));
        QVERIFY(written.open(QIODevice::ReadOnly));
        const QStringList added = KvTest::logged(written.readAll(), QStringLiteral("command: AddFiles "));
        QCOMPARE(added, QStringList{QString(clip).replace(QLatin1Char('\n'), QStringLiteral("\\n"))});
    }

    // A launch runs the executable alone until it knows it is the editor: what the loader
    // maps for it (its whole dependency tree) must hold nothing with a window, or every
    // hand-off pays for loading it.
    void executableLinksNoWindowLibraries_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<bool>("loaded");
        QTest::newRow("Qt Core") << QStringLiteral("/libQt5Core.so") << true;
        QTest::newRow("Qt Network") << QStringLiteral("/libQt5Network.so") << true;
        QTest::newRow("inter-process layer") << QStringLiteral("/libKvPlatformIpc.so") << true;
        QTest::newRow("Qt Gui") << QStringLiteral("/libQt5Gui.so") << false;
        QTest::newRow("Qt Widgets") << QStringLiteral("/libQt5Widgets.so") << false;
        QTest::newRow("OpenGL") << QStringLiteral("/libGL") << false;
        QTest::newRow("the library") << QStringLiteral("/libEditorAppUtil.so") << false;
        QTest::newRow("product services") << QStringLiteral("/libKvPlatformServices.so") << false;
        QTest::newRow("editor module") << QStringLiteral("/libklipvane-editor.so") << false;
    }

    void executableLinksNoWindowLibraries()
    {
        QFETCH(QString, library);
        QFETCH(bool, loaded);
        QProcess trace;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LD_TRACE_LOADED_OBJECTS"), QStringLiteral("1"));
        trace.setProcessEnvironment(environment);
        trace.start(KvTest::builtProgram(QStringLiteral("klipvane")), QStringList());
        QVERIFY(trace.waitForFinished(10000));
        const QString listed = QString::fromLocal8Bit(trace.readAllStandardOutput());
        QVERIFY2(listed.contains(QStringLiteral("libQt5Core")), qPrintable(listed));
        QVERIFY2(listed.contains(library) == loaded, qPrintable(listed));
    }

    // The editor runs in the process that was started: tests and scripts follow it by that id.
    void editorIsTheProcessThatWasStarted()
    {
        QTemporaryDir home;
        KvTest::Host editor(KvTest::hostEnvironment(home), KvTest::builtProgram(QStringLiteral("klipvane")),
                            {QStringLiteral("--quit-after-ready"), QStringLiteral("20000")});
        QVERIFY2(editor.waitForLog("] startup: "), editor.log().constData());
        QFile maps(QStringLiteral("/proc/%1/maps").arg(editor.processId()));
        QVERIFY(maps.open(QIODevice::ReadOnly));
        QVERIFY(maps.readAll().contains("/libklipvane-editor.so"));
        editor.terminate();
        QVERIFY(editor.waitForFinished(5000));
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneCli)
#include "tst_klipvane_cli.moc"
