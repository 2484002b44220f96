#pragma once

#include "App/URLKeys.h"

#include <QMap>
#include <QString>

#include <memory>

namespace Tavrin {
namespace App {

// Query parameters added to a generated address, by name.
using UrlParameters = QMap<QString, QString>;

// Turns the product's addresses into the ones the user is sent to.
class ILinksGenerator
{
public:
    virtual ~ILinksGenerator() = default;

    // The address configured for `key`, as configured; empty when the product has none.
    virtual QString url(URLKeys key) const = 0;
    // `base` with the product's standard query parameters (the locale at least) and
    // `parameters` added; parameters already in `base` are kept. Addresses that are not
    // http or https are returned unchanged.
    virtual QString generateUrl(const QString& base, const UrlParameters& parameters) const = 0;
};

// Opens an address in the user's browser.
class ILinksOpener
{
public:
    virtual ~ILinksOpener() = default;

    // False when the address is refused (empty, not http or https) or could not be opened.
    virtual bool openUrl(const QString& url) = 0;
};

// The application's web addresses: what each key leads to and opening it.
class ILinksManager
{
public:
    virtual ~ILinksManager() = default;

    // The generated address of `key` (see ILinksGenerator::generateUrl); empty when the
    // product has no address for it.
    virtual QString url(URLKeys key) const = 0;
    virtual QString generateUrl(const QString& base, const UrlParameters& parameters) const = 0;
    // Opens an address as it is given, or the generated address of a key.
    virtual bool openUrl(const QString& url) = 0;
    virtual bool openUrl(URLKeys key) = 0;

    // Lets the host route opening through another opener (for example one that asks a
    // companion process to open the page); null restores the default browser opener.
    virtual void setLinksOpener(std::shared_ptr<ILinksOpener> opener) = 0;
};

} // namespace App
} // namespace Tavrin
