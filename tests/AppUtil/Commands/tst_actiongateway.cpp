#include <ActionGateway.h>

#include <App/ServiceRegistry.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QMap>
#include <QTimer>
#include <QtTest>

#include "TestSandbox.h"

#include <memory>
#include <stdexcept>

class TestActionGateway : public QObject
{
    Q_OBJECT

    std::unique_ptr<QMainWindow> m_main;
    std::unique_ptr<Action::Gateway> m_gateway;
    QStringList m_log;
    const QString kUpdate = QStringLiteral("REQUEST_CHECK_AUTO_UPDATE");

    void propose(const QStringList& names)
    {
        for (const QString& name : names)
            m_gateway->ProposeAction({name.toStdString(), [this, name] { m_log << name; }});
    }

private slots:
    void init()
    {
        m_log.clear();
        m_gateway = std::make_unique<Action::Gateway>();
        m_main = std::make_unique<QMainWindow>();
        m_main->setCentralWidget(new QWidget);
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
        Tavrin::Util::SpontaneousDialog::setMainWindow(m_main.get());
    }

    void cleanup()
    {
        m_gateway.reset();
        m_main.reset();
        Tavrin::App::ServiceRegistry::instance().clear();
        QTest::qWait(0); // delivers what is posted, deferred deletions included
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    // Who owns the modal dialog: a panel of the shown main window, a main window never shown
    // (a start-up dialog), or another window. Where the flag sits: on the dialog, the panel or
    // the main window ("" for nowhere); the blocking window is the first one up from the
    // dialog flagged true. It holds every action until it is hidden; without it only the
    // modal-wait name waits, until the dialog is gone.
    void heldUntilTheWindowGoes_data()
    {
        QTest::addColumn<QString>("owner");
        QTest::addColumn<QString>("flagOn");
        QTest::addColumn<QVariant>("flag");
        QTest::addColumn<bool>("exec");
        QTest::newRow("flagged dialog, open()") << "panel" << "dialog" << QVariant(true) << false;
        QTest::newRow("flagged dialog, exec(), flag as text") << "panel" << "dialog" << QVariant("true") << true;
        QTest::newRow("flagged panel, flag as number") << "panel" << "panel" << QVariant(1) << false;
        QTest::newRow("flagged main window, exec()") << "panel" << "main" << QVariant(true) << true;
        QTest::newRow("\"false\" does not block") << "panel" << "main" << QVariant("false") << false;
        QTest::newRow("main window never shown") << "never shown" << "" << QVariant() << true;
        QTest::newRow("over another window") << "other" << "" << QVariant() << false;
    }

    void heldUntilTheWindowGoes()
    {
        QFETCH(QString, owner);
        QFETCH(QString, flagOn);
        QFETCH(QVariant, flag);
        QFETCH(bool, exec);
        QMainWindow neverShown;
        QWidget other;
        QWidget* parent = QMap<QString, QWidget*>{{"panel", m_main->centralWidget()}, {"other", &other}}.value(owner);
        if (owner == QLatin1String("never shown"))
            Tavrin::Util::SpontaneousDialog::setMainWindow(&neverShown);
        other.setVisible(parent == &other);
        QDialog dialog(parent);
        const QMap<QString, QWidget*> flagged{{"dialog", &dialog}, {"panel", parent}, {"main", m_main.get()}};
        if (QWidget* widget = flagged.value(flagOn))
            widget->setProperty(Action::g_BlockSpontaneousActivityFlag, flag);
        QWidget* const blocking = flag.toBool() ? flagged.value(flagOn) : nullptr;
        const QString lower = kUpdate.toLower(); // names are exact: not a modal-wait name
        QStringList whileOpen;
        QTimer::singleShot(0, &dialog, [&] {
            QCOMPARE(Action::Gateway::blockingWindow(), blocking);
            propose({"A", kUpdate, lower});
            QVERIFY(!m_gateway->IsBlockedActions("A")); // watched, not queued
            whileOpen = m_log;
            dialog.reject();
        });
        if (exec)
            dialog.exec();
        else
            dialog.open();
        QVERIFY(QTest::qWaitFor([&] { return dialog.isHidden(); }));
        if (blocking && blocking != &dialog) {
            // Closing the dialog is not what the actions wait for: the flagged window is.
            QTest::qWait(0);
            QVERIFY(m_log.isEmpty());
            blocking->hide();
        }
        QVERIFY(QTest::qWaitFor([&] { return m_log.size() == 3; }));
        // Held actions come back in the order they were proposed.
        QCOMPARE(whileOpen, (blocking ? QStringList() : QStringList{"A", lower}));
        QCOMPARE(m_log, (blocking ? QStringList{"A", kUpdate, lower} : QStringList{"A", lower, kUpdate}));
    }

    // The gateway is locked twice while actions are proposed before and after names are
    // refused ("~name" cancels what is queued instead of blacklisting), then unlocked: what
    // runs is what survived, in order.
    void blacklist_data()
    {
        QTest::addColumn<QStringList>("refused");
        QTest::addColumn<QStringList>("allowed");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const char* refused, const char* allowed, const char* before,
                            const char* after, const char* expected) {
            auto words = [](const char* text) {
                return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
            };
            QTest::newRow(name) << words(refused) << words(allowed) << words(before) << words(after) << words(expected);
        };
        row("nothing refused", "", "", "A REQUEST_CHECK_AUTO_UPDATE", "C", "A REQUEST_CHECK_AUTO_UPDATE C");
        row("all but allowed", "*", "B STARTUP", "A B STARTUP", "B C", "B STARTUP B");
        row("one name", "A", "", "A B A", "A C", "B C");
        row("exact names, no patterns", "a A*", "", "A A*", "a AB", "A AB");
        row("allowed beats its own name", "A", "A", "A", "A", "A A");
        row("cancel drops what is queued only", "~A ~nothing", "", "A B A", "A", "B A");
    }

