#pragma once

#include "Serialize/Serialize.h"

#include <QList>
#include <QString>
#include <QTransform>

#include <memory>
#include <vector>

namespace Serialize {
class JsonReader;
}

namespace Effect {

// Identifiers of the effects other code asks for by name.
namespace Id {
extern const QString Transpose; // a quarter-turn rotation: angle()
extern const QString Crop;      // a crop: cropTransform()
extern const QString Group;     // an EffectsHolder
} // namespace Id

// One effect placed on a clip. Model objects are never changed in place once on a clip:
// a change is a deep copy (Serialize::deepCopy) handed to the clip's replaceEffect, so
// that the change can be undone and views see one replacement.
//
//   auto blur = Effect::Object::create(QStringLiteral("blur"));   // null for an unknown identifier
//   blur->setIntensity(0.4);
//   timeline->addEffect(clip, blur);
class Object : public Serialize::ISerializable
{
public:
    // A fresh instance of the catalogue's effect `id` with a new instance identifier, or
    // null when the catalogue has no such effect.
    static std::shared_ptr<Object> create(const QString& id);
    // Loads an effect saved by toJson(); null with reader's error set when it does not validate.
    static std::shared_ptr<Object> fromJson(const QJsonObject& json, Serialize::JsonReader& reader, const QString& where,
                                            int depth = 0);

    ~Object() override;

    QString id() const { return m_id; }   // the catalogue's identifier ("blur", Id::Transpose)
    QString uid() const { return m_uid; } // this instance's identifier, unique in a project
    void setUid(const QString& uid) { m_uid = uid; }
    QString tag() const { return m_tag; }         // the effect type's tag, a UUID text
    QString nameKey() const { return m_nameKey; } // the effect's own name, a translation key

    bool hasIntensity() const { return m_hasIntensity; }
    double intensity() const { return m_intensity; } // 0 to 1
    void setIntensity(double intensity) { m_intensity = intensity; }
    bool bypass() const { return m_bypass; }
    void setBypass(bool bypass) { m_bypass = bypass; }

    bool hasAngle() const { return m_id == Id::Transpose; }
    int angle() const { return m_angle; } // degrees, a multiple of 90 from 0 to 270
    void setAngle(int degrees) { m_angle = ((degrees % 360) + 360) % 360; }
    bool hasCropTransform() const { return m_id == Id::Crop; }
    // Maps the kept region onto the frame (a scale of 1 keeps everything).
    QTransform cropTransform() const { return m_crop; }
    void setCropTransform(const QTransform& transform) { m_crop = transform; }

    virtual bool isHolder() const { return false; }

    QString serialType() const override;
    QJsonObject toJson() const override;

protected:
    // An empty `uid` makes a new one.
    Object(const QString& id, const QString& tag, const QString& nameKey, bool hasIntensity, const QString& uid = QString());

private:
    // create() with the instance identifier given: a loaded effect keeps its saved one, and
    // making a new one first (a random UUID) was a sixth of loading a large project.
    static std::shared_ptr<Object> make(const QString& id, const QString& uid);

    QString m_id;
    QString m_uid;
    QString m_tag;
    QString m_nameKey;
    bool m_hasIntensity = false;
    double m_intensity = 1.0;
    bool m_bypass = false;
    int m_angle = 0;
    QTransform m_crop;
};

// A group of effects applied together, in order.
class EffectsHolder : public Object
{
public:
    static std::shared_ptr<EffectsHolder> create();
    ~EffectsHolder() override;

    bool isHolder() const override { return true; }
    QList<const Object*> effects() const;
    const std::vector<std::shared_ptr<Object>>& innerEffects() const { return m_effects; }
    void append(std::shared_ptr<Object> effect);
    Object* findEffect(const QString& id, const QString& uid) const;
    // Puts `effect` where the inner effect of the same id and uid is; false when there is none.
    bool replaceEffect(std::shared_ptr<Object> effect);

    QJsonObject toJson() const override;

private:
    friend class Object;
    explicit EffectsHolder(const QString& uid = QString());
    std::vector<std::shared_ptr<Object>> m_effects;
};

// The effects a user can apply, read from the catalogue resource (:/effects/effects.json).
struct CatalogueEntry
{
    QString id;
    QString tag;
    QString nameKey;
    bool hasIntensity = false;
    QString collection; // "Effects" for filters; empty for tools (transpose, crop, groups)
    // How the preview renders it: a libavfilter graph description whose {v} is replaced by
    // the intensity mapped onto [rangeMin, rangeMax] ({angle} and {crop_*} for the tools).
    QString render;
    double rangeMin = 0.0;
    double rangeMax = 1.0;
};

namespace Catalogue {
QList<CatalogueEntry> entries();
const CatalogueEntry* find(const QString& id);
// Adds or replaces an entry (hosts with effects of their own, tests).
void add(const CatalogueEntry& entry);
// The libavfilter description of `effect` with its values filled in; empty for a bypassed
// effect, a group with nothing to render, or an effect without a render description.
QString renderDescription(const Object& effect);
} // namespace Catalogue

} // namespace Effect
