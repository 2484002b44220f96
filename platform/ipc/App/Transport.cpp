#include "App/Transport_p.h"

#include "App/AppManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QLocalSocket>
#include <QSocketNotifier>
#include <QTimer>

#include <glog/logging.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/un.h>
#include <unistd.h>

namespace Tavrin {
namespace App {
namespace {

// Calls remembered as applied; a repeat comes within seconds, so a short memory does.
constexpr std::size_t kAppliedMemory = 1024;

// The uid of the process at the other end of a connected local socket, or -1.
long long peerUid(int descriptor)
{
    struct ucred credentials;
    socklen_t size = sizeof credentials;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return -1;
    return credentials.uid;
}

std::string describePeer(const std::string& peer)
{
    return peer.empty() ? std::string("an anonymous peer") : peer;
}

int positiveFromEnvironment(const char* name, int fallback)
{
    bool ok = false;
    const int configured = qEnvironmentVariableIntValue(name, &ok);
    return ok && configured > 0 ? configured : fallback;
}

} // namespace

TransportLimits TransportLimits::fromEnvironment()
{
    TransportLimits limits;
    limits.stallMs = positiveFromEnvironment("KLIPVANE_IPC_STALL_MS", limits.stallMs);
    limits.idleMs = positiveFromEnvironment("KLIPVANE_IPC_IDLE_MS", limits.idleMs);
    // Connections must never take the descriptors the rest of the application needs: when
    // accept() fails for lack of them, the socket stops serving anyone.
    struct rlimit files = {};
    if (::getrlimit(RLIMIT_NOFILE, &files) == 0 && files.rlim_cur != RLIM_INFINITY)
        limits.maxConnections = int(std::max<rlim_t>(4, std::min<rlim_t>(rlim_t(limits.maxConnections), files.rlim_cur / 4)));
    limits.maxConnections = positiveFromEnvironment("KLIPVANE_IPC_MAX_CONNECTIONS", limits.maxConnections);
    // One frame of the largest size must always fit.
    limits.maxBuffered = std::max<std::size_t>(
        std::size_t(positiveFromEnvironment("KLIPVANE_IPC_MAX_BUFFERED", int(limits.maxBuffered))),
        UniqueIPC::kMaxBodySize + UniqueIPC::kHeaderSize);
    return limits;
}

struct Transport::Incoming
{
    QLocalSocket* socket = nullptr;
    UniqueIPC::FrameReader reader;
    QTimer* timer = nullptr;  // stall, missing greeting or idleness, whichever applies
    std::string peer;
    bool greeted = false;
    qint64 lastActivity = 0;  // on m_clock
    std::size_t counted = 0;  // this connection's share of m_buffered
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
      m_state(std::move(state)),
      m_limits(TransportLimits::fromEnvironment())
{
    m_clock.start();
}

Transport::~Transport()
{
    shutdown();
}

QString Transport::socketPath() const
{
    return m_directory + QLatin1Char('/') + QString::fromStdString(m_connectId);
}

bool Transport::listen(QString* error)
{
    // A listening socket of our own rather than QLocalServer: QLocalServer closes itself and
    // removes its socket file for good when one accept() fails (out of descriptors), while
    // here a failure only pauses accepting.
    const QString path = socketPath();
    const QByteArray encoded = QFile::encodeName(path);
    const auto fail = [&](const QString& why) {
        if (error)
            *error = QStringLiteral("cannot listen on %1: %2").arg(path, why);
        closeListener();
        return false;
    };
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (std::size_t(encoded.size()) >= sizeof address.sun_path)
        return fail(QStringLiteral("the path is too long for a local socket"));
    std::memcpy(address.sun_path, encoded.constData(), std::size_t(encoded.size()));
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_listener < 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return fail(QString::fromLocal8Bit(std::strerror(errno)));
    // The directory is private already; the socket itself is made private too, in case the
    // directory was opened up by hand.
    ::chmod(encoded.constData(), 0600);
    if (::listen(m_listener, SOMAXCONN) != 0) {
        const QString why = QString::fromLocal8Bit(std::strerror(errno));
        ::unlink(encoded.constData());
        return fail(why);
    }
    m_acceptNotifier = new QSocketNotifier(m_listener, QSocketNotifier::Read, this);
    connect(m_acceptNotifier, &QSocketNotifier::activated, this, &Transport::acceptPending);

    if (!m_watcher) {
        m_watcher = new QFileSystemWatcher(this);
        m_watcher->addPath(m_directory);
        connect(m_watcher, &QFileSystemWatcher::directoryChanged, this, &Transport::scan);
    }
    return true;
}

void Transport::closeListener()
{
    delete m_acceptNotifier;
    m_acceptNotifier = nullptr;
    if (m_listener >= 0) {
        ::close(m_listener);
        m_listener = -1;
    }
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
    m_buffered = 0;
    if (m_listener >= 0) {
        closeListener();
        ::unlink(QFile::encodeName(socketPath()).constData());
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
    while (m_listener >= 0) {
        const int descriptor = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (descriptor >= 0) {
            adopt(descriptor);
            continue;
        }
        const int error = errno;
        if (error == EINTR || error == ECONNABORTED || error == EPROTO)
            continue;
        if (error != EAGAIN && error != EWOULDBLOCK)
            acceptFailed(error);
        return;
    }
}

void Transport::acceptFailed(int error)
{
    if (m_acceptFailedWith < 0) {
        m_acceptFailedWith = m_incoming.size();
        LOG(ERROR) << "IPC: cannot accept connections on " << socketPath().toStdString() << ": " << std::strerror(error)
                   << "; closing idle connections and trying again";
    }
    // Out of descriptors (or kernel memory): free one if a connection is only idling, else
    // wait a moment. The listening socket stays, so nobody is turned away for good.
    if (Incoming* idle = longestIdle(nullptr)) {
        forgetIncoming(idle);  // the one line above tells of the whole crowd
        QMetaObject::invokeMethod(this, &Transport::acceptPending, Qt::QueuedConnection);
        return;
    }
    m_acceptNotifier->setEnabled(false);
    QTimer::singleShot(200, this, [this] {
        if (m_acceptNotifier) {
            m_acceptNotifier->setEnabled(true);
            acceptPending();
        }
    });
}

void Transport::adopt(int descriptor)
{
    const long long uid = peerUid(descriptor);
    if (uid != static_cast<long long>(::getuid())) {
        LOG(WARNING) << "Refused an IPC connection from uid " << uid << " (this application runs as uid " << ::getuid()
                     << ")";
        ::close(descriptor);
        emit peerRefused(uint(uid));
        return;
    }
    auto* socket = new QLocalSocket(this);
    if (!socket->setSocketDescriptor(descriptor, QLocalSocket::ConnectedState, QIODevice::ReadWrite)) {
        LOG(WARNING) << "IPC: an accepted connection cannot be used: " << socket->errorString().toStdString();
        ::close(descriptor);
        delete socket;
        return;
    }
    auto* in = new Incoming;
    in->socket = socket;
    in->lastActivity = m_clock.elapsed();
    in->timer = new QTimer(socket);
    in->timer->setSingleShot(true);
    m_incoming.insert(socket, in);
    connect(in->timer, &QTimer::timeout, this, [this, in] { timedOut(in); });
    connect(socket, &QLocalSocket::readyRead, this, [this, in] { readIncoming(in); });
    connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
        if (Incoming* gone = m_incoming.value(socket))
            forgetIncoming(gone);
    });
    armTimer(in);

