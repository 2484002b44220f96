#pragma once

#include "Project/ProjectFile.h"

#include <QHash>
#include <QMap>
#include <QString>

// Pointing a project's media elsewhere. Relinking points a loaded project's missing media at
// the files a search found for them, before the content reaches a timeline (so the relinked
// project opens in one reset, and a skipped relink changes nothing); a portable project
// points its clips at copies of its media.
//
//   Project::Loaded loaded;                       // from Project::load
//   const auto sizes = Project::recordedSizes(loaded);
//   ... search for loaded.content.missingMedia ...
//   Project::relink(&loaded, found);              // old path -> new path
namespace Project {

// The missing media's paths (as `content.missingMedia` names them) with the size the
// project recorded for them; media without a recorded size are left out.
QHash<QString, qint64> recordedSizes(const Loaded& loaded);

// Rewrites the clips and media entries whose missing path is a key of `found` to the new
// path, and takes them off the missing list. Paths that are not missing are left alone.
// Returns the number of media entries relinked.
int relink(Loaded* loaded, const QMap<QString, QString>& found);

// Points every clip of `content` whose media path is a key of `paths` at its value.
void repoint(Timeline::TimelineModel::Content* content, const QMap<QString, QString>& paths);

// Copies the media of `timeline` into a "media" folder beside `path` ("name (2).ext" for a
// second file of one name) and saves at `path` a project whose clips use the copies; the
// loader finds them by their relative paths wherever the folder goes. Missing media keep
// their paths. False with `error` set when a copy or the save failed.
bool savePortable(const QString& path, const Timeline::TimelineModel& timeline, QString* error);

} // namespace Project
