// Test helper: `ipcsend <target app id> <function> [argument...]` hands one call to a running
// application, the way a second launch does. Arguments are sent as "QString", or as
// "enum64_t" when written "enum:<text>". The exit code is the DeliveryResult (0 handled).

#include <App/Delivery.h>

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        return 64;
    Tavrin::UniqueIPC::Call call;
    call.target = arguments[1].toStdString();
    call.function = arguments[2].toStdString();
    call.version = {1, 0, 0, 0, std::string()};
    for (const QString& a : arguments.mid(3)) {
        const bool isEnum = a.startsWith(QLatin1String("enum:"));
        call.arguments.push_back((isEnum ? a.mid(5) : a).toStdString());
        call.types.push_back(isEnum ? "enum64_t" : "QString");
    }
    const auto result = Tavrin::App::SendCallAndWait(call, 5000);
    std::printf("ipcsend: %s\n", Tavrin::App::describe(result));
    return int(result);
}
