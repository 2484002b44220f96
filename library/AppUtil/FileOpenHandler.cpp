#include "FileOpenHandler.h"

#include "Customization.h"
#include "Dialog/DialogStrategy.h"
#include "ErrorDescription.h"
#include "MediaStatistics.h"

#include <Conf/Codecs.h>
#include <FileUtil/FileUtil.h>
#include <Settings/Settings.h>
#include <Util/GeneralButtonsTr.h>
#include <Util/Scheduler.h>

#include <QCoreApplication>
#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>

namespace {

// One pass at a time in the whole process: a dialog of one handler runs a nested event
// loop, which would otherwise deliver another handler's (or its own) scheduled pass.
bool processingInProgress = false;

const QString hdrDontShowKey = QStringLiteral("HDRFilesInfoDontShow");

template <class F>
struct ScopeExit
{
    F f;
    ~ScopeExit() { f(); }
};
template <class F>
ScopeExit(F) -> ScopeExit<F>;

} // namespace

struct FileOpenHandler::Impl
{
    explicit Impl(FileOpenHandler* owner) : scheduler(owner, &FileOpenHandler::makeProcessing, 0) {}

    // Drops the entries of removed files from `added`, keeping the order of the others.
    void compact()
    {
        if (removedEntries == 0)
            return;
        added.erase(std::remove_if(added.begin(), added.end(),
                                   [this](const Media::File* file) { return removed.contains(file); }),
                    added.end());
        removed.clear();
        removedEntries = 0;
    }

    QSet<const Media::File*> processed;
    QList<const Media::File*> added;
    // Removing a file from `added` at once would walk the whole batch for every file, which
    // is quadratic when a pass removes its failed files. Removed files are therefore only
    // marked, and `added` is compacted when it is read.
    QHash<const Media::File*, int> entries; // file -> times listed in `added`, removed ones excluded
    QSet<const Media::File*> removed;       // files whose entries are still in `added`
    int removedEntries = 0;
    std::multimap<int, const Media::File*> errors;
    Tavrin::Util::Scheduler<FileOpenHandler> scheduler;
    bool hdrNoticeShown = false;
};

FileOpenHandler::FileOpenHandler() : d(std::make_unique<Impl>(this)) {}

FileOpenHandler::~FileOpenHandler() = default;

const std::multimap<int, const Media::File*>& FileOpenHandler::errorRecord() const
{
    return d->errors;
}

void FileOpenHandler::fileAdded(const Media::File* file)
{
    // A new file may reuse the address of one removed earlier in the batch.
    if (d->removed.contains(file))
        d->compact();
    d->added.append(file);
    ++d->entries[file];
    subscribe(file);
}

void FileOpenHandler::fileRemoved(const Media::File* file)
{
    const int listed = d->entries.take(file);
    if (listed > 0) {
        d->removed.insert(file);
        d->removedEntries += listed;
        if (file->isOpened() || file->isFailed())
            d->processed.remove(file);
    }
    unsubscribe(file);
    // The files left may all have reported already; without a request the batch would
    // wait for the next file added. A removal from within a pass belongs to that pass.
    if (totalFilesCount() > 0 && !processingInProgress)
        d->scheduler.schedule();
}

void FileOpenHandler::fileOpened(const Media::File* file)
{
    d->processed.insert(file);
    d->scheduler.schedule();
}

void FileOpenHandler::fileFailed(const Media::File* file)
{
    d->processed.insert(file);
    d->scheduler.schedule();
}

void FileOpenHandler::notify(const Media::FileOpenFailedNotification& notification)
{
    for (const Tavrin::Proc::ProcessingError& error : notification.errors)
        d->errors.emplace(error.code(), notification.source());
}

FileOpenHandler::ErrorType FileOpenHandler::resolve(const Media::File* file)
{
    return file->isFailed() ? Failed : None;
}

void FileOpenHandler::postProcessing(AnalyzedProduct) {}

bool FileOpenHandler::allowToDeleteClips(const AnalyzedProduct&)
{
    return false;
}

void FileOpenHandler::makeProcessing()
{
    if (processingInProgress)
        return;
    processingInProgress = true;
    ScopeExit reset{[] { processingInProgress = false; }};
    processing();
}

void FileOpenHandler::processing()
{
    if (processedFilesCount() < totalFilesCount())
        return;
    ScopeExit endBatch{[this] { clear(); }};
    const AnalyzedProduct product = makeFilesAnalyze();
    postProcessing(product);
}

void FileOpenHandler::clear()
{
    d->added.clear();
    d->processed.clear();
    d->entries.clear();
    d->removed.clear();
    d->removedEntries = 0;
}

namespace {
// Files of one batch are usually allocated one after the other, so they mostly arrive in
// address order: hinting the end makes each such insertion constant time instead of a
// search of the whole set. Any other order still lands in the right place.
void insertFile(std::set<const Media::File*>& files, const Media::File* file)
{
    files.emplace_hint(files.end(), file);
}

// Every file of the batch with a codec the editor cannot decode, opened or not.
std::set<const Media::File*> unsupportedCodecFiles(const FileOpenHandler::AnalyzedProduct& product)
{
    std::set<const Media::File*> files = product.failedUnsupportedCodecFiles;
    files.insert(product.openedUnsupportedCodecFiles.begin(), product.openedUnsupportedCodecFiles.end());
    return files;
}
} // namespace

