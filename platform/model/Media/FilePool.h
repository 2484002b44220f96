#pragma once

#include "Media/File.h"
#include "Media/Opening.h"

#include <QList>
#include <QObject>

#include <memory>

namespace Media {

class FileView;

// The files of a project. It owns them, opens each one off the GUI thread (on the media
// thread pool, through the FFmpeg reader module loaded on first use) and tells its views
// and its signals how each ends.
//
//   Media::FilePool pool;
//   pool.addView(&handler);
//   pool.addFiles({"a.mp4", "b.mov"});   // fileAdded now; fileOpened/fileFailed later
//
// Every call and every callback is on the thread that owns the pool (the GUI thread).
class FilePool : public QObject
{
    Q_OBJECT
public:
    enum class Opening {
        Automatic, // opened on the media thread pool
        Manual,    // stays opening until finishOpening() (hosts with their own cache, tests)
    };

    explicit FilePool(QObject* parent = nullptr);
    ~FilePool() override;

    // Adds a file and starts opening it. The same path may be added twice; each is its own file.
    const File* addFile(const QString& path, Opening opening = Opening::Automatic);
    QList<const File*> addFiles(const QStringList& paths, Opening opening = Opening::Automatic);
    // Removes a file of this pool (others are ignored). Opening it goes on but its result is dropped.
    void removeFile(const File* file);
    // Ends the opening of a file with `result` (state Opened or Failed) and reports it.
    // Ignored for a file that is not opening or not in this pool.
    void finishOpening(const File* file, const OpenResult& result);

    QList<const File*> files() const;
    bool contains(const File* file) const;
    int openingCount() const;

    // Ends the openings still running in every pool (their results are dropped) and waits
    // for the media threads. It runs by itself when the application object is destroyed,
    // so no opening reads the process's statics after main() returns; a program without an
    // application object calls it before returning from main(). Opening starts again on the
    // next addFile().
    static void drainWorkers();
    // How many threads open files, for every pool of the process. By default one fewer than
    // the cores (at least one), leaving the GUI thread a core; a program without a GUI
    // thread to keep responsive may take them all.
    static void setWorkerThreads(int count);

    void addView(FileView* view);
    void removeView(FileView* view);

signals:
    void fileAdded(const Media::File* file);
    void fileOpened(const Media::File* file);
    void fileFailed(const Media::File* file);
    void fileRemoved(const Media::File* file);
    // Emitted when the last opening file has ended (opened, failed or removed).
    void idle();

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace Media

Q_DECLARE_METATYPE(const Media::File*)
