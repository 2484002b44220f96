#include "ClickableWidgets.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QMouseEvent>
#include <QToolButton>

namespace Tavrin {
namespace Gui {

void ZLabel::mouseReleaseEvent(QMouseEvent* event)
{
    QLabel::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        emit clicked();
}

ButtonWithMenu::ButtonWithMenu(const QString& text, QWidget* parent)
    : QWidget(parent), m_button(new QToolButton), m_arrow(new QToolButton), m_menu(new QMenu(this))
{
    m_button->setText(text);
    m_button->setObjectName(QStringLiteral("mainButton"));
    m_arrow->setObjectName(QStringLiteral("menuArrow"));
    m_arrow->setArrowType(Qt::DownArrow);
    m_arrow->setMenu(m_menu);
    m_arrow->setPopupMode(QToolButton::InstantPopup);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_button);
    layout->addWidget(m_arrow);
    connect(m_button, &QToolButton::clicked, this, &ButtonWithMenu::clicked);
}

} // namespace Gui
} // namespace Tavrin
