#include "FileUtil/FileUtil.h"

#include "Conf/FormatConfiguration.h"
#include "Settings/FileDialogPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace FileUtil {

QStringList supportedFileExtensions()
{
    // Projects open like media from the command line, a second launch or a drop.
    return Tavrin::Conf::FormatConfiguration::instance().allExtensions() + Settings::supportedProjectFileExtensions();
}

QStringList videoExtensions()
{
    return Tavrin::Conf::FormatConfiguration::instance().extensions(QStringLiteral("video"));
}

QStringList pictureExtensions()
{
    return Tavrin::Conf::FormatConfiguration::instance().extensions(QStringLiteral("picture"));
}

QStringList musicExtensions()
{
    return Tavrin::Conf::FormatConfiguration::instance().extensions(QStringLiteral("music"));
}

namespace {

bool wantedExtension(const QString& path, const QSet<QString>& extensions)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return dot >= 0 && extensions.contains(name.mid(dot + 1).toLower());
}

// Kept although it cannot be opened, so that opening it tells the user why: a name whose
// bytes are not valid UTF-8 (decoded with replacement characters, it names nothing) and a
// symbolic link loop. Plain missing files are dropped as before.
bool keptForItsReport(const QString& path, const QByteArray& native)
{
    struct stat status{};
    return path.contains(QChar::ReplacementCharacter) || (::stat(native.constData(), &status) != 0 && errno == ELOOP);
}

bool accepted(const QFileInfo& info, const QSet<QString>& extensions)
{
    return info.isFile() && info.isReadable() && extensions.contains(info.suffix().toLower());
}

// The wanted files below `folder`, read with the system's own calls: Qt's directory
// iterator leaves out names whose bytes are not UTF-8, and the user would never learn of
// them. Symbolic links to folders are not followed (a link to "/" would walk everything).
void walk(const QByteArray& folder, const QSet<QString>& extensions, const std::function<bool()>& cancelled,
          QStringList& found)
{
    std::unique_ptr<DIR, int (*)(DIR*)> dir(::opendir(folder.constData()), &::closedir);
    if (!dir)
        return;
    std::vector<QByteArray> folders;
    while (const dirent* entry = ::readdir(dir.get())) {
        if (cancelled && cancelled())
            return;
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        const QByteArray native = folder + '/' + name;
        unsigned char type = entry->d_type;
        if (type == DT_UNKNOWN) {
            struct stat status{};
            if (::lstat(native.constData(), &status) == 0)
                type = S_ISDIR(status.st_mode) ? DT_DIR : S_ISLNK(status.st_mode) ? DT_LNK : DT_REG;
        }
        if (type == DT_DIR) {
            folders.push_back(native);
            continue;
        }
        const QString path = QFile::decodeName(native);
        if (!wantedExtension(path, extensions))
            continue;
        struct stat status{};
        if (keptForItsReport(path, native)
            || (::stat(native.constData(), &status) == 0 && S_ISREG(status.st_mode) && ::access(native.constData(), R_OK) == 0))
            found << path;
    }
    dir.reset();
    for (const QByteArray& below : folders)
        walk(below, extensions, cancelled, found);
}

} // namespace

QStringList extractFiles(const QStringList& paths, const QStringList& extensions)
{
    return extractFiles(paths, extensions, {});
}

bool containsFolder(const QStringList& paths)
{
    return std::any_of(paths.begin(), paths.end(),
                       [](const QString& path) { return !path.isEmpty() && QFileInfo(path).isDir(); });
}

QStringList extractFiles(const QStringList& paths, const QStringList& extensions,
                         const std::function<bool()>& cancelled)
{
    QSet<QString> wanted;
    for (const QString& extension : extensions)
        wanted.insert(extension.toLower());

    QStringList result;
    for (const QString& path : paths) {
        if (path.isEmpty())
            continue;
        const QFileInfo info(path);
        if (info.isDir()) {
            QStringList found;
            walk(QFile::encodeName(QDir::cleanPath(info.absoluteFilePath())), wanted, cancelled, found);
            found.sort();
            result << found;
        } else if (accepted(info, wanted)
                   || (wantedExtension(path, wanted) && keptForItsReport(path, QFile::encodeName(path)))) {
            result << QDir::cleanPath(info.absoluteFilePath());
        }
    }
    return result;
}

} // namespace FileUtil

namespace FS {
QString extensionL(const QString& path)
{
    return QFileInfo(path).suffix().toLower();
}
} // namespace FS
