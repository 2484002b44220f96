#include "Util/AlertBox.h"

#include "Util/StyleHint.h"
#include "Util/Workaround.h"

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
    setObjectName(QStringLiteral("alertBox"));
    ::Util::applyStyleHint(this, styleHintOf(level));
    Workaround::Ui::apply(this);
}

AlertBox::~AlertBox() = default;

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
