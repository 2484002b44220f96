#include "TestSandbox.h"
#include <Media/FilePool.h>
#include <Media/MediaReader_p.h>

#include "TestMedia.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using Media::File;
using Media::FilePool;

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
        QTest::newRow("HDR10 H.265") << "hdr10.mp4" << h265 << 11 << true;
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
