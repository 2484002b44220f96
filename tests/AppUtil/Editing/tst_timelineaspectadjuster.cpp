#include "EditingFixtures.h"
#include "ScriptedDialogStrategy.h"
#include "TestSandbox.h"

#include <EditingStatistics.h>
#include <Editing/TimelineAspectAdjuster.h>

#include <Settings/Settings.h>

#include <QUndoStack>
#include <QtTest>

using Timeline::TimelineModel;

Q_DECLARE_METATYPE(QList<QSize>)

namespace {

struct Offer
{
    bool accepted;
    QSize aspect;
    QSize frameSize;
};

// A timeline whose project video holds what the model itself would refuse (a zero side).
struct UncheckedVideoTimeline : TimelineModel
{
    Media::Video unchecked;
    bool useUnchecked = false;
    const Media::Video* video() const override { return useUnchecked ? &unchecked : TimelineModel::video(); }
};

// Returns once the zero-delay timers started before the call have fired.
void nextTurn()
{
    bool turned = false;
    QTimer::singleShot(0, [&turned] { turned = true; });
    QTRY_VERIFY(turned);
}

} // namespace

class tst_TimelineAspectAdjuster : public QObject
{
    Q_OBJECT

    std::shared_ptr<ScriptedDialogStrategy> m_dialogs;
    QList<Offer> m_offers;
    std::unique_ptr<PubSub::Subscription<Statistics::AdjustProjectAspectSuggestedNotification>> m_statistics;

private slots:
    void init()
    {
        m_dialogs = std::make_shared<ScriptedDialogStrategy>();
        Dialog::initialize(m_dialogs);
        m_offers.clear();
        m_statistics = std::make_unique<PubSub::Subscription<Statistics::AdjustProjectAspectSuggestedNotification>>(
            Statistics::globalObject(), [this](const Statistics::AdjustProjectAspectSuggestedNotification& m) {
                m_offers << Offer{m.accepted, QSize(int(m.aspect.numerator()), int(m.aspect.denominator())), m.frameSize};
            });
        Settings::setAdjustAspectWhenFileAdded(true);
    }
    void cleanup()
    {
        m_statistics.reset();
        Dialog::initialize(nullptr);
    }

