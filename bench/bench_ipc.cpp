// Calls per second over one connection of the inter-process layer, against a raw local
// socket echo of the same bytes (what the socket itself allows).
//
//   bench_ipc rate [CALLS [ROUNDS]]     measure (default 10000 calls, 5 rounds); starts the
//                                       two servers below as child processes
//   bench_ipc receiver                  the editor's message set (IPC::Protocol) as "klipvane"
//   bench_ipc echo SOCKET_PATH          a QLocalServer that writes back every byte it reads
//   bench_ipc burst                     reading bursts of 64 KiB to 4 MiB of small frames
//                                       out of one buffer
//
// The client sends "OnAddFiles" with one path per call, one at a time (send, wait for the
// answer) and pipelined (all sent, then all answers awaited). The echo client does the same
// with the encoded frames of those calls, waiting for each frame's bytes to come back.
// Servers quit when their standard input closes.

#include <IPCProtocol.h>

#include <App/AppManager.h>
#include <App/IPCBaseProtocol.h>
#include <UniqueIPC/Frame.h>
#include <UniqueIPC/Invoker.h>
#include <UniqueIPC/Task.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QSemaphore>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QThread>

#include <glog/logging.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

std::string pathOf(int i)
{
    char name[64];
    std::snprintf(name, sizeof name, "/home/editor/Videos/2024/holiday clip %05d.mp4", i);
    return name;
}

// Ends the event loop when the parent closes our standard input.
void quitWhenStdinCloses(QCoreApplication& application)
{
    auto* notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier] {
        char buffer[256];
        if (::read(STDIN_FILENO, buffer, sizeof buffer) <= 0) {
            notifier->setEnabled(false);
            QCoreApplication::quit();
        }
    });
}

// Answers "handled" only when the receiver has seen exactly the number of files named in
// the call's argument: the client's check that nothing was lost or counted twice.
class CountInvoker : public Tavrin::UniqueIPC::IInvoker
{
public:
    explicit CountInvoker(const std::atomic<long>& received) : m_received(received) {}
    bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>&) override
    {
        return arguments.size() == 1 && std::stol(arguments[0]) == m_received.load();
    }

private:
    const std::atomic<long>& m_received;
};

int runReceiver(QCoreApplication& application)
{
    std::atomic<long> received{0};
    IPC::Protocol protocol(QStringLiteral("klipvane"), nullptr);
    // Counted on the IPC thread as the call is handled, before its answer is written.
    QObject::connect(&protocol, &IPC::Protocol::onAddFiles, &protocol,
                     [&received](const QStringList& files) { received += files.size(); }, Qt::DirectConnection);
    protocol.GetInvokers().Register("BenchCount", {"QString"}, {1, 0, 0, 0, std::string()},
                                    std::make_shared<CountInvoker>(received));
    protocol.StartCommunication();
    quitWhenStdinCloses(application);
    std::printf("ready\n");
    std::fflush(stdout);
    return application.exec();
}

int runEcho(QCoreApplication& application, const QString& path)
{
    QLocalServer server;
    QLocalServer::removeServer(path);
    if (!server.listen(path)) {
        std::fprintf(stderr, "bench_ipc echo: cannot listen on %s\n", qPrintable(path));
        return 1;
    }
    QObject::connect(&server, &QLocalServer::newConnection, &server, [&server] {
        while (QLocalSocket* socket = server.nextPendingConnection()) {
            QObject::connect(socket, &QLocalSocket::readyRead, socket, [socket] { socket->write(socket->readAll()); });
            QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    quitWhenStdinCloses(application);
    std::printf("ready\n");
    std::fflush(stdout);
    return application.exec();
}

// A server child, ended by closing its input (and by its id if that does not work).
class Server
{
public:
    explicit Server(const QStringList& arguments)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), arguments);
    }
    ~Server()
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }
    bool waitReady()
    {
        QByteArray output;
        while (!output.contains("ready\n")) {
            if (!m_process.waitForReadyRead(10000))
                return false;
            output += m_process.readAllStandardOutput();
        }
        return true;
    }

