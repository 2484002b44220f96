// Web addresses go to the platform application if it runs, else to the desktop opener.

#include "FakeCustomization.h"
#include "IpcTestSupport.h"

#include <App/ApplicationRegistry.h>
#include <App/IPCLinksDecorator.h>
#include <App/IPCPlatformProtocol.h>

#include <QtTest>

using namespace Tavrin;

namespace {

struct RecordingOpener : App::ILinksOpener
{
    bool openUrl(const QString& url) override
    {
        opened << url;
        return true;
    }
    QStringList opened;
};

struct TaggingGenerator : App::ILinksGenerator
{
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
    }

    void fallbackOrRefusal_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<int>("protocol"); // 0 not started, 1 started with nobody there, 2 gone
        QTest::addColumn<bool>("opened");
        const QString web = QStringLiteral("https://help.klipvane.example/");
        QTest::newRow("web, not started") << web << 0 << true;
        QTest::newRow("web, nobody to hand it to") << web << 1 << true;
        QTest::newRow("web, protocol gone") << web << 2 << true;
        QTest::newRow("local file") << QStringLiteral("file:///etc/passwd") << 1 << false;
        QTest::newRow("script") << QStringLiteral("javascript:alert(1)") << 1 << false;
        QTest::newRow("malformed") << QStringLiteral("http://exa mple.com/%zz") << 2 << false;
    }

    void fallbackOrRefusal()
    {
        QFETCH(QString, url);
        QFETCH(int, protocol);
        QFETCH(bool, opened);
        if (protocol >= 1)
            m_protocol->StartCommunication();
        if (protocol == 2)
            m_protocol.reset();
        QCOMPARE(m_links->openUrl(url), opened);
        QCOMPARE(m_opener->opened, opened ? QStringList{url} : QStringList());
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
    KvTest::IpcEnvironment m_env;
    std::shared_ptr<App::IPCPlatformProtocol> m_protocol;
    std::shared_ptr<RecordingOpener> m_opener;
    std::unique_ptr<App::IPCLinksDecorator> m_links;
};

QTEST_GUILESS_MAIN(tst_IPCLinksDecorator)
#include "tst_ipclinksdecorator.moc"