    // Each file: a list of video track sizes; "opening", "failed", "sound", "effects" mark
    // the file's state or kind. `aspect` 0x0: no offer.
    void offer_data()
    {
        QTest::addColumn<QSize>("project");
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("timelineHoldsAClip");
        QTest::addColumn<QSize>("aspect");
        QTest::addColumn<QSize>("target");
        const QSize none;
        QTest::newRow("two 1920x1080 onto 4:3") << QSize(1440, 1080) << QStringList{"1920x1080", "1920x1080"} << false
                                                << QSize(16, 9) << QSize(1920, 1080);
        QTest::newRow("portrait and landscape tie") << QSize(1440, 1080) << QStringList{"1080x1920", "1920x1080"}
                                                    << false << none << none;
        QTest::newRow("timeline already holds a clip") << QSize(1440, 1080) << QStringList{"1920x1080"} << true << none
                                                       << none;
        QTest::newRow("odd width") << QSize(1440, 1080) << QStringList{"1919x1080"} << false << none << none;
        QTest::newRow("area below 320x180") << QSize(1440, 1080) << QStringList{"160x90"} << false << none << none;
        QTest::newRow("greatest width") << QSize(1440, 1080) << QStringList{"1280x720", "3840x2160"} << false
                                        << QSize(16, 9) << QSize(3840, 2160);
        QTest::newRow("area above 4096x4096 skipped") << QSize(1440, 1080) << QStringList{"7680x4320", "1280x720"}
                                                      << false << QSize(16, 9) << QSize(1280, 720);
        QTest::newRow("4096x4096 itself") << QSize(1920, 1080) << QStringList{"4096x4096"} << false << QSize(1, 1)
                                          << QSize(4096, 4096);
        QTest::newRow("majority of tracks") << QSize(1920, 1080) << QStringList{"1440x1080", "1920x1080", "960x720"}
                                            << false << QSize(4, 3) << QSize(1440, 1080);
        QTest::newRow("two tracks in one file") << QSize(1920, 1080) << QStringList{"1440x1080,960x720", "1920x1080"}
                                                << false << QSize(4, 3) << QSize(1440, 1080);
        QTest::newRow("same shape as the project") << QSize(1920, 1080) << QStringList{"1280x720"} << false << none
                                                   << none;
        QTest::newRow("sound only") << QSize(1440, 1080) << QStringList{"sound"} << false << none << none;
        QTest::newRow("still opening") << QSize(1440, 1080) << QStringList{"opening 1920x1080"} << false << none << none;
        QTest::newRow("failed") << QSize(1440, 1080) << QStringList{"failed 1920x1080"} << false << none << none;
        QTest::newRow("special effects") << QSize(1440, 1080) << QStringList{"effects 1920x1080"} << false << none
                                         << none;
        QTest::newRow("no media file") << QSize(1440, 1080) << QStringList{"missing"} << false << none << none;
        QTest::newRow("project height 0") << QSize(1920, 0) << QStringList{"1920x1080"} << false << none << none;
        QTest::newRow("track height 0") << QSize(1440, 1080) << QStringList{"1920x0"} << false << none << none;
        QTest::newRow("project width 0 is 0/1") << QSize(0, 1080) << QStringList{"1920x1080"} << false << QSize(16, 9)
                                                << QSize(1920, 1080);
    }
    void offer()
    {
        QFETCH(QSize, project);
        QFETCH(QStringList, files);
        QFETCH(bool, timelineHoldsAClip);
        QFETCH(QSize, aspect);
        QFETCH(QSize, target);

        FakeMedia media;
        QStringList paths;
        QString category;
        for (int i = 0; i < files.size(); ++i) {
            QString entry = files.at(i);
            Media::File::State state = Media::File::State::Opened;
            if (entry.startsWith("opening "))
                state = Media::File::State::Opening;
            if (entry.startsWith("failed "))
                state = Media::File::State::Failed;
            if (entry.startsWith("effects "))
                category = QStringLiteral("Special effects");
            entry = entry.section(' ', -1);
            const QString path = QStringLiteral("/m/%1.mp4").arg(i);
            paths << path;
            if (entry == "missing")
                continue;
            QList<QSize> sizes;
            if (entry != "sound")
                for (const QString& size : entry.split(','))
                    sizes << QSize(size.section('x', 0, 0).toInt(), size.section('x', 1, 1).toInt());
            media.add(path, sizes, true, state);
        }
        media.add("/m/earlier.mp4", {QSize(1440, 1080)});

        UncheckedVideoTimeline timeline;
        timeline.setMediaResolver(media.resolver());
        // A side the model refuses can only be reached around it; such a project keeps its video.
        const bool unchecked = project.width() < 16 || project.height() < 16;
        timeline.useUnchecked = unchecked;
        if (unchecked)
            timeline.unchecked = Media::Video(project.width(), project.height(), 30.0);
        else
            timeline.setVideo(Media::Video(project.width(), project.height(), 30.0));
        const auto projectSize = [&] { return unchecked ? project : timeline.TimelineModel::video()->frameSize(); };
        if (timelineHoldsAClip)
            timeline.placeMedia({"/m/earlier.mp4"}, {});
        TimelineAspectAdjuster adjuster(&timeline);
        m_dialogs->answer("alertAdjustProjectAspect", true);
        Timeline::ClipBuildingStrategy strategy;
        if (!category.isEmpty())
            strategy.properties.insert(QStringLiteral("category"), category);
        QVERIFY(!timeline.placeMedia(paths, strategy).isEmpty());
        QCOMPARE(m_dialogs->count("alertAdjustProjectAspect"), 0); // never inside the notification
        nextTurn();
        if (aspect.isEmpty()) {
            QCOMPARE(m_dialogs->count("alertAdjustProjectAspect"), 0);
            QCOMPARE(m_offers.size(), 0);
            QCOMPARE(projectSize(), project);
            return;
        }
        QCOMPARE(m_dialogs->count("alertAdjustProjectAspect"), 1);
        QCOMPARE(m_offers.size(), 1);
        QCOMPARE(m_offers.first().aspect, aspect);
        QCOMPARE(m_offers.first().frameSize, target);
        if (unchecked)
            return;
        QCOMPARE(projectSize(), target);
        QCOMPARE(timeline.TimelineModel::video()->frameRate(), 30.0);
    }