FileOpenHandler::AnalyzedProduct FileOpenHandler::makeFilesAnalyze()
{
    AnalyzedProduct product;
    d->compact();
    for (const Media::File* file : qAsConst(d->added)) {
        const bool unsupported = !file->unsupportedCodecs().isEmpty();
        if (resolve(file) == None) {
            if (unsupported)
                insertFile(product.openedUnsupportedCodecFiles, file);
        } else {
            insertFile(product.failedFiles, file);
            if (unsupported)
                insertFile(product.failedUnsupportedCodecFiles, file);
        }
        if (!product.hasHDR)
            product.hasHDR = Media::File::hasHDRStreams(file);
    }
    return product;
}

const QList<const Media::File*>& FileOpenHandler::addedFiles() const
{
    d->compact();
    return d->added;
}

int FileOpenHandler::processedFilesCount() const
{
    return d->processed.size();
}

int FileOpenHandler::totalFilesCount() const
{
    return d->added.size() - d->removedEntries;
}

std::set<const Media::File*> FileOpenHandler::h265Files(const AnalyzedProduct& product)
{
    std::set<const Media::File*> files;
    for (const Media::File* file : unsupportedCodecFiles(product))
        if (file->unsupportedCodecs().contains(Tavrin::Conf::IFormatCodecVideo::CODEC_ID_H265, Qt::CaseSensitive))
            files.insert(file);
    return files;
}

namespace {
// The failed files by name with the reason of each, as lines of rich text: one line per
// path (a file added twice failed once), sorted, and at most a screenful of them.
QString failedFilesList(const std::set<const Media::File*>& files)
{
    constexpr int shownAtMost = 12;
    QMap<QString, QString> reasons; // path -> reason, sorted by path
    for (const Media::File* file : files)
        reasons.insert(file->filePath(), Error::describeFailedFile(*file));
    QStringList lines;
    for (auto it = reasons.cbegin(); it != reasons.cend() && lines.size() < shownAtMost; ++it) {
        const QString name = it.key().section(QLatin1Char('/'), -1);
        lines << QCoreApplication::translate("FileOpenHandler", "<b>%1</b>: %2").arg(name.toHtmlEscaped(), it.value());
    }
    if (reasons.size() > shownAtMost)
        lines << QCoreApplication::translate("FileOpenHandler", "and %n more file(s)", nullptr,
                                             reasons.size() - shownAtMost);
    return lines.join(QStringLiteral("<br>"));
}
} // namespace

bool FileOpenHandler::showFailedFilesDialog(AnalyzedProduct product)
{
    sendFailedCodecsStatistics(product);

    const std::set<const Media::File*> h265 = h265Files(product);
    const bool deletionOffered = allowToDeleteClips(product);
    bool answer = false;
    if (!h265.empty()) {
        answer = Dialog::showHasH265FailedFiles(h265);
    } else {
        // Only point at codecs when every failure has an unsupported codec or an opened file
        // has one; otherwise some failure has another cause and the generic text fits better.
        QString message;
        const bool otherCause = product.failedFiles.size() != product.failedUnsupportedCodecFiles.size()
            && product.openedUnsupportedCodecFiles.empty();
        if (!otherCause)
            message = QCoreApplication::translate("mainWindow.codecWarningWindow",
                                                  "Some videos used in this project could not be opened. They may be "
                                                  "corrupted, or their codecs <a href=\"%1\">are not supported.</a>")
                          .arg(Customization::supportedFormatsURL());
        // The user learns which files failed and why, under the dialog's own first sentence.
        if (!product.failedFiles.empty()) {
            if (message.isEmpty())
                message = QCoreApplication::translate("DialogStrategy", "Some of the files can't be opened.");
            message += QStringLiteral("<br><br>") + failedFilesList(product.failedFiles);
        }
        answer = Dialog::showHasFailedFiles(deletionOffered, message);
    }
    PubSub::publish(Statistics::DeleteFailedFilesEventNotification(deletionOffered, answer));
    return answer;
}

void FileOpenHandler::showHDRFilesAddedDialog()
{
    if (d->hdrNoticeShown || Settings::dontShowDialog(hdrDontShowKey))
        return;
    const QString title = QCoreApplication::translate("mainWindow.hdrColorConversionDialog", "Automatic color conversion");
    const QString text = QCoreApplication::translate(
                             "mainWindow.hdrColorConversionDialog",
                             "You've added an HDR video. We've converted it to SDR so the colors in the video are "
                             "correctly displayed within the program. The changes won't affect anything "
                             "you\u2019re working on in %1")
                             .arg(Customization::productFullName());
    const int result = Dialog::showInfo(title, text, GeneralButtonsTr::gotIt(), GeneralButtonsTr::doNotShowThisAgain());
    if (result & 1)
        Settings::setDontShowDialog(hdrDontShowKey, true);
    d->hdrNoticeShown = true;
}

void FileOpenHandler::sendFailedCodecsStatistics(const AnalyzedProduct& product)
{
    for (const Media::File* file : unsupportedCodecFiles(product)) {
        QStringList names;
        for (const QString& codec : file->unsupportedCodecs()) {
            QString name;
            names << (Tavrin::Conf::TranslateCodecId(codec, name) ? name : codec);
        }
        if (!names.isEmpty())
            PubSub::publish(Statistics::CodecsFailed(FS::extensionL(file->filePath()), names));
    }
}
