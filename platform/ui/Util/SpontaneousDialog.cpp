#include "Util/SpontaneousDialog.h"

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

namespace Tavrin {
namespace Util {
namespace SpontaneousDialog {
namespace {
QPointer<QWidget>& registeredMainWindow()
{
    static QPointer<QWidget> window;
    return window;
}
} // namespace

void setMainWindow(QWidget* window)
{
    registeredMainWindow() = window;
}

QWidget* GetMainWindow()
{
    if (QWidget* window = registeredMainWindow())
        return window;
    QWidget* hidden = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (!qobject_cast<QMainWindow*>(widget))
            continue;
        if (widget->isVisible())
            return widget;
        if (!hidden)
            hidden = widget;
    }
    return hidden;
}

QWidget* findParent()
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return GetMainWindow();
}

} // namespace SpontaneousDialog
} // namespace Util
} // namespace Tavrin
