#include "EditingFixture.h"

#include <Editing/EditPlaybackTracker.h>
#include <Editing/SceneEditor.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

// A playback as the preview would run it, driven by the test.
class ScriptedPlayback final : public Playback::IPlayback, public Playback::IPositionSource, public Playback::ISeekable
{
public:
    Playback::State playState = Playback::State::Paused;
    bool waiting = true;
    MediaTime position;
    QList<MediaTime> seeks;
    bool offersPosition = true;

    Playback::State state() const override { return playState; }
    bool isWaiting() const override { return waiting; }
    const IPositionSource* positionSource() const override { return offersPosition ? this : nullptr; }
    ISeekable* seekable() override { return this; }
    MediaTime currentPosition() const override { return position; }
    void seek(MediaTime time, Playback::SeekFlags) override { seeks << time; }
    void addObserver(Playback::IPlaybackObserver* o) override { observers.add(o); }
    void removeObserver(Playback::IPlaybackObserver* o) override { observers.remove(o); }

    void setState(Playback::State s)
    {
        playState = s;
        observers.tell([this](Playback::IPlaybackObserver& o) { o.playbackStateChanged(*this); });
    }
    void setWaiting(bool w)
    {
        waiting = w;
        observers.tell([this](Playback::IPlaybackObserver& o) { o.isWaitingChanged(*this); });
    }

    Playback::ObserverList observers;
};

// Makes a playback current for one test and takes it away again.
struct CurrentPlayback
{
    explicit CurrentPlayback(Playback::IPlayback* p) { Playback::setCurrent(p); }
    ~CurrentPlayback() { Playback::setCurrent(nullptr); }
};

struct Setup
{
    EditingFixture f;
    SceneHelper helper;
    SceneEditor sceneEditor{f.editor};
    Timeline::IClip* first = nullptr;
    Timeline::IClip* second = nullptr; // 10 s to 20 s
    std::unique_ptr<EditPlaybackTracker> tracker;

    Setup()
    {
        first = f.place(QStringLiteral("/m/a.mp4"), QSize(1920, 1080));
        second = f.place(QStringLiteral("/m/b.mp4"), QSize(1920, 1080));
        sceneEditor.setSceneHelper(&helper);
        sceneEditor.setSceneSizeDelegate(timelineSizeDelegate());
        tracker = std::make_unique<EditPlaybackTracker>(sceneEditor, [this] { return second; });
        sceneEditor.load();
    }
};

} // namespace

class tst_EditPlaybackTracker : public QObject
{
    Q_OBJECT
private slots:
    void withoutPlayback()
    {
        Setup s;
        QVERIFY(!Playback::current());
        QCOMPARE(s.tracker->currentPosition(), MediaTime());
        QVERIFY(!s.tracker->playing());
        s.tracker->seekTo(MediaTime::fromSeconds(3)); // nothing to seek, nothing breaks
        QSignalSpy edit(s.tracker.get(), &EditPlaybackTracker::editPositionChanged);
        QSignalSpy position(s.tracker.get(), &EditPlaybackTracker::playbackPositionChanged);
        s.sceneEditor.sceneClient().bind({});
        s.f.editor.playheadMarker()->setPosition(MediaTime::fromSeconds(12));
        QCOMPARE(position.count(), 1);
        QCOMPARE(edit.count(), 0); // the position check needs a playback
    }

    void followsCurrentPlayback()
    {
        Setup s;
        ScriptedPlayback playback;
        playback.position = MediaTime::fromSeconds(7);
        CurrentPlayback current(&playback);
        QCOMPARE(s.tracker->playback(), &playback);
        QCOMPARE(s.tracker->currentPosition(), MediaTime::fromSeconds(7));
        s.tracker->seekTo(MediaTime::fromSeconds(3));
        QCOMPARE(playback.seeks, QList<MediaTime>{MediaTime::fromSeconds(3)});
        playback.offersPosition = false;
        QCOMPARE(s.tracker->currentPosition(), MediaTime());

        QSignalSpy available(s.tracker.get(), &EditPlaybackTracker::playbackAvailable);
        QSignalSpy state(s.tracker.get(), qOverload<>(&EditPlaybackTracker::playbackStateChanged));
        playback.setWaiting(true);
        QCOMPARE(available.count(), 0);
        playback.setWaiting(false);
        QCOMPARE(available.count(), 1);
        playback.setState(Playback::State::Playing);
        QCOMPARE(state.count(), 1);
        QVERIFY(s.tracker->playing());

        ScriptedPlayback next;
        CurrentPlayback nextIsCurrent(&next); // taken away again before `next` goes
        playback.setState(Playback::State::Paused); // no longer followed
        QCOMPARE(state.count(), 1);
        QVERIFY(!s.tracker->playing());
    }

