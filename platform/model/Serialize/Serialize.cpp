#include "Serialize/Serialize.h"

#include "Effect/Effect.h"
#include "Serialize/JsonReader.h"
#include "Timeline/Clip.h"

#include <QCoreApplication>

namespace Serialize {

SerializedData save(const ISerializable* object, Format)
{
    if (!object)
        return {};
    return {object->serialType(), object->toJson()};
}

std::shared_ptr<ISerializable> load(const SerializedData& data, Format format, QString* error)
{
    JsonReader reader;
    std::shared_ptr<ISerializable> object;
    if (format != Format::Json)
        reader.fail(QString(), QCoreApplication::translate("Project", "unknown format %1").arg(int(format)));
    else if (data.type == QLatin1String("effect"))
        object = Effect::Object::fromJson(data.data, reader, QString());
    else if (data.type == QLatin1String("clip"))
        object = Timeline::Clip::fromJson(data.data, reader, QString());
    else
        reader.fail(QString(), QCoreApplication::translate("Project", "unknown type \"%1\"").arg(data.type));
    if (!reader.ok()) {
        if (error)
            *error = reader.error();
        return nullptr;
    }
    return object;
}

} // namespace Serialize
