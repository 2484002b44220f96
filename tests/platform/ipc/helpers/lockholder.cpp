// Test helper: takes a single-instance key and reports what it found.
//
//   lockholder <key> [wait-ms]
//
// Prints "state: holder" or "state: another". With wait-ms, a process that found another
// holder waits that long and prints "waited: true|false". A holder then stays until killed.

#include <App/SingleInstance.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 2)
        return 2;
    Tavrin::App::SingleInstance instance(QString::fromLocal8Bit(argv[1]));
    std::printf("state: %s\n", instance.isAnotherInstanceRunning() ? "another" : "holder");
    std::fflush(stdout);
    if (instance.isAnotherInstanceRunning() && argc > 2) {
        const bool taken = instance.waitForOtherInstance(QByteArray(argv[2]).toLongLong());
        std::printf("waited: %s\n", taken ? "true" : "false");
        std::fflush(stdout);
    }
    if (instance.isAnotherInstanceRunning())
        return 0;
    return application.exec();
}
