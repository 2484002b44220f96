#include "ProjectController.h"

#include "HostServices.h"
#include "MainWindow.h"
#include "MediaBin.h"
#include "TimelinePanel.h"

#include <Statistics.h>
#include <Dialog/DialogStrategy.h>
#include <FileDialog.h>
#include <Media/Thumbnails.h>
#include <Dialog/MissingFilesDialog/MissingFilesDialog.h>
#include <Dialog/MissingFilesDialog/MissingFilesSearch.h>
#include <Project/ProjectFile.h>
#include <Project/Relink.h>
#include <Settings/Settings.h>

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QFormLayout>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QSpinBox>
#include <QTimer>
#include <QUndoStack>

#include <glog/logging.h>

namespace {

const QString kRecentKey = QStringLiteral("recentProjects");
constexpr int kRecentCount = 8;

std::string text(const QString& s)
{
    return s.toStdString();
}

} // namespace

ProjectController::ProjectController(MainWindow* window, MediaBin* bin, QObject* parent)
    : QObject(parent), m_window(window), m_bin(bin)
{
    m_productName = window->windowTitle();
    m_timeline.setMediaResolver([this](const QString& path) { return m_files.value(path); });
    // The bin's files by path, so clips find theirs in constant time.
    Media::FilePool& pool = bin->pool();
    for (const Media::File* file : pool.files())
        m_files.insert(file->filePath(), file);
    connect(&pool, &Media::FilePool::fileAdded, this, [this](const Media::File* file) {
        m_files.insert(file->filePath(), file);
    });
    connect(&pool, &Media::FilePool::fileRemoved, this, [this](const Media::File* file) {
        if (m_files.value(file->filePath()) == file)
            m_files.remove(file->filePath());
        m_panel->update();
    });
    const auto refresh = [this] {
        m_panel->update();
        checkPendingPlacement();
    };
    connect(&pool, &Media::FilePool::fileOpened, this, refresh);
    connect(&pool, &Media::FilePool::fileFailed, this, refresh);

    m_panel = new TimelinePanel(&m_timeline);
    auto* dock = new QDockWidget(tr("Timeline"), window);
    dock->setObjectName(QStringLiteral("timelineDock"));
    dock->setWidget(m_panel);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    // Clips show the same pictures as the bin: the service asks the shared cache or makes them
    // off the GUI thread, and the panel repaints when one arrives.
    auto& thumbnails = Media::Thumbnails::instance();
    m_panel->setThumbnailProvider([&thumbnails](const QString& path) { return thumbnails.request(path); });
    connect(&thumbnails, &Media::Thumbnails::ready, m_panel, &TimelinePanel::thumbnailReady);
    connect(m_panel, &TimelinePanel::placeRequested, this, &ProjectController::placeBinSelection);
    connect(m_panel, &TimelinePanel::projectSettingsRequested, this, &ProjectController::showProjectSettings);
    connect(window, &MainWindow::filesAdded, this, [this](const QStringList& files) {
        if (m_collectNamed && !m_openingProject)
            m_namedFiles << files;
    });
    connect(window, &MainWindow::projectOpenRequested, this, [this](const QString& path) { openProject(path); });
    connect(m_timeline.undoStack(), &QUndoStack::cleanChanged, this, &ProjectController::updateTitle);
    window->installEventFilter(this);
    buildMenus();
    updateTitle();
}

ProjectController::~ProjectController()
{
    m_window->removeEventFilter(this);
    // The timeline (and its undo stack) goes after this object's other members; the stack
    // says it is clean again as it goes, and the title must not be remade from fields that
    // are already gone.
    disconnect(m_timeline.undoStack(), nullptr, this, nullptr);
}

bool ProjectController::isModified() const
{
    return !m_timeline.undoStack()->isClean();
}

