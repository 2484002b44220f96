#include "Project/ProjectFile.h"

#include "Serialize/JsonReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QThreadPool>

#include "Project/Relink.h"
#include "Task/Task.h"

namespace Project {

namespace {

const QString kFormatName = QStringLiteral("klipvane-project");

QString trackName(Timeline::TrackKind kind)
{
    return kind == Timeline::TrackKind::Audio ? QStringLiteral("audio") : QStringLiteral("video");
}

// Looks for each medium where it was, else where it is beside the project (a folder moved
// together with its media still opens), and sets `resolved` where one is found; reads the
// recorded dates (`modified[i]` is the text of media[i]'s).
void findMedia(QList<MediaEntry>* media, const QStringList& modified, const QString& folderPath)
{
    const QDir folder(folderPath);
    for (int i = 0; i < media->size(); ++i) {
        MediaEntry& entry = (*media)[i];
        entry.modified = QDateTime::fromString(modified.at(i), Qt::ISODateWithMs);
        if (QFileInfo(entry.path).isFile())
            entry.resolved = QDir::cleanPath(entry.path);
        else if (!entry.relative.isEmpty() && QFileInfo(folder.filePath(entry.relative)).isFile())
            entry.resolved = QDir::cleanPath(folder.absoluteFilePath(entry.relative));
    }
}

bool readDocument(const QJsonDocument& document, const QString& path, Loaded* loaded, QString* error);

} // namespace

QString extension()
{
    return QStringLiteral("kvproj");
}

int Loaded::missingCount() const
{
    return int(std::count_if(media.begin(), media.end(), [](const MediaEntry& m) { return m.resolved.isEmpty(); }));
}

QByteArray serialize(const Timeline::TimelineModel& timeline, const QString& path)
{
    const QDir folder = QFileInfo(path).absoluteDir();
    const Media::Video& video = *timeline.video();
    QJsonArray tracks;
    for (int t = 0; t < timeline.trackCount(); ++t)
        tracks.append(trackName(timeline.trackKind(t)));
    const QJsonObject head{
        {QStringLiteral("format"), kFormatName},
        {QStringLiteral("version"), kFormatVersion},
        {QStringLiteral("video"),
         QJsonObject{{QStringLiteral("width"), video.frameWidth()},
                     {QStringLiteral("height"), video.frameHeight()},
                     {QStringLiteral("frameRate"), video.frameRate()},
                     {QStringLiteral("aspect"), QJsonArray{video.frameAspectX(), video.frameAspectY()}}}},
        {QStringLiteral("tracks"), tracks},
    };
    // The small head through QJsonDocument; the media table and the clips, one a line, as
    // text (see Clip::writeJson): the document stays one JSON object.
    QByteArray out = QJsonDocument(head).toJson(QJsonDocument::Compact);
    out.chop(1); // the closing brace: media and clips follow
    const QList<Timeline::IClip*> clips = timeline.clips();
    out.reserve(out.size() + clips.size() * 320);

    QHash<QString, int> mediaIndex;
    QByteArray media;
    QByteArray clipText;
    for (Timeline::IClip* c : clips) {
        const auto* clip = static_cast<const Timeline::Clip*>(c);
        const QString mediaPath = clip->mediaPath();
        int index = -1;
        if (!mediaPath.isEmpty()) {
            auto found = mediaIndex.constFind(mediaPath);
            if (found == mediaIndex.constEnd()) {
                const QFileInfo info(mediaPath);
                QJsonObject entry{{QStringLiteral("path"), mediaPath},
                                  {QStringLiteral("relative"), folder.relativeFilePath(mediaPath)}};
                // A missing file keeps no facts: there is nothing to measure.
                if (info.isFile()) {
                    entry.insert(QStringLiteral("size"), info.size());
                    entry.insert(QStringLiteral("modified"), info.lastModified().toUTC().toString(Qt::ISODateWithMs));
                }
                media += media.isEmpty() ? "\n" : ",\n";
                media += QJsonDocument(entry).toJson(QJsonDocument::Compact);
                found = mediaIndex.insert(mediaPath, mediaIndex.size());
            }
            index = *found;
        }
        clipText += clipText.isEmpty() ? "\n" : ",\n";
        clip->writeJson(clipText, index);
    }
    out += ",\n\"media\": [";
    out += media;
    out += "],\n\"clips\": [";
    out += clipText;
    out += "]}\n";
    return out;
}

bool save(const QString& path, const Timeline::TimelineModel& timeline, QString* error)
{
    const QByteArray bytes = serialize(timeline, path);
    // QSaveFile writes beside the target and renames over it only once everything is on
    // disk: a crash or a full disk leaves the previous project as it was.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QCoreApplication::translate("Project", "The project could not be written: %1").arg(file.errorString());
        file.cancelWriting();
        return false;
    }
    return true;
}

