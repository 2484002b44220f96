#include "Media/FilePool.h"

#include "Media/FileView.h"

#include <Util/Mailbox.h>

#include <QCoreApplication>
#include <QHash>
#include <QMutex>
#include <QPointer>
#include <QThreadPool>

#include <glog/logging.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <list>
#include <unordered_map>

namespace Media {
namespace {

// The media thread pool, made on first use. Opening reads process-wide objects (the format
// configuration, the reader module, the log), so no opening may outlive them: the threads
// are drained by a post routine of the application object, which runs before main()
// returns, never after the statics are gone.
QMutex workersMutex;
QThreadPool* workerThreads = nullptr;
std::atomic<bool> workersStopping{false};
std::atomic<int> openingsRunning{0};
// Unset: one core is left to the GUI thread, which takes every outcome and draws the bin;
// with more workers than that, a batch of thousands of files starves it.
int workerCount = 0;

void startWorker(std::function<void()> job)
{
    QMutexLocker lock(&workersMutex);
    if (!workerThreads) {
        workerThreads = new QThreadPool;
        workerThreads->setMaxThreadCount(workerCount > 0 ? workerCount : std::max(1, QThread::idealThreadCount() - 1));
        workerThreads->setExpiryTimeout(5000);
        if (QCoreApplication::instance())
            qAddPostRoutine(&FilePool::drainWorkers);
    }
    workerThreads->start(std::move(job));
}

} // namespace

void FilePool::setWorkerThreads(int count)
{
    QMutexLocker lock(&workersMutex);
    workerCount = count;
    if (workerThreads && count > 0)
        workerThreads->setMaxThreadCount(count);
}

struct FilePool::Impl
{
    FilePool* q;
    // In the order added. A list, so that removing one file of many (a batch's failed
    // files) neither searches nor shifts the others.
    std::list<std::unique_ptr<File>> files;
    std::unordered_map<const File*, std::list<std::unique_ptr<File>>::iterator> index;
    std::unordered_map<const File*, quint64> openingJobs; // file -> job id
    std::unordered_map<quint64, const File*> jobFiles;
    quint64 nextJob = 1;
    std::vector<FileView*> views;
    std::vector<std::unique_ptr<File>> removed; // deleted on the next event-loop turn
    // Where workers deliver results; closed when the pool dies, which also cancels its
    // openings: queued ones never start, running ones are interrupted.
    std::shared_ptr<Tavrin::Util::Mailbox> mailbox;

    File* find(const File* file) const
    {
        const auto it = index.find(file);
        return it == index.end() ? nullptr : it->second->get();
    }

    // Calls every view, skipping views removed by an earlier one; with `whileInPool`, stops
    // once a view has removed the file.
    template <class Call>
    void tellViews(const File* file, bool whileInPool, Call call)
    {
        const std::vector<FileView*> snapshot = views;
        for (FileView* view : snapshot) {
            if (whileInPool && !find(file))
                return;
            if (std::find(views.begin(), views.end(), view) == views.end())
                continue;
            call(view);
        }
    }

    void start(const File* file)
    {
        const quint64 job = nextJob++;
        openingJobs[file] = job;
        jobFiles[job] = file;
        const QString path = file->filePath();
        std::shared_ptr<Tavrin::Util::Mailbox> box = mailbox;
        FilePool* pool = q;
        startWorker([box, pool, job, path] {
            const auto cancelled = [&box] { return workersStopping.load() || box->isClosed(); };
            if (cancelled())
                return;
            ++openingsRunning;
            OpenResult result = openFile(path, 20000, cancelled);
            --openingsRunning;
            box->post([pool, job, result = std::move(result)] { pool->d->deliver(job, result); });
        });
    }

    void deliver(quint64 job, const OpenResult& result)
    {
        const auto it = jobFiles.find(job);
        if (it == jobFiles.end())
            return; // the file left the project meanwhile
        q->finishOpening(it->second, result);
    }