void ProjectController::buildMenus()
{
    QMenuBar* bar = m_window->menuBar();
    QAction* first = bar->actions().value(0);
    auto* file = new QMenu(tr("&File"), m_window);
    file->setObjectName(QStringLiteral("fileMenu"));
    auto tag = [](QAction* action, const char* event, const QString& source) {
        Statistics::setEventKey(action, QLatin1String(event), source);
        return action;
    };
    const QString fileMenu = QStringLiteral("fileMenu");
    const QString editMenu = QStringLiteral("editMenu");
    tag(file->addAction(tr("&New"), this, [this] { newProject(); }, QKeySequence::New), "newProject", fileMenu);
    tag(file->addAction(tr("&Open..."), this, [this] {
        const QString path = FileDialog::openProject(QString());
        if (!path.isEmpty())
            openProject(path);
    }, QKeySequence::Open), "openProject", fileMenu);
    m_recentMenu = file->addMenu(tr("Open &Recent"));
    m_recentMenu->setObjectName(QStringLiteral("recentMenu"));
    connect(m_recentMenu, &QMenu::aboutToShow, this, &ProjectController::fillRecentMenu);
    tag(file->addAction(tr("&Save"), this, [this] { save(); }, QKeySequence::Save), "saveProject", fileMenu);
    tag(file->addAction(tr("Save &As..."), this, [this] {
        // The library's dialog remembers the folder and settles the extension.
        const QString path = FileDialog::savingProjectPath(m_path);
        if (!path.isEmpty())
            saveAs(path);
    }, QKeySequence::SaveAs), "saveProjectAs", fileMenu);
    tag(file->addAction(tr("Save &Portable Project..."), this, [this] {
        // A folder of its own, named after the project, holding it and copies of its media.
        const QString path = FileDialog::savingProjectPortablePath(m_path);
        if (!path.isEmpty())
            savePortable(path);
    }), "savePortableProject", fileMenu)->setObjectName(QStringLiteral("savePortableAction"));
    file->addSeparator();
    tag(file->addAction(tr("Project se&ttings..."), this, &ProjectController::showProjectSettings), "projectSettings", fileMenu);
    file->addSeparator();
    tag(file->addAction(tr("&Quit"), m_window, &QWidget::close, QKeySequence::Quit), "quit", fileMenu)
        ->setObjectName(QStringLiteral("quitAction"));
    bar->insertMenu(first, file);

    auto* edit = new QMenu(tr("&Edit"), m_window);
    edit->setObjectName(QStringLiteral("editMenu"));
    QAction* undo = m_timeline.undoStack()->createUndoAction(edit, tr("&Undo"));
    undo->setShortcut(QKeySequence::Undo);
    undo->setObjectName(QStringLiteral("undoAction"));
    QAction* redo = m_timeline.undoStack()->createRedoAction(edit, tr("&Redo"));
    redo->setShortcut(QKeySequence::Redo);
    redo->setObjectName(QStringLiteral("redoAction"));
    edit->addAction(tag(undo, "undo", editMenu));
    edit->addAction(tag(redo, "redo", editMenu));
    edit->addSeparator();
    tag(edit->addAction(tr("Select &all clips"), this, [this] { m_timeline.selectAll(); }), "selectAllClips", editMenu);
    tag(edit->addAction(tr("&Remove selected clips"), this, [this] { m_timeline.removeClips(m_timeline.selectedClips()); }),
        "removeClips", editMenu);
    bar->insertMenu(first, edit);
}

void ProjectController::updateTitle()
{
    const QString name = m_path.isEmpty() ? tr("Untitled") : QFileInfo(m_path).completeBaseName();
    m_window->setWindowTitle(QStringLiteral("%1[*] \u2014 %2").arg(name, m_productName));
    m_window->setWindowModified(isModified());
}

bool ProjectController::maySafelyDiscard()
{
    if (!isModified())
        return true;
    bool saveFirst = false;
    if (!Dialog::alertModifiedProject(saveFirst))
        return false;
    return !saveFirst || save();
}

bool ProjectController::newProject()
{
    if (!maySafelyDiscard())
        return false;
    Timeline::TimelineModel::Content empty;
    empty.tracks = Timeline::TimelineModel::defaultTracks();
    m_timeline.reset(std::move(empty));
    m_path.clear();
    updateTitle();
    LOG(INFO) << "project: new";
    emit projectChanged();
    return true;
}

