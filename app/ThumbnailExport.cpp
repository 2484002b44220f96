#include "ThumbnailExport.h"

#include <Media/Thumbnails.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <glog/logging.h>

namespace ThumbnailExport {
namespace {

const char* originName(Media::Thumbnail::Origin origin)
{
    switch (origin) {
    case Media::Thumbnail::Origin::Made: return "made";
    case Media::Thumbnail::Origin::Failed: return "failed";
    default: return "cached";
    }
}

} // namespace

int run(const QString& folder, const QStringList& files, int size)
{
    if (files.isEmpty()) {
        LOG(ERROR) << "thumbnails: no file named on the command line";
        return 2;
    }
    if (!QDir().mkpath(folder)) {
        LOG(ERROR) << "thumbnails: can't create " << folder.toStdString();
        return 1;
    }
    auto& service = Media::Thumbnails::instance();
    int left = 0;
    int failures = 0;
    QSet<QString> names;
    QSet<QString> asked;
    auto save = [&](const Media::Thumbnail& thumbnail) {
        QString line = QStringLiteral("thumbnail: %1 %2x%3 (%4)")
                           .arg(thumbnail.path)
                           .arg(thumbnail.image.width())
                           .arg(thumbnail.image.height())
                           .arg(QLatin1String(originName(thumbnail.origin)));
        if (thumbnail.isFailed()) {
            line += QLatin1Char(' ') + thumbnail.error;
            ++failures;
        } else {
            // Files of the same name from different folders do not overwrite each other.
            QString name = QFileInfo(thumbnail.path).fileName() + QStringLiteral(".png");
            for (int n = 2; names.contains(name); ++n)
                name = QStringLiteral("%1-%2.png").arg(QFileInfo(thumbnail.path).fileName()).arg(n);
            names.insert(name);
            if (!thumbnail.image.save(QDir(folder).filePath(name), "PNG")) {
                line += QStringLiteral(" not written to ") + QDir(folder).filePath(name);
                ++failures;
            }
        }
        LOG(INFO) << line.toStdString();
        if (--left == 0)
            QCoreApplication::quit();
    };
    const auto connection = QObject::connect(&service, &Media::Thumbnails::finished, &service, save);
    for (const QString& path : files) {
        if (asked.contains(path))
            continue;
        asked.insert(path);
        ++left;
        const QImage known = service.request(path, size);
        if (!known.isNull())
            save(Media::Thumbnail{path, size, known, Media::Thumbnail::Origin::Memory, QString()});
    }
    if (left > 0)
        QCoreApplication::exec();
    QObject::disconnect(connection);
    return failures ? 1 : 0;
}

} // namespace ThumbnailExport
