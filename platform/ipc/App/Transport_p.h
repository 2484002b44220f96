#pragma once

#include "UniqueIPC/Frame.h"
#include "UniqueIPC/Invoker.h"
#include "UniqueIPC/Task.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <memory>
#include <mutex>
#include <set>
#include <string>

class QFileSystemWatcher;
class QLocalServer;
class QLocalSocket;
class QTimer;

namespace Tavrin {
namespace App {

// What the GUI thread may read while the transport works on its own thread.
struct TransportState
{
    mutable std::mutex mutex;
    std::set<std::string> connected;  // connection ids with a live link
};

// The socket work of one application, living on the IPC thread: a server on
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

    static int stallTimeoutMs();

signals:
    void applicationConnected(const QString& connectId);
    void applicationDisconnected(const QString& connectId);
    void peerRefused(uint uid);

private:
    struct Incoming;
    struct Link;

    void acceptPending();
    void readIncoming(Incoming* in);
    void dropIncoming(Incoming* in, const std::string& reason);
    void openLink(const std::string& peer);
    void readLink(Link* link);
    void closeLink(Link* link);
    void removeIfStale(const std::string& peer, int attempt = 0);

    QString m_directory;
    std::string m_connectId;
    std::shared_ptr<UniqueIPC::InvokerStorage> m_invokers;
    std::shared_ptr<TransportState> m_state;
    QLocalServer* m_server = nullptr;
    QFileSystemWatcher* m_watcher = nullptr;
    QHash<QLocalSocket*, Incoming*> m_incoming;
    std::map<std::string, Link*> m_links;
    std::uint32_t m_serial = 0;
};

} // namespace App
} // namespace Tavrin
