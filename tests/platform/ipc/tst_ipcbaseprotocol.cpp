// The base layer between real processes: sockets, crashes, stale files, hostile peers.

#include "IpcTestSupport.h"
#include "QueuedSpy.h"

#include <App/Delivery.h>
#include <App/IPCBaseProtocol.h>

#include <QLocalSocket>
#include <QtEndian>
#include <QtTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tavrin;

namespace {

const UniqueIPC::ApiVersion kVersion{1, 0, 0, 0, std::string()};
constexpr int kStallMs = 300;
constexpr int kIdleMs = 600;

struct AcceptingInvoker : UniqueIPC::IInvoker
{
    bool Invoke(const std::vector<std::string>&, const std::vector<std::string>&) override { return true; }
};

UniqueIPC::Call ping(const std::string& target)
{
    UniqueIPC::Call call;
    call.target = target;
    call.function = "Ping";
    call.version = kVersion;
    return call;
}

sockaddr_un unixAddress(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path);
    return address;
}

void setMode(const QString& path, mode_t mode)
{
    ::chmod(QFile::encodeName(path).constData(), mode);
}

mode_t modeOf(const QString& path)
{
    struct stat st = {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_mode & 0777 : mode_t(-1);
}

} // namespace

class tst_IPCBaseProtocol : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        qputenv("KLIPVANE_IPC_STALL_MS", QByteArray::number(kStallMs));
        qputenv("KLIPVANE_IPC_IDLE_MS", QByteArray::number(kIdleMs));
        qputenv("KLIPVANE_IPC_MAX_BUFFERED", "1");  // raised to what one frame of the largest size needs
        m_protocol = std::make_unique<App::IPCBaseProtocol>("editor", "klipvane", kVersion);
        m_protocol->GetInvokers().Register("Ping", {}, kVersion, std::make_shared<AcceptingInvoker>());
        m_protocol->StartCommunication();
    }

    void socketsArePrivate()
    {
        QCOMPARE(modeOf(m_env.ipcDir()), mode_t(0700));
        QCOMPARE(modeOf(m_protocol->SocketPath()), mode_t(0600));
    }

    void crashOfAPeerGivesTheQuitNotice()
    {
        KvTest::QueuedSpy joined(m_protocol.get(), &App::IPCBaseProtocol::OnNewApplication);
        KvTest::QueuedSpy quit(m_protocol.get(), &App::IPCBaseProtocol::OnApplicationQuit);
        KvTest::Child companion;
        companion.start(KvTest::binDir() + QStringLiteral("/kvcompanion"), {QStringLiteral("--app-id"), QStringLiteral("screencapture")});
        QVERIFY(QTest::qWaitFor([&] { return m_protocol->IsApplicationConnected("screencapture"); }, 10000));
        QTRY_VERIFY_WITH_TIMEOUT(!joined.isEmpty(), 5000);
        // A running application's link is not an idle connection, however quiet it is.
        QTest::qWait(2 * kIdleMs);
        QVERIFY(m_protocol->IsApplicationConnected("screencapture"));
        const QString id = joined.last().first().toString();
        companion.killHard();
        QTRY_VERIFY_WITH_TIMEOUT(!quit.isEmpty(), 5000);
        QCOMPARE(quit.last().first().toString(), id);
        QVERIFY(m_protocol->IsAlone());
        // The dead companion's socket is removed once it has been reaped.
        QVERIFY(companion.waitForExit());
        QTRY_VERIFY_WITH_TIMEOUT(!m_env.sockets().contains(id), 5000);
    }

    void staleSocketIsRemoved()
    {
        // A socket left behind by a process that died without closing it.
        QProcess finished;
        finished.start(QStringLiteral("true"), QStringList());
        QVERIFY(finished.waitForStarted());
        const QString path = m_env.ipcDir() + QStringLiteral("/klipvane+klipvane+%1+stale").arg(finished.processId());
        QVERIFY(finished.waitForFinished());
        const sockaddr_un address = unixAddress(path);
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        QCOMPARE(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        QCOMPARE(::listen(fd, 1), 0);
        ::close(fd);
        // Whoever meets it first removes it: the running application when its directory watch
        // reports the file, or a sender looking for a recipient.
        QCOMPARE(App::SendCallAndWait(ping("klipvane"), 2000), App::DeliveryResult::NoRecipient);
        QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(path), 3000);
    }

    void hostilePeersAreDropped_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("logged");
        QTest::newRow("garbage") << QByteArray("\x00\x01garbage garbage garbage", 24) << "bad magic";
        QTest::newRow("truncated, then silence") << QByteArray::fromStdString(UniqueIPC::encodeCall(ping("editor"))).left(20)
                                                 << "stalled in the middle of a frame";
        QTest::newRow("connects, says nothing") << QByteArray() << "sent no greeting";
        QTest::newRow("greets, then idles") << QByteArray::fromStdString(UniqueIPC::encodeHello(std::string()))
                                            << QString("idle for %1 ms").arg(kIdleMs);
    }

    void hostilePeersAreDropped()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, logged);
        KvTest::LogCapture log;
        QLocalSocket hostile;
        hostile.connectToServer(m_protocol->SocketPath());
        QVERIFY(hostile.waitForConnected(3000));
        hostile.write(bytes);
        hostile.flush();
        // Meanwhile the application answers others at once.
        QCOMPARE(App::SendCallAndWait(ping("editor"), 3000), App::DeliveryResult::Delivered);
        QVERIFY(QTest::qWaitFor([&] { return hostile.state() == QLocalSocket::UnconnectedState; }, 5000));
        QVERIFY2(log.waitFor(logged), qPrintable(log.lines().join(QLatin1Char('\n'))));
    }

    // A call written a few bytes at a time, each piece within the stall time but the whole
    // taking several times as long, is still answered.
    void slowWriterIsNotDropped()
    {
        const QByteArray frames = QByteArray::fromStdString(UniqueIPC::encodeHello(std::string())
                                                            + UniqueIPC::encodeCall(ping("editor")));
        QLocalSocket slow;
        slow.connectToServer(m_protocol->SocketPath());
        QVERIFY(slow.waitForConnected(3000));
        const int pieces = 8;
        const int piece = (frames.size() + pieces - 1) / pieces;
        for (int offset = 0; offset < frames.size(); offset += piece) {
            slow.write(frames.mid(offset, piece));
            QVERIFY(slow.waitForBytesWritten(3000));
            QTest::qWait(kStallMs / 2);
        }
        QVERIFY(QTest::qWaitFor([&] { return slow.bytesAvailable() >= qint64(UniqueIPC::kHeaderSize) + 5; }, 3000));
        UniqueIPC::Frame reply;
        std::string error;
        const QByteArray answer = slow.readAll();
        QVERIFY2(UniqueIPC::decodeFrame(answer.constData(), std::size_t(answer.size()), reply, error), error.c_str());
        QCOMPARE(int(reply.status), int(UniqueIPC::ReplyStatus::Handled));
    }

    // Half-sent large frames from several connections: each is within the per-frame limit,
    // together they pass the limit on buffered bytes (4 MiB here), so some are dropped before
    // they stall, and the application keeps answering.
    void incompleteFramesAreBoundedTogether()
    {
        KvTest::LogCapture log;
        const std::size_t sent = 1536u * 1024u;
        std::vector<std::unique_ptr<QLocalSocket>> peers;
        for (int i = 0; i < 4; ++i) {
            auto peer = std::make_unique<QLocalSocket>();
            peer->connectToServer(m_protocol->SocketPath());
            QVERIFY(peer->waitForConnected(3000));
            QByteArray frame = QByteArray::fromHex("4b56495000010100") + QByteArray(4, '\0');
            qToBigEndian<quint32>(quint32(UniqueIPC::kMaxBodySize), frame.data() + 8);
            peer->write(frame + QByteArray(int(sent) + i, 'x'));
            peers.push_back(std::move(peer));
        }
        QVERIFY2(log.waitFor(QStringLiteral("incomplete frames of all connections exceed")),
                 qPrintable(log.lines().join('\n')));
        QCOMPARE(App::SendCallAndWait(ping("editor"), 3000), App::DeliveryResult::Delivered);
    }

    void anotherUserIsRefused()
    {
        if (::getuid() != 0)
            QSKIP("switching to another uid needs root; the check runs in CI as root");
        KvTest::QueuedSpy refused(m_protocol.get(), &App::IPCBaseProtocol::PeerRefused);
        const QString dir = m_env.ipcDir();
        const QString root = QFileInfo(dir).absolutePath();
        // Open the folders and socket for the test only, so that the peer uid check is what refuses.
        setMode(root, 0711);
        setMode(dir, 0755);
        setMode(m_protocol->SocketPath(), 0777);
        const std::string hello = UniqueIPC::encodeHello("intruder+intruder+1+x");
        const sockaddr_un address = unixAddress(m_protocol->SocketPath());
        const pid_t child = ::fork();
        if (child == 0) {
            // Only async-signal-safe calls from here on.
            ::alarm(10);
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(3);
            const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
            if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
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
        setMode(root, 0700);
        setMode(dir, 0700);
        setMode(m_protocol->SocketPath(), 0600);
        QVERIFY(WIFEXITED(status));
        QCOMPARE(WEXITSTATUS(status), 0);
        QCOMPARE(refused.first().first().toUInt(), 65534u);
    }

private:
    KvTest::IpcEnvironment m_env;
    std::unique_ptr<App::IPCBaseProtocol> m_protocol;
};

QTEST_GUILESS_MAIN(tst_IPCBaseProtocol)
#include "tst_ipcbaseprotocol.moc"
