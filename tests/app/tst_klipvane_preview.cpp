// The real host shows the timeline's picture and plays it: --play-ms plays from the start
// and logs where it started and paused, --preview-frame-to saves the frame at the playhead.

#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"

class TestKlipvanePreview : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_video;   // 3 s, red left half, blue right half, noisy so that half its bytes hold frames
    QString m_cut;     // its first half only

    static int runHost(const QTemporaryDir& home, const QStringList& arguments, QByteArray& log)
    {
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
        if (!host.waitForFinished(60000)) {
            host.kill();
            host.waitForFinished();
            return -1;
        }
        log = host.readAll();
        return host.exitStatus() == QProcess::NormalExit ? host.exitCode() : -1;
    }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty())
            QSKIP("ffmpeg is not installed; no media");
        m_video = m_folder.filePath(QStringLiteral("halves.mp4"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                      "color=c=red:s=640x360:r=25:d=3,drawbox=x=320:y=0:w=320:h=360:color=blue:t=fill,noise=alls=20:allf=t",
                      "-c:v", "libx264", "-preset", "ultrafast", "-g", "25", "-pix_fmt", "yuv420p",
                      "-movflags", "+faststart", m_video});
        QVERIFY(ffmpeg.waitForFinished(60000) && ffmpeg.exitCode() == 0);
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
        QCOMPARE(runHost(home, {"--place-on-timeline", "--play-ms", "1000", "--preview-frame-to", png, m_video}, log), 0);
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
        QCOMPARE(runHost(home, {"--place-on-timeline", "--preview-at", QString::number(atMs), "--preview-frame-to", png, m_cut},
                         log), 0);
        QVERIFY2(QImage(png).size() == QSize(800, 450), log.constData());
        if (atMs > 2000)
            QVERIFY2(!KvTest::logged(log, QStringLiteral("preview: ")).filter(QStringLiteral("cut.mp4")).isEmpty(),
                     log.constData());
    }
};

QTEST_GUILESS_MAIN(TestKlipvanePreview)
#include "tst_klipvane_preview.moc"
