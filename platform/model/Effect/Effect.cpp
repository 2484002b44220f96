#include "Effect/Effect.h"

#include "Serialize/JsonReader.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>
#include <QUuid>

#include <glog/logging.h>

namespace Effect {

namespace Id {
const QString Transpose = QStringLiteral("transpose");
const QString Crop = QStringLiteral("crop");
const QString Group = QStringLiteral("group");
} // namespace Id

namespace {

// Groups inside groups are allowed, but not without end: a hostile file must not be able
// to exhaust the stack.
constexpr int kMaxDepth = 8;
constexpr int kMaxInnerEffects = 256;

QString newUid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

struct CatalogueData
{
    QList<CatalogueEntry> entries;
    QMap<QString, int> byId;

    CatalogueData()
    {
        QFile file(QStringLiteral(":/effects/effects.json"));
        if (!file.open(QIODevice::ReadOnly)) {
            LOG(ERROR) << "effect catalogue: cannot read " << file.fileName().toStdString();
            return;
        }
        const QJsonArray effects = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("effects")).toArray();
        for (const QJsonValue& value : effects) {
            const QJsonObject o = value.toObject();
            CatalogueEntry entry;
            entry.id = o.value(QStringLiteral("id")).toString();
            entry.tag = o.value(QStringLiteral("tag")).toString();
            entry.nameKey = o.value(QStringLiteral("nameKey")).toString();
            entry.hasIntensity = o.value(QStringLiteral("intensity")).toBool();
            entry.collection = o.value(QStringLiteral("collection")).toString();
            entry.render = o.value(QStringLiteral("render")).toString();
            const QJsonArray range = o.value(QStringLiteral("range")).toArray();
            if (range.size() == 2) {
                entry.rangeMin = range.at(0).toDouble();
                entry.rangeMax = range.at(1).toDouble();
            }
            add(entry);
        }
    }

    void add(const CatalogueEntry& entry)
    {
        const auto found = byId.constFind(entry.id);
        if (found != byId.constEnd()) {
            entries[*found] = entry;
            return;
        }
        byId.insert(entry.id, entries.size());
        entries << entry;
    }
};

CatalogueData& catalogue()
{
    static CatalogueData data;
    return data;
}

QString number(double v)
{
    return QString::number(v, 'g', 6);
}

} // namespace

Object::Object(const QString& id, const QString& tag, const QString& nameKey, bool hasIntensity, const QString& uid)
    : m_id(id), m_uid(uid.isEmpty() ? newUid() : uid), m_tag(tag), m_nameKey(nameKey), m_hasIntensity(hasIntensity)
{
}

Object::~Object() = default;

std::shared_ptr<Object> Object::create(const QString& id)
{
    return make(id, QString());
}

std::shared_ptr<Object> Object::make(const QString& id, const QString& uid)
{
    if (id == Id::Group)
        return std::shared_ptr<EffectsHolder>(new EffectsHolder(uid));
    const CatalogueEntry* entry = Catalogue::find(id);
    if (!entry)
        return nullptr;
    return std::shared_ptr<Object>(new Object(entry->id, entry->tag, entry->nameKey, entry->hasIntensity, uid));
}

QString Object::serialType() const
{
    return QStringLiteral("effect");
}

QJsonObject Object::toJson() const
{
    QJsonObject o{{QStringLiteral("id"), m_id}, {QStringLiteral("uid"), m_uid}};
    if (m_hasIntensity)
        o.insert(QStringLiteral("intensity"), m_intensity);
    if (m_bypass)
        o.insert(QStringLiteral("bypass"), true);
    if (hasAngle())
        o.insert(QStringLiteral("angle"), m_angle);
    if (hasCropTransform())
        o.insert(QStringLiteral("crop"), QJsonArray{m_crop.m11(), m_crop.m12(), m_crop.m21(), m_crop.m22(), m_crop.dx(), m_crop.dy()});
    return o;
}

std::shared_ptr<Object> Object::fromJson(const QJsonObject& json, Serialize::JsonReader& reader, const QString& where, int depth)
{
    const QString id = reader.string(json, QLatin1String("id"), where, 64);
    const QString uid = reader.string(json, QLatin1String("uid"), where, 64);
    if (!reader.ok())
        return nullptr;
    std::shared_ptr<Object> effect = make(id, uid);
    if (!effect) {
        reader.fail(Serialize::JsonReader::path(where, QStringLiteral("id")), QCoreApplication::translate("Project", "unknown effect \"%1\"").arg(id));
        return nullptr;
    }
    if (uid.isEmpty()) {
        reader.fail(Serialize::JsonReader::path(where, QStringLiteral("uid")), QCoreApplication::translate("Project", "empty"));
        return nullptr;
    }
    if (effect->m_hasIntensity)
        effect->m_intensity = reader.number(json, QLatin1String("intensity"), where, 0.0, 1.0, 1.0, false);
    effect->m_bypass = reader.boolean(json, QLatin1String("bypass"), where, false);
    if (effect->hasAngle()) {
        const qint64 angle = reader.integer(json, QLatin1String("angle"), where, 0, 270, 0);
        if (angle % 90)
            reader.fail(Serialize::JsonReader::path(where, QStringLiteral("angle")), QCoreApplication::translate("Project", "not a quarter turn"));
        effect->m_angle = int(angle);
    }
    if (effect->hasCropTransform()) {
        const QJsonArray m = reader.array(json, QLatin1String("crop"), where, 6);
        double v[6] = {1, 0, 0, 1, 0, 0};
        for (int i = 0; i < 6 && reader.ok(); ++i) {
            v[i] = m.at(i).toDouble(qQNaN());
            if (m.size() != 6 || !(v[i] >= -1e6 && v[i] <= 1e6))
                reader.fail(Serialize::JsonReader::path(where, QStringLiteral("crop")), QCoreApplication::translate("Project", "not six numbers"));
        }
        effect->m_crop = QTransform(v[0], v[1], v[2], v[3], v[4], v[5]);
        if (reader.ok() && !effect->m_crop.isInvertible())
            reader.fail(Serialize::JsonReader::path(where, QStringLiteral("crop")), QCoreApplication::translate("Project", "cannot be inverted"));
    }
    if (auto* holder = dynamic_cast<EffectsHolder*>(effect.get())) {
        const QString innerWhere = Serialize::JsonReader::path(where, QStringLiteral("effects"));
        if (depth >= kMaxDepth) {
            reader.fail(innerWhere, QCoreApplication::translate("Project", "groups nested too deep"));
            return nullptr;
        }
        const QJsonArray inner = reader.array(json, QLatin1String("effects"), where, kMaxInnerEffects);
        for (int i = 0; i < inner.size() && reader.ok(); ++i) {
            const QString w = Serialize::JsonReader::path(innerWhere, i);
            if (auto child = fromJson(reader.element(inner, i, innerWhere), reader, w, depth + 1))
                holder->append(std::move(child));
        }
    }
    return reader.ok() ? effect : nullptr;
}

