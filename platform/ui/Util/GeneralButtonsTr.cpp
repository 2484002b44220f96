#include "Util/GeneralButtonsTr.h"

#include <QCoreApplication>

QString GeneralButtonsTr::gotIt()
{
    return QCoreApplication::translate("GeneralButtonsTr", "Got It");
}

QString GeneralButtonsTr::doNotShowThisAgain()
{
    return QCoreApplication::translate("GeneralButtonsTr", "Do not show this again");
}

QString GeneralButtonsTr::ok()
{
    return QCoreApplication::translate("GeneralButtonsTr", "OK");
}

QString GeneralButtonsTr::cancel()
{
    return QCoreApplication::translate("GeneralButtonsTr", "Cancel");
}

QString GeneralButtonsTr::close()
{
    return QCoreApplication::translate("GeneralButtonsTr", "Close");
}

QString GeneralButtonsTr::learnMore()
{
    return QCoreApplication::translate("GeneralButtonsTr", "Learn more");
}
