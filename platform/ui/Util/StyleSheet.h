#pragma once

#include <QString>

namespace Tavrin {
namespace Util {

// The application's style sheet (":/style/klipvane.qss"); empty if the resource is missing.
QString applicationStyleSheet();

} // namespace Util
} // namespace Tavrin
