#pragma once

#include <Timeline/TimelineModel.h>

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>

namespace Project {
struct Loaded;
}

class MainWindow;
class MediaBin;
class QMenu;
class TimelinePanel;

// The host's project: the timeline model, its file, and the File and Edit menus.
// Opening, starting anew and closing with unsaved changes ask Dialog::alertModifiedProject;
// a file that cannot be opened is explained through Dialog::showWarning and leaves the
// current project as it was. One log line per event:
//   project: opened <path> (<n> clips, <m> missing)
//   project: saved <path>
//   project: saved portable <path> (<n> media)
//   project: refused <path>: <reason>
// A project whose media are missing shows the missing-files dialog before it opens; the files
// found (by a folder search or by hand) replace the old paths in the clips, the project is
// marked modified, and the rest keep their old paths (also when the user skips):
//   relink: <old> -> <new>
//   relink: size differs: <new> (recorded <n> bytes, found <m>)
//   relink: <n> found, <m> still missing
class ProjectController : public QObject
{
    Q_OBJECT
public:
    ProjectController(MainWindow* window, MediaBin* bin, QObject* parent = nullptr);
    ~ProjectController() override;

    Timeline::TimelineModel* timeline() { return &m_timeline; }
    TimelinePanel* panel() const { return m_panel; }
    QString projectPath() const { return m_path; }
    bool isModified() const;

    // Each returns false when it did nothing (refused, cancelled, failed).
    bool openProject(const QString& path);
    bool newProject();
    bool save();
    // With `error`, a failure is told there instead of in a dialog (unattended runs).
    bool saveAs(const QString& path, QString* error = nullptr);
    // The project and copies of its media into the folder of `path` (see Project::savePortable).
    bool savePortable(const QString& path, QString* error = nullptr);
    // Asks to save unsaved changes; false when the user cancelled.
    bool maySafelyDiscard();

    // Places the media files at `paths` (opened or not) on the timeline, in order.
    void place(const QStringList& paths, bool atEnd, MediaTime position);
    // The files the command line named: placed in order once each has opened (failed ones
    // are skipped), then `whenDone` runs. Nothing named: it runs on the next turn.
    void placeWhenOpened(const QStringList& paths, std::function<void()> whenDone);

    // The media files that reached the bin from the command line (not from a project),
    // up to this call; later files are not collected.
    QStringList takeNamedFiles();

    static QStringList recentProjects();

    // Unattended relinking: the missing-files dialog of each project opened from now on
    // starts its search of `folder` at once and takes what it found when the search ends.
    void setRelinkFolder(const QString& folder) { m_relinkFolder = folder; }

signals:
    void projectChanged();

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void buildMenus();
    void updateTitle();
    void rememberRecent(const QString& path);
    void fillRecentMenu();
    void showProjectSettings();
    void placeBinSelection(bool atEnd, MediaTime position);
    void checkPendingPlacement();
    int relinkMissing(Project::Loaded* loaded);
    // Logs the failure and tells it in `error`, or in a dialog without one; false.
    bool saveFailed(const QString& path, const QString& why, QString* error);

    MainWindow* m_window;
    MediaBin* m_bin;
    Timeline::TimelineModel m_timeline;
    TimelinePanel* m_panel = nullptr;
    QString m_path;
    QString m_productName;
    QHash<QString, const Media::File*> m_files;
    QMenu* m_recentMenu = nullptr;
    QStringList m_pendingPlacement;
    std::function<void()> m_afterPlacement;
    QStringList m_namedFiles;
    bool m_collectNamed = true;
    bool m_openingProject = false;
    bool m_relinking = false;
    QString m_relinkFolder;
    QStringList m_sizeDiffers; // relinked files of another size than recorded, for the bin
};
