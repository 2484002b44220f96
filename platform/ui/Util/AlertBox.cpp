#include "Util/AlertBox.h"

#include "Util/StyleHint.h"
#include "Util/Workaround.h"

#include <QPushButton>

#include <algorithm>

namespace Tavrin {
namespace Util {
namespace {
QMessageBox::Icon iconOf(AlertBox::AlertLevel level)
{
    switch (level) {
    case AlertBox::Information:
        return QMessageBox::Information;
    case AlertBox::Warning:
        return QMessageBox::Warning;
    case AlertBox::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

QString styleHintOf(AlertBox::AlertLevel level)
{
    switch (level) {
    case AlertBox::Information:
        return QStringLiteral("information");
    case AlertBox::Warning:
        return QStringLiteral("warning");
    case AlertBox::Question:
        return QStringLiteral("question");
    }
    return QString();
}
} // namespace

AlertBox::AlertBox(AlertLevel level, const QString& title, const QString& text, QMessageBox::StandardButtons buttons,
                   QWidget* parent, Qt::WindowFlags flags)
    : QMessageBox(iconOf(level), title, text, buttons, parent, flags)
    , m_level(level)
{
    // QMessageBox adds its own title-bar hints to whatever it is given; the flags asked for
    // are the flags wanted (a box without a close button must not regain one).
    setWindowFlags(flags);
    setObjectName(QStringLiteral("alertBox"));
    ::Util::applyStyleHint(this, styleHintOf(level));
    Workaround::Ui::apply(this);
}

AlertBox::~AlertBox() = default;

void AlertBox::showEvent(QShowEvent* event)
{
    // The style sheet's "min-width" becomes each button's minimum width, below what a long
    // text (a German "Nicht speichern") needs, and QMessageBox fixes its size to its layout's
    // minimum: the buttons were squeezed and their texts cut off.
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setMinimumWidth(std::max(button->minimumWidth(), button->sizeHint().width()));
    QMessageBox::showEvent(event);
}

QMessageBox::StandardButton AlertBox::Exec()
{
    exec();
    return standardButton(clickedButton());
}

QMessageBox::StandardButton AlertBox::Exec(AlertLevel level, const QString& title, const QString& text,
                                           QMessageBox::StandardButtons buttons, QWidget* parent, Qt::WindowFlags flags)
{
    AlertBox box(level, title, text, buttons, parent, flags);
    return box.Exec();
}

} // namespace Util
} // namespace Tavrin
