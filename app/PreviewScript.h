#pragma once

#include <QObject>
#include <QString>

class MainWindow;
class PreviewArea;
class ProjectController;
struct HostOptions;

// Builds the preview into the main window, above the timeline, with Space for play and
// pause; returns it (owned by the window).
PreviewArea* installPreview(MainWindow* window, ProjectController& project);

// What the host options ask of the preview, run once the named media are on the timeline:
// --preview-at <ms> moves the playhead there, --play-ms <n> plays from the start for n ms,
// --preview-frame-to <png> then saves the frame shown; the host quits after the last of
// them (exit 1 when the frame could not be saved or none was shown).
class PreviewScript : public QObject
{
    Q_OBJECT
public:
    PreviewScript(PreviewArea* preview, const HostOptions& options, QObject* parent = nullptr);
    bool hasWork() const;
    void start();

private:
    void saveFrameAndQuit();

    PreviewArea* m_preview;
    int m_playMs;
    int m_atMs;
    QString m_frameTo;
};
