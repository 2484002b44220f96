#include "IPCProtocol.h"
#include "IPCProtocol_p.h"
#include "IPCCalls_p.h"

#include <App/AppManager.h>
#include <App/ICustomizationManager.h>
#include <App/ServiceRegistry.h>
#include <UniqueIPC/Task.h>

#include <QMetaType>

#include <glog/logging.h>

#include <exception>
#include <type_traits>
#include <utility>

namespace IPC {
namespace {

using Tavrin::UniqueIPC::ApiVersion;
namespace details = Tavrin::UniqueIPC::details;

using Calls::kEditorAppId;
using Calls::kEditorVersion;
const ApiVersion kGreetingVersion{0, 0, 0, 0, std::string()};

std::shared_ptr<Tavrin::App::ICustomizationManager> customization()
{
    return Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::ICustomizationManager>();
}

std::string applicationName()
{
    const auto manager = customization();
    return manager ? manager->applicationName() : std::string("Klipvane");
}

template <class T>
T decode(const std::string& text);
template <>
std::string decode<std::string>(const std::string& text)
{
    return text;
}
template <>
Package::DeployResult decode<Package::DeployResult>(const std::string& text)
{
    return details::StringToEnum<Package::DeployResult>(text);
}
template <>
Package::InstallMode decode<Package::InstallMode>(const std::string& text)
{
    return details::StringToEnum<Package::InstallMode>(text);
}

QString fromWire(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

bool AbstractInvoker::Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>& types)
{
    Q_UNUSED(types);
    try {
        return call(arguments);
    } catch (const std::exception& e) {
        LOG(ERROR) << "IPC call \"" << m_function << "\" dropped: " << e.what();
    }
    return false;
}

// One invoker per member signature; Args are the member's parameter types.
template <class... Args>
class Invoker : public AbstractInvoker
{
public:
    using Method = bool (Protocol::Impl::*)(Args...);
    Invoker(Protocol::Impl* impl, std::string function, Method method)
        : AbstractInvoker(impl, std::move(function)), m_method(method)
    {
    }

protected:
    bool call(const std::vector<std::string>& arguments) override
    {
        return callWith(arguments, std::index_sequence_for<Args...>());
    }

private:
    template <std::size_t... I>
    bool callWith(const std::vector<std::string>& arguments, std::index_sequence<I...>)
    {
        if (arguments.size() != sizeof...(Args))
            return (m_impl->*m_method)(std::decay_t<Args>()...);
        // Decoded before the call, so a bad value leaves the member untouched.
        std::tuple<std::decay_t<Args>...> values{decode<std::decay_t<Args>>(arguments[I])...};
        return (m_impl->*m_method)(std::get<I>(values)...);
    }

