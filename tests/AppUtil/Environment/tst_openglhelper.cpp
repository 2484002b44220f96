#include <OpenglHelper.h>

#include <App/IInternetConnectionChecker.h>
#include <App/OpenglSwitchHelper.h>
#include <App/ServiceRegistry.h>
#include <App/StatisticsTracker.h>
#include <Settings/Settings.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QtTest>

#include "FakeCustomization.h"
#include "ModalAnswer.h"
#include "TestSandbox.h"

using Tavrin::App::OpenglSwitchHelper;

namespace {

struct RecordingTracker : Tavrin::App::IStatisticsTracker
{
    std::vector<std::pair<std::string, DataFiller>> fillers;
    std::vector<std::pair<std::string, Fields>> events;

    void addDataFiller(const std::string& pattern, DataFiller filler) override { fillers.emplace_back(pattern, std::move(filler)); }
    void sendEvent(const std::string& event, Fields fields) override
    {
        for (auto& [pattern, filler] : fillers) {
            if (Tavrin::App::LoggingStatisticsTracker::matches(pattern, event))
                filler(event, fields);
        }
        events.emplace_back(event, fields);
    }
};

struct RecordingFactory : Tavrin::App::IStatisticsTrackerFactory
{
    std::vector<std::shared_ptr<RecordingTracker>> trackers;
    std::shared_ptr<Tavrin::App::IStatisticsTracker> createTracker() override
    {
        trackers.push_back(std::make_shared<RecordingTracker>());
        return trackers.back();
    }
};

// Every text a message box shows: its title, its labels and its buttons.
QString textsOf(QWidget* dialog)
{
    QStringList texts{dialog->windowTitle()};
    for (QLabel* label : dialog->findChildren<QLabel*>())
        texts << label->text();
    for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>())
        texts << QStringLiteral("[%1]").arg(button->text().remove(QLatin1Char('&')));
    return texts.join(QLatin1Char('|'));
}

} // namespace