    void blacklist()
    {
        QFETCH(QStringList, refused);
        QFETCH(QStringList, allowed);
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        QFETCH(QStringList, expected);
        m_gateway->lock();
        m_gateway->lock();
        for (const QString& name : allowed)
            m_gateway->AllowAction(name.toStdString());
        propose(before);
        for (const QString& name : refused) {
            if (name.startsWith(QLatin1Char('~')))
                m_gateway->CancelActions(name.mid(1).toStdString());
            else
                m_gateway->BlacklistAction(name.toStdString());
        }
        propose(after);
        for (const QString& name : expected)
            QVERIFY2(m_gateway->IsBlockedActions(name.toStdString()), qPrintable(name));
        m_gateway->unlock();
        QVERIFY(m_log.isEmpty() && m_gateway->is_locked());
        m_gateway->unlock();
        QCOMPARE(m_log, expected);
    }

    void destroyedWindowReleasesTheActionUnlessTheGatewayWentFirst()
    {
        for (const QString& name : {QStringLiteral("A"), QStringLiteral("B")}) {
            auto* dialog = new QDialog(m_main.get());
            dialog->setProperty(Action::g_BlockSpontaneousActivityFlag, true);
            dialog->open();
            propose({name});
            QVERIFY(!m_log.contains(name));
            if (name == QLatin1String("B"))
                m_gateway.reset();
            delete dialog;
            QTest::qWait(0);
        }
        QCOMPARE(m_log, QStringList{"A"});
    }

    void proposedWhileRunningRunInTheSameLoop()
    {
        m_gateway->ProposeAction({"A", [this] {
                                      m_log << "A begins";
                                      propose({"B"});
                                      m_gateway->ProposeAction({"C", [this] { propose({"D"}); }});
                                      m_log << "A ends";
                                  }});
        // Not nested inside A, and all done before ProposeAction returned.
        QCOMPARE(m_log, (QStringList{"A begins", "A ends", "B", "D"}));
    }

    void proposeActionThroughTheRegistry()
    {
        // Without a gateway an action runs at once; a failing or empty one stays inside.
        Action::proposeAction("A", [this] { m_log << "A"; });
        Action::proposeAction("bad", [] { throw std::runtime_error("broken"); });
        Action::proposeAction("empty", {});
        QCOMPARE(m_log, QStringList{"A"});
        // A host that registered the concrete type instead of the interface.
        Tavrin::App::ServiceRegistry::instance().setEntry(typeid(Tavrin::ExternalStimulus::IGateway),
                                                          boost::any(std::make_shared<Action::Gateway>()));
        QVERIFY_EXCEPTION_THROWN(Action::proposeAction("B", [this] { m_log << "B"; }), boost::bad_any_cast);
    }
};

QTEST_MAIN(TestActionGateway)
#include "tst_actiongateway.moc"
