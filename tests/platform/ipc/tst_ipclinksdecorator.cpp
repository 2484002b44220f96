// Web addresses opened through the platform application while it runs, through the
// desktop opener otherwise, and never anything that is not a web address.

#include "FakeCustomization.h"
#include "IpcTestSupport.h"

#include <App/ApplicationRegistry.h>
#include <App/IPCLinksDecorator.h>
#include <App/IPCPlatformProtocol.h>

#include <QtTest>

using namespace Tavrin;

namespace {

class RecordingOpener : public App::ILinksOpener
{
public:
    bool openUrl(const QString& url) override
    {
        opened << url;
        return true;
    }
    QStringList opened;
};

class TaggingGenerator : public App::ILinksGenerator
{
public:
    QString url(URLKeys) const override { return QString(); }
    QString generateUrl(const QString& base, const App::UrlParameters&) const override
    {
        return base + QStringLiteral("?locale=de_DE");
    }
};

} // namespace

class tst_IPCLinksDecorator : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_env = std::make_unique<KvTest::IpcEnvironment>();
        FakeCustomization::install();
        m_protocol = std::make_shared<App::IPCPlatformProtocol>(
            std::make_shared<FakeCustomization>(), "Klipvane", UniqueIPC::ApiVersion{1, 0, 0, 0, std::string()},
            QStringLiteral("klipvane"), App::CreateApplicationRegistryProvider());
        m_opener = std::make_shared<RecordingOpener>();
        m_links = std::make_unique<App::IPCLinksDecorator>(m_opener, std::make_shared<TaggingGenerator>(), m_protocol);
    }

    void cleanup()
    {
        m_links.reset();
        m_protocol.reset();
        m_env.reset();
    }

    void refusesWhatIsNotAWebAddress_data()
    {
        QTest::addColumn<QString>("url");
        QTest::newRow("empty") << QString();
        QTest::newRow("local file") << QStringLiteral("file:///etc/passwd");
        QTest::newRow("script") << QStringLiteral("javascript:alert(1)");
        QTest::newRow("no scheme") << QStringLiteral("www.klipvane.example");
        QTest::newRow("malformed") << QStringLiteral("http://exa mple.com/%zz");
    }

    void refusesWhatIsNotAWebAddress()
    {
        QFETCH(QString, url);
        QVERIFY(!m_links->openUrl(url));
        QVERIFY(m_opener->opened.isEmpty());
    }

    void desktopOpenerWithoutThePlatformApplication()
    {
        const QString url = QStringLiteral("https://help.klipvane.example/");
        QVERIFY(m_links->openUrl(url)); // communication not started yet
        m_protocol->StartCommunication();
        QVERIFY(m_links->openUrl(url)); // started, but nobody to hand it to
        QCOMPARE(m_opener->opened, (QStringList{url, url}));

        // Once the protocol is gone, only the desktop opener is left.
        m_protocol.reset();
        QVERIFY(m_links->openUrl(url));
        QCOMPARE(m_opener->opened.size(), 3);
    }

    void platformApplicationOpensItWithTheProductParameters()
    {
        m_protocol->StartCommunication();
        KvTest::Child platform;
        platform.start(KvTest::binDir() + QStringLiteral("/kvcompanion"), {QStringLiteral("--app-id"), QStringLiteral("orvelplatform")});
        QVERIFY(QTest::qWaitFor([&] { return m_protocol->IsApplicationConnected("orvelplatform"); }, 10000));

        QVERIFY(m_links->openUrl(QStringLiteral("https://help.klipvane.example/")));
        QVERIFY(platform.waitForOutput(QStringLiteral("open link https://help.klipvane.example/?locale=de_DE")));
        QVERIFY(m_opener->opened.isEmpty());
    }

private:
    std::unique_ptr<KvTest::IpcEnvironment> m_env;
    std::shared_ptr<App::IPCPlatformProtocol> m_protocol;
    std::shared_ptr<RecordingOpener> m_opener;
    std::unique_ptr<App::IPCLinksDecorator> m_links;
};

QTEST_GUILESS_MAIN(tst_IPCLinksDecorator)
#include "tst_ipclinksdecorator.moc"
