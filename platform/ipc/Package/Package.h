#pragma once

#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>

#include <QMetaType>
#include <QString>

#include <cstdint>

// Outcomes of the package installer, as they travel between the installer and the editor.
namespace Package {

enum class DeployResult : std::int32_t { Success = 0, Failed = 1, Cancelled = 2, AlreadyDeployed = 3 };
enum class InstallMode : std::int32_t { Install = 0, Update = 1, Repair = 2, Remove = 3 };

// Published on the package channel (Package::globalObject()) when the installer reports a
// finished deployment. The three texts are passed on as the installer sent them.
struct DeployFinishedNotification : Message::Types::Notification<Package::Object>
{
    DeployFinishedNotification(QString packageId, QString version, QString location, DeployResult result)
        : Notification(Package::globalObject()),
          packageId(std::move(packageId)),
          version(std::move(version)),
          location(std::move(location)),
          result(result)
    {
    }
    QString packageId;
    QString version;
    QString location;
    DeployResult result;
};

struct InstallFinishedNotification : Message::Types::Notification<Package::Object>
{
    InstallFinishedNotification(QString packageId, QString version, QString location, DeployResult result, InstallMode mode)
        : Notification(Package::globalObject()),
          packageId(std::move(packageId)),
          version(std::move(version)),
          location(std::move(location)),
          result(result),
          mode(mode)
    {
    }
    QString packageId;
    QString version;
    QString location;
    DeployResult result;
    InstallMode mode;
};

} // namespace Package

Q_DECLARE_METATYPE(Package::DeployResult)
Q_DECLARE_METATYPE(Package::InstallMode)
