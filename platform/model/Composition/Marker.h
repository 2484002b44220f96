#pragma once

#include "MediaTime.h"

#include <vector>

namespace Timeline {
class ITimeline;
}

namespace Composition {

// Why a marker's position changed. Views that follow the playhead only care about moves
// (Moved); the other reasons tell that the composition under it changed.
enum class MarkerChangeReason {
    Moved = 0,       // the position was set (a seek, playback, a drag on the ruler)
    Invalidated = 1, // the composition changed under an unchanged position
};

class IMarker;

// Told after a marker changed, on the GUI thread.
class IMarkerObserver
{
public:
    virtual ~IMarkerObserver();
    virtual void playheadPositionChanged(IMarker& marker, MarkerChangeReason reason) = 0;
};

// A named position in a composition: the playhead, an in or out point.
class IMarker
{
public:
    virtual ~IMarker();
    virtual MediaTime position() const = 0;
    virtual void setPosition(MediaTime position) = 0;
    virtual void addObserver(IMarkerObserver* observer) = 0;
    virtual void removeObserver(IMarkerObserver* observer) = 0;
};

// The marker of the model: a position and its observers. Observers may remove themselves
// (or others) while being told.
//
//   Composition::Marker playhead;
//   playhead.addObserver(&tracker);
//   playhead.setPosition(MediaTime::fromSeconds(2));   // tracker told, reason Moved
class Marker final : public IMarker
{
public:
    Marker() = default;
    Marker(const Marker&) = delete;
    Marker& operator=(const Marker&) = delete;
    ~Marker() override;

    MediaTime position() const override { return m_position; }
    // Negative positions are taken as 0. Setting the same position tells nobody.
    void setPosition(MediaTime position) override;
    // Tells observers that what lies under the marker changed.
    void invalidate();
    void addObserver(IMarkerObserver* observer) override;
    void removeObserver(IMarkerObserver* observer) override;

private:
    void notify(MarkerChangeReason reason);
    MediaTime m_position;
    std::vector<IMarkerObserver*> m_observers;
};

// The playhead of the composition a timeline belongs to, or null when no editor shows it.
// Editors register their playhead here so that a clip can find its composition's playhead.
IMarker* playheadOf(const Timeline::ITimeline* timeline);
void setPlayheadOf(const Timeline::ITimeline* timeline, IMarker* playhead);

} // namespace Composition
