#include <ActionGateway.h>

#include <App/ServiceRegistry.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include "TestSandbox.h"

#include <memory>
#include <stdexcept>

using Tavrin::App::ServiceRegistry;
using Tavrin::ExternalStimulus::IGateway;

namespace {

const std::string kUpdate = "REQUEST_CHECK_AUTO_UPDATE";

// Delivers what is already posted, deferred deletions included: whatever a hidden or
// unblocked window was going to release has been released afterwards.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

} // namespace

class TestActionGateway : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void runsAtOnceWhenNothingBlocks();
    void blockingWindowDefersUntilHidden_data();
    void blockingWindowDefersUntilHidden();
    void blockingDialogDuringExec();
    void falseFlagDoesNotBlock();
    void modalDialogDefersOnlyModalWaitNames_data();
    void modalDialogDefersOnlyModalWaitNames();
    void modalWaitNameInBlockingWindowWaitsForHide();
    void blacklist_data();
    void blacklist();
    void cancelActions();
    void lockTwiceUnlockOnceKeepsQueued();
    void destroyedBlockingWindowReproposes();
    void destroyedWatchedWidgetReproposes();
    void gatewayGoneDropsWatchedAction();
    void proposedWhileRunningRunInTheSameLoop();
    void proposeActionThroughTheRegistry();
    void proposeActionWithWrongRegistryEntry();
    void proposeActionWithoutGateway();

private:
    Tavrin::ExternalStimulus::Action record(const std::string& name)
    {
        return {name, [this, name] { m_log << QString::fromStdString(name); }};
    }
    void propose(const std::string& name) { m_gateway->ProposeAction(record(name)); }
    // A window-modal dialog over the main window (or over `parent`), opened without blocking.
    QDialog* openDialog(QWidget* parent = nullptr);

    std::unique_ptr<QMainWindow> m_main;
    std::unique_ptr<Action::Gateway> m_gateway;
    QStringList m_log;
};

void TestActionGateway::init()
{
    m_log.clear();
    m_gateway = std::make_unique<Action::Gateway>();
    m_main = std::make_unique<QMainWindow>();
    m_main->setCentralWidget(new QWidget);
    m_main->resize(320, 240);
    m_main->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    Tavrin::Util::SpontaneousDialog::setMainWindow(m_main.get());
}

void TestActionGateway::cleanup()
{
    m_gateway.reset();
    m_main.reset();
    ServiceRegistry::instance().clear();
    settle();
    QStringList leaked;
    for (QWidget* widget : QApplication::topLevelWidgets())
        leaked << QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName();
    QVERIFY2(leaked.isEmpty(), qPrintable(leaked.join(QStringLiteral(", "))));
    QVERIFY(!QApplication::activeModalWidget());
}

QDialog* TestActionGateway::openDialog(QWidget* parent)
{
    auto* dialog = new QDialog(parent ? parent : m_main.get());
    dialog->setObjectName(QStringLiteral("dialog"));
    dialog->open();
    return dialog;
}

void TestActionGateway::runsAtOnceWhenNothingBlocks()
{
    propose("A");
    QCOMPARE(m_log, QStringList{"A"});
    QVERIFY(!m_gateway->IsBlockedActions("A"));
    // A modal-wait name waits only while a modal window is up.
    propose(kUpdate);
    QCOMPARE(m_log, (QStringList{"A", QString::fromStdString(kUpdate)}));
}

// Where the flag sits: on the modal dialog, on a panel the dialog belongs to, or on the
// main window. The blocking window is the first flagged one up from the dialog.
void TestActionGateway::blockingWindowDefersUntilHidden_data()
{
    QTest::addColumn<QString>("flagOn");
    QTest::addColumn<QVariant>("flag");
    QTest::newRow("dialog") << "dialog" << QVariant(true);
    QTest::newRow("dialog, flag as text") << "dialog" << QVariant(QStringLiteral("true"));
    QTest::newRow("dialog, flag as number") << "dialog" << QVariant(1);
    QTest::newRow("parent panel") << "panel" << QVariant(true);
    QTest::newRow("main window") << "main" << QVariant(true);
}

