#include "EditingFixture.h"

#include <Editing/SceneEditor.h>
#include <Effect/Effect.h>

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(std::set<QString>)

namespace {

bool sameSize(const QSizeF& a, const QSizeF& b)
{
    return qAbs(a.width() - b.width()) < 1e-6 && qAbs(a.height() - b.height()) < 1e-6;
}

std::shared_ptr<Effect::Object> transpose(int angle)
{
    auto effect = Effect::Object::create(Effect::Id::Transpose);
    effect->setAngle(angle);
    return effect;
}

} // namespace

class tst_SceneEditor : public QObject
{
    Q_OBJECT
private slots:
    void calculateSceneSize_data()
    {
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<QSizeF>("scene");
        QTest::newRow("landscape") << QSize(1920, 1080) << QSizeF(800, 450);
        QTest::newRow("portrait") << QSize(1080, 1920) << QSizeF(450, 800);
        QTest::newRow("square") << QSize(800, 800) << QSizeF(800, 800);
        QTest::newRow("small scaled up") << QSize(400, 300) << QSizeF(800, 600);
    }
    void calculateSceneSize()
    {
        QFETCH(QSize, frame);
        QFETCH(QSizeF, scene);
        QCOMPARE(::calculateSceneSize(frame.width(), frame.height()), scene);
        Timeline::TimelineModel timeline;
        timeline.setVideo(Media::Video(frame.width(), frame.height(), 25));
        QCOMPARE(timelineSceneSize(&timeline), scene);
    }

    void clipSceneSize_data()
    {
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<int>("aspectX");
        QTest::addColumn<int>("aspectY");
        QTest::addColumn<int>("angle");
        QTest::addColumn<QTransform>("crop");
        QTest::addColumn<std::set<QString>>("ignored");
        QTest::addColumn<QSizeF>("scene");
        const std::set<QString> none;
        const QTransform noCrop;
        QTest::newRow("pixel aspect 4:3") << QSize(1440, 1080) << 4 << 3 << 0 << noCrop << none << QSizeF(800, 450);
        QTest::newRow("quarter turn") << QSize(1920, 1080) << 1 << 1 << 90 << noCrop << none << QSizeF(450, 800);
        QTest::newRow("quarter turn ignored") << QSize(1920, 1080) << 1 << 1 << 90 << noCrop
                                              << std::set<QString>{Effect::Id::Transpose} << QSizeF(800, 450);
        QTest::newRow("half turn") << QSize(1920, 1080) << 1 << 1 << 180 << noCrop << none << QSizeF(800, 450);
        QTest::newRow("three quarters") << QSize(1080, 1920) << 1 << 1 << 270 << noCrop << none << QSizeF(800, 450);
        // Keeping the left half of a 1920 x 1080 frame leaves 960 x 1080.
        QTest::newRow("crop half width") << QSize(1920, 1080) << 1 << 1 << 0 << QTransform::fromScale(2, 1) << none
                                         << QSizeF(960, 1080).scaled(800, 800, Qt::KeepAspectRatio);
        QTest::newRow("crop rotation dropped") << QSize(1920, 1080) << 1 << 1 << 0
                                               << QTransform::fromScale(2, 1) * QTransform().rotate(90) << none
                                               << QSizeF(960, 1080).scaled(800, 800, Qt::KeepAspectRatio);
        QTest::newRow("crop ignored") << QSize(1920, 1080) << 1 << 1 << 0 << QTransform::fromScale(2, 1)
                                      << std::set<QString>{Effect::Id::Crop} << QSizeF(800, 450);
        QTest::newRow("turned and cropped") << QSize(1920, 1080) << 1 << 1 << 90 << QTransform::fromScale(1, 2) << none
                                            << QSizeF(1080, 960).scaled(800, 800, Qt::KeepAspectRatio);
    }
    void clipSceneSize()
    {
        QFETCH(QSize, frame);
        QFETCH(int, aspectX);
        QFETCH(int, aspectY);
        QFETCH(int, angle);
        QFETCH(QTransform, crop);
        QFETCH(std::set<QString>, ignored);
        QFETCH(QSizeF, scene);
        EditingFixture f;
        Timeline::IClip* clip = f.place(QStringLiteral("/m/a.mp4"), frame, aspectX, aspectY);
        QVERIFY(clip);
        if (angle)
            QVERIFY(clip->addEffect(transpose(angle)));
        if (!crop.isIdentity()) {
            auto effect = Effect::Object::create(Effect::Id::Crop);
            effect->setCropTransform(crop);
            QVERIFY(clip->addEffect(effect));
        }
        const QSizeF size = ::clipSceneSize(clip, ignored);
        QVERIFY2(sameSize(size, scene), qPrintable(QStringLiteral("%1 x %2").arg(size.width()).arg(size.height())));
    }

