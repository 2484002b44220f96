// The real host with the services over the editing model: the aspect offer for the first
// media on an empty timeline, effects applied to the placed clips, the special changes, and
// the adjustments of the selection as the host logs them.

#include "HostProcess.h"
#include "TestMedia.h"

#include <Project/ProjectFile.h>

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class TestKlipvaneClipServices : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_home;
    QString m_folder;

    std::unique_ptr<KvTest::Host> launch(QStringList arguments)
    {
        QProcessEnvironment environment = KvTest::hostEnvironment(*m_home);
        // Nobody answers dialogs here: each is dismissed as Escape would (the offer declined),
        // unless the host is told to accept the offer.
        if (!arguments.contains(QStringLiteral("--accept-aspect")))
            environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        for (QString& argument : arguments)
            if (argument.contains(QLatin1Char('.')) && !argument.startsWith(QLatin1String("--")))
                argument = at(argument);
        return std::make_unique<KvTest::Host>(environment, KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
    }
    QString at(const QString& name) const { return m_folder + QLatin1Char('/') + name; }

    // An empty project of the given frame size.
    void makeProject(const QString& name, QSize size)
    {
        Timeline::TimelineModel timeline;
        timeline.setVideo(Media::Video(size.width(), size.height(), 25.0));
        QString error;
        QVERIFY2(Project::save(at(name), timeline, &error), qPrintable(error));
    }

    // A portrait video, made here: the shared test media are all landscape.
    void makePortrait(const QString& name)
    {
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"), {"-nostdin", "-hide_banner", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                                 "testsrc2=size=1080x1920:rate=25:duration=0.2", "-c:v", "libx264",
                                                 "-preset", "ultrafast", "-pix_fmt", "yuv420p", at(name)});
        QVERIFY(ffmpeg.waitForFinished(60000));
        QCOMPARE(ffmpeg.exitCode(), 0);
    }

private slots:
    void initTestCase()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
    }

    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        QDir().mkpath(m_home->filePath("files"));
        m_folder = QDir(m_home->filePath("files")).canonicalPath();
        for (const char* name : {"a.mp4", "b.mp4"})
            QVERIFY(QFile::copy(TestMedia::path("h264_1080p.mp4"), at(QLatin1String(name))));
    }

    // Media of one shape onto an empty 4:3 project: one offer of that shape and size. Media
    // that disagree: none. The adjustments panel logs on a later turn than the one an offer
    // would be asked on, so no question by then means none.
    void aspectOffer_data()
    {
        QTest::addColumn<QStringList>("media");
        QTest::addColumn<QStringList>("offers");
        QTest::newRow("two 1920x1080") << QStringList{"a.mp4", "b.mp4"} << QStringList{"16/9 1920x1080 declined"};
        QTest::newRow("1080x1920 and 1920x1080") << QStringList{"portrait.mp4", "a.mp4"} << QStringList{};
    }
    void aspectOffer()
    {
        QFETCH(QStringList, media);
        QFETCH(QStringList, offers);
        makeProject("four-three.kvproj", QSize(1440, 1080));
        makePortrait("portrait.mp4");
        auto host = launch(QStringList{"--quit-after-ready", "60000", "--place-on-timeline", "--apply-effect", "sepia",
                                       "four-three.kvproj"} +
                           media);
        QVERIFY(host->waitForLog("effects: applied sepia"));
        QVERIFY(host->waitForLog("adjustments: "));
        if (!offers.isEmpty())
            QVERIFY(host->waitForLog("aspect: suggested "));
        QCOMPARE(KvTest::logged(host->log(), "timeline: placed ").size(), 1);
        QCOMPARE(KvTest::logged(host->log(), "aspect: suggested "), offers);
        QCOMPARE(KvTest::logged(host->log(), "dialog: alertAdjustProjectAspect").size(), offers.size());
    }

    // Accepted, the offer changes the project's frame size and nothing else of it.
    void aspectAccepted()
    {
        makeProject("four-three.kvproj", QSize(1440, 1080));
        auto host = launch({"--quit-after-ready", "60000", "--accept-aspect", "--place-on-timeline", "four-three.kvproj",
                            "a.mp4", "b.mp4"});
        QVERIFY(host->waitForLog("timeline: video "));
        QCOMPARE(KvTest::logged(host->log(), "aspect: suggested "), QStringList{"16/9 1920x1080 accepted"});
        QCOMPARE(KvTest::logged(host->log(), "dialog answer: alertAdjustProjectAspect "), QStringList{"true"});
        QCOMPARE(KvTest::logged(host->log(), "timeline: video "), QStringList{"1920x1080"});
    }

    // Effects and special changes on every placed clip show as merged rows of the selection.
    void adjustmentsOfTheSelection()
    {
        auto host = launch({"--quit-after-ready", "60000", "--place-on-timeline", "--apply-effect", "blur",
                            "--clip-actions", "speed=2,reverse,tone,stabilize", "a.mp4", "b.mp4"});
        QVERIFY(host->waitForLog("clip actions: stabilize"));
        QVERIFY(host->waitForLog("Stabilization"));
        QCOMPARE(KvTest::logged(host->log(), "effects: applied "), QStringList{"blur to 2 clip(s)"});
        QCOMPARE(KvTest::logged(host->log(), "stabilization: on ").size(), 2);
        QCOMPARE(KvTest::logged(host->log(), "adjustments: ").last(),
                 QStringLiteral("2 clip(s): Filter: Blur 1.00 [2]; Speed [2]; Original tone [2]; Stabilization [2]; "
                                "Reverse [2]"));
    }

    void unknownEffect()
    {
        auto host = launch({"--quit-after-ready", "60000", "--place-on-timeline", "--apply-effect", "no-such-effect",
                            "a.mp4"});
        QVERIFY(host->waitForLog("effects: no effect no-such-effect in the catalogue"));
        QVERIFY(host->waitForLog("adjustments: 1 clip(s): none"));
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneClipServices)
#include "tst_klipvane_clipservices.moc"
