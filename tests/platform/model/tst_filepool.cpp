#include "TestSandbox.h"
#include <Conf/Codecs.h>
#include <Media/FilePool.h>
#include <Media/FileView.h>
#include <Media/MediaReader_p.h>
#include <Settings/Settings.h>

#include "TestMedia.h"

#include <QFile>
#include <sys/stat.h>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using Media::File;
using Media::FilePool;

namespace {

// Records the callbacks a view receives, in order.
class RecordingView : public Media::FileView
{
public:
    QStringList events;
    std::function<void(const File*)> onOpened;

private:
    void fileAdded(const File* f) override { events << QStringLiteral("added ") + name(f); }
    void fileRemoved(const File* f) override { events << QStringLiteral("removed ") + name(f); }
    void fileOpened(const File* f) override
    {
        events << QStringLiteral("opened ") + name(f);
        if (onOpened)
            onOpened(f);
    }
    void fileFailed(const File* f) override { events << QStringLiteral("failed ") + name(f); }
    static QString name(const File* f) { return QFileInfo(f->filePath()).fileName(); }
};

} // namespace

class tst_FilePool : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void outcome_data();
    void outcome();
    void describesTracks();
    void h265CanBeSwitchedOn();
    void failureIsPublishedBeforeViewsHear();
    void removedWhileOpeningDropsResult();
    void viewRemovingFileStopsLaterViews();
    void manyFilesAllEnd();
    void unreadableFileFails();
    void vanishingFilesEnd();
    void fifoIsRefused();
    void evaluateRule_data();
    void evaluateRule();

private:
    QTemporaryDir m_config;
    QString m_media;
};

void tst_FilePool::initTestCase()
{
    QVERIFY(m_config.isValid());
    Settings::setFileName(m_config.filePath(QStringLiteral("klipvane.ini")));
    m_media = TestMedia::folder();
    if (m_media.isEmpty())
        QSKIP("ffmpeg is not installed: no test media");

    // FFmpeg stays out of the process until the first file is opened.
    auto ffmpegMapped = [] {
        QFile maps(QStringLiteral("/proc/self/maps"));
        return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libavformat");
    };
    QVERIFY(!ffmpegMapped());
    QVERIFY(!Media::isMediaReaderLoaded());
    FilePool pool;
    QSignalSpy idle(&pool, &FilePool::idle);
    pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
    QVERIFY(idle.wait(20000));
    QVERIFY(Media::isMediaReaderLoaded());
    QVERIFY(ffmpegMapped());
}

void tst_FilePool::outcome_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("opened");
    QTest::addColumn<QStringList>("unsupported");
    QTest::addColumn<int>("errorCode");
    QTest::addColumn<bool>("hdr");

    const QStringList none;
    const QStringList h265{QStringLiteral("h265")};
    QTest::newRow("H.264 1080p") << "h264_1080p.mp4" << true << none << 0 << false;
    QTest::newRow("H.264 tiny") << "h264_tiny.mp4" << true << none << 0 << false;
    QTest::newRow("H.265 only") << "h265.mp4" << false << h265 << 11 << false;
    QTest::newRow("H.265 with audio") << "h265_aac.mp4" << true << h265 << 0 << false;
    QTest::newRow("HDR10 H.265") << "hdr10.mp4" << false << h265 << 11 << true;
    QTest::newRow("HLG H.264") << "hdr_h264.mp4" << true << none << 0 << true;
    QTest::newRow("audio only") << "audio.m4a" << true << none << 0 << false;
    QTest::newRow("still picture") << "still.png" << true << none << 0 << false;
    QTest::newRow("truncated") << "truncated.mp4" << false << none << 36 << false;
    QTest::newRow("text as mp4") << "text.mp4" << false << none << 36 << false;
    QTest::newRow("empty") << "empty.mp4" << false << none << 36 << false;
    QTest::newRow("missing") << "no-such-file.mp4" << false << none << 36 << false;
    QTest::newRow("folder") << "." << false << none << 36 << false;
}

