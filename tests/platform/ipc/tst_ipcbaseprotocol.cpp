// The base layer between real processes: discovery, quit notices (crash included), stale
// sockets, hostile peers and the uid check.

#include "IpcTestSupport.h"

#include <App/AppManager.h>
#include <App/ApplicationProcess.h>
#include <App/Delivery.h>
#include <App/IPCBaseProtocol.h>
#include <App/IPCPlatformController.h>

#include <QLocalSocket>
#include <QSignalSpy>
#include <QtTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrin;

namespace {

const UniqueIPC::ApiVersion kVersion{1, 0, 0, 0, std::string()};

class CountingInvoker : public UniqueIPC::IInvoker
{
public:
    bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>&) override
    {
        ++calls;
        last = arguments;
        return true;
    }
    std::atomic_int calls{0};
    std::vector<std::string> last;
};

UniqueIPC::Call ping(const std::string& target)
{
    UniqueIPC::Call call;
    call.target = target;
    call.function = "Ping";
    call.version = kVersion;
    return call;
}

} // namespace

class tst_IPCBaseProtocol : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_env = std::make_unique<KvTest::IpcEnvironment>();
        qputenv("KLIPVANE_IPC_STALL_MS", "300");
        m_protocol = std::make_unique<App::IPCBaseProtocol>("editor", "klipvane", kVersion);
        m_invoker = std::make_shared<CountingInvoker>();
        m_protocol->GetInvokers().Register("Ping", {}, kVersion, m_invoker);
        m_protocol->StartCommunication();
        QVERIFY(m_protocol->IsCommunicationStarted());
        QVERIFY(QFileInfo::exists(m_protocol->SocketPath()));
    }

    void cleanupTestCase()
    {
        m_protocol.reset();
        m_env.reset();
    }

    void socketsArePrivate()
    {
        struct stat st;
        QCOMPARE(::stat(QFile::encodeName(m_env->ipcDir()).constData(), &st), 0);
        QCOMPARE(st.st_mode & 0777, mode_t(0700));
        QCOMPARE(::stat(QFile::encodeName(m_protocol->SocketPath()).constData(), &st), 0);
        QCOMPARE(st.st_mode & 0777, mode_t(0600));
    }

    void companionIsSeenAndItsCrashNoticed()
    {
        QSignalSpy joined(m_protocol.get(), &App::IPCBaseProtocol::OnNewApplication);
        QSignalSpy quit(m_protocol.get(), &App::IPCBaseProtocol::OnApplicationQuit);
        QVERIFY(m_protocol->IsAlone());

        KvTest::Child companion;
        companion.start(KvTest::binDir() + QStringLiteral("/kvcompanion"), {QStringLiteral("--app-id"), QStringLiteral("screencapture")});
        QVERIFY(QTest::qWaitFor([&] { return m_protocol->IsApplicationConnected("screencapture"); }, 10000));
        QVERIFY(!joined.isEmpty());
        const QString id = joined.last().first().toString();
        QVERIFY(App::AppManager::IsValidAppId("screencapture", id.toStdString()));
        QCOMPARE(App::ProductAppID(id.toStdString()).GetPid(), companion.pid());
        QVERIFY(!m_protocol->IsAlone());
        // The companion links back to us as well.
        QVERIFY(companion.waitForOutput(QStringLiteral("new application ") + QString::fromStdString(m_protocol->GetConnectId())));

        companion.killHard();
        QTRY_VERIFY_WITH_TIMEOUT(!quit.isEmpty(), 5000);
        QCOMPARE(quit.last().first().toString(), id);
        QVERIFY(m_protocol->IsAlone());
        // The dead companion's socket is removed once it has been reaped.
        QVERIFY(companion.waitForExit());
        QTRY_VERIFY_WITH_TIMEOUT(!m_env->sockets().contains(id), 5000);
    }

    void tasksReachTheTargetAndQuitIt()
    {
        KvTest::Child companion;
        companion.start(KvTest::binDir() + QStringLiteral("/kvcompanion"), {QStringLiteral("--app-id"), QStringLiteral("videocapture")});
        QVERIFY(QTest::qWaitFor([&] { return m_protocol->IsApplicationConnected("videocapture"); }, 10000));

        std::atomic_int answer{-1};
        auto task = m_protocol->CreateTask("videocapture");
        task->SetFunction("Quit", {}, {});
        m_protocol->AddTask(task, [&answer](bool handled) { answer = handled ? 1 : 0; });
        QVERIFY(companion.waitForExit());
        QCOMPARE(companion.process().exitCode(), 0);
        QVERIFY(companion.output().contains("quit requested"));
        QTRY_COMPARE(answer.load(), 1);

        // Nobody to send to: the callback says so instead of waiting.
        answer = -1;
        auto lost = m_protocol->CreateTask("nobody");
        lost->SetFunction("Quit", {}, {});
        m_protocol->AddTask(lost, [&answer](bool handled) { answer = handled ? 1 : 0; });
        QTRY_COMPARE(answer.load(), 0);
    }

    void staleSocketIsRemoved()
    {
        // A socket left behind by a process that died without closing it.
        QProcess finished;
        finished.start(QStringLiteral("true"), QStringList());
        QVERIFY(finished.waitForStarted());
        const qint64 deadPid = finished.processId();
        QVERIFY(finished.waitForFinished());
        const QString name = QStringLiteral("klipvane+klipvane+%1+stale").arg(deadPid);
        const QString path = m_env->ipcDir() + QLatin1Char('/') + name;
        {
            const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path);
            QCOMPARE(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
            QCOMPARE(::listen(fd, 1), 0);
            ::close(fd);
        }
        // Whoever meets it first removes it: the running application when its directory watch
        // reports the file, or a sender looking for a recipient.
        QString detail;
        QCOMPARE(App::SendCallAndWait(ping("klipvane"), 2000, &detail), App::DeliveryResult::NoRecipient);
        QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(path), 3000);
    }

    void deliveryAnswers()
    {
        const int before = m_invoker->calls;
        QCOMPARE(App::SendCallAndWait(ping("editor"), 3000), App::DeliveryResult::Delivered);
        QCOMPARE(m_invoker->calls.load(), before + 1);
        UniqueIPC::Call unknown = ping("editor");
        unknown.function = "NoSuchCall";
        QCOMPARE(App::SendCallAndWait(unknown, 3000), App::DeliveryResult::NotHandled);
        QCOMPARE(App::SendCallAndWait(ping("nobody"), 3000), App::DeliveryResult::NoRecipient);
    }

    void hostilePeersAreDropped_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("logged");
        QTest::newRow("garbage") << QByteArray("\x00\x01garbage garbage garbage", 24) << "bad magic";
        QTest::newRow("oversized") << QByteArray("KVIP\x00\x01\x01\x00\x7f\xff\xff\xff", 12) << "exceeds the limit";
        QTest::newRow("truncated, then silence") << QByteArray::fromStdString(UniqueIPC::encodeCall(ping("editor"))).left(20)
                                                 << "stalled in the middle of a frame";
        QTest::newRow("connects, says nothing") << QByteArray() << "sent no greeting";
    }

    void hostilePeersAreDropped()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, logged);
        KvTest::LogCapture log;
        QLocalSocket hostile;
        hostile.connectToServer(m_protocol->SocketPath());
        QVERIFY(hostile.waitForConnected(3000));
        if (!bytes.isEmpty())
            hostile.write(bytes);
        hostile.flush();
        // Meanwhile the application answers others at once.
        QCOMPARE(App::SendCallAndWait(ping("editor"), 3000), App::DeliveryResult::Delivered);
        QVERIFY(QTest::qWaitFor([&] { return hostile.state() == QLocalSocket::UnconnectedState; }, 5000));
        QVERIFY2(log.waitFor(logged), qPrintable(log.lines().join(QLatin1Char('\n'))));
        QCOMPARE(App::SendCallAndWait(ping("editor"), 3000), App::DeliveryResult::Delivered);
    }

    void anotherUserIsRefused()
    {
        if (::getuid() != 0)
            QSKIP("switching to another uid needs root; the check runs in CI as root");
        QSignalSpy refused(m_protocol.get(), &App::IPCBaseProtocol::PeerRefused);
        const QByteArray dir = QFile::encodeName(m_env->ipcDir());
        const QByteArray root = QFile::encodeName(QFileInfo(m_env->ipcDir()).absolutePath());
        const QByteArray socketPath = QFile::encodeName(m_protocol->SocketPath());
        // Open the folder and socket for the test only, so that the peer uid check is what refuses.
        ::chmod(root.constData(), 0711);
        ::chmod(dir.constData(), 0755);
        ::chmod(socketPath.constData(), 0777);
        const std::string hello = UniqueIPC::encodeHello("intruder+intruder+1+x");
        const pid_t child = ::fork();
        if (child == 0) {
            // Only async-signal-safe calls from here on.
            ::alarm(10);
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(3);
            const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            std::size_t n = 0;
            for (; socketPath[int(n)] && n + 1 < sizeof address.sun_path; ++n)
                address.sun_path[n] = socketPath[int(n)];
            if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
                ::_exit(4);
            [[maybe_unused]] auto written = ::write(fd, hello.data(), hello.size());
            char byte;
            // The application closes the connection without a word.
            ::_exit(::read(fd, &byte, 1) <= 0 ? 0 : 5);
        }
        QVERIFY(child > 0);
        QTRY_VERIFY_WITH_TIMEOUT(!refused.isEmpty(), 5000);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        ::chmod(dir.constData(), 0700);
        ::chmod(root.constData(), 0700);
        ::chmod(socketPath.constData(), 0600);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 0);
        QCOMPARE(refused.first().first().toUInt(), 65534u);
    }

    void runApplicationLaunchesAndReportsFailure()
    {
        App::ApplicationInfo info;
        info.id = QStringLiteral("screencapture");
        info.productId = QStringLiteral("orvel-capture");
        info.executable = KvTest::binDir() + QStringLiteral("/kvcompanion");
        info.arguments = QStringList{QStringLiteral("--app-id"), QStringLiteral("screencapture")};
        auto shared = std::shared_ptr<App::IPCBaseProtocol>(m_protocol.get(), [](App::IPCBaseProtocol*) {});
        App::IPCPlatformController controller(shared, nullptr);
        auto process = App::ApplicationProcessFactory::createInternalApplicationProcess(info, {QStringLiteral("--source"), QStringLiteral("Klipvane")});
        QVERIFY(process->IsValid());
        bool started = false;
        bool failed = false;
        controller.RunApplication(process, [&] { started = true; }, [&] { failed = true; }, [] { return false; });
        QTRY_VERIFY_WITH_TIMEOUT(controller.IsApplicationConnected("screencapture"), 10000);
        QVERIFY(started);
        QVERIFY(!failed);
        QVERIFY(process->IsStarted());
        ::kill(pid_t(process->GetPid()), SIGTERM);
        QTRY_VERIFY_WITH_TIMEOUT(!process->IsStarted(), 5000);

        App::ApplicationInfo missing = info;
        missing.executable = m_env->path(QStringLiteral("no-such-program"));
        auto absent = App::ApplicationProcessFactory::createExternalApplicationProcess(missing, {});
        QVERIFY(!absent->IsValid());
        started = failed = false;
        controller.RunApplication(absent, [&] { started = true; }, [&] { failed = true; }, [] { return false; });
        QVERIFY(failed);
        QVERIFY(!started);
    }

private:
    std::unique_ptr<KvTest::IpcEnvironment> m_env;
    std::unique_ptr<App::IPCBaseProtocol> m_protocol;
    std::shared_ptr<CountingInvoker> m_invoker;
};

QTEST_GUILESS_MAIN(tst_IPCBaseProtocol)
#include "tst_ipcbaseprotocol.moc"
