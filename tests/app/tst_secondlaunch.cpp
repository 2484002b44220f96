// Launches of the real editor against a running one: what a second launch hands over, and how
// the single-instance rule survives crowds, crashes, frozen editors and hostile peers.

#include "HostProcess.h"

#include <QDir>
#include <QLocalSocket>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>

namespace {

// One editor process and everything it logged.
class Editor : public QProcess
{
public:
    Editor(const QProcessEnvironment& environment, const QString& folder, const QStringList& arguments)
    {
        setProcessEnvironment(environment);
        setWorkingDirectory(folder);
        start(KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
    }
    ~Editor() override
    {
        if (!running())
            return;
        ::kill(pid_t(processId()), SIGCONT); // in case a test stopped it
        kill();
        waitForFinished(5000);
    }

    bool waitForLog(const QString& text, int timeoutMs = 20000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!log().contains(text.toUtf8()) && !deadline.hasExpired() && running())
            waitForReadyRead(50);
        return log().contains(text.toUtf8());
    }
    int code() const { return exitStatus() == NormalExit ? exitCode() : -1; }
    bool running() const { return state() != NotRunning; }
    const QByteArray& log() { return m_log += readAllStandardError(); }
    QStringList commands() { return KvTest::logged(log(), QStringLiteral("command: ")); }

private:
    QByteArray m_log;
};

} // namespace

class TestSecondLaunch : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    QString m_files;

    // Creates a file in the test's folder; only names and extensions matter to the editor,
    // except for projects, which it reads (an empty one here).
    QString file(const QString& name)
    {
        QFile out(m_files + QLatin1Char('/') + name);
        if (out.open(QIODevice::WriteOnly))
            out.write(name.endsWith(QLatin1String(".kvproj"))
                          ? "{\"format\": \"klipvane-project\", \"version\": 1, \"tracks\": [\"video\"], \"media\": [],"
                            " \"clips\": [], \"video\": {\"width\": 1920, \"height\": 1080, \"frameRate\": 25}}"
                          : "klipvane test file");
        return out.fileName();
    }
    std::unique_ptr<Editor> launch(const QStringList& arguments)
    {
        return std::make_unique<Editor>(m_environment, m_files, arguments);
    }
    std::unique_ptr<Editor> startPrimary()
    {
        auto editor = launch({QStringLiteral("--quit-after-ready"), QStringLiteral("60000")});
        if (!editor->waitForLog(QStringLiteral("] startup: ")))
            qWarning("primary did not start: %s", editor->log().constData());
        return editor;
    }
    QString editorSocket() const
    {
        const QDir ipc(m_environment.value(QStringLiteral("KLIPVANE_IPC_DIR")));
        const QStringList found = ipc.entryList({QStringLiteral("*+klipvane+*")}, QDir::System | QDir::Files);
        return found.isEmpty() ? QString() : ipc.filePath(found.first());
    }

