#include "FileUtil/FileUtil.h"

#include "Conf/FormatConfiguration.h"
#include "Settings/ProjectFiles.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

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

bool accepted(const QFileInfo& info, const QSet<QString>& extensions)
{
    return info.isFile() && info.isReadable() && extensions.contains(info.suffix().toLower());
}

} // namespace

QStringList extractFiles(const QStringList& paths, const QStringList& extensions)
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
            QDirIterator it(info.absoluteFilePath(), QDir::Files | QDir::Readable | QDir::NoDotAndDotDot,
                            QDirIterator::Subdirectories);
            while (it.hasNext()) {
                it.next();
                if (accepted(it.fileInfo(), wanted))
                    found << QDir::cleanPath(it.filePath());
            }
            found.sort();
            result << found;
        } else if (accepted(info, wanted)) {
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
