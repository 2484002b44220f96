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
    void cleanup()
    {
        SD::setMainWindow(nullptr);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void registeredMainWindowWinsUntilDestroyed()
    {
        QVERIFY(!SD::GetMainWindow());
        QMainWindow visible;
        visible.show();
        QCOMPARE(SD::GetMainWindow(), &visible);
        auto registered = std::make_unique<QMainWindow>();
        SD::setMainWindow(registered.get());
        QCOMPARE(SD::GetMainWindow(), registered.get());
        // A destroyed main window is not handed out.
        registered.reset();
        QCOMPARE(SD::GetMainWindow(), &visible);
    }

    void parentIsModalThenActiveThenMain()
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
};

QTEST_MAIN(TestSpontaneousDialog)
#include "tst_spontaneousdialog.moc"
