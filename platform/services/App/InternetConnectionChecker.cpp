#include "IInternetConnectionChecker.h"

#include <QNetworkInterface>

namespace Tavrin {
namespace App {

bool InternetConnectionChecker::isConnected() const
{
    const auto interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& interface : interfaces) {
        const auto flags = interface.flags();
        if (flags.testFlag(QNetworkInterface::IsUp) && flags.testFlag(QNetworkInterface::IsRunning)
            && !flags.testFlag(QNetworkInterface::IsLoopBack) && !interface.addressEntries().isEmpty())
            return true;
    }
    return false;
}

} // namespace App
} // namespace Tavrin
