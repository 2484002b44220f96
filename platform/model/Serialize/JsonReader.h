#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

namespace Serialize {

// Reads fields of untrusted JSON with their limits. The first problem is kept as the
// error, with the path of the field ("tracks[1].clips[4].speed: ..."); after it every
// read returns a harmless default, so callers check ok() once at the end. Keys are Latin-1
// literals, widened on the stack for the lookup (see present()).
class JsonReader
{
public:
    bool ok() const { return m_error.isEmpty(); }
    // How many fields the reads so far found: an object whose size equals the fields found
    // in it has nothing left to look up.
    int found() const { return m_found; }
    QString error() const { return m_error; }
    void fail(const QString& where, const QString& problem);

    QJsonObject object(const QJsonObject& o, QLatin1String key, const QString& where, bool required = true);
    QJsonArray array(const QJsonObject& o, QLatin1String key, const QString& where, int maxCount, bool required = true);
    QString string(const QJsonObject& o, QLatin1String key, const QString& where, int maxLength = 4096, bool required = true);
    double number(const QJsonObject& o, QLatin1String key, const QString& where, double min, double max, double fallback,
                  bool required = true);
    // An integer (no fraction) from min to max inclusive.
    qint64 integer(const QJsonObject& o, QLatin1String key, const QString& where, qint64 min, qint64 max, qint64 fallback,
                   bool required = true);
    bool boolean(const QJsonObject& o, QLatin1String key, const QString& where, bool fallback);
    // Element `index` of `array`, which must be an object.
    QJsonObject element(const QJsonArray& array, int index, const QString& where);

    static QString path(const QString& where, const QString& key);
    static QString path(const QString& where, QLatin1String key) { return path(where, QString(key)); }
    static QString path(const QString& where, int index);

private:
    bool present(const QJsonObject& o, QLatin1String key, const QString& where, bool required, QJsonValue& v);
    QString m_error;
    int m_found = 0;
};

} // namespace Serialize