namespace {
QString catalogueText(const QString& id, QString CatalogueEntry::*field)
{
    const CatalogueEntry* entry = Catalogue::find(id);
    return entry ? entry->*field : QString();
}
} // namespace

EffectsHolder::EffectsHolder(const QString& uid)
    : Object(Id::Group, catalogueText(Id::Group, &CatalogueEntry::tag), catalogueText(Id::Group, &CatalogueEntry::nameKey), false, uid)
{
}

EffectsHolder::~EffectsHolder() = default;

std::shared_ptr<EffectsHolder> EffectsHolder::create()
{
    return std::shared_ptr<EffectsHolder>(new EffectsHolder);
}

QList<const Object*> EffectsHolder::effects() const
{
    QList<const Object*> list;
    list.reserve(int(m_effects.size()));
    for (const auto& effect : m_effects)
        list << effect.get();
    return list;
}

void EffectsHolder::append(std::shared_ptr<Object> effect)
{
    if (effect)
        m_effects.push_back(std::move(effect));
}

Object* EffectsHolder::findEffect(const QString& id, const QString& uid) const
{
    for (const auto& effect : m_effects)
        if (effect->id() == id && effect->uid() == uid)
            return effect.get();
    return nullptr;
}

bool EffectsHolder::replaceEffect(std::shared_ptr<Object> effect)
{
    if (!effect)
        return false;
    for (auto& inner : m_effects) {
        if (inner->id() == effect->id() && inner->uid() == effect->uid()) {
            inner = std::move(effect);
            return true;
        }
    }
    return false;
}

QJsonObject EffectsHolder::toJson() const
{
    QJsonObject o = Object::toJson();
    QJsonArray inner;
    for (const auto& effect : m_effects)
        inner.append(effect->toJson());
    o.insert(QStringLiteral("effects"), inner);
    return o;
}

namespace Catalogue {

QList<CatalogueEntry> entries()
{
    return catalogue().entries;
}

const CatalogueEntry* find(const QString& id)
{
    CatalogueData& data = catalogue();
    const auto found = data.byId.constFind(id);
    return found == data.byId.constEnd() ? nullptr : &data.entries.at(*found);
}

void add(const CatalogueEntry& entry)
{
    catalogue().add(entry);
}

QString renderDescription(const Object& effect)
{
    if (effect.bypass())
        return QString();
    if (const auto* holder = dynamic_cast<const EffectsHolder*>(&effect)) {
        QStringList parts;
        for (const Object* inner : holder->effects()) {
            const QString part = renderDescription(*inner);
            if (!part.isEmpty())
                parts << part;
        }
        return parts.join(QLatin1Char(','));
    }
    const CatalogueEntry* entry = find(effect.id());
    if (!entry)
        return QString();
    QString text = entry->render;
    if (effect.hasAngle()) {
        switch (effect.angle()) {
        case 90: return QStringLiteral("transpose=clock");
        case 180: return QStringLiteral("hflip,vflip");
        case 270: return QStringLiteral("transpose=cclock");
        default: return QString();
        }
    }
    if (effect.hasCropTransform()) {
        // The transform maps the kept region onto the frame, so its inverse maps the frame
        // onto the region, in units of the frame.
        const QRectF region = effect.cropTransform().inverted().mapRect(QRectF(0, 0, 1, 1)).intersected(QRectF(0, 0, 1, 1));
        text.replace(QLatin1String("{crop_w}"), number(region.width()));
        text.replace(QLatin1String("{crop_h}"), number(region.height()));
        text.replace(QLatin1String("{crop_x}"), number(region.x()));
        text.replace(QLatin1String("{crop_y}"), number(region.y()));
    }
    const double intensity = effect.hasIntensity() ? effect.intensity() : 1.0;
    text.replace(QLatin1String("{v}"), number(entry->rangeMin + intensity * (entry->rangeMax - entry->rangeMin)));
    return text;
}

} // namespace Catalogue
} // namespace Effect
