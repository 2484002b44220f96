// The product description file, the URL keys' text form, and the four managers built
// from it: generated addresses, opening only web addresses, launch records, locales.
#include "TestSandbox.h"
#include <App/CustomizationManager.h>
#include <App/ILaunchTypeProcessor.h>
#include <App/LaunchTypeProcessor.h>
#include <App/LinksManager.h>
#include <App/LookAndFeelManager.h>
#include <App/ProductDescription.h>
#include <App/ProductServices.h>
#include <App/ServiceRegistry.h>
#include <Settings/Settings.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QUrlQuery>
#include <QtTest>

using namespace Tavrin::App;

// Catches what QDesktopServices would hand to the browser.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl& url) { urls << url; }
};

class tst_ProductServices : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    UrlCatcher m_catcher;

    QString write(const QString& name, const QByteArray& content)
    {
        const QString path = m_dir.filePath(name);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(content);
        return path;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        Settings::setFileName(m_dir.filePath(QStringLiteral("klipvane.ini")));
        QDesktopServices::setUrlHandler(QStringLiteral("https"), &m_catcher, "open");
        QDesktopServices::setUrlHandler(QStringLiteral("http"), &m_catcher, "open");
        QDesktopServices::setUrlHandler(QStringLiteral("file"), &m_catcher, "open");
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("https"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("http"));
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        ServiceRegistry::instance().clear();
    }

    void urlKeysRoundTrip()
    {
        QCOMPARE(Tavrin::urlKeyCount, 86);
        QCOMPARE(Tavrin::toString(Tavrin::URLKeys::INTELMEDIA_ENCODING_MORE_URL_settings),
                 QStringLiteral("INTELMEDIA_ENCODING_MORE_URL_settings"));
        QCOMPARE(int(Tavrin::URLKeys::FAQ_URL), 6);
        QCOMPARE(int(Tavrin::URLKeys::HELP_URL_supported_formats), 51);
        for (int i = 0; i < Tavrin::urlKeyCount; ++i) {
            const auto key = Tavrin::URLKeys(i);
            QCOMPARE(Tavrin::urlKeyFromString(Tavrin::toString(key)), std::optional<Tavrin::URLKeys>(key));
        }
        QVERIFY(!Tavrin::urlKeyFromString(QStringLiteral("faq_url")));
        QVERIFY(!Tavrin::urlKeyFromString(QString()));
        QCOMPARE(Tavrin::toString(Tavrin::URLKeys(Tavrin::urlKeyCount)), QString());
    }

    void shippedDescriptionIsValid()
    {
        QString error;
        const auto description = ProductDescription::load(
            QString::fromLocal8Bit(qgetenv("KLIPVANE_SOURCE_DIR")) + QStringLiteral("/app/product.json"), &error);
        QVERIFY2(description, qPrintable(error));
        QCOMPARE(description->productName, QStringLiteral("Klipvane"));
        for (auto key : {Tavrin::URLKeys::FAQ_URL, Tavrin::URLKeys::HELP_URL_menu, Tavrin::URLKeys::HELP_URL_supported_formats,
                         Tavrin::URLKeys::CONVERT_LINK_h265notification, Tavrin::URLKeys::MS_EXTENSION_VIDEO_h265notification,
                         Tavrin::URLKeys::MS_EXTENSION_IMAGE_h265notification})
            QVERIFY2(description->urls.contains(key), qPrintable(Tavrin::toString(key)));
    }

    void badDescriptions_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("error");
        QTest::newRow("not json") << QByteArray("{ nope") << QStringLiteral("not JSON");
        QTest::newRow("array") << QByteArray("[]") << QStringLiteral("not an object");
        QTest::newRow("no product name") << QByteArray("{\"product\": {}}") << QStringLiteral("product.name");
    }

    void badDescriptions()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, error);
        QString reason;
        QVERIFY(!ProductDescription::parse(content, &reason));
        QVERIFY2(reason.contains(error), qPrintable(reason));
    }

    void unknownKeysAreSkipped()
    {
        const auto description = ProductDescription::parse(
            "{\"product\": {\"name\": \"K\"}, \"links\": {\"urls\": {\"NOPE\": \"https://a\", \"FAQ_URL\": \"https://b\"}}}");
        QVERIFY(description);
        QCOMPARE(description->urls.size(), 1);
        QCOMPARE(description->urls.value(Tavrin::URLKeys::FAQ_URL), QStringLiteral("https://b"));
        QCOMPARE(description->applicationName, QStringLiteral("K")); // defaults to the product name
    }

    void localizedNames()
    {
        const auto d = ProductDescription::parse(
            "{\"product\": {\"name\": \"K\", \"localizedNames\": {\"de\": \"K-de\", \"pt_BR\": \"K-br\"}}}");
        QVERIFY(d);
        QCOMPARE(d->productNameFor(QStringLiteral("de_AT")), QStringLiteral("K-de"));
        QCOMPARE(d->productNameFor(QStringLiteral("pt_BR")), QStringLiteral("K-br"));
        QCOMPARE(d->productNameFor(QStringLiteral("pt_PT")), QStringLiteral("K"));
    }

    void generatedAddresses_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << QStringLiteral("https://h.example/faq")
                               << QStringLiteral("https://h.example/faq?extra=1&utm_source=kv&locale=de_DE");
        QTest::newRow("existing parameter kept")
            << QStringLiteral("https://h.example/faq?locale=fr_FR")
            << QStringLiteral("https://h.example/faq?locale=fr_FR&extra=1&utm_source=kv");
        QTest::newRow("not a web address") << QStringLiteral("time.example") << QStringLiteral("time.example");
        QTest::newRow("mail") << QStringLiteral("mailto:a@b.example") << QStringLiteral("mailto:a@b.example");
    }

    void generatedAddresses()
    {
        QFETCH(QString, base);
        QFETCH(QString, expected);
        ProductDescription description = ProductDescription::fallback();
        description.urlParameters.insert(QStringLiteral("utm_source"), QStringLiteral("kv"));
        LinksGenerator generator(description, [] { return QStringLiteral("de_DE"); });
        QCOMPARE(generator.generateUrl(base, {{QStringLiteral("extra"), QStringLiteral("1")}}), expected);
    }

    void openOnlyWebAddresses_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("opened");
        QTest::newRow("https") << QStringLiteral("https://h.example/a") << true;
        QTest::newRow("http") << QStringLiteral("http://h.example/a") << true;
        QTest::newRow("file") << QStringLiteral("file:///etc/passwd") << false;
        QTest::newRow("script") << QStringLiteral("javascript:alert(1)") << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("no host") << QStringLiteral("https://") << false;
    }

    void openOnlyWebAddresses()
    {
        QFETCH(QString, url);
        QFETCH(bool, opened);
        m_catcher.urls.clear();
        DesktopLinksOpener opener;
        QCOMPARE(opener.openUrl(url), opened);
        QCOMPARE(m_catcher.urls.size(), opened ? 1 : 0);
    }

    void linksManagerOpensKeysAndCanBeRerouted()
    {
        ProductDescription description = ProductDescription::fallback();
        description.urls.insert(Tavrin::URLKeys::HELP_URL_menu, QStringLiteral("https://help.example/"));
        auto generator = std::make_shared<LinksGenerator>(description, [] { return QStringLiteral("en_US"); });
        LinksManager links(generator, std::make_shared<DesktopLinksOpener>());
        QCOMPARE(links.url(Tavrin::URLKeys::HELP_URL_menu), QStringLiteral("https://help.example/?locale=en_US"));
        QCOMPARE(links.url(Tavrin::URLKeys::FAQ_URL), QString());
        m_catcher.urls.clear();
        QVERIFY(links.openUrl(Tavrin::URLKeys::HELP_URL_menu));
        QVERIFY(!links.openUrl(Tavrin::URLKeys::FAQ_URL)); // no address: logged, nothing opened
        QCOMPARE(m_catcher.urls, QList<QUrl>{QUrl(QStringLiteral("https://help.example/?locale=en_US"))});

        struct Recorder : ILinksOpener
        {
            QStringList seen;
            bool openUrl(const QString& url) override
            {
                seen << url;
                return true;
            }
        };
        auto recorder = std::make_shared<Recorder>();
        links.setLinksOpener(recorder);
        QVERIFY(links.openUrl(QStringLiteral("https://x.example")));
        QCOMPARE(recorder->seen, QStringList{QStringLiteral("https://x.example")});
        links.setLinksOpener(nullptr);
        QVERIFY(links.openUrl(QStringLiteral("https://x.example")));
        QCOMPARE(recorder->seen.size(), 1);
    }

    void launchTypes()
    {
        Settings::remove(QStringLiteral("Launches"));
        {
            LaunchTypeProcessor first(QStringLiteral("p"), QStringLiteral("Editor"), QStringLiteral("1.0"));
            QVERIFY(first.isFirstProductLaunch());
            QVERIFY(first.isFirstApplicationLaunch());
            QCOMPARE(first.applicationLaunchType(), LaunchType::FirstAfterInstall);
        }
        {
            LaunchTypeProcessor again(QStringLiteral("p"), QStringLiteral("Editor"), QStringLiteral("1.0"));
            QVERIFY(!again.isFirstProductLaunch());
            QCOMPARE(again.productLaunchType(), LaunchType::Regular);
        }
        {
            // Another application of the same product: the product has run, this one has not.
            LaunchTypeProcessor companion(QStringLiteral("p"), QStringLiteral("Capture"), QStringLiteral("1.0"));
            QVERIFY(!companion.isFirstProductLaunch());
            QVERIFY(companion.isFirstApplicationLaunch());
        }
        {
            LaunchTypeProcessor updated(QStringLiteral("p"), QStringLiteral("Editor"), QStringLiteral("1.1"));
            QCOMPARE(updated.applicationLaunchType(), LaunchType::FirstAfterUpdate);
            QVERIFY(!updated.isFirstApplicationLaunch());
        }
    }

    void availableLocalesComeFromTheShippedCatalogues()
    {
        QTemporaryDir translations;
        for (const char* name : {"klipvane_de_DE.qm", "klipvane_fr_FR.qm", "klipvane_bogus.qm", "other_it_IT.qm"}) {
            QFile file(translations.filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        LookAndFeelManager manager(QStringLiteral("de_DE"), translations.path());
        QCOMPARE(manager.currentLocale(), std::string("de_DE"));
        QCOMPARE(manager.availableLocales(), (std::vector<std::string>{"en_US", "de_DE", "fr_FR"}));
        QCOMPARE(LookAndFeelManager(QString(), QString()).currentLocale(), std::string("en_US"));
    }

    void chooseLocale_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("locale");
        QTest::newRow("separate") << QStringList{QStringLiteral("kv"), QStringLiteral("--locale"), QStringLiteral("de_DE")}
                                  << QStringLiteral("de_DE");
        QTest::newRow("joined") << QStringList{QStringLiteral("kv"), QStringLiteral("--locale=de")}
                                << QStringLiteral("de_DE");
        QTest::newRow("none") << QStringList{QStringLiteral("kv")} << QLocale::system().name();
    }

    void chooseLocale()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, locale);
        QCOMPARE(LookAndFeelManager::chooseLocale(arguments), locale);
    }

    void registerFromFile()
    {
        const QString path = write(QStringLiteral("product.json"),
                                   "{\"organization\": {\"presentableName\": \"Org\", \"domain\": \"org.example\"},"
                                   " \"product\": {\"id\": \"org.kv\", \"name\": \"KV\", \"version\": \"2\","
                                   "   \"localizedNames\": {\"de\": \"KV-de\"}},"
                                   " \"application\": {\"name\": \"Editor\", \"singleInstanceKey\": \"org.kv.editor\"},"
                                   " \"links\": {\"urls\": {\"FAQ_URL\": \"https://org.example/faq\"}}}");
        ProductServicesOptions options;
        options.locale = QStringLiteral("de_DE");
        QVERIFY(registerProductServices(path, options));
        auto customization = ServiceRegistry::instance().get<ICustomizationManager>();
        QVERIFY(customization);
        QCOMPARE(customization->productNameLocalized(), std::string("KV-de"));
        QCOMPARE(customization->singleInstanceKey(), std::string("org.kv.editor"));
        QCOMPARE(customization->productId(), std::string("org.kv"));
        QCOMPARE(ServiceRegistry::instance().get<ILinksManager>()->url(Tavrin::URLKeys::FAQ_URL),
                 QStringLiteral("https://org.example/faq?locale=de_DE"));
        QVERIFY(ServiceRegistry::instance().get<ILaunchTypeProcessor>());
        QCOMPARE(boost::any_cast<std::string>(ServiceRegistry::instance().value("startupLocale")), std::string("de_DE"));

        customization->apply(qApp);
        QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("Editor"));
        QCOMPARE(QCoreApplication::organizationDomain(), QStringLiteral("org.example"));
        unregisterProductServices();
        QVERIFY(!ServiceRegistry::instance().get<ICustomizationManager>());
    }

    void registerFromABadFileFallsBack()
    {
        QString error;
        QVERIFY(!registerProductServices(m_dir.filePath(QStringLiteral("missing.json")), {}, &error));
        QVERIFY(error.contains(QStringLiteral("missing.json")));
        auto customization = ServiceRegistry::instance().get<ICustomizationManager>();
        QVERIFY(customization);
        QCOMPARE(customization->productName(), std::string("Klipvane"));
        QCOMPARE(ServiceRegistry::instance().get<ILinksManager>()->url(Tavrin::URLKeys::FAQ_URL), QString());
        unregisterProductServices();
    }
};

QTEST_MAIN(tst_ProductServices)
#include "tst_ProductServices.moc"
