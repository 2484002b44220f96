#include "Conf/FormatConfiguration.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <glog/logging.h>

static void initFormatResources()
{
    Q_INIT_RESOURCE(formats);
}

namespace Tavrin {
namespace Conf {

const FormatConfiguration& FormatConfiguration::instance()
{
    static const FormatConfiguration configuration;
    return configuration;
}

FormatConfiguration::FormatConfiguration()
{
    initFormatResources();
    // Without the variable there is no override: "/formats.json" at the root is nobody's.
    const QString folder = qEnvironmentVariable("KLIPVANE_CONFIG_DIR");
    const QString overridePath = folder.isEmpty() ? QString() : folder + QStringLiteral("/formats.json");
    QFile file(!overridePath.isEmpty() && QFile::exists(overridePath) ? overridePath
                                                                      : QStringLiteral(":/klipvane/conf/formats.json"));
    if (!file.open(QIODevice::ReadOnly) || !load(file.readAll()))
        LOG(ERROR) << "Format configuration " << file.fileName().toStdString() << " is unusable";
}

bool FormatConfiguration::load(const QByteArray& json)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        LOG(ERROR) << "Format configuration: " << error.errorString().toStdString();
        return false;
    }
    const QJsonArray groups = document.object().value(QStringLiteral("groups")).toArray();
    for (const QJsonValue& value : groups) {
        const QJsonObject group = value.toObject();
        const QString name = group.value(QStringLiteral("name")).toString();
        if (name.isEmpty())
            continue;
        QStringList extensions;
        for (const QJsonValue& extension : group.value(QStringLiteral("extensions")).toArray())
            extensions << extension.toString().toLower();
        if (!m_groups.contains(name))
            m_groupOrder << name;
        m_groups.insert(name, extensions);
    }
    return true;
}

QStringList FormatConfiguration::allExtensions() const
{
    QStringList all;
    for (const QString& group : m_groupOrder)
        for (const QString& extension : m_groups.value(group))
            if (!all.contains(extension))
                all << extension;
    return all;
}

} // namespace Conf
} // namespace Tavrin
