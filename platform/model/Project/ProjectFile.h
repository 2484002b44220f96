#pragma once

#include "Timeline/TimelineModel.h"

#include <QDateTime>
#include <QString>

// Project files (.kvproj): the timeline as JSON with a format version.
//
//   QString why;
//   if (!Project::save(path, timeline, &why)) showWarning(why);
//   Project::Loaded loaded;
//   if (Project::load(path, &loaded, &why)) timeline.reset(std::move(loaded.content));
//
// Saving is atomic (the old file stays whole until the new one is complete). Loading
// validates everything before anything is handed out: on failure the caller's model is
// untouched and `error` says why in the user's words.
namespace Project {

constexpr int kFormatVersion = 1;
// Far above any real project (10,000 clips take a few MB), far below what would hurt.
constexpr qint64 kMaxFileSize = 64LL * 1024 * 1024;

QString extension(); // "kvproj"

// A media file as the project remembers it: by absolute path, by path relative to the
// project file, and by size and modification time (so a search can tell a real match).
struct MediaEntry
{
    QString path;     // absolute, as saved
    QString relative; // relative to the project's folder, as saved
    qint64 size = -1;
    QDateTime modified;
    QString resolved; // where it was found at load; empty when missing
};

struct Loaded
{
    Timeline::TimelineModel::Content content; // clips point at the resolved paths
    QList<MediaEntry> media;
    int missingCount() const;
};

bool save(const QString& path, const Timeline::TimelineModel& timeline, QString* error);
// The bytes save() writes for `timeline` at `path`.
QByteArray serialize(const Timeline::TimelineModel& timeline, const QString& path);

bool load(const QString& path, Loaded* loaded, QString* error);
// Reads the bytes of a project file at `path`; looks for media on disk.
bool parse(const QByteArray& bytes, const QString& path, Loaded* loaded, QString* error);

} // namespace Project
