#include "Serialize/JsonReader.h"

#include <QCoreApplication>

#include <cmath>

namespace Serialize {

void JsonReader::fail(const QString& where, const QString& problem)
{
    if (ok())
        m_error = where.isEmpty() ? problem : QStringLiteral("%1: %2").arg(where, problem);
}

QString JsonReader::path(const QString& where, const QString& key)
{
    return where.isEmpty() ? key : where + QLatin1Char('.') + key;
}

QString JsonReader::path(const QString& where, int index)
{
    return QStringLiteral("%1[%2]").arg(where).arg(index);
}

bool JsonReader::present(const QJsonObject& o, QLatin1String key, const QString& where, bool required, QJsonValue& v)
{
    if (!ok())
        return false;
    // One lookup per field: loading a large project reads hundreds of thousands of them.
    // Looked up as UTF-16: QJsonObject compares a Latin-1 key through a temporary copy of
    // each key it passes, an allocation per step of the search.
    QChar wide[64];
    if (key.size() <= 64) {
        for (int i = 0; i < key.size(); ++i)
            wide[i] = QChar(key.at(i));
        v = o.value(QStringView(wide, key.size()));
    } else {
        v = o.value(key);
    }
    if (!v.isUndefined()) {
        ++m_found;
        return true;
    }
    if (required)
        fail(path(where, key), QCoreApplication::translate("Project", "missing"));
    return false;
}

QJsonObject JsonReader::object(const QJsonObject& o, QLatin1String key, const QString& where, bool required)
{
    QJsonValue v;
    if (!present(o, key, where, required, v))
        return {};
    if (!v.isObject())
        fail(path(where, key), QCoreApplication::translate("Project", "not an object"));
    return v.toObject();
}

QJsonArray JsonReader::array(const QJsonObject& o, QLatin1String key, const QString& where, int maxCount, bool required)
{
    QJsonValue v;
    if (!present(o, key, where, required, v))
        return {};
    if (!v.isArray()) {
        fail(path(where, key), QCoreApplication::translate("Project", "not a list"));
        return {};
    }
    const QJsonArray a = v.toArray();
    if (a.size() > maxCount) {
        fail(path(where, key), QCoreApplication::translate("Project", "more than %1 entries").arg(maxCount));
        return {};
    }
    return a;
}

QString JsonReader::string(const QJsonObject& o, QLatin1String key, const QString& where, int maxLength, bool required)
{
    QJsonValue v;
    if (!present(o, key, where, required, v))
        return {};
    if (!v.isString()) {
        fail(path(where, key), QCoreApplication::translate("Project", "not a text"));
        return {};
    }
    const QString s = v.toString();
    if (s.size() > maxLength) {
        fail(path(where, key), QCoreApplication::translate("Project", "longer than %1 characters").arg(maxLength));
        return {};
    }
    return s;
}

double JsonReader::number(const QJsonObject& o, QLatin1String key, const QString& where, double min, double max,
                          double fallback, bool required)
{
    QJsonValue v;
    if (!present(o, key, where, required, v))
        return fallback;
    const double d = v.toDouble();
    // NaN fails both comparisons, so it is refused with the rest.
    if (!v.isDouble() || !(d >= min && d <= max)) {
        fail(path(where, key), QCoreApplication::translate("Project", "not a number from %1 to %2").arg(min).arg(max));
        return fallback;
    }
    return d;
}

qint64 JsonReader::integer(const QJsonObject& o, QLatin1String key, const QString& where, qint64 min, qint64 max,
                           qint64 fallback, bool required)
{
    QJsonValue v;
    if (!present(o, key, where, required, v))
        return fallback;
    const double d = v.toDouble();
    if (!v.isDouble() || !(d >= double(min) && d <= double(max)) || std::trunc(d) != d) {
        fail(path(where, key), QCoreApplication::translate("Project", "not a whole number from %1 to %2").arg(min).arg(max));
        return fallback;
    }
    return qint64(d);
}

bool JsonReader::boolean(const QJsonObject& o, QLatin1String key, const QString& where, bool fallback)
{
    QJsonValue v;
    if (!present(o, key, where, false, v))
        return fallback;
    if (!v.isBool()) {
        fail(path(where, key), QCoreApplication::translate("Project", "not true or false"));
        return fallback;
    }
    return v.toBool();
}

QJsonObject JsonReader::element(const QJsonArray& array, int index, const QString& where)
{
    if (!ok())
        return {};
    const QJsonValue v = array.at(index);
    if (!v.isObject())
        fail(path(where, index), QCoreApplication::translate("Project", "not an object"));
    return v.toObject();
}

} // namespace Serialize
