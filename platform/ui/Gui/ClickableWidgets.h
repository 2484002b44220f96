#pragma once

#include <QLabel>
#include <QWidget>

class QMenu;
class QToolButton;

namespace Tavrin {
namespace Gui {

// A label that reacts to a left click, for links and tiles drawn as text.
class ZLabel : public QLabel
{
    Q_OBJECT
public:
    using QLabel::QLabel;

signals:
    void clicked();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
};

// A button with a drop-down arrow beside it: the button does the main thing, the arrow
// opens `menu()` with the alternatives.
class ButtonWithMenu : public QWidget
{
    Q_OBJECT
public:
    explicit ButtonWithMenu(const QString& text, QWidget* parent = nullptr);

    QToolButton* button() const { return m_button; }
    QMenu* menu() const { return m_menu; }

signals:
    void clicked();

private:
    QToolButton* m_button;
    QToolButton* m_arrow;
    QMenu* m_menu;
};

} // namespace Gui
} // namespace Tavrin
