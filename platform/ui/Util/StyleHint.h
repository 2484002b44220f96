#pragma once

#include <QString>

class QWidget;

namespace Util {

// Sets the dynamic property "styleHint" that the style sheet selects on
// (QPushButton[styleHint="activeButton"]) and re-polishes the widget so the change shows.
void applyStyleHint(QWidget* widget, const QString& hint);
QString styleHint(const QWidget* widget);

// Keeps a widget's size in step with its layout: whenever the layout asks for a new
// geometry (a label appears or disappears), the widget is resized to its size hint.
// The controller is a child of the widget and goes with it.
void installLayoutController(QWidget* widget);

// Re-applies the style sheet to a widget after one of its dynamic properties changed.
void repolish(QWidget* widget);

} // namespace Util

namespace ColorHint {
// Sets the dynamic property "colorHint" ("INPUT_LIGHT", ...) that picks the widget's
// palette in the style sheet, and re-polishes it.
void applyColorHint(QWidget* widget, const QString& hint);
QString colorHint(const QWidget* widget);
} // namespace ColorHint
