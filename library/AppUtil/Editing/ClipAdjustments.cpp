#include "Editing/ClipAdjustments.h"

#include <EditorCollection/Collection.h>
#include <Serialize/Serialize.h>
#include <Translator/Translator.h>

#include <QCoreApplication>
#include <QHash>
#include <QUndoStack>
#include <QUuid>

#include <cmath>

const QString AdjustmentId::Speed = QStringLiteral("32130b0f-0f23-4fd8-842a-f2a8d799467e");
const QString AdjustmentId::SpeedCompensation = QStringLiteral("a61be0a9-2569-4356-8bc2-35b37ce9f9ff");
const QString AdjustmentId::Stabilization = QStringLiteral("1073a17a-7169-434d-9e0e-a4e54d789e83");
const QString AdjustmentId::Reverse = QStringLiteral("68deae8f-b8da-44f3-9fd8-666bdbe3e6a6");

Stabilization::Object* Stabilization::globalObject()
{
    static Object object;
    return &object;
}

namespace {

// Equal within a relative 1e-12, so that a speed read back from a project (or computed
// from a duration) still counts as the value it was set to.
bool relativelyEqual(double a, double b)
{
    return std::abs(a - b) * 1e12 <= std::min(std::abs(a), std::abs(b));
}


// A change of several clips lands on their timeline's undo stack as one step; a change of
// one clip is a single command anyway.
class UndoStep
{
public:
    UndoStep(Timeline::IClip* first, std::size_t clips, const QString& text)
    {
        Timeline::ITimeline* timeline = first && clips > 1 ? first->timeline() : nullptr;
        m_stack = timeline ? timeline->undoStack() : nullptr;
        if (m_stack)
            m_stack->beginMacro(text);
    }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;
    ~UndoStep()
    {
        if (m_stack)
            m_stack->endMacro();
    }

private:
    QUndoStack* m_stack = nullptr;
};

// The clips that carry the timing of `clips` and pass `test`, each once: a video and its
// own sound share one timing, and changing it twice would be two undo steps for one edit.
std::set<Timeline::IClip*> timingClips(const std::set<Timeline::IClip*>& clips,
                                       const std::function<bool(const Timeline::ClipTiming&)>& test)
{
    std::set<Timeline::IClip*> found;
    for (Timeline::IClip* clip : clips) {
        Timeline::ITimeline* timeline = clip->timeline();
        Timeline::IClip* carrier = timeline ? timeline->timingClip(clip) : nullptr;
        if (carrier && test(carrier->timing()))
            found.insert(carrier);
    }
    return found;
}

void changeTimings(const std::set<Timeline::IClip*>& clips, const QString& text,
                   const std::function<bool(const Timeline::ClipTiming&)>& test,
                   const std::function<void(Timeline::ITimeline&, Timeline::IClip*)>& change)
{
    const std::set<Timeline::IClip*> carriers = timingClips(clips, test);
    if (carriers.empty())
        return;
    UndoStep step(*carriers.begin(), carriers.size(), text);
    for (Timeline::IClip* clip : carriers)
        change(*clip->timeline(), clip);
}

class SpeedAdjustment : public Adjustment
{
public:
    using Adjustment::Adjustment;
    QString id() override { return AdjustmentId::Speed; }
    QString uid() override { return AdjustmentId::Speed; }
    QString name() override { return QCoreApplication::translate("ClipAdjustmentsProvider", "Speed"); }
    QString tag() override { return QStringLiteral("speed"); }
    void remove() override
    {
        changeTimings(m_clips, name(), [](const Timeline::ClipTiming&) { return true; },
                      [](Timeline::ITimeline& timeline, Timeline::IClip* clip) { timeline.setSpeed(clip, 1.0); });
    }
};

class SpeedCompensationAdjustment : public Adjustment
{
public:
    using Adjustment::Adjustment;
    QString id() override { return AdjustmentId::SpeedCompensation; }
    QString uid() override { return AdjustmentId::SpeedCompensation; }
    QString name() override { return QCoreApplication::translate("ClipAdjustmentsProvider", "Original tone"); }
    QString tag() override { return QStringLiteral("speed_compensation"); }
    void remove() override
    {
        changeTimings(m_clips, name(), [](const Timeline::ClipTiming& t) { return t.isSpeedCompensated(); },
                      [](Timeline::ITimeline& timeline, Timeline::IClip* clip) { timeline.setSpeedCompensated(clip, false); });
    }
};

class ReverseAdjustment : public Adjustment
{
public:
    using Adjustment::Adjustment;
    QString id() override { return AdjustmentId::Reverse; }
    QString uid() override { return AdjustmentId::Reverse; }
    QString name() override { return QCoreApplication::translate("ClipAdjustmentsProvider", "Reverse"); }
    QString tag() override { return QStringLiteral("reverse"); }
    void remove() override
    {
        changeTimings(m_clips, name(), [](const Timeline::ClipTiming& t) { return t.isReversed(); },
                      [](Timeline::ITimeline& timeline, Timeline::IClip* clip) { timeline.setReversed(clip, false); });
    }
};

} // namespace

