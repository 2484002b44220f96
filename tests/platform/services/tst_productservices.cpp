// The product description that brands the editor, and the launch record kept in settings.

#include "TestSandbox.h"

#include <App/LaunchTypeProcessor.h>
#include <App/ProductDescription.h>
#include <App/ProductKey.h>
#include <Settings/Settings.h>

#include <QTemporaryDir>
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

    // A second launch reads the key alone; it must find the key the editor's services hold,
    // or the two would not recognise each other.
    void keyAloneIsTheKeyOfTheWholeDescription_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("key");
        QTest::newRow("named") << QByteArray(R"({"product": {"name": "K"}, "application": {"singleInstanceKey": "a.B"}})")
                               << QStringLiteral("a.B");
        QTest::newRow("from organisation and application")
            << QByteArray(R"({"organization": {"id": "Org"}, "product": {"name": "K"}, "application": {"name": "Ed"}})")
            << QStringLiteral("org.ed");
        QTest::newRow("application named after the product")
            << QByteArray(R"({"organization": {"id": "org"}, "product": {"name": "Kv"}})") << QStringLiteral("org.kv");
        QTest::newRow("no product name") << QByteArray(R"({"application": {"singleInstanceKey": "a.b"}})")
                                         << QStringLiteral("tavrin.klipvane");
        QTest::newRow("not JSON") << QByteArray("{\"product\": ") << QStringLiteral("tavrin.klipvane");
        QTest::newRow("no file") << QByteArray() << QStringLiteral("tavrin.klipvane");
    }

    void keyAloneIsTheKeyOfTheWholeDescription()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, key);
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("product.json"));
        if (!json.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(json);
        }
        QCOMPARE(readSingleInstanceKey(path), key);
        const auto description = ProductDescription::load(path);
        QCOMPARE(description ? description->singleInstanceKey : ProductDescription::fallback().singleInstanceKey, key);
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
