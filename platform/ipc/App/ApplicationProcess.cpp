#include "App/ApplicationProcess.h"

#include "App/AppManager.h"

#include <QFileInfo>
#include <QPointer>
#include <QProcess>
#include <QProcessEnvironment>

#include <glog/logging.h>

namespace Tavrin {
namespace App {
namespace {

QProcessEnvironment childEnvironment(const QString& parentConnectId)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (parentConnectId.isEmpty())
        environment.remove(QStringLiteral("KLIPVANE_IPC_PARENT"));
    else
        environment.insert(QStringLiteral("KLIPVANE_IPC_PARENT"), parentConnectId);
    return environment;
}

class ProcessBase : public IApplicationProcess
{
public:
    ProcessBase(ApplicationInfo info, const QStringList& arguments) : m_info(std::move(info))
    {
        m_arguments = m_info.arguments + arguments;
    }
    QString GetAppId() const override { return m_info.id; }
    bool IsValid() const override
    {
        const QFileInfo program(m_info.executable);
        return program.isFile() && program.isExecutable();
    }

protected:
    ApplicationInfo m_info;
    QStringList m_arguments;
};

class InternalProcess : public ProcessBase
{
public:
    using ProcessBase::ProcessBase;
    ~InternalProcess() override
    {
        release();
    }

    bool IsStarted() const override { return m_process && m_process->state() != QProcess::NotRunning; }
    qint64 GetPid() const override { return m_process ? m_process->processId() : 0; }

    bool Start(const QString& parentConnectId, std::function<void()> started, std::function<void()> failed,
               std::function<void()> ended) override
    {
        if (IsStarted())
            return true;
        release();
        m_process = new QProcess;
        m_process->setProcessEnvironment(childEnvironment(parentConnectId));
        m_process->setProcessChannelMode(QProcess::ForwardedChannels);
        m_process->setProgram(m_info.executable);
        m_process->setArguments(m_arguments);
        QObject::connect(m_process, &QProcess::started, [started] {
            if (started)
                started();
        });
        const QString id = m_info.id;
        QObject::connect(m_process, &QProcess::errorOccurred, [failed, id](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart && failed)
                failed();
        });
        QObject::connect(m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished),
                         [id, ended](int code, QProcess::ExitStatus status) {
                             LOG(INFO) << "Application \"" << id.toStdString() << "\" ended"
                                       << (status == QProcess::CrashExit ? " (crashed)" : "") << " with status " << code;
                             if (ended)
                                 ended();
                         });
        m_process->start();
        return true;
    }

private:
    // A running child is not ended with this object: the application it runs decides when
    // to quit (and quits with its parent). The QProcess goes when the child has ended.
    void release()
    {
        if (!m_process)
            return;
        m_process->disconnect();
        if (m_process->state() == QProcess::NotRunning) {
            delete m_process;
        } else {
            // Held by an object that is never destroyed, so that a child still running when this
            // process ends is neither killed (as deleting its QProcess would) nor leaked.
            static QObject* const stillRunning = new QObject;
            m_process->setParent(stillRunning);
            QObject::connect(m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), m_process,
                             &QObject::deleteLater);
        }
        m_process = nullptr;
    }

    QProcess* m_process = nullptr;
};

class ExternalProcess : public ProcessBase
{
public:
    using ProcessBase::ProcessBase;
    bool IsStarted() const override { return AppManager::IsProcessAlive(m_pid); }
    qint64 GetPid() const override { return m_pid; }

    bool Start(const QString& parentConnectId, std::function<void()> started, std::function<void()> failed,
               std::function<void()>) override
    {
        if (IsStarted())
            return true;
        QProcess process;
        process.setProcessEnvironment(childEnvironment(parentConnectId));
        process.setProgram(m_info.executable);
        process.setArguments(m_arguments);
        if (!process.startDetached(&m_pid)) {
            if (failed)
                failed();
            return false;
        }
        if (started)
            started();
        return true;
    }

private:
    qint64 m_pid = 0;
};

} // namespace

std::shared_ptr<IApplicationProcess> ApplicationProcessFactory::createInternalApplicationProcess(
    const ApplicationInfo& info, const QStringList& arguments)
{
    return std::make_shared<InternalProcess>(info, arguments);
}

std::shared_ptr<IApplicationProcess> ApplicationProcessFactory::createExternalApplicationProcess(
    const ApplicationInfo& info, const QStringList& arguments)
{
    return std::make_shared<ExternalProcess>(info, arguments);
}

std::shared_ptr<IApplicationProcess> ApplicationProcessFactory::create(const ApplicationInfo& info,
                                                                       const QStringList& arguments)
{
    return info.internal ? createInternalApplicationProcess(info, arguments)
                         : createExternalApplicationProcess(info, arguments);
}

} // namespace App
} // namespace Tavrin
