#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace Tavrin {
namespace Gui {
namespace StandardDialogs {

// An open dialog in which files and folders can be chosen together (the Open button takes
// a selected folder instead of entering it; a double click still enters it). Always Qt's
// own dialog, since the system dialogs choose either files or folders. Returns the chosen
// paths in the order chosen, or an empty list when cancelled.
QStringList getOpen(QWidget* parent, const QString& caption, const QString& directory, const QString& filter);

} // namespace StandardDialogs
} // namespace Gui
} // namespace Tavrin
