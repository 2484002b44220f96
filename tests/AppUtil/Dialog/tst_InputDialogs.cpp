// ValidationInputDialog and CrumbitInputDialog: the checks while typing, the simplified
// result, and the buttons that accept or reject them through the strategy.
#include "TestSandbox.h"
#include "ModalAnswer.h"

#include <Dialog/CrumbitInputDialog.h>
#include <Dialog/DialogStrategy.h>
#include <Dialog/ValidationInputDialog.h>
#include <Util/StyleHint.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {
// Rejects empty texts and names with a slash.
bool validName(QString const& text, QString& error)
{
    error = text.isEmpty() ? QStringLiteral("Enter a name") : QStringLiteral("No slashes");
    return !text.isEmpty() && !text.contains(QLatin1Char('/'));
}

// Accepts, but remarks on, a name that already exists.
bool notTaken(QString const& text, QString& error)
{
    error = QStringLiteral("Will be replaced");
    return text != QLatin1String("Taken");
}

QAbstractButton* okButton(QWidget* dialog)
{
    if (auto* box = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")))
        return box->button(QDialogButtonBox::Ok);
    return dialog->findChild<QPushButton*>(QStringLiteral("confirmButton"));
}

// Replaces the field's text by typing, so that every change is an edit.
void retype(QWidget* dialog, const QString& text)
{
    auto* lineEdit = dialog->findChild<QLineEdit*>(QStringLiteral("lineEdit"));
    lineEdit->selectAll();
    QTest::keyClick(lineEdit, Qt::Key_Backspace);
    QTest::keyClicks(lineEdit, text);
}
} // namespace

class tst_InputDialogs : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        Dialog::initialize({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void check_data()
    {
        QTest::addColumn<bool>("crumbit");
        QTest::addColumn<QString>("initial");
        QTest::addColumn<QString>("typed"); // null: nothing typed
        QTest::addColumn<bool>("okEnabled");
        QTest::addColumn<QString>("error"); // empty: no error shown
        QTest::addColumn<QString>("input");
        QTest::newRow("empty initial text, unchecked") << false << "" << QString() << true << "" << "";
        QTest::newRow("initial text checked") << false << "x/y" << QString() << false << "No slashes" << "";
        QTest::newRow("valid") << false << "start" << "Holiday" << true << "" << "Holiday";
        QTest::newRow("blank only") << false << "start" << "   " << false << "Enter a name" << "";
        QTest::newRow("rejected") << false << "start" << "a/b" << false << "No slashes" << "";
        QTest::newRow("soft error") << false << "start" << "Taken" << true << "Will be replaced" << "Taken";
        QTest::newRow("simplified") << false << "start" << "  My   trip " << true << "" << "My trip";
        QTest::newRow("simplified soft") << false << "start" << " Taken " << true << "Will be replaced" << "Taken";
        QTest::newRow("crumbit, empty until edited") << true << "" << QString() << true << "" << "";
        QTest::newRow("crumbit, emptied") << true << "x" << QStringLiteral("") << false << "" << "";
        QTest::newRow("crumbit, simplified") << true << "x" << "  my   clip " << true << "" << "my clip";
    }

    void check()
    {
        QFETCH(bool, crumbit);
        QFETCH(QString, initial);
        QFETCH(QString, typed);
        QFETCH(bool, okEnabled);
        QFETCH(QString, error);
        QFETCH(QString, input);
        CrumbitInputDialog crumbitDialog("T", initial, "OK", "Cancel", "Name");
        ValidationInputDialog validationDialog("T", "L", initial, validName, notTaken);
        QDialog* dialog = crumbit ? static_cast<QDialog*>(&crumbitDialog) : &validationDialog;
        if (!typed.isNull())
            retype(dialog, typed);
        QCOMPARE(okButton(dialog)->isEnabled(), okEnabled);
        QCOMPARE(crumbit ? crumbitDialog.inputText() : validationDialog.inputText(), input);
        if (crumbit)
            return;
        auto* errorLabel = dialog->findChild<QLabel*>(QStringLiteral("errorLabel"));
        QCOMPARE(errorLabel->isHidden() ? QString() : errorLabel->text(), error);
        if (!typed.isNull())
            QCOMPARE(Util::styleHint(dialog->findChild<QLineEdit*>()),
                     QLatin1String(error.isEmpty() ? "normal" : "error"));
    }

    void softValidatorIsAskedOnlyAboutAcceptedTexts()
    {
        int softCalls = 0;
        const auto soft = [&softCalls](QString const&, QString&) { return ++softCalls > 0; };
        ValidationInputDialog dialog("T", "L", QString(), validName, soft);
        QTest::keyClicks(dialog.findChild<QLineEdit*>(), QStringLiteral("a/"));
        QCOMPARE(softCalls, 1); // "a" accepted, "a/" rejected
    }

    void throughTheStrategy_data()
    {
        QTest::addColumn<bool>("crumbit");
        QTest::addColumn<QString>("press"); // a button's object name or text, or "Escape"
        QTest::addColumn<QString>("result");
        QTest::newRow("validation, accepted") << false << "OK" << "two words";
        QTest::newRow("validation, escape") << false << "Escape" << "";
        QTest::newRow("crumbit, confirmed") << true << "confirmButton" << "two words";
        QTest::newRow("crumbit, cancelled") << true << "cancelButton" << "";
        QTest::newRow("crumbit, closed") << true << "closeButton" << "";
    }

    void throughTheStrategy()
    {
        QFETCH(bool, crumbit);
        QFETCH(QString, press);
        QFETCH(QString, result);
        answerModal([&](QWidget* modal) {
            retype(modal, QStringLiteral("  two   words "));
            if (press == QLatin1String("Escape"))
                QTest::keyClick(modal, Qt::Key_Escape);
            else if (auto* named = modal->findChild<QAbstractButton*>(press))
                named->click();
            else
                clickButton(modal, press);
        });
        QCOMPARE(crumbit ? Dialog::showCrumbitInputDialog("T", QString(), "OK", "Cancel", "Name")
                         : Dialog::showValidationInputDialog("T", "L", QString(), validName, notTaken),
                 result);
    }
};

QTEST_MAIN(tst_InputDialogs)
#include "tst_InputDialogs.moc"
