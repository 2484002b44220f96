#include "OpenglSwitchHelper.h"

#include "StatisticsTracker.h"

#include <App/Predecessor.h>
#include <Launcher/Launcher.h>
#include <Settings/Settings.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <QProcess>
#include <QProcessEnvironment>

#include <glog/logging.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace Tavrin {
namespace App {

namespace {

const QString kImplementationKey = QStringLiteral("OpenGL/Implementation");
const QString kPreviousKey = QStringLiteral("OpenGL/Previous");
// "pending": recorded, not started yet; "started": the first start with it is under way (or
// crashed); no value: nothing under watch.
const QString kTrialKey = QStringLiteral("OpenGL/Trial");
const QString kFallenBackKey = QStringLiteral("OpenGL/FallenBackFrom");
const QString kPending = QStringLiteral("pending");
const QString kStarted = QStringLiteral("started");

// How long the first start with a new implementation may take to get ready.
constexpr char kTrialTimeoutVariable[] = "KLIPVANE_OPENGL_TRIAL_MS";
constexpr int kDefaultTrialTimeoutMs = 60000;
constexpr char kMesaSoftwareVariable[] = "LIBGL_ALWAYS_SOFTWARE";

int s_current = OpenglSwitchHelper::Hardware;
std::function<bool()> s_consentQuestion;
// LIBGL_ALWAYS_SOFTWARE as this process inherited it, so that a restart into hardware does
// not pass on the value set here for software.
std::optional<QByteArray> s_inheritedMesaSoftware;
QStringList s_restartArguments;

int recordedImplementation()
{
    const int kind = OpenglSwitchHelper::fromName(Settings::value(kImplementationKey).toString());
    return kind ? kind : int(OpenglSwitchHelper::Hardware);
}

// Ends a hung first start: the successor, finding the trial still "started", goes back.
class TrialWatchdog
{
public:
    void start(int timeoutMs)
    {
        m_thread = std::thread([this, timeoutMs] {
            std::unique_lock<std::mutex> lock(m_mutex);
            if (m_condition.wait_for(lock, std::chrono::milliseconds(timeoutMs), [this] { return m_stopped; }))
                return;
            LOG(ERROR) << "opengl: " << OpenglSwitchHelper::name(s_current).toStdString()
                       << " did not get ready within " << timeoutMs << " ms; restarting with the previous implementation";
            QString error;
            if (!OpenglSwitchHelper::startSuccessor(&error))
                LOG(ERROR) << "opengl: restart failed: " << error.toStdString();
            google::FlushLogFiles(google::GLOG_INFO);
            // The GUI thread is stuck: nothing orderly can run any more.
            _exit(3);
        });
    }
    void stop()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stopped = true;
        }
        m_condition.notify_all();
        if (m_thread.joinable())
            m_thread.join();
    }
    ~TrialWatchdog() { stop(); }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_stopped = false;
    std::thread m_thread;
};

TrialWatchdog& watchdog()
{
    static TrialWatchdog instance;
    return instance;
}

class OpenglSwitcher : public IOpenglSwitcher
{
public:
    bool run(const std::function<bool()>& callback, bool silent, int mode,
             std::shared_ptr<IStatisticsTracker> tracker) override
    {
        const int requested = OpenglSwitchHelper::requestedImplementation();
        const std::string target = OpenglSwitchHelper::name(requested).toStdString();
        auto report = [&](const char* result) {
            if (tracker)
                tracker->sendEvent("OpenglSwitch", {{"TO", target}, {"RESULT", result}});
        };
        if (!silent && s_consentQuestion && !s_consentQuestion()) {
            LOG(INFO) << "opengl: switch to " << target << " declined";
            OpenglSwitchHelper::requestImplementationSwitch(OpenglSwitchHelper::currentImplementation());
            report("declined");
            return false;
        }
        if (callback && !callback()) {
            LOG(INFO) << "opengl: switch to " << target << " cancelled";
            OpenglSwitchHelper::requestImplementationSwitch(OpenglSwitchHelper::currentImplementation());
            report("cancelled");
            return false;
        }
        if (mode != Restart) {
            LOG(INFO) << "opengl: " << target << " recorded for the next start";
            report("recorded");
            return true;
        }
        QString error;
        if (!OpenglSwitchHelper::startSuccessor(&error)) {
            LOG(ERROR) << "opengl: restart failed: " << error.toStdString() << "; " << target
                       << " stays recorded for the next start";
            report("failed");
            return false;
        }
        LOG(INFO) << "opengl: restarting with " << target;
        report("restarted");
        if (auto* application = QCoreApplication::instance())
            QMetaObject::invokeMethod(application, [] { QCoreApplication::quit(); }, Qt::QueuedConnection);
        return true;
    }
};

} // namespace

QString OpenglSwitchHelper::name(int implementation)
{
    return implementation == Software ? QStringLiteral("software") : QStringLiteral("hardware");
}

int OpenglSwitchHelper::fromName(const QString& name)
{
    if (name == QLatin1String("software"))
        return Software;
    if (name == QLatin1String("hardware"))
        return Hardware;
    return 0;
}

int OpenglSwitchHelper::currentImplementation()
{
    return s_current;
}

int OpenglSwitchHelper::requestedImplementation()
{
    return recordedImplementation();
}

