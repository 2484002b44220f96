// The host's preview over a real file: the picture at the playhead, Rotate, an effect's
// intensity and bypass, playback moving the playhead, a clip removed while decoded.

#include "PreviewArea.h"
#include "PreviewMedia.h"

#include <Effect/Effect.h>
#include <Media/File.h>
#include <Serialize/Serialize.h>

#include <QUndoStack>

#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

class tst_PreviewArea : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_video; // 2 s of 640 x 360: red left half, blue right half
    std::unique_ptr<Media::File> m_file;
    std::unique_ptr<Timeline::TimelineModel> m_timeline;
    std::unique_ptr<PreviewArea> m_preview;
    Timeline::IClip* m_clip = nullptr;

    // Waits for the frame the preview asked for last.
    bool nextFrame()
    {
        return QTest::qWaitFor([this] { return !m_preview->playback().isWaiting(); }, 15000);
    }
    QColor at(int x, int y) const { return m_preview->currentFrame().pixelColor(x, y); }

private slots:
    void initTestCase()
    {
        if (!PreviewMedia::available())
            QSKIP("ffmpeg is not installed; no media");
        m_video = m_folder.filePath(QStringLiteral("halves.mp4"));
        QVERIFY(PreviewMedia::makeHalves(m_video, 2));
    }

    void init()
    {
        // The file as the media model holds it once opened.
        m_file = std::make_unique<Media::File>(m_video);
        Media::VideoTrack track;
        track.frameSize = QSize(640, 360);
        track.frameRate = 25;
        m_file->setVideoTracks({track});
        m_file->setFileDuration(MediaTime::fromSeconds(2));
        m_file->setState(Media::File::State::Opened);
        m_timeline = std::make_unique<Timeline::TimelineModel>();
        m_timeline->setMediaResolver([this](const QString& path) { return path == m_video ? m_file.get() : nullptr; });
        m_preview = std::make_unique<PreviewArea>(m_timeline.get());
        m_preview->resize(640, 480);
        m_clip = m_timeline->placeMedia({m_video}, {}).value(0);
        QVERIFY(m_clip);
        QVERIFY(nextFrame());
    }

    void cleanup()
    {
        m_preview.reset();
        m_timeline.reset();
    }

    void showsTheFrameInTheScene()
    {
        QCOMPARE(m_preview->currentFrame().size(), QSize(800, 450));
        QVERIFY(at(200, 225).red() > 200 && at(200, 225).blue() < 60);
        QVERIFY(at(600, 225).blue() > 200 && at(600, 225).red() < 60);
    }

    void rotateTurnsThePicture_data()
    {
        QTest::addColumn<int>("turns");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("redOnTop");
        QTest::newRow("quarter") << 1 << QSize(253, 450) << true;   // clockwise: the left side goes up
        QTest::newRow("half") << 2 << QSize(800, 450) << false;
        QTest::newRow("three quarters") << 3 << QSize(253, 450) << false;
        QTest::newRow("full") << 4 << QSize(800, 450) << false;
    }
    void rotateTurnsThePicture()
    {
        QFETCH(int, turns);
        QFETCH(QSize, size);
        QFETCH(bool, redOnTop);
        for (int i = 0; i < turns; ++i)
            QVERIFY(m_preview->rotateClip());
        QVERIFY(nextFrame());
        QVERIFY(QTest::qWaitFor([&] { return m_preview->currentFrame().size() == size; }, 15000));
        const QImage frame = m_preview->currentFrame();
        const QColor top = frame.pixelColor(frame.width() / 2, frame.height() / 4);
        const QColor left = frame.pixelColor(frame.width() / 4, frame.height() / 2);
        if (size.width() < size.height())
            QCOMPARE(top.red() > 200, redOnTop);
        else
            QCOMPARE(left.red() > 200, turns % 4 == 0);
    }

    void effectIntensityAndBypass()
    {
        auto gray = Effect::Object::create(QStringLiteral("grayscale"));
        QVERIFY(gray);
        gray->setIntensity(1.0);
        QVERIFY(m_timeline->addEffect(m_clip, gray));
        QVERIFY(QTest::qWaitFor([&] { return qAbs(at(200, 225).red() - at(200, 225).green()) < 20; }, 15000));
        auto half = Serialize::deepCopy(gray.get());
        QVERIFY(half);
        half->setIntensity(0.5);
        QVERIFY(m_timeline->replaceEffect(m_clip, half));
        QVERIFY(QTest::qWaitFor([&] {
            const QColor c = at(200, 225);
            return c.red() - c.green() > 40 && c.red() - c.green() < 200;
        }, 15000));
        auto bypassed = Serialize::deepCopy(half.get());
        bypassed->setBypass(true);
        QVERIFY(m_timeline->replaceEffect(m_clip, bypassed));
        QVERIFY(QTest::qWaitFor([&] { return at(200, 225).red() > 200 && at(200, 225).green() < 60; }, 15000));
    }

    void playbackMovesThePlayhead()
    {
        QSignalSpy running(&m_preview->playback(), &PreviewPlayback::playbackRunningChanged);
        m_preview->playback().play();
        QCOMPARE(running.count(), 1);
        QCOMPARE(running.at(0).at(0).toBool(), true);
        QVERIFY(QTest::qWaitFor([&] { return m_preview->editor().playheadMarker()->position() > MediaTime::fromMilliseconds(300); }));
        QVERIFY(m_preview->editor().isPlaybackRunning());
        m_preview->playback().pause();
        QCOMPARE(running.last().at(0).toBool(), false);
        QVERIFY(m_preview->playback().shownFrames() > 0);
        // At the end it stops by itself.
        m_preview->editor().playheadMarker()->setPosition(MediaTime::fromMilliseconds(1900));
        m_preview->playback().play();
        QVERIFY(QTest::qWaitFor([&] { return !m_preview->editor().isPlaybackRunning(); }, 5000));
        QCOMPARE(m_preview->editor().playheadMarker()->position(), MediaTime::fromSeconds(2));
    }

    void clipRemovedWhileDecoded()
    {
        m_preview->editor().playheadMarker()->setPosition(MediaTime::fromMilliseconds(1500));
        m_timeline->removeClips({m_clip});
        m_clip = nullptr;
        // Past the clip: nothing to show, and no frame of the removed clip comes back.
        QVERIFY(QTest::qWaitFor([&] { return m_preview->currentFrame().isNull(); }, 15000));
        QVERIFY(!QTest::qWaitFor([&] { return !m_preview->currentFrame().isNull(); }, 300));
        m_timeline->undoStack()->undo();
        QVERIFY(QTest::qWaitFor([&] { return !m_preview->currentFrame().isNull(); }, 15000));
    }

    void seekBeyondTheFileShowsItsLastFrame()
    {
        // The clip claims more than the file holds (a damaged length).
        m_file->setFileDuration(MediaTime::fromSeconds(2));
        QVERIFY(m_timeline->setSpeed(m_clip, 0.5)); // 4 s on the timeline, 2 s of media
        m_preview->editor().playheadMarker()->setPosition(MediaTime::fromMilliseconds(3990));
        QVERIFY(nextFrame());
        QVERIFY(!m_preview->currentFrame().isNull());
    }
};

QTEST_MAIN(tst_PreviewArea)
#include "tst_previewarea.moc"
