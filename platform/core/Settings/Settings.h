#pragma once

#include <QString>
#include <QVariant>

// The editor's settings store: one INI file in the user's configuration folder
// ("<config>/Klipvane/klipvane.ini"). The folder can be moved with the environment
// variable KLIPVANE_CONFIG_DIR or, in tests, with setFileName().
//
// A file that cannot be trusted is never written over: when it is damaged (QSettings would
// silently drop keys from it), a folder, unreadable or read-only, one error line says so
// (naming the copy kept of a damaged file) and the store runs on defaults, or on the values
// of a read-only file, keeping changes in memory for the rest of the process.
namespace Settings {

QString fileName();
void setFileName(const QString& path);
// False when the store runs detached from its file (see above).
bool isSaved();

QVariant value(const QString& key, const QVariant& defaultValue = QVariant());
void setValue(const QString& key, const QVariant& value);
void remove(const QString& key);
void sync();

// Per-key flags that suppress a notice ("don't show this again").
bool dontShowDialog(const QString& key);
void setDontShowDialog(const QString& key, bool dontShow);

// Whether the editor offers to match the project's frame to the first media placed on an
// empty timeline (on unless the user turned it off).
bool adjustAspectWhenFileAdded();
void setAdjustAspectWhenFileAdded(bool const& adjust);

} // namespace Settings
