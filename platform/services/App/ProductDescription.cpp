#include "App/ProductDescription.h"

#include "App/ProductKey.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

#include <glog/logging.h>

namespace Tavrin {
namespace App {
namespace {
QMap<QString, QString> stringMap(const QJsonValue& value)
{
    QMap<QString, QString> map;
    const QJsonObject object = value.toObject();
    for (auto it = object.begin(); it != object.end(); ++it)
        if (it.value().isString())
            map.insert(it.key(), it.value().toString());
    return map;
}

void setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}
} // namespace

QString ProductDescription::productNameFor(const QString& locale) const
{
    if (localizedProductNames.contains(locale))
        return localizedProductNames.value(locale);
    const QString language = locale.section(QLatin1Char('_'), 0, 0);
    if (!language.isEmpty() && localizedProductNames.contains(language))
        return localizedProductNames.value(language);
    return productName;
}

std::optional<ProductDescription> ProductDescription::load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        setError(error, QStringLiteral("Can't read the product description \"%1\": %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    QString parseError;
    auto description = parse(file.readAll(), &parseError);
    if (!description)
        setError(error, QStringLiteral("Product description \"%1\": %2").arg(path, parseError));
    return description;
}

std::optional<ProductDescription> ProductDescription::parse(const QByteArray& json, QString* error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        setError(error, QStringLiteral("not JSON (%1 at offset %2)").arg(parseError.errorString()).arg(parseError.offset));
        return std::nullopt;
    }
    if (!document.isObject()) {
        setError(error, QStringLiteral("the top level is not an object"));
        return std::nullopt;
    }
    const QJsonObject root = document.object();
    const QJsonObject organization = root.value(QLatin1String("organization")).toObject();
    const QJsonObject product = root.value(QLatin1String("product")).toObject();
    const QJsonObject application = root.value(QLatin1String("application")).toObject();
    const QJsonObject links = root.value(QLatin1String("links")).toObject();

    ProductDescription d;
    d.organizationId = organization.value(QLatin1String("id")).toString();
    d.organizationPresentableName = organization.value(QLatin1String("presentableName")).toString();
    d.organizationDomainName = organization.value(QLatin1String("domain")).toString();
    d.productId = product.value(QLatin1String("id")).toString();
    d.productName = product.value(QLatin1String("name")).toString();
    d.localizedProductNames = stringMap(product.value(QLatin1String("localizedNames")));
    d.productVersion = product.value(QLatin1String("version")).toString();
    d.applicationName = application.value(QLatin1String("name")).toString(d.productName);
    d.singleInstanceKey = singleInstanceKeyOf(root);
    if (d.productName.isEmpty()) {
        setError(error, QStringLiteral("\"product.name\" is missing"));
        return std::nullopt;
    }
    if (d.productId.isEmpty())
        d.productId = d.productName.toLower();

    d.localeParameter = links.value(QLatin1String("localeParameter")).toString(d.localeParameter);
    d.urlParameters = stringMap(links.value(QLatin1String("parameters")));
    const QMap<QString, QString> urls = stringMap(links.value(QLatin1String("urls")));
    for (auto it = urls.begin(); it != urls.end(); ++it) {
        if (const auto key = urlKeyFromString(it.key()))
            d.urls.insert(*key, it.value());
        else
            LOG(WARNING) << "Product description: unknown URL key " << it.key().toStdString() << " skipped";
    }
    return d;
}

ProductDescription ProductDescription::fallback()
{
    ProductDescription d;
    d.organizationId = QStringLiteral("tavrin");
    d.organizationPresentableName = QStringLiteral("Tavrin");
    d.productId = QStringLiteral("klipvane");
    d.productName = QStringLiteral("Klipvane");
    d.applicationName = QStringLiteral("Klipvane");
    d.singleInstanceKey = fallbackSingleInstanceKey();
    return d;
}

} // namespace App
} // namespace Tavrin
