#pragma once

#include "AppUtil_export.h"

#include <QDialog>

#include <memory>

// Asks for one line of text in the application's own frameless look: a title row with a
// close button, a line edit with a placeholder, confirm and cancel buttons. The window
// can be dragged at any point. Confirm is enabled while the field holds text (it starts
// enabled, so an empty initial text can be confirmed until the user edits the field).
class APPUTIL_EXPORT CrumbitInputDialog : public QDialog
{
    Q_OBJECT

public:
    CrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                       QString const& cancelText, QString const& placeholder, QWidget* parent = nullptr);
    ~CrumbitInputDialog() override;

    // The entered text, simplified.
    QString inputText() const;

private:
    struct Ui;
    std::unique_ptr<Ui> ui;
};
