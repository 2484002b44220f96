#include "App/IPCPlatformProtocol.h"

#include <App/ICustomizationManager.h>

namespace Tavrin {
namespace App {
namespace {

std::string productOf(const std::shared_ptr<ICustomizationManager>& customization)
{
    return customization ? customization->productId() : std::string("klipvane");
}

} // namespace

IPCPlatformProtocol::IPCPlatformProtocol(const std::shared_ptr<ICustomizationManager>& customization,
                                         const std::string& appName, UniqueIPC::ApiVersion version, const QString& appId,
                                         const std::shared_ptr<IApplicationRegistryProvider>& registry, QObject* parent)
    : IPCBaseProtocol(appId.toStdString(), productOf(customization), std::move(version), parent),
      m_customization(customization),
      m_appName(appName),
      m_registry(registry)
{
}

IPCPlatformProtocol::~IPCPlatformProtocol() = default;

void IPCPlatformProtocol::SendImportFromFileStorage(qint64 storageId)
{
    if (!IsCommunicationStarted()) {
        WarnAboutNotCommunicated("ImportFromFileStorage");
        return;
    }
    auto task = CreateTask("orvelplatform");
    task->SetFunction("ImportFromFileStorage", {GetConnectId(), UniqueIPC::details::ArgToString(std::int64_t(storageId))},
                      {"QString", "enum64_t"});
    AddTask(task, {});
}

void IPCPlatformProtocol::SendOpenLink(const QString& url)
{
    if (!IsCommunicationStarted()) {
        WarnAboutNotCommunicated("OpenLink");
        return;
    }
    auto task = CreateTask("orvelplatform");
    task->SetFunction("OpenLink", {UniqueIPC::details::ArgToString(url)}, {"QString"});
    AddTask(task, {});
}

} // namespace App
} // namespace Tavrin
