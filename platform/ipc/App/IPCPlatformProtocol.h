#pragma once

#include "App/ApplicationRegistry.h"
#include "App/IPCBaseProtocol.h"

#include <memory>
#include <string>

namespace Tavrin {
namespace App {

class ICustomizationManager;

// The base protocol of an application that belongs to a customised product: its product
// id comes from the customisation manager, and it knows the family's application registry.
// Also the calls every product application can send to the platform application.
class IPCPlatformProtocol : public IPCBaseProtocol
{
    Q_OBJECT
public:
    IPCPlatformProtocol(const std::shared_ptr<ICustomizationManager>& customization, const std::string& appName,
                        UniqueIPC::ApiVersion version, const QString& appId,
                        const std::shared_ptr<IApplicationRegistryProvider>& registry, QObject* parent = nullptr);
    ~IPCPlatformProtocol() override;

    const std::string& GetAppName() const { return m_appName; }
    std::shared_ptr<ICustomizationManager> GetCustomizationManager() const { return m_customization; }
    std::shared_ptr<IApplicationRegistryProvider> GetApplicationRegistry() const { return m_registry; }

    // Asks the platform application ("orvelplatform") to import from its file storage.
    void SendImportFromFileStorage(qint64 storageId);
    // Asks the platform application to open a web address for this application.
    void SendOpenLink(const QString& url);

private:
    std::shared_ptr<ICustomizationManager> m_customization;
    std::string m_appName;
    std::shared_ptr<IApplicationRegistryProvider> m_registry;
};

} // namespace App
} // namespace Tavrin