    // The answer decides whether the frame changes; statistics hear of it either way.
    void answer_data()
    {
        QTest::addColumn<bool>("accepted");
        QTest::newRow("accepted") << true;
        QTest::newRow("declined") << false;
    }
    void answer()
    {
        QFETCH(bool, accepted);
        FakeMedia media;
        media.add("/m/a.mp4", {QSize(1920, 1080)});
        TimelineModel timeline;
        timeline.setMediaResolver(media.resolver());
        timeline.setVideo(Media::Video(1440, 1080, 25.0));
        timeline.undoStack()->clear();
        TimelineAspectAdjuster adjuster(&timeline);
        m_dialogs->answer("alertAdjustProjectAspect", accepted);
        timeline.placeMedia({"/m/a.mp4"}, {});
        QTRY_COMPARE(m_offers.size(), 1);
        QCOMPARE(m_offers.first().accepted, accepted);
        QCOMPARE(timeline.video()->frameSize(), accepted ? QSize(1920, 1080) : QSize(1440, 1080));
        QCOMPARE(timeline.undoStack()->count(), accepted ? 2 : 1);
        if (accepted) {
            timeline.undoStack()->undo();
            QCOMPARE(timeline.video()->frameSize(), QSize(1440, 1080));
        }
        // Nothing is remembered: emptied and filled again, the timeline gets a new offer.
        timeline.removeClips(timeline.clips());
        timeline.setVideo(Media::Video(1440, 1080, 25.0));
        timeline.placeMedia({"/m/a.mp4"}, {});
        QTRY_COMPARE(m_offers.size(), 2);
    }

    void settingAndLifetime_data()
    {
        QTest::addColumn<bool>("setting");
        QTest::addColumn<bool>("destroyFirst");
        QTest::addColumn<int>("offers");
        QTest::newRow("on") << true << false << 1;
        QTest::newRow("off") << false << false << 0;
        QTest::newRow("adjuster gone before the next turn") << true << true << 0;
    }
    void settingAndLifetime()
    {
        QFETCH(bool, setting);
        QFETCH(bool, destroyFirst);
        QFETCH(int, offers);
        Settings::remove(QStringLiteral("Timeline/AdjustAspectWhenFileAdded"));
        if (!setting)
            Settings::setAdjustAspectWhenFileAdded(false);
        FakeMedia media;
        media.add("/m/a.mp4", {QSize(1920, 1080)});
        TimelineModel timeline;
        timeline.setMediaResolver(media.resolver());
        timeline.setVideo(Media::Video(1440, 1080, 25.0));
        auto adjuster = std::make_unique<TimelineAspectAdjuster>(&timeline);
        // The value in force is in the store from now on.
        QVERIFY(Settings::value(QStringLiteral("Timeline/AdjustAspectWhenFileAdded")).isValid());
        QCOMPARE(Settings::value(QStringLiteral("Timeline/AdjustAspectWhenFileAdded")).toBool(), setting);
        timeline.placeMedia({"/m/a.mp4"}, {});
        if (destroyFirst)
            adjuster.reset();
        nextTurn();
        QCOMPARE(m_dialogs->count("alertAdjustProjectAspect"), offers);
        QCOMPARE(m_offers.size(), offers);
    }

    void nullTimeline()
    {
        TimelineAspectAdjuster adjuster(nullptr);
        nextTurn();
        QCOMPARE(m_offers.size(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_TimelineAspectAdjuster)
#include "tst_timelineaspectadjuster.moc"