    void clipSceneSizeWithoutPicture()
    {
        EditingFixture f;
        QVERIFY(!::clipSceneSize(nullptr, {}).isValid());
        Timeline::IClip* sound = f.place(QStringLiteral("/m/song.mp3"), QSize());
        QVERIFY(sound);
        QVERIFY(!::clipSceneSize(sound, {}).isValid());
    }

    void sizeDelegates()
    {
        EditingFixture f;
        Timeline::IClip* wide = f.place(QStringLiteral("/m/wide.mp4"), QSize(1920, 1080));
        Timeline::IClip* tall = f.place(QStringLiteral("/m/tall.mp4"), QSize(1080, 1920));
        const SceneSizeDelegate clipDelegate = clipSizeDelegate({});
        QVERIFY(!clipDelegate(f.editor, wide).isValid()); // nothing selected
        f.timeline.select({tall}, Timeline::ITimeline::SelectionMode::Replace);
        QCOMPARE(clipDelegate(f.editor, tall), QSizeF(450, 800));
        QCOMPARE(clipDelegate(f.editor, nullptr), QSizeF(450, 800));
        QCOMPARE(clipDelegate(f.editor, wide), QSizeF(450, 800)); // not current: the first current one
        f.timeline.setVideo(Media::Video(1080, 1080, 25));
        QCOMPARE(timelineSizeDelegate()(f.editor, wide), QSizeF(800, 800));
        Editor::Editor detached(nullptr);
        QVERIFY(!timelineSizeDelegate()(detached, nullptr).isValid());
        QVERIFY(!clipDelegate(detached, nullptr).isValid());
    }

    void applyTransposeTurnsAndReturns()
    {
        EditingFixture f;
        Timeline::IClip* clip = f.place(QStringLiteral("/m/a.mp4"), QSize(1920, 1080));
        for (int expected : {90, 180, 270}) {
            applyTranspose(clip);
            const Effect::Object* effect = clip->findEffect(Effect::Id::Transpose);
            QVERIFY(effect);
            QCOMPARE(effect->angle(), expected);
            QCOMPARE(clip->effects().size(), 1);
        }
        applyTranspose(clip);
        QVERIFY(!clip->findEffect(Effect::Id::Transpose));
        QVERIFY(clip->effects().isEmpty());
    }

    void applyTransposeLeavesSoundAlone()
    {
        EditingFixture f;
        Timeline::IClip* sound = f.place(QStringLiteral("/m/song.mp3"), QSize());
        applyTranspose(sound);
        QVERIFY(sound->effects().isEmpty());
        applyTranspose(nullptr);
    }

    void loadResizesOnlyOnChange()
    {
        EditingFixture f;
        SceneHelper helper;
        SceneEditor editor(f.editor);
        QSignalSpy helperChanged(&editor, &SceneEditor::sceneHelperChanged);
        editor.setSceneHelper(&helper);
        QCOMPARE(helperChanged.count(), 1);
        editor.setSceneSizeDelegate(timelineSizeDelegate());
        QSignalSpy loaded(&editor, &SceneEditor::loaded);
        QSignalSpy rectChanged(&editor, &SceneEditor::sceneRectChanged);
        QVERIFY(editor.load());
        QCOMPARE(rectChanged.count(), 1);
        QCOMPARE(rectChanged.at(0).at(0).toRectF(), QRectF(0, 0, 800, 450));
        QCOMPARE(helper.scene()->sceneRect(), QRectF(0, 0, 800, 450));
        QVERIFY(!editor.load());
        QCOMPARE(loaded.count(), 2);
        QCOMPARE(rectChanged.count(), 1);
        f.timeline.setVideo(Media::Video(1080, 1920, 25));
        QVERIFY(editor.load());
        QCOMPARE(helper.scene()->sceneRect(), QRectF(0, 0, 450, 800));
    }

    void loadEndsBindingsOnlyWhenFree()
    {
        EditingFixture f;
        SceneHelper helper;
        SceneEditor editor(f.editor);
        editor.setSceneHelper(&helper);
        editor.setSceneSizeDelegate(timelineSizeDelegate());
        int broken = 0;
        editor.sceneClient().bind([&] { ++broken; });
        editor.load();
        QCOMPARE(broken, 0); // a view editing on the scene keeps its binding
        SceneHelper other;
        editor.setSceneHelper(&other); // a new scene ends editing on the old one
        QCOMPARE(broken, 1);
        QVERIFY(!editor.sceneClient().inUse());
    }

