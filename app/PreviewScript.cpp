#include "PreviewScript.h"

#include "HostOptions.h"
#include "MainWindow.h"
#include "PreviewArea.h"
#include "ProjectController.h"
#include "TimelinePanel.h"

#include <PlatformHelpers.h>

#include <QApplication>
#include <QDockWidget>
#include <QShortcut>
#include <QTimer>

#include <glog/logging.h>

namespace {
// How long a saved frame may take to arrive before the host gives up on it.
constexpr int FrameWaitMs = 15000;
} // namespace

PreviewArea* installPreview(MainWindow* window, ProjectController& project)
{
    auto* preview = new PreviewArea(project.timeline());
    auto* dock = new QDockWidget(PreviewArea::tr("Preview"), window);
    dock->setObjectName(QStringLiteral("previewDock"));
    dock->setWidget(preview);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);
    if (auto* timelineDock = window->findChild<QDockWidget*>(QStringLiteral("timelineDock"))) {
        // Above the timeline: the timeline dock goes below the preview's.
        window->splitDockWidget(dock, timelineDock, Qt::Vertical);
    }
    project.panel()->setPlayhead(preview->editor().playheadMarker());
    // The playhead lives in the preview: the panel lets go of it before it goes.
    QObject::connect(preview, &PreviewArea::closing, project.panel(), [panel = project.panel()] { panel->setPlayhead(nullptr); });
    // The window outlives the project in the host; the preview must not outlive its timeline.
    QObject::connect(project.timeline(), &QObject::destroyed, dock, [dock] { delete dock; });
    auto* playPause = new QShortcut(QKeySequence(Qt::Key_Space), window);
    playPause->setObjectName(QStringLiteral("playPauseShortcut"));
    // Space plays wherever focus is in the main window, so the shortcut is the window's.
    Util::setHotkeyTagWindow(playPause, QStringLiteral("playPause"));
    QObject::connect(playPause, &QShortcut::activated, preview, [preview] { preview->playback().toggle(); });
    return preview;
}

PreviewScript::PreviewScript(PreviewArea* preview, const HostOptions& options, QObject* parent)
    : QObject(parent), m_preview(preview), m_playMs(options.playMs), m_atMs(options.previewAtMs),
      m_frameTo(options.previewFrameTo)
{
}

bool PreviewScript::hasWork() const
{
    return m_playMs >= 0 || m_atMs >= 0 || !m_frameTo.isEmpty();
}

void PreviewScript::start()
{
    if (!hasWork())
        return;
    if (m_atMs >= 0)
        m_preview->editor().playheadMarker()->setPosition(MediaTime::fromMilliseconds(m_atMs));
    if (m_playMs >= 0) {
        m_preview->playback().seek(MediaTime(), Playback::SeekFlag::Exact);
        m_preview->playback().play();
        QTimer::singleShot(m_playMs, Qt::PreciseTimer, this, [this] {
            m_preview->playback().pause();
            saveFrameAndQuit();
        });
        return;
    }
    saveFrameAndQuit();
}

void PreviewScript::saveFrameAndQuit()
{
    if (m_frameTo.isEmpty()) {
        QApplication::exit(0);
        return;
    }
    // The frame at the playhead may still be on its way: wait until the decoder has it.
    auto save = [this] {
        const QImage frame = m_preview->currentFrame();
        const bool saved = !frame.isNull() && frame.save(m_frameTo);
        if (saved)
            LOG(INFO) << "preview: saved the frame at " << m_preview->editor().playheadMarker()->position().milliseconds()
                      << " ms to " << m_frameTo.toStdString() << " (" << frame.width() << "x" << frame.height() << ")";
        else
            LOG(ERROR) << "preview: no frame could be saved to " << m_frameTo.toStdString();
        QApplication::exit(saved ? 0 : 1);
    };
    if (!m_preview->playback().isWaiting()) {
        save();
        return;
    }
    auto* timeout = new QTimer(this);
    timeout->setSingleShot(true);
    connect(timeout, &QTimer::timeout, this, save);
    connect(&m_preview->playback(), &PreviewPlayback::waitingChanged, this, [this, save, timeout] {
        if (!m_preview->playback().isWaiting()) {
            timeout->stop();
            save();
        }
    });
    timeout->start(FrameWaitMs);
}
