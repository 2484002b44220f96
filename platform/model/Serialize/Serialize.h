#pragma once

#include <QJsonObject>
#include <QString>

#include <memory>

// Saving and loading of model objects. Deep copies are made by saving and loading back,
// so a copy shares nothing with its original:
//
//   auto copy = Serialize::deepCopy(effect);           // std::shared_ptr<Effect::Object>
//   copy->setIntensity(0.5);
//   clip->replaceEffect(copy);
//
// Format 0 is JSON. Loading validates every field and fails with a message, never
// with half an object.
namespace Serialize {

enum class Format { Json = 0 };

class ISerializable
{
public:
    virtual ~ISerializable() = default;
    // The name under which load() finds the type again ("effect", "clip", ...).
    virtual QString serialType() const = 0;
    virtual QJsonObject toJson() const = 0;
};

struct SerializedData
{
    QString type;
    QJsonObject data;
    bool isNull() const { return type.isEmpty(); }
};

SerializedData save(const ISerializable* object, Format format = Format::Json);
// Null (and `error` set) when the type is unknown or the data does not validate.
std::shared_ptr<ISerializable> load(const SerializedData& data, Format format = Format::Json, QString* error = nullptr);

template <class T>
std::shared_ptr<T> deepCopy(const T* object)
{
    return std::dynamic_pointer_cast<T>(load(save(object)));
}

} // namespace Serialize
