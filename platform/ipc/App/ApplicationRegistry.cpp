#include "App/ApplicationRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <glog/logging.h>

namespace Tavrin {
namespace App {
namespace {

class FileRegistry : public IApplicationRegistryProvider
{
public:
    explicit FileRegistry(const QString& file)
    {
        QFile in(file);
        if (!in.open(QIODevice::ReadOnly)) {
            LOG(WARNING) << "No application registry at " << file.toStdString();
            return;
        }
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(in.readAll(), &error);
        if (error.error != QJsonParseError::NoError || !document.isObject()) {
            LOG(ERROR) << "Application registry " << file.toStdString() << " is not valid JSON: "
                       << error.errorString().toStdString();
            return;
        }
        m_source = QFileInfo(file).absoluteFilePath();
        const QDir base = QFileInfo(file).absoluteDir();
        const QJsonArray list = document.object().value(QStringLiteral("applications")).toArray();
        for (const QJsonValue& value : list) {
            const QJsonObject o = value.toObject();
            ApplicationInfo info;
            info.id = o.value(QStringLiteral("id")).toString();
            info.productId = o.value(QStringLiteral("productId")).toString();
            const QString executable = o.value(QStringLiteral("executable")).toString();
            if (info.id.isEmpty() || executable.isEmpty()) {
                LOG(WARNING) << "Application registry " << file.toStdString() << ": entry without id or executable skipped";
                continue;
            }
            info.executable = QDir::cleanPath(base.absoluteFilePath(executable));
            for (const QJsonValue& a : o.value(QStringLiteral("arguments")).toArray())
                info.arguments << a.toString();
            info.internal = o.value(QStringLiteral("launch")).toString(QStringLiteral("internal")) != QLatin1String("external");
            m_applications.push_back(info);
        }
    }

    std::optional<ApplicationInfo> GetApplication(const QString& appId) const override
    {
        for (const ApplicationInfo& info : m_applications)
            if (info.id == appId)
                return info;
        return std::nullopt;
    }
    std::vector<ApplicationInfo> GetApplications() const override { return m_applications; }
    QString GetSource() const override { return m_source; }

private:
    QString m_source;
    std::vector<ApplicationInfo> m_applications;
};

} // namespace

std::shared_ptr<IApplicationRegistryProvider> CreateApplicationRegistryProvider(const QString& registryFile)
{
    return std::make_shared<FileRegistry>(registryFile);
}

std::shared_ptr<IApplicationRegistryProvider> CreateApplicationRegistryProvider()
{
    QString file = qEnvironmentVariable("KLIPVANE_APP_REGISTRY");
    if (file.isEmpty())
        file = QCoreApplication::applicationDirPath() + QStringLiteral("/applications.json");
    return CreateApplicationRegistryProvider(file);
}

} // namespace App
} // namespace Tavrin
