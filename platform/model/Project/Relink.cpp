#include "Project/Relink.h"

#include "Timeline/Clip.h"

#include <QDir>

namespace Project {

namespace {

// The path under which the loader listed a missing medium.
QString missingKey(const MediaEntry& media)
{
    return QDir::cleanPath(media.path);
}

} // namespace

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
    int relinked = 0;
    Timeline::TimelineModel::Content& content = loaded->content;
    for (MediaEntry& media : loaded->media) {
        const QString key = missingKey(media);
        const auto it = found.constFind(key);
        if (!media.resolved.isEmpty() || it == found.constEnd() || !content.missingMedia.contains(key))
            continue;
        media.resolved = QDir::cleanPath(it.value());
        ++relinked;
    }
    // A clip's values are fixed once made; a relinked clip is a copy with the new path. The
    // content is not on a timeline yet, so nothing else holds the old clips.
    for (std::shared_ptr<Timeline::Clip>& clip : content.clips) {
        const QString path = clip->mediaPath();
        const auto it = found.constFind(path);
        if (it == found.constEnd() || !content.missingMedia.contains(path))
            continue;
        Timeline::Clip::Data data = clip->data();
        data.mediaPath = QDir::cleanPath(it.value());
        clip = std::make_shared<Timeline::Clip>(std::move(data));
    }
    for (auto it = found.cbegin(); it != found.cend(); ++it)
        content.missingMedia.remove(it.key());
    return relinked;
}

} // namespace Project
