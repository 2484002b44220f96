#include "App/ProductKey.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

namespace Tavrin {
namespace App {

QString singleInstanceKeyOf(const QJsonObject& root)
{
    const QJsonObject organization = root.value(QLatin1String("organization")).toObject();
    const QJsonObject product = root.value(QLatin1String("product")).toObject();
    const QJsonObject application = root.value(QLatin1String("application")).toObject();
    const QString productName = product.value(QLatin1String("name")).toString();
    if (productName.isEmpty())
        return QString();
    const QString key = application.value(QLatin1String("singleInstanceKey")).toString();
    if (!key.isEmpty())
        return key;
    const QString applicationName = application.value(QLatin1String("name")).toString(productName);
    return QStringLiteral("%1.%2").arg(organization.value(QLatin1String("id")).toString(), applicationName).toLower();
}

QString fallbackSingleInstanceKey()
{
    return QStringLiteral("tavrin.klipvane");
}

QString readSingleInstanceKey(const QString& productFile)
{
    QFile file(productFile);
    if (!file.open(QIODevice::ReadOnly))
        return fallbackSingleInstanceKey();
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    const QString key = document.isObject() ? singleInstanceKeyOf(document.object()) : QString();
    return key.isEmpty() ? fallbackSingleInstanceKey() : key;
}

} // namespace App
} // namespace Tavrin