void tst_FilePool::outcome()
{
    QFETCH(QString, name);
    QFETCH(bool, opened);
    QFETCH(QStringList, unsupported);
    QFETCH(int, errorCode);
    QFETCH(bool, hdr);

    FilePool pool;
    QSignalSpy idle(&pool, &FilePool::idle);
    const File* file = pool.addFile(m_media + QLatin1Char('/') + name);
    QVERIFY(file->isOpening());
    QVERIFY(idle.wait(20000));
    QCOMPARE(file->isOpened(), opened);
    QCOMPARE(file->isFailed(), !opened);
    QCOMPARE(file->unsupportedCodecs(), unsupported);
    QCOMPARE(file->hasHDRStreams(), hdr);
    if (opened) {
        QVERIFY(file->errors().empty());
    } else {
        QCOMPARE(int(file->errors().size()), 1);
        QCOMPARE(file->errors().front().code(), errorCode);
        QVERIFY(!file->errors().front().message().empty());
    }
}

void tst_FilePool::describesTracks()
{
    FilePool pool;
    QSignalSpy idle(&pool, &FilePool::idle);
    const File* file = pool.addFile(m_media + QStringLiteral("/h264_1080p.mp4"));
    QVERIFY(idle.wait(20000));
    QVERIFY(file->isOpened());
    QVERIFY(file->format().contains(QLatin1String("MP4"), Qt::CaseInsensitive)
            || file->format().contains(QLatin1String("MOV"), Qt::CaseInsensitive));
    QCOMPARE(int(file->videoTracks().size()), 1);
    const Media::VideoTrack& video = file->videoTracks().front();
    QCOMPARE(video.codecId, QStringLiteral("h264"));
    QCOMPARE(video.frameSize, QSize(1920, 1080));
    QCOMPARE(video.pixelAspectX, 1);
    QCOMPARE(video.pixelAspectY, 1);
    QCOMPARE(video.frameRate, 25.0);
    QVERIFY(!video.isCoverArt());
    QCOMPARE(int(file->audioTracks().size()), 1);
    const Media::AudioTrack& audio = file->audioTracks().front();
    QCOMPARE(audio.codecId, QStringLiteral("aac"));
    QCOMPARE(audio.sampleRate, 44100);
    QCOMPARE(audio.channelLayout, quint64(0x4)); // mono: front centre
    QCOMPARE(audio.channels, 1);
    QVERIFY(file->fileDuration().milliseconds() >= 150 && file->fileDuration().milliseconds() <= 400);
}

void tst_FilePool::h265CanBeSwitchedOn()
{
    Settings::setValue(Tavrin::Conf::H265DecodingSettingKey, true);
    FilePool pool;
    QSignalSpy idle(&pool, &FilePool::idle);
    const File* plain = pool.addFile(m_media + QStringLiteral("/h265.mp4"));
    const File* hdr = pool.addFile(m_media + QStringLiteral("/hdr10.mp4"));
    QVERIFY(idle.wait(20000));
    Settings::remove(Tavrin::Conf::H265DecodingSettingKey);
    QVERIFY(plain->isOpened());
    QVERIFY(plain->unsupportedCodecs().isEmpty());
    QVERIFY(hdr->isOpened());
    QVERIFY(hdr->hasHDRStreams());
    QCOMPARE(hdr->videoTracks().front().primaries, QStringLiteral("bt2020"));
}

