#include "Dialog/ValidationInputDialog.h"

#include <Crumbit/CrumbitLineEdit.h>
#include <Util/StyleHint.h>
#include <Util/Workaround.h>

#include <QDialogButtonBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

struct ValidationInputDialog::Ui
{
    QFrame* contentFrame = nullptr;
    QLabel* label = nullptr;
    Tavrin::Crumbit::CrumbitLineEdit* lineEdit = nullptr;
    QLabel* errorLabel = nullptr;
    QDialogButtonBox* buttonBox = nullptr;

    void setupUi(QDialog* dialog)
    {
        auto* layout = new QVBoxLayout(dialog);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);

        contentFrame = new QFrame(dialog);
        contentFrame->setObjectName(QStringLiteral("contentFrame"));
        auto* content = new QVBoxLayout(contentFrame);
        content->setContentsMargins(0, 0, 0, 0);
        content->setSpacing(0);

        label = new QLabel(contentFrame);
        label->setObjectName(QStringLiteral("label"));
        label->setWordWrap(true);
        content->addWidget(label);

        lineEdit = new Tavrin::Crumbit::CrumbitLineEdit(contentFrame);
        lineEdit->setObjectName(QStringLiteral("lineEdit"));
        content->addWidget(lineEdit);

        errorLabel = new QLabel(contentFrame);
        errorLabel->setObjectName(QStringLiteral("errorLabel"));
        errorLabel->setWordWrap(true);
        content->addWidget(errorLabel);
        content->addStretch();
        layout->addWidget(contentFrame);

        buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
        buttonBox->setObjectName(QStringLiteral("buttonBox"));
        layout->addWidget(buttonBox);
    }
};

ValidationInputDialog::ValidationInputDialog(QString const& title, QString const& label, QString const& text,
                                             Validator const& validator, Validator const& softValidator,
                                             QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui>())
    , validator(validator)
    , softValidator(softValidator)
{
    setObjectName(QStringLiteral("ValidationInputDialog"));
    ui->setupUi(this);
    Workaround::Ui::apply(this);
    setWindowTitle(title);
    ui->label->setText(label);
    ui->errorLabel->hide();
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(ui->lineEdit, &QLineEdit::textChanged, this, &ValidationInputDialog::check);
    ui->lineEdit->setText(text);
    Util::installLayoutController(this);
}

ValidationInputDialog::~ValidationInputDialog() = default;

void ValidationInputDialog::check(QString const& text)
{
    const QString candidate = text.simplified();
    QString error;
    const bool accepted = validator(candidate, error);
    const bool clean = accepted && softValidator(candidate, error);
    ui->errorLabel->setText(error);
    ui->errorLabel->setVisible(!clean);
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(accepted);
    Util::applyStyleHint(ui->lineEdit, clean ? QStringLiteral("normal") : QStringLiteral("error"));
}

QString ValidationInputDialog::inputText()
{
    const QString text = ui->lineEdit->text().simplified();
    QString ignored;
    return validator(text, ignored) ? text : QString();
}
