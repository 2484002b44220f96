#include "PreviewPlayback.h"

#include <glog/logging.h>

namespace {
// The clock moves the playhead this often; frames are asked for when it crosses into the
// next one, so this only bounds how late a frame can be asked for.
constexpr int TickMs = 5;
} // namespace

PreviewPlayback::PreviewPlayback(Composition::IMarker* playhead, std::function<MediaTime()> end, QObject* parent)
    : QObject(parent), m_playhead(playhead), m_end(std::move(end))
{
    m_ticker.setTimerType(Qt::PreciseTimer);
    m_ticker.setInterval(TickMs);
    connect(&m_ticker, &QTimer::timeout, this, &PreviewPlayback::tick);
    Playback::setCurrent(this);
}

PreviewPlayback::~PreviewPlayback()
{
    if (m_state == Playback::State::Playing)
        pause();
    if (Playback::current() == this)
        Playback::setCurrent(nullptr);
}

void PreviewPlayback::setFrameRate(double framesPerSecond)
{
    if (framesPerSecond > 0)
        m_frameRate = framesPerSecond;
}

MediaTime PreviewPlayback::currentPosition() const
{
    return m_playhead ? m_playhead->position() : MediaTime();
}

void PreviewPlayback::seek(MediaTime time, Playback::SeekFlags)
{
    if (!m_playhead)
        return;
    m_playhead->setPosition(time);
    if (m_state == Playback::State::Playing) { // play on from there
        m_startPosition = m_playhead->position();
        m_clock.restart();
        m_lastShown = -1;
    }
}

void PreviewPlayback::play()
{
    if (m_state == Playback::State::Playing || !m_playhead)
        return;
    // At the end, play starts again from the beginning.
    if (m_playhead->position() >= m_end())
        m_playhead->setPosition(MediaTime());
    m_startPosition = m_playhead->position();
    m_lastShown = -1;
    m_shown = m_dropped = 0;
    m_longestStallMs = 0;
    m_clock.start();
    m_sinceTick.start();
    m_ticker.start();
    LOG(INFO) << "playback: started at " << m_startPosition.milliseconds();
    setState(Playback::State::Playing);
}

void PreviewPlayback::pause()
{
    if (m_state != Playback::State::Playing)
        return;
    m_ticker.stop();
    LOG(INFO) << "playback: paused at " << currentPosition().milliseconds();
    LOG(INFO) << "playback: " << m_shown << " frames shown, " << m_dropped << " dropped, longest GUI stall "
              << m_longestStallMs << " ms";
    setState(Playback::State::Paused);
}

void PreviewPlayback::toggle()
{
    if (m_state == Playback::State::Playing)
        pause();
    else
        play();
}

void PreviewPlayback::setState(Playback::State state)
{
    m_state = state;
    m_observers.tell([this](Playback::IPlaybackObserver& o) { o.playbackStateChanged(*this); });
    emit playbackRunningChanged(state == Playback::State::Playing);
}

void PreviewPlayback::setWaiting(bool waiting)
{
    if (waiting == m_waiting)
        return;
    m_waiting = waiting;
    m_observers.tell([this](Playback::IPlaybackObserver& o) { o.isWaitingChanged(*this); });
    emit waitingChanged(waiting);
}

void PreviewPlayback::frameShown(qint64 index)
{
    if (m_state != Playback::State::Playing)
        return;
    // Frames of the timeline between the last one shown and this one never reached the
    // screen: the decoder fell behind the clock.
    if (m_lastShown >= 0 && index > m_lastShown + 1)
        m_dropped += int(index - m_lastShown - 1);
    if (index > m_lastShown) {
        m_lastShown = index;
        ++m_shown;
    }
}

void PreviewPlayback::tick()
{
    // The ticker runs on the GUI thread: a late tick is the GUI thread stalling.
    m_longestStallMs = std::max(m_longestStallMs, m_sinceTick.restart() - TickMs);
    const MediaTime end = m_end();
    const MediaTime position = m_startPosition + MediaTime::fromMicroseconds(m_clock.nsecsElapsed() / 1000);
    if (position >= end) {
        m_playhead->setPosition(end);
        pause();
        return;
    }
    m_playhead->setPosition(position);
}
