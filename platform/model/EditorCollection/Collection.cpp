#include "EditorCollection/Collection.h"

#include "Serialize/JsonReader.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <mutex>

namespace EditorCollection {
namespace {
std::mutex& mutex()
{
    static std::mutex m;
    return m;
}
std::vector<std::shared_ptr<ICollection>>& all()
{
    static std::vector<std::shared_ptr<ICollection>> list;
    return list;
}
} // namespace

std::shared_ptr<ICollection> CollectionProvider::collection(const QString& name)
{
    std::lock_guard<std::mutex> lock(mutex());
    for (const auto& c : all())
        if (c->name() == name)
            return c;
    return {};
}

void CollectionProvider::add(const std::shared_ptr<ICollection>& collection)
{
    if (!collection)
        return;
    remove(collection->name());
    std::lock_guard<std::mutex> lock(mutex());
    all().push_back(collection);
}

void CollectionProvider::remove(const QString& name)
{
    std::lock_guard<std::mutex> lock(mutex());
    auto& list = all();
    list.erase(std::remove_if(list.begin(), list.end(), [&](const auto& c) { return c->name() == name; }), list.end());
}

void CollectionProvider::clear()
{
    std::lock_guard<std::mutex> lock(mutex());
    all().clear();
}

std::vector<std::shared_ptr<ICollection>> CollectionProvider::collections()
{
    std::lock_guard<std::mutex> lock(mutex());
    return all();
}

std::shared_ptr<const Item> Payload::findItem() const
{
    const std::shared_ptr<ICollection> owner = CollectionProvider::collection(collection);
    return owner ? owner->findItem(itemId) : nullptr;
}

QString ImportObject::mimeType()
{
    return QStringLiteral("application/x-klipvane-import-object");
}

QByteArray ImportObject::encode() const
{
    const QJsonObject json{{QStringLiteral("kind"), kind},
                           {QStringLiteral("collection"), payload.collection},
                           {QStringLiteral("item"), payload.itemId},
                           {QStringLiteral("first"), double(first)},
                           {QStringLiteral("second"), double(second)}};
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}

std::optional<ImportObject> ImportObject::decode(const QByteArray& data, QString* error)
{
    QJsonParseError parse{};
    const QJsonDocument document = QJsonDocument::fromJson(data, &parse);
    Serialize::JsonReader reader;
    if (!document.isObject())
        reader.fail(QStringLiteral("import object"), parse.error ? parse.errorString() : QStringLiteral("not an object"));
    const QJsonObject json = document.object();
    const QString where = QStringLiteral("import object");
    ImportObject object;
    object.kind = int(reader.integer(json, QLatin1String("kind"), where, Media, MediaRange, Media));
    object.payload.collection = reader.string(json, QLatin1String("collection"), where, 256);
    object.payload.itemId = reader.string(json, QLatin1String("item"), where);
    constexpr qint64 maxMicroseconds = qint64(1) << 50; // some 35 years
    object.first = reader.integer(json, QLatin1String("first"), where, 0, maxMicroseconds, 0, false);
    object.second = reader.integer(json, QLatin1String("second"), where, 0, maxMicroseconds, 0, false);
    if (!reader.ok()) {
        if (error)
            *error = reader.error();
        return std::nullopt;
    }
    return object;
}

} // namespace EditorCollection
