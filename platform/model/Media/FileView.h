#pragma once

#include "Media/File.h"

#include <PubSub/PubSub.h>

#include <vector>

namespace Media {

class FilePool;

// Published when a file fails to open, with the file as source, before the views hear of
// the failure. Subscribe to one file to learn its processing errors.
struct FileOpenFailedNotification : Message::Types::Notification<File>
{
    FileOpenFailedNotification(const File* file, std::vector<Tavrin::Proc::ProcessingError> errors)
        : Notification(file), errors(std::move(errors))
    {
    }
    std::vector<Tavrin::Proc::ProcessingError> errors;
};

// An observer of a project's files. A FilePool calls the callbacks on the GUI thread:
// fileAdded when a file joins the project (it is then opening), fileOpened or fileFailed
// once per file when opening ends, fileRemoved when the file leaves the project (the file
// is still alive during the call, and is deleted on a later event-loop turn).
//
//   class Bin : public Media::FileView { void fileOpened(const Media::File* f) override; ... };
//   pool.addView(&bin);
class FileView
{
public:
    FileView();
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;
    virtual ~FileView();

    FilePool* filePool() const { return m_pool; }

private:
    friend class FilePool;
    virtual void fileAdded(const File* file);
    virtual void fileRemoved(const File* file);
    virtual void fileOpened(const File* file);
    virtual void fileFailed(const File* file);

    FilePool* m_pool = nullptr;
};

} // namespace Media
