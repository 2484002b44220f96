#pragma once

#include <QString>

class QApplication;
class QMainWindow;

// The host's branding, links, locale and dialogs: reads product.json beside the
// executable, registers the product services, loads the catalogues of the chosen locale
// (--locale, else the system's), applies the application style sheet and installs the
// default dialog strategy behind a DialogTrail, which logs every dialog and its answer.
// With KLIPVANE_DISMISS_DIALOGS_MS=<ms> in the environment each dialog is dismissed that
// long after it appeared, for runs with no one to answer.
namespace HostServices {

// Registers the product services from product.json in `binDirectory`. Needs no
// application object, so a second launch can find its single-instance key before it pays
// for one. `locale` may be empty (the system's locale is used). Returns the locale in use.
// KLIPVANE_DISMISS_DIALOGS_MS, or -1 when dialogs wait for the user. For the host's own
// dialogs that do not go through the dialog strategy.
int dismissDialogsAfterMs();

QString registerProduct(const QString& binDirectory, const QString& locale);

// Loads the catalogues of the registered locale into `application`, applies the style
// sheet and installs the default dialog strategy.
void install(QApplication& application);

// Titles the main window with the product's localized full name and gives it a Help menu
// with the product's web links and the standard dialogs.
void decorateMainWindow(QMainWindow* window);

} // namespace HostServices
