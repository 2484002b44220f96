#include "Settings/FileDialogPaths.h"

#include "Settings/Settings.h"

#include "FileUtil/Paths.h"


namespace Settings {
namespace {

QString folder(const char* key)
{
    return value(QStringLiteral("FileDialog/") + QLatin1String(key)).toString();
}

void setFolder(const char* key, const QString& folder)
{
    setValue(QStringLiteral("FileDialog/") + QLatin1String(key), folder);
}

} // namespace

QString lastAddVideoPath() { return folder("lastAddVideoPath"); }
void setLastAddVideoPath(const QString& f) { setFolder("lastAddVideoPath", f); }
QString lastAddAudioPath() { return folder("lastAddAudioPath"); }
void setLastAddAudioPath(const QString& f) { setFolder("lastAddAudioPath", f); }
QString lastAddImagePath() { return folder("lastAddImagePath"); }
void setLastAddImagePath(const QString& f) { setFolder("lastAddImagePath", f); }
QString lastAddMediaPath() { return folder("lastAddMediaPath"); }
void setLastAddMediaPath(const QString& f) { setFolder("lastAddMediaPath", f); }
QString lastAddDirectoryPath() { return folder("lastAddDirectoryPath"); }
void setLastAddDirectoryPath(const QString& f) { setFolder("lastAddDirectoryPath", f); }
QString lastAddImageDirectoryPath() { return folder("lastAddImageDirectoryPath"); }
void setLastAddImageDirectoryPath(const QString& f) { setFolder("lastAddImageDirectoryPath", f); }

QString userLutsSearchPath()
{
    const QString luts = folder("userLutsSearchPath");
    return luts.isEmpty() ? defaultUserLutsSearchPath() : luts;
}

void setUserLutsSearchPath(const QString& f) { setFolder("userLutsSearchPath", f); }

QString defaultUserLutsSearchPath()
{
    return FileUtil::documentsLocation() + QStringLiteral("/Klipvane/LUTs");
}

QString snapshotPath()
{
    const QString snapshots = folder("snapshotPath");
    return snapshots.isEmpty() ? FileUtil::picturesLocation() + QStringLiteral("/Snapshots") : snapshots;
}

void setSnapshotPath(const QString& f) { setFolder("snapshotPath", f); }

int fileDialogStartMode()
{
    return value(QStringLiteral("FileDialog/startMode"), 0).toInt();
}

QString projectFileExtension() { return QStringLiteral("kvproj"); }
QString projectNameDefault() { return QStringLiteral("Untitled"); }
QString projectFileOpenFilter() { return QStringLiteral("*.kvproj"); }
QString projectFileSaveFilter() { return QStringLiteral("*.kvproj"); }
QString packageExtension()
{
    return QStringLiteral("kvpkg");
}

QStringList supportedProjectFileExtensions() { return {QStringLiteral("kvproj")}; }

} // namespace Settings
