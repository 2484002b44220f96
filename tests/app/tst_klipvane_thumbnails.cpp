// The real host makes thumbnails: for a script with --thumbnails-to (one log line per file,
// the desktop's shared cache reused by the next run), and for the media bin, which asks only
// for the files that opened.

#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

namespace {

QString cacheEntry(const QTemporaryDir& home, const QString& flavor, const QString& file)
{
    const QByteArray uri = QUrl::fromLocalFile(file).toEncoded();
    return home.filePath(QStringLiteral("cache/thumbnails/") + flavor + QLatin1Char('/')
                         + QString::fromLatin1(QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex())
                         + QStringLiteral(".png"));
}

} // namespace

class TestKlipvaneThumbnails : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_video;
    QString m_audio;
    QString m_broken;

    // Runs the host to its end; its exit code, and its log in `log`.
    static int runHost(const QTemporaryDir& home, const QStringList& arguments, QByteArray& log)
    {
        return KvTest::runHostToEnd(home, arguments, log);
    }

private slots:
    void initTestCase()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed; no media");
        const QDir media(TestMedia::folder());
        m_video = m_folder.filePath(QStringLiteral("clip.mp4"));
        m_audio = m_folder.filePath(QStringLiteral("song.m4a"));
        m_broken = m_folder.filePath(QStringLiteral("broken.mp4"));
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("h264_1080p.mp4")), m_video));
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("audio.m4a")), m_audio));
        QVERIFY(QFile::copy(media.filePath(QStringLiteral("truncated.mp4")), m_broken));
    }

    void thumbnailsTo()
    {
        QTemporaryDir home;
        const QString out = home.filePath(QStringLiteral("out"));
        const QStringList arguments{"--thumbnails-to", out, "--thumbnail-size", "96", m_video, m_audio, m_broken};
        QByteArray log;
        QCOMPARE(runHost(home, arguments, log), 1); // one file has no picture
        QStringList lines = KvTest::logged(log, QStringLiteral("thumbnail: "));
        lines.sort();
        QCOMPARE(lines.size(), 3);
        QVERIFY2(lines[0].startsWith(m_broken + QStringLiteral(" 0x0 (failed) ")), qPrintable(lines[0]));
        QCOMPARE(lines[1], m_video + QStringLiteral(" 96x54 (made)"));
        QCOMPARE(lines[2], m_audio + QStringLiteral(" 96x54 (made)"));
        QCOMPARE(QImage(out + QStringLiteral("/clip.mp4.png")).size(), QSize(96, 54));
        QCOMPARE(QImage(out + QStringLiteral("/song.m4a.png")).size(), QSize(96, 54));
        QVERIFY(!QFile::exists(out + QStringLiteral("/broken.mp4.png")));
        QCOMPARE(QImage(cacheEntry(home, QStringLiteral("normal"), m_video)).size(), QSize(128, 72));

        // The next run finds them in the shared cache, and the failure marker too.
        QCOMPARE(runHost(home, arguments, log), 1);
        lines = KvTest::logged(log, QStringLiteral("thumbnail: "));
        lines.sort();
        QVERIFY2(lines[0].startsWith(m_broken + QStringLiteral(" 0x0 (failed) No picture could be made before")),
                 qPrintable(lines[0]));
        QCOMPARE(lines[1], m_video + QStringLiteral(" 96x54 (cached)"));
        QCOMPARE(lines[2], m_audio + QStringLiteral(" 96x54 (cached)"));
    }

    // The bin asks for the pictures of the files it shows that opened, and for no other.
    void mediaBinAsksForOpenedFiles()
    {
        QTemporaryDir home;
        const QString shot = home.filePath(QStringLiteral("shot.png"));
        QByteArray log;
        QCOMPARE(runHost(home, {"--screenshot", shot, "--quit-after-ready", "4000", m_video, m_broken}, log), 0);
        QVERIFY2(QFile::exists(cacheEntry(home, QStringLiteral("normal"), m_video)), log.constData());
        QVERIFY(!QDir(home.filePath(QStringLiteral("cache/thumbnails/fail"))).exists());
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneThumbnails)
#include "tst_klipvane_thumbnails.moc"
