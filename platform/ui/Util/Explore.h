#pragma once

#include <QString>

namespace Tavrin {
namespace Util {

// Shows `path` selected in the user's file manager, as desktop applications do: the
// org.freedesktop.FileManager1 ShowItems call on the session bus; when no file manager
// answers it (no bus, no such service, an error), the file's folder is opened through
// QDesktopServices instead. Returns at once; the outcome is logged
// ("showFile: <path> in the file manager" or "showFile: <path>: opened its folder").
void ExploreSingleFile(const QString& path);

} // namespace Util
} // namespace Tavrin
