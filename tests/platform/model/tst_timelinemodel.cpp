#include "TestSandbox.h"

#include <Media/File.h>
#include <Serialize/Serialize.h>
#include <Timeline/TimelineModel.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QUndoStack>
#include <QtTest>

#include <functional>

using namespace Timeline;

namespace {

// Records what a view would be told.
struct Recorder : TimelineWatcher
{
    QList<QList<IClip*>> inserted;
    QList<QList<IClip*>> removed;
    int changed = 0;
    int selection = 0;
    QList<Media::Video> videoBefore;
    void clipsInserted(ITimeline&, const QList<IClip*>& clips) override { inserted << clips; }
    void clipsRemoved(ITimeline&, const QList<IClip*>& clips) override { removed << clips; }
    void clipsChanged(ITimeline&, const QList<IClip*>&) override { ++changed; }
    void selectionChanged(ITimeline&) override { ++selection; }
    void videoChanged(ITimeline&, const Media::Video& previous) override { videoBefore << previous; }
};

struct VideoView : Media::Details::VideoViewBase
{
    QList<QPair<QSize, QSize>> changes;
    void videoChanged(const Media::Video* previous, const Media::Video* current) override
    {
        changes << qMakePair(previous->frameSize(), current->frameSize());
    }
};

// Media files as the host's media model would hold them once opened.
struct FakeMedia
{
    std::map<QString, std::unique_ptr<Media::File>> files;

    void add(const QString& path, bool video, bool audio, qint64 seconds)
    {
        auto file = std::make_unique<Media::File>(path);
        if (video) {
            Media::VideoTrack track;
            track.frameSize = QSize(1920, 1080);
            file->setVideoTracks({track});
        }
        if (audio)
            file->setAudioTracks({Media::AudioTrack{}});
        file->setFileDuration(MediaTime::fromSeconds(seconds));
        file->setState(Media::File::State::Opened);
        files[path] = std::move(file);
    }
    TimelineModel::MediaResolver resolver()
    {
        return [this](const QString& path) -> const Media::File* {
            const auto found = files.find(path);
            return found == files.end() ? nullptr : found->second.get();
        };
    }
};

// The whole timeline as text: equal texts, equal timelines.
QByteArray snapshot(const TimelineModel& timeline)
{
    QJsonArray clips;
    for (IClip* clip : timeline.clips())
        clips.append(static_cast<Clip*>(clip)->toJson());
    const Media::Video& v = *timeline.video();
    clips.append(QStringLiteral("%1x%2@%3").arg(v.frameWidth()).arg(v.frameHeight()).arg(v.frameRate()));
    return QJsonDocument(clips).toJson(QJsonDocument::Compact);
}

} // namespace

Q_DECLARE_METATYPE(std::function<bool(Timeline::TimelineModel&)>)

class tst_TimelineModel : public QObject
{
    Q_OBJECT

    FakeMedia m_media;

private slots:
    void initTestCase()
    {
        m_media.add(QStringLiteral("/m/talk.mp4"), true, true, 10);
        m_media.add(QStringLiteral("/m/silent.mp4"), true, false, 4);
        m_media.add(QStringLiteral("/m/song.mp3"), false, true, 60);
    }

    // One notification per insertion, carrying exactly that insertion's clips.
    void insertionNotifications()
    {
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        Recorder recorder;
        recorder.watch(&timeline);
        const QList<IClip*> placed =
            timeline.placeMedia({"/m/talk.mp4", "/m/silent.mp4", "/m/song.mp3", "/m/photo.png"}, {});
        QCOMPARE(recorder.inserted.size(), 1);
        QCOMPARE(recorder.inserted.first(), placed);
        QCOMPARE(timeline.clipCount(), 5); // talk has its sound as a second clip
        // In timeline order: track by track, then by time; the video keeps its sound beside it.
        QCOMPARE(placed.at(0)->mediaPath(), QStringLiteral("/m/talk.mp4"));
        QCOMPARE(placed.at(1)->mediaPath(), QStringLiteral("/m/silent.mp4"));
        QCOMPARE(placed.at(1)->compositionRange().start, MediaTime::fromSeconds(10));
        QCOMPARE(placed.at(2)->type(), ClipTypes(ClipType::Image));
        QCOMPARE(placed.at(2)->compositionRange().start, MediaTime::fromSeconds(14));
        QVERIFY(placed.at(3)->isNativeAudio());
        QCOMPARE(placed.at(3)->timingClip(), placed.at(0));
        QCOMPARE(placed.at(4)->description().category, QStringLiteral("Music"));
        QVERIFY(!placed.at(4)->isNativeAudio());

        timeline.undoStack()->undo();
        QCOMPARE(recorder.removed.size(), 1);
        QCOMPARE(recorder.removed.first().size(), 5);
        QCOMPARE(timeline.clipCount(), 0);
        timeline.undoStack()->redo();
        QCOMPARE(recorder.inserted.size(), 2);
        QCOMPARE(recorder.inserted.last(), placed); // the same clips come back
    }

