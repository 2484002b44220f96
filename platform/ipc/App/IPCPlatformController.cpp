#include "App/IPCPlatformController.h"

#include "App/AppManager.h"
#include "App/IPCPlatformProtocol.h"

#include <glog/logging.h>

#include <atomic>

namespace Tavrin {
namespace App {

IPCPlatformController::IPCPlatformController(std::shared_ptr<IPCBaseProtocol> protocol,
                                             std::shared_ptr<ICustomizationManager> customization)
    : m_protocol(std::move(protocol)), m_customization(std::move(customization))
{
}

IPCPlatformController::~IPCPlatformController() = default;

std::vector<std::string> IPCPlatformController::GetConnectedApplications() const
{
    return m_protocol ? m_protocol->GetConnectedApplications() : std::vector<std::string>();
}

bool IPCPlatformController::IsAlone() const
{
    return !m_protocol || m_protocol->IsAlone();
}

bool IPCPlatformController::IsStartedFromAny() const
{
    return m_protocol && m_protocol->IsStartedFromAny();
}

bool IPCPlatformController::IsApplicationConnected(const std::string& appId) const
{
    return m_protocol && m_protocol->IsApplicationConnected(appId);
}

void IPCPlatformController::RunApplication(const std::shared_ptr<IApplicationProcess>& process, std::function<void()> started,
                                           std::function<void()> failed, std::function<bool()> skip)
{
    if (skip && skip())
        return;
    if (!process || !process->IsValid()) {
        if (failed)
            failed();
        return;
    }
    const QString parent = m_protocol ? QString::fromStdString(m_protocol->GetConnectId()) : QString();
    // An application that ends without ever connecting has not really started (a broken
    // program, a missing library): its quitting is never announced over a link, so the
    // caller hears of it as a failure instead, and whatever it did on `started` is undone.
    auto connected = std::make_shared<std::atomic_bool>(false);
    auto watch = std::make_shared<QMetaObject::Connection>();
    if (m_protocol) {
        const std::string appId = process->GetAppId().toStdString();
        *watch = QObject::connect(m_protocol.get(), &IPCBaseProtocol::OnNewApplication,
                                  [connected, appId](const QString& connectId) {
                                      if (AppManager::IsValidAppId(appId, connectId.toStdString()))
                                          *connected = true;
                                  });
    }
    auto ended = [connected, watch, failed, id = process->GetAppId()] {
        QObject::disconnect(*watch);
        if (*connected)
            return;  // its quitting arrives as OnApplicationQuit
        LOG(WARNING) << "Application \"" << id.toStdString() << "\" ended without connecting";
        if (failed)
            failed();
    };
    process->Start(parent, std::move(started), failed, std::move(ended));
}

void IPCPlatformController::ImportFromFileStorage(qint64 storageId)
{
    if (auto platform = std::dynamic_pointer_cast<IPCPlatformProtocol>(m_protocol))
        platform->SendImportFromFileStorage(storageId);
    else
        LOG(WARNING) << "Import from the file storage needs a product application's protocol";
}

} // namespace App
} // namespace Tavrin
