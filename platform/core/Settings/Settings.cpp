#include "Settings/Settings.h"

#include <QDir>
#include <QMutex>
#include <QSettings>
#include <QStandardPaths>

#include <memory>

namespace Settings {
namespace {

QMutex& mutex()
{
    static QMutex m;
    return m;
}

QString& overriddenFileName()
{
    static QString name;
    return name;
}

QString defaultFileName()
{
    QString folder = qEnvironmentVariable("KLIPVANE_CONFIG_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Klipvane");
    return folder + QStringLiteral("/klipvane.ini");
}

std::unique_ptr<QSettings>& store()
{
    static std::unique_ptr<QSettings> settings;
    return settings;
}

QSettings& settings()
{
    auto& s = store();
    if (!s) {
        const QString name = overriddenFileName().isEmpty() ? defaultFileName() : overriddenFileName();
        QDir().mkpath(QFileInfo(name).absolutePath());
        s = std::make_unique<QSettings>(name, QSettings::IniFormat);
    }
    return *s;
}

QString dontShowKey(const QString& key)
{
    return QStringLiteral("DontShowDialogs/") + key;
}

} // namespace

QString fileName()
{
    QMutexLocker lock(&mutex());
    return settings().fileName();
}

void setFileName(const QString& path)
{
    QMutexLocker lock(&mutex());
    if (store())
        store()->sync();
    store().reset();
    overriddenFileName() = path;
}

QVariant value(const QString& key, const QVariant& defaultValue)
{
    QMutexLocker lock(&mutex());
    return settings().value(key, defaultValue);
}

void setValue(const QString& key, const QVariant& value)
{
    QMutexLocker lock(&mutex());
    settings().setValue(key, value);
    settings().sync();
}

void remove(const QString& key)
{
    QMutexLocker lock(&mutex());
    settings().remove(key);
    settings().sync();
}

void sync()
{
    QMutexLocker lock(&mutex());
    settings().sync();
}

bool dontShowDialog(const QString& key)
{
    return value(dontShowKey(key), false).toBool();
}

void setDontShowDialog(const QString& key, bool dontShow)
{
    setValue(dontShowKey(key), dontShow);
}

} // namespace Settings