    void playheadMoves_data()
    {
        QTest::addColumn<bool>("editing");
        QTest::addColumn<bool>("running");
        QTest::addColumn<int>("positionMs");
        QTest::addColumn<int>("editSignals");
        QTest::newRow("not editing") << false << false << 12000 << 0;
        QTest::newRow("inside the clip") << true << false << 12000 << 1;
        QTest::newRow("at the clip's start") << true << false << 10000 << 1;
        QTest::newRow("at the clip's end") << true << false << 20000 << 0;
        QTest::newRow("before the clip") << true << false << 4000 << 0;
        QTest::newRow("inside while playing") << true << true << 12000 << 0;
    }
    void playheadMoves()
    {
        QFETCH(bool, editing);
        QFETCH(bool, running);
        QFETCH(int, positionMs);
        QFETCH(int, editSignals);
        Setup s;
        ScriptedPlayback playback;
        playback.playState = running ? Playback::State::Playing : Playback::State::Paused;
        playback.position = MediaTime::fromMilliseconds(positionMs);
        CurrentPlayback current(&playback);
        if (editing)
            s.sceneEditor.sceneClient().bind({});
        QSignalSpy edit(s.tracker.get(), &EditPlaybackTracker::editPositionChanged);
        QSignalSpy position(s.tracker.get(), &EditPlaybackTracker::playbackPositionChanged);
        s.f.editor.playheadMarker()->setPosition(MediaTime::fromMilliseconds(positionMs));
        QCOMPARE(position.count(), 1);
        QCOMPARE(edit.count(), editSignals);
    }

    void onlyMovesOfThePlayheadCount()
    {
        Setup s;
        ScriptedPlayback playback;
        playback.position = MediaTime::fromSeconds(12);
        CurrentPlayback current(&playback);
        s.sceneEditor.sceneClient().bind({});
        QSignalSpy edit(s.tracker.get(), &EditPlaybackTracker::editPositionChanged);
        QSignalSpy position(s.tracker.get(), &EditPlaybackTracker::playbackPositionChanged);
        static_cast<Composition::Marker*>(s.f.editor.playheadMarker())->invalidate();
        QCOMPARE(position.count(), 0);
        QCOMPARE(edit.count(), 0);
        // Another marker of the composition (an in point) is not the playhead.
        Composition::Marker inPoint;
        inPoint.addObserver(s.tracker.get());
        inPoint.setPosition(MediaTime::fromSeconds(12));
        QCOMPARE(position.count(), 0);
        QCOMPARE(edit.count(), 1);
        inPoint.removeObserver(s.tracker.get());
    }

    void playbackStartEndsSceneEditing()
    {
        Setup s;
        ScriptedPlayback playback;
        CurrentPlayback current(&playback);
        int broken = 0;
        s.sceneEditor.sceneClient().bind([&] { ++broken; });
        playback.setState(Playback::State::Paused);
        QCOMPARE(broken, 0);
        playback.setState(Playback::State::Playing);
        QCOMPARE(broken, 1);
        QVERIFY(!s.sceneEditor.sceneClient().inUse());
    }

    void trackerMayGoFirst()
    {
        ScriptedPlayback playback;
        CurrentPlayback current(&playback);
        {
            Setup s;
            s.tracker.reset();
            playback.setState(Playback::State::Playing); // told nobody, touched nothing freed
            s.f.editor.playheadMarker()->setPosition(MediaTime::fromSeconds(1));
        }
        playback.setState(Playback::State::Paused);
    }
};

QTEST_MAIN(tst_EditPlaybackTracker)
#include "tst_editplaybacktracker.moc"
