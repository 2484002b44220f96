#include "FileDialog.h"

#include "Dialog/DialogStrategy.h"
#include "Dialog/MissingFilesDialog/MissingFilesDialog.h"

#include <Conf/FormatFile.h>
#include <FileUtil/FileUtil.h>
#include <FileUtil/Paths.h>
#include <Gui/StandardDialogs.h>
#include <Settings/FileDialogPaths.h>
#include <Util/Explore.h>
#include <Util/SpontaneousDialog.h>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QSet>

#include <glog/logging.h>

namespace FileDialog {
namespace {

using Group = Tavrin::Conf::IFormatFile::Group;
using Groups = Tavrin::Conf::IFormatFile::Groups;
using Tavrin::Conf::IFormatFile;

const QString SiblingProjectExtension = QStringLiteral("kdxproj");

struct Request
{
    QString title;
    QString filter;
    QString selectedFilter;
    QString directory;
    QString selectFile;
    QFileDialog::FileMode mode = QFileDialog::ExistingFile;
    QFileDialog::AcceptMode accept = QFileDialog::AcceptOpen;
    QFileDialog::Options options = QFileDialog::HideNameFilterDetails;
};

QStringList run(const Request& request)
{
    QFileDialog dialog(Tavrin::Util::SpontaneousDialog::findParent(), request.title, request.directory, request.filter);
    dialog.setFileMode(request.mode);
    dialog.setOptions(request.options);
    dialog.setAcceptMode(request.accept);
    if (!request.selectedFilter.isEmpty())
        dialog.selectNameFilter(request.selectedFilter);
    if (!request.selectFile.isEmpty())
        dialog.selectFile(request.selectFile);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.selectedFiles();
}

QString runSingle(const Request& request)
{
    const QStringList chosen = run(request);
    return chosen.isEmpty() ? QString() : chosen.first();
}

QString chooseFolder(const QString& title, const QString& start)
{
    Request request;
    request.title = title;
    request.directory = start;
    request.mode = QFileDialog::Directory;
    request.options = QFileDialog::ShowDirsOnly;
    return runSingle(request);
}

QString orStandard(const QString& remembered, const QString& standard)
{
    return remembered.isEmpty() ? standard : remembered;
}

struct KindFolder
{
    QString (*get)();
    void (*set)(const QString&);
    QString (*standard)();
};

KindFolder folderOf(int kind)
{
    switch (kind) {
    case Video: return {Settings::lastAddVideoPath, Settings::setLastAddVideoPath, FileUtil::moviesLocation};
    case Audio: return {Settings::lastAddAudioPath, Settings::setLastAddAudioPath, FileUtil::musicLocation};
    case Images: return {Settings::lastAddImagePath, Settings::setLastAddImagePath, FileUtil::picturesLocation};
    default: return {Settings::lastAddMediaPath, Settings::setLastAddMediaPath, FileUtil::moviesLocation};
    }
}

QString titleOf(int kind)
{
    switch (kind) {
    case Video: return QObject::tr("Open Video Files");
    case Audio: return QObject::tr("Open Audio Files");
    case Images: return QObject::tr("Open Image Files");
    default: return QObject::tr("Open Media Files");
    }
}

// The name of the composite entry, with a few examples of what it holds.
QString compositeName(int kind)
{
    switch (kind) {
    case Video:
    case Audio:
    case Images: return QString();
    case Video | Audio: return QObject::tr("Media Files") + QStringLiteral(" (*.mp4;*.avi;*.mp3;...)");
    case Video | Images: return QObject::tr("Media Files") + QStringLiteral(" (*.mp4;*.avi;*.jpeg;...)");
    case Audio | Images: return QObject::tr("Media Files") + QStringLiteral(" (*.jpeg;*.png;*.mp3;...)");
    case Video | Audio | Images: return QObject::tr("Media Files") + QStringLiteral(" (*.mp4;*.jpeg;*.mp3;...)");
    default: return QObject::tr("Media Files");
    }
}

const Groups MediaGroups{IFormatFile::GROUP_ALL_VIDEO, IFormatFile::GROUP_ALL_IMAGES, IFormatFile::GROUP_ALL_AUDIO};

QString allSupportedEntry(const QString& extra)
{
    return QObject::tr("All Supported Files") + QStringLiteral(" (") + FileUtil::getGroupExtentions(MediaGroups) + extra
        + QStringLiteral(");;");
}

QStringList postProcess(const QStringList& chosen)
{
    QStringList result;
    QStringList unopenable;
    for (const QString& file : FileUtil::filterFilesFromDVD(chosen)) {
        const QFileInfo info(file);
        if (info.isDir())
            result << FS::pathList(file, QStringLiteral("*.zrec")); // a recording folder
        else if (!info.isFile() || !info.isReadable())
            unopenable << file;
        else
            result << file; // media, or a project of either format (told apart by extension later)
    }
    if (!unopenable.isEmpty())
        Dialog::showWarning(QObject::tr("Failed to open files"),
                            QObject::tr("Cannot open files: ") + unopenable.join(QStringLiteral(", ")));
    return FS::cleanPaths(result);
}

QStringList openMedia(int kind, bool multiple)
{
    const int word = kind & ~AllFiles;
    Groups groups;
    if (word & Video)
        groups << IFormatFile::GROUP_ALL_VIDEO;
    if (word & Images)
        groups << IFormatFile::GROUP_ALL_IMAGES;
    if (word & Audio)
        groups << IFormatFile::GROUP_ALL_AUDIO;
    if (kind & AllFiles)
        groups << IFormatFile::GROUP_ALL_FILES;

    const KindFolder folder = folderOf(word);
    const QString remembered = Settings::fileDialogStartMode() == 1 ? QString() : folder.get();

    QString composite;
    if (word == (Video | Audio | Images | Projects))
        composite = allSupportedEntry(QStringLiteral(" *.") + SiblingProjectExtension + QLatin1Char(' ')
                                      + Settings::projectFileOpenFilter());
    if (!groups.isEmpty())
        composite += compositeName(word) + QLatin1Char('(') + FileUtil::getGroupExtentions(groups)
            + (word == (Video | Audio | Images) ? QStringLiteral(" *.") + SiblingProjectExtension : QString())
            + QStringLiteral(");;");

    Request request;
    request.title = titleOf(word);
    request.filter = composite + FileUtil::getExtFilterForDialog(groups);
    request.directory = orStandard(remembered, folder.standard());
    request.mode = multiple ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
    const QStringList chosen = run(request);
    if (chosen.isEmpty())
        return {};
    folder.set(QFileInfo(chosen.first()).absolutePath());
    return postProcess(chosen);
}

// "Open Folder" in the remembered folder (else the standard one); remembers the choice and
// returns it as an absolute path.
QString openFolder(const KindFolder& folder)
{
    const QString chosen = chooseFolder(QObject::tr("Open Folder"), orStandard(folder.get(), folder.standard()));
    if (chosen.isEmpty())
        return {};
    const QString absolute = QFileInfo(chosen).absoluteFilePath();
    folder.set(absolute);
    return absolute;
}

QString projectFilter(const QString& patterns)
{
    return QObject::tr("Project files (%1)").arg(patterns);
}

} // namespace

QStringList openFiles(int kind)
{
    return openMedia(kind, true);
}

QString openFile(int kind)
{
    const QStringList files = openMedia(kind, false);
    return files.isEmpty() ? QString() : files.first();
}

QStringList openAddFilesAndDirectoriesDialog()
{
    const QString filter = allSupportedEntry(QString()) + FileUtil::getExtFilterForDialog(MediaGroups);
    const QStringList chosen = Tavrin::Gui::StandardDialogs::getOpen(
        Tavrin::Util::SpontaneousDialog::findParent(), QString(),
        orStandard(Settings::lastAddDirectoryPath(), FileUtil::moviesLocation()), filter);
    QStringList files;
    for (const QString& path : chosen) {
        if (QFileInfo(path).isDir())
            files << FileUtil::parseDirectory(path, true);
        else
            files << FS::cleanPath(path);
    }
    return files;
}

QStringList openDirectory()
{
    const QString folder = openFolder({Settings::lastAddDirectoryPath, Settings::setLastAddDirectoryPath, FileUtil::moviesLocation});
    return folder.isEmpty() ? QStringList() : FileUtil::parseDirectory(folder, true);
}

QStringList openDirectoryAllImages()
{
    const QString absolute = openFolder(
        {Settings::lastAddImageDirectoryPath, Settings::setLastAddImageDirectoryPath, FileUtil::picturesLocation});
    if (absolute.isEmpty())
        return {};
    QSet<QString> images;
    for (const QString& extension : Tavrin::Conf::GetSupportedFormatExtensions(IFormatFile::GROUP_ALL_IMAGES))
        images.insert(extension.toLower());
    QStringList result;
    for (const QString& file : FileUtil::parseDirectory(absolute, true)) {
        if (images.contains(FS::extensionL(file)))
            result << FS::cleanPath(file);
    }
    return result;
}

QString openLutFile()
{
    const QString remembered = Settings::userLutsSearchPath();
    Request request;
    request.title = QObject::tr("Open Lut Table file");
    request.filter = QObject::tr("Lut cube files (%1)").arg(QStringLiteral("*.cube"));
    request.directory = QFileInfo(remembered).isDir() ? remembered : Settings::defaultUserLutsSearchPath();
    const QString file = runSingle(request);
    if (!file.isEmpty())
        Settings::setUserLutsSearchPath(QFileInfo(file).absolutePath());
    return file;
}

QString openProject(QString folder)
{
    Request request;
    request.title = QObject::tr("Open Project");
    request.filter = projectFilter(Settings::projectFileOpenFilter());
    request.selectedFilter = request.filter;
    request.directory = folder.isEmpty() ? FileUtil::lastProjectDirectory() : folder;
    const QString file = runSingle(request);
    return file.isEmpty() ? QString() : FS::cleanPath(file);
}

QStringList openStockedAudioFiles(QString folder)
{
    Request request;
    request.title = QObject::tr("Open Audio Files");
    request.filter = FileUtil::getExtFilterForDialog({IFormatFile::GROUP_ALL_AUDIO, IFormatFile::GROUP_ALL_FILES});
    request.directory = folder;
    request.mode = QFileDialog::ExistingFiles;
    return run(request);
}

QString savingProjectPath(QString path)
{
    const QString extension = Settings::projectFileExtension();
    Request request;
    request.title = QObject::tr("Save Project");
    request.filter = projectFilter(Settings::projectFileSaveFilter());
    request.directory = path.isEmpty()
        ? QDir(FileUtil::lastProjectDirectory()).filePath(Settings::projectNameDefault() + QLatin1Char('.') + extension)
        : FS::cleanPath(path);
    request.accept = QFileDialog::AcceptSave;
    request.mode = QFileDialog::AnyFile;
    const QString answer = runSingle(request);
    if (answer.isEmpty())
        return {};
    if (FS::extensionL(answer) == extension.toLower())
        return FS::cleanPath(answer);
    return FS::withSuffix(answer, extension);
}

QString savingProjectPortablePath(const QString& current)
{
    const QString project = savingProjectPath(current);
    if (project.isEmpty())
        return {};
    const QFileInfo info(project);
    const QString folder = QDir(info.absolutePath()).filePath(info.completeBaseName());
    const QString target = QDir(folder).filePath(info.fileName());
    if (QFileInfo(folder).exists()) {
        if (!Dialog::alertOverwriteFolder(QFileInfo(folder).baseName()))
            return {};
        if (FS::cleanPath(target) != FS::cleanPath(current) && !QDir(folder).removeRecursively()) {
            Dialog::showWarning(QObject::tr("Save Project"), QObject::tr("Can not save project file"));
            return {};
        }
    }
    FS::makePath(folder);
    return FS::cleanPath(target);
}

QString savingSnapshotPath()
{
    const QString folder = Settings::snapshotPath();
    if (!QFileInfo(folder).isDir())
        FS::makePath(folder);
    Request request;
    request.title = QObject::tr("Save Snapshot");
    request.filter = QObject::tr("Snapshot files (%1%2)").arg(QStringLiteral("*."), QStringLiteral("png"));
    request.directory = QDir(folder).filePath(QObject::tr("snapshot") + QStringLiteral(".png"));
    request.accept = QFileDialog::AcceptSave;
    request.mode = QFileDialog::AnyFile;
    const QString file = runSingle(request);
    if (file.isEmpty())
        return {};
    const QString chosenFolder = QFileInfo(file).absolutePath();
    if (chosenFolder != folder)
        Settings::setSnapshotPath(chosenFolder);
    return file;
}

QString browseDirectory(const QString& start)
{
    const QString folder = chooseFolder(QObject::tr("Select Folder"), FileUtil::closestPath(start));
    return folder.isEmpty() ? QString() : FS::cleanPath(folder);
}

QString browseDirectoryUrl(const QUrl& start)
{
    if (start.isLocalFile() || start.isEmpty())
        return browseDirectory(start.toLocalFile());
    const QUrl chosen = QFileDialog::getExistingDirectoryUrl(Tavrin::Util::SpontaneousDialog::findParent(),
                                                             QObject::tr("Select Folder"), start, QFileDialog::ShowDirsOnly);
    return chosen.toLocalFile();
}

QString findMissingFile(QString path)
{
    const QString extension = FS::extensionL(path);
    auto has = [&extension](Group group) {
        return Tavrin::Conf::GetSupportedFormatExtensions(group).contains(extension);
    };
    Groups groups;
    QString standard;
    if (has(IFormatFile::GROUP_DVD)) {
        groups << IFormatFile::GROUP_DVD;
    } else {
        if (has(IFormatFile::GROUP_ALL_VIDEO)) {
            groups << IFormatFile::GROUP_ALL_VIDEO;
            standard = FileUtil::moviesLocation();
        }
        if (has(IFormatFile::GROUP_ALL_IMAGES)) {
            groups << IFormatFile::GROUP_ALL_IMAGES;
            standard = FileUtil::picturesLocation();
        }
        if (has(IFormatFile::GROUP_ALL_AUDIO)) {
            groups << IFormatFile::GROUP_ALL_AUDIO;
            standard = FileUtil::musicLocation();
        }
    }
    if (groups.isEmpty())
        return {};
    const QString folder = FS::absolutePath(path);
    Request request;
    request.title = QObject::tr("Find missing file:") + QLatin1Char(' ') + FS::fileName(path);
    request.selectedFilter = FileUtil::getGroupExtFilter(groups.first());
    groups << IFormatFile::GROUP_ALL_FILES;
    request.filter = FileUtil::getExtFilterForDialog(groups);
    request.directory = QFileInfo(folder).isDir() ? folder : (standard.isEmpty() ? FileUtil::moviesLocation() : standard);
    const QString file = runSingle(request);
    return file.isEmpty() ? QString() : FS::cleanPath(file);
}

bool findMissingFiles(QStringList paths, QMap<QString, QString>& found)
{
    if (paths.isEmpty())
        return true;
    const QSet<QString> missing(paths.cbegin(), paths.cend());
    MissingFilesDialog dialog(Tavrin::Util::SpontaneousDialog::findParent());
    dialog.setMissingFiles(missing);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    const QMap<QString, QString> result = dialog.foundFiles();
    for (auto it = result.cbegin(); it != result.cend(); ++it)
        found.insert(it.key(), it.value());
    return accepted;
}

void showFile(QString path)
{
    Tavrin::Util::ExploreSingleFile(path);
}

} // namespace FileDialog