// ---------------------------------------------------------------- Adjustment

Adjustment::Adjustment(Timeline::IClip* clip)
{
    m_clips.insert(clip);
}

Adjustment::~Adjustment() = default;

bool Adjustment::hasIntensity() const
{
    return false;
}

double Adjustment::intensity() const
{
    return 1.0;
}

void Adjustment::setIntensity(double) {}

bool Adjustment::bypassAvailable() const
{
    return false;
}

void Adjustment::merge(std::shared_ptr<Adjustment> const& other)
{
    if (other)
        m_clips.insert(other->m_clips.begin(), other->m_clips.end());
}

bool Adjustment::isInnerAdjustment() const
{
    return false;
}

void Adjustment::setBypass(bool bypass)
{
    if (bypass == m_bypass)
        return;
    m_bypass = bypass;
    setBypassImpl(bypass);
}

void Adjustment::setBypassImpl(bool) {}

// ---------------------------------------------------------------- StabilizationAdjustment

QString StabilizationAdjustment::id()
{
    return AdjustmentId::Stabilization;
}

QString StabilizationAdjustment::uid()
{
    return AdjustmentId::Stabilization;
}

QString StabilizationAdjustment::name()
{
    return QCoreApplication::translate("ClipAdjustmentsProvider", "Stabilization");
}

QString StabilizationAdjustment::tag()
{
    return QStringLiteral("stabilization");
}

void StabilizationAdjustment::remove()
{
    // The service decides how a clip stops being stabilized; the rows only ask. Its
    // changes of several clips still make one undo step.
    const std::set<Timeline::IClip*> clips = m_clips;
    UndoStep step(*clips.begin(), clips.size(), name());
    for (Timeline::IClip* clip : clips)
        PubSub::publish(Stabilization::ClipStabilizeRequest(clip, false));
}

// ---------------------------------------------------------------- EffectAdjustment

EffectAdjustment::EffectAdjustment(Timeline::IClip* clip, Effect::Object const* effect,
                                   Effect::EffectsHolder const* holder)
    : Adjustment(clip), m_holder(holder)
{
    if (!effect)
        return;
    m_id = effect->id();
    m_uid = effect->uid();
    m_tag = effect->tag();
    m_fallbackNameKey = effect->nameKey();
    m_hasIntensity = effect->hasIntensity();
    const auto effects = EditorCollection::CollectionProvider::collection(QStringLiteral("Effects"));
    m_isFilter = effects && effects->holds(m_tag);
    setBypass(effect->bypass()); // the map is still empty: nothing is written back
    m_effects[clip] = effect;
    if (m_hasIntensity)
        m_intensity = effect->intensity();
}

EffectAdjustment::~EffectAdjustment() = default;

QString EffectAdjustment::name()
{
    QString title = Translator::translate(m_tag, QString());
    if (!QUuid(title).isNull() || m_mixed)
        title = Translator::translate(m_fallbackNameKey, QString());
    const QString prefix = m_isFilter ? QCoreApplication::translate("ClipAdjustmentsProvider", "Filter: ") : QString();
    return QStringLiteral("%1%2").arg(prefix, title);
}

void EffectAdjustment::merge(std::shared_ptr<Adjustment> const& other)
{
    if (m_holder || !other)
        return;
    if (other->name() != name())
        m_mixed = true;
    Adjustment::merge(other);
    const auto* otherEffect = dynamic_cast<const EffectAdjustment*>(other.get());
    for (Timeline::IClip* clip : other->clips()) {
        const Effect::Object* found = clip->findEffect(m_id, m_uid);
        if (!found)
            continue;
        m_effects[clip] = found;
        if (m_hasIntensity && !relativelyEqual(found->intensity(), m_intensity)) {
            m_intensity = 1.0;
            m_intensityMixed = true;
        }
        if (found->bypass() != m_bypass)
            m_bypassMixed = true;
    }
    if (otherEffect && (otherEffect->m_intensityMixed || otherEffect->m_bypassMixed)) {
        m_intensityMixed = m_intensityMixed || otherEffect->m_intensityMixed;
        m_bypassMixed = m_bypassMixed || otherEffect->m_bypassMixed;
    }
}

