#pragma once

#include "PreviewDecoder.h"
#include "PreviewPlayback.h"

#include <Editing/EditPlaybackTracker.h>
#include <Editing/SceneEditor.h>
#include <Editor/Editor.h>
#include <Timeline/TimelineModel.h>

#include <QWidget>

#include <memory>

class QGraphicsPixmapItem;
class QGraphicsView;
class QLabel;
class QPushButton;

// The preview: the timeline's frame at the playhead on the scene of a graphics view whose
// viewport is an OpenGL widget. Frames are decoded off the GUI thread with the clip's
// effects rendered by libavfilter, and reach the scene as the scene editor's background
// picture. Play and pause (Space), Rotate turns the current clip (or the one under the
// playhead) a quarter turn. Log lines:
//   preview: <path> cannot be decoded: <why>
//   preview: <path> stopped decoding at <ms> ms: <why>
//   preview: <ms> ms is past the end of <path>; its last frame is shown
//   preview: clip <id> removed while its frame was decoded; the frame is dropped
//   preview: rotated clip <id> to <angle> degrees
class PreviewArea : public QWidget, private Timeline::TimelineWatcher, private Composition::IMarkerObserver
{
    Q_OBJECT
public:
    explicit PreviewArea(Timeline::TimelineModel* timeline, QWidget* parent = nullptr);
    ~PreviewArea() override;

    Editor::Editor& editor() { return m_editor; }
    PreviewPlayback& playback() { return *m_playback; }
    SceneEditor& sceneEditor() { return m_sceneEditor; }
    // The picture shown now (null before the first frame).
    QImage currentFrame() const;
    // Turns the current clip, or the clip under the playhead; false when there is none.
    bool rotateClip();

signals:
    // A decoded frame reached the scene.
    void frameShown();
    // First thing in the destructor: the playhead and the playback still exist.
    void closing();

private:
    void playheadPositionChanged(Composition::IMarker& marker, Composition::MarkerChangeReason reason) override;
    void clipsInserted(Timeline::ITimeline&, const QList<Timeline::IClip*>&) override { requestFrame(true); }
    void clipsRemoved(Timeline::ITimeline&, const QList<Timeline::IClip*>& clips) override;
    void clipsChanged(Timeline::ITimeline&, const QList<Timeline::IClip*>&) override { requestFrame(true); }
    void videoChanged(Timeline::ITimeline&, const Media::Video&) override;
    void timelineReset(Timeline::ITimeline&) override;
    void resizeEvent(QResizeEvent* event) override;

    Timeline::IClip* clipAt(MediaTime position) const;
    void requestFrame(bool force);
    void show(const DecodedFrame& frame);
    void placeBackground();
    void fitScene();
    void updateControls();

    Timeline::TimelineModel* m_timeline;
    Editor::Editor m_editor;
    SceneHelper m_sceneHelper;
    SceneEditor m_sceneEditor;
    std::unique_ptr<PreviewPlayback> m_playback;
    std::unique_ptr<EditPlaybackTracker> m_tracker;
    PreviewDecoder m_decoder;
    QGraphicsView* m_view = nullptr;
    QGraphicsPixmapItem* m_picture = nullptr;
    QPushButton* m_playButton = nullptr;
    QPushButton* m_rotateButton = nullptr;
    QLabel* m_timeLabel = nullptr;
    std::shared_ptr<const QPixmap> m_frame;
    QImage m_frameImage;
    FrameRequest m_lastRequest;
    QString m_requestedClip;  // the clip whose frame is being decoded
    quint64 m_requested = 0;  // serial of the newest request
    QSet<QString> m_reported; // files whose decoding problem was logged
};
