#include "IPCController.h"

#include "CommandProvider.h"

#include <App/AppManager.h>
#include <App/ApplicationProcess.h>
#include <App/ICustomizationManager.h>
#include <App/IPCLinksDecorator.h>
#include <App/IPCPlatformController.h>
#include <App/ServiceRegistry.h>
#include <Profiler/Sample.h>
#include <PubSub/PubSub.h>

#include <QPointer>
#include <QSet>

#include <boost/exception/diagnostic_information.hpp>
#include <glog/logging.h>

#include <map>
#include <utility>

namespace IPC {
namespace {

const QString kScreenCapture = QStringLiteral("screencapture");
const QString kVideoCapture = QStringLiteral("videocapture");
const QString kOrvelPlatform = QStringLiteral("orvelplatform");
const QString kUserFiles = QStringLiteral("UserFiles");
// The editor names itself to the capture applications it starts.
const QString kSourceProduct = QStringLiteral("Klipvane");

Controller* s_instance = nullptr;

} // namespace

class Controller::Engine
{
public:
    Engine(Controller* controller, std::shared_ptr<Tavrin::App::IApplicationRegistryProvider> registry,
           std::shared_ptr<Protocol> protocol)
        : m_controller(controller),
          m_customization(Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::ICustomizationManager>()),
          m_protocol(std::move(protocol)),
          m_registry(std::move(registry)),
          m_platform(m_protocol, m_customization)
    {
        connectRoutes();
    }

    void connectRoutes();
    void onApplicationQuit(const QString& connectId);

    std::shared_ptr<Tavrin::App::IApplicationProcess> lookup(const QString& module, const QStringList& arguments = {});
    bool isRunning(const QString& module);
    void run(const QString& module);
    bool isAlone(AppsScope scope) const;
    std::string productId() const
    {
        return m_customization ? m_customization->productId() : m_protocol->GetProductId();
    }

