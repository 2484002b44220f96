#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QtTest>

#include "TestSandbox.h"

#include <memory>

namespace SD = Tavrin::Util::SpontaneousDialog;

class TestSpontaneousDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void mainWindowFallback();
    void registeredMainWindowWinsUntilDestroyed();
    void parentIsModalThenActiveThenMain();
};

void TestSpontaneousDialog::cleanup()
{
    SD::setMainWindow(nullptr);
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

void TestSpontaneousDialog::mainWindowFallback()
{
    QVERIFY(!SD::GetMainWindow());
    QWidget notAMainWindow;
    notAMainWindow.show();
    QVERIFY(!SD::GetMainWindow());

    // Without a registered one: a visible QMainWindow beats a hidden one.
    auto hidden = std::make_unique<QMainWindow>();
    QCOMPARE(SD::GetMainWindow(), hidden.get());
    QMainWindow visible;
    visible.show();
    QCOMPARE(SD::GetMainWindow(), &visible);
}

void TestSpontaneousDialog::registeredMainWindowWinsUntilDestroyed()
{
    QMainWindow visible;
    visible.show();
    auto registered = std::make_unique<QMainWindow>();
    SD::setMainWindow(registered.get());
    QCOMPARE(SD::GetMainWindow(), registered.get());
    // A destroyed main window is not handed out.
    registered.reset();
    QCOMPARE(SD::GetMainWindow(), &visible);
}

void TestSpontaneousDialog::parentIsModalThenActiveThenMain()
{
    QMainWindow main;
    SD::setMainWindow(&main);
    QCOMPARE(SD::findParent(), &main);

    main.show();
    QWidget other;
    other.show();
    QApplication::setActiveWindow(&other);
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCOMPARE(SD::findParent(), &other);

    QDialog dialog(&main);
    dialog.open();
    QCOMPARE(SD::findParent(), &dialog);
    dialog.reject();
}

QTEST_MAIN(TestSpontaneousDialog)
#include "tst_spontaneousdialog.moc"
