#pragma once

#include "PubSub/PubSub.h"

#include <QString>
#include <QStringList>

// Hands media files to the project: the one way in for files that arrive in numbers and
// may name folders (drops, mostly). Folders are expanded on a worker thread, as
// FileUtil::extractFiles expands them, and the files go out on the GUI thread in slices of
// a few hundred, one slice per event-loop turn, so that a drop of ten thousand files never
// holds the GUI thread for long. Batches keep their order.
//
//   PubSub::Subscription<FileAdder::MediaFilesNotification> s(FileAdder::globalObject(),
//       [&](const FileAdder::MediaFilesNotification& m) { bin.add(m.files); });
//   FileAdder::addMediaFiles(paths, FileAdder::Source::DragAndDrop);
namespace FileAdder {

class Object
{
};
Object* globalObject();

// Where files come from, as the usage statistics count them. Recorded: never renumbered.
enum class Source {
    Unknown = 0,
    CommandLine = 1,
    SecondLaunch = 2,
    ImportDialog = 3,
    Companion = 4,
    DragAndDrop = 11,
};

// What the files are for.
struct Contexts
{
    QString collection = QStringLiteral("UserFiles"); // the collection they join
};

// A batch was started (published at once, inside addMediaFiles): `paths` as named.
struct BatchStartedNotification : Message::Types::Notification<Object>
{
    BatchStartedNotification(quint64 batch, int paths, int source)
        : Notification(globalObject()), batch(batch), paths(paths), source(source)
    {
    }
    quint64 batch;
    int paths;
    int source;
};

// A slice of a batch, in order; `last` on the batch's final slice (which may be empty
// when nothing of the batch was left).
struct MediaFilesNotification : Message::Types::Notification<Object>
{
    MediaFilesNotification(QStringList files, int source, Contexts contexts, quint64 batch, bool last)
        : Notification(globalObject()), files(std::move(files)), source(source), contexts(std::move(contexts)),
          batch(batch), last(last)
    {
    }
    QStringList files;
    int source;
    Contexts contexts;
    quint64 batch;
    bool last;
};

// How many files a slice holds at most.
constexpr int filesPerSlice = 200;

// Starts the intake of `files` (files and folders; the files of folders are those of
// FileUtil::supportedFileExtensions()) and returns its batch number. Needs a running event
// loop on the calling (GUI) thread. Files that vanished since they were named, and a batch
// that ends up empty, are logged; each file goes out once per batch.
quint64 addMediaFiles(const QStringList& files, Source source, const Contexts& contexts = Contexts());
quint64 addMediaFiles(const QStringList& files, int source, const Contexts& contexts = Contexts());

// Batches started and not yet delivered completely.
int pendingBatches();

} // namespace FileAdder
