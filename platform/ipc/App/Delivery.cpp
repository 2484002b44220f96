#include "App/Delivery.h"

#include "App/AppManager.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>

namespace Tavrin {
namespace App {

const char* describe(DeliveryResult result)
{
    switch (result) {
    case DeliveryResult::Delivered:
        return "delivered";
    case DeliveryResult::NotHandled:
        return "not handled";
    case DeliveryResult::NoRecipient:
        return "no recipient";
    case DeliveryResult::NoAnswer:
        return "no answer";
    case DeliveryResult::Lost:
        return "connection lost";
    }
    return "?";
}

DeliveryResult SendCallAndWait(const UniqueIPC::Call& call, int timeoutMs, QString* detail)
{
    QElapsedTimer clock;
    clock.start();
    auto left = [&] { return int(qMax<qint64>(0, timeoutMs - clock.elapsed())); };
    const QString directory = AppManager::SocketDirectory();
    const QStringList entries = QDir(directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);

    UniqueIPC::Call numbered = call;
    if (numbered.serial == 0)
        numbered.serial = 1;
    const std::string frames = UniqueIPC::encodeHello(std::string()) + UniqueIPC::encodeCall(numbered);

    for (const QString& entry : entries) {
        const std::string peer = entry.toStdString();
        if (!AppManager::IsValidAppId(call.target, peer))
            continue;
        const QString path = directory + QLatin1Char('/') + entry;
        QLocalSocket socket;
        socket.connectToServer(path);
        if (!socket.waitForConnected(left())) {
            const ProductAppID id(peer);
            if (!AppManager::IsProcessAlive(id.GetPid()) && QFile::remove(path) && detail)
                *detail += QStringLiteral("removed stale socket %1; ").arg(entry);
            if (left() == 0)
                break;
            continue;
        }
        socket.write(frames.data(), qint64(frames.size()));
        UniqueIPC::FrameReader reader;
        UniqueIPC::Frame frame;
        for (;;) {
            if (!socket.waitForBytesWritten(0) && socket.bytesToWrite() > 0 && left() == 0)
                break;
            if (!socket.waitForReadyRead(left()))
                break;
            const QByteArray data = socket.readAll();
            reader.append(data.constData(), std::size_t(data.size()));
            const auto result = reader.next(frame);
            if (result == UniqueIPC::FrameReader::Result::NeedMore)
                continue;
            if (result == UniqueIPC::FrameReader::Result::Frame && frame.kind == UniqueIPC::FrameKind::Reply
                && frame.serial == numbered.serial) {
                socket.disconnectFromServer();
                if (detail)
                    *detail += entry;
                return frame.status == UniqueIPC::ReplyStatus::Handled ? DeliveryResult::Delivered
                                                                       : DeliveryResult::NotHandled;
            }
            break;
        }
        // A recipient that closed the connection (or died) is not frozen: the caller may
        // find another one, or become the recipient itself.
        const bool lost = socket.state() != QLocalSocket::ConnectedState || !socket.isValid();
        if (detail)
            *detail += lost ? QStringLiteral("%1 closed the connection").arg(entry)
                            : QStringLiteral("%1 did not answer").arg(entry);
        socket.abort();
        return lost ? DeliveryResult::Lost : DeliveryResult::NoAnswer;
    }
    return DeliveryResult::NoRecipient;
}

} // namespace App
} // namespace Tavrin
