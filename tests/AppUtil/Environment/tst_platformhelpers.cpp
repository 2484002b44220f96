#include <PlatformHelpers.h>

#include <App/PowerManager.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QtTest>

#include <algorithm>
#include <thread>

#include "TestSandbox.h"

namespace {

std::vector<std::string> sorted(std::vector<std::string> ids)
{
    std::sort(ids.begin(), ids.end());
    return ids;
}

} // namespace

class TestPlatformHelpers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // No desktop session here: the suppressors must work without one.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/kv-no-bus");
    }

    void hotkeyTags_data()
    {
        QTest::addColumn<QString>("context");
        QTest::addColumn<QVariant>("tag");
        QTest::newRow("application") << QStringLiteral("application") << QVariant(QStringLiteral("undo"));
        QTest::newRow("widget") << QStringLiteral("widget") << QVariant(QStringLiteral("play"));
        QTest::newRow("window, numeric tag") << QStringLiteral("window") << QVariant(7);
    }

    void hotkeyTags()
    {
        QFETCH(QString, context);
        QFETCH(QVariant, tag);
        QPushButton button;
        // Whatever was there before is overwritten.
        Util::setHotkeyTagWidget(&button, QStringLiteral("earlier"));
        if (context == QLatin1String("application"))
            Util::setHotkeyTagApplication(&button, tag);
        else if (context == QLatin1String("widget"))
            Util::setHotkeyTagWidget(&button, tag);
        else
            Util::setHotkeyTagWindow(&button, tag);
        QCOMPARE(button.property("hotkeyTag"), tag);
        QCOMPARE(button.property("hotkeyContextTag"), QVariant(context));
        Util::setHotkeyTagWindow(nullptr, tag); // nothing to tag: nothing happens
    }

    void twoSuppressorsUnderTwoIdentifiers()
    {
        auto& manager = powersaveSuppressorManager();
        const auto before = sorted(manager.Users());
        auto first = createPowersaveSuppressor();
        auto second = createPowersaveSuppressor();
        const auto after = sorted(manager.Users());
        std::vector<std::string> added;
        std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(added));
        QCOMPARE(added.size(), size_t(2));
        QVERIFY(added.at(0) != added.at(1));

        first->suppressPowersave();
        second->suppressPowersave();
        QCOMPARE(sorted(manager.SuppressingUsers()), added);
        first->restorePowersave();
        QCOMPARE(manager.SuppressingUsers().size(), size_t(1));
        second.reset(); // a suppressor dropped while suppressing stops suppressing
        QVERIFY(manager.SuppressingUsers().empty());
        first.reset();
        QCOMPARE(sorted(manager.Users()), before);
    }

    void suppressorsFromSeveralThreads()
    {
        std::vector<std::shared_ptr<ISystemPowersaveSuppressor>> made(4);
        std::vector<std::thread> threads;
        for (size_t i = 0; i < made.size(); ++i)
            threads.emplace_back([&made, i] { made[i] = createPowersaveSuppressor(); });
        for (auto& thread : threads)
            thread.join();
        for (auto& suppressor : made)
            suppressor->suppressPowersave();
        QCOMPARE(powersaveSuppressorManager().SuppressingUsers().size(), made.size());
        made.clear();
        QVERIFY(powersaveSuppressorManager().SuppressingUsers().empty());
    }

    // Which deactivations start the keeper's timer; the timer then does nothing while the
    // application stays inactive.
    void modalOrderKeeper_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("timer");
        QTest::newRow("the active modal dialog") << QStringLiteral("modal") << true;
        QTest::newRow("the window beneath it") << QStringLiteral("window") << false;
        QTest::newRow("a widget inside the dialog") << QStringLiteral("child") << false;
    }

    void modalOrderKeeper()
    {
        QFETCH(QString, target);
        QFETCH(bool, timer);
        MacModalDialogOrderKeeper keeper;
        QWidget window;
        window.show();
        QDialog dialog(&window);
        auto* child = new QPushButton(QStringLiteral("OK"), &dialog);
        dialog.setModal(true);
        dialog.show();
        QVERIFY(QTest::qWaitFor([&] { return QApplication::activeModalWidget() == &dialog; }, 5000));

        QWidget* receiver = target == QLatin1String("modal") ? &dialog : target == QLatin1String("window") ? &window : child;
        QEvent deactivate(QEvent::WindowDeactivate);
        QApplication::sendEvent(receiver, &deactivate);
        auto* dispatcher = QAbstractEventDispatcher::instance();
        QCOMPARE(!dispatcher->registeredTimers(&keeper).isEmpty(), timer);
        // (The dispatcher makes a coarse timer this short a precise one; only the interval stays.)
        if (timer)
            QCOMPARE(dispatcher->registeredTimers(&keeper).constFirst().interval, 0);
        QVERIFY(QTest::qWaitFor([&] { return dispatcher->registeredTimers(&keeper).isEmpty(); }, 5000));
        if (QGuiApplication::applicationState() != Qt::ApplicationActive)
            QVERIFY(!dialog.isActiveWindow());
        dialog.close();
    }
};

QTEST_MAIN(TestPlatformHelpers)
#include "tst_platformhelpers.moc"
