#pragma once

#include "AppUtil_export.h"

#include <QDialog>

#include <functional>
#include <memory>

// Asks for one line of text with a label, Ok and Cancel, and checks the text while it is
// typed. The text is simplified (outer white space removed, inner runs folded to one blank)
// before either validator sees it.
//
// `validator` decides whether the text may be accepted (Ok is enabled exactly then);
// `softValidator` is asked only about accepted texts and decides whether an error is
// still shown, for texts that are allowed but worth a remark ("a file with this name
// exists and will be replaced"). Both may write the error text shown under the field.
// Neither may be empty.
class APPUTIL_EXPORT ValidationInputDialog : public QDialog
{
    Q_OBJECT

public:
    using Validator = std::function<bool(QString const&, QString&)>;

    ValidationInputDialog(QString const& title, QString const& label, QString const& text,
                          Validator const& validator, Validator const& softValidator, QWidget* parent = nullptr);
    ~ValidationInputDialog() override;

    // The simplified text when the validator accepts it, otherwise an empty string.
    QString inputText();

private:
    void check(QString const& text);

    struct Ui;
    std::unique_ptr<Ui> ui;
    Validator validator;
    Validator softValidator;
};
