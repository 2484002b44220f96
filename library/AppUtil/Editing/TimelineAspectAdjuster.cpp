#include "Editing/TimelineAspectAdjuster.h"

#include "Dialog/DialogStrategy.h"
#include "EditingStatistics.h"

#include <Settings/Settings.h>
#include <Timeline/Timeline.h>

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <boost/rational.hpp>

#include <glog/logging.h>

#include <map>
#include <unordered_set>
#include <vector>

namespace {

using Ratio = boost::rational<long long>;

// Frame sizes outside these bounds are no project frame: thumbnails, odd sizes encoders
// refuse, or more than any export format takes.
constexpr long long kMinArea = 320LL * 180;
constexpr long long kMaxArea = 4096LL * 4096;

const QString kSpecialEffects = QStringLiteral("Special effects");

bool usableTarget(const QSize& size)
{
    const long long area = (long long)size.width() * size.height();
    return !size.isEmpty() && size.width() % 2 == 0 && size.height() % 2 == 0 && area >= kMinArea && area <= kMaxArea;
}

// The offer that one insertion leads to, or none.
struct Suggestion
{
    Ratio aspect;
    QSize frameSize;
};

// Throws boost::bad_rational for a frame height of 0.
bool suggest(Timeline::ITimeline& timeline, const QList<Timeline::IClip*>& clips, Suggestion* out)
{
    if (clips.size() != timeline.clipCount())
        return false;
    // Each video track once, in the order the clips bring them.
    std::vector<const Media::VideoTrack*> tracks;
    std::unordered_set<const Media::VideoTrack*> seen;
    for (Timeline::IClip* clip : clips) {
        const Media::File* file = clip ? clip->mediaFile() : nullptr;
        if (!file || !file->isOpened() || file->isFailed() || file->isOpening())
            continue;
        if (clip->description().category == kSpecialEffects)
            continue;
        for (const Media::VideoTrack& track : file->videoTracks())
            if (!track.isCoverArt() && seen.insert(&track).second)
                tracks.push_back(&track);
    }
    if (tracks.empty())
        return false;

    std::map<Ratio, std::vector<QSize>> byRatio;
    for (const Media::VideoTrack* track : tracks)
        byRatio[Ratio(track->frameSize.width(), track->frameSize.height())].push_back(track->frameSize);
    auto best = byRatio.end();
    bool tie = false;
    for (auto it = byRatio.begin(); it != byRatio.end(); ++it) {
        if (best == byRatio.end() || it->second.size() > best->second.size()) {
            best = it;
            tie = false;
        } else if (it->second.size() == best->second.size()) {
            tie = true;
        }
    }
    if (tie)
        return false; // the media disagree: no shape to offer

    const Media::Video* project = timeline.video();
    if (!project)
        return false;
    const Ratio projectRatio = project->frameWidth() == 0 ? Ratio(0, 1) : Ratio(project->frameWidth(), project->frameHeight());
    if (best->first == projectRatio)
        return false;

    const QSize* target = nullptr;
    for (const QSize& size : best->second)
        if (usableTarget(size) && (!target || size.width() > target->width()))
            target = &size;
    if (!target)
        return false;
    *out = {best->first, *target};
    return true;
}

void ask(Timeline::ITimeline* timeline, const Suggestion& suggestion)
{
    const bool accepted = Dialog::alertAdjustProjectAspect();
    PubSub::publish(Statistics::AdjustProjectAspectSuggestedNotification(accepted, suggestion.aspect, suggestion.frameSize));
    if (!accepted || !timeline || !timeline->video())
        return;
    Media::Video changed = *timeline->video();
    changed.setFrameSize(suggestion.frameSize.width(), suggestion.frameSize.height());
    Media::VideoChanger(*timeline->video()).change(changed);
}

} // namespace

class TimelineAspectAdjuster::Impl : public Timeline::TimelineWatcher
{
public:
    void clipsInserted(Timeline::ITimeline& timeline, const QList<Timeline::IClip*>& clips) override
    {
        Suggestion suggestion;
        try {
            if (!suggest(timeline, clips, &suggestion))
                return;
        } catch (const boost::bad_rational& error) {
            LOG(INFO) << "No aspect suggestion: " << error.what();
            return;
        }
        // Never a dialog inside the model's notification: the question waits for the next
        // turn of the event loop, and is dropped if the adjuster is gone by then.
        Timeline::ITimeline* watched = &timeline;
        QTimer::singleShot(0, &m_context, [this, watched, suggestion] {
            if (watchedTimeline() == watched)
                ask(watched, suggestion);
        });
    }

private:
    QObject m_context;
};

TimelineAspectAdjuster::TimelineAspectAdjuster(Timeline::ITimeline* timeline) : d(std::make_unique<Impl>())
{
    // Written back so that the setting appears in the store with the value in force.
    Settings::setAdjustAspectWhenFileAdded(Settings::adjustAspectWhenFileAdded());
    if (Settings::adjustAspectWhenFileAdded() && timeline)
        d->watch(timeline);
}

TimelineAspectAdjuster::~TimelineAspectAdjuster() = default;
