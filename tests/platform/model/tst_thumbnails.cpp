#include "TestSandbox.h"
#include <Media/ThumbnailCache.h>
#include <Media/Thumbnails.h>

#include "TestMedia.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QImageReader>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using Media::Thumbnail;
using Media::Thumbnails;
using Origin = Media::Thumbnail::Origin;

Q_DECLARE_METATYPE(Media::Thumbnail::Origin)

namespace {

int modeOf(const QString& path)
{
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 0777) : -1;
}

// The shared cache's name of a file, worked out by hand: md5 of its percent-encoded URI.
QString entryFor(const QString& cache, const QString& flavor, const QByteArray& uri)
{
    return cache + QStringLiteral("/thumbnails/") + flavor + QLatin1Char('/')
        + QString::fromLatin1(QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex()) + QStringLiteral(".png");
}

qint64 mtimeOf(const QString& path)
{
    return QFileInfo(path).lastModified().toSecsSinceEpoch();
}

// Writes an entry as another program would: a solid picture with the given texts.
void writeForeignEntry(const QString& entry, QColor color, const QByteArray& uri, qint64 mtime)
{
    QDir().mkpath(QFileInfo(entry).path());
    QImage picture(100, 50, QImage::Format_RGB32);
    picture.fill(color);
    picture.setText(QStringLiteral("Thumb::URI"), QString::fromLatin1(uri));
    picture.setText(QStringLiteral("Thumb::MTime"), QString::number(mtime));
    QVERIFY(picture.save(entry, "PNG"));
}

double meanLuma(const QImage& image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            sum += qGray(image.pixel(x, y));
    return sum / (image.width() * image.height());
}

} // namespace

class tst_Thumbnails : public QObject
{
    Q_OBJECT

    QString m_media;
    std::unique_ptr<QTemporaryDir> m_cache;
    std::unique_ptr<QTemporaryDir> m_files;

    // A copy of a test file under a name of its own, so that its cache entry is its own.
    QString copyOf(const char* name, const QString& as)
    {
        const QString copy = m_files->filePath(as);
        QFile::remove(copy);
        return QFile::copy(m_media + QLatin1Char('/') + QLatin1String(name), copy) ? copy : QString();
    }

