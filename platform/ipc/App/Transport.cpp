#include "App/Transport_p.h"

#include "App/AppManager.h"

#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTimer>

#include <glog/logging.h>

#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace Tavrin {
namespace App {
namespace {

// The uid of the process at the other end of a connected local socket, or -1.
long long peerUid(qintptr descriptor)
{
    struct ucred credentials;
    socklen_t size = sizeof credentials;
    if (::getsockopt(int(descriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return -1;
    return credentials.uid;
}

std::string describePeer(const std::string& peer)
{
    return peer.empty() ? std::string("an anonymous peer") : peer;
}

} // namespace

struct Transport::Incoming
{
    QLocalSocket* socket = nullptr;
    UniqueIPC::FrameReader reader;
    QTimer* stallTimer = nullptr;
    std::string peer;
    bool greeted = false;
};

struct Transport::Link
{
    std::string peer;
    QLocalSocket* socket = nullptr;
    UniqueIPC::FrameReader reader;
    bool connected = false;
    std::vector<std::string> queued;
    std::map<std::uint32_t, UniqueIPC::TaskCallback> pending;
};

Transport::Transport(QString directory, std::string connectId, std::shared_ptr<UniqueIPC::InvokerStorage> invokers,
                     std::shared_ptr<TransportState> state)
    : m_directory(std::move(directory)),
      m_connectId(std::move(connectId)),
      m_invokers(std::move(invokers)),
      m_state(std::move(state))
{
}

Transport::~Transport()
{
    shutdown();
}

int Transport::stallTimeoutMs()
{
    bool ok = false;
    const int configured = qEnvironmentVariableIntValue("KLIPVANE_IPC_STALL_MS", &ok);
    return ok && configured > 0 ? configured : 5000;
}

bool Transport::listen(QString* error)
{
    m_server = new QLocalServer(this);
    m_server->setMaxPendingConnections(256);
    const QString path = m_directory + QLatin1Char('/') + QString::fromStdString(m_connectId);
    if (!m_server->listen(path)) {
        if (error)
            *error = QStringLiteral("cannot listen on %1: %2").arg(path, m_server->errorString());
        return false;
    }
    // The directory is private already; the socket itself is made private too, in case the
    // directory was opened up by hand.
    ::chmod(QFile::encodeName(path).constData(), 0600);
    connect(m_server, &QLocalServer::newConnection, this, &Transport::acceptPending);

    m_watcher = new QFileSystemWatcher(this);
    m_watcher->addPath(m_directory);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &Transport::scan);
    return true;
}

void Transport::shutdown()
{
    delete m_watcher;
    m_watcher = nullptr;
    const auto incoming = std::exchange(m_incoming, {});
    for (Incoming* in : incoming) {
        in->socket->disconnect(this);
        in->socket->flush();  // answers already written must still reach their callers
        in->socket->abort();
        delete in->socket;
        delete in;
    }
    if (m_server) {
        m_server->close();  // removes the socket file
        delete m_server;
        m_server = nullptr;
    }
    const auto links = std::exchange(m_links, {});
    for (auto& entry : links) {
        Link* link = entry.second;
        for (auto& pending : link->pending)
            if (pending.second)
                pending.second(false);
        link->socket->disconnect(this);
        link->socket->abort();
        delete link->socket;
        delete link;
    }
    std::lock_guard<std::mutex> lock(m_state->mutex);
    m_state->connected.clear();
}

void Transport::acceptPending()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        const long long uid = peerUid(socket->socketDescriptor());
        if (uid != static_cast<long long>(::getuid())) {
            LOG(WARNING) << "Refused an IPC connection from uid " << uid << " (this application runs as uid " << ::getuid()
                         << ")";
            socket->abort();
            socket->deleteLater();
            emit peerRefused(uint(uid));
            continue;
        }
        // Owned here rather than by the server, which may go first at shutdown.
        socket->setParent(this);
        auto* in = new Incoming;
        in->socket = socket;
        in->stallTimer = new QTimer(socket);
        in->stallTimer->setSingleShot(true);
        in->stallTimer->setInterval(stallTimeoutMs());
        m_incoming.insert(socket, in);
        connect(in->stallTimer, &QTimer::timeout, this, [this, in] {
            dropIncoming(in, in->reader.hasPartialFrame() ? "stalled in the middle of a frame" : "sent no greeting");
        });
        connect(socket, &QLocalSocket::readyRead, this, [this, in] { readIncoming(in); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            if (Incoming* gone = m_incoming.take(socket)) {
                socket->deleteLater();
                delete gone;
            }
        });
        in->stallTimer->start();
        if (socket->bytesAvailable() > 0)
            readIncoming(in);
    }
}

void Transport::readIncoming(Incoming* in)
{
    const QByteArray data = in->socket->readAll();
    in->reader.append(data.constData(), std::size_t(data.size()));
    UniqueIPC::Frame frame;
    for (;;) {
        const auto result = in->reader.next(frame);
        if (result == UniqueIPC::FrameReader::Result::NeedMore)
            break;
        if (result == UniqueIPC::FrameReader::Result::Error) {
            dropIncoming(in, in->reader.error());
            return;
        }
        switch (frame.kind) {
        case UniqueIPC::FrameKind::Hello:
            in->greeted = true;
            in->peer = frame.connectId;
            // Link back at once: the newcomer is noticed without waiting for the directory watch.
            if (!in->peer.empty() && ProductAppID(in->peer).IsValid())
                openLink(in->peer);
            break;
        case UniqueIPC::FrameKind::Call: {
            in->greeted = true;
            const bool handled = m_invokers->Invoke(frame.call);
            const std::string reply = UniqueIPC::encodeReply(
                frame.call.serial, handled ? UniqueIPC::ReplyStatus::Handled : UniqueIPC::ReplyStatus::Failed);
            in->socket->write(reply.data(), qint64(reply.size()));
            break;
        }
        case UniqueIPC::FrameKind::Reply:
            break;
        }
    }
    if (!in->greeted || in->reader.hasPartialFrame()) {
        if (!in->stallTimer->isActive())
            in->stallTimer->start();
    } else {
        in->stallTimer->stop();
    }
}

void Transport::dropIncoming(Incoming* in, const std::string& reason)
{
    LOG(WARNING) << "Closing the IPC connection of " << describePeer(in->peer) << ": " << reason;
    QLocalSocket* socket = in->socket;
    m_incoming.remove(socket);
    socket->disconnect(this);
    socket->abort();
    socket->deleteLater();
    delete in;
}

void Transport::scan()
{
    if (!m_server)
        return;
    const QStringList entries = QDir(m_directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        const std::string peer = entry.toStdString();
        if (peer != m_connectId && ProductAppID(peer).IsValid() && !m_links.count(peer))
            openLink(peer);
    }
}

void Transport::openLink(const std::string& peer)
{
    if (peer == m_connectId || m_links.count(peer) || !m_server)
        return;
    auto* link = new Link;
    link->peer = peer;
    link->socket = new QLocalSocket(this);
    m_links[peer] = link;
    QLocalSocket* socket = link->socket;
    connect(socket, &QLocalSocket::connected, this, [this, link] {
        link->connected = true;
        const std::string hello = UniqueIPC::encodeHello(m_connectId);
        link->socket->write(hello.data(), qint64(hello.size()));
        for (const std::string& frame : link->queued)
            link->socket->write(frame.data(), qint64(frame.size()));
        link->queued.clear();
        {
            std::lock_guard<std::mutex> lock(m_state->mutex);
            m_state->connected.insert(link->peer);
        }
        emit applicationConnected(QString::fromStdString(link->peer));
    });
    connect(socket, &QLocalSocket::errorOccurred, this, [this, link](QLocalSocket::LocalSocketError error) {
        if (link->connected && error == QLocalSocket::PeerClosedError)
            return;  // `disconnected` follows
        closeLink(link);
    });
    connect(socket, &QLocalSocket::disconnected, this, [this, link] { closeLink(link); });
    connect(socket, &QLocalSocket::readyRead, this, [this, link] { readLink(link); });
    socket->connectToServer(m_directory + QLatin1Char('/') + QString::fromStdString(peer));
}

void Transport::readLink(Link* link)
{
    const QByteArray data = link->socket->readAll();
    link->reader.append(data.constData(), std::size_t(data.size()));
    UniqueIPC::Frame frame;
    for (;;) {
        const auto result = link->reader.next(frame);
        if (result == UniqueIPC::FrameReader::Result::NeedMore)
            return;
        if (result == UniqueIPC::FrameReader::Result::Error) {
            LOG(WARNING) << "Closing the IPC link to " << link->peer << ": " << link->reader.error();
            link->socket->abort();
            return;
        }
        if (frame.kind != UniqueIPC::FrameKind::Reply)
            continue;
        const auto it = link->pending.find(frame.serial);
        if (it == link->pending.end())
            continue;
        const auto callback = it->second;
        link->pending.erase(it);
        if (callback)
            callback(frame.status == UniqueIPC::ReplyStatus::Handled);
    }
}

void Transport::closeLink(Link* link)
{
    const auto it = m_links.find(link->peer);
    if (it == m_links.end() || it->second != link)
        return;
    m_links.erase(it);
    const std::string peer = link->peer;
    if (link->connected) {
        {
            std::lock_guard<std::mutex> lock(m_state->mutex);
            m_state->connected.erase(peer);
        }
        emit applicationDisconnected(QString::fromStdString(peer));
    }
    auto pending = std::move(link->pending);
    link->socket->disconnect(this);
    link->socket->deleteLater();
    delete link;
    for (auto& entry : pending)
        if (entry.second)
            entry.second(false);
    removeIfStale(peer);
}

void Transport::removeIfStale(const std::string& peer, int attempt)
{
    const ProductAppID id(peer);
    const QString path = m_directory + QLatin1Char('/') + QString::fromStdString(peer);
    if (!id.IsValid() || !QFile::exists(path))
        return;
    if (AppManager::IsProcessAlive(id.GetPid())) {
        // A process that is being killed closes its sockets before it is seen dead, so the
        // link may close a moment too early; look again a few times, then leave it to the
        // next scan, which tries the socket itself.
        if (attempt < 4)
            QTimer::singleShot(100 << attempt, this, [this, peer, attempt] {
                if (!m_links.count(peer))
                    removeIfStale(peer, attempt + 1);
            });
        return;
    }
    if (QFile::remove(path))
        LOG(INFO) << "Removed the stale IPC socket of " << peer;
}

void Transport::send(const UniqueIPC::Call& call, const UniqueIPC::TaskCallback& callback)
{
    auto collect = [&] {
        std::vector<Link*> links;
        for (auto& entry : m_links)
            if (AppManager::IsValidAppId(call.target, entry.first))
                links.push_back(entry.second);
        return links;
    };
    std::vector<Link*> links = collect();
    if (links.empty()) {
        scan();  // the directory watch may not have reported a newcomer yet
        links = collect();
    }
    if (links.empty()) {
        LOG(WARNING) << "No running application \"" << call.target << "\" to receive the IPC call \"" << call.function << "\"";
        if (callback)
            callback(false);
        return;
    }
    // Every running instance of the target gets the call; the callback hears the first answer.
    auto answered = std::make_shared<bool>(false);
    UniqueIPC::TaskCallback once = [answered, callback](bool handled) {
        if (*answered)
            return;
        *answered = true;
        if (callback)
            callback(handled);
    };
    for (Link* link : links) {
        UniqueIPC::Call numbered = call;
        numbered.serial = ++m_serial;
        link->pending[numbered.serial] = once;
        std::string frame = UniqueIPC::encodeCall(numbered);
        if (link->connected)
            link->socket->write(frame.data(), qint64(frame.size()));
        else
            link->queued.push_back(std::move(frame));
    }
}

} // namespace App
} // namespace Tavrin
