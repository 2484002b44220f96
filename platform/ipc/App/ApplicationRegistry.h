#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace Tavrin {
namespace App {

// One application of the product family as the registry describes it.
struct ApplicationInfo
{
    QString id;          // application id, e.g. "screencapture"
    QString productId;   // the product it belongs to
    QString executable;  // absolute path of its program
    QStringList arguments;  // arguments always passed before the caller's
    bool internal = true;   // launched as a child of the caller (tracked) or detached
};

// The installed applications of the product family, read from "applications.json" beside
// the executable (or the file named by KLIPVANE_APP_REGISTRY):
//
//   { "applications": [ { "id": "screencapture", "productId": "orvel-capture",
//                         "executable": "kvcompanion", "arguments": ["--app-id", "screencapture"],
//                         "launch": "internal" } ] }
//
// Relative executable paths are taken relative to the registry file.
class IApplicationRegistryProvider
{
public:
    virtual ~IApplicationRegistryProvider() = default;
    virtual std::optional<ApplicationInfo> GetApplication(const QString& appId) const = 0;
    virtual std::vector<ApplicationInfo> GetApplications() const = 0;
    // Where the registry was read from; empty when none was found.
    virtual QString GetSource() const = 0;
};

std::shared_ptr<IApplicationRegistryProvider> CreateApplicationRegistryProvider();
std::shared_ptr<IApplicationRegistryProvider> CreateApplicationRegistryProvider(const QString& registryFile);

} // namespace App
} // namespace Tavrin
