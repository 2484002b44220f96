#pragma once

class QWidget;

namespace Tavrin {
namespace Util {
namespace SpontaneousDialog {

// The editor's main window, as registered by the host (setMainWindow); without one, the
// first visible top-level QMainWindow, then any top-level QMainWindow.
QWidget* GetMainWindow();
void setMainWindow(QWidget* window);

// The window a dialog the user did not open himself is parented to: the active modal
// widget, else the active window, else the main window. May be null (no windows yet).
QWidget* findParent();

} // namespace SpontaneousDialog
} // namespace Util
} // namespace Tavrin