bool ProjectController::openProject(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (!maySafelyDiscard())
        return false;
    Project::Loaded loaded;
    QString why;
    if (!Project::load(absolute, &loaded, &why)) {
        LOG(WARNING) << "project: refused " << text(absolute) << ": " << text(why);
        Dialog::showWarning(tr("Open project"), tr("%1 cannot be opened.\n\n%2").arg(QFileInfo(absolute).fileName(), why));
        return false;
    }
    const int relinked = loaded.missingCount() > 0 ? relinkMissing(&loaded) : 0;
    const int missing = loaded.content.missingMedia.size();
    // The project's media join the bin (and are opened) unless they are there already.
    QStringList toOpen;
    for (const Project::MediaEntry& media : loaded.media)
        if (!media.resolved.isEmpty() && !m_files.contains(media.resolved) && !toOpen.contains(media.resolved))
            toOpen << media.resolved;
    m_timeline.reset(std::move(loaded.content));
    // The reset leaves the history clean; relinked paths are a change the file does not hold yet.
    if (relinked > 0)
        m_timeline.undoStack()->resetClean();
    m_path = absolute;
    if (!toOpen.isEmpty()) {
        m_openingProject = true;
        m_window->addFiles(toOpen);
        m_openingProject = false;
    }
    for (const QString& path : std::exchange(m_sizeDiffers, QStringList()))
        m_bin->markFile(path, tr("size differs"));
    updateTitle();
    rememberRecent(absolute);
    LOG(INFO) << "project: opened " << text(absolute) << " (" << m_timeline.clipCount() << " clips, " << missing << " missing)";
    emit projectChanged();
    return true;
}

int ProjectController::relinkMissing(Project::Loaded* loaded)
{
    const QSet<QString> missing = loaded->content.missingMedia;
    MissingFilesDialog dialog(m_window);
    dialog.setMissingFiles(missing);
    if (!m_relinkFolder.isEmpty()) {
        const QString folder = m_relinkFolder;
        connect(&dialog, &MissingFilesDialog::searchFinished, &dialog, [&dialog](int, int, bool cancelled) {
            if (!cancelled)
                dialog.accept();
        });
        QTimer::singleShot(0, &dialog, [&dialog, folder] { dialog.searchFolder(folder); });
    } else if (const int dismissAfter = HostServices::dismissDialogsAfterMs(); dismissAfter >= 0) {
        QTimer::singleShot(dismissAfter, &dialog, [&dialog] {
            LOG(INFO) << "dialog dismissed: missingFiles";
            dialog.reject();
        });
    }
    // The placement waiting for the command line's files must not run inside the dialog's
    // loop, on the project before its relink.
    m_relinking = true;
    const bool accepted = dialog.exec() == QDialog::Accepted;
    m_relinking = false;
    // Files found stay found even when the user then skips the rest: only what was not
    // found keeps its old path.
    QMap<QString, QString> found = dialog.foundFiles();
    for (auto it = found.begin(); it != found.end();) {
        if (missing.contains(it.key()) && !it.value().isEmpty())
            ++it;
        else
            it = found.erase(it);
    }
    for (auto it = found.cbegin(); it != found.cend(); ++it)
        LOG(INFO) << "relink: " << text(it.key()) << " -> " << text(it.value());
    // A file of the right name but another size is likely not the one the project used.
    const QHash<QString, qint64> recorded = Project::recordedSizes(*loaded);
    for (const QString& old : MissingFiles::sizeMismatches(found, recorded)) {
        m_sizeDiffers << found.value(old);
        LOG(WARNING) << "relink: size differs: " << text(found.value(old)) << " (recorded " << recorded.value(old)
                     << " bytes, found " << QFileInfo(found.value(old)).size() << ")";
    }
    const int relinked = Project::relink(loaded, found);
    LOG(INFO) << "relink: " << found.size() << " found, " << loaded->content.missingMedia.size() << " still missing"
              << (accepted ? "" : " (skipped)");
    if (m_afterPlacement)
        QTimer::singleShot(0, this, &ProjectController::checkPendingPlacement);
    return relinked;
}

bool ProjectController::save()
{
    if (m_path.isEmpty()) {
        const QString path = FileDialog::savingProjectPath(QString());
        return !path.isEmpty() && saveAs(path);
    }
    return saveAs(m_path);
}

bool ProjectController::saveFailed(const QString& path, const QString& why, QString* error)
{
    LOG(WARNING) << "project: not saved " << text(path) << ": " << text(why);
    if (error)
        *error = why;
    else
        Dialog::showWarning(tr("Save project"), why);
    return false;
}

bool ProjectController::saveAs(const QString& path, QString* error)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QString why;
    if (!Project::save(absolute, m_timeline, &why))
        return saveFailed(absolute, why, error);
    m_path = absolute;
    m_timeline.undoStack()->setClean();
    updateTitle();
    rememberRecent(absolute);
    LOG(INFO) << "project: saved " << text(absolute);
    return true;
}

bool ProjectController::savePortable(const QString& path, QString* error)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QString why;
    if (!Project::savePortable(absolute, m_timeline, &why))
        return saveFailed(absolute, why, error);
    // The open project stays the one the user worked on; the portable copy is a separate file.
    LOG(INFO) << "project: saved portable " << text(absolute) << " (" << m_timeline.mediaPaths().size() << " media)";
    return true;
}

