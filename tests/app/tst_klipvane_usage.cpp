// The real host with its tagged controls clicked by --statistics-click: what it logs and
// records with and without the user's consent.

#include <QtTest>

#include <algorithm>

#include "HostProcess.h"

class TestKlipvaneUsage : public QObject
{
    Q_OBJECT

private slots:
    void consentDecidesWhatIsRecorded_data()
    {
        QTest::addColumn<QStringList>("level");
        QTest::addColumn<QStringList>("expected"); // "statistics: " lines after the level line
        QTest::newRow("no consent") << QStringList() << QStringList();
        QTest::newRow("off") << QStringList{"--usage-level", "off"} << QStringList();
        QTest::newRow("basic") << QStringList{"--usage-level", "basic"}
                               << QStringList{"zoomIn timelineToolBar", "showCollectionPage pagesToolBar", "showToolsPage viewMenu"};
    }
    void consentDecidesWhatIsRecorded()
    {
        QFETCH(QStringList, level);
        QFETCH(QStringList, expected);
        QTemporaryDir home;
        const QString log = home.filePath(QStringLiteral("usage.jsonl"));
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   level + QStringList{"--usage-log", log, "--statistics-click", "zoomIn", "--statistics-click",
                                       "showCollectionPage", "--statistics-click", "showToolsPage@viewMenu",
                                       "--statistics-click", "noSuchEvent", "--quit-after-ready", "1500"});
        QVERIFY(host.waitForFinished(60000));
        QCOMPARE(host.exitCode(), 0);
        const QByteArray output = host.readAllStandardError();
        QStringList lines = KvTest::logged(output, QStringLiteral("statistics: "));
        QVERIFY2(lines.size() >= 1 && lines.takeFirst().startsWith(QLatin1String("usage level ")), output.constData());
        lines.erase(std::remove_if(lines.begin(), lines.end(), [](const QString& l) { return l.startsWith(QLatin1String("usage level ")); }),
                    lines.end());
        lines.removeAll(QStringLiteral("no control tagged noSuchEvent"));
        QCOMPARE(lines, expected);
        QVERIFY(output.contains("statistics: no control tagged noSuchEvent"));
        QFile file(log);
        if (expected.isEmpty()) {
            QVERIFY(!file.exists());
            return;
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        QCOMPARE(written.count('\n'), expected.size());
        QVERIFY(written.contains("\"event\":\"zoomIn\""));
        QVERIFY(!written.contains("\"params\"")); // basic: no details
    }

    // The log's folder is a file: one line says so, every click is still recorded (in memory).
    void unwritableLogIsReportedOnce()
    {
        QTemporaryDir home;
        QFile blocker(home.filePath(QStringLiteral("notAFolder")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   {"--usage-level", "basic", "--usage-log", blocker.fileName() + QStringLiteral("/usage.jsonl"),
                    "--statistics-click", "zoomIn", "--statistics-click", "zoomOut", "--statistics-click", "zoomIn",
                    "--quit-after-ready", "1500"});
        QVERIFY(host.waitForFinished(60000));
        QCOMPARE(host.exitCode(), 0);
        const QByteArray output = host.readAllStandardError();
        QCOMPARE(output.count("cannot write the usage log"), 1);
        QCOMPARE(KvTest::logged(output, QStringLiteral("statistics: zoom")).size(), 3);
    }

    void unknownLevelIsRefused()
    {
        QTemporaryDir home;
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(home));
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), {"--usage-level", "everything"});
        QVERIFY(host.waitForFinished(30000));
        QCOMPARE(host.exitCode(), 2);
        QVERIFY(host.readAllStandardError().contains("unknown usage level \"everything\""));
    }
};

QTEST_MAIN(TestKlipvaneUsage)
#include "tst_klipvane_usage.moc"
