#pragma once

#include <Dialog/MissingFilesDialog/MissingFilesSearch.h>

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

namespace Project {
struct Loaded;
}

// One relink: the folder to search and the missing paths (with the sizes recorded for them,
// when known). The paths come from a list of names or from a project file (which then also
// takes the map back).
struct RelinkJob
{
    QString folder;
    QStringList missing;              // as given, duplicates dropped, in order
    QHash<QString, qint64> recorded;  // old path -> size the source recorded

    // Reads records separated by newlines, or by NUL bytes when `nulSeparated` (for paths
    // holding newlines). With `withSizes`, a record is "SIZE<TAB>PATH". Blank records are
    // skipped; false with `error` set on a malformed record.
    bool readList(const QByteArray& text, bool nulSeparated, bool withSizes, QString* error);

    // Takes the missing media of a loaded project, with the sizes it recorded.
    void readProject(const Project::Loaded& loaded);

    // The search's outcome as the tool prints it.
    QJsonObject report(const MissingFiles::SearchResult& result) const;
};
