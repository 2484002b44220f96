#include "Media/FileView.h"

#include "Media/FilePool.h"

namespace Media {

FileView::FileView() = default;

FileView::~FileView()
{
    if (m_pool)
        m_pool->removeView(this);
}

void FileView::fileAdded(const File*) {}
void FileView::fileRemoved(const File*) {}
void FileView::fileOpened(const File*) {}
void FileView::fileFailed(const File*) {}

} // namespace Media
