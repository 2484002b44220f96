#include "FileAdder/FileAdder.h"

#include "FileUtil/FileUtil.h"
#include "Statistics/TimelineWatcher.h"
#include "Util/Mailbox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QSet>
#include <QThreadPool>

#include <glog/logging.h>

#include <deque>
#include <memory>

namespace FileAdder {

Object* globalObject()
{
    static Object object;
    return &object;
}

namespace {

struct Batch
{
    quint64 id = 0;
    int source = 0;
    Contexts contexts;
    bool ready = false;
    QStringList files;
    int delivered = 0;
};

// Lives on the GUI thread as a child of the application object, so it is gone (and its
// walks told to stop) before the application's statics are.
class Intake : public QObject
{
public:
    Intake() : QObject(QCoreApplication::instance()) {}
    ~Intake() override { mailbox->close(); }

    static Intake* instance()
    {
        static QPointer<Intake> intake;
        if (!intake && QCoreApplication::instance())
            intake = new Intake;
        return intake;
    }

    quint64 start(const QStringList& paths, int source, const Contexts& contexts)
    {
        auto batch = std::make_shared<Batch>();
        batch->id = ++lastId;
        batch->source = source;
        batch->contexts = contexts;
        batches.push_back(batch);
        std::shared_ptr<Tavrin::Util::Mailbox> box = mailbox;
        // Even a list of plain files is checked on the worker: ten thousand of them cost the
        // file system more than a GUI turn should wait.
        QThreadPool::globalInstance()->start([this, box, batch, paths] {
            QStringList files = expand(paths, [&box] { return box->isClosed(); });
            box->post([this, batch, files = std::move(files)] {
                batch->files = files;
                batch->ready = true;
                scheduleDelivery();
            });
        });
        PubSub::publish(BatchStartedNotification(batch->id, paths.size(), source));
        return batch->id;
    }

    int pending() const { return int(batches.size()); }

private:
    // On the worker thread.
    static QStringList expand(const QStringList& paths, const std::function<bool()>& cancelled)
    {
        const QStringList found = FileUtil::extractFiles(paths, FileUtil::supportedFileExtensions(), cancelled);
        QStringList files;
        files.reserve(found.size());
        QSet<QString> seen;
        seen.reserve(found.size());
        for (const QString& file : found)
            if (!seen.contains(file)) {
                seen.insert(file);
                files << file;
            }
        // Only what was not found can have vanished: one look per missing name, not per file.
        int gone = 0;
        for (const QString& path : paths)
            if (!path.isEmpty() && !seen.contains(QDir::cleanPath(path)) && !QFile::exists(path)) {
                if (++gone <= 10)
                    LOG(WARNING) << "intake: no longer there: " << path.toStdString();
            }
        if (gone > 10)
            LOG(WARNING) << "intake: " << gone << " file(s) no longer there";
        return files;
    }

    void scheduleDelivery()
    {
        if (!deliveryPosted) {
            deliveryPosted = true;
            QMetaObject::invokeMethod(this, [this] { deliver(); }, Qt::QueuedConnection);
        }
    }

    // One slice per turn, oldest batch first.
    void deliver()
    {
        deliveryPosted = false;
        if (batches.empty() || !batches.front()->ready)
            return;
        const std::shared_ptr<Batch> batch = batches.front();
        const QStringList slice = batch->files.mid(batch->delivered, filesPerSlice);
        batch->delivered += slice.size();
        const bool last = batch->delivered >= batch->files.size();
        if (last) {
            batches.pop_front();
            if (batch->files.isEmpty())
                LOG(INFO) << "intake: batch " << batch->id << " holds no file the editor can open";
            else
                PubSub::publish(Statistics::FilesAddedNotification(batch->source, batch->files.size()));
        }
        // Subscribers may start new batches from their handler; those queue behind.
        PubSub::publish(MediaFilesNotification(slice, batch->source, batch->contexts, batch->id, last));
        if (!batches.empty())
            scheduleDelivery();
    }

    std::deque<std::shared_ptr<Batch>> batches;
    quint64 lastId = 0;
    bool deliveryPosted = false;
    std::shared_ptr<Tavrin::Util::Mailbox> mailbox = std::make_shared<Tavrin::Util::Mailbox>(this);
};

} // namespace

quint64 addMediaFiles(const QStringList& files, Source source, const Contexts& contexts)
{
    return addMediaFiles(files, int(source), contexts);
}

quint64 addMediaFiles(const QStringList& files, int source, const Contexts& contexts)
{
    Intake* intake = Intake::instance();
    if (!intake) {
        LOG(ERROR) << "intake: no application object, " << files.size() << " file(s) not added";
        return 0;
    }
    return intake->start(files, source, contexts);
}

int pendingBatches()
{
    Intake* intake = Intake::instance();
    return intake ? intake->pending() : 0;
}

} // namespace FileAdder
