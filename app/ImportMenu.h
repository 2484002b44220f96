#pragma once

#include <QString>

class MainWindow;

// The host's File menu: Import Files..., Import Folder..., Import Image Folder... (the
// chosen files go to the media bin) and Save Snapshot... (a picture of the current page).
// Each logs what happened ("import: ...", "snapshot: ...").
namespace ImportMenu {

void install(MainWindow& window);

// The missing-files dialog for the paths listed in `listFile` (one a line), with the search
// of `folder` started at once when one is given. Logs "relink: <old> -> <new>" per file
// found and "relink: <n> found, <m> still missing" when the dialog closes.
void findMissing(const QString& listFile, const QString& folder);

} // namespace ImportMenu
