#include "FileUtil/Paths.h"

#include "Settings/Settings.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

namespace FS {

QString cleanPath(const QString& path)
{
    return QDir::cleanPath(path);
}

QStringList cleanPaths(const QStringList& paths)
{
    QStringList result;
    result.reserve(paths.size());
    for (const QString& path : paths)
        result << cleanPath(path);
    return result;
}

QString fileName(const QString& path)
{
    return QFileInfo(path).fileName();
}

QString absolutePath(const QString& path)
{
    return QFileInfo(path).absolutePath();
}

QString withSuffix(const QString& path, const QString& suffix)
{
    if (suffix.isEmpty() || path.endsWith(QLatin1Char('.') + suffix, Qt::CaseInsensitive))
        return cleanPath(path);
    return cleanPath(path + QLatin1Char('.') + suffix);
}

QStringList pathList(const QString& folder, const QString& pattern)
{
    QStringList result;
    const QDir dir(folder);
    for (const QString& name : dir.entryList({pattern}, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name))
        result << cleanPath(dir.filePath(name));
    return result;
}

bool makePath(const QString& folder)
{
    return !folder.isEmpty() && QDir().mkpath(folder);
}

} // namespace FS

namespace FileUtil {
namespace {

QString standardFolder(QStandardPaths::StandardLocation location)
{
    const QString folder = QStandardPaths::writableLocation(location);
    return folder.isEmpty() ? QDir::homePath() : folder;
}

const QString LastProjectDirectoryKey = QStringLiteral("FileDialog/lastProjectDirectory");

} // namespace

QString moviesLocation()
{
    return standardFolder(QStandardPaths::MoviesLocation);
}

QString musicLocation()
{
    return standardFolder(QStandardPaths::MusicLocation);
}

QString picturesLocation()
{
    return standardFolder(QStandardPaths::PicturesLocation);
}

QString documentsLocation()
{
    return standardFolder(QStandardPaths::DocumentsLocation);
}

QString lastProjectDirectory()
{
    const QString folder = Settings::value(LastProjectDirectoryKey).toString();
    return folder.isEmpty() ? documentsLocation() : folder;
}

void setLastProjectDirectory(const QString& folder)
{
    Settings::setValue(LastProjectDirectoryKey, folder);
}

QString closestPath(const QString& path)
{
    QString candidate = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    while (!candidate.isEmpty()) {
        if (QFileInfo(candidate).isDir())
            return FS::cleanPath(candidate);
        const QString parent = QFileInfo(candidate).absolutePath();
        if (parent == candidate)
            break;
        candidate = parent;
    }
    return QDir::homePath();
}

QStringList parseDirectory(const QString& folder, bool recursive)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                    recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (it.hasNext())
        files << FS::cleanPath(it.next());
    files.sort();
    return files;
}

QStringList filterFilesFromDVD(const QStringList& files)
{
    static const QStringList dvdExtensions{QStringLiteral("vob"), QStringLiteral("ifo"), QStringLiteral("bup")};
    QStringList result;
    QHash<QString, bool> dvdFolders;
    for (const QString& file : files) {
        const QFileInfo info(file);
        const bool inDvd = info.absoluteDir().dirName().compare(QLatin1String("VIDEO_TS"), Qt::CaseInsensitive) == 0
            && dvdExtensions.contains(info.suffix().toLower());
        if (!inDvd) {
            result << file;
            continue;
        }
        const QString folder = info.absolutePath();
        if (dvdFolders.contains(folder))
            continue;
        dvdFolders.insert(folder, true);
        const QStringList ifo = QDir(folder).entryList({QStringLiteral("VIDEO_TS.IFO")}, QDir::Files);
        result << (ifo.isEmpty() ? file : FS::cleanPath(QDir(folder).filePath(ifo.first())));
    }
    return result;
}

QString getGroupExtentions(const Tavrin::Conf::IFormatFile::Groups& groups)
{
    QStringList patterns;
    for (const auto group : groups) {
        const QStringList extensions = Tavrin::Conf::GetSupportedFormatExtensions(group);
        if (extensions.isEmpty())
            patterns << QStringLiteral("*");
        for (const QString& extension : extensions)
            patterns << QStringLiteral("*.") + extension;
    }
    patterns.removeDuplicates();
    return patterns.join(QLatin1Char(' '));
}

QString getGroupExtFilter(Tavrin::Conf::IFormatFile::Group group)
{
    return Tavrin::Conf::groupDisplayName(group) + QStringLiteral(" (") + getGroupExtentions({group}) + QLatin1Char(')');
}

QString getExtFilterForDialog(const Tavrin::Conf::IFormatFile::Groups& groups)
{
    QStringList filters;
    for (const auto group : groups)
        filters << getGroupExtFilter(group);
    return filters.join(QStringLiteral(";;"));
}

} // namespace FileUtil
