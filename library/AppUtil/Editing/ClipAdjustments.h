#pragma once

#include "AppUtil_export.h"

#include <Effect/Effect.h>
#include <PubSub/PubSub.h>
#include <Timeline/Timeline.h>

#include <QList>
#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <set>

// The adjustments of timeline clips: the effects placed on a clip and the special changes
// of its timing or picture (speed, "Original tone", stabilization, reverse), as uniform rows
// a panel shows and acts on. Rows hold references into the model; every change is written
// straight into it, through the timeline's undo stack.
//
//   for (const auto& row : ClipAdjustmentsProvider::adjustments(clip))
//       qDebug() << row->name() << row->intensity();
//   rows.first()->setIntensity(0.5);   // a deep copy of the effect replaces it on the clip
//   rows.last()->remove();             // undoable like any other edit

// Fixed identifiers of the special adjustments (their id() and uid()).
namespace AdjustmentId {
APPUTIL_EXPORT extern const QString Speed;
APPUTIL_EXPORT extern const QString SpeedCompensation;
APPUTIL_EXPORT extern const QString Stabilization;
APPUTIL_EXPORT extern const QString Reverse;
} // namespace AdjustmentId

namespace Stabilization {

// The channel of stabilization requests; the service that stabilizes clips subscribes here.
class Object
{
};
APPUTIL_EXPORT Object* globalObject();

// Asks the stabilization service to stabilize `clip`, or to stop (`stabilize` false).
struct APPUTIL_EXPORT ClipStabilizeRequest : Message::Types::Request<Object>
{
    ClipStabilizeRequest(Timeline::IClip* clip, bool stabilize)
        : Request(globalObject()), clip(clip), stabilize(stabilize)
    {
    }
    Timeline::IClip* clip;
    bool stabilize;
};

} // namespace Stabilization

// One row of a clip's adjustments, acting on one clip or, once merged, on several.
class APPUTIL_EXPORT Adjustment
{
public:
    explicit Adjustment(Timeline::IClip* clip);
    Adjustment(const Adjustment&) = default;
    Adjustment& operator=(const Adjustment&) = default;
    virtual ~Adjustment();

    virtual QString id() = 0;
    virtual QString uid() = 0;
    virtual QString name() = 0;
    virtual QString tag() = 0;
    virtual bool hasIntensity() const;
    virtual double intensity() const;
    virtual void setIntensity(double intensity);
    virtual bool bypassAvailable() const;
    // Lets this row act on the clips of `other` too.
    virtual void merge(std::shared_ptr<Adjustment> const& other);
    virtual void remove() = 0;
    // A row of an effect inside an effect group.
    virtual bool isInnerAdjustment() const;

    bool bypass() const { return bypassAvailable() && m_bypass; }
    void setBypass(bool bypass);

    const std::set<Timeline::IClip*>& clips() const { return m_clips; }
    const QList<std::shared_ptr<Adjustment>>& innerAdjustments() const { return m_inner; }
    void setInnerAdjustments(const QList<std::shared_ptr<Adjustment>>& inner) { m_inner = inner; }

protected:
    virtual void setBypassImpl(bool bypass);

    std::set<Timeline::IClip*> m_clips;
    QList<std::shared_ptr<Adjustment>> m_inner;
    bool m_bypass = false;
};

// The row of one effect (or effect group) placed on one or more clips.
class APPUTIL_EXPORT EffectAdjustment : public Adjustment
{
public:
    // `holder` is the group that contains `effect`, or null for an effect placed on the clip.
    EffectAdjustment(Timeline::IClip* clip, Effect::Object const* effect, Effect::EffectsHolder const* holder);
    EffectAdjustment(const EffectAdjustment&) = default;
    EffectAdjustment(EffectAdjustment&&) = default;
    EffectAdjustment& operator=(const EffectAdjustment&) = default;
    EffectAdjustment& operator=(EffectAdjustment&&) = default;
    ~EffectAdjustment() override;

    QString id() override { return m_id; }
    QString uid() override { return m_uid; }
    QString tag() override { return m_tag; }
    // The effect's title, "Filter: " before it for the effects of the "Effects" collection;
    // the effect's own name when the title is unknown or merged rows disagree on it.
    QString name() override;
    bool hasIntensity() const override { return m_hasIntensity; }
    // The common intensity of the clips; 1.0 when they disagree (see isIntensityMixed()).
    double intensity() const override { return m_intensity; }
    void setIntensity(double intensity) override;
    bool bypassAvailable() const override { return true; }
    void merge(std::shared_ptr<Adjustment> const& other) override;
    void remove() override;
    bool isInnerAdjustment() const override { return m_holder != nullptr; }

    // Whether merged clips disagree: on the name, on the intensity, on the bypass switch.
    // A panel shows a mixed value rather than the 1.0 or the first clip's switch it holds.
    bool isMixed() const { return m_mixed; }
    bool isIntensityMixed() const { return m_intensityMixed; }
    bool isBypassMixed() const { return m_bypassMixed; }

    // The effect objects of the clips, in clip order.
    QList<Effect::Object const*> effects() const;
    // Applies `change` to a deep copy of each clip's effect and puts the copy in its place,
    // one replacement per clip (one undo step for several clips).
    void updateEffect(std::function<void(Effect::Object&)> const& change);
    template <class T>
    void updateValue(void (Effect::Object::*setter)(T), T value)
    {
        updateEffect([setter, value](Effect::Object& effect) { (effect.*setter)(value); });
    }

protected:
    void setBypassImpl(bool bypass) override;

private:
    std::map<Timeline::IClip*, Effect::Object const*> m_effects;
    Effect::EffectsHolder const* m_holder = nullptr;
    QString m_id;
    QString m_uid;
    QString m_tag;
    QString m_fallbackNameKey;
    double m_intensity = 1.0;
    bool m_mixed = false;
    bool m_hasIntensity = false;
    bool m_isFilter = false;
    bool m_intensityMixed = false;
    bool m_bypassMixed = false;
};

// The row of a stabilized clip; removing it asks the stabilization service
// (Stabilization::ClipStabilizeRequest) to stop.
class APPUTIL_EXPORT StabilizationAdjustment : public Adjustment
{
public:
    using Adjustment::Adjustment;
    QString id() override;
    QString uid() override;
    QString name() override;
    QString tag() override;
    void remove() override;
};

namespace ClipAdjustmentsProvider {

// The rows of `clip`: its effects in order (a group as one row holding its inner rows),
// then speed, "Original tone", stabilization and reverse where they apply. Empty for a clip
// that takes no adjustments.
APPUTIL_EXPORT QList<std::shared_ptr<Adjustment>> adjustments(Timeline::IClip* clip);

// The rows of several clips merged into one list: a row of a later clip is merged into the
// first row with its uid (the special rows by kind, effects applied to the clips together
// by their shared instance identifier); rows no earlier clip has are appended.
APPUTIL_EXPORT QList<std::shared_ptr<Adjustment>> mergedAdjustments(const QList<Timeline::IClip*>& clips);

} // namespace ClipAdjustmentsProvider
