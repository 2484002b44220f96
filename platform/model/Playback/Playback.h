#pragma once

#include "MediaTime.h"

#include <QFlags>

#include <vector>

namespace Playback {

// The values are the model's: 1 is playing.
enum class State { Stopped = 0, Playing = 1, Paused = 2 };

enum class SeekFlag { None = 0x0, Exact = 0x1 };
using SeekFlags = QFlags<SeekFlag>;

class IPlayback;

// Told of a playback's changes, on the GUI thread.
class IPlaybackObserver
{
public:
    virtual ~IPlaybackObserver();
    virtual void isWaitingChanged(IPlayback&) {}
    virtual void playbackStateChanged(IPlayback&) {}
};

// Where a playback is now.
class IPositionSource
{
public:
    virtual ~IPositionSource();
    virtual MediaTime currentPosition() const = 0;
};

class ISeekable
{
public:
    virtual ~ISeekable();
    virtual void seek(MediaTime time, SeekFlags flags) = 0;
};

// A running or paused playback of a composition. A playback may offer no position (it has
// not started decoding) or no seek (a live source): those interfaces are then null.
class IPlayback
{
public:
    virtual ~IPlayback();
    virtual State state() const = 0;
    // True while it waits for data (decoding, a slow disk) before it can show the position.
    virtual bool isWaiting() const = 0;
    virtual const IPositionSource* positionSource() const = 0;
    virtual ISeekable* seekable() = 0;
    virtual void addObserver(IPlaybackObserver* observer) = 0;
    virtual void removeObserver(IPlaybackObserver* observer) = 0;
};

// The playback the editor shows now, or null; changed by whoever owns the playback (the
// preview creates one and sets it, and sets null before it goes away).
IPlayback* current();
void setCurrent(IPlayback* playback);

// An observer that follows the current playback object: when another becomes current it
// stops observing the old one and observes the new one.
class PlaybackWatcher : public IPlaybackObserver
{
public:
    PlaybackWatcher();
    PlaybackWatcher(const PlaybackWatcher&) = delete;
    PlaybackWatcher& operator=(const PlaybackWatcher&) = delete;
    ~PlaybackWatcher() override;

    IPlayback* playback() const { return m_playback; }

protected:
    // After the watcher moved to `current` (either may be null).
    virtual void currentPlaybackChanged(IPlayback* /*previous*/, IPlayback* /*current*/) {}

private:
    friend void setCurrent(IPlayback*);
    void follow(IPlayback* playback);
    IPlayback* m_playback = nullptr;
};

// Observer bookkeeping for implementations of IPlayback.
class ObserverList
{
public:
    void add(IPlaybackObserver* observer);
    void remove(IPlaybackObserver* observer);
    template <class Call>
    void tell(Call call)
    {
        for (std::size_t i = 0; i < m_observers.size(); ++i)
            if (m_observers[i])
                call(*m_observers[i]);
        compact();
    }

private:
    void compact();
    std::vector<IPlaybackObserver*> m_observers;
};

} // namespace Playback

Q_DECLARE_OPERATORS_FOR_FLAGS(Playback::SeekFlags)
