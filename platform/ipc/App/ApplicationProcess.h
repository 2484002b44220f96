#pragma once

#include "App/ApplicationRegistry.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace Tavrin {
namespace App {

// A launchable application of the family, as resolved from the registry.
class IApplicationProcess
{
public:
    virtual ~IApplicationProcess() = default;

    virtual QString GetAppId() const = 0;
    // Installed: the registry knows it and its program exists and is executable.
    virtual bool IsValid() const = 0;
    // Launched through this object and not known to have ended.
    virtual bool IsStarted() const = 0;
    // Starts the program with the registry's arguments followed by the caller's. The
    // callbacks run on the calling thread: `started` once the process runs, `failed` when
    // it could not be started, `ended` when a process started this way has ended (only a
    // child process is watched; a detached one never reports it). Returns false when it
    // failed synchronously.
    virtual bool Start(const QString& parentConnectId, std::function<void()> started, std::function<void()> failed,
                       std::function<void()> ended) = 0;
    virtual qint64 GetPid() const = 0;
};

class ApplicationProcessFactory
{
public:
    // A child process of this one: tracked until it ends, ended with this process's objects.
    static std::shared_ptr<IApplicationProcess> createInternalApplicationProcess(const ApplicationInfo& info,
                                                                                 const QStringList& arguments);
    // A detached process that outlives this one.
    static std::shared_ptr<IApplicationProcess> createExternalApplicationProcess(const ApplicationInfo& info,
                                                                                 const QStringList& arguments);
    // Internal or external as the registry entry says.
    static std::shared_ptr<IApplicationProcess> create(const ApplicationInfo& info, const QStringList& arguments);
};

} // namespace App
} // namespace Tavrin
