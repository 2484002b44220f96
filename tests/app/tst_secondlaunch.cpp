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

#include <sys/stat.h>
#include <unistd.h>

using Editor = KvTest::Host;

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
        return std::make_unique<Editor>(m_environment, KvTest::builtProgram(QStringLiteral("klipvane")), arguments, m_files);
    }
    std::unique_ptr<Editor> startPrimary(const QStringList& wrapper = {})
    {
        const QStringList arguments{QStringLiteral("--quit-after-ready"), QStringLiteral("60000")};
        auto editor = wrapper.isEmpty()
            ? launch(arguments)
            : std::make_unique<Editor>(m_environment, wrapper.first(),
                                       wrapper.mid(1) + QStringList{KvTest::builtProgram(QStringLiteral("klipvane"))} + arguments,
                                       m_files);
        if (!editor->waitForLog("] startup: "))
            qWarning("primary did not start: %s", editor->log().constData());
        return editor;
    }
    QString editorSocket() const
    {
        const QDir ipc(m_environment.value(QStringLiteral("KLIPVANE_IPC_DIR")));
        const QStringList found = ipc.entryList({QStringLiteral("*+klipvane+*")}, QDir::System | QDir::Files);
        return found.isEmpty() ? QString() : ipc.filePath(found.first());
    }

    // Each test gets its own sockets, lock, settings and logs, all in `home`.
    void useHome(std::unique_ptr<QTemporaryDir> home)
    {
        m_home = std::move(home);
        m_environment = KvTest::hostEnvironment(*m_home);
        m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        QVERIFY(QDir().mkpath(m_home->filePath(QStringLiteral("files"))));
        m_files = QDir(m_home->filePath(QStringLiteral("files"))).canonicalPath();
    }