void tst_FilePool::failureIsPublishedBeforeViewsHear()
{
    FilePool pool;
    RecordingView view;
    pool.addView(&view);
    QStringList order;
    std::vector<int> codes;
    const File* file = pool.addFile(m_media + QStringLiteral("/text.mp4"));
    PubSub::Subscription<Media::FileOpenFailedNotification> subscription(
        file, [&](const Media::FileOpenFailedNotification& n) {
            order << QStringLiteral("notification");
            QCOMPARE(n.source(), file);
            for (const auto& e : n.errors)
                codes.push_back(e.code());
        });
    QSignalSpy failed(&pool, &FilePool::fileFailed);
    QVERIFY(failed.wait(20000));
    QCOMPARE(codes, std::vector<int>{36});
    QCOMPARE(view.events, (QStringList{QStringLiteral("added text.mp4"), QStringLiteral("failed text.mp4")}));
    QCOMPARE(order, QStringList{QStringLiteral("notification")});
}

void tst_FilePool::removedWhileOpeningDropsResult()
{
    FilePool pool;
    RecordingView view;
    pool.addView(&view);
    QSignalSpy idle(&pool, &FilePool::idle);
    QSignalSpy opened(&pool, &FilePool::fileOpened);
    const File* file = pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
    pool.removeFile(file);
    QCOMPARE(idle.count(), 1);
    QCOMPARE(pool.openingCount(), 0);
    QVERIFY(!pool.contains(file));
    // Give the worker time to deliver, then make sure nothing arrived.
    const File* other = pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
    QVERIFY(idle.wait(20000));
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.at(0).at(0).value<const File*>(), other);
    QCOMPARE(view.events.count(QStringLiteral("opened h264_tiny.mp4")), 1);
}

void tst_FilePool::viewRemovingFileStopsLaterViews()
{
    FilePool pool;
    RecordingView first;
    RecordingView second;
    pool.addView(&first);
    pool.addView(&second);
    first.onOpened = [&pool](const File* f) { pool.removeFile(f); };
    const File* file = pool.addFile(QStringLiteral("manual.mp4"), FilePool::Opening::Manual);
    Media::OpenResult result;
    result.state = File::State::Opened;
    pool.finishOpening(file, result);
    QCOMPARE(second.events,
             (QStringList{QStringLiteral("added manual.mp4"), QStringLiteral("removed manual.mp4")}));
}

void tst_FilePool::manyFilesAllEnd()
{
    // A large batch mixing good and bad files: each ends, none twice.
    FilePool pool;
    QSignalSpy opened(&pool, &FilePool::fileOpened);
    QSignalSpy failed(&pool, &FilePool::fileFailed);
    QSignalSpy idle(&pool, &FilePool::idle);
    QStringList paths;
    for (int i = 0; i < 100; ++i) {
        paths << m_media + QStringLiteral("/h264_tiny.mp4") << m_media + QStringLiteral("/empty.mp4")
              << m_media + QStringLiteral("/missing.mp4");
    }
    pool.addFiles(paths);
    QVERIFY(QTest::qWaitFor([&] { return pool.openingCount() == 0; }, 60000));
    QCOMPARE(opened.count(), 100);
    QCOMPARE(failed.count(), 200);
    QCOMPARE(idle.count(), 1);
}

void tst_FilePool::unreadableFileFails()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("locked.mp4"));
    QVERIFY(QFile::copy(m_media + QStringLiteral("/h264_tiny.mp4"), path));
    QFile::setPermissions(path, QFileDevice::Permissions());
    if (QFileInfo(path).isReadable())
        QSKIP("running with rights that read any file");
    FilePool pool;
    QSignalSpy failed(&pool, &FilePool::fileFailed);
    const File* file = pool.addFile(path);
    QVERIFY(failed.wait(20000));
    QCOMPARE(file->errors().front().code(), 36);
}

