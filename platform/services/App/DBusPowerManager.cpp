#include "DBusPowerManager_p.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

#include <glog/logging.h>

#include <algorithm>
#include <mutex>
#include <set>

namespace Tavrin {
namespace App {

namespace {

const QString kBus = QStringLiteral("org.freedesktop.DBus");
const QString kPortalService = QStringLiteral("org.freedesktop.portal.Desktop");
// Inhibit flags of the GNOME session manager and of the portal.
constexpr uint kInhibitSuspend = 4;
constexpr uint kInhibitIdle = 8;
constexpr int kDefaultTimeoutMs = 2000;
// At exit the release gets this long; the bus drops what is left when the connection closes.
constexpr int kExitReleaseTimeoutMs = 500;
constexpr char kTimeoutVariable[] = "KLIPVANE_POWER_DBUS_TIMEOUT_MS";

// The managers alive now, finished when the application object goes: after it, the bus
// connection may be torn down before the managers are.
std::mutex s_liveMutex;
std::set<DBusPowerManager*> s_live;

void finishLiveManagers()
{
    std::lock_guard<std::mutex> lock(s_liveMutex);
    for (DBusPowerManager* manager : s_live)
        manager->finish();
}

QString reason()
{
    return QStringLiteral("Playing video");
}

QString applicationId()
{
    const QString name = QCoreApplication::applicationName();
    return name.isEmpty() ? QStringLiteral("Klipvane") : name;
}

// Where each service listens, and how its release is spelled (they differ).
struct Endpoint
{
    QString bus;
    QString path;
    QString interface;
    QString release;
};

Endpoint endpointOf(DBusPowerManager::Service service)
{
    using Service = DBusPowerManager::Service;
    switch (service) {
    case Service::SessionManager:
        return {QStringLiteral("org.gnome.SessionManager"), QStringLiteral("/org/gnome/SessionManager"),
                QStringLiteral("org.gnome.SessionManager"), QStringLiteral("Uninhibit")};
    case Service::Portal:
        // Released by closing the request object the call returns.
        return {kPortalService, QStringLiteral("/org/freedesktop/portal/desktop"), QStringLiteral("org.freedesktop.portal.Inhibit"),
                QStringLiteral("Close")};
    case Service::ScreenSaver:
        return {QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("/org/freedesktop/ScreenSaver"),
                QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("UnInhibit")};
    case Service::PowerManagement:
        break;
    }
    return {QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
            QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("UnInhibit")};
}

QDBusMessage inhibitMessage(DBusPowerManager::Service service)
{
    using Service = DBusPowerManager::Service;
    const Endpoint endpoint = endpointOf(service);
    auto message = QDBusMessage::createMethodCall(endpoint.bus, endpoint.path, endpoint.interface, QStringLiteral("Inhibit"));
    if (service == Service::SessionManager) // no toplevel window id: the application's inhibition
        message << applicationId() << uint(0) << reason() << uint(kInhibitSuspend | kInhibitIdle);
    else if (service == Service::Portal)
        message << QString() << uint(kInhibitSuspend | kInhibitIdle) << QVariantMap{{QStringLiteral("reason"), reason()}};
    else
        message << applicationId() << reason();
    return message;
}

} // namespace

DBusPowerManager::DBusPowerManager(int callTimeoutMs)
    : m_timeoutMs(callTimeoutMs > 0 ? callTimeoutMs : kDefaultTimeoutMs)
{
    if (auto* application = QCoreApplication::instance()) {
        moveToThread(application->thread());
        connect(application, &QCoreApplication::aboutToQuit, this, &DBusPowerManager::finish);
        static std::once_flag postRoutine;
        std::call_once(postRoutine, [] { qAddPostRoutine(finishLiveManagers); });
        std::lock_guard<std::mutex> lock(s_liveMutex);
        s_live.insert(this);
    }
}

void DBusPowerManager::finish()
{
    m_quitting = true;
    releaseNow();
}

DBusPowerManager::~DBusPowerManager()
{
    {
        std::lock_guard<std::mutex> lock(s_liveMutex);
        s_live.erase(this);
    }
    // Without an application the bus connection may be gone already; closing it released
    // whatever was held.
    if (QCoreApplication::instance())
        releaseNow();
    abandonCalls();
}

QString DBusPowerManager::serviceName(Service service)
{
    return endpointOf(service).interface;
}

void DBusPowerManager::SuppressPowerSaving()
{
    QMetaObject::invokeMethod(this, [this] { setWanted(true); });
}

void DBusPowerManager::RestorePowerSaving()
{
    QMetaObject::invokeMethod(this, [this] { setWanted(false); });
}

void DBusPowerManager::setWanted(bool wanted)
{
    if (m_quitting)
        return;
    m_wanted = wanted;
    settle();
}

void DBusPowerManager::settle()
{
    if (m_wanted && m_stage == Stage::Idle)
        probe();
    else if (!m_wanted && m_stage == Stage::Inhibited)
        release();
    // Otherwise a call is out; its end settles again.
}

QDBusPendingCallWatcher* DBusPowerManager::send(const QDBusMessage& message)
{
    auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message, m_timeoutMs), this);
    m_calls.push_back(call);
    return call;
}

void DBusPowerManager::forget(QDBusPendingCallWatcher* call)
{
    m_calls.erase(std::remove(m_calls.begin(), m_calls.end(), call), m_calls.end());
    call->deleteLater();
}

void DBusPowerManager::abandonCalls()
{
    for (QDBusPendingCallWatcher* call : m_calls)
        delete call;
    m_calls.clear();
}

