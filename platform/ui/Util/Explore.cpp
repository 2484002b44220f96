#include "Util/Explore.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include <glog/logging.h>

namespace Tavrin {
namespace Util {
namespace {

void openFolder(const QString& path, const QString& why)
{
    const QString folder = QFileInfo(path).absolutePath();
    const bool opened = QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    LOG(INFO) << "showFile: " << path.toStdString() << ": " << (opened ? "opened its folder" : "could not open its folder")
              << " (" << why.toStdString() << ')';
}

} // namespace

void ExploreSingleFile(const QString& path)
{
    if (path.isEmpty())
        return;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(absolute, QStringLiteral("no session bus"));
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                                       QStringLiteral("/org/freedesktop/FileManager1"),
                                                       QStringLiteral("org.freedesktop.FileManager1"),
                                                       QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded)} << QString();
    // Asynchronous: a file manager started on demand may take a while, and the GUI must not wait.
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, 5000), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [absolute](QDBusPendingCallWatcher* w) {
        const QDBusPendingReply<> reply = *w;
        if (reply.isError())
            openFolder(absolute, reply.error().message());
        else
            LOG(INFO) << "showFile: " << absolute.toStdString() << " in the file manager";
        w->deleteLater();
    });
}

} // namespace Util
} // namespace Tavrin
