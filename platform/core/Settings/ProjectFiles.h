#pragma once

#include <QStringList>

namespace Settings {

// Lower-case extensions (without the dot) of the editor's project files.
QStringList supportedProjectFileExtensions();

} // namespace Settings
