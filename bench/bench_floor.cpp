// The floor of the second-launch benchmark: the least a hand-off can cost with Qt. A bare
// QCoreApplication, linked against Qt Core and Qt Network only, sends the running editor
// the same "OnAddFiles" call a second launch sends and waits for the answer over one
// QLocalSocket. It finds nothing by itself: the script names the editor's socket.
//
//   bench_floor SOCKET FILE     exits 0 once the editor answered "handled", 1 otherwise

#include <UniqueIPC/Frame.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

#include <unistd.h>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;

    Tavrin::UniqueIPC::Call call;
    call.serial = 1;
    // The editor applies a (sender, serial) once: each run is a sender of its own.
    call.sender = "floor-" + std::to_string(::getpid());
    call.target = "klipvane";
    call.function = "OnAddFiles";
    call.version = {1, 0, 0, 0, std::string()};
    call.arguments = {QDir::cleanPath(QFileInfo(arguments.at(2)).absoluteFilePath()).toStdString()};
    call.types = {"QString"};
    const std::string frames = Tavrin::UniqueIPC::encodeHello(std::string()) + Tavrin::UniqueIPC::encodeCall(call);

    QLocalSocket socket;
    socket.connectToServer(arguments.at(1));
    if (!socket.waitForConnected(3000))
        return 1;
    socket.write(frames.data(), qint64(frames.size()));
    Tavrin::UniqueIPC::FrameReader reader;
    Tavrin::UniqueIPC::Frame frame;
    while (socket.waitForReadyRead(3000)) {
        const QByteArray data = socket.readAll();
        reader.append(data.constData(), std::size_t(data.size()));
        const auto result = reader.next(frame);
        if (result == Tavrin::UniqueIPC::FrameReader::Result::NeedMore)
            continue;
        return result == Tavrin::UniqueIPC::FrameReader::Result::Frame
                       && frame.kind == Tavrin::UniqueIPC::FrameKind::Reply
                       && frame.status == Tavrin::UniqueIPC::ReplyStatus::Handled
                   ? 0
                   : 1;
    }
    return 1;
}