    void videoChangeMakesSceneUnavailable()
    {
        EditingFixture f;
        SceneHelper helper;
        SceneEditor editor(f.editor);
        editor.setSceneHelper(&helper);
        editor.setSceneSizeDelegate(timelineSizeDelegate());
        editor.setVideo(f.timeline.video());
        editor.load();
        QSignalSpy unavailable(&editor, &SceneEditor::sceneBecomeUnavailable);
        f.timeline.setVideo(Media::Video(1280, 720, 25)); // not in use: nobody to tell
        QCOMPARE(unavailable.count(), 0);
        editor.sceneClient().bind({});
        f.timeline.setVideo(Media::Video(720, 720, 25));
        QCOMPARE(unavailable.count(), 1);
        editor.setVideo(nullptr);
        f.timeline.setVideo(Media::Video(640, 480, 25));
        QCOMPARE(unavailable.count(), 1);
    }

    void backgroundUpdatesCoalesce()
    {
        EditingFixture f;
        Timeline::IClip* clip = f.place(QStringLiteral("/m/a.mp4"), QSize(1920, 1080));
        f.timeline.select({clip}, Timeline::ITimeline::SelectionMode::Replace);
        f.editor.playheadMarker()->setPosition(MediaTime::fromSeconds(4));
        SceneEditor editor(f.editor);
        QList<MediaTime> asked;
        auto picture = std::make_shared<const QPixmap>();
        editor.setBackgroundDelegate([&](Timeline::IClip* c, MediaTime t) {
            asked << t;
            return c == clip ? picture : nullptr;
        });
        QSignalSpy changed(&editor, &SceneEditor::backgroundChanged);
        editor.scheduleUpdateBackground(false);
        editor.scheduleUpdateBackground(false);
        editor.scheduleUpdateBackground(true);
        QVERIFY(asked.isEmpty()); // never in the caller's turn
        QVERIFY(QTest::qWaitFor([&] { return !asked.isEmpty(); }));
        QCoreApplication::processEvents();
        QCOMPARE(asked, QList<MediaTime>{MediaTime::fromSeconds(4)});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(editor.background(), picture);

        f.editor.setUpdatePending(true);
        editor.scheduleUpdateBackground(false); // dropped: the update on its way will ask
        QVERIFY(!QTest::qWaitFor([&] { return asked.size() > 1; }, 50));
        editor.enableBackgroundPreview(false); // forced through
        QVERIFY(QTest::qWaitFor([&] { return changed.count() == 2; }));
        QVERIFY(!editor.background());
        QCOMPARE(asked.size(), 1);
    }

    void clipEditTime_data()
    {
        QTest::addColumn<int>("playheadMs");
        QTest::addColumn<qint64>("expectedUs");
        // The clip lies at 10 s to 20 s (after a 10 s clip).
        QTest::newRow("before") << 3000 << qint64(0);
        QTest::newRow("inside") << 12500 << qint64(2500000);
        QTest::newRow("at end") << 20000 << qint64(9999999);
        QTest::newRow("after") << 60000 << qint64(9999999);
    }
    void clipEditTime()
    {
        QFETCH(int, playheadMs);
        QFETCH(qint64, expectedUs);
        EditingFixture f;
        f.place(QStringLiteral("/m/a.mp4"), QSize(1920, 1080));
        Timeline::IClip* second = f.place(QStringLiteral("/m/b.mp4"), QSize(1920, 1080));
        QCOMPARE(second->compositionRange().start, MediaTime::fromSeconds(10));
        f.editor.playheadMarker()->setPosition(MediaTime::fromMilliseconds(playheadMs));
        QCOMPARE(SceneEditor::clipEditTime(second).microseconds(), expectedUs);
    }

    void clipEditTimeWithoutPlayhead()
    {
        EditingFixture f;
        Timeline::IClip* clip = f.place(QStringLiteral("/m/a.mp4"), QSize(1920, 1080));
        Composition::setPlayheadOf(&f.timeline, nullptr);
        QCOMPARE(SceneEditor::clipEditTime(clip), MediaTime());
        QCOMPARE(SceneEditor::clipEditTime(nullptr), MediaTime());
    }
};

QTEST_MAIN(tst_SceneEditor)
#include "tst_sceneeditor.moc"
