#pragma once

#include <QString>
#include <QStringList>

// `klipvane --thumbnails-to FOLDER [--thumbnail-size PX] FILE...`: the thumbnails of the files
// named on the command line, made (or found in the desktop's thumbnail cache) by the editor's
// thumbnail service and written to FOLDER as "<file name>.png". One log line per file:
//   thumbnail: <path> <w>x<h> (cached|made|failed)[ <reason>]
// No window and no display are needed.
namespace ThumbnailExport {

// `files` are absolute paths. Runs inside an application object. 0 when every file has its picture, 1 when one failed
// or could not be written, 2 when there was nothing to do.
int run(const QString& folder, const QStringList& files, int size);

} // namespace ThumbnailExport
