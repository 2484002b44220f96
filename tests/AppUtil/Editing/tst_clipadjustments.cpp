#include "EditingFixtures.h"
#include "TestSandbox.h"

#include <Editing/ClipAdjustments.h>

#include <EditorCollection/Collection.h>
#include <Project/ProjectFile.h>
#include <Serialize/Serialize.h>

#include <QUndoStack>
#include <QtTest>

using Timeline::IClip;
using Timeline::TimelineModel;
using Rows = QList<std::shared_ptr<Adjustment>>;

namespace {

// The "Effects" collection of a host: it holds the catalogue's filters.
class EffectsCollection : public EditorCollection::ICollection
{
public:
    QString name() const override { return QStringLiteral("Effects"); }
    void showPage() override {}
    bool holds(const QString& tag) const override
    {
        for (const Effect::CatalogueEntry& entry : Effect::Catalogue::entries())
            if (entry.tag == tag)
                return entry.collection == QLatin1String("Effects");
        return false;
    }
};

// What the host's stabilization service does with a request.
struct StabilizationService
{
    int requests = 0;
    PubSub::Subscription<Stabilization::ClipStabilizeRequest> subscription{
        Stabilization::globalObject(), [this](const Stabilization::ClipStabilizeRequest& request) {
            ++requests;
            if (request.clip && request.clip->timeline())
                request.clip->timeline()->setStabilized(request.clip, request.stabilize);
        }};
};

QStringList namesOf(const Rows& rows)
{
    QStringList names;
    for (const auto& row : rows)
        names << row->name();
    return names;
}

std::shared_ptr<Effect::Object> effect(const QString& id, double intensity = 1.0)
{
    auto e = Effect::Object::create(id);
    e->setIntensity(intensity);
    return e;
}

} // namespace

class tst_ClipAdjustments : public QObject
{
    Q_OBJECT

    FakeMedia m_media;
    std::unique_ptr<TimelineModel> m_timeline;

    // `count` video clips (with their sound) placed on a fresh timeline.
    QList<IClip*> videos(int count)
    {
        m_timeline = std::make_unique<TimelineModel>();
        m_timeline->setMediaResolver(m_media.resolver());
        QList<IClip*> clips;
        for (int i = 0; i < count; ++i)
            clips << m_timeline->placeMedia({QStringLiteral("/m/a.mp4")}, {}).first();
        return clips;
    }
    int undoCount() const { return m_timeline->undoStack()->count(); }

private slots:
    void initTestCase()
    {
        m_media.add(QStringLiteral("/m/a.mp4"), {QSize(1920, 1080)});
        m_media.add(QStringLiteral("/m/song.mp3"), {});
        EditorCollection::CollectionProvider::add(std::make_shared<EffectsCollection>());
    }

