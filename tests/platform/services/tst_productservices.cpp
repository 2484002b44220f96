// The product description that brands the editor, and the launch record kept in settings.

#include "TestSandbox.h"

#include <App/LaunchTypeProcessor.h>
#include <App/ProductDescription.h>
#include <Settings/Settings.h>

#include <QtTest>

using namespace Tavrin::App;

class tst_ProductServices : public QObject
{
    Q_OBJECT
private slots:
    void unusableDescriptionsAreRefusedWithAReason_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("not JSON") << QByteArray("{\"product\": ");
        QTest::newRow("not an object") << QByteArray("[1, 2]");
        QTest::newRow("no product name") << QByteArray(R"({"product": {"id": "x"}})");
    }

    void unusableDescriptionsAreRefusedWithAReason()
    {
        QFETCH(QByteArray, json);
        QString error;
        QVERIFY(!ProductDescription::parse(json, &error));
        QVERIFY(!error.isEmpty());
    }

    void launchIsRecordedPerVersion()
    {
        auto launch = [](const char* version) {
            return LaunchTypeProcessor(QStringLiteral("tavrin.klipvane"), QStringLiteral("Klipvane"), QString::fromLatin1(version));
        };
        QCOMPARE(launch("1.0").productLaunchType(), LaunchType::FirstAfterInstall);
        QCOMPARE(launch("1.0").applicationLaunchType(), LaunchType::Regular);
        QCOMPARE(launch("1.1").productLaunchType(), LaunchType::FirstAfterUpdate);
        QCOMPARE(Settings::value(QStringLiteral("Launches/Application/Klipvane")).toString(), QStringLiteral("1.1"));
    }
};

QTEST_GUILESS_MAIN(tst_ProductServices)
#include "tst_productservices.moc"
