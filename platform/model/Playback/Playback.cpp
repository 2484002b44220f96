#include "Playback/Playback.h"

#include <algorithm>

namespace Playback {

IPlaybackObserver::~IPlaybackObserver() = default;
IPositionSource::~IPositionSource() = default;
ISeekable::~ISeekable() = default;
IPlayback::~IPlayback() = default;

namespace {
IPlayback* g_current = nullptr;
std::vector<PlaybackWatcher*>& watchers()
{
    static std::vector<PlaybackWatcher*> list;
    return list;
}
} // namespace

IPlayback* current()
{
    return g_current;
}

void setCurrent(IPlayback* playback)
{
    if (playback == g_current)
        return;
    g_current = playback;
    // A copy: a watcher told of the change may create or destroy watchers.
    const std::vector<PlaybackWatcher*> list = watchers();
    for (PlaybackWatcher* watcher : list)
        if (std::find(watchers().begin(), watchers().end(), watcher) != watchers().end())
            watcher->follow(playback);
}

PlaybackWatcher::PlaybackWatcher()
{
    watchers().push_back(this);
    if (g_current) {
        m_playback = g_current;
        m_playback->addObserver(this);
    }
}

PlaybackWatcher::~PlaybackWatcher()
{
    watchers().erase(std::remove(watchers().begin(), watchers().end(), this), watchers().end());
    if (m_playback)
        m_playback->removeObserver(this);
}

void PlaybackWatcher::follow(IPlayback* playback)
{
    IPlayback* previous = m_playback;
    if (previous)
        previous->removeObserver(this);
    m_playback = playback;
    if (playback)
        playback->addObserver(this);
    currentPlaybackChanged(previous, playback);
}

void ObserverList::add(IPlaybackObserver* observer)
{
    if (observer && std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
        m_observers.push_back(observer);
}

void ObserverList::remove(IPlaybackObserver* observer)
{
    std::replace(m_observers.begin(), m_observers.end(), observer, static_cast<IPlaybackObserver*>(nullptr));
}

void ObserverList::compact()
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), nullptr), m_observers.end());
}

} // namespace Playback