void OpenglSwitchHelper::requestImplementationSwitch(int implementation)
{
    if (implementation != Software && implementation != Hardware) {
        LOG(ERROR) << "opengl: unknown implementation " << implementation << " requested";
        return;
    }
    Settings::setValue(kImplementationKey, name(implementation));
    if (implementation == s_current) {
        Settings::remove(kPreviousKey);
        Settings::remove(kTrialKey);
    } else {
        Settings::setValue(kPreviousKey, name(s_current));
        Settings::setValue(kTrialKey, kPending);
    }
    Settings::sync();
}

std::unique_ptr<IOpenglSwitcher> OpenglSwitchHelper::createSwitcher(std::shared_ptr<IInternetConnectionChecker>,
                                                                    std::shared_ptr<ICustomizationManager>,
                                                                    QObject*)
{
    // The checker and customisation would serve a switcher that offers driver downloads
    // under the product's name; this one restarts the editor and needs neither.
    return std::make_unique<OpenglSwitcher>();
}

void OpenglSwitchHelper::setConsentQuestion(std::function<bool()> question)
{
    s_consentQuestion = std::move(question);
}

int OpenglSwitchHelper::applyAtStartup()
{
    int kind = recordedImplementation();
    const QString trial = Settings::value(kTrialKey).toString();
    if (trial == kStarted) {
        const int previous = fromName(Settings::value(kPreviousKey).toString());
        const int restored = previous ? previous : (kind == Software ? Hardware : Software);
        LOG(ERROR) << "opengl: the first start with " << name(kind).toStdString()
                   << " did not get ready; going back to " << name(restored).toStdString();
        Settings::setValue(kFallenBackKey, name(kind));
        Settings::setValue(kImplementationKey, name(restored));
        Settings::remove(kPreviousKey);
        Settings::remove(kTrialKey);
        kind = restored;
    } else if (trial == kPending) {
        // Written before anything can crash, so the next start knows this one was tried.
        Settings::setValue(kTrialKey, kStarted);
        const int timeoutMs = qEnvironmentVariableIsSet(kTrialTimeoutVariable)
                                  ? qEnvironmentVariableIntValue(kTrialTimeoutVariable)
                                  : kDefaultTrialTimeoutMs;
        watchdog().start(timeoutMs > 0 ? timeoutMs : kDefaultTrialTimeoutMs);
    }
    Settings::sync();

    s_current = kind;
    if (QCoreApplication::instance()) {
        LOG(WARNING) << "opengl: " << name(kind).toStdString() << " chosen after the application started; it applies from the next start";
        return kind;
    }
    if (kind == Software) {
        if (qEnvironmentVariableIsSet(kMesaSoftwareVariable))
            s_inheritedMesaSoftware = qgetenv(kMesaSoftwareVariable);
        // Mesa's own switch: the desktop driver path of Qt then runs on llvmpipe/softpipe.
        qputenv(kMesaSoftwareVariable, "1");
        QCoreApplication::setAttribute(Qt::AA_UseSoftwareOpenGL);
    } else {
        QCoreApplication::setAttribute(Qt::AA_UseDesktopOpenGL);
    }
    return kind;
}

void OpenglSwitchHelper::markReady()
{
    watchdog().stop();
    if (Settings::value(kTrialKey).toString() != kStarted)
        return;
    Settings::remove(kTrialKey);
    Settings::remove(kPreviousKey);
    Settings::sync();
    LOG(INFO) << "opengl: " << name(s_current).toStdString() << " kept after a good first start";
}

std::optional<OpenglSwitchHelper::Fallback> OpenglSwitchHelper::takeFallback()
{
    const int failed = fromName(Settings::value(kFallenBackKey).toString());
    if (!failed)
        return std::nullopt;
    Settings::remove(kFallenBackKey);
    Settings::sync();
    return Fallback{failed, s_current};
}

bool OpenglSwitchHelper::startSuccessor(QString* error)
{
    QString program = QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    if (program.isEmpty() && QCoreApplication::instance())
        program = QCoreApplication::applicationFilePath();
    QStringList arguments = restartArguments();
    if (arguments.isEmpty() && QCoreApplication::instance())
        arguments = QCoreApplication::arguments();
    arguments = arguments.mid(1);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kPredecessorVariable), QString::number(::getpid()));
    if (s_current == Software) {
        if (s_inheritedMesaSoftware)
            environment.insert(QString::fromLatin1(kMesaSoftwareVariable), QString::fromLocal8Bit(*s_inheritedMesaSoftware));
        else
            environment.remove(QString::fromLatin1(kMesaSoftwareVariable));
    }
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(QDir::currentPath());
    qint64 pid = 0;
    if (!process.startDetached(&pid)) {
        if (error)
            *error = process.errorString() + QStringLiteral(" (") + program + QLatin1Char(')');
        return false;
    }
    LOG(INFO) << "opengl: started the new editor, process " << pid;
    return true;
}

void OpenglSwitchHelper::setRestartArguments(const QStringList& arguments)
{
    s_restartArguments = arguments;
}

QStringList OpenglSwitchHelper::restartArguments()
{
    return s_restartArguments.isEmpty() ? Launcher::instance().arguments() : s_restartArguments;
}

} // namespace App
} // namespace Tavrin
