#pragma once

#include "UniqueIPC/Frame.h"
#include "UniqueIPC/Invoker.h"
#include "UniqueIPC/Task.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QStringList>

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

class QFileSystemWatcher;
class QLocalSocket;
class QSocketNotifier;
class QTimer;

namespace Tavrin {
namespace App {

// What the GUI thread may read while the transport works on its own thread.
struct TransportState
{
    mutable std::mutex mutex;
    std::set<std::string> connected;  // connection ids with a live link
};

// How much a crowd of peers may take from one application. Each has an environment
// override (KLIPVANE_IPC_STALL_MS, KLIPVANE_IPC_IDLE_MS, KLIPVANE_IPC_MAX_CONNECTIONS,
// KLIPVANE_IPC_MAX_BUFFERED) so tests can reach them quickly.
struct TransportLimits
{
    int stallMs = 5000;       // a frame or greeting that stops arriving
    int idleMs = 30000;       // a greeted one-shot connection with nothing in flight
    int maxConnections = 64;  // incoming connections at once; a quarter of the descriptor limit at most
    std::size_t maxBuffered = 16u * 1024u * 1024u;  // bytes of incomplete frames, all connections together

    static TransportLimits fromEnvironment();
};

// The socket work of one application, living on the IPC thread: a listening socket on
// "<dir>/<connect id>" for incoming calls, and one outgoing link per peer found in the
// directory. A link that closes means its peer has quit (crashed included).
class Transport : public QObject
{
    Q_OBJECT
public:
    Transport(QString directory, std::string connectId, std::shared_ptr<UniqueIPC::InvokerStorage> invokers,
              std::shared_ptr<TransportState> state);
    ~Transport() override;

    // All below run on the IPC thread (invoked queued from the owner).
    bool listen(QString* error);
    void scan();
    void send(const UniqueIPC::Call& call, const UniqueIPC::TaskCallback& callback);
    void shutdown();

signals:
    void applicationConnected(const QString& connectId);
    void applicationDisconnected(const QString& connectId);
    void peerRefused(uint uid);

private:
    struct Incoming;
    struct Link;

    QString socketPath() const;
    void closeListener();
    void acceptPending();
    void acceptFailed(int error);
    void adopt(int descriptor);
    void readIncoming(Incoming* in);
    void armTimer(Incoming* in);
    void timedOut(Incoming* in);
    bool isPeerLink(const Incoming* in) const;
    Incoming* longestIdle(const Incoming* except) const;
    bool enforceBufferLimit(Incoming* current);
    bool invoke(const UniqueIPC::Call& call);
    void dropIncoming(Incoming* in, const std::string& reason);
    void forgetIncoming(Incoming* in);
    void forgetCrowdOnceCalm();
    void openLink(const std::string& peer);
    void readLink(Link* link);
    void closeLink(Link* link);
    void removeIfStale(const std::string& peer, int attempt = 0);

    QString m_directory;
    std::string m_connectId;
    std::shared_ptr<UniqueIPC::InvokerStorage> m_invokers;
    std::shared_ptr<TransportState> m_state;
    TransportLimits m_limits;
    int m_listener = -1;
    QSocketNotifier* m_acceptNotifier = nullptr;
    QFileSystemWatcher* m_watcher = nullptr;
    QHash<QLocalSocket*, Incoming*> m_incoming;
    std::map<std::string, Link*> m_links;
    std::uint32_t m_serial = 0;
    QElapsedTimer m_clock;
    std::size_t m_buffered = 0;  // incomplete-frame bytes held for all incoming connections
    bool m_crowdLogged = false;
    int m_acceptFailedWith = -1;  // connections when accept() last began to fail, -1 while it works
    // Calls already applied, by sender and serial, so a caller that lost the answer can
    // send again without the call taking effect twice. Oldest forgotten first.
    std::map<std::pair<std::string, std::uint32_t>, bool> m_applied;
    std::deque<std::pair<std::string, std::uint32_t>> m_appliedOrder;
};

} // namespace App
} // namespace Tavrin
