// Launches of the real editor against a running one: what a second launch hands over,
// what the running editor does with it, and how the single-instance rule survives crowds,
// crashes, frozen editors and hostile peers.

#include "HostProcess.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <sys/types.h>

namespace {

// One editor process and everything it printed.
class Editor
{
public:
    explicit Editor(const QProcessEnvironment& environment)
    {
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::SeparateChannels);
    }
    ~Editor()
    {
        if (m_process.state() != QProcess::NotRunning) {
            ::kill(pid_t(m_process.processId()), SIGCONT);
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    void start(const QStringList& arguments, const QString& folder)
    {
        m_process.setWorkingDirectory(folder);
        m_process.start(KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
    }

    // Reads until the editor has finished starting (its start-up action ran).
    bool waitUntilReady(int timeoutMs = 20000) { return waitForLog(QStringLiteral("] startup: "), timeoutMs); }

    bool waitForLog(const QString& text, int timeoutMs = 20000)
    {
        QDeadlineTimer deadline(timeoutMs);
        while (!log().contains(text.toUtf8())) {
            if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning)
                return log().contains(text.toUtf8());
            m_process.waitForReadyRead(50);
        }
        return true;
    }

    bool finish(int timeoutMs = 20000)
    {
        const bool finished = m_process.waitForFinished(timeoutMs);
        m_log += m_process.readAllStandardError();
        return finished;
    }

    int exitCode() const { return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1; }
    bool running() const { return m_process.state() != QProcess::NotRunning; }
    qint64 pid() const { return m_process.processId(); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(5000);
    }

    const QByteArray& log()
    {
        m_log += m_process.readAllStandardError();
        return m_log;
    }
    QStringList commands() { return KvTest::logged(log(), QStringLiteral("command: ")); }
    QStringList collections() { return KvTest::logged(log(), QStringLiteral("collection: ")); }

private:
    QProcess m_process;
    QByteArray m_log;
};

} // namespace

class TestSecondLaunch : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void handsFilesToTheRunningEditor_data();
    void handsFilesToTheRunningEditor();
    void openProjectCallAddsTheFileAndShowsTheWindow();
    void crowdOfLaunchesHasExactlyOnePrimary();
    void killedEditorLeavesNothingBehind();
    void frozenEditorDoesNotFreezeTheLaunch();
    void hostilePeersLeaveTheEditorResponsive();

private:
    QString file(const QString& name);
    std::unique_ptr<Editor> startPrimary(const QStringList& files = {});
    std::unique_ptr<Editor> launch(const QStringList& arguments);
    QString editorSocket() const;

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    QString m_files;
};

void TestSecondLaunch::init()
{
    // Each test gets its own sockets, lock, settings and logs: editors of one test never
    // see those of another.
    m_home = std::make_unique<QTemporaryDir>();
    QVERIFY(m_home->isValid());
    m_environment = KvTest::hostEnvironment(*m_home);
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    m_files = QDir(m_home->filePath(QStringLiteral("files"))).absolutePath();
    QVERIFY(QDir().mkpath(m_files));
    m_files = QDir(m_files).canonicalPath();
}

// Creates a file in the test's folder; only names and extensions matter to the editor's log.
QString TestSecondLaunch::file(const QString& name)
{
    const QString path = m_files + QLatin1Char('/') + name;
    QFile out(path);
    if (out.open(QIODevice::WriteOnly))
        out.write("klipvane test file");
    return path;
}

std::unique_ptr<Editor> TestSecondLaunch::startPrimary(const QStringList& files)
{
    auto editor = std::make_unique<Editor>(m_environment);
    editor->start(QStringList{QStringLiteral("--quit-after-ready"), QStringLiteral("60000")} + files, m_files);
    if (!editor->waitUntilReady())
        qWarning("primary did not start: %s", editor->log().constData());
    return editor;
}

std::unique_ptr<Editor> TestSecondLaunch::launch(const QStringList& arguments)
{
    auto editor = std::make_unique<Editor>(m_environment);
    editor->start(arguments, m_files);
    return editor;
}

