#pragma once

#include "UniqueIPC/ApiVersion.h"
#include "UniqueIPC/Invoker.h"
#include "UniqueIPC/Task.h"

#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

namespace Tavrin {
namespace App {

// One application's end of the inter-process layer.
//
// Each running application listens on its own local socket in the user's private socket
// directory (AppManager::SocketDirectory()); there is no broker. Peers are found by
// listing and watching that directory, and each peer gets one outgoing link: the link
// carries this application's calls, and its closing tells that the peer quit, also when
// it crashed. Sockets and links live on a thread of their own, so received calls run
// their invokers on that thread and the signals below are emitted there.
//
//   IPCBaseProtocol protocol("screencapture", "orvel-capture", {1, 0, 0, 0, ""});
//   protocol.GetInvokers().Register("Quit", {}, {1, 0, 0, 0, ""}, quitInvoker);
//   protocol.StartCommunication();            // throws std::runtime_error on failure
//   auto task = protocol.CreateTask("klipvane");
//   task->SetFunction("OnOpenProject", {path}, {"QString"});
//   protocol.AddTask(task, {});
class IPCBaseProtocol : public QObject
{
    Q_OBJECT
public:
    IPCBaseProtocol(const std::string& appId, const std::string& productId, UniqueIPC::ApiVersion version,
                    QObject* parent = nullptr);
    ~IPCBaseProtocol() override;

    // Creates the socket directory, listens, and links to the applications already
    // running. Throws std::runtime_error when the directory is unusable or listening fails.
    // A second call does nothing.
    void StartCommunication();
    bool IsCommunicationStarted() const;
    // Logs that `function` was not sent because communication has not started.
    void WarnAboutNotCommunicated(const std::string& function) const;

    UniqueIPC::TaskPtr CreateTask(const std::string& targetAppId) const;
    // Sends the task to every running instance of its target. Never blocks; the callback
    // (may be empty) runs on the IPC thread with the first answer.
    void AddTask(const UniqueIPC::TaskPtr& task, UniqueIPC::TaskCallback callback);

    const std::string& GetAppId() const;
    const std::string& GetProductId() const;
    // This process's connection id for its application id.
    const std::string& GetConnectId() const;
    const UniqueIPC::ApiVersion& GetVersion() const;
    UniqueIPC::InvokerStorage& GetInvokers();

    // Connection ids of the applications currently linked (this one excluded).
    std::vector<std::string> GetConnectedApplications() const;
    bool IsAlone() const;
    bool IsApplicationConnected(const std::string& appId) const;
    // True when this process was launched by another application of the family (which
    // passes its connection id in KLIPVANE_IPC_PARENT).
    bool IsStartedFromAny() const;
    QString SocketPath() const;

signals:
    // Emitted on the IPC thread with the peer's connection id.
    void OnNewApplication(const QString& connectId);
    void OnApplicationQuit(const QString& connectId);
    void PeerRefused(uint uid);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace App
} // namespace Tavrin
