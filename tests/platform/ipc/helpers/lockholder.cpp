// Test helper: `lockholder <key>` takes a single-instance key and prints "state: holder" or
// "state: another". A holder then stays until it is killed.

#include <App/SingleInstance.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 2)
        return 2;
    Tavrin::App::SingleInstance instance(QString::fromLocal8Bit(argv[1]));
    const bool another = instance.isAnotherInstanceRunning();
    std::printf("state: %s\n", another ? "another" : "holder");
    std::fflush(stdout);
    return another ? 0 : application.exec();
}