void TestActionGateway::blockingWindowDefersUntilHidden()
{
    QFETCH(QString, flagOn);
    QFETCH(QVariant, flag);
    QWidget* panel = m_main->centralWidget();
    QDialog* dialog = openDialog(panel);
    QWidget* blocking = flagOn == QLatin1String("dialog") ? static_cast<QWidget*>(dialog)
                        : flagOn == QLatin1String("panel") ? panel
                                                           : m_main.get();
    blocking->setProperty(Action::g_BlockSpontaneousActivityFlag, flag);
    QCOMPARE(QApplication::activeModalWidget(), dialog);
    QCOMPARE(Action::Gateway::blockingWindow(), blocking);

    propose("A");
    propose("B");
    QVERIFY(m_log.isEmpty());
    // Watched, not queued.
    QVERIFY(!m_gateway->IsBlockedActions("A"));

    dialog->reject();
    if (blocking != dialog) {
        // Closing the dialog is not what the actions wait for: the flagged window is.
        settle();
        QVERIFY(m_log.isEmpty());
        blocking->hide();
    }
    QVERIFY(QTest::qWaitFor([&] { return m_log.size() == 2; }));
    // Held actions come back in the order they were proposed.
    QCOMPARE(m_log, (QStringList{"A", "B"}));
}

void TestActionGateway::blockingDialogDuringExec()
{
    QDialog dialog(m_main.get());
    dialog.setProperty(Action::g_BlockSpontaneousActivityFlag, true);
    bool checked = false;
    QTimer::singleShot(0, &dialog, [&] {
        QCOMPARE(QApplication::activeModalWidget(), &dialog);
        propose("A");
        checked = m_log.isEmpty();
        dialog.reject();
    });
    dialog.exec();
    QVERIFY(checked);
    QVERIFY(QTest::qWaitFor([&] { return !m_log.isEmpty(); }));
    QCOMPARE(m_log, QStringList{"A"});
}

void TestActionGateway::falseFlagDoesNotBlock()
{
    QDialog* dialog = openDialog();
    dialog->setProperty(Action::g_BlockSpontaneousActivityFlag, false);
    m_main->setProperty(Action::g_BlockSpontaneousActivityFlag, QStringLiteral("false"));
    QVERIFY(!Action::Gateway::blockingWindow());
    propose("A");
    QCOMPARE(m_log, QStringList{"A"});
    dialog->reject();
}

// Where the modal dialog sits: over the shown main window, over a main window that was
// never shown (a start-up dialog) or was hidden again, or over another window. In every
// case a modal-wait name waits until the dialog is gone, and only it waits.
void TestActionGateway::modalDialogDefersOnlyModalWaitNames_data()
{
    QTest::addColumn<bool>("exec");
    QTest::addColumn<QString>("scenario");
    QTest::newRow("open() over main window") << false << "main";
    QTest::newRow("exec() over main window") << true << "main";
    QTest::newRow("exec() before main window shown") << true << "never shown";
    QTest::newRow("exec() with main window hidden") << true << "hidden";
    QTest::newRow("open() over another window") << false << "other window";
    QTest::newRow("exec() without parent") << true << "no parent";
}

void TestActionGateway::modalDialogDefersOnlyModalWaitNames()
{
    QFETCH(bool, exec);
    QFETCH(QString, scenario);
    std::unique_ptr<QWidget> other;
    QWidget* parent = m_main.get();
    if (scenario == QLatin1String("never shown")) {
        m_main = std::make_unique<QMainWindow>();
        Tavrin::Util::SpontaneousDialog::setMainWindow(m_main.get());
        parent = nullptr;
    } else if (scenario == QLatin1String("hidden")) {
        m_main->hide();
    } else if (scenario == QLatin1String("other window")) {
        other = std::make_unique<QWidget>();
        other->show();
        parent = other.get();
    } else if (scenario == QLatin1String("no parent")) {
        parent = nullptr;
    }

    QDialog dialog(parent);
    QStringList whileOpen;
    auto insideDialog = [&] {
        QCOMPARE(QApplication::activeModalWidget(), &dialog);
        QVERIFY(!Action::Gateway::blockingWindow());
        propose(kUpdate);
        propose("OTHER");
        propose("request_check_auto_update");
        whileOpen = m_log;
    };
    if (exec) {
        QTimer::singleShot(0, &dialog, [&] {
            insideDialog();
            dialog.reject();
        });
        dialog.exec();
    } else {
        dialog.open();
        insideDialog();
        dialog.reject();
    }
    QCOMPARE(whileOpen, (QStringList{"OTHER", "request_check_auto_update"}));
    QVERIFY(QTest::qWaitFor([&] { return m_log.size() == 3; }));
    QCOMPARE(m_log.last(), QString::fromStdString(kUpdate));
}

