// CrumbitInputDialog: its widgets and hints, the confirm button's rule, the simplified
// result, and the buttons that reject.
#include "TestSandbox.h"
#include "ModalAnswer.h"

#include <Dialog/CrumbitInputDialog.h>
#include <Dialog/DialogStrategy.h>
#include <Util/StyleHint.h>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

class tst_CrumbitInputDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        Dialog::initialize({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void widgets()
    {
        CrumbitInputDialog dialog(QStringLiteral("New folder"), QStringLiteral("Folder"), QStringLiteral("Create"),
                                  QStringLiteral("Cancel"), QStringLiteral("Name"));
        QCOMPARE(dialog.windowFlags() & (Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint),
                 Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
        QVERIFY(dialog.testAttribute(Qt::WA_TranslucentBackground));
        QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("titleLabel"))->text(), QStringLiteral("New folder"));
        auto* lineEdit = dialog.findChild<QLineEdit*>(QStringLiteral("lineEdit"));
        QCOMPARE(lineEdit->placeholderText(), QStringLiteral("Name"));
        QCOMPARE(lineEdit->text(), QStringLiteral("Folder"));
        QCOMPARE(ColorHint::colorHint(lineEdit), QStringLiteral("INPUT_LIGHT"));
        QCOMPARE(Util::styleHint(dialog.findChild<QToolButton*>(QStringLiteral("closeButton"))), QStringLiteral("close"));
        auto* confirm = dialog.findChild<QPushButton*>(QStringLiteral("confirmButton"));
        QCOMPARE(confirm->text(), QStringLiteral("Create"));
        QCOMPARE(Util::styleHint(confirm), QStringLiteral("activeButton"));
        auto* cancel = dialog.findChild<QPushButton*>(QStringLiteral("cancelButton"));
        QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
        QCOMPARE(Util::styleHint(cancel), QStringLiteral("guideButton"));
        for (const char* frame : {"mainFrame", "topFrame", "buttonsFrame"})
            QVERIFY2(dialog.findChild<QFrame*>(QLatin1String(frame)), frame);
    }

    void confirmFollowsTheText()
    {
        CrumbitInputDialog dialog(QStringLiteral("T"), QString(), QStringLiteral("OK"), QStringLiteral("Cancel"),
                                  QString());
        auto* confirm = dialog.findChild<QPushButton*>(QStringLiteral("confirmButton"));
        auto* lineEdit = dialog.findChild<QLineEdit*>(QStringLiteral("lineEdit"));
        QVERIFY(confirm->isEnabled()); // no edit yet
        QTest::keyClicks(lineEdit, QStringLiteral("a"));
        QVERIFY(confirm->isEnabled());
        QTest::keyClick(lineEdit, Qt::Key_Backspace);
        QVERIFY(!confirm->isEnabled());
    }

    void draggingAnywhereMovesTheWindow()
    {
        CrumbitInputDialog dialog(QStringLiteral("T"), QString(), QStringLiteral("OK"), QStringLiteral("Cancel"),
                                  QString());
        dialog.move(100, 100);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const QPoint start = dialog.pos();
        const QPoint grip(2, 2);
        QMouseEvent press(QEvent::MouseButtonPress, grip, dialog.mapToGlobal(grip), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&dialog, &press);
        const QPoint to = grip + QPoint(40, 25);
        QMouseEvent move(QEvent::MouseMove, to, dialog.mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&dialog, &move);
        QCOMPARE(dialog.pos(), start + QPoint(40, 25));
        dialog.close();
    }

    void result_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("press");
        QTest::addColumn<QString>("result");
        QTest::newRow("confirm") << QStringLiteral("  my   clip ") << QStringLiteral("confirmButton")
                                 << QStringLiteral("my clip");
        QTest::newRow("cancel") << QStringLiteral("x") << QStringLiteral("cancelButton") << QString();
        QTest::newRow("close") << QStringLiteral("x") << QStringLiteral("closeButton") << QString();
    }

    void result()
    {
        QFETCH(QString, typed);
        QFETCH(QString, press);
        QFETCH(QString, result);
        answerModal([&](QWidget* modal) {
            auto* lineEdit = modal->findChild<QLineEdit*>(QStringLiteral("lineEdit"));
            lineEdit->clear();
            QTest::keyClicks(lineEdit, typed);
            modal->findChild<QAbstractButton*>(press)->click();
        });
        QCOMPARE(Dialog::showCrumbitInputDialog(QStringLiteral("T"), QString(), QStringLiteral("OK"),
                                                QStringLiteral("Cancel"), QStringLiteral("Name")),
                 result);
    }
};

QTEST_MAIN(tst_CrumbitInputDialog)
#include "tst_CrumbitInputDialog.moc"
