#pragma once

#include <FileOpenHandler.h>

#include <Media/FilePool.h>

#include <QHash>
#include <QIcon>
#include <QObject>
#include <QStyle>

class QListWidget;
class QListWidgetItem;

// The media model behind the host's media bin. Files that reach the bin are opened by a
// Media::FilePool; each item shows whether its file is opening, opened or failed, with
// the file's main facts (or the reason it failed) on a second line. When a batch has an
// outcome, the standard reports follow: the failed-files dialog (or the H.265 one), which
// may remove the unopened files it names, and the one-time HDR notice. The item's context
// menu offers the file information dialog and removal of the selected items, which the
// Delete key removes too. Files that opened show their thumbnail (BinThumbnails).
class MediaBin : public QObject, public FileOpenHandler
{
    Q_OBJECT
public:
    enum Role { FileRole = 0x0200, StateRole, FactsRole, ThumbnailRole };

    explicit MediaBin(QListWidget* bin, QObject* parent = nullptr);
    ~MediaBin() override;

    Media::FilePool& pool() { return m_pool; }
    // The file shown by `item`, or null.
    const Media::File* fileOf(const QListWidgetItem* item) const;

public slots:
    // Opens the files just appended to the bin (the bin's last items, in order).
    void addFiles(const QStringList& files);
    void showFileInfo(QListWidgetItem* item);
    void removeItem(QListWidgetItem* item);
    // Appends "(note)" to the text of the item of the file at `path`, if the bin holds it.
    void markFile(const QString& path, const QString& note);
    // Removes every selected item (and its file) from the bin.
    void removeSelectedItems();

signals:
    // A batch of `addedFiles` ended, `failedFiles` of them failed, and its reports were given.
    void batchReported(int addedFiles, int failedFiles);

private:
    bool allowToDeleteClips(const AnalyzedProduct& product) override;
    void postProcessing(AnalyzedProduct product) override;
    void refresh(const Media::File* file);
    // Takes `file` out of the project and the bin; false when the bin does not show it.
    bool removeFile(const Media::File* file);
    void showContextMenu(const QPoint& position);

    QListWidget* m_bin;
    Media::FilePool m_pool;
    QHash<const Media::File*, QListWidgetItem*> m_items;
    QHash<int, QIcon> m_icons; // by QStyle::StandardPixmap
};
