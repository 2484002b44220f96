// Customization over managers registered by the test: its own rules and the forwarding.
#include "TestSandbox.h"
#include "FakeCustomization.h"
#include <Customization.h>

#include <App/ILookAndFeelManager.h>

#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>
#include <QtTest>

struct FakeLookAndFeel : Tavrin::App::ILookAndFeelManager
{
    std::string locale = "en_US";
    std::string currentLocale() const override { return locale; }
    std::vector<std::string> availableLocales() const override { return {"en_US", "de_DE"}; }
};

class tst_Customization : public QObject
{
    Q_OBJECT

    std::shared_ptr<FakeCustomization> m_customization;
    std::shared_ptr<FakeLookAndFeel> m_lookAndFeel;

private slots:
    void init()
    {
        m_customization = FakeCustomization::install();
        m_lookAndFeel = std::make_shared<FakeLookAndFeel>();
        Tavrin::App::ServiceRegistry::instance().set<Tavrin::App::ILookAndFeelManager>(m_lookAndFeel);
        Customization::init(m_lookAndFeel);
    }

    void boldText_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<bool>("bold");
        for (const char* locale : {"en_US", "de_DE", "zh_tw"})
            QTest::newRow(locale) << locale << true;
        for (const char* locale : {"ja_JP", "zh_CN", "zh_TW"})
            QTest::newRow(locale) << locale << false;
    }

    void boldText()
    {
        QFETCH(QString, locale);
        QFETCH(bool, bold);
        m_lookAndFeel->locale = locale.toStdString();
        QCOMPARE(Customization::localeDependedBoldText(QStringLiteral("Export")),
                 bold ? QStringLiteral("<span style=\"font-weight:700\">Export</span>") : QStringLiteral("Export"));
    }

    // Answers come from the managers, read anew every time; without managers they are empty
    // and nothing breaks. Full names keep their blank when there is no organisation.
    void forwardsToTheManagers()
    {
        m_customization->localizedName = "Klipvane Videoeditor";
        QCOMPARE(Customization::productFullNameLocalized(), QStringLiteral("Tavrin Klipvane Videoeditor"));
        m_customization->organization.clear();
        QCOMPARE(Customization::productFullName(), QStringLiteral(" Klipvane"));
        m_customization->organization = "Tavrin Bürosoft";
        QCOMPARE(Customization::organizationPresentableName(), QStringLiteral("Tavrin Bürosoft"));
        m_lookAndFeel->locale = "de_DE";
        QCOMPARE(Customization::currentLocale(), QStringLiteral("de_DE"));
        QObject object;
        Customization::apply(&object);
        QCOMPARE(m_customization->applied, &object);

        Tavrin::App::ServiceRegistry::instance().clear();
        QCOMPARE(Customization::productName(), QString());
        QCOMPARE(Customization::appUrl(Tavrin::URLKeys::FAQ_URL), QString());
        Customization::openUrl(Tavrin::URLKeys::FAQ_URL);
    }

    // `kept`: the widgets left, in order; the others are deleted, but a second name is not seen.
    void applyLayout_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<QList<int>>("kept");
        QTest::addColumn<int>("deleted");
        QTest::newRow("reorder") << QStringList{"a", "b", "c"} << QStringList{"c", "a", "b"} << QList<int>{2, 0, 1} << 0;
        QTest::newRow("unnamed dropped") << QStringList{"a", "b", "c"} << QStringList{"b"} << QList<int>{1} << 2;
        QTest::newRow("unknown, repeated") << QStringList{"a", "b"} << QStringList{"x", "a", "a"} << QList<int>{0} << 1;
        QTest::newRow("duplicate name keeps the first") << QStringList{"a", "a"} << QStringList{"a"} << QList<int>{0} << 0;
    }

    void applyLayout()
    {
        QFETCH(QStringList, names);
        QFETCH(QStringList, order);
        QFETCH(QList<int>, kept);
        QFETCH(int, deleted);
        QWidget host;
        auto* layout = new QVBoxLayout(&host);
        std::vector<QPointer<QLabel>> labels;
        for (const QString& name : names) {
            labels.emplace_back(new QLabel(&host))->setObjectName(name);
            layout->addWidget(labels.back());
        }
        Customization::applyLayout(layout, order);
        QCOMPARE(layout->count(), kept.size());
        for (int i = 0; i < kept.size(); ++i)
            QCOMPARE(layout->itemAt(i)->widget(), static_cast<QWidget*>(labels[kept[i]].data()));
        QCOMPARE(int(std::count_if(labels.begin(), labels.end(), [](const auto& l) { return l.isNull(); })), deleted);
    }
};

QTEST_MAIN(tst_Customization)
#include "tst_Customization.moc"