    Method m_method;
};

template <>
class Invoker<const std::vector<std::string>&> : public AbstractInvoker
{
public:
    using Method = bool (Protocol::Impl::*)(const std::vector<std::string>&);
    Invoker(Protocol::Impl* impl, std::string function, Method method)
        : AbstractInvoker(impl, std::move(function)), m_method(method)
    {
    }

protected:
    bool call(const std::vector<std::string>& arguments) override { return (m_impl->*m_method)(arguments); }

private:
    Method m_method;
};

bool DefaultInvoker::Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>& types)
{
    Q_UNUSED(types);
    return m_impl->Unhandled(arguments);
}

Protocol::Impl::Impl(Protocol* protocol) : m_protocol(protocol)
{
    auto& storage = protocol->GetInvokers();
    const std::vector<std::string> str{"QString"};
    const std::vector<std::string> package3{"QString", "QString", "QString"};
    auto withEnums = [&](int count) {
        auto types = package3;
        types.insert(types.end(), std::size_t(count), std::string("enum64_t"));
        return types;
    };
    storage.Register("OnAddFiles", str, kEditorVersion,
                     std::make_shared<Invoker<const std::vector<std::string>&>>(this, "OnAddFiles", &Impl::OnAddFiles));
    storage.Register("OnOpenProject", str, kEditorVersion,
                     std::make_shared<Invoker<const std::string&>>(this, "OnOpenProject", &Impl::OnOpenProject));
    storage.Register("OnPackageInstall", withEnums(2), kEditorVersion,
                     std::make_shared<Invoker<const std::string&, const std::string&, const std::string&,
                                              Package::DeployResult, Package::InstallMode>>(this, "OnPackageInstall",
                                                                                            &Impl::OnPackageInstall));
    storage.Register("OnPackageDeploy", withEnums(1), kEditorVersion,
                     std::make_shared<Invoker<const std::string&, const std::string&, const std::string&,
                                              Package::DeployResult>>(this, "OnPackageDeploy", &Impl::OnPackageDeploy));
    storage.Register("hello_successfull", {}, kGreetingVersion,
                     std::make_shared<Invoker<>>(this, "hello_successfull", &Impl::HelloSuccessfull));
    storage.SetFallback(std::make_shared<DefaultInvoker>(this));

    qRegisterMetaType<Package::DeployResult>("Package::DeployResult");
    qRegisterMetaType<Package::InstallMode>("Package::InstallMode");
}

bool Protocol::Impl::OnAddFiles(const std::vector<std::string>& files)
{
    QStringList paths;
    paths.reserve(int(files.size()));
    for (const std::string& file : files)
        paths << fromWire(file);
    emit m_protocol->onAddFiles(paths);
    return true;
}

bool Protocol::Impl::OnOpenProject(const std::string& path)
{
    emit m_protocol->onOpenProject(fromWire(path));
    return true;
}

bool Protocol::Impl::OnPackageInstall(const std::string& packageId, const std::string& version, const std::string& location,
                                      Package::DeployResult result, Package::InstallMode mode)
{
    emit m_protocol->onPackageInstall(fromWire(packageId), fromWire(version), fromWire(location), result, mode);
    return true;
}

bool Protocol::Impl::OnPackageDeploy(const std::string& packageId, const std::string& version, const std::string& location,
                                     Package::DeployResult result)
{
    emit m_protocol->onPackageDeploy(fromWire(packageId), fromWire(version), fromWire(location), result);
    return true;
}

bool Protocol::Impl::HelloSuccessfull()
{
    return true;
}

bool Protocol::Impl::Unhandled(const std::vector<std::string>& arguments)
{
    std::string joined;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i)
            joined += '|';
        joined += arguments[i];
    }
    LOG(INFO) << "Unhandled message with arguments = " << joined;
    return true;
}

Protocol::Protocol(const QString& id, const std::shared_ptr<Tavrin::App::IApplicationRegistryProvider>& registry)
    : IPCPlatformProtocol(customization(), applicationName(), kEditorVersion, id, registry)
{
    d = std::make_unique<Impl>(this);
}

Protocol::~Protocol() = default;

namespace {

void send(Protocol& protocol, const std::string& target, const std::string& function, std::vector<std::string> arguments,
          std::vector<std::string> types)
{
    if (!protocol.IsCommunicationStarted()) {
        protocol.WarnAboutNotCommunicated(function);
        return;
    }
    auto task = protocol.CreateTask(target);
    task->SetFunction(function, std::move(arguments), std::move(types));
    protocol.AddTask(task, {});
}

} // namespace

void Protocol::sendOpenProject(const QString& path)
{
    send(*this, kEditorAppId, "OnOpenProject", {details::ArgToString(path)}, {"QString"});
}

void Protocol::sendPackageDeployed(const QString& packageId, const QString& version, const QString& location,
                                   Package::DeployResult result)
{
    send(*this, kEditorAppId, "OnPackageDeploy",
         {details::ArgToString(packageId), details::ArgToString(version), details::ArgToString(location),
          details::ArgToString(result)},
         {"QString", "QString", "QString", "enum64_t"});
}

void Protocol::sendPackageInstalled(const QString& packageId, const QString& version, const QString& location,
                                    Package::DeployResult result, Package::InstallMode mode)
{
    send(*this, kEditorAppId, "OnPackageInstall",
         {details::ArgToString(packageId), details::ArgToString(version), details::ArgToString(location),
          details::ArgToString(result), details::ArgToString(mode)},
         {"QString", "QString", "QString", "enum64_t", "enum64_t"});
}

void Protocol::sendPrepareToCapture(const QString& appId)
{
    send(*this, appId.toStdString(), "OnPrepareToCapture",
         {Tavrin::App::AppManager::GetCurrentConnectId(GetAppId())}, {"QString"});
}

} // namespace IPC