void TestActionGateway::modalWaitNameInBlockingWindowWaitsForHide()
{
    QDialog* dialog = openDialog();
    dialog->setProperty(Action::g_BlockSpontaneousActivityFlag, true);
    propose(kUpdate);
    QVERIFY(m_log.isEmpty());
    dialog->hide();
    QVERIFY(QTest::qWaitFor([&] { return !m_log.isEmpty(); }));
    QCOMPARE(m_log, QStringList{QString::fromStdString(kUpdate)});
}

// The gateway is locked while actions are proposed before and after blacklisting, then
// unlocked: what runs is what survived.
void TestActionGateway::blacklist_data()
{
    QTest::addColumn<QStringList>("blacklist");
    QTest::addColumn<QStringList>("allowed");
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("nothing blacklisted") << QStringList{} << QStringList{} << QStringList{"A", "B"}
                                         << QStringList{"C"} << QStringList{"A", "B", "C"};
    QTest::newRow("all") << QStringList{"*"} << QStringList{} << QStringList{"A", "B"} << QStringList{"C"}
                         << QStringList{};
    QTest::newRow("all but allowed") << QStringList{"*"} << QStringList{"B", "STARTUP"}
                                     << QStringList{"A", "B", "STARTUP"} << QStringList{"B", "C"}
                                     << QStringList{"B", "STARTUP", "B"};
    QTest::newRow("one name") << QStringList{"A"} << QStringList{} << QStringList{"A", "B", "A"}
                              << QStringList{"A", "C"} << QStringList{"B", "C"};
    QTest::newRow("exact, case-sensitive") << QStringList{"a"} << QStringList{} << QStringList{"A"}
                                           << QStringList{"A", "a"} << QStringList{"A", "A"};
    QTest::newRow("star inside a name is no pattern") << QStringList{"A*"} << QStringList{}
                                                      << QStringList{"A", "A*"} << QStringList{"AB"}
                                                      << QStringList{"A", "AB"};
    QTest::newRow("allowed beats its own name") << QStringList{"A"} << QStringList{"A"} << QStringList{"A"}
                                                << QStringList{"A"} << QStringList{"A", "A"};
    QTest::newRow("twice is once") << QStringList{"A", "A"} << QStringList{} << QStringList{"A", "B"}
                                   << QStringList{} << QStringList{"B"};
}

void TestActionGateway::blacklist()
{
    QFETCH(QStringList, blacklist);
    QFETCH(QStringList, allowed);
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);
    QFETCH(QStringList, expected);

    m_gateway->lock();
    for (const QString& name : allowed)
        m_gateway->AllowAction(name.toStdString());
    for (const QString& name : before)
        propose(name.toStdString());
    for (const QString& name : blacklist)
        m_gateway->BlacklistAction(name.toStdString());
    for (const QString& name : after)
        propose(name.toStdString());
    QVERIFY(m_log.isEmpty());
    for (const QString& name : expected)
        QVERIFY2(m_gateway->IsBlockedActions(name.toStdString()), qPrintable(name));
    m_gateway->unlock();
    QCOMPARE(m_log, expected);
    for (const QString& name : before + after)
        QVERIFY2(!m_gateway->IsBlockedActions(name.toStdString()), qPrintable(name));
}

void TestActionGateway::cancelActions()
{
    m_gateway->lock();
    propose("A");
    propose("B");
    propose("A");
    QVERIFY(m_gateway->IsBlockedActions("A"));
    m_gateway->CancelActions("A");
    m_gateway->CancelActions("not queued");
    QVERIFY(!m_gateway->IsBlockedActions("A"));
    QVERIFY(m_gateway->IsBlockedActions("B"));
    m_gateway->unlock();
    QCOMPARE(m_log, QStringList{"B"});
}