QStringList ProjectController::takeNamedFiles()
{
    m_collectNamed = false;
    return std::exchange(m_namedFiles, QStringList());
}

QStringList ProjectController::recentProjects()
{
    return Settings::value(kRecentKey).toStringList();
}

void ProjectController::rememberRecent(const QString& path)
{
    QStringList recent = recentProjects();
    recent.removeAll(path);
    recent.prepend(path);
    Settings::setValue(kRecentKey, QVariant(recent.mid(0, kRecentCount)));
}

void ProjectController::fillRecentMenu()
{
    m_recentMenu->clear();
    const QStringList recent = recentProjects();
    for (const QString& path : recent)
        m_recentMenu->addAction(QFileInfo(path).fileName(), this, [this, path] { openProject(path); })->setToolTip(path);
    if (recent.isEmpty())
        m_recentMenu->addAction(tr("No recent projects"))->setEnabled(false);
}

void ProjectController::showProjectSettings()
{
    QDialog dialog(m_window);
    dialog.setObjectName(QStringLiteral("projectSettingsDialog"));
    dialog.setWindowTitle(tr("Project settings"));
    auto* form = new QFormLayout(&dialog);
    const Media::Video* video = m_timeline.video();
    auto* width = new QSpinBox;
    auto* height = new QSpinBox;
    for (QSpinBox* box : {width, height}) {
        box->setRange(16, 16384);
        box->setSingleStep(2);
    }
    width->setValue(video->frameWidth());
    height->setValue(video->frameHeight());
    auto* rate = new QComboBox;
    for (double r : {23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 59.94, 60.0})
        rate->addItem(QString::number(r), r);
    const int current = rate->findData(video->frameRate());
    if (current < 0)
        rate->addItem(QString::number(video->frameRate()), video->frameRate());
    rate->setCurrentIndex(current < 0 ? rate->count() - 1 : current);
    form->addRow(tr("Frame width"), width);
    form->addRow(tr("Frame height"), height);
    form->addRow(tr("Frame rate"), rate);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    form->addRow(buttons);
    if (dialog.exec() != QDialog::Accepted)
        return;
    Media::Video changed = *video;
    changed.setFrameSize(width->value(), height->value());
    changed.setFrameRate(rate->currentData().toDouble());
    // Through the media model's change message, as any other part of the editor would.
    Media::VideoChanger(*video).change(changed);
    LOG(INFO) << "project: video " << changed.frameWidth() << 'x' << changed.frameHeight() << " at " << changed.frameRate()
              << " fps";
}

void ProjectController::place(const QStringList& paths, bool atEnd, MediaTime position)
{
    if (paths.isEmpty())
        return;
    Timeline::ClipBuildingStrategy strategy;
    strategy.atEnd = atEnd;
    strategy.position = position;
    const QList<Timeline::IClip*> clips = m_timeline.placeMedia(paths, strategy);
    LOG(INFO) << "timeline: placed " << clips.size() << " clip(s) from " << paths.size() << " file(s)";
}

void ProjectController::placeBinSelection(bool atEnd, MediaTime position)
{
    QStringList paths;
    QListWidget* list = m_window->mediaBin();
    for (int i = 0; i < list->count(); ++i) {
        QListWidgetItem* item = list->item(i);
        const Media::File* file = m_bin->fileOf(item);
        if (item->isSelected() && file && !file->isFailed())
            paths << file->filePath();
    }
    place(paths, atEnd, position);
}

void ProjectController::placeWhenOpened(const QStringList& paths, std::function<void()> whenDone)
{
    m_pendingPlacement = paths;
    m_afterPlacement = std::move(whenDone);
    QTimer::singleShot(0, this, &ProjectController::checkPendingPlacement);
}

void ProjectController::checkPendingPlacement()
{
    if (!m_afterPlacement || m_relinking)
        return;
    QStringList opened;
    for (const QString& path : m_pendingPlacement) {
        const Media::File* file = m_files.value(path);
        if (file && file->isOpening())
            return;
        if (file && file->isOpened())
            opened << path;
    }
    m_pendingPlacement.clear();
    place(opened, true, MediaTime());
    std::function<void()> done = std::exchange(m_afterPlacement, nullptr);
    done();
}

bool ProjectController::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window && event->type() == QEvent::Close && !maySafelyDiscard()) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
