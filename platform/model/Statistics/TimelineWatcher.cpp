#include "Statistics/TimelineWatcher.h"

namespace Statistics {

bool TimelineWatcher::reportAddition(AddingMethod method) const
{
    if (m_clips == 0)
        return false;
    PubSub::publish(ClipsAddedNotification(method, m_clips, m_types));
    return true;
}

void TimelineWatcher::clipsInserted(Timeline::ITimeline&, const QList<Timeline::IClip*>& clips)
{
    for (const Timeline::IClip* clip : clips) {
        // The sound of a video comes with it: one addition, not two.
        if (clip->isNativeAudio())
            continue;
        ++m_clips;
        m_types |= clip->type();
    }
}

} // namespace Statistics
