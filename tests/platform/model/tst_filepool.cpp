#include "TestSandbox.h"
#include <Media/FilePool.h>
#include <Media/MediaReader_p.h>

#include "TestMedia.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <QRandomGenerator>
#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

using Media::File;
using Media::FilePool;

namespace {

// Applies `edits` to `bytes`, separated by ";": "W64>W0" replaces the first W64 by W0 (text
// headers), "mvhd+20=7fffffff" writes those bytes 20 bytes after the first "mvhd" (a box of
// an MP4 file), "cut 10" keeps the first tenth.
bool damage(QByteArray& bytes, const QString& edits)
{
    for (const QString& edit : edits.split(';')) {
        const auto patch = QRegularExpression("^(.{4})\\+(\\d+)=([0-9a-f]+)$").match(edit);
        if (edit.startsWith("cut ")) {
            bytes.truncate(bytes.size() / edit.mid(4).toInt());
        } else if (patch.hasMatch()) {
            const int at = bytes.indexOf(patch.captured(1).toLatin1());
            const QByteArray value = QByteArray::fromHex(patch.captured(3).toLatin1());
            if (at < 0)
                return false;
            bytes.replace(at + patch.captured(2).toInt(), value.size(), value);
        } else {
            const int at = bytes.indexOf(edit.section('>', 0, 0).toLatin1());
            if (at < 0)
                return false;
            bytes.replace(at, edit.section('>', 0, 0).size(), edit.section('>', 1).toLatin1());
        }
    }
    return true;
}

// What an opened file must look like, whatever its bytes were: a usable stream with sane
// parameters, and a duration its size can hold unless it is a picture.
QString implausibility(const File* file)
{
    bool usable = false;
    for (const Media::VideoTrack& video : file->videoTracks()) {
        if (video.isCoverArt())
            continue;
        if (!Media::Reader::plausibleFrameSize(video.frameSize))
            return QString("frame %1x%2").arg(video.frameSize.width()).arg(video.frameSize.height());
        usable = true;
    }
    for (const Media::AudioTrack& audio : file->audioTracks()) {
        if (audio.sampleRate <= 0 || audio.channels <= 0)
            return QString("audio %1 Hz, %2 channels").arg(audio.sampleRate).arg(audio.channels);
        usable = true;
    }
    if (!usable)
        return "no stream";
    const qint64 seconds = file->fileDuration().microseconds() / 1000000;
    if (file->fileDuration().microseconds() < 0 || seconds > file->fileSize() / Media::Reader::minBytesPerSecond)
        return QString("%1 s in %2 bytes").arg(seconds).arg(file->fileSize());
    return QString();
}

} // namespace

class tst_FilePool : public QObject
{
    Q_OBJECT

    QString m_media;

private slots:
    void initTestCase()
    {
        m_media = TestMedia::folder();
        if (m_media.isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
        // FFmpeg stays out of the process until the first file is opened.
        QVERIFY(!Media::isMediaReaderLoaded());
    }

    // Opened off the GUI thread; the outcome is reported once, on the GUI thread.
    void outcome_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("unsupported");
        QTest::addColumn<int>("errorCode"); // 0: opened
        QTest::addColumn<bool>("hdr");
        const QStringList none;
        const QStringList h265{QStringLiteral("h265")};
        QTest::newRow("H.264") << "h264_1080p.mp4" << none << 0 << false;
        QTest::newRow("H.265 only") << "h265.mp4" << h265 << 11 << false;
        QTest::newRow("H.265 with audio") << "h265_aac.mp4" << h265 << 0 << false;
        // A failed file shows nothing, so nothing of it is converted from HDR.
        QTest::newRow("HDR10 H.265") << "hdr10.mp4" << h265 << 11 << false;
        QTest::newRow("HLG H.264") << "hdr_h264.mp4" << none << 0 << true;
        QTest::newRow("text as mp4") << "text.mp4" << none << 36 << false;
        QTest::newRow("missing") << "no-such-file.mp4" << none << 36 << false;
        QTest::newRow("folder") << "." << none << 36 << false;
    }

    void outcome()
    {
        QFETCH(QString, name);
        QFETCH(int, errorCode);
        FilePool pool;
        QSignalSpy idle(&pool, &FilePool::idle);
        QSignalSpy ended(&pool, errorCode ? &FilePool::fileFailed : &FilePool::fileOpened);
        const File* file = pool.addFile(m_media + QLatin1Char('/') + name);
        QVERIFY(file->isOpening());
        QVERIFY(idle.wait(20000));
        QVERIFY(Media::isMediaReaderLoaded());
        QCOMPARE(ended.count(), 1);
        QCOMPARE(file->isOpened(), errorCode == 0);
        QTEST(file->unsupportedCodecs(), "unsupported");
        QTEST(file->hasHDRStreams(), "hdr");
        QCOMPARE(file->errors().empty() ? 0 : file->errors().front().code(), errorCode);
    }