    // A crowd of connections costs descriptors the application needs: past the cap the
    // connection idle for longest goes, so a newcomer (a second launch) always gets in.
    if (m_incoming.size() > m_limits.maxConnections) {
        if (!m_crowdLogged) {
            LOG(WARNING) << "IPC: more than " << m_limits.maxConnections
                         << " connections at once; closing the longest idle ones";
            m_crowdLogged = true;
        }
        if (Incoming* idle = longestIdle(in))
            forgetIncoming(idle);  // the one line above tells of the whole crowd
    }
    forgetCrowdOnceCalm();
    if (m_incoming.contains(socket) && socket->bytesAvailable() > 0)
        readIncoming(in);
}

void Transport::readIncoming(Incoming* in)
{
    const QByteArray data = in->socket->readAll();
    if (!data.isEmpty())
        in->lastActivity = m_clock.elapsed();
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
            const bool handled = invoke(frame.call);
            const std::string reply = UniqueIPC::encodeReply(
                frame.call.serial, handled ? UniqueIPC::ReplyStatus::Handled : UniqueIPC::ReplyStatus::Failed);
            in->socket->write(reply.data(), qint64(reply.size()));
            break;
        }
        case UniqueIPC::FrameKind::Reply:
            break;
        }
    }
    m_buffered = m_buffered - in->counted + in->reader.buffered();
    in->counted = in->reader.buffered();
    if (enforceBufferLimit(in))
        armTimer(in);
}