void DBusPowerManager::probe()
{
    if (!QDBusConnection::sessionBus().isConnected()) {
        LOG(INFO) << "power: unavailable: no session bus";
        return; // stays Idle: the next request looks again
    }
    m_stage = Stage::Probing;
    m_names.clear();
    // Running services, and those the bus starts on demand (the portal usually is one).
    const QString methods[] = {QStringLiteral("ListNames"), QStringLiteral("ListActivatableNames")};
    m_probesOut = 2;
    for (const QString& method : methods) {
        auto* call = send(QDBusMessage::createMethodCall(kBus, QStringLiteral("/org/freedesktop/DBus"), kBus, method));
        connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
            QDBusPendingReply<QStringList> reply = *call;
            if (!reply.isError())
                m_names += reply.value();
            forget(call);
            if (--m_probesOut == 0)
                probed();
        });
    }
}

void DBusPowerManager::probed()
{
    m_candidates.clear();
    for (Service service : {Service::SessionManager, Service::Portal, Service::ScreenSaver, Service::PowerManagement}) {
        if (m_names.contains(endpointOf(service).bus))
            m_candidates.push_back(service);
    }
    m_stage = Stage::Idle;
    if (!m_wanted)
        return;
    if (m_candidates.empty()) {
        LOG(INFO) << "power: unavailable: no inhibition service on the session bus";
        return;
    }
    tryNextService();
}

void DBusPowerManager::tryNextService()
{
    if (!m_wanted) {
        m_stage = Stage::Idle;
        return;
    }
    if (m_candidates.empty()) {
        m_stage = Stage::Idle;
        LOG(INFO) << "power: unavailable: no service accepted the inhibition";
        return;
    }
    const Service service = m_candidates.front();
    m_candidates.pop_front();
    m_stage = Stage::Inhibiting;
    auto* call = send(inhibitMessage(service));
    m_inhibitCall = call;
    m_service = service;
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, service] { inhibited(call, service); });
}

bool DBusPowerManager::takeInhibition(const QDBusMessage& reply, Service service)
{
    bool held = false;
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
        const QVariant answer = reply.arguments().constFirst();
        if (service == Service::Portal && answer.userType() == qMetaTypeId<QDBusObjectPath>()) {
            m_request = answer.value<QDBusObjectPath>();
            held = !m_request.path().isEmpty();
        } else if (service != Service::Portal && answer.userType() == QMetaType::UInt) {
            m_cookie = answer.toUInt();
            held = true;
        }
    }
    return held;
}

void DBusPowerManager::inhibited(QDBusPendingCallWatcher* call, Service service)
{
    const QDBusMessage reply = call->reply();
    m_inhibitCall = nullptr;
    forget(call);
    if (!takeInhibition(reply, service)) {
        LOG(WARNING) << "power service " << serviceName(service).toStdString() << " did not inhibit: "
                     << (reply.type() == QDBusMessage::ErrorMessage ? reply.errorMessage().toStdString()
                                                                    : std::string("unexpected answer"));
        tryNextService();
        return;
    }
    m_service = service;
    m_stage = Stage::Inhibited;
    LOG(INFO) << "power: inhibited via " << serviceName(service).toStdString();
    settle();
}

QDBusMessage DBusPowerManager::releaseMessage() const
{
    const Endpoint endpoint = endpointOf(m_service);
    if (m_service == Service::Portal)
        return QDBusMessage::createMethodCall(endpoint.bus, m_request.path(), QStringLiteral("org.freedesktop.portal.Request"), endpoint.release);
    auto message = QDBusMessage::createMethodCall(endpoint.bus, endpoint.path, endpoint.interface, endpoint.release);
    message << m_cookie;
    return message;
}

void DBusPowerManager::release()
{
    m_stage = Stage::Releasing;
    auto* call = send(releaseMessage());
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        if (call->isError())
            LOG(WARNING) << "power service " << serviceName(m_service).toStdString() << " did not release: " << call->error().message().toStdString();
        forget(call);
        m_stage = Stage::Idle;
        LOG(INFO) << "power: released";
        settle();
    });
}

void DBusPowerManager::releaseNow()
{
    // An answer on its way may carry a cookie; waiting for it (bounded by the call's
    // timeout) is the only way to give it back.
    if (m_stage == Stage::Inhibiting && m_inhibitCall) {
        QDBusPendingCallWatcher* call = m_inhibitCall;
        // waitForFinished() delivers the watcher's finished signal before it returns; the
        // usual handler would take the answer (and forget the call, or try the next service)
        // under our feet, so the answer is taken here alone.
        call->disconnect(this);
        call->waitForFinished();
        if (takeInhibition(call->reply(), m_service))
            m_stage = Stage::Inhibited;
    }
    m_inhibitCall = nullptr;
    if (m_stage == Stage::Inhibited) {
        const QDBusMessage answer = QDBusConnection::sessionBus().call(releaseMessage(), QDBus::Block, kExitReleaseTimeoutMs);
        if (answer.type() == QDBusMessage::ErrorMessage)
            LOG(WARNING) << "power service " << serviceName(m_service).toStdString() << " did not release: " << answer.errorMessage().toStdString();
        LOG(INFO) << "power: released";
    }
    m_stage = Stage::Idle;
    m_wanted = false;
    abandonCalls();
}

std::shared_ptr<IPowerManager> CreateDefaultImplPowerManager()
{
    const int timeoutMs = qEnvironmentVariableIntValue(kTimeoutVariable);
    return std::make_shared<DBusPowerManager>(timeoutMs);
}

} // namespace App
} // namespace Tavrin