void TestActionGateway::lockTwiceUnlockOnceKeepsQueued()
{
    m_gateway->lock();
    m_gateway->lock();
    propose("A");
    propose("B");
    m_gateway->unlock();
    QVERIFY(m_gateway->is_locked());
    QVERIFY(m_log.isEmpty());
    QVERIFY(m_gateway->IsBlockedActions("A"));
    m_gateway->unlock();
    QVERIFY(!m_gateway->is_locked());
    QCOMPARE(m_log, (QStringList{"A", "B"}));

    // An unlock too many changes nothing, and the next lock holds again.
    m_gateway->unlock();
    m_gateway->lock();
    propose("C");
    QCOMPARE(m_log.size(), 2);
    m_gateway->unlock();
    QCOMPARE(m_log, (QStringList{"A", "B", "C"}));
}

void TestActionGateway::destroyedBlockingWindowReproposes()
{
    QPointer<QDialog> dialog = openDialog();
    dialog->setProperty(Action::g_BlockSpontaneousActivityFlag, true);
    propose("A");
    QVERIFY(m_log.isEmpty());
    delete dialog;
    QVERIFY(QTest::qWaitFor([&] { return !m_log.isEmpty(); }));
    QCOMPARE(m_log, QStringList{"A"});
}

void TestActionGateway::destroyedWatchedWidgetReproposes()
{
    // Never shown, so never hidden: only its destruction releases the action.
    auto* widget = new QWidget(m_main->centralWidget());
    new Action::EventWatcher(widget, m_gateway.get(), QEvent::Hide, record("A"));
    settle();
    QVERIFY(m_log.isEmpty());
    delete widget;
    QCOMPARE(m_log, QStringList{"A"});
}

void TestActionGateway::gatewayGoneDropsWatchedAction()
{
    QDialog* dialog = openDialog();
    dialog->setProperty(Action::g_BlockSpontaneousActivityFlag, true);
    propose("A");
    m_gateway.reset();
    dialog->reject();
    delete dialog;
    settle();
    QVERIFY(m_log.isEmpty());
}

void TestActionGateway::proposedWhileRunningRunInTheSameLoop()
{
    m_gateway->ProposeAction({"A", [this] {
                                  m_log << "A begins";
                                  propose("B");
                                  m_gateway->ProposeAction({"C", [this] {
                                                                m_log << "C";
                                                                propose("D");
                                                            }});
                                  m_log << "A ends";
                              }});
    // Not nested inside A, and all done before ProposeAction returned.
    QCOMPARE(m_log, (QStringList{"A begins", "A ends", "B", "C", "D"}));
}

void TestActionGateway::proposeActionThroughTheRegistry()
{
    auto gateway = std::make_shared<Action::Gateway>();
    ServiceRegistry::instance().set<IGateway>(gateway);
    gateway->lock();
    Action::proposeAction(Action::ACTION_STARTUP, [this] { m_log << "startup"; });
    QVERIFY(m_log.isEmpty());
    QVERIFY(gateway->IsBlockedActions(Action::ACTION_STARTUP));
    gateway->unlock();
    QCOMPARE(m_log, QStringList{"startup"});
}

void TestActionGateway::proposeActionWithWrongRegistryEntry()
{
    // A host that registered the concrete type instead of the interface.
    ServiceRegistry::instance().setEntry(typeid(IGateway), boost::any(std::make_shared<Action::Gateway>()));
    QVERIFY_EXCEPTION_THROWN(Action::proposeAction("A", [this] { m_log << "A"; }), boost::bad_any_cast);
    QVERIFY(m_log.isEmpty());
}

void TestActionGateway::proposeActionWithoutGateway()
{
    Action::proposeAction("A", [this] { m_log << "A"; });
    QCOMPARE(m_log, QStringList{"A"});
    Action::proposeAction("bad", [] { throw std::runtime_error("broken"); });
    Action::proposeAction("empty", {});
}

QTEST_MAIN(TestActionGateway)
#include "tst_actiongateway.moc"
