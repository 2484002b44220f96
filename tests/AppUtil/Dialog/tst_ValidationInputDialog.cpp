// ValidationInputDialog: the check while typing, the error label and style, the Ok
// button, and what inputText() gives back; also through the strategy's two overloads.
#include "TestSandbox.h"
#include "ModalAnswer.h"

#include <Dialog/DialogStrategy.h>
#include <Dialog/ValidationInputDialog.h>
#include <Util/StyleHint.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {
using Validator = ValidationInputDialog::Validator;

// Rejects empty texts and names with a slash.
bool validName(QString const& text, QString& error)
{
    if (text.isEmpty()) {
        error = QStringLiteral("Enter a name");
        return false;
    }
    if (text.contains(QLatin1Char('/'))) {
        error = QStringLiteral("No slashes");
        return false;
    }
    return true;
}

// Accepts, but remarks on, names that already exist.
bool notTaken(QString const& text, QString& error)
{
    if (text == QLatin1String("Taken")) {
        error = QStringLiteral("Will be replaced");
        return false;
    }
    return true;
}

struct Parts
{
    QLineEdit* lineEdit;
    QLabel* errorLabel;
    QPushButton* ok;
};

Parts parts(QDialog* dialog)
{
    return {dialog->findChild<QLineEdit*>(QStringLiteral("lineEdit")),
            dialog->findChild<QLabel*>(QStringLiteral("errorLabel")),
            dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Ok)};
}
} // namespace

class tst_ValidationInputDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        Dialog::initialize({});
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void widgetsAndInitialState()
    {
        ValidationInputDialog dialog(QStringLiteral("Rename"), QStringLiteral("New name:"), QString(), validName, notTaken);
        const Parts p = parts(&dialog);
        QVERIFY(p.lineEdit && p.errorLabel && p.ok);
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Rename"));
        QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("label"))->text(), QStringLiteral("New name:"));
        QVERIFY(dialog.findChild<QFrame*>(QStringLiteral("contentFrame")));
        QVERIFY(p.lineEdit->inherits("Tavrin::Crumbit::CrumbitLineEdit"));
        // An empty initial text runs no check: Ok stays enabled until the first edit.
        QVERIFY(p.ok->isEnabled());
        QVERIFY(p.errorLabel->isHidden());
        QCOMPARE(dialog.inputText(), QString());
    }

    void check_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("okEnabled");
        QTest::addColumn<bool>("errorShown");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("style");
        QTest::addColumn<QString>("input");
        QTest::newRow("valid") << QStringLiteral("Holiday") << true << false << QString() << QStringLiteral("normal")
                               << QStringLiteral("Holiday");
        QTest::newRow("blank only") << QStringLiteral("   ") << false << true << QStringLiteral("Enter a name")
                                    << QStringLiteral("error") << QString();
        QTest::newRow("rejected") << QStringLiteral("a/b") << false << true << QStringLiteral("No slashes")
                                  << QStringLiteral("error") << QString();
        QTest::newRow("soft error") << QStringLiteral("Taken") << true << true << QStringLiteral("Will be replaced")
                                    << QStringLiteral("error") << QStringLiteral("Taken");
        QTest::newRow("simplified") << QStringLiteral("  My   trip ") << true << false << QString()
                                    << QStringLiteral("normal") << QStringLiteral("My trip");
        QTest::newRow("simplified soft") << QStringLiteral(" Taken ") << true << true << QStringLiteral("Will be replaced")
                                         << QStringLiteral("error") << QStringLiteral("Taken");
    }

    void check()
    {
        QFETCH(QString, typed);
        QFETCH(bool, okEnabled);
        QFETCH(bool, errorShown);
        QFETCH(QString, error);
        QFETCH(QString, style);
        QFETCH(QString, input);
        ValidationInputDialog dialog(QStringLiteral("T"), QStringLiteral("L"), QStringLiteral("start"), validName,
                                     notTaken);
        const Parts p = parts(&dialog);
        p.lineEdit->clear();
        QTest::keyClicks(p.lineEdit, typed);
        QCOMPARE(p.ok->isEnabled(), okEnabled);
        QCOMPARE(!p.errorLabel->isHidden(), errorShown);
        if (errorShown)
            QCOMPARE(p.errorLabel->text(), error);
        QCOMPARE(Util::styleHint(p.lineEdit), style);
        QCOMPARE(dialog.inputText(), input);
    }

    void initialTextIsChecked()
    {
        ValidationInputDialog dialog(QStringLiteral("T"), QStringLiteral("L"), QStringLiteral("x/y"), validName, notTaken);
        const Parts p = parts(&dialog);
        QVERIFY(!p.ok->isEnabled());
        QVERIFY(!p.errorLabel->isHidden());
        QCOMPARE(p.errorLabel->text(), QStringLiteral("No slashes"));
    }

    void softValidatorIsAskedOnlyAboutAcceptedTexts()
    {
        int softCalls = 0;
        const Validator countingSoft = [&softCalls](QString const&, QString&) {
            ++softCalls;
            return true;
        };
        ValidationInputDialog dialog(QStringLiteral("T"), QStringLiteral("L"), QString(), validName, countingSoft);
        QTest::keyClicks(parts(&dialog).lineEdit, QStringLiteral("a/"));
        QCOMPARE(softCalls, 1); // "a" accepted, "a/" rejected
    }

    void layoutFollowsTheErrorLabel()
    {
        ValidationInputDialog dialog(QStringLiteral("T"), QStringLiteral("L"), QStringLiteral("ok"), validName, notTaken);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        const int withoutError = dialog.height();
        QTest::keyClick(parts(&dialog).lineEdit, Qt::Key_Slash);
        QVERIFY(QTest::qWaitFor([&] { return dialog.height() > withoutError; }));
        dialog.close();
    }

    void throughTheStrategy_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("accept");
        QTest::addColumn<QString>("result");
        QTest::newRow("accepted") << QStringLiteral("  two   words ") << true << QStringLiteral("two words");
        QTest::newRow("cancelled") << QStringLiteral("name") << false << QString();
    }

    void throughTheStrategy()
    {
        QFETCH(QString, typed);
        QFETCH(bool, accept);
        QFETCH(QString, result);
        answerModal([&](QWidget* modal) {
            auto* dialog = qobject_cast<QDialog*>(modal);
            const Parts p = parts(dialog);
            p.lineEdit->clear();
            QTest::keyClicks(p.lineEdit, typed);
            if (accept)
                p.ok->click();
            else
                QTest::keyClick(modal, Qt::Key_Escape);
        });
        QCOMPARE(Dialog::showValidationInputDialog(QStringLiteral("T"), QStringLiteral("L"), QString(), validName,
                                                   notTaken),
                 result);
    }

    void fourArgumentFormShowsNoSoftError()
    {
        bool errorShown = true;
        answerModal([&](QWidget* modal) {
            const Parts p = parts(qobject_cast<QDialog*>(modal));
            QTest::keyClicks(p.lineEdit, QStringLiteral("Taken"));
            errorShown = !p.errorLabel->isHidden();
            p.ok->click();
        });
        const Validator rejectsTakenHard = [](QString const& text, QString& error) {
            error = QStringLiteral("hint"); // an error text alone, with acceptance, shows nothing
            return !text.isEmpty();
        };
        QCOMPARE(Dialog::showValidationInputDialog(QStringLiteral("T"), QStringLiteral("L"), QString(), rejectsTakenHard),
                 QStringLiteral("Taken"));
        QVERIFY(!errorShown);
    }
};

QTEST_MAIN(tst_ValidationInputDialog)
#include "tst_ValidationInputDialog.moc"
