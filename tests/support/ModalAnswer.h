#pragma once

// Answers the modal dialog the code under test is about to run: a polling timer waits for
// QApplication::activeModalWidget() (offscreen, windows are never activated) and hands it
// to `action`, which clicks its real buttons, e.g. clickButton(modal, "Save").

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>

inline void answerModal(std::function<void(QWidget*)> action)
{
    auto* timer = new QTimer(qApp);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, action, attempts = 0]() mutable {
        QWidget* modal = QApplication::activeModalWidget();
        // Gives up after a while rather than answer an unrelated dialog much later.
        if (!modal && ++attempts < 2000)
            return;
        timer->deleteLater();
        timer->stop();
        if (modal)
            action(modal);
    });
    timer->start();
}

// Clicks the first button of `dialog` (at any depth) whose text, without mnemonics, is
// `text`; without one, warns, rejects the dialog so that the test goes on, and returns false.
inline bool clickButton(QWidget* dialog, const QString& text)
{
    for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
        if (button->text().remove(QLatin1Char('&')) == text) {
            button->click();
            return true;
        }
    }
    qWarning("No button \"%s\" in %s", qPrintable(text), dialog->metaObject()->className());
    if (auto* asDialog = qobject_cast<QDialog*>(dialog))
        asDialog->reject();
    else
        dialog->close();
    return false;
}
