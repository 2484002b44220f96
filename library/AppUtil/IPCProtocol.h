#pragma once

#include "AppUtil_export.h"

#include <App/IPCPlatformProtocol.h>
#include <Package/Package.h>
#include <UniqueIPC/Frame.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace IPC {

// The editor's message set on the inter-process layer.
//
// Received: "OnAddFiles" (any number of paths), "OnOpenProject" (a path), "OnPackageDeploy",
// "OnPackageInstall", "hello_successfull"; any other name is logged and answered as handled.
// Each becomes one of the signals below, emitted on the IPC thread, so receivers connect
// queued. Sent: the four senders, which drop their call (with a warning) until
// StartCommunication() has run and never wait for an answer.
//
// Arguments travel as byte strings: QString as UTF-8 ("QString"), the package enums as
// signed decimal text ("enum64_t"). An enum argument that is not a number or out of range
// drops its call with a log line; nothing is thrown into the event loop.
class APPUTIL_EXPORT Protocol : public Tavrin::App::IPCPlatformProtocol
{
    Q_OBJECT
public:
    Protocol(const QString& id, const std::shared_ptr<Tavrin::App::IApplicationRegistryProvider>& registry);
    ~Protocol() override;

    void sendOpenProject(const QString& path);
    void sendPackageDeployed(const QString& packageId, const QString& version, const QString& location,
                             Package::DeployResult result);
    void sendPackageInstalled(const QString& packageId, const QString& version, const QString& location,
                              Package::DeployResult result, Package::InstallMode mode);
    void sendPrepareToCapture(const QString& appId);

    // The calls a second launch of the editor hands to the running one (see
    // Tavrin::App::SendCallAndWait), encoded exactly as the receiving side expects them.
    static Tavrin::UniqueIPC::Call addFilesCall(const QStringList& files);
    static Tavrin::UniqueIPC::Call openProjectCall(const QString& path);

    class Impl;

signals:
    void onAddFiles(const QStringList& files);
    void onOpenProject(const QString& path);
    void onPackageDeploy(const QString& packageId, const QString& version, const QString& location,
                         Package::DeployResult result);
    void onPackageInstall(const QString& packageId, const QString& version, const QString& location,
                          Package::DeployResult result, Package::InstallMode mode);

private:
    std::unique_ptr<Impl> d;
};

} // namespace IPC
