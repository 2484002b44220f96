#include "MediaBin.h"

#include "BinThumbnails.h"

#include <Statistics.h>
#include <FileDialog.h>

#include <Dialog/DialogStrategy.h>
#include <ErrorDescription.h>

#include <Conf/Codecs.h>

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QStyledItemDelegate>

#include <glog/logging.h>

namespace {

QString duration(MediaTime time)
{
    const qint64 seconds = time.milliseconds() / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString codecName(const QString& id)
{
    QString name = id;
    Tavrin::Conf::TranslateCodecId(id, name);
    return name;
}

QString facts(const Media::File* file)
{
    if (file->isOpening())
        return MediaBin::tr("Opening...");
    if (file->isFailed())
        return MediaBin::tr("Can't be opened: %1").arg(Error::describeFailedFile(*file));
    QStringList parts;
    for (const Media::VideoTrack& video : file->videoTracks()) {
        if (video.isCoverArt())
            continue;
        parts << QStringLiteral("%1 %2\u00d7%3").arg(codecName(video.codecId)).arg(video.frameSize.width()).arg(video.frameSize.height());
        if (video.frameRate > 0)
            parts << MediaBin::tr("%1 fps").arg(video.frameRate, 0, 'f', video.frameRate == int(video.frameRate) ? 0 : 2);
        break;
    }
    if (!file->audioTracks().empty()) {
        const Media::AudioTrack& audio = file->audioTracks().front();
        parts << MediaBin::tr("%1 %2 Hz").arg(codecName(audio.codecId)).arg(audio.sampleRate);
    }
    if (file->fileDuration().microseconds() > 0)
        parts << duration(file->fileDuration());
    if (file->hasHDRStreams())
        parts << MediaBin::tr("HDR");
    if (!file->unsupportedCodecs().isEmpty()) {
        QStringList names;
        for (const QString& id : file->unsupportedCodecs())
            names << codecName(id);
        parts << MediaBin::tr("unsupported: %1").arg(names.join(QStringLiteral(", ")));
    }
    return parts.join(QStringLiteral(" \u00b7 "));
}

// Two lines per item: the name as the list shows it, then the facts in a smaller, quieter font.
class BinItemDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem first = option;
        initStyleOption(&first, index);
        const QImage picture = BinThumbnails::prepare(first, index, MediaBin::ThumbnailRole);
        const QString factsLine = index.data(MediaBin::FactsRole).toString();
        QStyle* style = first.widget ? first.widget->style() : QApplication::style();
        first.text.clear();
        style->drawControl(QStyle::CE_ItemViewItem, &first, painter, first.widget);
        BinThumbnails::draw(painter, first, picture);

        const QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &first, first.widget);
        const int half = text.height() / 2;
        painter->save();
        painter->setPen(option.palette.color(option.state & QStyle::State_Selected ? QPalette::HighlightedText
                                                                                    : QPalette::Text));
        painter->drawText(text.adjusted(2, 0, 0, -half), Qt::AlignLeft | Qt::AlignVCenter,
                          option.fontMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle, text.width()));
        QFont small = option.font;
        small.setPointSizeF(small.pointSizeF() * 0.85);
        painter->setFont(small);
        if (!(option.state & QStyle::State_Selected))
            painter->setPen(option.palette.color(QPalette::Disabled, QPalette::Text));
        painter->drawText(text.adjusted(2, half, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                          QFontMetrics(small).elidedText(factsLine, Qt::ElideRight, text.width()));
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(std::max(size.height(), option.fontMetrics.height() * 2 + 6));
        return size;
    }
};

} // namespace

