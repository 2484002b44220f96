#include "Dialog/CrumbitInputDialog.h"

#include <Crumbit/CrumbitLineEdit.h>
#include <Gui/AnypointWidgetDrag.h>
#include <Util/StyleHint.h>
#include <Util/Workaround.h>

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

struct CrumbitInputDialog::Ui
{
    QFrame* mainFrame = nullptr;
    QFrame* topFrame = nullptr;
    QLabel* titleLabel = nullptr;
    QToolButton* closeButton = nullptr;
    Tavrin::Crumbit::CrumbitLineEdit* lineEdit = nullptr;
    QFrame* buttonsFrame = nullptr;
    QPushButton* confirmButton = nullptr;
    QPushButton* cancelButton = nullptr;

    template <class Widget>
    static Widget* make(QWidget* parent, const char* name)
    {
        auto* widget = new Widget(parent);
        widget->setObjectName(QLatin1String(name));
        return widget;
    }

    static void tight(QLayout* layout)
    {
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
    }

    void setupUi(QDialog* dialog)
    {
        auto* outer = new QVBoxLayout(dialog);
        tight(outer);
        mainFrame = make<QFrame>(dialog, "mainFrame");
        outer->addWidget(mainFrame);
        auto* body = new QVBoxLayout(mainFrame);
        tight(body);

        topFrame = make<QFrame>(mainFrame, "topFrame");
        auto* top = new QHBoxLayout(topFrame);
        tight(top);
        titleLabel = make<QLabel>(topFrame, "titleLabel");
        top->addWidget(titleLabel, 1);
        closeButton = make<QToolButton>(topFrame, "closeButton");
        Util::applyStyleHint(closeButton, QStringLiteral("close"));
        top->addWidget(closeButton, 0, Qt::AlignTop);
        body->addWidget(topFrame);

        lineEdit = make<Tavrin::Crumbit::CrumbitLineEdit>(mainFrame, "lineEdit");
        body->addWidget(lineEdit);

        buttonsFrame = make<QFrame>(mainFrame, "buttonsFrame");
        auto* buttons = new QHBoxLayout(buttonsFrame);
        tight(buttons);
        buttons->addStretch();
        cancelButton = make<QPushButton>(buttonsFrame, "cancelButton");
        Util::applyStyleHint(cancelButton, QStringLiteral("guideButton"));
        buttons->addWidget(cancelButton);
        confirmButton = make<QPushButton>(buttonsFrame, "confirmButton");
        Util::applyStyleHint(confirmButton, QStringLiteral("activeButton"));
        confirmButton->setDefault(true);
        buttons->addWidget(confirmButton);
        body->addWidget(buttonsFrame);
    }
};

CrumbitInputDialog::CrumbitInputDialog(QString const& title, QString const& text, QString const& confirmText,
                                       QString const& cancelText, QString const& placeholder, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , ui(std::make_unique<Ui>())
{
    setObjectName(QStringLiteral("CrumbitInputDialog"));
    setAttribute(Qt::WA_TranslucentBackground);
    ui->setupUi(this);
    Workaround::Ui::apply(this);
    setWindowTitle(title);

    connect(ui->closeButton, &QToolButton::clicked, this, &QDialog::reject);
    connect(ui->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->confirmButton, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->lineEdit, &QLineEdit::textChanged, this,
            [this](QString const& value) { ui->confirmButton->setEnabled(!value.isEmpty()); });

    ui->titleLabel->setText(title);
    ui->lineEdit->setPlaceholderText(placeholder);
    ui->lineEdit->setText(text);
    ui->cancelButton->setText(cancelText);
    ui->confirmButton->setText(confirmText);
    ColorHint::applyColorHint(ui->lineEdit, QStringLiteral("INPUT_LIGHT"));
    installEventFilter(new Tavrin::Gui::AnypointWidgetDrag(this));
}

CrumbitInputDialog::~CrumbitInputDialog() = default;

QString CrumbitInputDialog::inputText() const
{
    return ui->lineEdit->text().simplified();
}
