#include "Settings/ProjectFiles.h"

namespace Settings {

QStringList supportedProjectFileExtensions()
{
    return {QStringLiteral("kvproj")};
}

} // namespace Settings