void tst_FilePool::vanishingFilesEnd()
{
    // Files deleted while the pool opens them: each still ends, opened or failed.
    QTemporaryDir dir;
    QStringList paths;
    for (int i = 0; i < 40; ++i) {
        paths << dir.filePath(QStringLiteral("clip%1.mp4").arg(i));
        QVERIFY(QFile::copy(m_media + QStringLiteral("/h264_1080p.mp4"), paths.last()));
    }
    FilePool pool;
    QSignalSpy opened(&pool, &FilePool::fileOpened);
    QSignalSpy failed(&pool, &FilePool::fileFailed);
    const QList<const File*> files = pool.addFiles(paths);
    for (const QString& path : paths)
        QFile::remove(path);
    QVERIFY(QTest::qWaitFor([&] { return pool.openingCount() == 0; }, 20000));
    QCOMPARE(opened.count() + failed.count(), 40);
    for (const File* file : files)
        QVERIFY(file->isOpened() || (file->isFailed() && file->errors().front().code() == 36));
}

void tst_FilePool::fifoIsRefused()
{
    // A FIFO never delivers an end of file; it must fail at once instead of holding a worker.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("pipe.mp4"));
    QVERIFY(::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
    FilePool pool;
    QSignalSpy failed(&pool, &FilePool::fileFailed);
    const File* file = pool.addFile(path);
    QVERIFY(failed.wait(20000));
    QCOMPARE(file->errors().front().code(), 36);
}

void tst_FilePool::evaluateRule_data()
{
    QTest::addColumn<QStringList>("video");     // engine codec names, "+" prefix marks cover art
    QTest::addColumn<QStringList>("audio");
    QTest::addColumn<QString>("undecodable");   // engine name without a decoder
    QTest::addColumn<bool>("opened");
    QTest::addColumn<QStringList>("unsupported");
    QTest::addColumn<int>("code");

    const QStringList none;
    QTest::newRow("no streams") << none << none << QString() << false << none << 36;
    QTest::newRow("cover art only") << QStringList{QStringLiteral("+mjpeg")} << none << QString() << false << none << 36;
    QTest::newRow("audio with cover art") << QStringList{QStringLiteral("+mjpeg")} << QStringList{QStringLiteral("mp3")}
                                          << QStringLiteral("mjpeg") << true << none << 0;
    QTest::newRow("no decoder for the only video")
        << QStringList{QStringLiteral("cavs")} << none << QStringLiteral("cavs") << false
        << QStringList{QStringLiteral("cavs")} << 11;
    QTest::newRow("no decoder for the audio")
        << QStringList{QStringLiteral("h264")} << QStringList{QStringLiteral("dts")} << QStringLiteral("dts") << true
        << QStringList{QStringLiteral("dts")} << 0;
    QTest::newRow("hevc is h265, declared unsupported")
        << QStringList{QStringLiteral("hevc"), QStringLiteral("hevc")} << QStringList{QStringLiteral("aac")}
        << QString() << true << QStringList{QStringLiteral("h265")} << 0;
}

void tst_FilePool::evaluateRule()
{
    QFETCH(QStringList, video);
    QFETCH(QStringList, audio);
    QFETCH(QString, undecodable);
    QFETCH(bool, opened);
    QFETCH(QStringList, unsupported);
    QFETCH(int, code);

    Media::Reader::ProbeResult probe;
    for (QString name : video) {
        Media::VideoTrack track;
        track.coverArt = name.startsWith(QLatin1Char('+'));
        track.codecId = track.coverArt ? name.mid(1) : name;
        probe.video.push_back(track);
        probe.videoDecodable.push_back(track.codecId != undecodable);
    }
    for (const QString& name : audio) {
        Media::AudioTrack track;
        track.codecId = name;
        probe.audio.push_back(track);
        probe.audioDecodable.push_back(name != undecodable);
    }
    const Media::OpenResult result = Media::evaluate(QStringLiteral("x.mp4"), probe);
    QCOMPARE(result.state == File::State::Opened, opened);
    QCOMPARE(result.unsupportedCodecs, unsupported);
    QCOMPARE(result.errors.empty() ? 0 : result.errors.front().code(), code);
}

QTEST_GUILESS_MAIN(tst_FilePool)
#include "tst_filepool.moc"
