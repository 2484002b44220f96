#include "App/IPCBaseProtocol.h"

#include "App/AppManager.h"
#include "App/Transport_p.h"

#include <QThread>

#include <glog/logging.h>

#include <atomic>
#include <stdexcept>

namespace Tavrin {
namespace App {

struct IPCBaseProtocol::Impl
{
    std::string appId;
    std::string productId;
    std::string connectId;
    UniqueIPC::ApiVersion version;
    std::shared_ptr<UniqueIPC::InvokerStorage> invokers = std::make_shared<UniqueIPC::InvokerStorage>();
    std::shared_ptr<TransportState> state = std::make_shared<TransportState>();
    QThread thread;
    Transport* transport = nullptr;
    std::atomic_bool started{false};
};

IPCBaseProtocol::IPCBaseProtocol(const std::string& appId, const std::string& productId, UniqueIPC::ApiVersion version,
                                 QObject* parent)
    : QObject(parent), d(std::make_unique<Impl>())
{
    d->appId = appId;
    d->productId = productId;
    d->version = std::move(version);
    d->connectId = AppManager::MakeConnectId(productId, appId);
    d->thread.setObjectName(QStringLiteral("IPC"));
}

IPCBaseProtocol::~IPCBaseProtocol()
{
    if (d->transport) {
        Transport* transport = d->transport;
        QMetaObject::invokeMethod(transport, [transport] { delete transport; }, Qt::BlockingQueuedConnection);
        d->transport = nullptr;
    }
    d->thread.quit();
    d->thread.wait();
    if (d->started && AppManager::GetCurrentConnectId(d->appId) == d->connectId)
        AppManager::SetCurrentConnectId(d->appId, std::string());
}

void IPCBaseProtocol::StartCommunication()
{
    if (d->started)
        return;
    QString error;
    if (!AppManager::EnsureSocketDirectory(&error))
        throw std::runtime_error("IPC socket directory unusable: " + error.toStdString());

    d->thread.start();
    auto* transport = new Transport(AppManager::SocketDirectory(), d->connectId, d->invokers, d->state);
    transport->moveToThread(&d->thread);
    connect(transport, &Transport::applicationConnected, this, &IPCBaseProtocol::OnNewApplication, Qt::DirectConnection);
    connect(transport, &Transport::applicationDisconnected, this, &IPCBaseProtocol::OnApplicationQuit, Qt::DirectConnection);
    connect(transport, &Transport::peerRefused, this, &IPCBaseProtocol::PeerRefused, Qt::DirectConnection);

    bool listening = false;
    QMetaObject::invokeMethod(
        transport,
        [&] {
            listening = transport->listen(&error);
            if (listening)
                transport->scan();
        },
        Qt::BlockingQueuedConnection);
    if (!listening) {
        QMetaObject::invokeMethod(transport, [transport] { delete transport; }, Qt::BlockingQueuedConnection);
        d->thread.quit();
        d->thread.wait();
        throw std::runtime_error(error.toStdString());
    }
    d->transport = transport;
    AppManager::SetCurrentConnectId(d->appId, d->connectId);
    d->started = true;
    LOG(INFO) << "IPC: " << d->connectId << " listening";
}

bool IPCBaseProtocol::IsCommunicationStarted() const
{
    return d->started;
}

void IPCBaseProtocol::WarnAboutNotCommunicated(const std::string& function) const
{
    LOG(WARNING) << "IPC communication of \"" << d->appId << "\" has not started; \"" << function << "\" was not sent";
}

UniqueIPC::TaskPtr IPCBaseProtocol::CreateTask(const std::string& targetAppId) const
{
    return std::make_shared<UniqueIPC::Task>(targetAppId, d->connectId, d->version);
}

void IPCBaseProtocol::AddTask(const UniqueIPC::TaskPtr& task, UniqueIPC::TaskCallback callback)
{
    if (!task)
        return;
    if (!d->started) {
        WarnAboutNotCommunicated(task->GetCall().function);
        if (callback)
            callback(false);
        return;
    }
    Transport* transport = d->transport;
    const UniqueIPC::Call call = task->GetCall();
    QMetaObject::invokeMethod(transport, [transport, call, callback] { transport->send(call, callback); }, Qt::QueuedConnection);
}

const std::string& IPCBaseProtocol::GetAppId() const
{
    return d->appId;
}

const std::string& IPCBaseProtocol::GetProductId() const
{
    return d->productId;
}

const std::string& IPCBaseProtocol::GetConnectId() const
{
    return d->connectId;
}

const UniqueIPC::ApiVersion& IPCBaseProtocol::GetVersion() const
{
    return d->version;
}

UniqueIPC::InvokerStorage& IPCBaseProtocol::GetInvokers()
{
    return *d->invokers;
}

std::vector<std::string> IPCBaseProtocol::GetConnectedApplications() const
{
    std::lock_guard<std::mutex> lock(d->state->mutex);
    return std::vector<std::string>(d->state->connected.begin(), d->state->connected.end());
}

bool IPCBaseProtocol::IsAlone() const
{
    std::lock_guard<std::mutex> lock(d->state->mutex);
    return d->state->connected.empty();
}

bool IPCBaseProtocol::IsApplicationConnected(const std::string& appId) const
{
    std::lock_guard<std::mutex> lock(d->state->mutex);
    for (const std::string& id : d->state->connected)
        if (AppManager::IsValidAppId(appId, id))
            return true;
    return false;
}

bool IPCBaseProtocol::IsStartedFromAny() const
{
    return !qEnvironmentVariableIsEmpty("KLIPVANE_IPC_PARENT");
}

QString IPCBaseProtocol::SocketPath() const
{
    return AppManager::SocketDirectory() + QLatin1Char('/') + QString::fromStdString(d->connectId);
}

} // namespace App
} // namespace Tavrin
