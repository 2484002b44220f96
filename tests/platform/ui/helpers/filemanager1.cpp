// A file manager as far as the session bus can tell: owns org.freedesktop.FileManager1 and
// prints each ShowItems call ("ShowItems <uri> <uri>...") on standard output. Prints
// "ready" once the name is owned.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <cstdio>

class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public slots:
    void ShowItems(const QStringList& uris, const QString& startupId)
    {
        Q_UNUSED(startupId);
        std::printf("ShowItems %s\n", qPrintable(uris.join(QLatin1Char(' '))));
        std::fflush(stdout);
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    FileManager manager;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager, QDBusConnection::ExportAllSlots)
        || !bus.registerService(QStringLiteral("org.freedesktop.FileManager1"))) {
        std::fprintf(stderr, "cannot own org.freedesktop.FileManager1\n");
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    return app.exec();
}

#include "filemanager1.moc"
