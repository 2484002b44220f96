#pragma once

class QWidget;

namespace Workaround {
namespace Ui {

// The fix-ups every new dialog of the application gets: no context-help button in the
// title bar (the application has no "What's this" help), and a styled background so the
// style sheet's background rules apply to plain QDialog subclasses too.
void apply(QWidget* dialog);

} // namespace Ui
} // namespace Workaround