bool Transport::invoke(const UniqueIPC::Call& call)
{
    if (call.sender.empty())
        return m_invokers->Invoke(call);
    // A caller that lost its connection before the answer sends the same call again (same
    // sender, same serial); it must not take effect twice.
    const auto key = std::make_pair(call.sender, call.serial);
    const auto known = m_applied.find(key);
    if (known != m_applied.end()) {
        LOG(INFO) << "IPC call \"" << call.function << "\" from " << call.sender << " #" << call.serial
                  << " was applied already; the repeat is ignored";
        return known->second;
    }
    const bool handled = m_invokers->Invoke(call);
    m_applied.emplace(key, handled);
    m_appliedOrder.push_back(key);
    if (m_appliedOrder.size() > kAppliedMemory) {
        m_applied.erase(m_appliedOrder.front());
        m_appliedOrder.pop_front();
    }
    return handled;
}

bool Transport::enforceBufferLimit(Incoming* current)
{
    // Each connection is bounded by the largest frame; together they are bounded too, or a
    // few hundred half-sent frames would take the application's memory.
    while (m_buffered > m_limits.maxBuffered) {
        Incoming* biggest = nullptr;
        for (Incoming* in : qAsConst(m_incoming))
            if (!biggest || in->counted > biggest->counted)
                biggest = in;
        if (!biggest)
            break;
        dropIncoming(biggest, "incomplete frames of all connections exceed " + std::to_string(m_limits.maxBuffered)
                                  + " bytes; this one held " + std::to_string(biggest->counted));
        if (biggest == current)
            return false;
    }
    return true;
}

void Transport::armTimer(Incoming* in)
{
    // Any byte received restarts the clock: a slow writer that keeps going is not a staller.
    if (!in->greeted || in->reader.hasPartialFrame())
        in->timer->start(m_limits.stallMs);
    else if (isPeerLink(in))
        in->timer->stop();  // a running application's link lasts as long as the application
    else
        in->timer->start(m_limits.idleMs);
}

void Transport::timedOut(Incoming* in)
{
    if (in->reader.hasPartialFrame())
        dropIncoming(in, "stalled in the middle of a frame");
    else if (!in->greeted)
        dropIncoming(in, "sent no greeting");
    else if (!isPeerLink(in))
        dropIncoming(in, "idle for " + std::to_string(m_limits.idleMs) + " ms");
}

bool Transport::isPeerLink(const Incoming* in) const
{
    if (in->peer.empty())
        return false;
    const auto it = m_links.find(in->peer);
    return it != m_links.end() && it->second->connected;
}

Transport::Incoming* Transport::longestIdle(const Incoming* except) const
{
    // Anonymous one-shot callers and would-be peers go before the links of running
    // applications, whose closing would tell the peer that this application quit.
    Incoming* found = nullptr;
    bool foundIsPeer = true;
    for (Incoming* in : m_incoming) {
        if (in == except)
            continue;
        const bool peer = isPeerLink(in);
        if (!found || (foundIsPeer && !peer) || (foundIsPeer == peer && in->lastActivity < found->lastActivity)) {
            found = in;
            foundIsPeer = peer;
        }
    }
    return found;
}

void Transport::dropIncoming(Incoming* in, const std::string& reason)
{
    LOG(WARNING) << "Closing the IPC connection of " << describePeer(in->peer) << ": " << reason;
    forgetIncoming(in);
}

void Transport::forgetCrowdOnceCalm()
{
    // The crowd and accept failure are logged once each while they last; half the load they
    // were met at counts as over.
    if (m_incoming.size() <= m_limits.maxConnections / 2)
        m_crowdLogged = false;
    if (m_acceptFailedWith >= 0 && m_incoming.size() <= m_acceptFailedWith / 2)
        m_acceptFailedWith = -1;
}

void Transport::forgetIncoming(Incoming* in)
{
    QLocalSocket* socket = in->socket;
    m_incoming.remove(socket);
    forgetCrowdOnceCalm();
    m_buffered -= in->counted;
    socket->disconnect(this);
    in->timer->disconnect(this);
    in->timer->stop();
    socket->abort();  // closes the descriptor now, not at deleteLater
    socket->deleteLater();
    delete in;
}

void Transport::scan()
{
    if (m_listener < 0)
        return;
    if (!QFileInfo::exists(socketPath())) {
        // Someone removed the socket file (a cleaner of temporary files): nobody can reach
        // this application any more, so it listens again under the same name.
        LOG(ERROR) << "IPC: the socket " << socketPath().toStdString() << " was removed; listening again";
        closeListener();
        QString error;
        if (!listen(&error))
            LOG(ERROR) << "IPC: " << error.toStdString();
    }
    const QStringList entries = QDir(m_directory).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QString& entry : entries) {
        const std::string peer = entry.toStdString();
        if (peer != m_connectId && ProductAppID(peer).IsValid() && !m_links.count(peer))
            openLink(peer);
    }
}

void Transport::openLink(const std::string& peer)
{
    if (peer == m_connectId || m_links.count(peer) || m_listener < 0)
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
