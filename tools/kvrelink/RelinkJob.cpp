#include "RelinkJob.h"

#include <Project/Relink.h>

#include <QFile>
#include <QJsonArray>
#include <QSet>

bool RelinkJob::readList(const QByteArray& text, bool nulSeparated, bool withSizes, QString* error)
{
    QSet<QString> seen;
    int number = 0;
    for (const QByteArray& record : text.split(nulSeparated ? '\0' : '\n')) {
        ++number;
        if (record.isEmpty())
            continue;
        QByteArray path = record;
        qint64 size = -1;
        if (withSizes) {
            const int tab = record.indexOf('\t');
            bool ok = false;
            size = tab > 0 ? record.left(tab).toLongLong(&ok) : -1;
            if (!ok || size < 0) {
                *error = QStringLiteral("record %1: expected SIZE<TAB>PATH").arg(number);
                return false;
            }
            path = record.mid(tab + 1);
        }
        const QString decoded = QFile::decodeName(path);
        if (decoded.isEmpty())
            continue;
        if (size >= 0)
            recorded.insert(decoded, size);
        if (!seen.contains(decoded)) {
            seen.insert(decoded);
            missing << decoded;
        }
    }
    return true;
}

void RelinkJob::readProject(const Project::Loaded& loaded)
{
    missing = loaded.content.missingMedia.values();
    missing.sort();
    recorded = Project::recordedSizes(loaded);
}

QJsonObject RelinkJob::report(const MissingFiles::SearchResult& result) const
{
    QJsonObject found;
    for (auto it = result.found.cbegin(); it != result.found.cend(); ++it)
        found.insert(it.key(), it.value());
    QStringList remaining = result.remaining.values();
    remaining.sort();
    return QJsonObject{
        {QStringLiteral("folder"), folder},
        {QStringLiteral("found"), found},
        {QStringLiteral("missing"), QJsonArray::fromStringList(remaining)},
        {QStringLiteral("sizeDiffers"), QJsonArray::fromStringList(MissingFiles::sizeMismatches(result.found, recorded))},
        {QStringLiteral("foldersRead"), double(result.foldersRead)},
        {QStringLiteral("filesMet"), double(result.filesMet)},
        {QStringLiteral("unreadableFolders"), result.unreadableFolders},
    };
}
