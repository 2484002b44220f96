#pragma once

#include <Dialog/MissingFilesDialog/MissingFilesSearch.h>

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>
#include <QStringList>

// One relink: the folder to search and the missing paths (with the sizes recorded for them,
// when known). Where the paths come from is the job's source; a list of names today, a
// project file later (which then also takes the map back).
struct RelinkJob
{
    QString folder;
    QStringList missing;              // as given, duplicates dropped, in order
    QHash<QString, qint64> recorded;  // old path -> size the source recorded

    // Reads records separated by newlines, or by NUL bytes when `nulSeparated` (for paths
    // holding newlines). With `withSizes`, a record is "SIZE<TAB>PATH". Blank records are
    // skipped; false with `error` set on a malformed record.
    bool readList(const QByteArray& text, bool nulSeparated, bool withSizes, QString* error);

    // The search's outcome as the tool prints it.
    QJsonObject report(const MissingFiles::SearchResult& result) const;
};
