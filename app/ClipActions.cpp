#include "ClipActions.h"

#include <ClipsFiltrator.h>
#include <Editing/ClipAdjustments.h>

#include <QCoreApplication>
#include <QMenu>
#include <QUndoStack>

#include <glog/logging.h>

#include <functional>

namespace {


// The clips that carry their own timing among `clips`, each once.
std::set<Timeline::IClip*> timingTargets(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips)
{
    std::set<Timeline::IClip*> set(clips.begin(), clips.end());
    set.erase(nullptr);
    ClipsFiltrator::removeNativeAudio(set);
    std::set<Timeline::IClip*> targets;
    for (Timeline::IClip* clip : set)
        if (clip->takesAdjustments())
            targets.insert(timeline->timingClip(clip));
    return targets;
}

int changeEach(Timeline::ITimeline* timeline, const std::set<Timeline::IClip*>& targets, const QString& text,
               const std::string& logged, const std::function<bool(Timeline::IClip*)>& change)
{
    int changed = 0;
    if (!targets.empty()) {
        timeline->undoStack()->beginMacro(text);
        for (Timeline::IClip* clip : targets)
            if (change(clip))
                ++changed;
        timeline->undoStack()->endMacro();
    }
    LOG(INFO) << "clip actions: " << logged << " on " << changed << " clip(s)";
    return changed;
}

bool all(const std::set<Timeline::IClip*>& clips, const std::function<bool(const Timeline::IClip*)>& test)
{
    return !clips.empty() && std::all_of(clips.begin(), clips.end(), test);
}

std::set<Timeline::IClip*> videoTargets(const QList<Timeline::IClip*>& clips)
{
    std::set<Timeline::IClip*> set(clips.begin(), clips.end());
    set.erase(nullptr);
    ClipsFiltrator::keepClipsByType(set, Timeline::ClipType::Video);
    return set;
}

} // namespace

int ClipActions::setSpeed(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, double speed)
{
    return changeEach(timeline, timingTargets(timeline, clips), QCoreApplication::translate("ClipActions", "Change speed"), "speed " + std::to_string(speed),
                      [&](Timeline::IClip* clip) { return timeline->setSpeed(clip, speed); });
}

int ClipActions::setReversed(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool reversed)
{
    return changeEach(timeline, timingTargets(timeline, clips), QCoreApplication::translate("ClipActions", "Reverse"), reversed ? "reverse" : "forward",
                      [&](Timeline::IClip* clip) { return timeline->setReversed(clip, reversed); });
}

int ClipActions::setSpeedCompensated(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool compensated)
{
    return changeEach(timeline, timingTargets(timeline, clips), QCoreApplication::translate("ClipActions", "Original tone"),
                      compensated ? "original tone" : "no original tone",
                      [&](Timeline::IClip* clip) { return timeline->setSpeedCompensated(clip, compensated); });
}

int ClipActions::setStabilized(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool stabilized)
{
    return changeEach(timeline, videoTargets(clips), QCoreApplication::translate("ClipActions", "Stabilize"), stabilized ? "stabilize" : "no stabilization",
                      [&](Timeline::IClip* clip) {
                          const bool before = clip->timing().isStabilized();
                          PubSub::publish(Stabilization::ClipStabilizeRequest(clip, stabilized));
                          return clip->timing().isStabilized() != before;
                      });
}

void ClipActions::addTo(QMenu* menu, Timeline::ITimeline* timeline)
{
    const QList<Timeline::IClip*> selected = timeline->selectedClips();
    const std::set<Timeline::IClip*> timed = timingTargets(timeline, selected);
    const std::set<Timeline::IClip*> videos = videoTargets(selected);

    QMenu* speed = menu->addMenu(QCoreApplication::translate("ClipActions", "Speed"));
    speed->setObjectName(QStringLiteral("speedMenu"));
    speed->setEnabled(std::any_of(timed.begin(), timed.end(), [](const Timeline::IClip* c) { return !c->hasNoAdjustableSpeed(); }));
    for (const double value : {0.25, 0.5, 1.0, 1.5, 2.0, 4.0}) {
        QAction* action = speed->addAction(QCoreApplication::translate("ClipActions", "%1\u00d7").arg(value));
        action->setCheckable(true);
        action->setChecked(all(timed, [value](const Timeline::IClip* c) { return qFuzzyCompare(c->speed(), value); }));
        QObject::connect(action, &QAction::triggered, menu, [timeline, selected, value] { setSpeed(timeline, selected, value); });
    }

    const auto addToggle = [&](const QString& text, const char* name, bool enabled, bool checked,
                               int (*apply)(Timeline::ITimeline*, const QList<Timeline::IClip*>&, bool)) {
        QAction* action = menu->addAction(text);
        action->setObjectName(QString::fromLatin1(name));
        action->setCheckable(true);
        action->setEnabled(enabled);
        action->setChecked(checked);
        QObject::connect(action, &QAction::triggered, menu,
                         [timeline, selected, apply](bool on) { apply(timeline, selected, on); });
    };
    addToggle(QCoreApplication::translate("ClipActions", "Reverse"), "reverseAction", !timed.empty(),
              all(timed, [](const Timeline::IClip* c) { return c->timing().isReversed(); }), &setReversed);
    addToggle(QCoreApplication::translate("ClipActions", "Original tone"), "originalToneAction", !timed.empty(),
              all(timed, [](const Timeline::IClip* c) { return c->timing().isSpeedCompensated(); }), &setSpeedCompensated);
    addToggle(QCoreApplication::translate("ClipActions", "Stabilize"), "stabilizeAction", !videos.empty(),
              all(videos, [](const Timeline::IClip* c) { return c->timing().isStabilized(); }), &setStabilized);
}

bool ClipActions::run(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, const QString& actions)
{
    for (const QString& action : actions.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QString name = action.section(QLatin1Char('='), 0, 0).trimmed();
        bool ok = true;
        if (name == QLatin1String("speed")) {
            const double value = action.section(QLatin1Char('='), 1).toDouble(&ok);
            if (ok)
                setSpeed(timeline, clips, value);
        } else if (name == QLatin1String("reverse")) {
            setReversed(timeline, clips, true);
        } else if (name == QLatin1String("tone")) {
            setSpeedCompensated(timeline, clips, true);
        } else if (name == QLatin1String("stabilize")) {
            setStabilized(timeline, clips, true);
        } else {
            ok = false;
        }
        if (!ok) {
            LOG(WARNING) << "clip actions: unknown action " << action.toStdString();
            return false;
        }
    }
    return true;
}