class TestOpenglHelper : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        auto& registry = Tavrin::App::ServiceRegistry::instance();
        registry.set<Tavrin::App::ICustomizationManager>(std::make_shared<FakeCustomization>());
        registry.set<Tavrin::App::IInternetConnectionChecker>(std::make_shared<Tavrin::App::InternetConnectionChecker>());
        registry.set<Tavrin::App::IStatisticsTrackerFactory>(m_factory);
    }

    void cleanup()
    {
        m_factory->trackers.clear();
        QVERIFY(QApplication::topLevelWidgets().isEmpty() || !QApplication::activeModalWidget());
    }

    void requestingTheKindInUseRecordsNothing_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<bool>("silent");
        QTest::newRow("software") << int(OpenglSwitchHelper::Software) << false;
        QTest::newRow("hardware") << int(OpenglSwitchHelper::Hardware) << false;
        QTest::newRow("software, silently") << int(OpenglSwitchHelper::Software) << true;
    }

    void requestingTheKindInUseRecordsNothing()
    {
        QFETCH(int, current);
        QFETCH(bool, silent);
        use(current);
        const QString before = QFile::exists(Settings::fileName()) ? readSettingsFile() : QString();
        int callbacks = 0;
        const auto callback = [&] { return ++callbacks > 0; };
        const bool software = current == OpenglSwitchHelper::Software;
        QCOMPARE(OpenglHelper::isSoftwareOpenglUsed(), software);
        const bool switched = silent ? OpenglHelper::switchOpenglImplementationSilently("test", callback, software)
                                     : OpenglHelper::switchOpenglImplementation("test", callback, software);
        QVERIFY(!switched);
        QCOMPARE(callbacks, 0);
        QVERIFY(m_factory->trackers.empty());
        QCOMPARE(QFile::exists(Settings::fileName()) ? readSettingsFile() : QString(), before);
        QVERIFY(!Settings::value(QStringLiteral("OpenGL/Trial")).isValid());
    }

    // The user declines: the switch is forgotten; only a switch to software is stamped.
    void sourceOnlyForSoftware_data()
    {
        QTest::addColumn<bool>("useSoftware");
        QTest::newRow("to software") << true;
        QTest::newRow("to hardware") << false;
    }

    void sourceOnlyForSoftware()
    {
        QFETCH(bool, useSoftware);
        const int current = useSoftware ? OpenglSwitchHelper::Hardware : OpenglSwitchHelper::Software;
        use(current);
        QString shown;
        answerModal([&](QWidget* modal) {
            shown = textsOf(modal);
            clickButton(modal, QStringLiteral("Cancel"));
        });
        int callbacks = 0;
        QVERIFY(!OpenglHelper::switchOpenglImplementation("menu", [&] { return ++callbacks > 0; }, useSoftware));
        QVERIFY2(shown.startsWith(QLatin1String("OpenGL activation|")), qPrintable(shown));
        QCOMPARE(callbacks, 0);
        QCOMPARE(OpenglSwitchHelper::requestedImplementation(), current);
        if (!useSoftware) {
            QVERIFY(m_factory->trackers.empty());
            return;
        }
        QCOMPARE(m_factory->trackers.size(), size_t(1));
        const auto& events = m_factory->trackers.front()->events;
        QCOMPARE(events.size(), size_t(1));
        QCOMPARE(events.front().second.at("SOURCE"), std::string("menu"));
        QCOMPARE(events.front().second.at("RESULT"), std::string("declined"));
    }

    // Agreed, then the editor stops it (say, the user cancelled saving the project).
    void callbackRunsAfterConsentAndCanStopTheSwitch_data()
    {
        QTest::addColumn<bool>("silent");
        QTest::newRow("asked") << false;
        QTest::newRow("silently") << true;
    }

    void callbackRunsAfterConsentAndCanStopTheSwitch()
    {
        QFETCH(bool, silent);
        use(OpenglSwitchHelper::Hardware);
        bool asked = false;
        if (!silent) {
            answerModal([&](QWidget* modal) {
                asked = true;
                clickButton(modal, QStringLiteral("Restart"));
            });
        }
        int callbacks = 0;
        bool requestedDuringCallback = false;
        const auto callback = [&] {
            ++callbacks;
            requestedDuringCallback = OpenglSwitchHelper::requestedImplementation() == OpenglSwitchHelper::Software;
            return false;
        };
        const bool switched = silent ? OpenglHelper::switchOpenglImplementationSilently("menu", callback, true)
                                     : OpenglHelper::switchOpenglImplementation("menu", callback, true);
        QVERIFY(!switched);
        QCOMPARE(asked, !silent);
        QCOMPARE(callbacks, 1);
        QVERIFY(requestedDuringCallback);
        QCOMPARE(OpenglSwitchHelper::requestedImplementation(), int(OpenglSwitchHelper::Hardware));
        QCOMPARE(m_factory->trackers.front()->events.front().second.at("RESULT"), std::string("cancelled"));
    }

    void aMissingServiceRecordsNothing()
    {
        use(OpenglSwitchHelper::Hardware);
        auto& registry = Tavrin::App::ServiceRegistry::instance();
        registry.remove<Tavrin::App::IInternetConnectionChecker>();
        QVERIFY(!OpenglHelper::switchOpenglImplementationSilently("menu", [] { return true; }, true));
        QCOMPARE(OpenglSwitchHelper::requestedImplementation(), int(OpenglSwitchHelper::Hardware));
        registry.set<Tavrin::App::IInternetConnectionChecker>(std::make_shared<Tavrin::App::InternetConnectionChecker>());
    }

    void restartDialog_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<bool>("agreed");
        QTest::newRow("Restart") << QStringLiteral("Restart") << true;
        QTest::newRow("Cancel") << QStringLiteral("Cancel") << false;
    }

    void restartDialog()
    {
        QFETCH(QString, button);
        QFETCH(bool, agreed);
        QString shown;
        answerModal([&](QWidget* modal) {
            shown = textsOf(modal);
            clickButton(modal, button);
        });
        QCOMPARE(Restart::showRestartDialog({{Restart::Reason::OpenglSwitch}}), agreed);
        QVERIFY2(shown.startsWith(QLatin1String("OpenGL activation|")), qPrintable(shown));
        QVERIFY2(shown.contains(QLatin1String("The program will restart to activate OpenGL. It can take some time.")), qPrintable(shown));
        QVERIFY2(shown.contains(QLatin1String("[Restart]")) && shown.contains(QLatin1String("[Cancel]")), qPrintable(shown));
    }

private:
    // Makes `implementation` the one this process uses, as a start with it recorded would.
    static void use(int implementation)
    {
        Settings::setValue(QStringLiteral("OpenGL/Implementation"), OpenglSwitchHelper::name(implementation));
        Settings::remove(QStringLiteral("OpenGL/Trial"));
        Settings::remove(QStringLiteral("OpenGL/Previous"));
        QCOMPARE(OpenglSwitchHelper::applyAtStartup(), implementation);
    }

    static QString readSettingsFile()
    {
        Settings::sync();
        QFile file(Settings::fileName());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    std::shared_ptr<RecordingFactory> m_factory = std::make_shared<RecordingFactory>();
};

QTEST_MAIN(TestOpenglHelper)
#include "tst_openglhelper.moc"
