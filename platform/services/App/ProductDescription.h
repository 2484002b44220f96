#pragma once

#include "App/URLKeys.h"

#include <QMap>
#include <QString>

#include <optional>

namespace Tavrin {
namespace App {

// The product's customisation as the host ships it in its product description file
// (product.json beside the executable). The format is described in
// docs/product-description.md.
struct ProductDescription
{
    QString organizationId;
    QString organizationPresentableName;
    QString organizationDomainName;
    QString productId;
    QString productName;
    QMap<QString, QString> localizedProductNames; // by locale ("de_DE"); language alone ("de") also matches
    QString productVersion;
    QString applicationName;
    QString singleInstanceKey;

    QString localeParameter = QStringLiteral("locale"); // query parameter that carries the locale
    QMap<QString, QString> urlParameters;              // added to every generated address
    QMap<URLKeys, QString> urls;

    // The product name for `locale`: an exact entry, then one for the language, then the
    // plain name.
    QString productNameFor(const QString& locale) const;

    // Reads a description file. Unknown URL keys are skipped with a warning line; a missing
    // or malformed file, or one without a product name, gives nothing and `error` says why.
    static std::optional<ProductDescription> load(const QString& path, QString* error = nullptr);
    static std::optional<ProductDescription> parse(const QByteArray& json, QString* error = nullptr);

    // What the host runs with when its description cannot be read: the names, no addresses.
    static ProductDescription fallback();
};

} // namespace App
} // namespace Tavrin
