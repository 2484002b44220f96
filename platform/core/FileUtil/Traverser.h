#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <memory>
#include <string_view>
#include <vector>

namespace FS {

struct TraverseOptions
{
    // Symbolic links to folders are walked into (each real folder at most once, so a link
    // pointing back up the tree ends there); links to files are reported as files.
    bool followSymlinks = true;
    // Polled before each folder is read: a raised flag ends the walk as if it were done.
    const std::atomic_bool* stop = nullptr;
};

struct TraverseFailure
{
    QByteArray path; // as the file system spells it
    int error = 0;   // errno
};

// Walks the files under one folder, fast: each folder is read with getdents64 into a large
// buffer, and the entry type the folder carries is trusted, so a file costs no stat call
// (only symbolic links, and entries of file systems that give no type, are examined).
//
// Order, the same for the same tree on every run: level by level from the root (all files
// directly in the root, then those one folder down, ...); folders of one level in the order
// their parents were read, the subfolders of one parent in byte order of their names; the
// files of one folder in byte order of their names. Hidden files and folders are included.
//
// Names are bytes, as the file system stores them: they need not be valid UTF-8 and may
// hold newlines. Folders that cannot be read (permissions, removed meanwhile) are skipped
// and listed in failures().
class Traverser
{
public:
    Traverser(const QString& root, const TraverseOptions& options);
    ~Traverser();
    Traverser(const Traverser&) = delete;
    Traverser& operator=(const Traverser&) = delete;

    // Moves to the next file; false once every file was met (or `stop` was raised).
    bool next();

    // The current file's name and its folder, as bytes; valid until the next call to next().
    std::string_view name() const;
    std::string_view folder() const;
    QByteArray nativePath() const;
    // The current path as text; empty when the bytes do not round-trip through the
    // system's file-name encoding (such a path could not be opened again from the text).
    QString path() const;

    const std::vector<TraverseFailure>& failures() const;
    quint64 foldersRead() const;
    quint64 filesMet() const;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

std::unique_ptr<Traverser> createTraverser(const QString& root, const TraverseOptions& options = TraverseOptions());

// A path as text when its bytes round-trip through the file-name encoding, else empty.
QString decodedPath(const QByteArray& nativePath);

} // namespace FS
