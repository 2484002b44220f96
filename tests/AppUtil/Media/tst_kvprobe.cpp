// The probe tool as a support engineer runs it: a real process on generated media.
#include "TestSandbox.h"
#include "TestMedia.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_KvProbe : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void batch_data();
    void batch();
    void fileFacts();
    void usage();

private:
    QJsonObject run(const QStringList& arguments, int* exitCode = nullptr);
    QTemporaryDir m_sandbox;
};

void tst_KvProbe::initTestCase()
{
    if (TestMedia::folder().isEmpty())
        QSKIP("ffmpeg is not installed: no test media");
}

QJsonObject tst_KvProbe::run(const QStringList& arguments, int* exitCode)
{
    QProcess probe;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KLIPVANE_CONFIG_DIR"), m_sandbox.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("KLIPVANE_LOG_DIR"), m_sandbox.filePath(QStringLiteral("log")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_sandbox.filePath(QStringLiteral("run")));
    probe.setProcessEnvironment(environment);
    probe.start(qEnvironmentVariable("KLIPVANE_TEST_BIN_DIR") + QStringLiteral("/kvprobe"), arguments);
    if (!probe.waitForFinished(60000)) {
        probe.kill();
        probe.waitForFinished();
        return {};
    }
    if (exitCode)
        *exitCode = probe.exitStatus() == QProcess::NormalExit ? probe.exitCode() : -1;
    return QJsonDocument::fromJson(probe.readAllStandardOutput()).object();
}

void tst_KvProbe::batch_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("dialog");
    QTest::addColumn<bool>("hdrNotice");
    QTest::addColumn<int>("failed");

    QTest::newRow("good files") << QStringList{"h264_tiny.mp4", "audio.m4a", "still.png"} << "none" << false << 0;
    QTest::newRow("bad files") << QStringList{"h264_tiny.mp4", "text.mp4", "empty.mp4", "truncated.mp4", "missing.mp4", "."}
                               << "failed-files" << false << 5;
    QTest::newRow("H.265 first") << QStringList{"h265_aac.mp4", "text.mp4"} << "h265" << false << 1;
    QTest::newRow("HDR notice") << QStringList{"hdr_h264.mp4"} << "none" << true << 0;
    QTest::newRow("HDR10 H.265") << QStringList{"hdr10.mp4"} << "h265" << true << 1;
}

void tst_KvProbe::batch()
{
    QFETCH(QStringList, names);
    QFETCH(QString, dialog);
    QFETCH(bool, hdrNotice);
    QFETCH(int, failed);

    QStringList paths;
    for (const QString& name : names)
        paths << TestMedia::path(name.toUtf8().constData());
    int exitCode = -1;
    const QJsonObject report = run(paths, &exitCode);
    QCOMPARE(exitCode, 0);
    QCOMPARE(report.value(QStringLiteral("files")).toArray().size(), names.size());
    QCOMPARE(report.value(QStringLiteral("dialog")).toString(), dialog);
    QCOMPARE(report.value(QStringLiteral("hdrNotice")).toBool(), hdrNotice);
    const QJsonObject analysis = report.value(QStringLiteral("analysis")).toObject();
    QCOMPARE(analysis.value(QStringLiteral("failedFiles")).toArray().size(), failed);
    QCOMPARE(analysis.value(QStringLiteral("hasHDR")).toBool(), hdrNotice);
    for (const QJsonValue& value : report.value(QStringLiteral("files")).toArray()) {
        const QJsonObject file = value.toObject();
        QVERIFY(file.value(QStringLiteral("opened")).toBool() != file.value(QStringLiteral("failed")).toBool());
        // Every failure carries the text the user would read.
        QCOMPARE(file.value(QStringLiteral("error")).isString(), file.value(QStringLiteral("failed")).toBool());
    }
}

void tst_KvProbe::fileFacts()
{
    const QJsonObject report = run({TestMedia::path("h264_1080p.mp4"), TestMedia::path("h265_aac.mp4"),
                                    TestMedia::path("h265.mp4")});
    const QJsonArray files = report.value(QStringLiteral("files")).toArray();
    QCOMPARE(files.size(), 3);

    const QJsonObject hd = files[0].toObject();
    QVERIFY(hd.value(QStringLiteral("opened")).toBool());
    QVERIFY(!hd.value(QStringLiteral("format")).toString().isEmpty());
    const QJsonObject video = hd.value(QStringLiteral("videoTracks")).toArray().first().toObject();
    QCOMPARE(video.value(QStringLiteral("codec")).toString(), QStringLiteral("h264"));
    QCOMPARE(video.value(QStringLiteral("width")).toInt(), 1920);
    QCOMPARE(video.value(QStringLiteral("height")).toInt(), 1080);

    const QJsonObject phone = files[1].toObject();
    QVERIFY(phone.value(QStringLiteral("opened")).toBool());
    QCOMPARE(phone.value(QStringLiteral("unsupportedCodecs")).toArray(), QJsonArray{QStringLiteral("h265")});
    QCOMPARE(phone.value(QStringLiteral("unsupportedCodecNames")).toArray(), QJsonArray{QStringLiteral("H.265/HEVC")});

    const QJsonObject h265 = files[2].toObject();
    QVERIFY(h265.value(QStringLiteral("failed")).toBool());
    QCOMPARE(h265.value(QStringLiteral("error")).toString(), QStringLiteral("The chosen codec is not supported."));

    const QJsonObject analysis = report.value(QStringLiteral("analysis")).toObject();
    QCOMPARE(analysis.value(QStringLiteral("openedUnsupportedCodecFiles")).toArray(),
             QJsonArray{TestMedia::path("h265_aac.mp4")});
    QCOMPARE(analysis.value(QStringLiteral("failedUnsupportedCodecFiles")).toArray(),
             QJsonArray{TestMedia::path("h265.mp4")});
}

void tst_KvProbe::usage()
{
    int exitCode = -1;
    run({}, &exitCode);
    QCOMPARE(exitCode, 2);
}

QTEST_GUILESS_MAIN(tst_KvProbe)
#include "tst_kvprobe.moc"