    void forget(const File* file)
    {
        const auto it = openingJobs.find(file);
        if (it == openingJobs.end())
            return;
        jobFiles.erase(it->second);
        openingJobs.erase(it);
    }
};

FilePool::FilePool(QObject* parent) : QObject(parent), d(std::make_unique<Impl>())
{
    d->q = this;
    d->mailbox = std::make_shared<Tavrin::Util::Mailbox>(this);
    qRegisterMetaType<const Media::File*>();
}

FilePool::~FilePool()
{
    d->mailbox->close();
    // Views hear of every file leaving, so none keeps a pointer past the pool.
    while (!d->files.empty())
        removeFile(d->files.back().get());
    for (FileView* view : d->views)
        view->m_pool = nullptr;
}

const File* FilePool::addFile(const QString& path, Opening opening)
{
    d->files.push_back(std::make_unique<File>(path));
    File* file = d->files.back().get();
    d->index.emplace(file, std::prev(d->files.end()));
    if (opening == Opening::Automatic)
        d->start(file);
    else
        d->openingJobs[file] = 0;
    d->tellViews(file, true, [file](FileView* view) { view->fileAdded(file); });
    emit fileAdded(file);
    return file;
}

QList<const File*> FilePool::addFiles(const QStringList& paths, Opening opening)
{
    QList<const File*> added;
    added.reserve(paths.size());
    for (const QString& path : paths)
        added << addFile(path, opening);
    return added;
}

void FilePool::removeFile(const File* file)
{
    const auto found = d->index.find(file);
    if (found == d->index.end())
        return;
    const bool wasOpening = d->openingJobs.count(file) > 0;
    d->forget(file);
    std::unique_ptr<File> owned = std::move(*found->second);
    d->files.erase(found->second);
    d->index.erase(found);
    d->tellViews(file, false, [file](FileView* view) { view->fileRemoved(file); });
    emit fileRemoved(file);
    d->removed.push_back(std::move(owned));
    if (d->removed.size() == 1)
        QMetaObject::invokeMethod(this, [this] { d->removed.clear(); }, Qt::QueuedConnection);
    if (wasOpening && d->openingJobs.empty())
        emit idle();
}

void FilePool::finishOpening(const File* file, const OpenResult& result)
{
    File* target = d->find(file);
    if (!target || !d->openingJobs.count(file) || result.state == File::State::Opening)
        return;
    d->forget(file);
    result.applyTo(*target);
    if (target->isFailed()) {
        for (const auto& error : target->errors())
            LOG(WARNING) << "Can't open media file " << target->filePath().toStdString() << ": " << error.toString();
        // Subscribers learn the reasons before the views learn the outcome.
        PubSub::publish(FileOpenFailedNotification(file, target->errors()));
        d->tellViews(file, true, [file](FileView* view) { view->fileFailed(file); });
        if (d->find(file))
            emit fileFailed(file);
    } else {
        d->tellViews(file, true, [file](FileView* view) { view->fileOpened(file); });
        if (d->find(file))
            emit fileOpened(file);
    }
    if (d->openingJobs.empty())
        emit idle();
}

QList<const File*> FilePool::files() const
{
    QList<const File*> list;
    list.reserve(int(d->files.size()));
    for (const auto& owned : d->files)
        list << owned.get();
    return list;
}

bool FilePool::contains(const File* file) const
{
    return d->find(file) != nullptr;
}

void FilePool::drainWorkers()
{
    QThreadPool* threads = nullptr;
    {
        QMutexLocker lock(&workersMutex);
        threads = std::exchange(workerThreads, nullptr);
    }
    if (!threads)
        return;
    workersStopping = true;
    threads->clear();
    const int running = openingsRunning;
    delete threads; // waits for the running openings, which the flag interrupts
    workersStopping = false;
    LOG(INFO) << "Media openings stopped: " << running << " interrupted";
}

int FilePool::openingCount() const
{
    return int(d->openingJobs.size());
}

void FilePool::addView(FileView* view)
{
    if (!view || std::find(d->views.begin(), d->views.end(), view) != d->views.end())
        return;
    if (view->m_pool && view->m_pool != this)
        view->m_pool->removeView(view);
    view->m_pool = this;
    d->views.push_back(view);
}

void FilePool::removeView(FileView* view)
{
    const auto it = std::find(d->views.begin(), d->views.end(), view);
    if (it == d->views.end())
        return;
    d->views.erase(it);
    view->m_pool = nullptr;
}

} // namespace Media
