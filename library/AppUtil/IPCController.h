#pragma once

#include "AppUtil_export.h"
#include "IPCProtocol.h"

#include <App/ApplicationRegistry.h>

#include <QObject>
#include <QString>

#include <memory>

class CommandProvider;

namespace Tavrin {
namespace App {
class ILinksOpener;
}
} // namespace Tavrin

namespace IPC {

// The process-wide joint between the editor and the inter-process layer: owns the
// protocol, routes received files and projects to the CommandProvider, republishes package
// results on the bus, launches and tracks the capture companions and tells whether other
// instances run.
//
//   CommandProvider provider;
//   IPC::Controller::init(&provider, QStringLiteral("klipvane"));
//   IPC::Controller::instance().waitForInitialize();   // communication starts here
//   ...
//   IPC::Controller::destroy();
//
// Received calls arrive on the IPC thread and are carried out on the GUI thread.
class APPUTIL_EXPORT Controller : public QObject
{
    Q_OBJECT
public:
    enum AppsScope { SameProduct = 0, AnyApplication = 1 };

    // Creates the controller once; later calls do nothing.
    static void init(CommandProvider* provider, const QString& id);
    static Controller& instance();
    static bool exists();
    static void destroy();

    // Starts communication. A failure is logged and the editor goes on without IPC.
    void waitForInitialize();

    bool isAlone(AppsScope scope) const;
    bool isStartedFromAny() const;

    bool screenCaptureIsAvailable() const;
    bool videoCaptureIsAvailable() const;
    bool orvelPlatformIsAvailable() const;
    bool canStartVideoCapture() const;
    bool canStartScreenCapture() const;
    void runScreenCapture();
    void runVideoCapture();

    void openPlatformFileStorage();
    void openKVProject(const QString& path);
    void sendPackageDeployed(const QString& packageId, const QString& version, const QString& location,
                             Package::DeployResult result);
    void sendPackageInstalled(const QString& packageId, const QString& version, const QString& location,
                              Package::DeployResult result, Package::InstallMode mode);

    CommandProvider* commandProvider() const;
    std::shared_ptr<Protocol> getProtocol() const;
    std::shared_ptr<Tavrin::App::IApplicationRegistryProvider> getApplicationRegistryProvider() const;
    std::shared_ptr<Tavrin::App::ILinksOpener> createIPCLinksOpener() const;

    class Engine;

signals:
    // A module's start state may have changed: re-query canStartScreenCapture/canStartVideoCapture.
    void startStateChanged();
    // A capture application launched by this editor has quit.
    void childProcessTerminated();

private:
    Controller(CommandProvider* provider, const QString& id);
    ~Controller() override;

    CommandProvider* m_provider;
    std::unique_ptr<Engine> d;
};

} // namespace IPC
