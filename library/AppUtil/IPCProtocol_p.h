#pragma once

#include "IPCProtocol.h"

#include <UniqueIPC/Invoker.h>

#include <QObject>

#include <string>
#include <vector>

namespace IPC {

// The receiving side: one member per received call, each bound through an invoker.
class Protocol::Impl : public QObject
{
    Q_OBJECT
public:
    explicit Impl(Protocol* protocol);

    bool OnAddFiles(const std::vector<std::string>& files);
    bool OnOpenProject(const std::string& path);
    bool OnPackageInstall(const std::string& packageId, const std::string& version, const std::string& location,
                          Package::DeployResult result, Package::InstallMode mode);
    bool OnPackageDeploy(const std::string& packageId, const std::string& version, const std::string& location,
                         Package::DeployResult result);
    bool HelloSuccessfull();
    bool Unhandled(const std::vector<std::string>& arguments);

private:
    Protocol* m_protocol;
};

// Decodes the argument list into a member's parameter types and calls it. Lists whose
// length does not match the member are not decoded: the member runs with empty strings
// and zero enums. A value that cannot be decoded drops the call with a log line.
class AbstractInvoker : public Tavrin::UniqueIPC::IInvoker
{
public:
    explicit AbstractInvoker(Protocol::Impl* impl, std::string function) : m_impl(impl), m_function(std::move(function)) {}
    bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>& types) final;

protected:
    virtual bool call(const std::vector<std::string>& arguments) = 0;
    Protocol::Impl* m_impl;
    std::string m_function;
};

template <class... Args>
class Invoker;

// The fallback for names nobody registered.
class DefaultInvoker : public Tavrin::UniqueIPC::IInvoker
{
public:
    explicit DefaultInvoker(Protocol::Impl* impl) : m_impl(impl) {}
    bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>& types) override;

private:
    Protocol::Impl* m_impl;
};

} // namespace IPC