bool load(const QString& path, Loaded* loaded, QString* error)
{
    const auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    const QFileInfo info(path);
    if (!info.isFile())
        return refuse(QCoreApplication::translate("Project", "The file does not exist."));
    if (info.size() > kMaxFileSize)
        return refuse(QCoreApplication::translate("Project", "The file is %1 MB; a project is never larger than %2 MB.")
                          .arg(info.size() / (1024 * 1024))
                          .arg(kMaxFileSize / (1024 * 1024)));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refuse(QCoreApplication::translate("Project", "The file could not be read: %1").arg(file.errorString()));
    // As much as the file held at the check and one byte more, then whatever it grew by up
    // to one byte beyond the limit: a file that grew is refused without being read whole,
    // and a small project does not reserve the limit's worth of memory.
    QByteArray bytes = file.read(info.size() + 1);
    if (!file.atEnd() && bytes.size() <= kMaxFileSize)
        bytes += file.read(kMaxFileSize + 1 - bytes.size());
    return parse(bytes, info.absoluteFilePath(), loaded, error);
}

bool parse(const QByteArray& bytes, const QString& path, Loaded* loaded, QString* error)
{
    const auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    if (bytes.size() > kMaxFileSize)
        return refuse(QCoreApplication::translate("Project", "The file is larger than %1 MB; a project is never that large.").arg(kMaxFileSize / (1024 * 1024)));
    QJsonParseError parseError{};
    QJsonDocument document = QJsonDocument::fromJson(bytes, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return refuse(QCoreApplication::translate("Project", "The file is damaged or incomplete (%1 at byte %2).").arg(parseError.errorString()).arg(parseError.offset));
    const bool read = readDocument(document, path, loaded, error);
    // Taking apart tens of thousands of parsed objects is left to a pool thread: nobody
    // waits for it, and it was a tenth of loading a large project.
    Task::threadPool().start([document = std::move(document)]() mutable { document = QJsonDocument(); });
    return read;
}

namespace {

bool readDocument(const QJsonDocument& document, const QString& path, Loaded* loaded, QString* error)
{
    const auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    const QJsonObject root = document.object();
    if (!document.isObject() || root.value(QStringLiteral("format")).toString() != kFormatName)
        return refuse(QCoreApplication::translate("Project", "The file is not a Klipvane project."));

    Serialize::JsonReader reader;
    const qint64 version = reader.integer(root, QLatin1String("version"), QString(), 0, std::numeric_limits<int>::max(), 0);
    if (reader.ok() && version > kFormatVersion)
        return refuse(QCoreApplication::translate("Project", "The project was saved by a newer version of Klipvane (format %1); this version reads format %2 and older.")
                          .arg(version)
                          .arg(kFormatVersion));

    Loaded result;
    Timeline::TimelineModel::Content& content = result.content;
    const QJsonObject video = reader.object(root, QLatin1String("video"), QString());
    const QString videoWhere = QStringLiteral("video");
    const int width = int(reader.integer(video, QLatin1String("width"), videoWhere, 16, 16384, 1920));
    const int height = int(reader.integer(video, QLatin1String("height"), videoWhere, 16, 16384, 1080));
    content.video.setFrameSize(width, height);
    content.video.setFrameRate(reader.number(video, QLatin1String("frameRate"), videoWhere, 1.0, 1000.0, 25.0));
    const QJsonArray aspect = reader.array(video, QLatin1String("aspect"), videoWhere, 2, false);
    if (!aspect.isEmpty()) {
        const int x = aspect.at(0).toInt(0), y = aspect.size() > 1 ? aspect.at(1).toInt(0) : 0;
        if (x < 1 || y < 1 || x > 1000 || y > 1000)
            reader.fail(QStringLiteral("video.aspect"), QCoreApplication::translate("Project", "not two whole numbers from 1 to 1000"));
        else
            content.video.setFrameAspect(x, y);
    }

    const QJsonArray tracks = reader.array(root, QLatin1String("tracks"), QString(), 64);
    for (int i = 0; i < tracks.size() && reader.ok(); ++i) {
        const QString kind = tracks.at(i).toString();
        if (kind == QLatin1String("video"))
            content.tracks.push_back(Timeline::TrackKind::Video);
        else if (kind == QLatin1String("audio"))
            content.tracks.push_back(Timeline::TrackKind::Audio);
        else
            reader.fail(Serialize::JsonReader::path(QStringLiteral("tracks"), i), QCoreApplication::translate("Project", "neither \"video\" nor \"audio\""));
    }

    const QJsonArray media = reader.array(root, QLatin1String("media"), QString(), 100000);
    // The table as written; the clips point at these paths until the files are found.
    QStringList writtenPaths;
    QStringList modifiedTexts;
    writtenPaths.reserve(media.size());
    for (int i = 0; i < media.size() && reader.ok(); ++i) {
        const QString where = Serialize::JsonReader::path(QStringLiteral("media"), i);
        const QJsonObject o = reader.element(media, i, QStringLiteral("media"));
        MediaEntry entry;
        entry.path = reader.string(o, QLatin1String("path"), where);
        entry.relative = reader.string(o, QLatin1String("relative"), where, 4096, false);
        entry.size = reader.integer(o, QLatin1String("size"), where, 0, std::numeric_limits<qint64>::max() / 2, -1, false);
        modifiedTexts << reader.string(o, QLatin1String("modified"), where, 64, false);
        if (!reader.ok())
            break;
        if (!QDir::isAbsolutePath(entry.path)) {
            reader.fail(Serialize::JsonReader::path(where, QStringLiteral("path")), QCoreApplication::translate("Project", "not an absolute path"));
            break;
        }
        writtenPaths << QDir::cleanPath(entry.path);
        result.media << entry;
    }
    // The files are looked for on another core while this one reads the clips: on a large
    // project the file system's answers were a fifth of loading.
    Task::Beside lookup([&result, &modifiedTexts, folderPath = QFileInfo(path).absolutePath()] {
        findMedia(&result.media, modifiedTexts, folderPath);
    });

    const QJsonArray clips = reader.array(root, QLatin1String("clips"), QString(), 1000000);
    content.clips.reserve(size_t(clips.size()));
    // "clips[i]" is rewritten in one buffer rather than formatted anew for each clip:
    // formatting it was a twentieth of a large load.
    const QString clipsKey = QStringLiteral("clips");
    QString where = clipsKey + QLatin1Char('[');
    const int stem = where.size();
    for (int i = 0; i < clips.size() && reader.ok(); ++i) {
        where.truncate(stem);
        where += QString::number(i);
        where += QLatin1Char(']');
        if (auto clip = Timeline::Clip::fromJson(reader.element(clips, i, clipsKey), reader, where, &writtenPaths))
            content.clips.push_back(std::move(clip));
    }
    lookup.wait();
    if (!reader.ok())
        return refuse(QCoreApplication::translate("Project", "The project is damaged: %1").arg(reader.error()));
    // Media found beside the project rather than where they were: their clips follow them.
    QMap<QString, QString> moved;
    for (int i = 0; i < result.media.size(); ++i) {
        const MediaEntry& entry = result.media.at(i);
        if (entry.resolved.isEmpty())
            content.missingMedia.insert(writtenPaths.at(i));
        else if (entry.resolved != writtenPaths.at(i))
            moved.insert(writtenPaths.at(i), entry.resolved);
    }
    repoint(&content, moved);
    QString why;
    if (!Timeline::TimelineModel::validate(content, &why))
        return refuse(QCoreApplication::translate("Project", "The project is damaged: %1").arg(why));
    if (loaded)
        *loaded = std::move(result);
    return true;
}

} // namespace

} // namespace Project
