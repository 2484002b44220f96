// The real host shows the timeline's picture and plays it: --play-ms plays from the start
// and logs where it started and paused, --preview-frame-to saves the frame at the playhead.

#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "PreviewMedia.h"

class TestKlipvanePreview : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_video;   // 3 s, red left half, blue right half, noisy so that half its bytes hold frames
    QString m_cut;     // its first half only

private slots:
    void initTestCase()
    {
        if (!PreviewMedia::available())
            QSKIP("ffmpeg is not installed; no media");
        m_video = m_folder.filePath(QStringLiteral("halves.mp4"));
        QVERIFY(PreviewMedia::makeHalves(m_video, 3));
        QFile whole(m_video);
        QVERIFY(whole.open(QIODevice::ReadOnly));
        const QByteArray bytes = whole.readAll();
        m_cut = m_folder.filePath(QStringLiteral("cut.mp4"));
        QFile cut(m_cut);
        QVERIFY(cut.open(QIODevice::WriteOnly));
        cut.write(bytes.left(bytes.size() / 2));
    }

    void playsAndShowsTheFrame()
    {
        QTemporaryDir home;
        const QString png = home.filePath(QStringLiteral("frame.png"));
        QByteArray log;
        QCOMPARE(KvTest::runHostToEnd(home, {"--place-on-timeline", "--play-ms", "1000", "--preview-frame-to", png, m_video}, log), 0);
        const QStringList playback = KvTest::logged(log, QStringLiteral("playback: "));
        QVERIFY2(playback.size() >= 2, log.constData());
        QCOMPARE(playback.at(0), QStringLiteral("started at 0"));
        QVERIFY2(playback.at(1).startsWith(QLatin1String("paused at ")), log.constData());
        const int pausedAt = playback.at(1).mid(10).toInt();
        QVERIFY2(pausedAt >= 900 && pausedAt <= 1500, log.constData());
        const QImage frame(png);
        QCOMPARE(frame.size(), QSize(800, 450)); // the scene of the 1920 x 1080 project
        // 640 x 360 fills the 16:9 scene: red on the left, blue on the right.
        const QColor left = frame.pixelColor(200, 225);
        const QColor right = frame.pixelColor(600, 225);
        QVERIFY2(left.red() > 200 && left.blue() < 60, qPrintable(left.name()));
        QVERIFY2(right.blue() > 200 && right.red() < 60, qPrintable(right.name()));
    }

    void fileCutOffShowsItsLastFrame_data()
    {
        QTest::addColumn<int>("atMs");
        QTest::newRow("where it still decodes") << 500;
        QTest::newRow("where the data is missing") << 2500;
    }
    void fileCutOffShowsItsLastFrame()
    {
        QFETCH(int, atMs);
        QTemporaryDir home;
        const QString png = home.filePath(QStringLiteral("frame.png"));
        QByteArray log;
        QCOMPARE(KvTest::runHostToEnd(home, {"--place-on-timeline", "--preview-at", QString::number(atMs), "--preview-frame-to", png, m_cut},
                         log), 0);
        QVERIFY2(QImage(png).size() == QSize(800, 450), log.constData());
        if (atMs > 2000)
            QVERIFY2(!KvTest::logged(log, QStringLiteral("preview: ")).filter(QStringLiteral("cut.mp4")).isEmpty(),
                     log.constData());
    }
};

QTEST_GUILESS_MAIN(TestKlipvanePreview)
#include "tst_klipvane_preview.moc"
