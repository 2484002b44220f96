#pragma once

#include <QString>
#include <QVariant>

// The editor's settings store: one INI file in the user's configuration folder
// ("<config>/Klipvane/klipvane.ini"). The folder can be moved with the environment
// variable KLIPVANE_CONFIG_DIR or, in tests, with setFileName().
namespace Settings {

QString fileName();
void setFileName(const QString& path);

QVariant value(const QString& key, const QVariant& defaultValue = QVariant());
void setValue(const QString& key, const QVariant& value);
void remove(const QString& key);
void sync();

// Per-key flags that suppress a notice ("don't show this again").
bool dontShowDialog(const QString& key);
void setDontShowDialog(const QString& key, bool dontShow);

} // namespace Settings