    // A grouped clip's timing is its leader's: a change through either changes both.
    void groupedTiming()
    {
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        const QList<IClip*> clips = timeline.placeMedia({"/m/talk.mp4"}, {});
        IClip* video = clips.at(0);
        IClip* sound = clips.at(1);
        QCOMPARE(timeline.timingClip(sound), video);
        QVERIFY(!timeline.takesAdjustments(sound));
        QVERIFY(timeline.takesAdjustments(video));
        QVERIFY(timeline.setSpeed(sound, 2.0));
        QCOMPARE(video->speed(), 2.0);
        QCOMPARE(sound->speed(), 2.0);
        QCOMPARE(video->compositionRange().length, MediaTime::fromSeconds(5));
        QVERIFY(!timeline.setSpeed(video, 2.0)); // no change, no undo step
        QCOMPARE(timeline.undoStack()->count(), 2);
        QVERIFY(timeline.moveClip(sound, 2, MediaTime::fromSeconds(3)));
        QCOMPARE(video->compositionRange().start, MediaTime::fromSeconds(3));
        QVERIFY(!timeline.moveClip(sound, 0, MediaTime())); // sound never goes on a video track
        timeline.removeClips({sound});
        QCOMPARE(timeline.clipCount(), 0);
        timeline.undoStack()->undo();
        QCOMPARE(timeline.clipCount(), 2);
        QCOMPARE(timeline.timingClip(sound), video);
    }

    // Every kind of change is one undo step that restores the timeline exactly.
    void undoEachChange_data()
    {
        QTest::addColumn<std::function<bool(TimelineModel&)>>("change");
        using F = std::function<bool(TimelineModel&)>;
        const auto first = [](TimelineModel& t) { return t.clips().first(); };
        QTest::newRow("place") << F([](TimelineModel& t) { return !t.placeMedia({"/m/song.mp3"}, {}).isEmpty(); });
        QTest::newRow("move") << F([=](TimelineModel& t) { return t.moveClip(first(t), 1, MediaTime::fromSeconds(7)); });
        QTest::newRow("remove") << F([=](TimelineModel& t) {
            t.removeClips({first(t)});
            return true;
        });
        QTest::newRow("speed") << F([=](TimelineModel& t) { return t.setSpeed(first(t), 0.5); });
        QTest::newRow("reverse") << F([=](TimelineModel& t) { return t.setReversed(first(t), true); });
        QTest::newRow("original tone") << F([=](TimelineModel& t) { return t.setSpeedCompensated(first(t), true); });
        QTest::newRow("add effect") << F([=](TimelineModel& t) { return first(t)->addEffect(Effect::Object::create("blur")); });
        QTest::newRow("replace effect") << F([=](TimelineModel& t) {
            auto copy = Serialize::deepCopy(first(t)->effects().first());
            copy->setIntensity(0.25);
            return first(t)->replaceEffect(copy);
        });
        QTest::newRow("remove effect") << F([=](TimelineModel& t) {
            const Effect::Object* e = first(t)->effects().first();
            return first(t)->removeEffect(e->id(), e->uid());
        });
        QTest::newRow("frame size") << F([](TimelineModel& t) {
            Media::Video video = *t.video();
            video.setFrameSize(1080, 1920);
            Media::VideoChanger(*t.video()).change(video);
            return t.video()->frameWidth() == 1080;
        });
    }

    void undoEachChange()
    {
        QFETCH(std::function<bool(TimelineModel&)>, change);
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        timeline.placeMedia({"/m/talk.mp4", "/m/silent.mp4"}, {});
        timeline.clips().first()->addEffect(Effect::Object::create(QStringLiteral("sharpen")));
        const int steps = timeline.undoStack()->count();
        const QByteArray before = snapshot(timeline);
        QVERIFY(change(timeline));
        const QByteArray after = snapshot(timeline);
        QVERIFY(after != before);
        QCOMPARE(timeline.undoStack()->count(), steps + 1);
        timeline.undoStack()->undo();
        QCOMPARE(snapshot(timeline), before);
        timeline.undoStack()->redo();
        QCOMPARE(snapshot(timeline), after);
    }

