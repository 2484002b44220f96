// The Customization functions over managers registered by the test: the fixed rules
// (full names, bold text, support link, layout order) and the forwarding to managers.
#include "TestSandbox.h"
#include "FakeCustomization.h"
#include <Customization.h>

#include <App/ICustomizationManager.h>
#include <App/ILinksManager.h>
#include <App/ILookAndFeelManager.h>
#include <App/ServiceRegistry.h>

#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>
#include <QtTest>

namespace {
using namespace Tavrin::App;

class FakeLinks : public ILinksManager
{
public:
    QStringList opened;
    QString url(Tavrin::URLKeys key) const override
    {
        return QStringLiteral("https://k.example/") + Tavrin::toString(key);
    }
    QString generateUrl(const QString& base, const UrlParameters& parameters) const override
    {
        return base + QStringLiteral("?n=") + QString::number(parameters.size());
    }
    bool openUrl(const QString& url) override
    {
        opened << url;
        return true;
    }
    bool openUrl(Tavrin::URLKeys key) override { return openUrl(url(key)); }
    void setLinksOpener(std::shared_ptr<ILinksOpener>) override {}
};

class FakeLookAndFeel : public ILookAndFeelManager
{
public:
    std::string locale = "en_US";
    std::string currentLocale() const override { return locale; }
    std::vector<std::string> availableLocales() const override { return {"en_US", "de_DE"}; }
};
} // namespace

class tst_Customization : public QObject
{
    Q_OBJECT

    std::shared_ptr<FakeCustomization> m_customization;
    std::shared_ptr<FakeLinks> m_links;
    std::shared_ptr<FakeLookAndFeel> m_lookAndFeel;

private slots:
    void init()
    {
        m_customization = std::make_shared<FakeCustomization>();
        m_customization->localizedName = "Klipvane Videoeditor";
        m_links = std::make_shared<FakeLinks>();
        m_lookAndFeel = std::make_shared<FakeLookAndFeel>();
        ServiceRegistry::instance().set<ICustomizationManager>(m_customization);
        ServiceRegistry::instance().set<ILinksManager>(m_links);
        ServiceRegistry::instance().set<ILookAndFeelManager>(m_lookAndFeel);
        Customization::init(m_lookAndFeel);
    }

    void cleanup()
    {
        ServiceRegistry::instance().clear();
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void fullNames()
    {
        QCOMPARE(Customization::productFullName(), QStringLiteral("Tavrin Klipvane"));
        QCOMPARE(Customization::productFullNameLocalized(), QStringLiteral("Tavrin Klipvane Videoeditor"));
        m_customization->organization.clear();
        QCOMPARE(Customization::productFullName(), QStringLiteral(" Klipvane")); // the blank stays
    }

    void namesAreUtf8()
    {
        m_customization->organization = "Tavrin Bürosoft";
        QCOMPARE(Customization::organizationPresentableName(), QStringLiteral("Tavrin Bürosoft"));
    }

    void boldText_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<bool>("bold");
        QTest::newRow("en_US") << QStringLiteral("en_US") << true;
        QTest::newRow("ko_KR") << QStringLiteral("ko_KR") << true;
        QTest::newRow("de_DE") << QStringLiteral("de_DE") << true;
        QTest::newRow("ja_JP") << QStringLiteral("ja_JP") << false;
        QTest::newRow("zh_CN") << QStringLiteral("zh_CN") << false;
        QTest::newRow("zh_TW") << QStringLiteral("zh_TW") << false;
        QTest::newRow("zh_tw is not zh_TW") << QStringLiteral("zh_tw") << true;
    }

    void boldText()
    {
        QFETCH(QString, locale);
        QFETCH(bool, bold);
        m_lookAndFeel->locale = locale.toStdString();
        const QString text = QStringLiteral("Export");
        QCOMPARE(Customization::localeDependedBoldText(text),
                 bold ? QStringLiteral("<span style=\"font-weight:700\">Export</span>") : text);
    }

    void supportLink()
    {
        const QString href = Customization::supportCenterHRef();
        QCOMPARE(href, QStringLiteral("<a href=\"https://k.example/FAQ_URL\" style=\"text-decoration: none\">"
                                      "SupportCenter</a>"));
        QCOMPARE(Customization::supportedFormatsURL(), QStringLiteral("https://k.example/HELP_URL_supported_formats"));
        QCOMPARE(Customization::homepageVimeoLocalized(),
                 QStringLiteral("https://k.example/HOMEPAGE_URL_vimeo_description"));
    }

