#pragma once

#include "AppUtil_export.h"

#include <Media/FileView.h>
#include <PubSub/PubSub.h>

#include <QList>

#include <map>

#include <memory>
#include <set>

namespace Tavrin {
namespace Util {
template <class Owner>
class Scheduler;
}
} // namespace Tavrin

// The base of every place that adds media files to a project (import, drag and drop,
// project load). It watches a batch of files being opened by the media model, waits until
// each has opened or failed, analyses the batch once, and hands the analysis to
// postProcessing(). Derived classes decide what to do; the base offers the standard
// follow-ups: the failed-files dialog (H.265 variant first), the one-time HDR notice and
// the statistics about failed codecs.
//
//   class ImportHandler : public FileOpenHandler {
//       void postProcessing(AnalyzedProduct product) override {
//           if (!product.failedFiles.empty() && showFailedFilesDialog(product))
//               removeClipsOf(product.failedFiles);
//           if (product.hasHDR)
//               showHDRFilesAddedDialog();
//       }
//   };
//   pool.addView(&handler);
//
// A batch is every file added since the last pass; the pass runs on an event-loop turn
// after the last of them reported, never inside a media-model callback. The record of
// error codes outlives batches on purpose.
class APPUTIL_EXPORT FileOpenHandler : public Media::FileView,
                                       public virtual PubSub::Subscriber<Media::FileOpenFailedNotification>
{
public:
    struct AnalyzedProduct
    {
        std::set<const Media::File*> failedFiles;
        std::set<const Media::File*> failedUnsupportedCodecFiles;
        std::set<const Media::File*> openedUnsupportedCodecFiles;
        bool hasHDR = false;
    };

    enum ErrorType { None = 0, Failed = 3 };

    FileOpenHandler();
    ~FileOpenHandler() override;

    // Every error code reported for a file since this handler exists (code -> file).
    const std::multimap<int, const Media::File*>& errorRecord() const;

protected:
    virtual ErrorType resolve(const Media::File* file);
    virtual void postProcessing(AnalyzedProduct product);
    virtual bool allowToDeleteClips(const AnalyzedProduct& product);
    virtual void processing();
    virtual void clear();

    AnalyzedProduct makeFilesAnalyze();
    const QList<const Media::File*>& addedFiles() const;
    int processedFilesCount() const;
    int totalFilesCount() const;

    // Shows the failed-files dialog (or the H.265 one) and reports the answer to the
    // statistics; true when the user chose to remove the unopened files.
    bool showFailedFilesDialog(AnalyzedProduct product);
    // The files the H.265 notice lists for `product` (empty: the generic dialog is shown).
    static std::set<const Media::File*> h265Files(const AnalyzedProduct& product);
    // Shows the HDR colour-conversion notice once per handler, unless the user asked never
    // to see it again.
    void showHDRFilesAddedDialog();

    void notify(const Media::FileOpenFailedNotification& notification) override;

private:
    void fileAdded(const Media::File* file) override;
    void fileRemoved(const Media::File* file) override;
    void fileOpened(const Media::File* file) override;
    void fileFailed(const Media::File* file) override;

    void makeProcessing();
    void sendFailedCodecsStatistics(const AnalyzedProduct& product);

    struct Impl;
    std::unique_ptr<Impl> d;
};
