#include "Dialog/MissingFilesDialog/MissingFilesSearch.h"

#include <FileUtil/Paths.h>
#include <FileUtil/Traverser.h>
#include <Task/Task.h>

#include <QFile>
#include <QFileInfo>

#include <glog/logging.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace MissingFiles {
namespace {

// How many trailing folder names two folders share ("/a/x/y" and "/b/x/y": 2).
int sharedTrailingFolders(const QString& oldFolder, const QString& newFolder)
{
    const QStringList a = oldFolder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QStringList b = newFolder.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    int shared = 0;
    while (shared < a.size() && shared < b.size() && a.at(a.size() - 1 - shared) == b.at(b.size() - 1 - shared))
        ++shared;
    return shared;
}

// The missing paths of one file name and the files of that name met so far.
struct Wanted
{
    std::vector<QString> candidates; // sorted
    std::vector<QString> met;        // in traversal order
};

// Files met per name that several missing files share: enough for any real project.
constexpr size_t MaxSameNameFiles = 256;

// Pairs missing paths with files of the same name, the pairs sharing most trailing folder
// names first; ties go to the file met first, then to the first missing path.
void assignByFolders(Wanted& files, SearchResult& result)
{
    std::vector<bool> candidateTaken(files.candidates.size()), fileTaken(files.met.size());
    for (size_t round = 0; round < std::min(files.candidates.size(), files.met.size()); ++round) {
        int bestScore = -1;
        size_t bestCandidate = 0, bestFile = 0;
        for (size_t f = 0; f < files.met.size(); ++f) {
            if (fileTaken[f])
                continue;
            const QString newFolder = FS::absolutePath(files.met[f]);
            for (size_t c = 0; c < files.candidates.size(); ++c) {
                if (candidateTaken[c])
                    continue;
                const int score = sharedTrailingFolders(FS::absolutePath(FS::cleanPath(files.candidates[c])), newFolder);
                if (score > bestScore) {
                    bestScore = score;
                    bestCandidate = c;
                    bestFile = f;
                }
            }
        }
        candidateTaken[bestCandidate] = fileTaken[bestFile] = true;
        result.found.insert(files.candidates[bestCandidate], files.met[bestFile]);
        result.remaining.remove(files.candidates[bestCandidate]);
    }
}

} // namespace

SearchResult search(const QString& folder, const QSet<QString>& pending, Task::Progress* progress)
{
    SearchResult result;
    result.remaining = pending;
    const int total = pending.size();

    // File names as the file system spells them, so a folder entry is compared as bytes
    // without being decoded.
    std::deque<std::string> nameStorage;
    std::unordered_map<std::string_view, Wanted> wanted;
    {
        std::unordered_map<std::string, std::vector<QString>> byName;
        for (const QString& path : pending) {
            const QByteArray name = QFile::encodeName(FS::fileName(FS::cleanPath(path)));
            if (!name.isEmpty())
                byName[name.toStdString()].push_back(path);
        }
        for (auto& [name, paths] : byName) {
            std::sort(paths.begin(), paths.end());
            nameStorage.push_back(name);
            wanted.emplace(nameStorage.back(), Wanted{std::move(paths), {}});
        }
    }
    std::vector<Wanted> shared; // names several missing files share, resolved after the walk

    FS::TraverseOptions options;
    options.stop = progress ? &progress->cancelFlag() : nullptr;
    const auto traverser = FS::createTraverser(folder, options);
    int undecodable = 0;
    for (;;) {
        if (progress) {
            if (progress->isCancelled())
                break;
            progress->report(total ? double(result.found.size()) / total : 1.0);
        }
        if (wanted.empty() || !traverser->next())
            break;
        const auto match = wanted.find(traverser->name());
        if (match == wanted.end())
            continue;
        const QString path = traverser->path();
        if (path.isEmpty()) {
            ++undecodable; // under a folder whose name the text of a path cannot hold
            continue;
        }
        Wanted& files = match->second;
        if (files.candidates.size() == 1) {
            result.found.insert(files.candidates.front(), path);
            result.remaining.remove(files.candidates.front());
            wanted.erase(match);
        } else if (files.met.size() < MaxSameNameFiles) {
            files.met.push_back(path);
        }
    }
    for (auto& [name, files] : wanted) {
        if (files.candidates.size() > 1 && !files.met.empty())
            assignByFolders(files, result);
    }

    result.foldersRead = traverser->foldersRead();
    result.filesMet = traverser->filesMet();
    const auto& failures = traverser->failures();
    result.unreadableFolders = int(failures.size());
    if (!failures.empty())
        LOG(WARNING) << "missing files search: " << failures.size() << " folder(s) under " << folder.toStdString()
                     << " could not be read, the first: " << failures.front().path.toStdString() << " ("
                     << std::strerror(failures.front().error) << ')';
    if (undecodable)
        LOG(WARNING) << "missing files search: " << undecodable
                     << " match(es) skipped under folder names that are not valid in the file-name encoding";
    return result;
}

QStringList sizeMismatches(const QMap<QString, QString>& found, const QHash<QString, qint64>& recordedSizes)
{
    QStringList mismatches;
    for (auto it = found.cbegin(); it != found.cend(); ++it) {
        const qint64 recorded = recordedSizes.value(it.key(), -1);
        if (recorded >= 0 && QFileInfo(it.value()).size() != recorded)
            mismatches << it.key();
    }
    return mismatches; // a QMap walks its keys sorted
}

} // namespace MissingFiles