QString TestSecondLaunch::editorSocket() const
{
    const QDir ipc(m_environment.value(QStringLiteral("KLIPVANE_IPC_DIR")));
    for (const QString& entry : ipc.entryList(QDir::System | QDir::Files | QDir::NoDotAndDotDot)) {
        if (entry.contains(QLatin1String("+klipvane+")))
            return ipc.filePath(entry);
    }
    return QString();
}

void TestSecondLaunch::handsFilesToTheRunningEditor_data()
{
    // Arguments as given to the second launch (relative to the test's folder), and the
    // files the running editor must add, in order.
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("added");
    QTest::newRow("one file") << QStringList{"a.mp4"} << QStringList{"a.mp4"};
    QTest::newRow("spaces") << QStringList{"my holiday clip.mp4"} << QStringList{"my holiday clip.mp4"};
    QTest::newRow("non-ASCII") << QStringList{QString::fromUtf8("Überschall → 夏.mp4")}
                               << QStringList{QString::fromUtf8("Überschall → 夏.mp4")};
    QTest::newRow("several, in order, unsupported dropped")
        << QStringList{"b.png", "notes.txt", "a.mp4"} << QStringList{"b.png", "a.mp4"};
    QTest::newRow("mode is not a file") << QStringList{"--mode", "slideshow", "a.mp4"} << QStringList{"a.mp4"};
    QTest::newRow("no files only shows the window") << QStringList{} << QStringList{};
    // Sent as "OnOpenProject": the window comes up without the user-files page; the host
    // has no project format of its own, so nothing is added.
    QTest::newRow("a project is opened, not added") << QStringList{"story.kvproj"} << QStringList{};
}

void TestSecondLaunch::handsFilesToTheRunningEditor()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, added);
    for (const QString& name : {QStringLiteral("a.mp4"), QStringLiteral("b.png"), QStringLiteral("notes.txt")})
        file(name);
    for (const QString& argument : arguments) {
        if (argument.contains(QLatin1Char('.')))
            file(argument);
    }
    auto primary = startPrimary();
    QVERIFY(primary->running());
    const int before = primary->commands().size();

    auto second = launch(arguments);
    QVERIFY(second->finish());
    QCOMPARE(second->exitCode(), 0);
    QVERIFY2(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")), primary->log().constData());

    QStringList expected;
    if (!added.isEmpty()) {
        QStringList paths;
        for (const QString& name : added)
            paths << m_files + QLatin1Char('/') + name;
        expected << QStringLiteral("AddFiles ") + paths.join(QLatin1Char(' '));
    }
    expected << QStringLiteral("ShowMainWindow");
    QCOMPARE(primary->commands().mid(before), expected);
    // Files from outside open the collection page of the user's files; an empty launch does not.
    QCOMPARE(primary->collections(), added.isEmpty() ? QStringList() : QStringList{QStringLiteral("UserFiles")});
    QVERIFY(!second->log().contains("] command: "));
}

void TestSecondLaunch::openProjectCallAddsTheFileAndShowsTheWindow()
{
    const QString project = file(QStringLiteral("project clip.mp4"));
    auto primary = startPrimary();
    QProcess sender;
    sender.setProcessEnvironment(m_environment);
    sender.start(KvTest::builtProgram(QStringLiteral("ipcsend")), {QStringLiteral("klipvane"), QStringLiteral("OnOpenProject"), project});
    QVERIFY(sender.waitForFinished(10000));
    QCOMPARE(sender.exitCode(), 0);
    QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
    QCOMPARE(primary->commands(), (QStringList{QStringLiteral("AddFiles ") + project, QStringLiteral("ShowMainWindow")}));
    QVERIFY(primary->collections().isEmpty());
}