    Controller* m_controller;
    std::shared_ptr<Tavrin::App::ICustomizationManager> m_customization;
    std::shared_ptr<Protocol> m_protocol;
    std::shared_ptr<Tavrin::App::IApplicationRegistryProvider> m_registry;
    Tavrin::App::IPCPlatformController m_platform;
    QSet<QString> m_starting;
    std::map<QString, std::shared_ptr<Tavrin::App::IApplicationProcess>> m_processes;
};

void Controller::Engine::connectRoutes()
{
    Controller* c = m_controller;
    Protocol* p = m_protocol.get();
    // The protocol emits on the IPC thread; these connections queue onto the GUI thread.
    QObject::connect(p, &Protocol::onAddFiles, c, [c](const QStringList& files) {
        CommandProvider* provider = c->commandProvider();
        if (!provider)
            return;
        if (!files.isEmpty()) {
            provider->handleFiles(files);
            provider->showCollectionPage(kUserFiles);
        }
        provider->showMainWindow();
    });
    QObject::connect(p, &Protocol::onOpenProject, c, [c](const QString& path) {
        if (CommandProvider* provider = c->commandProvider()) {
            provider->handleFile(path);
            provider->showMainWindow();
        }
    });
    QObject::connect(p, &Protocol::onPackageDeploy, c,
                     [](const QString& a, const QString& b, const QString& d, Package::DeployResult result) {
                         PubSub::publish(Package::DeployFinishedNotification(a, b, d, result));
                     });
    QObject::connect(
        p, &Protocol::onPackageInstall, c,
        [](const QString& a, const QString& b, const QString& d, Package::DeployResult result, Package::InstallMode mode) {
            PubSub::publish(Package::InstallFinishedNotification(a, b, d, result, mode));
        });
    QObject::connect(p, &Tavrin::App::IPCBaseProtocol::OnNewApplication, c, [c] { emit c->startStateChanged(); });
    QObject::connect(p, &Tavrin::App::IPCBaseProtocol::OnApplicationQuit, c,
                     [this](const QString& connectId) { onApplicationQuit(connectId); });
}

void Controller::Engine::onApplicationQuit(const QString& connectId)
{
    emit m_controller->startStateChanged();
    for (const QString& module : {kScreenCapture, kVideoCapture}) {
        if (Tavrin::App::AppManager::IsValidAppId(module.toStdString(), connectId.toStdString())
            && m_starting.remove(module))
            emit m_controller->childProcessTerminated();
    }
    // The window stepped aside while a capture application worked; it comes back unless
    // another instance of this product is there to take over.
    if (isAlone(SameProduct))
        if (CommandProvider* provider = m_controller->commandProvider())
            provider->showMainWindow();
}

std::shared_ptr<Tavrin::App::IApplicationProcess> Controller::Engine::lookup(const QString& module,
                                                                             const QStringList& arguments)
{
    const auto cached = m_processes.find(module);
    if (cached != m_processes.end() && cached->second->IsValid() && arguments.isEmpty())
        return cached->second;
    const auto info = m_registry ? m_registry->GetApplication(module) : std::nullopt;
    if (!info)
        return nullptr;
    auto process = Tavrin::App::ApplicationProcessFactory::create(*info, arguments);
    m_processes[module] = process;
    return process;
}

bool Controller::Engine::isRunning(const QString& module)
{
    const auto process = lookup(module);
    return process && process->IsStarted() && m_platform.IsApplicationConnected(module.toStdString());
}

void Controller::Engine::run(const QString& module)
{
    if (isRunning(module)) {
        if (module == kScreenCapture)
            m_protocol->sendPrepareToCapture(module);
        return;
    }
    const QStringList arguments{QStringLiteral("--source"), kSourceProduct};
    m_starting.insert(module);
    emit m_controller->startStateChanged();

    QPointer<Controller> controller(m_controller);
    // Set once the editor stepped aside for the application; a start that fails after that
    // (the program ended before it connected) brings the window back.
    auto stepAside = std::make_shared<bool>(false);
    auto failed = [this, controller, module, stepAside] {
        if (!controller)
            return;
        LOG(ERROR) << "Can't run " << module.toStdString();
        m_starting.remove(module);
        emit controller->startStateChanged();
        if (std::exchange(*stepAside, false) && isAlone(SameProduct))
            if (CommandProvider* provider = controller->commandProvider())
                provider->showMainWindow();
    };
    const auto process = lookup(module, arguments);
    if (!process) {
        failed();
        return;
    }
    m_platform.RunApplication(
        process,
        [controller, stepAside] {
            if (controller && controller->commandProvider()) {
                *stepAside = true;
                controller->commandProvider()->hideMainWindow();
            }
        },
        failed, [] { return false; });
}

bool Controller::Engine::isAlone(AppsScope scope) const
{
    switch (scope) {
    case AnyApplication:
        return m_platform.IsAlone();
    case SameProduct: {
        const std::string own = Tavrin::App::AppManager::GetCurrentConnectId(m_protocol->GetAppId());
        const std::string product = productId();
        for (const std::string& id : m_platform.GetConnectedApplications()) {
            if (id == own)
                continue;
            if (Tavrin::App::ProductAppID(id).GetProductID() == product)
                return false;
        }
        return true;
    }
    }
    return false;
}

Controller::Controller(CommandProvider* provider, const QString& id) : m_provider(provider)
{
    auto registry = Tavrin::App::CreateApplicationRegistryProvider();
    auto protocol = std::make_shared<Protocol>(id, registry);
    d = std::make_unique<Engine>(this, std::move(registry), std::move(protocol));
}

Controller::~Controller() = default;

void Controller::init(CommandProvider* provider, const QString& id)
{
    Tavrin::Profiler::Sample sample(Statistics::PROFILER_IPC_INIT);
    if (!s_instance)
        s_instance = new Controller(provider, id);
}

Controller& Controller::instance()
{
    Q_ASSERT(s_instance);
    return *s_instance;
}

bool Controller::exists()
{
    return s_instance != nullptr;
}

void Controller::destroy()
{
    delete s_instance;
    s_instance = nullptr;
}

void Controller::waitForInitialize()
{
    Tavrin::Profiler::Sample sample(Statistics::PROFILER_IPC_WAIT_INIT);
    try {
        d->m_protocol->StartCommunication();
    } catch (...) {
        LOG(ERROR) << "Can not start IPC communication. Reason: " << boost::current_exception_diagnostic_information();
    }
}

bool Controller::isAlone(AppsScope scope) const
{
    return d->isAlone(scope);
}

bool Controller::isStartedFromAny() const
{
    return d->m_platform.IsStartedFromAny();
}

bool Controller::screenCaptureIsAvailable() const
{
    const auto process = d->lookup(kScreenCapture);
    return process && process->IsValid();
}

bool Controller::videoCaptureIsAvailable() const
{
    const auto process = d->lookup(kVideoCapture);
    return process && process->IsValid();
}

bool Controller::orvelPlatformIsAvailable() const
{
    const auto process = d->lookup(kOrvelPlatform);
    return process && process->IsValid();
}

bool Controller::canStartVideoCapture() const
{
    if (d->m_starting.contains(kVideoCapture))
        return false;
    return !d->isRunning(kVideoCapture);
}

bool Controller::canStartScreenCapture() const
{
    if (!d->m_starting.contains(kScreenCapture))
        return true;
    return d->lookup(kScreenCapture) && d->m_platform.IsApplicationConnected(kScreenCapture.toStdString());
}

void Controller::runScreenCapture()
{
    d->run(kScreenCapture);
}

void Controller::runVideoCapture()
{
    d->run(kVideoCapture);
}

void Controller::openPlatformFileStorage()
{
    d->m_platform.ImportFromFileStorage(-1);
}

void Controller::openKVProject(const QString& path)
{
    d->m_protocol->sendOpenProject(path);
}

void Controller::sendPackageDeployed(const QString& packageId, const QString& version, const QString& location,
                                     Package::DeployResult result)
{
    d->m_protocol->sendPackageDeployed(packageId, version, location, result);
}

void Controller::sendPackageInstalled(const QString& packageId, const QString& version, const QString& location,
                                      Package::DeployResult result, Package::InstallMode mode)
{
    d->m_protocol->sendPackageInstalled(packageId, version, location, result, mode);
}

CommandProvider* Controller::commandProvider() const
{
    return m_provider;
}

std::shared_ptr<Protocol> Controller::getProtocol() const
{
    return d->m_protocol;
}

std::shared_ptr<Tavrin::App::IApplicationRegistryProvider> Controller::getApplicationRegistryProvider() const
{
    return d->m_registry;
}

std::shared_ptr<Tavrin::App::ILinksOpener> Controller::createIPCLinksOpener() const
{
    const auto& customization = d->m_customization;
    return std::make_shared<Tavrin::App::IPCLinksDecorator>(customization ? customization->linksOpener() : nullptr,
                                                            customization ? customization->linksGenerator() : nullptr,
                                                            d->m_protocol);
}

} // namespace IPC
