// The desktop's inhibition services as far as the session bus can tell. Each argument is
// <service>:<behaviour>, service one of screensaver, powermanagement, gnome, portal, and
// behaviour one of answer (a cookie or request handle), late (the same, 150 ms after saying
// "Inhibit <service> late"), silent (never replies) or refuse (an error). Prints "ready" once every name is owned, then one line per call:
//
//   Inhibit screensaver 42                    a cookie handed out
//   Inhibit gnome 43 xid=0 flags=12
//   Inhibit portal /org/freedesktop/portal/desktop/request/1_5/kv1 flags=12
//   UnInhibit screensaver 42 ok              a release of a live cookie ("unknown" otherwise)
//   Uninhibit gnome 43 ok
//   Close portal /org/.../kv1 ok
//   unexpected <interface>.<member>          a call no such service has

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QMap>
#include <QTimer>
#include <QSet>
#include <QStringList>

#include <cstdio>

namespace {

struct Service
{
    QString busName;
    QString interface;
    QString release; // the release method's exact spelling
};

const QMap<QString, Service> kServices{
    {QStringLiteral("screensaver"), {QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("org.freedesktop.ScreenSaver"), QStringLiteral("UnInhibit")}},
    {QStringLiteral("powermanagement"), {QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("UnInhibit")}},
    {QStringLiteral("gnome"), {QStringLiteral("org.gnome.SessionManager"), QStringLiteral("org.gnome.SessionManager"), QStringLiteral("Uninhibit")}},
    {QStringLiteral("portal"), {QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("org.freedesktop.portal.Inhibit"), QString()}},
};

void say(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Services : public QDBusVirtualObject
{
public:
    explicit Services(QMap<QString, QString> behaviours) : m_behaviours(std::move(behaviours)) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        const QString key = keyOf(message.interface());
        if (message.interface() == QLatin1String("org.freedesktop.portal.Request") && message.member() == QLatin1String("Close")) {
            const bool live = m_requests.remove(message.path());
            say(QStringLiteral("Close portal %1 %2").arg(message.path(), live ? QStringLiteral("ok") : QStringLiteral("unknown")));
            connection.send(message.createReply());
            return true;
        }
        if (key.isEmpty() || !m_behaviours.contains(key)) {
            say(QStringLiteral("unexpected %1.%2").arg(message.interface(), message.member()));
            connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("no such method")));
            return true;
        }
        const QString behaviour = m_behaviours.value(key);
        if (message.member() == QLatin1String("Inhibit")) {
            if (behaviour == QLatin1String("silent")) {
                say(QStringLiteral("Inhibit %1 unanswered").arg(key));
                return true; // the caller's timeout is all it gets
            }
            if (behaviour == QLatin1String("late")) {
                say(QStringLiteral("Inhibit %1 late").arg(key));
                QTimer::singleShot(150, this, [this, key, message, connection] { inhibit(key, message, connection); });
                return true;
            }
            if (behaviour == QLatin1String("refuse")) {
                say(QStringLiteral("Inhibit %1 refused").arg(key));
                connection.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not now")));
                return true;
            }
            return inhibit(key, message, connection);
        }
        if (message.member() == kServices.value(key).release && !message.arguments().isEmpty()) {
            const uint cookie = message.arguments().constFirst().toUInt();
            const bool live = m_cookies[key].remove(cookie);
            say(QStringLiteral("%1 %2 %3 %4").arg(message.member(), key).arg(cookie).arg(live ? QStringLiteral("ok") : QStringLiteral("unknown")));
            connection.send(message.createReply());
            return true;
        }
        say(QStringLiteral("unexpected %1.%2").arg(message.interface(), message.member()));
        connection.send(message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("no such method")));
        return true;
    }

private:
    static QString keyOf(const QString& interface)
    {
        for (auto it = kServices.begin(); it != kServices.end(); ++it) {
            if (it->interface == interface)
                return it.key();
        }
        return {};
    }

    bool inhibit(const QString& key, const QDBusMessage& message, const QDBusConnection& connection)
    {
        const QVariantList arguments = message.arguments();
        if (key == QLatin1String("portal")) {
            const QString handle = QStringLiteral("/org/freedesktop/portal/desktop/request/kv%1").arg(++m_next);
            m_requests.insert(handle);
            say(QStringLiteral("Inhibit portal %1 flags=%2").arg(handle).arg(arguments.value(1).toUInt()));
            connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(handle))));
            return true;
        }
        const uint cookie = ++m_next;
        m_cookies[key].insert(cookie);
        QString line = QStringLiteral("Inhibit %1 %2").arg(key).arg(cookie);
        if (key == QLatin1String("gnome"))
            line += QStringLiteral(" xid=%1 flags=%2").arg(arguments.value(1).toUInt()).arg(arguments.value(3).toUInt());
        say(line);
        connection.send(message.createReply(QVariant::fromValue(cookie)));
        return true;
    }

    QMap<QString, QString> m_behaviours;
    QMap<QString, QSet<uint>> m_cookies;
    QSet<QString> m_requests;
    uint m_next = 40;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QMap<QString, QString> behaviours;
    for (const QString& argument : application.arguments().mid(1)) {
        const QString key = argument.section(QLatin1Char(':'), 0, 0);
        if (!kServices.contains(key)) {
            std::fprintf(stderr, "unknown service %s\n", qPrintable(key));
            return 2;
        }
        behaviours.insert(key, argument.section(QLatin1Char(':'), 1, 1));
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    Services services(behaviours);
    if (!bus.registerVirtualObject(QStringLiteral("/org"), &services, QDBusConnection::SubPath)) {
        std::fprintf(stderr, "cannot register the objects\n");
        return 1;
    }
    for (const QString& key : behaviours.keys()) {
        if (!bus.registerService(kServices.value(key).busName)) {
            std::fprintf(stderr, "cannot own %s\n", qPrintable(kServices.value(key).busName));
            return 1;
        }
    }
    say(QStringLiteral("ready"));
    return application.exec();
}
