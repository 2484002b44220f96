#pragma once

#include <QObject>
#include <QPoint>

class QWidget;

namespace Tavrin {
namespace Gui {

// An event filter that moves a frameless window when it is dragged with the left mouse
// button at any point that does not take the press itself (buttons and fields do).
//
//   dialog->installEventFilter(new AnypointWidgetDrag(dialog));
class AnypointWidgetDrag : public QObject
{
    Q_OBJECT

public:
    explicit AnypointWidgetDrag(QWidget* window);
    ~AnypointWidgetDrag() override;

    bool isDragging() const { return m_dragging; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* m_window;
    QPoint m_pressOffset;
    bool m_dragging = false;
};

} // namespace Gui
} // namespace Tavrin
