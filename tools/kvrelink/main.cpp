// kvrelink FOLDER --names-from FILE [--null] [--with-sizes]
//
// Looks for missing media files under FOLDER with the same search as the editor's
// missing-files dialog, and prints as JSON the map from each old path to the file found for
// it, what is still missing, and the found files whose size differs from the recorded one.
// FILE (or "-" for standard input) lists the old paths, one per line, or NUL-separated with
// --null; with --with-sizes each record is "SIZE<TAB>PATH".
// Exit status: 0 all found, 1 some still missing, 2 usage or input error.

#include "RelinkJob.h"

#include <Log/Logging.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSet>
#include <QStringList>

#include <cstdio>

namespace {

int usage(const char* problem)
{
    std::fprintf(stderr, "kvrelink: %s\nusage: kvrelink FOLDER --names-from FILE|- [--null] [--with-sizes]\n", problem);
    return 2;
}

QByteArray readAll(const QString& name, bool* ok)
{
    QFile file;
    *ok = name == QStringLiteral("-") ? file.open(stdin, QIODevice::ReadOnly) : (file.setFileName(name), file.open(QIODevice::ReadOnly));
    return *ok ? file.readAll() : QByteArray();
}

} // namespace

int main(int argc, char** argv)
{
    Tavrin::Log::init(argv[0]);
    RelinkJob job;
    QString namesFrom;
    bool nul = false, withSizes = false;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == QStringLiteral("--names-from") && i + 1 < argc)
            namesFrom = QString::fromLocal8Bit(argv[++i]);
        else if (argument == QStringLiteral("--null"))
            nul = true;
        else if (argument == QStringLiteral("--with-sizes"))
            withSizes = true;
        else if (argument.startsWith(QStringLiteral("--")))
            return usage("unknown option");
        else if (job.folder.isEmpty())
            job.folder = QFile::decodeName(argv[i]);
        else
            return usage("one folder only");
    }
    if (job.folder.isEmpty() || namesFrom.isEmpty())
        return usage("a folder and --names-from are needed");
    if (!QFileInfo(job.folder).isDir())
        return usage("the folder does not exist");
    bool read = false;
    const QByteArray list = readAll(namesFrom, &read);
    if (!read)
        return usage("cannot read the list of names");
    QString error;
    if (!job.readList(list, nul, withSizes, &error))
        return usage(qPrintable(error));

    const MissingFiles::SearchResult result
        = MissingFiles::search(job.folder, QSet<QString>(job.missing.cbegin(), job.missing.cend()));
    const QByteArray json = QJsonDocument(job.report(result)).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    return result.remaining.isEmpty() ? 0 : 1;
}
