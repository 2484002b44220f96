#pragma once

#include <QString>
#include <QStringList>

// Folders the file dialogs remember, one per purpose, and the naming of project files.
// An accessor pair per folder; an unset folder reads as empty.
namespace Settings {

QString lastAddVideoPath();
void setLastAddVideoPath(const QString& folder);
QString lastAddAudioPath();
void setLastAddAudioPath(const QString& folder);
QString lastAddImagePath();
void setLastAddImagePath(const QString& folder);
QString lastAddMediaPath();
void setLastAddMediaPath(const QString& folder);
QString lastAddDirectoryPath();
void setLastAddDirectoryPath(const QString& folder);
QString lastAddImageDirectoryPath();
void setLastAddImageDirectoryPath(const QString& folder);
QString userLutsSearchPath();
void setUserLutsSearchPath(const QString& folder);
QString defaultUserLutsSearchPath();
// Defaults to a "Snapshots" folder in the user's pictures.
QString snapshotPath();
void setSnapshotPath(const QString& folder);

// 1 makes the media dialogs always start in the standard folders, ignoring remembered ones.
int fileDialogStartMode();

// Project files: "kvproj", "Untitled", "*.kvproj" (open and save).
QString projectFileExtension();
QString projectNameDefault();
QString projectFileOpenFilter();
QString projectFileSaveFilter();
QStringList supportedProjectFileExtensions();
// Packages of effects and templates the package installer deploys: "kvpkg".
QString packageExtension();

} // namespace Settings