    // Asks a fresh service (nothing in memory) for `path` and waits for its answer.
    static Thumbnail requestFresh(const QString& path, int size = Thumbnails::Normal)
    {
        Thumbnails service;
        QSignalSpy finished(&service, &Thumbnails::finished);
        if (!service.request(path, size).isNull())
            return Thumbnail();
        if (!finished.wait(20000))
            return Thumbnail();
        return finished.first().first().value<Thumbnail>();
    }

private slots:
    void initTestCase()
    {
        m_media = TestMedia::folder();
        if (m_media.isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
    }

    // Each test starts from an empty shared cache of its own.
    void init()
    {
        m_cache = std::make_unique<QTemporaryDir>();
        m_files = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_cache->path()));
    }

    // What is found in the shared cache decides between reusing an entry and making one.
    void sharedCache_data()
    {
        QTest::addColumn<QString>("entryFlavor"); // where an entry is put beforehand, or empty
        QTest::addColumn<QString>("entryKind");
        QTest::addColumn<Origin>("origin");
        QTest::newRow("no entry") << QString() << QString() << Origin::Made;
        QTest::newRow("another program's entry") << "normal" << "valid" << Origin::SharedCache;
        QTest::newRow("another program's larger entry") << "large" << "valid" << Origin::SharedCache;
        QTest::newRow("stale modification time") << "normal" << "stale" << Origin::Made;
        QTest::newRow("entry of another file") << "normal" << "other uri" << Origin::Made;
        QTest::newRow("damaged PNG") << "normal" << "damaged" << Origin::Made;
    }

    void sharedCache()
    {
        QFETCH(QString, entryFlavor);
        QFETCH(QString, entryKind);
        const QString video = copyOf("h264_tiny.mp4", QStringLiteral("my clip.mp4"));
        QVERIFY(!video.isEmpty());
        const QByteArray uri = "file://" + QFile::encodeName(m_files->path()) + "/my%20clip.mp4";
        const QString entry = entryFor(m_cache->path(), QStringLiteral("normal"), uri);
        if (!entryFlavor.isEmpty()) {
            const QString planted = entryFor(m_cache->path(), entryFlavor, uri);
            if (entryKind == QLatin1String("damaged")) {
                QDir().mkpath(QFileInfo(planted).path());
                QFile damaged(planted);
                QVERIFY(damaged.open(QIODevice::WriteOnly));
                damaged.write("\x89PNG\r\n\x1a\n this is no longer a picture");
            } else {
                writeForeignEntry(planted, Qt::red, entryKind == QLatin1String("other uri") ? "file:///elsewhere.mp4" : uri,
                                  mtimeOf(video) - (entryKind == QLatin1String("stale") ? 10 : 0));
            }
        }

        const Thumbnail thumbnail = requestFresh(video);
        QTEST(thumbnail.origin, "origin");
        QVERIFY2(!thumbnail.image.isNull(), qPrintable(thumbnail.error));
        const bool reused = thumbnail.origin == Origin::SharedCache;
        // The planted picture is solid red; a decoded test pattern is not.
        QCOMPARE(thumbnail.image.pixelColor(thumbnail.image.width() / 2, thumbnail.image.height() / 2) == QColor(Qt::red),
                 reused);
        if (reused) {
            QVERIFY(thumbnail.image.width() <= Thumbnails::Normal);
            return;
        }
        // Made: the entry has the standard's name, texts and modes.
        QImageReader reader(entry);
        const QImage written = reader.read();
        QVERIFY2(!written.isNull(), qPrintable(reader.errorString()));
        QCOMPARE(written.text(QStringLiteral("Thumb::URI")), QString::fromLatin1(uri));
        QCOMPARE(written.text(QStringLiteral("Thumb::MTime")), QString::number(mtimeOf(video)));
        QCOMPARE(written.size(), QSize(64, 36)); // never enlarged
        QCOMPARE(modeOf(entry), 0600);
        // Folders made here are private; the ones found keep their owner's mode.
        if (entryFlavor.isEmpty()) {
            QCOMPARE(modeOf(QFileInfo(entry).path()), 0700);
            QCOMPARE(modeOf(m_cache->path() + QStringLiteral("/thumbnails")), 0700);
        }
        // No temporary file is left beside it.
        QCOMPARE(QDir(QFileInfo(entry).path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    // Made once, then served from the shared cache by a new service, and from memory by the same one.
    void madeThenReused()
    {
        const QString video = copyOf("h264_1080p.mp4", QStringLiteral("big.mp4"));
        const Thumbnail made = requestFresh(video, Thumbnails::Large);
        QCOMPARE(made.origin, Origin::Made);
        QCOMPARE(made.image.size(), QSize(256, 144));
        QCOMPARE(requestFresh(video, Thumbnails::Large).origin, Origin::SharedCache);
        // A smaller request is served by the larger entry.
        QCOMPARE(requestFresh(video, 64).image.size(), QSize(64, 36));

        Thumbnails service;
        QSignalSpy ready(&service, &Thumbnails::ready);
        QVERIFY(service.request(video).isNull());
        QVERIFY(service.isPending(video));
        QVERIFY(service.request(video).isNull()); // asked twice, answered once
        QVERIFY(ready.wait(20000));
        QVERIFY(!service.request(video).isNull());
        QCOMPARE(service.pendingCount(), 0); // nothing else is on its way
        QCOMPARE(ready.count(), 1);
    }

    // A file that cannot give a picture fails, leaves the standard's failure marker, and is
    // not decoded again while it is unchanged.
    void failure_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("marked");
        QTest::newRow("truncated") << "truncated.mp4" << true;
        QTest::newRow("text named .mp4") << "text.mp4" << true;
        QTest::newRow("empty") << "empty.mp4" << false;
        QTest::newRow("missing") << "no-such-file.mp4" << false;
    }

    void failure()
    {
        QFETCH(QString, name);
        QFETCH(bool, marked);
        const QString path = m_media + QLatin1Char('/') + name;
        Thumbnails service;
        QSignalSpy failed(&service, &Thumbnails::failed);
        QVERIFY(service.request(path).isNull());
        QVERIFY(failed.wait(20000));
        QCOMPARE(failed.first().first().toString(), path);
        QVERIFY(!service.failure(path).isEmpty());
        // Remembered: asking again does not start another decoding.
        QVERIFY(service.request(path).isNull());
        QVERIFY(!service.isPending(path));

        const QFileInfoList markers = QDir(m_cache->path() + QStringLiteral("/thumbnails/fail")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(markers.size(), marked ? 1 : 0);
        if (!marked)
            return;
        QVERIFY(markers.first().fileName().startsWith(QLatin1String("klipvane-")));
        const QFileInfoList files = QDir(markers.first().filePath()).entryInfoList(QDir::Files);
        QCOMPARE(files.size(), 1);
        QCOMPARE(QImageReader(files.first().filePath()).read().text(QStringLiteral("Thumb::URI")),
                 QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()));
        QVERIFY(requestFresh(path).error.contains(QLatin1String("before")));
    }

    // Requests queue behind each other on the workers; one file is gone before its turn.
    void fileRemovedMeanwhile()
    {
        Thumbnails service;
        QSignalSpy finished(&service, &Thumbnails::finished);
        QSignalSpy idle(&service, &Thumbnails::idle);
        QStringList paths;
        for (int i = 0; i < 12; ++i)
            paths << copyOf("h264_1080p.mp4", QStringLiteral("clip%1.mp4").arg(i));
        const QString doomed = paths.takeFirst(); // served last: the newest request goes first
        for (const QString& path : qAsConst(paths))
            service.request(path);
        QFile::remove(doomed);
        service.request(doomed);
        QVERIFY(QTest::qWaitFor([&] { return finished.count() == 12; }, 30000));
        QCOMPARE(idle.count(), 1);
        int failures = 0;
        for (const QList<QVariant>& answer : qAsConst(finished)) {
            const auto thumbnail = answer.first().value<Thumbnail>();
            if (thumbnail.path == doomed) {
                QVERIFY(thumbnail.isFailed());
                QCOMPARE(thumbnail.error, QStringLiteral("No such file"));
            }
            failures += thumbnail.isFailed() ? 1 : 0;
        }
        QCOMPARE(failures, 1);
    }

    // Requesting never does the work on the calling thread: the event loop goes on turning
    // while the pictures are made, and withdrawn requests are never made.
    void eventLoopKeepsTurning()
    {
        Thumbnails service;
        QSignalSpy finished(&service, &Thumbnails::finished);
        QStringList paths;
        for (int i = 0; i < 40; ++i)
            paths << copyOf("h264_1080p.mp4", QStringLiteral("many%1.mp4").arg(i));
        for (const QString& path : qAsConst(paths))
            QVERIFY(service.request(path).isNull());
        QCOMPARE(service.pendingCount(), 40);
        service.cancel(paths.first()); // withdrawn, even if a worker already has it
        // A plain event loop, not QTest::qWaitFor: that one sleeps between its turns, so the
        // turns it makes say how long the work took, not whether the loop was free.
        int turns = 0;
        int pendingAtFirstTurn = -1;
        QEventLoop loop;
        QTimer ticker;
        connect(&ticker, &QTimer::timeout, [&] {
            if (turns++ == 0)
                pendingAtFirstTurn = service.pendingCount();
            if (service.pendingCount() == 0)
                loop.quit();
        });
        ticker.start(0);
        QTimer::singleShot(60000, &loop, &QEventLoop::quit);
        loop.exec();
        QCOMPARE(service.pendingCount(), 0);
        QVERIFY(pendingAtFirstTurn > 0);
        QVERIFY2(turns > 2 * finished.count(), qPrintable(QStringLiteral("%1 turns").arg(turns)));
        QCOMPARE(finished.count(), 39);
        QVERIFY(!service.isPending(paths.first()));
        QVERIFY(service.cached(paths.first()).isNull());
    }

    // The memory cache is bounded: old pictures make room for new ones.
    void memoryIsBounded()
    {
        Thumbnails service;
        const qint64 onePicture = 128 * 72 * 4;
        service.setMemoryLimit(3 * onePicture);
        QSignalSpy idle(&service, &Thumbnails::idle);
        QStringList paths;
        for (int i = 0; i < 8; ++i) {
            paths << copyOf("h264_1080p.mp4", QStringLiteral("bounded%1.mp4").arg(i));
            service.request(paths.last());
            QVERIFY(idle.wait(20000));
        }
        QVERIFY(service.memoryUsed() <= 3 * onePicture);
        QVERIFY(!service.cached(paths.last()).isNull());
        QVERIFY(service.cached(paths.first()).isNull());
    }

    // An audio file is shown by its waveform, in a video-shaped box.
    void audioWaveform()
    {
        const Thumbnail thumbnail = requestFresh(m_media + QStringLiteral("/audio.m4a"));
        QCOMPARE(thumbnail.origin, Origin::Made);
        QCOMPARE(thumbnail.image.size(), QSize(128, 72));
        // The sine's bars stand out from the background.
        const QColor middle = thumbnail.image.pixelColor(64, 36);
        QVERIFY(middle != thumbnail.image.pixelColor(64, 2));
    }

    // A video that starts black is shown by a later, lit frame (with B-frames, so the decoder
    // holds frames back for reordering).
    void skipsBlackOpening()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty())
            QSKIP("ffmpeg is not installed");
        const QString video = m_files->filePath(QStringLiteral("fade-in.mp4"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i", "color=black:size=160x90:rate=25:duration=2",
                      "-f", "lavfi", "-i", "testsrc2=size=160x90:rate=25:duration=3", "-filter_complex",
                      "[0:v][1:v]concat=n=2:v=1", "-c:v", "libx264", "-preset", "veryfast", "-bf", "3", "-g", "10",
                      "-pix_fmt", "yuv420p", video});
        QVERIFY(ffmpeg.waitForFinished(60000));
        QCOMPARE(ffmpeg.exitCode(), 0);
        const Thumbnail thumbnail = requestFresh(video);
        QCOMPARE(thumbnail.origin, Origin::Made);
        QCOMPARE(thumbnail.image.size(), QSize(128, 72));
        QVERIFY2(meanLuma(thumbnail.image) > 40, qPrintable(QString::number(meanLuma(thumbnail.image))));
    }
};

QTEST_GUILESS_MAIN(tst_Thumbnails)
#include "tst_thumbnails.moc"