MediaBin::MediaBin(QListWidget* bin, QObject* parent) : QObject(parent), m_bin(bin)
{
    m_pool.addView(this);
    m_bin->setItemDelegate(new BinItemDelegate(m_bin));
    m_bin->setContextMenuPolicy(Qt::CustomContextMenu);
    m_bin->setSelectionMode(QAbstractItemView::ExtendedSelection);
    connect(m_bin, &QWidget::customContextMenuRequested, this, &MediaBin::showContextMenu);
    connect(m_bin, &QListWidget::itemActivated, this, &MediaBin::showFileInfo);
    auto* remove = new QAction(tr("Remove from project"), m_bin);
    remove->setObjectName(QStringLiteral("removeSelectedAction"));
    Statistics::setEventKey(remove, QStringLiteral("removeFromProject"), QStringLiteral("mediaBin"));
    remove->setShortcuts({QKeySequence::Delete, Qt::Key_Backspace});
    remove->setShortcutContext(Qt::WidgetShortcut);
    connect(remove, &QAction::triggered, this, &MediaBin::removeSelectedItems);
    m_bin->addAction(remove);
    auto track = [this](const Media::File* file) { refresh(file); };
    connect(&m_pool, &Media::FilePool::fileOpened, this, track);
    connect(&m_pool, &Media::FilePool::fileFailed, this, track);
    m_bin->setIconSize(QSize(BinThumbnails::Size, BinThumbnails::Size * 9 / 16));
    // Every item is the icon box and two lines high: with uniform sizes a batch of thousands
    // is laid out without asking each item for its size again on every change, and in
    // batches, so the GUI thread takes outcomes and second launches in between.
    m_bin->setUniformItemSizes(true);
    m_bin->setLayoutMode(QListView::Batched);
    BinThumbnails::watch(m_bin, this);
}

MediaBin::~MediaBin()
{
    m_pool.removeView(this);
}

const Media::File* MediaBin::fileOf(const QListWidgetItem* item) const
{
    if (!item)
        return nullptr;
    // The item keeps its file's address; the map says whether that file is still ours.
    const auto* file = reinterpret_cast<const Media::File*>(item->data(FileRole).value<quintptr>());
    return m_items.value(file) == item ? file : nullptr;
}

void MediaBin::addFiles(const QStringList& files)
{
    const int first = m_bin->count() - files.size();
    if (first < 0)
        return;
    for (int i = 0; i < files.size(); ++i) {
        QListWidgetItem* item = m_bin->item(first + i);
        const Media::File* file = m_pool.addFile(files[i]);
        m_items.insert(file, item);
        item->setData(FileRole, QVariant::fromValue(reinterpret_cast<quintptr>(file)));
        refresh(file);
    }
}

void MediaBin::markFile(const QString& path, const QString& note)
{
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        if (it.key()->filePath() == path) {
            it.value()->setText(QStringLiteral("%1 (%2)").arg(it.value()->text(), note));
            LOG(INFO) << "media bin: marked " << path.toStdString() << ": " << note.toStdString();
        }
    }
}

void MediaBin::refresh(const Media::File* file)
{
    QListWidgetItem* item = m_items.value(file);
    if (!item)
        return;
    // The icons are made once: every standardIcon() call loads its own set of pixmaps, some
    // 90 KB per item, which 10,000 files turned into most of the editor's memory.
    if (m_icons.isEmpty()) {
        QStyle* style = m_bin->style();
        for (QStyle::StandardPixmap kind : {QStyle::SP_BrowserReload, QStyle::SP_MessageBoxCritical,
                                            QStyle::SP_MessageBoxWarning, QStyle::SP_MediaVolume, QStyle::SP_FileIcon})
            m_icons.insert(kind, style->standardIcon(kind));
    }
    QString state;
    QStyle::StandardPixmap icon;
    if (file->isOpening()) {
        state = QStringLiteral("opening");
        icon = QStyle::SP_BrowserReload;
    } else if (file->isFailed()) {
        state = QStringLiteral("failed");
        icon = QStyle::SP_MessageBoxCritical;
    } else if (!file->unsupportedCodecs().isEmpty()) {
        state = QStringLiteral("opened");
        icon = QStyle::SP_MessageBoxWarning;
    } else {
        state = QStringLiteral("opened");
        icon = file->videoTracks().empty() ? QStyle::SP_MediaVolume : QStyle::SP_FileIcon;
    }
    const QString factsLine = facts(file);
    item->setIcon(m_icons.value(icon));
    item->setData(StateRole, state);
    item->setData(FactsRole, factsLine);
    // Files that opened cleanly show their picture; the others keep the icon of their state.
    const bool clean = file->isOpened() && file->unsupportedCodecs().isEmpty();
    item->setData(ThumbnailRole, clean ? file->filePath() : QString());
    item->setToolTip(file->filePath() + QLatin1Char('\n') + factsLine);
}

