#include "Gui/AnypointWidgetDrag.h"

#include <QMouseEvent>
#include <QWidget>

namespace Tavrin {
namespace Gui {

AnypointWidgetDrag::AnypointWidgetDrag(QWidget* window)
    : QObject(window)
    , m_window(window)
{
}

AnypointWidgetDrag::~AnypointWidgetDrag() = default;

bool AnypointWidgetDrag::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_window || !m_window)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() != Qt::LeftButton)
            break;
        m_dragging = true;
        m_pressOffset = mouse->globalPos() - m_window->window()->frameGeometry().topLeft();
        return true;
    }
    case QEvent::MouseMove: {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (!m_dragging || !(mouse->buttons() & Qt::LeftButton))
            break;
        m_window->window()->move(mouse->globalPos() - m_pressOffset);
        return true;
    }
    case QEvent::MouseButtonRelease:
        if (m_dragging && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            m_dragging = false;
            return true;
        }
        break;
    default:
        break;
    }
    return false;
}

} // namespace Gui
} // namespace Tavrin