private:
    QProcess m_process;
};

struct Rates
{
    std::vector<double> oneAtATime;
    std::vector<double> pipelined;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

double perSecond(int calls, qint64 nanoseconds)
{
    return calls * 1e9 / double(nanoseconds);
}

// Our layer: one IPCBaseProtocol client linked to the receiver.
bool measureProtocol(int calls, int rounds, Rates& rates)
{
    // Declared before the client: its shutdown answers what is still pending.
    QSemaphore answers;
    std::atomic<int> failed{0};
    Tavrin::App::IPCBaseProtocol client("benchclient", "klipvane", {1, 0, 0, 0, std::string()});
    client.StartCommunication();
    QElapsedTimer wait;
    wait.start();
    while (!client.IsApplicationConnected("klipvane")) {
        if (wait.elapsed() > 10000) {
            std::fprintf(stderr, "bench_ipc: the receiver did not connect\n");
            return false;
        }
        QThread::msleep(5);
    }

    long sent = 0;
    auto send = [&](const std::string& function, const std::string& argument) {
        auto task = client.CreateTask("klipvane");
        task->SetFunction(function, {argument}, {"QString"});
        client.AddTask(task, [&](bool handled) {
            if (!handled)
                ++failed;
            answers.release();
        });
    };
    auto countMatches = [&] {
        send("BenchCount", std::to_string(sent));
        answers.acquire();
        return failed.load() == 0;
    };
    // Warm-up: links, allocations and caches settle before anything is timed.
    for (int i = 0; i < 200; ++i, ++sent) {
        send("OnAddFiles", pathOf(i));
        answers.acquire();
    }
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < calls; ++i, ++sent) {
            send("OnAddFiles", pathOf(i));
            answers.acquire();
        }
        rates.oneAtATime.push_back(perSecond(calls, clock.nsecsElapsed()));

        clock.restart();
        for (int i = 0; i < calls; ++i, ++sent)
            send("OnAddFiles", pathOf(i));
        answers.acquire(calls);
        rates.pipelined.push_back(perSecond(calls, clock.nsecsElapsed()));
        if (!countMatches()) {
            std::fprintf(stderr, "bench_ipc: calls were lost or refused (%d failed answers)\n", failed.load());
            return false;
        }
    }
    return true;
}

// The practical limit: the same frames through a bare local socket and back.
bool measureEcho(const QString& path, int calls, int rounds, Rates& rates)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(10000)) {
        std::fprintf(stderr, "bench_ipc: cannot connect to the echo server\n");
        return false;
    }
    std::vector<std::string> frames;
    for (int i = 0; i < calls; ++i) {
        Tavrin::UniqueIPC::Call call;
        call.serial = std::uint32_t(i + 1);
        call.sender = Tavrin::App::AppManager::MakeConnectId("klipvane", "benchclient");
        call.target = "klipvane";
        call.function = "OnAddFiles";
        call.version = {1, 0, 0, 0, std::string()};
        call.arguments = {pathOf(i)};
        call.types = {"QString"};
        frames.push_back(Tavrin::UniqueIPC::encodeCall(call));
    }
    auto readBack = [&](qint64 bytes) {
        while (bytes > 0) {
            if (socket.bytesAvailable() == 0 && !socket.waitForReadyRead(10000))
                return false;
            bytes -= socket.read(bytes > (1 << 20) ? (1 << 20) : bytes).size();
        }
        return true;
    };
    auto oneAtATime = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const std::string& frame = frames[std::size_t(i)];
            socket.write(frame.data(), qint64(frame.size()));
            socket.flush();
            if (!readBack(qint64(frame.size())))
                return false;
        }
        return true;
    };
    if (!oneAtATime(std::min(calls, 200)))
        return false;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer clock;
        clock.start();
        if (!oneAtATime(calls))
            return false;
        rates.oneAtATime.push_back(perSecond(calls, clock.nsecsElapsed()));

        clock.restart();
        qint64 total = 0;
        for (const std::string& frame : frames) {
            socket.write(frame.data(), qint64(frame.size()));
            total += qint64(frame.size());
        }
        if (!readBack(total))
            return false;
        rates.pipelined.push_back(perSecond(calls, clock.nsecsElapsed()));
    }
    return true;
}

