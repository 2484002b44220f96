#pragma once

#include <QString>

#include <functional>

class QMenu;
class MainWindow;
class ProjectController;

// View > Display: software or hardware OpenGL, switched through OpenglHelper (a restart).
// Before the restart the project's unsaved changes are offered for saving, and a saved
// project is reopened by the new editor. Logs:
//
//   opengl: software|hardware                 (at start, from main)
//   opengl: going back to <kind> after ...    (a switch whose first start failed)
namespace DisplayMenu {

QMenu* install(MainWindow& window, ProjectController& project);

// What the menu does, for --request-opengl (asks) and --request-opengl-silently.
// False when nothing happens (unknown kind, already in use, declined, restart failed).
bool request(const QString& kind, ProjectController& project, bool silent);

// Once the editor is ready: the implementation in use is confirmed, and a start that had to
// go back to the previous implementation tells the user why.
void ready();

} // namespace DisplayMenu
