#pragma once

#include <QString>

// Texts known by a key rather than by their English wording (effect names and tags,
// collection items), looked up in the application's installed catalogues.
namespace Translator {

// The text of `key` in the user's language. Without a translation: `defaultText`, or the
// key itself when that is empty (so a tag without a translation comes back as its UUID).
QString translate(const QString& key, const QString& defaultText = QString());

} // namespace Translator
