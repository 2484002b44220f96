#pragma once

#include <QString>

namespace Tavrin {
namespace App {

struct ProductServicesOptions
{
    QString locale;                // the user interface's locale ("de_DE"); empty means "en_US"
    QString translationsDirectory; // where the host's "klipvane_<locale>.qm" files are
    QString applicationVersion;    // recorded by the launch-type processor; empty: the product's version
};

// Reads the product description at `productFile` and registers the customisation, links,
// launch-type and look-and-feel managers in the service registry by their interface
// types; the start-up locale goes to the registry's value "startupLocale". When the file
// cannot be used the managers are registered with the fallback description (names only,
// no addresses), the reason is logged and put in `error`, and the result is false.
//
//   Tavrin::App::registerProductServices(QCoreApplication::applicationDirPath() + "/product.json",
//                                        {locale, translationsDir, QString()});
bool registerProductServices(const QString& productFile, const ProductServicesOptions& options = {},
                             QString* error = nullptr);

// Removes what registerProductServices registered.
void unregisterProductServices();

} // namespace App
} // namespace Tavrin