int runRate(int calls, int rounds)
{
    QTemporaryDir dir;
    if (qEnvironmentVariableIsEmpty("KLIPVANE_IPC_DIR")) {
        // Only this run's processes may be found: a running editor must not receive these calls.
        QDir().mkpath(dir.filePath(QStringLiteral("ipc")));
        qputenv("KLIPVANE_IPC_DIR", QFile::encodeName(dir.filePath(QStringLiteral("ipc"))));
    }
    const QString echoPath = dir.filePath(QStringLiteral("echo"));

    Rates ours;
    Rates echo;
    {
        Server receiver({QStringLiteral("receiver")});
        if (!receiver.waitReady() || !measureProtocol(calls, rounds, ours))
            return 1;
    }
    {
        Server echoServer({QStringLiteral("echo"), echoPath});
        if (!echoServer.waitReady() || !measureEcho(echoPath, calls, rounds, echo))
            return 1;
    }
    const double oursOne = median(ours.oneAtATime);
    const double oursPipe = median(ours.pipelined);
    const double echoOne = median(echo.oneAtATime);
    const double echoPipe = median(echo.pipelined);
    std::printf("calls=%d rounds=%d (median of the rounds, calls per second)\n", calls, rounds);
    std::printf("one-at-a-time  ipc=%.0f echo=%.0f ratio=%.3f\n", oursOne, echoOne, oursOne / echoOne);
    std::printf("pipelined      ipc=%.0f echo=%.0f ratio=%.3f\n", oursPipe, echoPipe, oursPipe / echoPipe);
    return 0;
}

// How a connection's reader copes with many small frames arriving at once (a pipelining
// peer, or a receiver that was busy). Linear reading keeps the time per frame flat.
int runBurst()
{
    for (std::size_t size : {std::size_t(64) << 10, std::size_t(1) << 20, std::size_t(4) << 20}) {
        std::string burst;
        while (burst.size() < size)
            burst += Tavrin::UniqueIPC::encodeReply(std::uint32_t(burst.size()), Tavrin::UniqueIPC::ReplyStatus::Handled);
        double best = 0;
        std::size_t frames = 0;
        for (int round = 0; round < 3; ++round) {
            QElapsedTimer clock;
            clock.start();
            Tavrin::UniqueIPC::FrameReader reader;
            reader.append(burst.data(), burst.size());
            Tavrin::UniqueIPC::Frame frame;
            frames = 0;
            while (reader.next(frame) == Tavrin::UniqueIPC::FrameReader::Result::Frame)
                ++frames;
            const double ms = clock.nsecsElapsed() / 1e6;
            best = round ? std::min(best, ms) : ms;
        }
        std::printf("burst bytes=%zu frames=%zu read_ms=%.3f ns_per_frame=%.0f (best of 3)\n", burst.size(), frames,
                    best, best * 1e6 / double(frames));
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    FLAGS_logtostderr = true;
    FLAGS_minloglevel = google::GLOG_WARNING;
    google::InitGoogleLogging(argv[0]);
    QCoreApplication application(argc, argv);
    const QStringList args = application.arguments().mid(1);
    const QString mode = args.value(0);
    if (mode == QLatin1String("receiver"))
        return runReceiver(application);
    if (mode == QLatin1String("echo") && args.size() == 2)
        return runEcho(application, args[1]);
    if (mode == QLatin1String("burst"))
        return runBurst();
    if (mode == QLatin1String("rate")) {
        const int calls = args.size() > 1 ? args[1].toInt() : 10000;
        const int rounds = args.size() > 2 ? args[2].toInt() : 5;
        if (calls > 0 && rounds > 0)
            return runRate(calls, rounds);
    }
    std::fprintf(stderr, "usage: bench_ipc rate [CALLS [ROUNDS]] | burst | receiver | echo SOCKET_PATH\n");
    return 2;
}
