#pragma once

#include <Composition/Marker.h>
#include <Playback/Playback.h>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

// The preview's playback: a clock that moves the editor's playhead in real time while it
// plays. It is the current playback object (Playback::current()) while it lives. The
// preview tells it which timeline frames it showed, so it counts the frames it dropped.
// One log line each:
//   playback: started at <ms>
//   playback: paused at <ms>
//   playback: <n> frames shown, <m> dropped, longest GUI stall <k> ms
//
// playbackRunningChanged(bool) is the hook for whatever must follow playback, such as
// keeping the screen from blanking while it runs.
class PreviewPlayback : public QObject,
                        public Playback::IPlayback,
                        public Playback::IPositionSource,
                        public Playback::ISeekable
{
    Q_OBJECT
public:
    // `end` gives the length of what is played (the timeline's duration).
    PreviewPlayback(Composition::IMarker* playhead, std::function<MediaTime()> end, QObject* parent = nullptr);
    ~PreviewPlayback() override;

    void play();
    void pause();
    void toggle();
    void setFrameRate(double framesPerSecond);
    double frameRate() const { return m_frameRate; }

    // The preview showed the timeline frame `index` (position × frame rate).
    void frameShown(qint64 index);
    // The preview is waiting for the frame at the playhead, or has it.
    void setWaiting(bool waiting);

    int shownFrames() const { return m_shown; }
    int droppedFrames() const { return m_dropped; }
    qint64 longestStallMs() const { return m_longestStallMs; }

    Playback::State state() const override { return m_state; }
    bool isWaiting() const override { return m_waiting; }
    const IPositionSource* positionSource() const override { return this; }
    ISeekable* seekable() override { return this; }
    void addObserver(Playback::IPlaybackObserver* observer) override { m_observers.add(observer); }
    void removeObserver(Playback::IPlaybackObserver* observer) override { m_observers.remove(observer); }
    MediaTime currentPosition() const override;
    void seek(MediaTime time, Playback::SeekFlags flags) override;

signals:
    void playbackRunningChanged(bool running);
    void waitingChanged(bool waiting);

private:
    void tick();
    void setState(Playback::State state);

    Composition::IMarker* m_playhead;
    std::function<MediaTime()> m_end;
    Playback::State m_state = Playback::State::Paused;
    bool m_waiting = true;
    double m_frameRate = 25.0;
    QTimer m_ticker;
    QElapsedTimer m_clock;
    QElapsedTimer m_sinceTick;
    MediaTime m_startPosition;
    qint64 m_lastShown = -1;
    int m_shown = 0;
    int m_dropped = 0;
    qint64 m_longestStallMs = 0;
    Playback::ObserverList m_observers;
};
