#include "TestSandbox.h"

#include <ClipsFiltrator.h>
#include <Timeline/Clip.h>

#include <QtTest>

using Timeline::ClipType;
using Timeline::ClipTypes;

Q_DECLARE_METATYPE(ClipTypes)
Q_DECLARE_METATYPE(QList<ClipTypes>)
Q_DECLARE_METATYPE(QList<bool>)

namespace {

// Clips of the given types (and native-audio flags), held for the test's lifetime.
struct Clips
{
    std::vector<std::shared_ptr<Timeline::Clip>> held;
    std::set<Timeline::IClip*> set;
    std::map<Timeline::IClip*, int> index;

    Clips(const QList<ClipTypes>& types, const QList<bool>& nativeAudio = {})
    {
        for (int i = 0; i < types.size(); ++i) {
            Timeline::Clip::Data data;
            data.id = QString::number(i);
            data.type = types.at(i);
            data.nativeAudio = nativeAudio.value(i, false);
            held.push_back(std::make_shared<Timeline::Clip>(data));
            set.insert(held.back().get());
            index[held.back().get()] = i;
        }
    }
    QList<int> remaining(const std::set<Timeline::IClip*>& s) const
    {
        QList<int> list;
        for (Timeline::IClip* clip : s)
            list << index.at(clip);
        std::sort(list.begin(), list.end());
        return list;
    }
};

} // namespace

class tst_ClipsFiltrator : public QObject
{
    Q_OBJECT

private slots:
    void keepClipsByType_data()
    {
        QTest::addColumn<QList<ClipTypes>>("types");
        QTest::addColumn<ClipTypes>("wanted");
        QTest::addColumn<QList<int>>("kept");
        const ClipTypes video(ClipType::Video), audio(ClipType::Audio), image(ClipType::Image);
        QTest::newRow("empty set") << QList<ClipTypes>{} << (video | audio) << QList<int>{};
        QTest::newRow("one kind wanted") << QList<ClipTypes>{video, audio, image, video} << video << QList<int>{0, 3};
        QTest::newRow("two kinds wanted") << QList<ClipTypes>{video, audio, image} << (video | image) << QList<int>{0, 2};
        QTest::newRow("nothing wanted keeps only type zero")
            << QList<ClipTypes>{video, ClipTypes(), audio, ClipTypes()} << ClipTypes() << QList<int>{1, 3};
        QTest::newRow("type zero dropped when something is wanted")
            << QList<ClipTypes>{ClipTypes(), video} << video << QList<int>{1};
        QTest::newRow("two bits, one wanted") << QList<ClipTypes>{video | audio, video} << video << QList<int>{1};
        QTest::newRow("two bits, both wanted") << QList<ClipTypes>{video | audio} << (video | audio) << QList<int>{0};
        QTest::newRow("every clip erased, last included") << QList<ClipTypes>{audio, audio, audio} << video << QList<int>{};
    }
    void keepClipsByType()
    {
        QFETCH(QList<ClipTypes>, types);
        QFETCH(ClipTypes, wanted);
        QFETCH(QList<int>, kept);
        Clips clips(types);
        ClipsFiltrator::keepClipsByType(clips.set, wanted);
        QCOMPARE(clips.remaining(clips.set), kept);
    }

    void removeNativeAudio_data()
    {
        QTest::addColumn<QList<bool>>("nativeAudio");
        QTest::addColumn<QList<int>>("kept");
        QTest::newRow("empty set") << QList<bool>{} << QList<int>{};
        QTest::newRow("none native") << QList<bool>{false, false} << QList<int>{0, 1};
        QTest::newRow("some native") << QList<bool>{false, true, false, true} << QList<int>{0, 2};
        QTest::newRow("all native") << QList<bool>{true, true} << QList<int>{};
    }
    void removeNativeAudio()
    {
        QFETCH(QList<bool>, nativeAudio);
        QFETCH(QList<int>, kept);
        QList<ClipTypes> types;
        for (int i = 0; i < nativeAudio.size(); ++i)
            types << ClipTypes(ClipType::Audio);
        Clips clips(types, nativeAudio);
        ClipsFiltrator::removeNativeAudio(clips.set);
        QCOMPARE(clips.remaining(clips.set), kept);
    }
};

QTEST_GUILESS_MAIN(tst_ClipsFiltrator)
#include "tst_clipsfiltrator.moc"