void MediaBin::showContextMenu(const QPoint& position)
{
    QListWidgetItem* item = m_bin->itemAt(position);
    if (!item)
        return;
    const Media::File* file = fileOf(item);
    QMenu menu(m_bin);
    QAction* info = menu.addAction(tr("File information..."));
    info->setObjectName(QStringLiteral("fileInfoAction"));
    info->setEnabled(file && file->isOpened());
    QAction* remove = menu.addAction(tr("Remove from project"));
    remove->setObjectName(QStringLiteral("removeFileAction"));
    QAction* reveal = menu.addAction(tr("Show in File Manager"));
    reveal->setObjectName(QStringLiteral("showFileAction"));
    const QString source = QStringLiteral("mediaBinContextMenu");
    Statistics::setEventKey(info, QStringLiteral("fileInformation"), source);
    Statistics::setEventKey(remove, QStringLiteral("removeFromProject"), source);
    Statistics::setEventKey(reveal, QStringLiteral("showInFileManager"), source);
    Statistics::parse(&menu);
    QAction* chosen = menu.exec(m_bin->viewport()->mapToGlobal(position));
    if (chosen == info)
        showFileInfo(item);
    else if (chosen == remove && item->isSelected())
        removeSelectedItems(); // the menu acts on the selection the item belongs to
    else if (chosen == remove)
        removeItem(item);
    else if (chosen == reveal)
        FileDialog::showFile(file ? file->filePath() : item->data(Qt::UserRole).toString());
}

void MediaBin::showFileInfo(QListWidgetItem* item)
{
    const Media::File* file = fileOf(item);
    if (file && file->isOpened())
        Dialog::showFileInfo(file);
}

void MediaBin::removeItem(QListWidgetItem* item)
{
    if (const Media::File* file = fileOf(item))
        removeFile(file);
    else
        delete item;
}

void MediaBin::removeSelectedItems()
{
    // Taken before the first removal: deleting an item changes the selection.
    const QList<QListWidgetItem*> selected = m_bin->selectedItems();
    for (QListWidgetItem* item : selected)
        removeItem(item);
    if (!selected.isEmpty())
        LOG(INFO) << "media bin: removed " << selected.size() << " item(s)";
}

bool MediaBin::removeFile(const Media::File* file)
{
    QListWidgetItem* item = m_items.take(file);
    if (!item)
        return false;
    m_pool.removeFile(file);
    delete item;
    return true;
}

bool MediaBin::allowToDeleteClips(const AnalyzedProduct&)
{
    return true;
}

void MediaBin::postProcessing(AnalyzedProduct product)
{
    LOG(INFO) << "media batch: " << product.failedFiles.size() << " failed, "
              << product.openedUnsupportedCodecFiles.size() << " opened with unsupported codecs, HDR "
              << (product.hasHDR ? "yes" : "no");
    const int added = totalFilesCount();
    int removed = 0;
    if (!product.failedFiles.empty() || !product.openedUnsupportedCodecFiles.empty()) {
        // The H.265 notice is acknowledged, not a choice about other files: only failed files
        // it listed may go.
        const std::set<const Media::File*> listed = h265Files(product);
        if (showFailedFilesDialog(product)) {
            for (const Media::File* file : product.failedFiles)
                if (listed.empty() || listed.count(file))
                    removed += removeFile(file) ? 1 : 0;
        }
    }
    if (product.hasHDR)
        showHDRFilesAddedDialog();
    // The end of the batch's reports: whoever follows the log knows no dialog of it is left.
    LOG(INFO) << "media batch reported: " << product.failedFiles.size() << " failed, " << removed << " removed";
    emit batchReported(added, int(product.failedFiles.size()));
}
