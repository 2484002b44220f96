#include "Dialog/MissingFilesDialog/MissingFilesDialog.h"

#include "Dialog/MissingFilesDialog/MissingFilesSearch.h"
#include "FileDialog.h"

#include <FileUtil/Paths.h>
#include <Task/Task.h>
#include <Util/StyleHint.h>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>

#include <glog/logging.h>

namespace {

// Searches one folder for the pending files, off the GUI thread, on its own copy of them.
class FindFilesExecutor : public Task::IExecutor
{
public:
    // A task cancelled before it started never runs: its result must still say that
    // everything it was given is missing.
    FindFilesExecutor(const QString& folder, const QSet<QString>& pending) : m_folder(folder), m_pending(pending)
    {
        m_result.remaining = pending;
    }

    void run(Task::Progress& progress) override { m_result = MissingFiles::search(m_folder, m_pending, &progress); }

    const QString& folder() const { return m_folder; }
    const MissingFiles::SearchResult& result() const { return m_result; }

private:
    const QString m_folder;
    const QSet<QString> m_pending;
    MissingFiles::SearchResult m_result;
};

template <class Widget>
Widget* make(QWidget* parent, const char* name)
{
    auto* widget = new Widget(parent);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

struct MissingFilesDialog::Impl : public Task::TaskWatcher
{
    explicit Impl(MissingFilesDialog* dialog) : q(dialog) {}

    void taskStarted(Task::TaskId) override { q->setSearching(true); }

    void taskFinished(Task::TaskId, const std::shared_ptr<Task::IExecutor>& executor, bool cancelled) override
    {
        q->setSearching(false);
        const auto* search = dynamic_cast<const FindFilesExecutor*>(executor.get());
        if (!search)
            return;
        if (closed) {
            LOG(INFO) << "missing files search: " << search->folder().toStdString() << ": dropped, the dialog closed";
            return;
        }
        const MissingFiles::SearchResult& result = search->result();
        for (auto it = result.found.cbegin(); it != result.found.cend(); ++it)
            found.insert(it.key(), it.value());
        pending = result.remaining;
        LOG(INFO) << "missing files search: " << search->folder().toStdString() << ": " << result.found.size()
                  << " found, " << pending.size() << " still missing" << (cancelled ? " (cancelled)" : "");
        emit q->searchFinished(result.found.size(), pending.size(), cancelled);
        if (pending.isEmpty())
            q->accept();
        else
            q->rebuildTable();
    }

    MissingFilesDialog* q;
    QSet<QString> pending;
    QMap<QString, QString> found;
    bool closed = false;

    QStandardItemModel* model = nullptr;
    QTableView* filesView = nullptr;
    QFrame* progressFrame = nullptr;
    QPushButton* cancelButton = nullptr;
    QPushButton* specifyFolderButton = nullptr;
};

MissingFilesDialog::MissingFilesDialog(QWidget* parent) : QDialog(parent), d(std::make_unique<Impl>(this))
{
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    QFrame* content = make<QFrame>(this, "contentFrame");
    outer->addWidget(content);
    auto* column = new QVBoxLayout(content);

    QLabel* header = make<QLabel>(content, "headerLabel");
    header->setWordWrap(true);
    header->setText(tr("Please, specify the folder with lost files"));
    QLabel* description = make<QLabel>(content, "descriptionLabel");
    description->setWordWrap(true);
    description->setText(tr("Your files were moved or deleted, please specify its new location to restore your project."));

    d->model = new QStandardItemModel(0, 2, this);
    d->model->setHorizontalHeaderLabels({tr("Name"), tr("Old path")});
    d->filesView = make<QTableView>(content, "filesView");
    QTableView* view = d->filesView;
    view->setModel(d->model);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionMode(QAbstractItemView::NoSelection);
    view->setWordWrap(false);
    view->setShowGrid(false);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setSectionsClickable(false);
    view->horizontalHeader()->setStretchLastSection(true);
    view->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(view, &QAbstractItemView::doubleClicked, this,
            [this](const QModelIndex& index) { locate(index.data(OldPathRole).toString()); });

    QFrame* buttons = make<QFrame>(content, "buttonsFrame");
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    d->progressFrame = make<QFrame>(buttons, "progressFrame");
    auto* progressRow = new QHBoxLayout(d->progressFrame);
    progressRow->setContentsMargins(0, 0, 0, 0);
    auto* busy = make<QProgressBar>(d->progressFrame, "progressGif");
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setMaximumWidth(80);
    QLabel* progressLabel = make<QLabel>(d->progressFrame, "progressLabel");
    progressLabel->setText(tr("File search in progress..."));
    progressRow->addWidget(busy);
    progressRow->addWidget(progressLabel);
    d->cancelButton = make<QPushButton>(buttons, "cancelButton");
    d->cancelButton->setText(tr("Cancel Search"));
    QPushButton* skip = make<QPushButton>(buttons, "skipButton");
    skip->setText(tr("Skip"));
    d->specifyFolderButton = make<QPushButton>(buttons, "specifyFolderButton");
    d->specifyFolderButton->setText(tr("Specify folder"));
    d->specifyFolderButton->setDefault(true);
    Util::applyStyleHint(d->specifyFolderButton, QStringLiteral("activeButton"));
    row->addWidget(d->progressFrame);
    row->addStretch();
    row->addWidget(d->cancelButton);
    row->addWidget(skip);
    row->addWidget(d->specifyFolderButton);

    column->addWidget(header);
    column->addWidget(description);
    column->addWidget(view, 1);
    column->addWidget(buttons);

    connect(d->specifyFolderButton, &QPushButton::clicked, this, &MissingFilesDialog::specifyFolder);
    connect(d->cancelButton, &QPushButton::clicked, this, [this] { d->cancelAll(); });
    connect(skip, &QPushButton::clicked, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, [this] {
        d->closed = true;
        d->cancelAll();
    });

    resize(640, 420);
    setSearching(false);
}

// The watcher's destructor waits for a cancelled search to return before the dialog's
// widgets go.
MissingFilesDialog::~MissingFilesDialog()
{
    d->closed = true;
    d->cancelAll();
}

void MissingFilesDialog::setMissingFiles(const QSet<QString>& paths)
{
    d->pending = paths;
    rebuildTable();
}

QSet<QString> MissingFilesDialog::missingFiles() const
{
    return d->pending;
}

QMap<QString, QString> MissingFilesDialog::foundFiles() const
{
    return d->found;
}

bool MissingFilesDialog::isSearching() const
{
    return !d->tasks().isEmpty();
}

bool MissingFilesDialog::searchFolder(const QString& folder)
{
    if (folder.isEmpty() || isSearching() || d->closed)
        return false;
    d->submit(std::make_shared<FindFilesExecutor>(folder, d->pending));
    setSearching(true);
    emit searchStarted(folder);
    return true;
}

void MissingFilesDialog::specifyFolder()
{
    QString start;
    if (!d->pending.isEmpty()) {
        QStringList sorted = d->pending.values();
        sorted.sort();
        const QString folder = FS::absolutePath(FS::cleanPath(sorted.first()));
        if (QFileInfo(folder).isDir())
            start = folder;
    }
    if (start.isEmpty())
        start = FileUtil::moviesLocation();
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Open Directory"), start,
                                                             QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (!folder.isEmpty())
        searchFolder(folder);
}

void MissingFilesDialog::locate(const QString& oldPath)
{
    if (oldPath.isEmpty() || !d->pending.contains(oldPath) || isSearching())
        return;
    const QString newPath = FileDialog::findMissingFile(oldPath);
    if (newPath.isEmpty())
        return;
    const QFileInfo chosen(newPath);
    if (!chosen.isFile() || !chosen.isReadable()) {
        LOG(WARNING) << "missing files: " << newPath.toStdString() << " is not a readable file; "
                     << oldPath.toStdString() << " stays missing";
        return;
    }
    QStringList located{oldPath};
    d->found.insert(oldPath, FS::cleanPath(newPath));
    d->pending.remove(oldPath);
    emit fileLocated(oldPath, FS::cleanPath(newPath));
    // The rest of the project's media most likely moved along with this file.
    const QDir folder = chosen.absoluteDir();
    QStringList others = d->pending.values();
    others.sort();
    for (const QString& other : qAsConst(others)) {
        const QFileInfo candidate(folder.filePath(FS::fileName(FS::cleanPath(other))));
        if (candidate.isFile() && candidate.isReadable()) {
            const QString path = FS::cleanPath(candidate.absoluteFilePath());
            d->found.insert(other, path);
            d->pending.remove(other);
            located << other;
            emit fileLocated(other, path);
        }
    }
    LOG(INFO) << "missing files: located " << located.size() << " file(s) in " << folder.path().toStdString();
    if (d->pending.isEmpty())
        accept();
    else
        removeRows(located);
}

void MissingFilesDialog::setSearching(bool searching)
{
    d->filesView->setEnabled(!searching);
    d->specifyFolderButton->setEnabled(!searching);
    d->specifyFolderButton->setVisible(!searching);
    d->progressFrame->setVisible(searching);
    d->cancelButton->setVisible(searching);
}

void MissingFilesDialog::rebuildTable()
{
    d->model->removeRows(0, d->model->rowCount());
    QStringList paths = d->pending.values();
    paths.sort();
    for (const QString& oldPath : qAsConst(paths)) {
        const QString clean = FS::cleanPath(oldPath);
        auto* name = new QStandardItem(FS::fileName(clean));
        auto* folder = new QStandardItem(FS::absolutePath(clean));
        name->setData(oldPath, OldPathRole);
        folder->setData(oldPath, OldPathRole);
        const int row = d->model->rowCount();
        d->model->appendRow({name, folder});

        QLabel* nameLabel = make<QLabel>(nullptr, "nameLabel");
        nameLabel->setText(name->text());
        nameLabel->setAutoFillBackground(true);
        d->filesView->setIndexWidget(d->model->index(row, 0), nameLabel);

        QFrame* pathFrame = make<QFrame>(nullptr, "pathFrame");
        pathFrame->setAutoFillBackground(true);
        auto* pathRow = new QHBoxLayout(pathFrame);
        pathRow->setContentsMargins(0, 0, 0, 0);
        QLabel* pathLabel = make<QLabel>(pathFrame, "pathLabel");
        pathLabel->setText(folder->text());
        QToolButton* search = make<QToolButton>(pathFrame, "searchButton");
        search->setText(QStringLiteral("..."));
        search->setToolTip(tr("Locate this file"));
        connect(search, &QToolButton::clicked, this, [this, oldPath] { locate(oldPath); });
        pathRow->addWidget(pathLabel, 1);
        pathRow->addWidget(search);
        d->filesView->setIndexWidget(d->model->index(row, 1), pathFrame);
    }
    d->filesView->resizeColumnToContents(0);
}

void MissingFilesDialog::removeRows(const QStringList& oldPaths)
{
    for (const QString& oldPath : oldPaths) {
        for (int row = 0; row < d->model->rowCount(); ++row) {
            if (d->model->item(row, 0)->data(OldPathRole).toString() == oldPath) {
                d->model->removeRow(row);
                break;
            }
        }
    }
}