void TestSecondLaunch::crowdOfLaunchesHasExactlyOnePrimary()
{
    // Started together, with nobody running: one becomes the editor, every other hands its
    // file to it, and every file arrives exactly once.
    const int count = 50;
    std::vector<std::unique_ptr<Editor>> launches;
    QSet<QString> files;
    for (int i = 0; i < count; ++i) {
        const QString path = file(QStringLiteral("clip %1.mp4").arg(i));
        files << path;
        launches.push_back(launch({QStringLiteral("--quit-after-ready"), QStringLiteral("60000"), path}));
    }
    // Every launch but the editor ends; the editor keeps running.
    QDeadlineTimer crowdDeadline(60000);
    auto stillRunning = [&] {
        return std::count_if(launches.begin(), launches.end(), [](const auto& e) { return e->running(); });
    };
    while (stillRunning() > 1 && !crowdDeadline.hasExpired())
        QTest::qWait(100);
    QCOMPARE(int(stillRunning()), 1);
    Editor* primary = nullptr;
    int handedOver = 0;
    for (auto& editor : launches) {
        if (editor->running()) {
            primary = editor.get();
            continue;
        }
        editor->finish();
        QCOMPARE(editor->exitCode(), 0);
        ++handedOver;
    }
    QVERIFY(primary);
    QCOMPARE(handedOver, count - 1);

    QDeadlineTimer deadline(20000);
    QStringList added;
    while (!deadline.hasExpired()) {
        added.clear();
        for (const QString& command : primary->commands()) {
            if (command.startsWith(QLatin1String("AddFiles ")))
                added << command.mid(9);
        }
        if (added.size() >= count)
            break;
        QTest::qWait(50);
    }
    QCOMPARE(added.size(), count);
    QCOMPARE(QSet<QString>(added.begin(), added.end()), files);
}

void TestSecondLaunch::killedEditorLeavesNothingBehind()
{
    auto primary = startPrimary();
    QVERIFY(!editorSocket().isEmpty());
    primary->kill(); // SIGKILL: no chance to release the lock or remove the socket

    // The next launch is the editor at once: it neither waits for nor hands over to the dead one.
    const QString clip = file(QStringLiteral("after crash.mp4"));
    auto next = launch({QStringLiteral("--quit-after-ready"), QStringLiteral("0"), clip});
    QVERIFY(next->finish());
    QCOMPARE(next->exitCode(), 0);
    QVERIFY2(next->commands().contains(QStringLiteral("AddFiles ") + clip), next->log().constData());
    QVERIFY(!next->log().contains("second launch:"));
}

void TestSecondLaunch::frozenEditorDoesNotFreezeTheLaunch()
{
    auto primary = startPrimary();
    QCOMPARE(::kill(pid_t(primary->pid()), SIGSTOP), 0);
    auto second = launch({file(QStringLiteral("a.mp4"))});
    const bool finished = second->finish(20000);
    ::kill(pid_t(primary->pid()), SIGCONT);
    QVERIFY(finished);
    QCOMPARE(second->exitCode(), 3);
    QVERIFY(second->log().contains("does not answer"));
    // The frozen editor did get the call; once thawed it handles it, late but exactly once.
    QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
    QCOMPARE(primary->commands().filter(QStringLiteral("AddFiles ")).size(), 1);
}

void TestSecondLaunch::hostilePeersLeaveTheEditorResponsive()
{
    auto primary = startPrimary();
    const QString socketPath = editorSocket();
    QVERIFY(!socketPath.isEmpty());

    // One peer sends garbage, another stops in the middle of a frame and stays connected.
    QLocalSocket garbage;
    garbage.connectToServer(socketPath);
    QVERIFY(garbage.waitForConnected(5000));
    garbage.write(QByteArray(4096, '\xff'));
    QVERIFY(garbage.waitForBytesWritten(5000));
    QLocalSocket stalled;
    stalled.connectToServer(socketPath);
    QVERIFY(stalled.waitForConnected(5000));
    // A call header announcing 256 bytes of body, followed by four.
    stalled.write(QByteArray::fromHex("4b564950000101000000010000010203"));
    QVERIFY(stalled.waitForBytesWritten(5000));

    auto second = launch({file(QStringLiteral("a.mp4"))});
    QVERIFY(second->finish());
    QCOMPARE(second->exitCode(), 0);
    QVERIFY(primary->waitForLog(QStringLiteral("] command: ShowMainWindow")));
    QCOMPARE(primary->commands().first(), QStringLiteral("AddFiles ") + m_files + QStringLiteral("/a.mp4"));
    QVERIFY(primary->running());
}

QTEST_GUILESS_MAIN(TestSecondLaunch)
#include "tst_secondlaunch.moc"
