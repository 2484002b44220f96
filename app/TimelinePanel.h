#pragma once

#include <Composition/Marker.h>
#include <Timeline/TimelineModel.h>

#include <QImage>
#include <QWidget>

#include <functional>

class QLabel;
class QScrollArea;
class TimelineView;

// The host's timeline: a ruler, the tracks with their clips drawn to scale, zoom, and
// the editing gestures (click, Ctrl+click and rubber-band selection, dragging clips to
// move them, Delete to remove). Every change goes to the model, so undo covers it.
//
// Pictures of media files come from a thumbnail provider the host sets; until one is set
// (or while it has no picture yet) clips are drawn with their name only:
//
//   panel->setThumbnailProvider([&](const QString& path) { return thumbnails.request(path); });
//   connect(&thumbnails, &Thumbnails::ready, panel, &TimelinePanel::thumbnailReady);
class TimelinePanel : public QWidget
{
    Q_OBJECT
public:
    // A picture of the media file at `path`, or a null image when there is none (yet).
    using ThumbnailProvider = std::function<QImage(const QString& path)>;

    explicit TimelinePanel(Timeline::TimelineModel* timeline, QWidget* parent = nullptr);
    ~TimelinePanel() override;

    void setThumbnailProvider(ThumbnailProvider provider);
    // The playhead drawn over the tracks and dragged on the ruler (none by default); it
    // must outlive the panel or be unset first.
    void setPlayhead(Composition::IMarker* playhead);
    // The drawing surface: where clips, files and effects are dropped.
    QWidget* view() const;
    // Where clips dropped at `position` of view() go: that track (when it fits) and time.
    void dropPlacement(const QPoint& position, Timeline::ClipBuildingStrategy& strategy) const;
    // The middle of `clip` in view() (where a drop reaches it).
    QPoint clipCenter(const Timeline::IClip* clip) const;
    // Pixels per second of timeline.
    double zoom() const;
    void setZoom(double pixelsPerSecond);

public slots:
    // Repaints the clips of the media file at `path` (its picture became available).
    void thumbnailReady(const QString& path);

signals:
    // The user asked to place the bin's selected media, at `position` (or at the end).
    void placeRequested(bool atEnd, MediaTime position);
    void projectSettingsRequested();

private:
    void updateVideoLabel();

    Timeline::TimelineModel* m_timeline;
    TimelineView* m_view;
    QScrollArea* m_scroll;
    QLabel* m_videoLabel;
};
