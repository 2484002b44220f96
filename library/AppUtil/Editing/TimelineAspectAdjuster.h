#pragma once

#include "AppUtil_export.h"

#include <memory>

namespace Timeline {
class ITimeline;
}

// Offers to match the project's frame shape to the first media placed on an empty timeline.
// When the clips of one insertion are all the timeline holds, the aspect ratio most of their
// video tracks share is compared with the project's; if it differs, the user is asked
// (Dialog::alertAdjustProjectAspect) on the next turn of the event loop, the answer goes to
// usage statistics (Statistics::AdjustProjectAspectSuggestedNotification), and on consent
// only the project's frame size changes, as one undoable step.
//
//   TimelineAspectAdjuster adjuster(&timeline);   // observes while it lives
//
// The setting Settings::adjustAspectWhenFileAdded() is read once, here: turning it off later
// takes effect for adjusters made afterwards.
class APPUTIL_EXPORT TimelineAspectAdjuster
{
public:
    explicit TimelineAspectAdjuster(Timeline::ITimeline* timeline);
    TimelineAspectAdjuster(const TimelineAspectAdjuster&) = delete;
    TimelineAspectAdjuster& operator=(const TimelineAspectAdjuster&) = delete;
    ~TimelineAspectAdjuster();

    class Impl;

private:
    std::unique_ptr<Impl> d;
};