    // A deep copy shares no object with its original, and changing it leaves the original alone.
    void deepCopySharesNothing()
    {
        auto group = Effect::EffectsHolder::create();
        group->append(Effect::Object::create(QStringLiteral("blur")));
        auto crop = Effect::Object::create(Effect::Id::Crop);
        crop->setCropTransform(QTransform::fromScale(2, 2));
        group->append(crop);
        auto copy = Serialize::deepCopy(group.get());
        QVERIFY(copy);
        QVERIFY(copy.get() != group.get());
        QCOMPARE(copy->uid(), group->uid());
        QCOMPARE(copy->effects().size(), 2);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(copy->effects().at(i) != group->effects().at(i));
            QCOMPARE(copy->effects().at(i)->uid(), group->effects().at(i)->uid());
        }
        QCOMPARE(copy->effects().at(1)->cropTransform(), QTransform::fromScale(2, 2));
        const_cast<Effect::Object*>(copy->effects().at(0))->setIntensity(0.1);
        QCOMPARE(group->effects().at(0)->intensity(), 1.0);
        QCOMPARE(QJsonDocument(Serialize::save(group.get()).data).toJson(), QJsonDocument(group->toJson()).toJson());

        // A clip copies with its effects, and the copy belongs to no timeline.
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        IClip* clip = timeline.placeMedia({"/m/silent.mp4"}, {}).first();
        clip->addEffect(group);
        auto clipCopy = Serialize::deepCopy(static_cast<Clip*>(clip));
        QVERIFY(clipCopy);
        QCOMPARE(clipCopy->timeline(), nullptr);
        QVERIFY(clipCopy->effects().first() != clip->effects().first());
        QCOMPARE(clipCopy->toJson(), static_cast<Clip*>(clip)->toJson());
    }

    // An inner effect of a group is replaced by replacing the group; undo brings the old group back.
    void replaceInnerEffect()
    {
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        IClip* clip = timeline.placeMedia({"/m/silent.mp4"}, {}).first();
        auto group = Effect::EffectsHolder::create();
        group->append(Effect::Object::create(QStringLiteral("blur")));
        QVERIFY(clip->addEffect(group));
        auto inner = Serialize::deepCopy(group->effects().first());
        inner->setBypass(true);
        QVERIFY(clip->replaceEffect(inner));
        const auto* now = dynamic_cast<const Effect::EffectsHolder*>(clip->effects().first());
        QVERIFY(now && now != group.get());
        QVERIFY(now->effects().first()->bypass());
        QVERIFY(!group->effects().first()->bypass());
        timeline.undoStack()->undo();
        QCOMPARE(clip->effects().first(), group.get());
    }

    void selection()
    {
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        Recorder recorder;
        recorder.watch(&timeline);
        const QList<IClip*> clips = timeline.placeMedia({"/m/silent.mp4", "/m/song.mp3", "/m/silent.mp4"}, {});
        timeline.select({clips.at(0)}, ITimeline::SelectionMode::Replace);
        timeline.select({clips.at(2), clips.at(0)}, ITimeline::SelectionMode::Toggle);
        QCOMPARE(timeline.selectedClips(), (QList<IClip*>{clips.at(2)}));
        timeline.select({clips.at(1)}, ITimeline::SelectionMode::Add);
        QCOMPARE(timeline.firstSelectedClip(), clips.at(1));
        QCOMPARE(recorder.selection, 3);
        timeline.removeClips({clips.at(1)});
        QCOMPARE(timeline.selectedClips(), (QList<IClip*>{clips.at(2)}));
        timeline.selectAll();
        QCOMPARE(timeline.selectedClips().size(), 2);
        timeline.select({clips.at(2)}, ITimeline::SelectionMode::Add); // nothing new: no notification
        QCOMPARE(recorder.selection, 5);
    }

    // Removal takes whole groups once each, clears only what it removes from the selection,
    // and leaves no mark behind: the same removal after an undo removes the same clips.
    void removal_data()
    {
        QTest::addColumn<QList<int>>("selected");
        QTest::addColumn<QList<int>>("removed");
        QTest::addColumn<int>("left");
        QTest::addColumn<int>("selectedLeft");
        QTest::addColumn<int>("selectionNotifications");
        QTest::newRow("unselected clip") << QList<int>{2} << QList<int>{3} << 3 << 1 << 0;
        QTest::newRow("whole selection") << QList<int>{2, 3} << QList<int>{2, 3} << 2 << 0 << 1;
        QTest::newRow("part of the selection") << QList<int>{2, 3} << QList<int>{3} << 3 << 1 << 1;
        QTest::newRow("one of a group") << QList<int>{} << QList<int>{1} << 2 << 0 << 0;
        QTest::newRow("a group named twice over") << QList<int>{0} << QList<int>{1, 0, 1} << 2 << 0 << 1;
        QTest::newRow("everything") << QList<int>{0, 1, 2, 3} << QList<int>{3, 2, 1, 0} << 0 << 0 << 1;
    }

    void removal()
    {
        QFETCH(QList<int>, selected);
        QFETCH(QList<int>, removed);
        QFETCH(int, left);
        QFETCH(int, selectedLeft);
        QFETCH(int, selectionNotifications);
        TimelineModel timeline;
        timeline.setMediaResolver(m_media.resolver());
        // 0 and 1: the talk's video and its sound (one group); 2: the silent video; 3: the song.
        QList<IClip*> clips = timeline.placeMedia({"/m/talk.mp4", "/m/silent.mp4", "/m/song.mp3"}, {});
        QCOMPARE(clips.size(), 4);
        const auto rank = [](IClip* c) {
            return c->mediaPath() == QLatin1String("/m/talk.mp4") ? (c->isNativeAudio() ? 1 : 0)
                                                                  : c->mediaPath() == QLatin1String("/m/silent.mp4") ? 2 : 3;
        };
        std::sort(clips.begin(), clips.end(), [&](IClip* a, IClip* b) { return rank(a) < rank(b); });
        const auto pick = [&](const QList<int>& indices) {
            QList<IClip*> picked;
            for (int i : indices)
                picked << clips.at(i);
            return picked;
        };
        timeline.select(pick(selected), ITimeline::SelectionMode::Replace);
        Recorder recorder;
        recorder.watch(&timeline);
        for (int round = 0; round < 2; ++round) {
            const int notifiedBefore = recorder.selection;
            timeline.removeClips(pick(removed));
            QCOMPARE(timeline.clipCount(), left);
            QCOMPARE(timeline.selectedClips().size(), selectedLeft);
            QCOMPARE(recorder.removed.last().size(), 4 - left);
            QCOMPARE(recorder.selection - notifiedBefore, selectionNotifications);
            timeline.undoStack()->undo();
            QCOMPARE(timeline.clipCount(), 4);
            timeline.select(pick(selected), ITimeline::SelectionMode::Replace);
        }
    }

    // The project video changes through the media model's message; its views hear of it, and undo.
    void videoChange()
    {
        TimelineModel timeline;
        Recorder recorder;
        recorder.watch(&timeline);
        VideoView view;
        view.viewVideo(timeline.video());
        Media::Video square = *timeline.video();
        square.setFrameSize(1080, 1080);
        Media::VideoChanger(*timeline.video()).change(square);
        QCOMPARE(timeline.video()->frameSize(), QSize(1080, 1080));
        QCOMPARE(timeline.video()->frameRate(), 25.0);
        QCOMPARE(view.changes, (QList<QPair<QSize, QSize>>{{QSize(1920, 1080), QSize(1080, 1080)}}));
        QCOMPARE(recorder.videoBefore.first().frameSize(), QSize(1920, 1080));
        Media::Video absurd = square;
        absurd.setFrameSize(0, 1080);
        timeline.setVideo(absurd);
        QCOMPARE(timeline.undoStack()->count(), 1);
        timeline.undoStack()->undo();
        QCOMPARE(view.changes.last(), qMakePair(QSize(1080, 1080), QSize(1920, 1080)));
    }

    // A watcher may outlive its timeline, and may stop watching from inside a notification.
    void watcherLifetime()
    {
        Recorder outlives;
        struct Leaver : TimelineWatcher
        {
            void clipsInserted(ITimeline&, const QList<IClip*>&) override { watch(nullptr); }
        } leaver;
        {
            TimelineModel timeline;
            leaver.watch(&timeline);
            outlives.watch(&timeline);
            timeline.placeMedia({"/m/song.mp3"}, {});
            QCOMPARE(leaver.watchedTimeline(), nullptr);
            QCOMPARE(outlives.inserted.size(), 1);
        }
        QCOMPARE(outlives.watchedTimeline(), nullptr);
    }

    void changesOfOtherTimelinesAreRefused()
    {
        TimelineModel one, two;
        one.setMediaResolver(m_media.resolver());
        IClip* clip = one.placeMedia({"/m/silent.mp4"}, {}).first();
        QVERIFY(!two.setSpeed(clip, 2.0));
        QVERIFY(!two.moveClip(clip, 0, MediaTime()));
        two.removeClips({clip});
        QCOMPARE(one.clipCount(), 1);
        QVERIFY(!one.setSpeed(clip, 0.0));
        QVERIFY(!one.setSpeed(clip, qQNaN()));
        QVERIFY(!one.addEffect(clip, Effect::Object::create(QStringLiteral("no-such-effect"))));
        QCOMPARE(one.undoStack()->count(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_TimelineModel)
#include "tst_timelinemodel.moc"