private slots:
    void init()
    {
        // Each test gets its own sockets, lock, settings and logs.
        m_home = std::make_unique<QTemporaryDir>();
        m_environment = KvTest::hostEnvironment(*m_home);
        m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        QVERIFY(QDir().mkpath(m_home->filePath(QStringLiteral("files"))));
        m_files = QDir(m_home->filePath(QStringLiteral("files"))).canonicalPath();
    }

    // Arguments of the second launch (names in the test's folder) and the files the running
    // editor adds, in order. A project is sent as "OnOpenProject": it arrives like a file,
    // is opened as a project, and the window comes up without the user-files page.
    void handsFilesToTheRunningEditor_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QString>("project");
        QTest::newRow("spaces, non-ASCII, order kept, unsupported dropped")
            << QStringList{"my holiday clip.mp4", "notes.txt", QString::fromUtf8("Überschall → 夏.mp4")}
            << QStringList{"my holiday clip.mp4", QString::fromUtf8("Überschall → 夏.mp4")} << QString();
        QTest::newRow("mode is not a file") << QStringList{"--mode", "slideshow", "a.mp4"} << QStringList{"a.mp4"}
                                            << QString();
        QTest::newRow("no files only shows the window") << QStringList{} << QStringList{} << QString();
        QTest::newRow("a project is opened, not added") << QStringList{"story.kvproj"} << QStringList{}
                                                        << "story.kvproj";
    }

    void handsFilesToTheRunningEditor()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, added);
        QFETCH(QString, project);
        for (const QString& argument : arguments.filter(QStringLiteral(".")))
            file(argument);
        auto primary = startPrimary();
        const int before = primary->commands().size();
        auto second = launch(arguments);
        QVERIFY(second->waitForFinished());
        QCOMPARE(second->code(), 0);
        QVERIFY2(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")), primary->log().constData());

        QStringList expected{QStringLiteral("ShowMainWindow")};
        if (!added.isEmpty())
            expected.prepend("AddFiles " + m_files + '/' + added.join(QLatin1Char(' ') + m_files + '/'));
        if (!project.isEmpty())
            expected.prepend("AddFiles " + m_files + '/' + project);
        QCOMPARE(primary->commands().mid(before), expected);
        QCOMPARE(KvTest::logged(primary->log(), QStringLiteral("project: opened ")),
                 project.isEmpty() ? QStringList() : QStringList{m_files + '/' + project + " (0 clips, 0 missing)"});
        // Files from outside open the collection page of the user's files; nothing else does.
        QCOMPARE(KvTest::logged(primary->log(), QStringLiteral("collection: ")),
                 added.isEmpty() ? QStringList() : QStringList{"UserFiles"});
        QVERIFY(!second->log().contains("] command: "));
    }

    void openProjectCallAddsTheFileAndShowsTheWindow()
    {
        const QString project = file(QStringLiteral("project clip.mp4"));
        auto primary = startPrimary();
        QProcess sender;
        sender.setProcessEnvironment(m_environment);
        sender.start(KvTest::builtProgram(QStringLiteral("ipcsend")), {"klipvane", "OnOpenProject", project});
        QVERIFY(sender.waitForFinished(10000));
        QCOMPARE(sender.exitCode(), 0);
        QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
        QCOMPARE(primary->commands(), (QStringList{"AddFiles " + project, "ShowMainWindow"}));
        QVERIFY(KvTest::logged(primary->log(), QStringLiteral("collection: ")).isEmpty());
    }

    void crowdOfLaunchesHasExactlyOnePrimary()
    {
        // Started together, with nobody running: one becomes the editor, every other hands its
        // file to it and ends, and every file arrives exactly once.
        const int count = 50;
        std::vector<std::unique_ptr<Editor>> launches;
        QSet<QString> files;
        for (int i = 0; i < count; ++i) {
            const QString path = file(QStringLiteral("clip %1.mp4").arg(i));
            files << path;
            launches.push_back(launch({"--quit-after-ready", "60000", path}));
        }
        const auto running = [&] {
            return std::count_if(launches.begin(), launches.end(), [](const auto& e) { return e->running(); });
        };
        QVERIFY(QTest::qWaitFor([&] { return running() <= 1; }, 60000));
        QCOMPARE(int(running()), 1);
        Editor* primary = nullptr;
        for (auto& editor : launches) {
            if (editor->running())
                primary = editor.get();
            else
                QCOMPARE(editor->code(), 0);
        }
        QStringList added;
        QVERIFY(QTest::qWaitFor([&] {
            added = primary->commands().filter(QRegularExpression(QStringLiteral("^AddFiles "))).replaceInStrings(
                QRegularExpression(QStringLiteral("^AddFiles ")), QString());
            return added.size() >= count;
        }, 20000));
        QCOMPARE(added.size(), count);
        QCOMPARE(QSet<QString>(added.begin(), added.end()), files);
    }

    void killedEditorLeavesNothingBehind()
    {
        auto primary = startPrimary();
        QVERIFY(!editorSocket().isEmpty());
        primary->kill(); // SIGKILL: no chance to release the lock or remove the socket
        QVERIFY(primary->waitForFinished());

        // The next launch is the editor at once: it neither waits for nor hands over to the dead one.
        const QString clip = file(QStringLiteral("after crash.mp4"));
        auto next = launch({QStringLiteral("--quit-after-ready"), QStringLiteral("0"), clip});
        QVERIFY(next->waitForFinished());
        QCOMPARE(next->code(), 0);
        QVERIFY2(next->commands().contains("AddFiles " + clip), next->log().constData());
        QVERIFY(!next->log().contains("second launch:"));
    }

    void frozenEditorDoesNotFreezeTheLaunch()
    {
        auto primary = startPrimary();
        QCOMPARE(::kill(pid_t(primary->processId()), SIGSTOP), 0);
        auto second = launch({file(QStringLiteral("a.mp4"))});
        const bool finished = second->waitForFinished();
        ::kill(pid_t(primary->processId()), SIGCONT);
        QVERIFY(finished);
        QCOMPARE(second->code(), 3);
        QVERIFY(second->log().contains("does not answer"));
        // The frozen editor did get the call; once thawed it handles it, late but exactly once.
        QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
        QCOMPARE(primary->commands().filter(QStringLiteral("AddFiles ")).size(), 1);
    }

    void hostilePeersLeaveTheEditorResponsive()
    {
        auto primary = startPrimary();
        // One peer sends garbage; another announces a call of 256 bytes, sends four and stays.
        QLocalSocket garbage, stalled;
        for (auto [peer, bytes] : {std::pair{&garbage, QByteArray(4096, '\xff')},
                                   std::pair{&stalled, QByteArray::fromHex("4b564950000101000000010000010203")}}) {
            peer->connectToServer(editorSocket());
            QVERIFY(peer->waitForConnected(5000));
            peer->write(bytes);
            QVERIFY(peer->waitForBytesWritten(5000));
        }
        auto second = launch({file(QStringLiteral("a.mp4"))});
        QVERIFY(second->waitForFinished());
        QCOMPARE(second->code(), 0);
        QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
        QCOMPARE(primary->commands().first(), "AddFiles " + m_files + "/a.mp4");
        QVERIFY(primary->running());
    }
};

QTEST_GUILESS_MAIN(TestSecondLaunch)
#include "tst_secondlaunch.moc"
