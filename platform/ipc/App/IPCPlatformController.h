#pragma once

#include "App/ApplicationProcess.h"
#include "App/IPCBaseProtocol.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Tavrin {
namespace App {

class ICustomizationManager;

// What an application asks of the inter-process layer beyond sending calls: who else runs,
// whether it was launched by another application, and launching applications of the family.
class IPCPlatformController
{
public:
    IPCPlatformController(std::shared_ptr<IPCBaseProtocol> protocol, std::shared_ptr<ICustomizationManager> customization);
    ~IPCPlatformController();

    std::vector<std::string> GetConnectedApplications() const;
    bool IsAlone() const;
    bool IsStartedFromAny() const;
    bool IsApplicationConnected(const std::string& appId) const;

    // Launches `process`. `started` runs once it is running, `failed` when it cannot be
    // started, or when a child process ends without having connected. `skip` is asked first: when it answers true the launch is abandoned and
    // neither callback runs (a caller that learns the application appeared meanwhile).
    void RunApplication(const std::shared_ptr<IApplicationProcess>& process, std::function<void()> started,
                        std::function<void()> failed, std::function<bool()> skip);

    void ImportFromFileStorage(qint64 storageId);

    std::shared_ptr<IPCBaseProtocol> GetProtocol() const { return m_protocol; }

private:
    std::shared_ptr<IPCBaseProtocol> m_protocol;
    std::shared_ptr<ICustomizationManager> m_customization;
};

} // namespace App
} // namespace Tavrin
