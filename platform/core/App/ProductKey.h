#pragma once

#include <QString>

class QJsonObject;

namespace Tavrin {
namespace App {

// The key under which processes of one product recognise each other, as the product
// description file (product.json) names it: "application.singleInstanceKey", else
// "<organization id>.<application name>" in lower case. Kept apart from the full
// description so that a launch which only needs the key reads nothing else.

// The key of a description's top-level object; empty when it names no product (a
// description the product refuses).
QString singleInstanceKeyOf(const QJsonObject& root);

// The key the product runs with when its description cannot be read.
QString fallbackSingleInstanceKey();

// Reads the key from a description file; the fallback key when the file is missing,
// malformed or names no product, as the product's services do then.
QString readSingleInstanceKey(const QString& productFile);

} // namespace App
} // namespace Tavrin
