#pragma once

#include <QString>

#include <functional>
#include <vector>

class QMenu;

// Every standard dialog of the installed dialog strategy, with sample arguments, so a
// person can look at them: from the Help menu, or rendered to PNG files with
// `klipvane --dialog-gallery <folder>` (one file per operation, named after it).
namespace DialogGallery {

struct Entry
{
    QString name;               // the operation, and the PNG's base name
    std::function<void()> show; // runs the dialog through the Dialog:: functions
};

// Every entry, in the order of the strategy's operations.
std::vector<Entry> entries();

// Adds one action per entry to `menu`.
void addToMenu(QMenu* menu);

// Before QApplication exists: makes the gallery render offscreen unless a platform was
// chosen explicitly.
void prepareEnvironment();

// Shows each entry, saves a picture of its dialog into `folder` and closes it. Returns the
// process exit status: 0 when every picture was written.
int render(const QString& folder);

} // namespace DialogGallery
