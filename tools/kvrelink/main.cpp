// kvrelink PROJECT FOLDER [--write]
// kvrelink FOLDER --names-from FILE [--null] [--with-sizes]
//
// Looks for missing media files under FOLDER with the same search as the editor's
// missing-files dialog, and prints as JSON the map from each old path to the file found for
// it, what is still missing, and the found files whose size differs from the recorded one.
// The missing paths are those of the project PROJECT (with the sizes it recorded); with
// --write the relinked project is saved over PROJECT, atomically. Or FILE (or "-" for standard
// input) lists them, one per line, or NUL-separated with --null; with --with-sizes each
// record is "SIZE<TAB>PATH".
// Exit status: 0 all found, 1 some still missing, 2 usage or input error, 3 not written.

#include "RelinkJob.h"

#include <Log/Logging.h>
#include <glog/logging.h>
#include <Project/ProjectFile.h>
#include <Project/Relink.h>
#include <Settings/FileDialogPaths.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSet>
#include <QStringList>

#include <cstdio>

namespace {

int usage(const char* problem)
{
    std::fprintf(stderr,
                 "kvrelink: %s\nusage: kvrelink PROJECT FOLDER [--write]\n"
                 "       kvrelink FOLDER --names-from FILE|- [--null] [--with-sizes]\n",
                 problem);
    return 2;
}

QByteArray readAll(const QString& name, bool* ok)
{
    QFile file;
    *ok = name == QStringLiteral("-") ? file.open(stdin, QIODevice::ReadOnly) : (file.setFileName(name), file.open(QIODevice::ReadOnly));
    return *ok ? file.readAll() : QByteArray();
}

bool isProjectFile(const QString& path)
{
    return Settings::supportedProjectFileExtensions().contains(QFileInfo(path).suffix().toLower());
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Tavrin::Log::init(argv[0]);
    RelinkJob job;
    QStringList positional;
    QString namesFrom;
    bool nul = false, withSizes = false, write = false;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == QStringLiteral("--names-from") && i + 1 < argc)
            namesFrom = QString::fromLocal8Bit(argv[++i]);
        else if (argument == QStringLiteral("--null"))
            nul = true;
        else if (argument == QStringLiteral("--with-sizes"))
            withSizes = true;
        else if (argument == QStringLiteral("--write"))
            write = true;
        else if (argument.startsWith(QStringLiteral("--")))
            return usage("unknown option");
        else
            positional << QFile::decodeName(argv[i]);
    }
    const bool fromProject = namesFrom.isEmpty();
    if (positional.size() != (fromProject ? 2 : 1))
        return usage(fromProject ? "a project and a folder are needed" : "one folder only");
    if (fromProject && !isProjectFile(positional.first()))
        return usage("the first argument is not a project file");
    if (!fromProject && write)
        return usage("--write needs a project");
    job.folder = positional.last();
    if (!QFileInfo(job.folder).isDir())
        return usage("the folder does not exist");

    QString error;
    Project::Loaded loaded;
    if (fromProject) {
        if (!Project::load(positional.first(), &loaded, &error))
            return usage(qPrintable(error));
        job.readProject(loaded);
    } else {
        bool read = false;
        const QByteArray list = readAll(namesFrom, &read);
        if (!read)
            return usage("cannot read the list of names");
        if (!job.readList(list, nul, withSizes, &error))
            return usage(qPrintable(error));
    }

    const MissingFiles::SearchResult result
        = MissingFiles::search(job.folder, QSet<QString>(job.missing.cbegin(), job.missing.cend()));
    const QByteArray json = QJsonDocument(job.report(result)).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    std::fflush(stdout);

    if (write && !result.found.isEmpty()) {
        // Through the editor's own save: the same document, written with QSaveFile.
        Project::relink(&loaded, result.found);
        Timeline::TimelineModel timeline;
        timeline.reset(std::move(loaded.content));
        if (!Project::save(positional.first(), timeline, &error)) {
            std::fprintf(stderr, "kvrelink: %s\n", qPrintable(error));
            return 3;
        }
        LOG(INFO) << "relink: wrote " << positional.first().toStdString();
    }
    return result.remaining.isEmpty() ? 0 : 1;
}
