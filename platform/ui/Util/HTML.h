#pragma once

#include <QString>

namespace Util {
namespace HTML {

// An anchor `<a href="url" style="style">text</a>`; `text` is taken as rich text, the
// address is escaped for the attribute.
QString textWithLink(const QString& text, const QString& url, const QString& style = QString());
// `text` in a span of the given CSS font weight (700 is bold).
QString fontWeight(const QString& text, int weight);

} // namespace HTML
} // namespace Util