    void linksGoThroughTheManager()
    {
        QCOMPARE(Customization::generateUrl(QStringLiteral("https://x.example")), QStringLiteral("https://x.example?n=0"));
        Customization::openUrl(Tavrin::URLKeys::HELP_URL_menu);
        Customization::openUrl(QStringLiteral("https://y.example"));
        QCOMPARE(m_links->opened,
                 (QStringList{QStringLiteral("https://k.example/HELP_URL_menu"), QStringLiteral("https://y.example")}));
    }

    void locales()
    {
        QCOMPARE(Customization::availableLocales(), (QStringList{QStringLiteral("en_US"), QStringLiteral("de_DE")}));
        m_lookAndFeel->locale = "de_DE";
        QCOMPARE(Customization::currentLocale(), QStringLiteral("de_DE")); // read anew every time
        ServiceRegistry::instance().setValue("startupLocale", std::string("fr_FR"));
        QCOMPARE(Customization::startupLocale(), std::string("fr_FR"));
    }

    void applyForwards()
    {
        QObject object;
        Customization::apply(&object);
        QCOMPARE(m_customization->applied, &object);
    }

    void missingManagersGiveEmptyAnswers()
    {
        ServiceRegistry::instance().clear();
        QCOMPARE(Customization::productName(), QString());
        QCOMPARE(Customization::appUrl(Tavrin::URLKeys::FAQ_URL), QString());
        QVERIFY(!Customization::isFirstApplicationLaunch());
        Customization::openUrl(Tavrin::URLKeys::FAQ_URL); // nothing to open with; no crash
    }

    void applyLayout_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<QStringList>("kept");
        QTest::addColumn<int>("deleted");
        const QStringList abc{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
        QTest::newRow("reorder") << abc << QStringList{QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b")}
                                 << QStringList{QStringLiteral("c"), QStringLiteral("a"), QStringLiteral("b")} << 0;
        QTest::newRow("drop unnamed in order") << abc << QStringList{QStringLiteral("b")}
                                               << QStringList{QStringLiteral("b")} << 2;
        QTest::newRow("empty order") << abc << QStringList() << QStringList() << 3;
        QTest::newRow("unknown names") << abc
                                       << QStringList{QStringLiteral("x"), QStringLiteral("a"), QStringLiteral("y")}
                                       << QStringList{QStringLiteral("a")} << 2;
        QTest::newRow("name used twice in order") << abc << QStringList{QStringLiteral("a"), QStringLiteral("a")}
                                                  << QStringList{QStringLiteral("a")} << 2;
    }

    void applyLayout()
    {
        QFETCH(QStringList, names);
        QFETCH(QStringList, order);
        QFETCH(QStringList, kept);
        QFETCH(int, deleted);
        QWidget host;
        auto* layout = new QVBoxLayout(&host);
        QList<QPointer<QLabel>> labels;
        for (const QString& name : names) {
            auto* label = new QLabel(name);
            label->setObjectName(name);
            layout->addWidget(label);
            labels << label;
        }
        Customization::applyLayout(layout, order);
        QStringList result;
        for (int i = 0; i < layout->count(); ++i)
            result << layout->itemAt(i)->widget()->objectName();
        QCOMPARE(result, kept);
        int gone = 0;
        for (const auto& label : labels)
            gone += label.isNull() ? 1 : 0;
        QCOMPARE(gone, deleted);
    }

    void applyLayoutDuplicateNameKeepsTheFirst()
    {
        QWidget host;
        auto* layout = new QVBoxLayout(&host);
        auto* first = new QLabel(QStringLiteral("first"));
        auto* second = new QLabel(QStringLiteral("second"));
        first->setObjectName(QStringLiteral("same"));
        second->setObjectName(QStringLiteral("same"));
        layout->addWidget(first);
        layout->addWidget(second);
        Customization::applyLayout(layout, {QStringLiteral("same")});
        QCOMPARE(layout->count(), 1);
        QCOMPARE(layout->itemAt(0)->widget(), first);
    }

    void storeNames()
    {
        QCOMPARE(Customization::effectsStoreName(), QStringLiteral("Effects Store"));
        QCOMPARE(Customization::effectsStoreNameBranded(), QStringLiteral("Tavrin Effects Store"));
    }
};

QTEST_MAIN(tst_Customization)
#include "tst_Customization.moc"
