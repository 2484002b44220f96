// The real host takes a drop of files from outside: real drag events with a text/uri-list
// as a file manager sends it, delivered to the host's views by --drop-uri-list.

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

#include "HostProcess.h"
#include "TestMedia.h"

class TestKlipvaneDrop : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString writeList(const QByteArray& list)
    {
        const QString path = m_dir.filePath(QStringLiteral("drop-%1.uris").arg(qHash(list)));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(list) != list.size())
            return QString();
        return path;
    }

    static QByteArray uri(const QString& path) { return QUrl::fromLocalFile(path).toEncoded() + "\r\n"; }

private slots:
    void initTestCase()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed; no media to drop");
        QVERIFY(m_dir.isValid());
        QFile notes(m_dir.filePath(QStringLiteral("notes.txt")));
        QVERIFY(notes.open(QIODevice::WriteOnly));
    }

    // Files dragged from a file manager onto the timeline join the bin and are placed, once
    // opened, where they were dropped; what is not a local media file is refused and told.
    void dropOntoTimeline()
    {
        const QByteArray list = "# dropped by a file manager\r\n" + uri(TestMedia::path("h264_tiny.mp4"))
            + uri(TestMedia::path("still.png")) + uri(m_dir.filePath(QStringLiteral("notes.txt")))
            + "http://example.com/clip.mp4\r\n" + uri(TestMedia::path("h264_tiny.mp4"));
        const QString listFile = writeList(list);
        QVERIFY(!listFile.isEmpty());
        QTemporaryDir home;
        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        KvTest::Host host(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                          {QStringLiteral("--drop-uri-list"), listFile});
        QVERIFY2(host.waitForLog("timeline: placed", 60000), host.log().constData());
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("drop: timelineView ")), QStringList{"2 file(s)"});
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("timeline: placed ")), QStringList{"2 clip(s) from 2 file(s)"});
        const QStringList refused = KvTest::logged(host.log(), QStringLiteral("drop: refused "));
        QCOMPARE(refused.size(), 2);
        QVERIFY(refused.first().startsWith(QLatin1String("(unsupported)")));
        QVERIFY(refused.last().startsWith(QLatin1String("(remote)")));
    }

    void dropOntoMediaBin()
    {
        const QString listFile = writeList(uri(TestMedia::path("tone.wav")) + uri(TestMedia::path("still.png")));
        QTemporaryDir home;
        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        KvTest::Host host(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                          {QStringLiteral("--drop-uri-list"), listFile, QStringLiteral("--drop-target"),
                           QStringLiteral("mediaBin")});
        QVERIFY2(host.waitForLog("media batch reported", 60000), host.log().constData());
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("drop: mediaBin ")), QStringList{"2 file(s)"});
        QVERIFY(KvTest::logged(host.log(), QStringLiteral("timeline: placed ")).isEmpty());
    }

    // An effect dragged onto a clip applies to it; an overlay preset dragged onto the
    // timeline becomes a clip and opens in the title editor (dismissed here, as Escape would).
    void effectAndOverlay()
    {
        const QString listFile = writeList(uri(TestMedia::path("still.png")));
        QTemporaryDir home;
        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        KvTest::Host host(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                          {QStringLiteral("--drop-uri-list"), listFile, QStringLiteral("--drop-effect"),
                           QStringLiteral("blur"), QStringLiteral("--drop-overlay"), QStringLiteral("Lower third")});
        QVERIFY2(host.waitForLog("effect blur on", 60000), host.log().constData());
        QVERIFY2(host.waitForLog("dialog dismissed: titleEdit", 20000), host.log().constData());
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("drop: timelineView effect ")),
                 QStringList{"blur on still.png"});
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("drop: timelineView overlay ")),
                 QStringList{"\"Lower third\""});
        QVERIFY(KvTest::logged(host.log(), QStringLiteral("overlay: edited ")).isEmpty());
    }

    // An item of the media bin dragged onto the timeline becomes a clip there.
    void binItemOntoTimeline()
    {
        QTemporaryDir home;
        QProcessEnvironment environment = KvTest::hostEnvironment(home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        KvTest::Host host(environment, KvTest::builtProgram(QStringLiteral("klipvane")),
                          {TestMedia::path("still.png"), QStringLiteral("--drop-bin-item"), QStringLiteral("still.png")});
        QVERIFY2(host.waitForLog("drop: timelineView item", 30000), host.log().constData());
        QCOMPARE(KvTest::logged(host.log(), QStringLiteral("drop: timelineView item ")),
                 QStringList{"\"still.png\", 1 clip(s)"});
        QVERIFY(KvTest::logged(host.log(), QStringLiteral("drop: timelineView ")).filter(QStringLiteral("file(s)")).isEmpty());
    }

    // A drag with nothing the view takes is refused, and nothing is added.
    void refusedDrag()
    {
        const QString listFile = writeList(uri(m_dir.filePath(QStringLiteral("notes.txt"))) + "not a uri\r\n");
        QTemporaryDir home;
        KvTest::Host host(KvTest::hostEnvironment(home), KvTest::builtProgram(QStringLiteral("klipvane")),
                          {QStringLiteral("--drop-uri-list"), listFile, QStringLiteral("--quit-after-ready"),
                           QStringLiteral("1500")});
        QVERIFY(host.waitForFinished(30000));
        host.log();
        QVERIFY2(host.log().contains("drop: timelineView refused the drag"), host.log().constData());
        QVERIFY(KvTest::logged(host.log(), QStringLiteral("drop: timelineView ")).filter(QStringLiteral("file(s)")).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneDrop)
#include "tst_klipvane_drop.moc"
