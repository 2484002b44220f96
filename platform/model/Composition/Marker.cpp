#include "Composition/Marker.h"

#include <algorithm>
#include <map>

namespace Composition {

IMarkerObserver::~IMarkerObserver() = default;
IMarker::~IMarker() = default;

Marker::~Marker()
{
    // An editor's playhead dies with the editor; a clip must not find it afterwards.
    setPlayheadOf(nullptr, this);
}

void Marker::setPosition(MediaTime position)
{
    position = std::max(position, MediaTime());
    if (position == m_position)
        return;
    m_position = position;
    notify(MarkerChangeReason::Moved);
}

void Marker::invalidate()
{
    notify(MarkerChangeReason::Invalidated);
}

void Marker::addObserver(IMarkerObserver* observer)
{
    if (observer && std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
        m_observers.push_back(observer);
}

void Marker::removeObserver(IMarkerObserver* observer)
{
    std::replace(m_observers.begin(), m_observers.end(), observer, static_cast<IMarkerObserver*>(nullptr));
}

void Marker::notify(MarkerChangeReason reason)
{
    // Removal while telling leaves a hole instead of shifting the list under the loop.
    for (std::size_t i = 0; i < m_observers.size(); ++i)
        if (IMarkerObserver* observer = m_observers[i])
            observer->playheadPositionChanged(*this, reason);
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr), m_observers.end());
}

namespace {
std::map<const Timeline::ITimeline*, IMarker*>& playheads()
{
    static std::map<const Timeline::ITimeline*, IMarker*> map;
    return map;
}
} // namespace

IMarker* playheadOf(const Timeline::ITimeline* timeline)
{
    const auto found = playheads().find(timeline);
    return found == playheads().end() ? nullptr : found->second;
}

void setPlayheadOf(const Timeline::ITimeline* timeline, IMarker* playhead)
{
    auto& map = playheads();
    if (!timeline) { // forget the marker wherever it is registered
        for (auto it = map.begin(); it != map.end();)
            it = it->second == playhead ? map.erase(it) : std::next(it);
        return;
    }
    if (playhead)
        map[timeline] = playhead;
    else
        map.erase(timeline);
}

} // namespace Composition
