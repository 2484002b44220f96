// The peer of the second-launch benchmark: the same hand-off built on the SingleApplication
// library as Debian ships it (libsingleapplication-dev).
//
//   bench_singleapp                 the primary: prints "ready", then "received: <path>" for
//                                   every path a secondary forwards
//   bench_singleapp FILE...         a secondary: forwards the absolute paths and exits 0 once
//                                   the primary confirmed them, 1 otherwise
//   bench_singleapp --quit          a secondary that makes the primary quit
//
// Debian builds the library on QCoreApplication, so the primary cannot own a widget; the
// secondary, the side that is timed, pays for a QCoreApplication as ours does.

#include <singleapplication.h>

#include <QDir>
#include <QFileInfo>

#include <cstdio>

int main(int argc, char** argv)
{
    // Forwarding needs a secondary instance: without allowSecondary the library would end
    // the second process inside its constructor, before it could send anything.
    SingleApplication application(argc, argv, true, SingleApplication::Mode::User, 3000);
    const QStringList arguments = application.arguments().mid(1);

    if (application.isSecondary()) {
        QStringList paths;
        for (const QString& argument : arguments)
            paths << (argument == QLatin1String("--quit") ? argument
                                                          : QDir::cleanPath(QFileInfo(argument).absoluteFilePath()));
        return application.sendMessage(paths.join(QLatin1Char('\n')).toUtf8(), 3000) ? 0 : 1;
    }

    QObject::connect(&application, &SingleApplication::receivedMessage, &application,
                     [](quint32, const QByteArray& message) {
                         for (const QByteArray& line : message.split('\n')) {
                             if (line == "--quit") {
                                 QCoreApplication::quit();
                                 return;
                             }
                             std::printf("received: %s\n", line.constData());
                         }
                         std::fflush(stdout);
                     });
    std::printf("ready\n");
    std::fflush(stdout);
    return application.exec();
}