private slots:
    void init() { useHome(std::make_unique<QTemporaryDir>()); }

    // Arguments of the second launch (names in the test's folder) and the files the running
    // editor adds, in order. A project is sent as "OnOpenProject": it arrives like a file,
    // is opened as a project, and the window comes up without the user-files page.
    void handsFilesToTheRunningEditor_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("project");
        QTest::newRow("spaces, non-ASCII, order kept, unsupported dropped")
            << QStringList{"my holiday clip.mp4", "notes.txt", QString::fromUtf8("Überschall → 夏.mp4")}
            << QStringList{"my holiday clip.mp4", QString::fromUtf8("Überschall → 夏.mp4")} << 0 << QString();
        QTest::newRow("mode is not a file") << QStringList{"--mode", "slideshow", "a.mp4"} << QStringList{"a.mp4"} << 0
                                            << QString();
        QTest::newRow("no files only shows the window") << QStringList{} << QStringList{} << 0 << QString();
        QTest::newRow("a project is opened, not added") << QStringList{"story.kvproj"} << QStringList{} << 0
                                                        << "story.kvproj";
        // Nothing the editor could open: the launch says so itself and leaves the editor alone.
        QTest::newRow("only unsupported files") << QStringList{"notes.txt", "letter.doc"} << QStringList{} << 4
                                                << QString();
    }

    void handsFilesToTheRunningEditor()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, added);
        QFETCH(int, status);
        QFETCH(QString, project);
        for (const QString& argument : arguments.filter(QStringLiteral(".")))
            file(argument);
        auto primary = startPrimary();
        const int before = primary->commands().size();
        auto second = launch(arguments);
        QVERIFY(second->waitForFinished());
        QCOMPARE(second->code(), status);
        if (status != 0) {
            QVERIFY2(second->log().contains("klipvane: the editor cannot open any of these files: " + m_files.toUtf8()),
                     second->log().constData());
            QCOMPARE(primary->commands().size(), before);
            return;
        }
        QVERIFY2(primary->waitForLog("] command: ShowMainWindow"), primary->log().constData());

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
        QVERIFY(primary->waitForLog("] command: ShowMainWindow"));
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
            added = primary->added();
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
        const QString clip = file(QStringLiteral("a.mp4"));
        auto second = launch({clip});
        const bool finished = second->waitForFinished();
        ::kill(pid_t(primary->processId()), SIGCONT);
        QVERIFY(finished);
        QCOMPARE(second->code(), 3);
        QVERIFY(second->log().contains("does not answer"));
        // The frozen editor did get the call; once thawed it handles it, late but exactly once.
        QVERIFY(primary->waitForLog("] command: ShowMainWindow"));
        QCOMPARE(primary->added(), QStringList{clip});
        // The user, not knowing, tries again: the editor knows this hand-off already.
        auto retry = launch({clip});
        QVERIFY(retry->waitForFinished());
        QCOMPARE(retry->code(), 0);
        QVERIFY(primary->waitForLog("the repeat is ignored"));
        QCOMPARE(primary->added(), QStringList{clip});
        // A later hand-off of the same file is a new one.
        auto later = launch({clip});
        QVERIFY(later->waitForFinished());
        QCOMPARE(later->code(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(primary->added(), (QStringList{clip, clip}), 10000);
    }

    // kill -9 of the editor while a crowd of launches hands files to it: every launch either
    // handed its file to the old editor, or has it in the one editor that runs afterwards,
    // once. None gives up as if the editor were frozen.
    void editorKilledDuringACrowdOfLaunches()
    {
        auto primary = startPrimary();
        // The line of a launch that handed its file to the old editor ends with its socket name.
        const QRegularExpression toOldEditor(QStringLiteral("\\+%1\\+[^;+ ]*\\)$").arg(primary->processId()));
        const int count = 60;
        std::vector<std::unique_ptr<Editor>> launches;
        QStringList files;
        for (int i = 0; i < count; ++i) {
            files << file(QStringLiteral("crowd %1.mp4").arg(i));
            launches.push_back(launch({"--quit-after-ready", "60000", files.last()}));
        }
        const auto finished = [&] {
            return int(std::count_if(launches.begin(), launches.end(), [](const auto& e) { return !e->running(); }));
        };
        QVERIFY(QTest::qWaitFor([&] { return finished() >= 5; }, 30000));
        primary->kill();
        QVERIFY(primary->waitForFinished());
        QVERIFY(QTest::qWaitFor([&] { return finished() >= count - 1; }, 45000));
        // The launch still running is the editor that took over, or, when every launch had
        // handed its file to the old editor before the kill, one that is still ending.
        for (const auto& launched : launches) {
            if (launched->running() && !launched->waitForLog(" listening") && launched->running())
                QVERIFY(launched->waitForFinished());
        }
        Editor* next = nullptr;
        QStringList expected;
        for (int i = 0; i < count; ++i) {
            Editor& launched = *launches[i];
            if (launched.running()) {
                QVERIFY2(!next, "two editors run");
                next = &launched;
                expected << files[i];
                continue;
            }
            QVERIFY2(launched.code() == 0, launched.log().constData());
            const QStringList handed = KvTest::logged(launched.log(), QStringLiteral("second launch: handed "));
            QCOMPARE(handed.size(), 1);
            if (!toOldEditor.match(handed.first()).hasMatch())
                expected << files[i];
        }
        if (!next) {
            QVERIFY2(expected.isEmpty(), qPrintable(expected.join(QStringLiteral(", "))));
            return;
        }
        if (!QTest::qWaitFor([&] { return next->added().size() >= expected.size(); }, 15000)) {
            // Which files the editor that runs now is missing, and what it logged meanwhile.
            QStringList missing = expected;
            for (const QString& added : next->added())
                missing.removeOne(added);
            QFAIL(qPrintable(QStringLiteral("missing %1 of %2: %3\n%4")
                                 .arg(missing.size())
                                 .arg(expected.size())
                                 .arg(missing.join(QStringLiteral(", ")), QString::fromUtf8(next->log().right(4000)))));
        }
        QStringList added = next->added();
        std::sort(added.begin(), added.end());
        std::sort(expected.begin(), expected.end());
        QCOMPARE(added, expected);
    }

    // A same-user process opens a crowd of connections, greets and idles, with the editor
    // held to 256 descriptors: the editor closes idle ones (by its own cap, or when accept()
    // fails with the cap set above the limit) and still takes a second launch's file.
    void crowdOfIdleConnectionsDoesNotSilenceTheEditor_data()
    {
        QTest::addColumn<QString>("maxConnections");
        QTest::addColumn<QString>("logged");
        QTest::newRow("the editor's own cap") << QString() << "connections at once; closing the longest idle ones";
        QTest::newRow("out of descriptors") << "100000" << "cannot accept connections";
    }

    void crowdOfIdleConnectionsDoesNotSilenceTheEditor()
    {
        QFETCH(QString, maxConnections);
        QFETCH(QString, logged);
        // Instrumented, the editor works through the queue of refused peers too slowly for the
        // launch's own 15 s wait to mean anything; the normal build checks this row.
        if (!maxConnections.isEmpty() && KV_TEST_TIME_SCALE > 1)
            QSKIP("descriptor exhaustion is timed in the normal build only");
        if (!maxConnections.isEmpty())
            m_environment.insert(QStringLiteral("KLIPVANE_IPC_MAX_CONNECTIONS"), maxConnections);
        auto primary = startPrimary({QStringLiteral("prlimit"), QStringLiteral("--nofile=256:256"), QStringLiteral("--")});
        QVERIFY(primary->running());
        const QString socket = editorSocket();
        // A greeting with an empty connection id, as a second launch sends.
        const QByteArray hello = QByteArray::fromHex("4b564950000103000000000400000000");
        std::vector<std::unique_ptr<QLocalSocket>> crowd;
        for (int i = 0; i < 400; ++i) {
            crowd.push_back(std::make_unique<QLocalSocket>());
            QLocalSocket* peer = crowd.back().get();
            QObject::connect(peer, &QLocalSocket::connected, [peer, hello] { peer->write(hello); });
            peer->connectToServer(socket);
        }
        QVERIFY(QTest::qWaitFor([&] {
            return std::all_of(crowd.begin(), crowd.end(), [](const auto& c) {
                return c->state() == QLocalSocket::UnconnectedState
                    || (c->state() == QLocalSocket::ConnectedState && c->bytesToWrite() == 0);
            });
        }, 20000));

        const QString clip = file(QStringLiteral("after the crowd.mp4"));
        auto second = launch({clip});
        QVERIFY(second->waitForFinished(5000 * KV_TEST_TIME_SCALE));
        QCOMPARE(second->code(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(primary->added(), QStringList{clip}, 5000 * KV_TEST_TIME_SCALE);
        QVERIFY2(primary->waitForLog(logged.toUtf8()), primary->log().constData());
        QCOMPARE(primary->log().count(logged.toUtf8()), 1);
    }

    // Without a runtime folder the sockets go to the temporary folder, where another user may
    // have taken the folder's name first. The editor stays single all the same. The test's
    // own temporary folder (TMPDIR) holds the taken folder, so the machine's /tmp is left
    // alone; it lives in /var/tmp because the fallback folder is in the home and socket paths
    // must stay under 108 bytes.
    void socketFolderTakenByAnotherUser()
    {
        if (::getuid() != 0)
            QSKIP("a folder owned by another uid needs root; the check runs in CI as root");
        useHome(std::make_unique<QTemporaryDir>(QStringLiteral("/var/tmp/kvsf-XXXXXX")));
        QVERIFY(m_home->isValid());
        const QString tmp = m_home->filePath(QStringLiteral("tmp"));
        const QString taken = tmp + QStringLiteral("/klipvane-ipc-%1").arg(::getuid());
        QVERIFY(QDir().mkpath(taken));
        QVERIFY(::chmod(QFile::encodeName(taken).constData(), 0777) == 0);
        QVERIFY(::chown(QFile::encodeName(taken).constData(), 65534, 65534) == 0);
        m_environment.remove(QStringLiteral("KLIPVANE_IPC_DIR"));
        m_environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        m_environment.insert(QStringLiteral("TMPDIR"), tmp);
        m_environment.insert(QStringLiteral("HOME"), m_home->filePath(QStringLiteral("home")));
        auto primary = startPrimary();
        QVERIFY2(primary->running(), primary->log().constData());
        QVERIFY2(!primary->log().contains("Can not start IPC communication"), primary->log().constData());

        const QString clip = file(QStringLiteral("b.mp4"));
        auto second = launch({clip});
        QVERIFY(second->waitForFinished());
        QCOMPARE(second->code(), 0);
        QVERIFY2(!second->log().contains("] startup: "), "the second launch became an editor");
        QTRY_COMPARE_WITH_TIMEOUT(primary->added(), QStringList{clip}, 10000);
        // Nothing of ours went into the folder the other user owns: the sockets are in the home.
        QVERIFY(QDir(taken).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).isEmpty());
        QCOMPARE(QDir(m_home->filePath(QStringLiteral("home/.cache"))).entryList({QStringLiteral("klipvane-ipc-*")}, QDir::Dirs).size(), 1);
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
        QVERIFY(primary->waitForLog("] command: ShowMainWindow"));
        QCOMPARE(primary->commands().first(), "AddFiles " + m_files + "/a.mp4");
        QVERIFY(primary->running());
    }
};

QTEST_GUILESS_MAIN(TestSecondLaunch)
#include "tst_secondlaunch.moc"
