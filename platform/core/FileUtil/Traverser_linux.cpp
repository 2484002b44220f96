#include "FileUtil/Traverser.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <deque>
#include <unordered_set>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace FS {
namespace {

// Large enough that a folder of a few thousand entries is read in one system call.
constexpr size_t BufferSize = 256 * 1024;

// The layout getdents64 fills (glibc 2.36 has no wrapper of its own).
struct LinuxDirent64
{
    ino64_t d_ino;
    off64_t d_off;
    unsigned short d_reclen;
    unsigned char d_type;
    char d_name[];
};

struct FolderId
{
    dev_t device;
    ino_t inode;
    bool operator==(const FolderId& other) const { return device == other.device && inode == other.inode; }
};

struct FolderIdHash
{
    size_t operator()(const FolderId& id) const { return std::hash<ino_t>()(id.inode) * 31 + std::hash<dev_t>()(id.device); }
};

struct Span
{
    size_t offset;
    size_t length;
};

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace

struct Traverser::Impl
{
    TraverseOptions options;
    std::deque<std::string> queue;
    std::unordered_set<FolderId, FolderIdHash> visited;
    std::vector<char> buffer = std::vector<char>(BufferSize);

    // The folder being reported: its path, the bytes of its entries' names, and the files.
    std::string folder;
    std::string names;
    std::vector<Span> fileSpans;
    std::vector<Span> folderSpans;
    std::vector<std::string_view> files;
    size_t index = 0;

    std::vector<TraverseFailure> failures;
    quint64 foldersRead = 0;
    quint64 filesMet = 0;

    void fail(const std::string& path, int error)
    {
        failures.push_back({QByteArray(path.data(), int(path.size())), error});
    }

    // The kind of an entry whose folder entry did not settle it: 'd', 'f' or 0 (skip).
    char examine(int folderFd, const char* name, bool isLink) const
    {
        if (isLink && !options.followSymlinks)
            return 0;
        struct stat st;
        if (fstatat(folderFd, name, &st, options.followSymlinks ? 0 : AT_SYMLINK_NOFOLLOW) != 0)
            return 0; // a dangling link, or the entry vanished
        if (S_ISDIR(st.st_mode))
            return 'd';
        return S_ISREG(st.st_mode) ? 'f' : 0;
    }

    bool read(const std::string& path)
    {
        const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) {
            fail(path, errno);
            return false;
        }
        struct stat st;
        if (fstat(fd, &st) == 0 && !visited.insert({st.st_dev, st.st_ino}).second) {
            ::close(fd); // met before, through a link or a mount: reading it again could loop
            return false;
        }
        ++foldersRead;
        folder = path;
        names.clear();
        fileSpans.clear();
        folderSpans.clear();
        for (;;) {
            const long count = syscall(SYS_getdents64, fd, buffer.data(), buffer.size());
            if (count < 0) {
                fail(path, errno);
                break;
            }
            if (count == 0)
                break;
            for (long position = 0; position < count;) {
                const auto* entry = reinterpret_cast<const LinuxDirent64*>(buffer.data() + position);
                position += entry->d_reclen;
                const char* name = entry->d_name;
                if (isDotOrDotDot(name))
                    continue;
                char kind = 0;
                switch (entry->d_type) {
                case DT_REG: kind = 'f'; break;
                case DT_DIR: kind = 'd'; break;
                case DT_LNK: kind = examine(fd, name, true); break;
                case DT_UNKNOWN: kind = examine(fd, name, false); break;
                default: break; // devices, pipes and sockets are never media
                }
                if (!kind)
                    continue;
                const size_t length = std::strlen(name);
                (kind == 'f' ? fileSpans : folderSpans).push_back({names.size(), length});
                names.append(name, length);
            }
        }
        ::close(fd);

        files.clear();
        files.reserve(fileSpans.size());
        for (const Span& span : fileSpans)
            files.emplace_back(names.data() + span.offset, span.length);
        std::sort(files.begin(), files.end());

        std::vector<std::string_view> subfolders;
        subfolders.reserve(folderSpans.size());
        for (const Span& span : folderSpans)
            subfolders.emplace_back(names.data() + span.offset, span.length);
        std::sort(subfolders.begin(), subfolders.end());
        const bool isRoot = !path.empty() && path.back() == '/';
        for (std::string_view sub : subfolders) {
            std::string child;
            child.reserve(path.size() + 1 + sub.size());
            child.append(path);
            if (!isRoot)
                child.push_back('/');
            child.append(sub);
            queue.push_back(std::move(child));
        }
        index = 0;
        return true;
    }
};

Traverser::Traverser(const QString& root, const TraverseOptions& options) : d(std::make_unique<Impl>())
{
    d->options = options;
    if (!root.isEmpty())
        d->queue.push_back(QFile::encodeName(QDir::cleanPath(root)).toStdString());
}

Traverser::~Traverser() = default;

bool Traverser::next()
{
    if (d->index < d->files.size())
        ++d->index;
    while (d->index >= d->files.size()) {
        if (d->queue.empty() || (d->options.stop && d->options.stop->load(std::memory_order_relaxed))) {
            d->files.clear();
            d->index = 0;
            return false;
        }
        const std::string path = std::move(d->queue.front());
        d->queue.pop_front();
        if (!d->read(path))
            d->files.clear();
    }
    ++d->filesMet;
    return true;
}

std::string_view Traverser::name() const
{
    return d->index < d->files.size() ? d->files[d->index] : std::string_view();
}

std::string_view Traverser::folder() const
{
    return d->folder;
}

QByteArray Traverser::nativePath() const
{
    const std::string_view file = name();
    QByteArray path;
    path.reserve(int(d->folder.size() + 1 + file.size()));
    path.append(d->folder.data(), int(d->folder.size()));
    if (d->folder.empty() || d->folder.back() != '/')
        path.append('/');
    path.append(file.data(), int(file.size()));
    return path;
}

QString Traverser::path() const
{
    return decodedPath(nativePath());
}

const std::vector<TraverseFailure>& Traverser::failures() const
{
    return d->failures;
}

quint64 Traverser::foldersRead() const
{
    return d->foldersRead;
}

quint64 Traverser::filesMet() const
{
    return d->filesMet;
}

std::unique_ptr<Traverser> createTraverser(const QString& root, const TraverseOptions& options)
{
    return std::make_unique<Traverser>(root, options);
}

QString decodedPath(const QByteArray& nativePath)
{
    const QString text = QFile::decodeName(nativePath);
    return QFile::encodeName(text) == nativePath ? text : QString();
}

} // namespace FS