void EffectAdjustment::setIntensity(double intensity)
{
    m_intensity = intensity;
    m_intensityMixed = false;
    updateValue(&Effect::Object::setIntensity, intensity);
}

void EffectAdjustment::setBypassImpl(bool bypass)
{
    m_bypassMixed = false;
    updateValue(&Effect::Object::setBypass, bypass);
}

QList<Effect::Object const*> EffectAdjustment::effects() const
{
    QList<Effect::Object const*> list;
    list.reserve(int(m_effects.size()));
    for (const auto& entry : m_effects)
        list << entry.second;
    return list;
}

void EffectAdjustment::updateEffect(std::function<void(Effect::Object&)> const& change)
{
    if (m_effects.empty())
        return;
    if (m_holder) {
        // An inner effect changes by replacing its whole group with a changed copy.
        const auto entry = m_effects.begin();
        auto group = Serialize::deepCopy(m_holder);
        Effect::Object* inner = group ? group->findEffect(m_id, m_uid) : nullptr;
        if (!inner)
            return;
        change(*inner);
        if (entry->first->replaceEffect(group)) {
            m_holder = group.get();
            entry->second = inner;
        }
        return;
    }
    UndoStep step(m_effects.begin()->first, m_effects.size(),
                  QCoreApplication::translate("Timeline", "Change %1").arg(Translator::translate(m_fallbackNameKey)));
    for (auto& entry : m_effects) {
        std::shared_ptr<Effect::Object> copy = Serialize::deepCopy(entry.second);
        if (!copy)
            continue;
        change(*copy);
        // The clip keeps the copy alive from here on; until it accepts it, the old effect stays.
        if (entry.first->replaceEffect(copy))
            entry.second = copy.get();
    }
}

void EffectAdjustment::remove()
{
    if (m_holder || m_effects.empty())
        return;
    UndoStep step(m_effects.begin()->first, m_effects.size(), QCoreApplication::translate("ClipAdjustmentsProvider", "Remove %1").arg(name()));
    for (const auto& entry : m_effects)
        if (entry.first->findEffect(m_id, m_uid))
            entry.first->removeEffect(m_id, m_uid);
}

// ---------------------------------------------------------------- ClipAdjustmentsProvider

QList<std::shared_ptr<Adjustment>> ClipAdjustmentsProvider::adjustments(Timeline::IClip* clip)
{
    QList<std::shared_ptr<Adjustment>> rows;
    if (!clip || !clip->takesAdjustments())
        return rows;
    for (const Effect::Object* effect : clip->effects()) {
        if (!effect)
            continue;
        const auto* group = dynamic_cast<const Effect::EffectsHolder*>(effect);
        if (!group) {
            rows << std::make_shared<EffectAdjustment>(clip, effect, nullptr);
            continue;
        }
        QList<std::shared_ptr<Adjustment>> inner;
        for (const Effect::Object* innerEffect : group->effects())
            if (innerEffect)
                inner << std::make_shared<EffectAdjustment>(clip, innerEffect, group);
        auto row = std::make_shared<EffectAdjustment>(clip, group, nullptr);
        row->setInnerAdjustments(inner);
        rows << row;
    }
    if (!clip->hasNoAdjustableSpeed() && !relativelyEqual(clip->speed(), 1.0))
        rows << std::make_shared<SpeedAdjustment>(clip);
    const Timeline::ClipTiming timing = clip->timing();
    if (timing.isSpeedCompensated())
        rows << std::make_shared<SpeedCompensationAdjustment>(clip);
    if (clip->stabilizableSource() && clip->mediaType() == Media::Type::Video)
        rows << std::make_shared<StabilizationAdjustment>(clip);
    if (timing.isReversed())
        rows << std::make_shared<ReverseAdjustment>(clip);
    return rows;
}

QList<std::shared_ptr<Adjustment>> ClipAdjustmentsProvider::mergedAdjustments(const QList<Timeline::IClip*>& clips)
{
    QList<std::shared_ptr<Adjustment>> merged;
    QHash<QString, int> rowOfUid;
    for (Timeline::IClip* clip : clips) {
        for (const auto& row : adjustments(clip)) {
            const QString uid = row->uid();
            const auto found = rowOfUid.constFind(uid);
            if (found != rowOfUid.constEnd()) {
                merged.at(*found)->merge(row);
            } else {
                rowOfUid.insert(uid, merged.size());
                merged << row;
            }
        }
    }
    return merged;
}
