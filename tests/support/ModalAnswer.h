#pragma once

// Answers a modal dialog the code under test is about to run: a polling timer waits for
// QApplication::activeModalWidget() and hands it to `action`, which clicks its real
// buttons. Works offscreen, where windows are never activated.
//
//   answerModal([](QWidget* modal) {
//       qobject_cast<QMessageBox*>(modal)->button(QMessageBox::Save)->click();
//   });
//   QVERIFY(Dialog::alertModifiedProject(save));

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <memory>

inline void answerModal(std::function<void(QWidget*)> action)
{
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    auto attempts = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, action, attempts] {
        QWidget* modal = QApplication::activeModalWidget();
        // Give up after a while so that a test whose dialog never appears fails on its
        // own checks instead of answering an unrelated dialog later.
        if (!modal && ++*attempts < 2000)
            return;
        timer->stop();
        timer->deleteLater();
        if (modal)
            action(modal);
    });
    timer->start();
}

// The first button of `dialog` (at any depth) whose text, without mnemonics, is `text`.
inline QAbstractButton* buttonWithText(QWidget* dialog, const QString& text)
{
    const auto buttons = dialog->findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        QString shown = button->text();
        shown.remove(QLatin1Char('&'));
        if (shown == text)
            return button;
    }
    return nullptr;
}

// Clicks the button with the text, or rejects the dialog when there is none (so the test
// goes on and fails on its own checks).
inline void clickButton(QWidget* dialog, const QString& text)
{
    if (QAbstractButton* button = buttonWithText(dialog, text)) {
        button->click();
        return;
    }
    qWarning("No button \"%s\" in %s", qPrintable(text), dialog->metaObject()->className());
    if (auto* asDialog = qobject_cast<QDialog*>(dialog))
        asDialog->reject();
    else
        dialog->close();
}