    void speedRow_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<bool>("row");
        QTest::newRow("exactly 1") << 1.0 << false;
        QTest::newRow("1 + 1e-13") << 1.0 + 1e-13 << false;
        QTest::newRow("1.01") << 1.01 << true;
        QTest::newRow("0.5") << 0.5 << true;
    }
    void speedRow()
    {
        QFETCH(double, speed);
        QFETCH(bool, row);
        IClip* clip = videos(1).first();
        m_timeline->setSpeed(clip, speed);
        const Rows rows = ClipAdjustmentsProvider::adjustments(clip);
        QCOMPARE(rows.size(), row ? 1 : 0);
        if (row)
            QCOMPARE(rows.first()->id(), AdjustmentId::Speed);
    }

    void order()
    {
        IClip* clip = videos(1).first();
        m_timeline->addEffect(clip, effect(QStringLiteral("blur")));
        m_timeline->addEffect(clip, effect(QStringLiteral("transpose")));
        m_timeline->setSpeed(clip, 2.0);
        m_timeline->setReversed(clip, true);
        m_timeline->setSpeedCompensated(clip, true);
        QVERIFY(m_timeline->setStabilized(clip, true));
        const Rows rows = ClipAdjustmentsProvider::adjustments(clip);
        QCOMPARE(namesOf(rows), (QStringList{"Filter: Blur", "Rotate", "Speed", "Original tone", "Stabilization", "Reverse"}));
        QStringList tags;
        for (const auto& row : rows.mid(2))
            tags << row->tag() << row->uid();
        QCOMPARE(tags, (QStringList{"speed", AdjustmentId::Speed, "speed_compensation", AdjustmentId::SpeedCompensation,
                                    "stabilization", AdjustmentId::Stabilization, "reverse", AdjustmentId::Reverse}));
        QVERIFY(std::dynamic_pointer_cast<StabilizationAdjustment>(rows.at(4)));
    }

    // Clips that take no adjustments, or have nothing to adjust.
    void noRows_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("null clip") << "null";
        QTest::newRow("native audio") << "native";
        QTest::newRow("plain video") << "plain";
        QTest::newRow("clip without media, stabilized") << "missing";
        QTest::newRow("sound file, stabilization refused") << "music";
        QTest::newRow("clip no longer on its timeline") << "removed";
    }
    void noRows()
    {
        QFETCH(QString, what);
        IClip* clip = videos(1).first();
        if (what == "null") {
            clip = nullptr;
        } else if (what == "native") {
            clip = m_timeline->clips().last();
            QVERIFY(clip->isNativeAudio());
            m_timeline->setSpeed(clip, 2.0);
        } else if (what == "missing") {
            clip = m_timeline->placeMedia({QStringLiteral("/m/gone.mp4")}, {}).first();
            m_timeline->setStabilized(clip, true);
        } else if (what == "music") {
            clip = m_timeline->placeMedia({QStringLiteral("/m/song.mp3")}, {}).first();
            QVERIFY(!m_timeline->setStabilized(clip, true));
        } else if (what == "removed") {
            m_timeline->addEffect(clip, effect(QStringLiteral("blur")));
            m_timeline->removeClips({clip});
        }
        QCOMPARE(ClipAdjustmentsProvider::adjustments(clip).size(), 0);
    }

    void groups_data()
    {
        QTest::addColumn<QStringList>("inner");
        QTest::newRow("two inner effects") << QStringList{"sepia", "blur"};
        QTest::newRow("empty group") << QStringList{};
    }
    void groups()
    {
        QFETCH(QStringList, inner);
        IClip* clip = videos(1).first();
        auto group = Effect::EffectsHolder::create();
        for (const QString& id : inner)
            group->append(effect(id));
        m_timeline->addEffect(clip, group);
        const Rows rows = ClipAdjustmentsProvider::adjustments(clip);
        QCOMPARE(rows.size(), 1);
        QVERIFY(!rows.first()->isInnerAdjustment());
        QStringList ids;
        for (const auto& row : rows.first()->innerAdjustments()) {
            QVERIFY(row->isInnerAdjustment());
            ids << row->id();
        }
        QCOMPARE(ids, inner);
    }

    // An inner row changes its effect by replacing the whole group, once, undoably.
    void innerIntensity()
    {
        IClip* clip = videos(1).first();
        auto group = Effect::EffectsHolder::create();
        group->append(effect(QStringLiteral("sepia")));
        group->append(effect(QStringLiteral("blur"), 0.2));
        m_timeline->addEffect(clip, group);
        const auto blur = ClipAdjustmentsProvider::adjustments(clip).first()->innerAdjustments().at(1);
        const int before = undoCount();
        blur->setIntensity(0.9);
        QCOMPARE(undoCount(), before + 1);
        const auto* holder = dynamic_cast<const Effect::EffectsHolder*>(clip->effects().first());
        QCOMPARE(holder->effects().at(1)->intensity(), 0.9);
        blur->remove(); // inner rows are removed with their group, not on their own
        QCOMPARE(undoCount(), before + 1);
        m_timeline->undoStack()->undo();
        holder = dynamic_cast<const Effect::EffectsHolder*>(clip->effects().first());
        QCOMPARE(holder->effects().at(1)->intensity(), 0.2);
    }

    void names_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::newRow("filter of the Effects collection") << "sharpen"
                                                          << "Filter: Sharpen";
        QTest::newRow("tool") << "crop"
                              << "Crop";
        QTest::newRow("group") << "group"
                               << "Effect group";
    }
    void names()
    {
        QFETCH(QString, id);
        QFETCH(QString, name);
        IClip* clip = videos(1).first();
        m_timeline->addEffect(clip, id == "group" ? std::shared_ptr<Effect::Object>(Effect::EffectsHolder::create()) : effect(id));
        QCOMPARE(ClipAdjustmentsProvider::adjustments(clip).first()->name(), name);
    }

    // Merging rows of several clips: the name, the intensity and the switch they show.
    void merging_data()
    {
        QTest::addColumn<QStringList>("ids");
        QTest::addColumn<QList<double>>("intensities");
        QTest::addColumn<QList<bool>>("bypass");
        QTest::addColumn<QString>("name");
        QTest::addColumn<double>("intensity");
        QTest::addColumn<bool>("intensityMixed");
        QTest::addColumn<bool>("bypassMixed");
        QTest::newRow("agreeing") << QStringList{"blur", "blur"} << QList<double>{0.4, 0.4} << QList<bool>{false, false}
                                  << "Filter: Blur" << 0.4 << false << false;
        QTest::newRow("0.3 and 0.7") << QStringList{"blur", "blur"} << QList<double>{0.3, 0.7}
                                     << QList<bool>{false, false} << "Filter: Blur" << 1.0 << true << false;
        QTest::newRow("three, last disagrees") << QStringList{"blur", "blur", "blur"} << QList<double>{0.5, 0.5, 0.6}
                                               << QList<bool>{true, true, false} << "Filter: Blur" << 1.0 << true << true;
        QTest::newRow("different names") << QStringList{"blur", "sharpen"} << QList<double>{0.5, 0.5}
                                         << QList<bool>{false, false} << "Filter: Blur" << 0.5 << false << false;
    }
    void merging()
    {
        QFETCH(QStringList, ids);
        QFETCH(QList<double>, intensities);
        QFETCH(QList<bool>, bypass);
        QFETCH(QString, name);
        QFETCH(double, intensity);
        QFETCH(bool, intensityMixed);
        QFETCH(bool, bypassMixed);
        const QList<IClip*> clips = videos(ids.size());
        // One uid on every clip, as an effect applied to a selection gets.
        const QString uid = QStringLiteral("shared-uid");
        for (int i = 0; i < clips.size(); ++i) {
            auto e = effect(ids.at(i), intensities.at(i));
            e->setUid(uid);
            e->setBypass(bypass.at(i));
            m_timeline->addEffect(clips.at(i), e);
        }
        const Rows rows = ClipAdjustmentsProvider::mergedAdjustments(clips);
        QCOMPARE(rows.size(), 1);
        auto row = std::dynamic_pointer_cast<EffectAdjustment>(rows.first());
        QCOMPARE(int(row->clips().size()), clips.size());
        QCOMPARE(row->isMixed(), ids.first() != ids.last());
        // Mixed names fall back to the effect's own name: the first clip's.
        QCOMPARE(row->name(), name);
        QCOMPARE(row->intensity(), intensity);
        QCOMPARE(row->isIntensityMixed(), intensityMixed);
        QCOMPARE(row->isBypassMixed(), bypassMixed);
    }

    // One change of a merged row reaches every clip as one undo step, and undo takes it back.
    void mergedWrites_data()
    {
        QTest::addColumn<QString>("change");
        QTest::newRow("intensity") << "intensity";
        QTest::newRow("bypass") << "bypass";
        QTest::newRow("remove") << "remove";
    }
    void mergedWrites()
    {
        QFETCH(QString, change);
        const QList<IClip*> clips = videos(3);
        auto blur = effect(QStringLiteral("blur"), 0.2);
        for (IClip* clip : clips)
            m_timeline->addEffect(clip, Serialize::deepCopy(blur.get()));
        const int before = undoCount();
        auto row = ClipAdjustmentsProvider::mergedAdjustments(clips).first();
        if (change == "intensity")
            row->setIntensity(0.8);
        else if (change == "bypass")
            row->setBypass(true);
        else
            row->remove();
        QCOMPARE(undoCount(), before + 1);
        for (IClip* clip : clips) {
            if (change == "remove") {
                QVERIFY(clip->effects().isEmpty());
                continue;
            }
            const Effect::Object* now = clip->effects().first();
            QCOMPARE(now->intensity(), change == "intensity" ? 0.8 : 0.2);
            QCOMPARE(now->bypass(), change == "bypass");
            QCOMPARE(now->uid(), blur->uid());
        }
        m_timeline->undoStack()->undo();
        for (IClip* clip : clips) {
            QCOMPARE(clip->effects().size(), 1);
            QCOMPARE(clip->effects().first()->intensity(), 0.2);
            QVERIFY(!clip->effects().first()->bypass());
        }
    }

    // Removing a special row turns that change off on every clip, each clip once, in one step.
    void removeSpecial_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("speed") << AdjustmentId::Speed;
        QTest::newRow("original tone") << AdjustmentId::SpeedCompensation;
        QTest::newRow("stabilization") << AdjustmentId::Stabilization;
        QTest::newRow("reverse") << AdjustmentId::Reverse;
    }
    void removeSpecial()
    {
        QFETCH(QString, id);
        StabilizationService service;
        const QList<IClip*> clips = videos(2);
        for (IClip* clip : clips) {
            m_timeline->setSpeed(clip, 1.5);
            m_timeline->setSpeedCompensated(clip, true);
            m_timeline->setStabilized(clip, true);
            m_timeline->setReversed(clip, true);
        }
        const int before = undoCount();
        Rows rows = ClipAdjustmentsProvider::mergedAdjustments(clips);
        QCOMPARE(rows.size(), 4);
        const auto row = *std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return r->id() == id; });
        QCOMPARE(int(row->clips().size()), 2);
        QVERIFY(!row->hasIntensity());
        row->setBypass(true);
        QVERIFY(!row->bypass()); // no switch on special rows
        QCOMPARE(undoCount(), before);
        row->remove();
        QCOMPARE(undoCount(), before + 1);
        QCOMPARE(service.requests, id == AdjustmentId::Stabilization ? 2 : 0);
        for (IClip* clip : clips) {
            rows = ClipAdjustmentsProvider::adjustments(clip);
            QCOMPARE(rows.size(), 3);
            for (const auto& r : rows)
                QVERIFY(r->id() != id);
        }
        m_timeline->undoStack()->undo();
        for (IClip* clip : clips)
            QCOMPARE(ClipAdjustmentsProvider::adjustments(clip).size(), 4);
    }

    // A row of the clip's sound and its video changes their shared timing once.
    void groupedClipChangedOnce()
    {
        IClip* video = videos(1).first();
        IClip* sound = m_timeline->clips().last();
        m_timeline->setReversed(video, true);
        auto row = ClipAdjustmentsProvider::adjustments(video).last();
        QCOMPARE(row->id(), AdjustmentId::Reverse);
        row->merge(std::make_shared<StabilizationAdjustment>(sound)); // any row holding the sound clip
        QCOMPARE(int(row->clips().size()), 2);
        const int before = undoCount();
        row->remove();
        QCOMPARE(undoCount(), before + 1);
        QVERIFY(!video->timing().isReversed());
        QVERIFY(!sound->timing().isReversed());
    }

    // Stabilization is part of the clip's timing: undone with it, and kept in project files.
    void stabilizationKept()
    {
        IClip* clip = videos(1).first();
        QVERIFY(m_timeline->setStabilized(clip, true));
        QVERIFY(!m_timeline->setStabilized(clip, true)); // nothing to change
        QVERIFY(clip->stabilizableSource());
        Project::Loaded loaded;
        QString error;
        QVERIFY2(Project::parse(Project::serialize(*m_timeline, "/p/story.kvproj"), "/p/story.kvproj", &loaded, &error),
                 qPrintable(error));
        const auto& loadedClips = loaded.content.clips;
        QCOMPARE(std::count_if(loadedClips.begin(), loadedClips.end(), [](const auto& c) { return c->timing().isStabilized(); }), 1L);
        m_timeline->undoStack()->undo();
        QVERIFY(!clip->stabilizableSource());
    }

    // Setting what is already there writes nothing.
    void noWriteWithoutChange()
    {
        IClip* clip = videos(1).first();
        m_timeline->addEffect(clip, effect(QStringLiteral("blur")));
        const int before = undoCount();
        auto row = ClipAdjustmentsProvider::adjustments(clip).first();
        row->setBypass(false);
        QCOMPARE(undoCount(), before);
        row->setBypass(true);
        row->setBypass(true);
        QCOMPARE(undoCount(), before + 1);
        QVERIFY(row->bypass());
    }

    // The model changed under a row: what is gone is skipped.
    void staleRows()
    {
        IClip* clip = videos(1).first();
        m_timeline->addEffect(clip, effect(QStringLiteral("blur")));
        auto row = ClipAdjustmentsProvider::adjustments(clip).first();
        m_timeline->removeEffect(clip, row->id(), row->uid());
        const int before = undoCount();
        row->remove();
        row->setIntensity(0.1);
        QCOMPARE(undoCount(), before);
        QVERIFY(clip->effects().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_ClipAdjustments)
#include "tst_clipadjustments.moc"
