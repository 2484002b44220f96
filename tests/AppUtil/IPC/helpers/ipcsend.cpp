// Test helper: hands one call to a running application, the way a second launch does.
//
//   ipcsend <target app id> <function> [argument...]
//
// Arguments are sent as "QString", or as "enum64_t" when written "enum:<text>". Prints the
// outcome and exits 0 when the call was handled, 1 when not, 2 without a recipient, 3
// without an answer.

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
    switch (result) {
    case Tavrin::App::DeliveryResult::Delivered:
        return 0;
    case Tavrin::App::DeliveryResult::NotHandled:
        return 1;
    case Tavrin::App::DeliveryResult::NoRecipient:
        return 2;
    case Tavrin::App::DeliveryResult::NoAnswer:
        return 3;
    }
    return 4;
}
