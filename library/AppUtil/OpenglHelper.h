#pragma once

#include "AppUtil_export.h"

#include <functional>
#include <set>
#include <string>

// Which OpenGL implementation the editor renders with, and switching it. The choice takes
// effect at the next start, so a switch asks the user to restart:
//
//   // View > Display > Software OpenGL
//   OpenglHelper::switchOpenglImplementation("displayMenu", [&] { return project.maySafelyDiscard(); }, true);
namespace OpenglHelper {

APPUTIL_EXPORT bool isSoftwareOpenglUsed();

// Records the switch and lets the switcher ask (Restart::showRestartDialog), run `callback`
// (false stops the switch) and restart the editor. False when nothing happened: the
// implementation asked for is the one in use, the user declined, or the restart failed
// (the switch then stays recorded for the next start). Switches to software stamp their
// statistics events with "SOURCE" = `source`.
APPUTIL_EXPORT bool switchOpenglImplementation(std::string const& source, std::function<bool()> const& callback,
                                               bool useSoftware);
// The same without questions to the user.
APPUTIL_EXPORT bool switchOpenglImplementationSilently(std::string const& source, std::function<bool()> const& callback,
                                                       bool useSoftware);

} // namespace OpenglHelper

namespace Restart {

enum class Reason { OpenglSwitch };

struct Settings
{
    std::set<Reason> reasons;
};

// Asks through the dialog strategy; true exactly when the user pressed "Restart".
APPUTIL_EXPORT bool showRestartDialog(Settings const& settings);

} // namespace Restart
