#include "Project/Relink.h"

#include "Timeline/Clip.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace Project {

namespace {

// The path under which the loader listed a missing medium.
QString missingKey(const MediaEntry& media)
{
    return QDir::cleanPath(media.path);
}

// "name.ext", then "name (2).ext", "name (3).ext"... whichever `taken` does not hold yet.
QString freeName(const QFileInfo& file, QSet<QString>* taken)
{
    QString name = file.fileName();
    const QString suffix = file.suffix().isEmpty() ? QString() : QLatin1Char('.') + file.suffix();
    for (int n = 2; taken->contains(name); ++n)
        name = QStringLiteral("%1 (%2)%3").arg(file.completeBaseName()).arg(n).arg(suffix);
    taken->insert(name);
    return name;
}

} // namespace

// Points every clip whose media path is a key of `paths` at its value. A clip's values are
// fixed once made, so a repointed clip is a copy; the content is not on a timeline yet, so
// nothing else holds the old clips.
void repoint(Timeline::TimelineModel::Content* content, const QMap<QString, QString>& paths)
{
    if (paths.isEmpty())
        return;
    for (std::shared_ptr<Timeline::Clip>& clip : content->clips) {
        const auto it = paths.constFind(clip->mediaPath());
        if (it == paths.constEnd())
            continue;
        Timeline::Clip::Data data = clip->data();
        data.mediaPath = it.value();
        clip = std::make_shared<Timeline::Clip>(std::move(data));
    }
}

QHash<QString, qint64> recordedSizes(const Loaded& loaded)
{
    QHash<QString, qint64> sizes;
    for (const MediaEntry& media : loaded.media)
        if (media.resolved.isEmpty() && media.size >= 0)
            sizes.insert(missingKey(media), media.size);
    return sizes;
}

int relink(Loaded* loaded, const QMap<QString, QString>& found)
{
    Timeline::TimelineModel::Content& content = loaded->content;
    QMap<QString, QString> paths;
    int relinked = 0;
    for (MediaEntry& media : loaded->media) {
        const QString key = missingKey(media);
        const auto it = found.constFind(key);
        if (!media.resolved.isEmpty() || it == found.constEnd() || !content.missingMedia.contains(key))
            continue;
        media.resolved = QDir::cleanPath(it.value());
        paths.insert(key, media.resolved);
        ++relinked;
    }
    repoint(&content, paths);
    for (auto it = paths.cbegin(); it != paths.cend(); ++it)
        content.missingMedia.remove(it.key());
    return relinked;
}

bool savePortable(const QString& path, const Timeline::TimelineModel& timeline, QString* error)
{
    const QDir mediaFolder(QFileInfo(path).absoluteDir().filePath(QStringLiteral("media")));
    if (!QDir().mkpath(mediaFolder.path())) {
        *error = QCoreApplication::translate("Project", "The folder %1 could not be made.").arg(mediaFolder.path());
        return false;
    }
    QMap<QString, QString> copies;
    QSet<QString> taken;
    for (const QString& source : timeline.mediaPaths()) {
        const QFileInfo info(source);
        if (!info.isFile())
            continue; // missing: nothing to copy, the clip keeps its path
        const QString target = QDir::cleanPath(mediaFolder.filePath(freeName(info, &taken)));
        // Saving a portable project over itself: its media are in place already.
        if (QFileInfo(target) != info) {
            QFile::remove(target);
            QFile copy(source);
            if (!copy.copy(target)) {
                *error = QCoreApplication::translate("Project", "%1 could not be copied: %2").arg(source, copy.errorString());
                return false;
            }
        }
        copies.insert(QDir::cleanPath(source), target);
    }
    // The same document, read back and pointed at the copies: what is saved is exactly what
    // the editor would save for a timeline over the copies.
    Loaded loaded;
    if (!parse(serialize(timeline, path), path, &loaded, error))
        return false;
    repoint(&loaded.content, copies);
    Timeline::TimelineModel portable;
    portable.reset(std::move(loaded.content));
    return save(path, portable, error);
}

} // namespace Project