    // Damaged copies of generated files: a stream whose parameters no real stream has is not
    // usable, and a duration the header gets wrong is established from the streams.
    void damagedFiles_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("edits");
        QTest::addColumn<int>("errorCode");  // 0: opened
        QTest::addColumn<int>("durationMs"); // of an opened file
        QTest::newRow("frame width 0") << "clip.y4m" << "W64>W0" << 36 << 0;
        QTest::newRow("frame width 99999") << "clip.y4m" << "W64>W99999" << 36 << 0;
        QTest::newRow("12800 frames per second") << "clip.y4m" << "F25:1>F12800:1" << 36 << 0;
        QTest::newRow("intact raw video") << "clip.y4m" << "W64>W64" << 0 << 200;
        QTest::newRow("no channels") << "tone.wav" << "fmt +10=0000" << 36 << 0;
        QTest::newRow("no sample rate") << "tone.wav" << "fmt +12=00000000" << 36 << 0;
        QTest::newRow("24 days in a few kilobytes") << "h264_tiny.mp4" << "mvhd+20=7fffffff" << 0 << 200;
        QTest::newRow("every duration 24 days") << "h264_tiny.mp4" << "mvhd+20=7fffffff;mdhd+20=7fffffff" << 0 << 200;
        QTest::newRow("every duration 0") << "h264_tiny.mp4" << "mvhd+20=00000000;mdhd+20=00000000" << 0 << 200;
        QTest::newRow("a tenth of the file") << "h264_1080p.mp4" << "cut 10" << 36 << 0;
    }

    void damagedFiles()
    {
        QFETCH(QString, source);
        QFETCH(QString, edits);
        QFETCH(int, errorCode);
        QFETCH(int, durationMs);
        QTemporaryDir dir;
        QFile original(m_media + '/' + source);
        QVERIFY(original.open(QIODevice::ReadOnly));
        QByteArray bytes = original.readAll();
        QVERIFY(damage(bytes, edits));
        QFile copy(dir.filePath(source));
        QVERIFY(copy.open(QIODevice::WriteOnly) && copy.write(bytes) == bytes.size());
        copy.close();

        FilePool pool;
        QSignalSpy idle(&pool, &FilePool::idle);
        const File* file = pool.addFile(copy.fileName());
        QVERIFY(idle.wait(20000));
        QCOMPARE(file->errors().empty() ? 0 : file->errors().front().code(), errorCode);
        QCOMPARE(file->isOpened(), errorCode == 0);
        if (file->isOpened()) {
            QCOMPARE(implausibility(file), QString());
            QVERIFY2(qAbs(file->fileDuration().milliseconds() - durationMs) <= 40,
                     qPrintable(QString::number(file->fileDuration().milliseconds())));
        }
    }

    // Randomly damaged copies (a fixed seed, so a failure repeats): each ends, and each one
    // reported opened has sane facts.
    void mutatedFilesOpenOnlyWhenSane()
    {
        QTemporaryDir dir;
        QRandomGenerator random(9);
        QStringList paths;
        for (const char* source : {"h264_tiny.mp4", "audio.m4a", "clip.y4m", "tone.wav", "hdr_h264.mp4"}) {
            QFile original(m_media + '/' + source);
            QVERIFY(original.open(QIODevice::ReadOnly));
            const QByteArray good = original.readAll();
            for (int i = 0; i < 40; ++i) {
                QByteArray bytes = good;
                const int changes = 1 + int(random.bounded(8));
                for (int c = 0; c < changes; ++c)
                    bytes[int(random.bounded(qMin(bytes.size(), 4096)))] = char(random.bounded(256));
                paths << dir.filePath(QString("%1_%2").arg(i).arg(source));
                QFile copy(paths.last());
                QVERIFY(copy.open(QIODevice::WriteOnly) && copy.write(bytes) == bytes.size());
            }
        }
        FilePool pool;
        const QList<const File*> files = pool.addFiles(paths);
        QVERIFY(QTest::qWaitFor([&] { return pool.openingCount() == 0; }, 60000));
        int opened = 0;
        for (const File* file : files) {
            if (!file->isOpened())
                continue;
            ++opened;
            QVERIFY2(implausibility(file).isEmpty(),
                     qPrintable(file->filePath() + ": " + implausibility(file)));
        }
        QVERIFY(opened > 0); // most changes hit the picture data, not the headers
    }

    // The path itself is the problem: the user is told that, not that the file is missing.
    void pathProblems_data()
    {
        QTest::addColumn<QByteArray>("name"); // in the folder, as bytes
        QTest::addColumn<int>("problem");
        QTest::newRow("name not UTF-8") << QByteArray("clip\xff\xfe.mp4") << int(File::PathProblem::UnreadableName);
        QTest::newRow("symbolic link loop") << QByteArray("loop.mp4") << int(File::PathProblem::SymlinkLoop);
        QTest::newRow("missing") << QByteArray("gone.mp4") << int(File::PathProblem::None);
    }

    void pathProblems()
    {
        QFETCH(QByteArray, name);
        QTemporaryDir dir;
        const QByteArray folder = QFile::encodeName(dir.path()) + '/';
        if (name == "loop.mp4") {
            QCOMPARE(::symlink((folder + "other.mp4").constData(), (folder + name).constData()), 0);
            QCOMPARE(::symlink((folder + name).constData(), (folder + "other.mp4").constData()), 0);
        } else if (name != "gone.mp4") {
            QVERIFY(QFile::copy(m_media + "/h264_tiny.mp4", dir.filePath("good.mp4")));
            QCOMPARE(::rename((folder + "good.mp4").constData(), (folder + name).constData()), 0);
        }
        // Read back from the folder as the editor's folder expansion reads it.
        const QString path = QFile::decodeName(folder + name);
        const auto removeByBytes = qScopeGuard([&] { ::unlink((folder + name).constData()); });
        FilePool pool;
        QSignalSpy failed(&pool, &FilePool::fileFailed);
        const File* file = pool.addFile(path);
        QVERIFY(failed.wait(20000));
        QTEST(int(file->pathProblem()), "problem");
        QCOMPARE(file->errors().front().code(), 36);
    }

    // After the media threads are drained (as when the application object goes), opening
    // starts again on demand.
    void drainedWorkersStartAgain()
    {
        {
            FilePool dying;
            for (int i = 0; i < 50; ++i)
                dying.addFile(m_media + QStringLiteral("/h264_1080p.mp4"));
        }
        FilePool::drainWorkers();
        FilePool pool;
        QSignalSpy opened(&pool, &FilePool::fileOpened);
        pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
        QVERIFY(opened.wait(20000));
    }

    void removedWhileOpeningDropsResult()
    {
        FilePool pool;
        QSignalSpy idle(&pool, &FilePool::idle);
        QSignalSpy opened(&pool, &FilePool::fileOpened);
        const File* file = pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
        pool.removeFile(file);
        QCOMPARE(idle.count(), 1);
        // Give the worker time to deliver, then make sure nothing arrived.
        const File* other = pool.addFile(m_media + QStringLiteral("/h264_tiny.mp4"));
        QVERIFY(idle.wait(20000));
        QCOMPARE(opened.count(), 1);
        QCOMPARE(opened.at(0).at(0).value<const File*>(), other);
    }

    void vanishingFilesAndFifosEnd()
    {
        // Files deleted while the pool opens them, and a FIFO that would never deliver an end
        // of file: each ends, opened or failed, and none holds a worker.
        QTemporaryDir dir;
        QStringList paths{dir.filePath(QStringLiteral("pipe.mp4"))};
        QVERIFY(::mkfifo(QFile::encodeName(paths.first()).constData(), 0600) == 0);
        for (int i = 0; i < 40; ++i) {
            paths << dir.filePath(QStringLiteral("clip%1.mp4").arg(i));
            QVERIFY(QFile::copy(m_media + QStringLiteral("/h264_1080p.mp4"), paths.last()));
        }
        FilePool pool;
        QSignalSpy opened(&pool, &FilePool::fileOpened);
        QSignalSpy failed(&pool, &FilePool::fileFailed);
        const QList<const File*> files = pool.addFiles(paths);
        for (const QString& path : paths.mid(1))
            QFile::remove(path);
        QVERIFY(QTest::qWaitFor([&] { return pool.openingCount() == 0; }, 20000));
        QCOMPARE(opened.count() + failed.count(), paths.size());
        QVERIFY(files.first()->isFailed());
        for (const File* file : files)
            QVERIFY(file->isOpened() || (file->isFailed() && file->errors().front().code() == 36));
    }
};

QTEST_GUILESS_MAIN(tst_FilePool)
#include "tst_filepool.moc"
