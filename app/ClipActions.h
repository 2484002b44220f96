#pragma once

#include <Timeline/Timeline.h>

#include <QList>
#include <QString>

class QMenu;

// The clip context-menu actions on the special adjustments: speed, reverse, "Original tone"
// and stabilization. Each acts on the clips it applies to among those given (a video's own
// sound goes with its video) as one undo step, and logs
//   clip actions: <action> on <n> clip(s)
namespace ClipActions {

// Adds the actions for the timeline's selection to `menu`.
void addTo(QMenu* menu, Timeline::ITimeline* timeline);

int setSpeed(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, double speed);
int setReversed(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool reversed);
int setSpeedCompensated(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool compensated);
// Asks the stabilization service (Stabilization::ClipStabilizeRequest) for each video clip.
int setStabilized(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, bool stabilized);

// Runs a comma-separated list of actions ("speed=2,reverse,tone,stabilize") on `clips`;
// false, with the reason logged, for an action it does not know.
bool run(Timeline::ITimeline* timeline, const QList<Timeline::IClip*>& clips, const QString& actions);

} // namespace ClipActions
