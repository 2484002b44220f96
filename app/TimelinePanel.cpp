#include "TimelinePanel.h"

#include "ClipActions.h"

#include <Mime/MimeUtils.h>
#include <Statistics.h>

#include <QAction>
#include <QMimeData>
#include <QApplication>
#include <QBoxLayout>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRubberBand>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>
#include <QUndoStack>

#include <glog/logging.h>

#include <algorithm>
#include <cmath>

using namespace Timeline;

namespace {

constexpr int kRulerHeight = 24;
constexpr int kTrackHeight = 46;
constexpr int kHeaderWidth = 36;
constexpr double kMinZoom = 0.05; // pixels per second: 10,000 clips still fit a few screens
constexpr double kMaxZoom = 400.0;

QColor clipColour(const IClip* clip)
{
    if (clip->isMediaMissing())
        return QColor(0x9a, 0x3b, 0x3b);
    const ClipTypes type = clip->type();
    if (type & ClipType::Audio)
        return clip->isNativeAudio() ? QColor(0x3d, 0x7a, 0x5a) : QColor(0x2f, 0x8f, 0x6f);
    if (type & ClipType::Image)
        return QColor(0x7a, 0x5a, 0x9a);
    if (type & (ClipType::Title | ClipType::Overlay))
        return QColor(0xb0, 0x80, 0x30);
    return QColor(0x3a, 0x66, 0xa0);
}

// Ruler steps of 1, 2, 5 times a power of ten seconds, at least 70 pixels apart.
double rulerStep(double pixelsPerSecond)
{
    for (double magnitude = 0.01;; magnitude *= 10)
        for (double m : {1.0, 2.0, 5.0})
            if (m * magnitude * pixelsPerSecond >= 70)
                return m * magnitude;
}

QString timeText(double seconds)
{
    const qint64 s = qint64(seconds);
    if (seconds < 60 && seconds != std::floor(seconds))
        return QStringLiteral("%1s").arg(seconds, 0, 'f', seconds < 1 ? 2 : 1);
    return QStringLiteral("%1:%2").arg(s / 60).arg(s % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

// The drawing surface inside the scroll area; its size follows the timeline's length.
class TimelineView : public QWidget, public TimelineWatcher, public Composition::IMarkerObserver
{
public:
    TimelineView(TimelineModel* timeline, TimelinePanel* panel) : m_timeline(timeline), m_panel(panel)
    {
        setObjectName(QStringLiteral("timelineView"));
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(false);
        watch(timeline);
        updateExtent();
    }

    ~TimelineView() override { setPlayhead(nullptr); }

    double zoom = 12.0;
    TimelinePanel::ThumbnailProvider thumbnails;

    void setPlayhead(Composition::IMarker* marker)
    {
        if (m_playhead)
            m_playhead->removeObserver(this);
        m_playhead = marker;
        if (m_playhead)
            m_playhead->addObserver(this);
        update();
    }

    // Only the strips the playhead left and reached are repainted: it moves 25 times a
    // second during playback.
    void playheadPositionChanged(Composition::IMarker& marker, Composition::MarkerChangeReason) override
    {
        const int x = xOf(marker.position());
        update(QRect(m_playheadX - 6, 0, 13, height()));
        update(QRect(x - 6, 0, 13, height()));
        m_playheadX = x;
    }

    void updateExtent()
    {
        const double seconds = std::max(60.0, m_timeline->duration().seconds() + 30.0);
        setMinimumSize(kHeaderWidth + int(seconds * zoom), kRulerHeight + kTrackHeight * m_timeline->trackCount() + 2);
        update();
    }

    QRect clipRect(const IClip* clip) const
    {
        const CompositionRange range = clip->compositionRange();
        const int x = xOf(range.start);
        const int w = std::max(2, xOf(range.end()) - x);
        return QRect(x, kRulerHeight + clip->track() * kTrackHeight + 3, w, kTrackHeight - 6);
    }

    IClip* clipAt(const QPoint& p) const
    {
        const int track = trackAt(p.y());
        if (track < 0)
            return nullptr;
        for (IClip* clip : m_timeline->clips(track))
            if (clipRect(clip).contains(p))
                return clip;
        return nullptr;
    }

    int trackAt(int y) const
    {
        const int t = (y - kRulerHeight) / kTrackHeight;
        return y >= kRulerHeight && t < m_timeline->trackCount() ? t : -1;
    }
    int xOf(MediaTime t) const { return kHeaderWidth + int(std::lround(t.seconds() * zoom)); }
    MediaTime timeAt(int x) const { return MediaTime::fromSeconds(std::max(0.0, (x - kHeaderWidth) / zoom)); }

    // TimelineWatcher: every change repaints; content changes resize.
    void clipsInserted(ITimeline&, const QList<IClip*>&) override { updateExtent(); }
    void clipsRemoved(ITimeline&, const QList<IClip*>&) override { updateExtent(); }
    void clipsChanged(ITimeline&, const QList<IClip*>&) override { updateExtent(); }
    void selectionChanged(ITimeline&) override { update(); }
    void timelineReset(ITimeline&) override { updateExtent(); }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QPainter p(this);
        const QRect exposed = event->rect();
        p.fillRect(exposed, QColor(0x24, 0x27, 0x2b));
        paintRuler(p, exposed);
        for (int t = 0; t < m_timeline->trackCount(); ++t) {
            const QRect row(0, kRulerHeight + t * kTrackHeight, width(), kTrackHeight);
            if (!row.intersects(exposed))
                continue;
            p.fillRect(row.adjusted(0, 1, 0, -1), t % 2 ? QColor(0x2c, 0x30, 0x35) : QColor(0x30, 0x34, 0x3a));
            paintClips(p, t, exposed);
        }
        // Track names stay in view when the timeline scrolls sideways.
        const int left = visibleRegion().boundingRect().left();
        for (int t = 0; t < m_timeline->trackCount(); ++t) {
            const QRect header(left, kRulerHeight + t * kTrackHeight, kHeaderWidth, kTrackHeight);
            p.fillRect(header, QColor(0x1b, 0x1d, 0x20));
            p.setPen(QColor(0xc8, 0xcc, 0xd0));
            const bool audio = m_timeline->trackKind(t) == TrackKind::Audio;
            int number = 1;
            for (int u = 0; u < t; ++u)
                number += m_timeline->trackKind(u) == m_timeline->trackKind(t);
            p.drawText(header, Qt::AlignCenter, QStringLiteral("%1%2").arg(audio ? QLatin1Char('A') : QLatin1Char('V')).arg(number));
        }
        if (m_playhead) {
            const int x = m_playheadX = xOf(m_playhead->position());
            p.setPen(QPen(QColor(0xff, 0x4d, 0x4d), 1));
            p.drawLine(x, 0, x, height());
            p.setBrush(QColor(0xff, 0x4d, 0x4d));
            p.drawPolygon(QPolygon({QPoint(x - 5, 0), QPoint(x + 5, 0), QPoint(x, 8)}));
        }
    }

    void paintRuler(QPainter& p, const QRect& exposed)
    {
        const QRect ruler(0, 0, width(), kRulerHeight);
        if (!ruler.intersects(exposed))
            return;
        p.fillRect(ruler, QColor(0x1b, 0x1d, 0x20));
        p.setPen(QColor(0x9a, 0xa0, 0xa6));
        const double step = rulerStep(zoom);
        const double first = std::floor(timeAt(exposed.left()).seconds() / step) * step;
        for (double s = first; xOf(MediaTime::fromSeconds(s)) <= exposed.right(); s += step) {
            const int x = xOf(MediaTime::fromSeconds(s));
            p.drawLine(x, kRulerHeight - 8, x, kRulerHeight - 1);
            p.drawText(x + 3, kRulerHeight - 10, timeText(s));
            const int half = xOf(MediaTime::fromSeconds(s + step / 2));
            p.drawLine(half, kRulerHeight - 4, half, kRulerHeight - 1);
        }
    }

    void paintClips(QPainter& p, int track, const QRect& exposed)
    {
        const QList<IClip*> clips = m_timeline->clips(track);
        // Clips are sorted by start: skip to the first that can reach the exposed area.
        const MediaTime from = timeAt(exposed.left());
        for (IClip* clip : clips) {
            QRect r = clipRect(clip);
            if (m_dragging.contains(clip))
                r.translate(m_dragOffset.x(), m_dragTrackDelta * kTrackHeight);
            if (r.right() < exposed.left() && clip->compositionRange().end() < from)
                continue;
            if (r.left() > exposed.right())
                break;
            paintClip(p, clip, r);
        }
    }

    void paintClip(QPainter& p, IClip* clip, const QRect& r)
    {
        const bool selected = m_timeline->isSelected(clip);
        QPainterPath shape;
        shape.addRoundedRect(r, 3, 3);
        p.fillPath(shape, clipColour(clip));
        if (clip->isMediaMissing())
            p.fillPath(shape, QBrush(QColor(255, 255, 255, 40), Qt::BDiagPattern));
        QRect text = r.adjusted(4, 2, -3, -2);
        // The thumbnail place: the first frame of the media, as tall as the clip.
        if (thumbnails && !clip->mediaPath().isEmpty() && !(clip->type() & ClipType::Audio) && r.width() > 40) {
            const QImage picture = thumbnails(clip->mediaPath());
            if (!picture.isNull()) {
                const QSize size = picture.size().scaled(QSize(r.width() / 2, r.height() - 4), Qt::KeepAspectRatio);
                p.drawImage(QRect(r.left() + 2, r.top() + 2, size.width(), size.height()), picture);
                text.setLeft(r.left() + size.width() + 6);
            }
        }
        p.setPen(Qt::white);
        if (text.width() > 8) {
            QString label = clip->description().name;
            if (clip->isMediaMissing())
                label = TimelinePanel::tr("%1 (missing)").arg(label);
            if (clip->speed() != 1.0)
                label += QStringLiteral(" \u00d7%1").arg(clip->speed());
            if (!clip->effects().isEmpty())
                label += QStringLiteral(" \u2605");
            p.drawText(text, Qt::AlignLeft | Qt::AlignTop, fontMetrics().elidedText(label, Qt::ElideRight, text.width()));
        }
        p.setPen(selected ? QPen(QColor(0xff, 0xd0, 0x40), 2) : QPen(QColor(0, 0, 0, 120), 1));
        p.drawPath(shape);
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        setFocus();
        if (event->button() != Qt::LeftButton)
            return;
        m_pressAt = event->pos();
        // The ruler is where the playhead is taken and dragged (scrubbing).
        if (m_playhead && event->pos().y() < kRulerHeight) {
            m_scrubbing = true;
            m_playhead->setPosition(timeAt(event->pos().x()));
            return;
        }
        IClip* clip = clipAt(event->pos());
        const bool ctrl = event->modifiers() & Qt::ControlModifier;
        if (!clip) {
            if (!ctrl)
                m_timeline->clearSelection();
            m_band = m_band ? m_band : new QRubberBand(QRubberBand::Rectangle, this);
            m_band->setGeometry(QRect(m_pressAt, QSize()));
            m_band->show();
            return;
        }
        if (ctrl) {
            m_timeline->select({clip}, ITimeline::SelectionMode::Toggle);
            return;
        }
        if (!m_timeline->isSelected(clip))
            m_timeline->select({clip}, ITimeline::SelectionMode::Replace);
        m_pressed = clip;
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (m_scrubbing) {
            m_playhead->setPosition(timeAt(event->pos().x()));
            return;
        }
        if (m_band && m_band->isVisible()) {
            m_band->setGeometry(QRect(m_pressAt, event->pos()).normalized());
            return;
        }
        if (!m_pressed || (event->pos() - m_pressAt).manhattanLength() < QApplication::startDragDistance())
            return;
        // The dragged clip and its group follow the mouse; the model changes on release.
        m_dragging.clear();
        IClip* leader = m_pressed->timingClip();
        m_dragging << leader;
        for (IClip* c : m_timeline->clips())
            if (c->timingClip() == leader)
                m_dragging << c;
        m_dragOffset = QPoint(event->pos().x() - m_pressAt.x(), 0);
        const int track = trackAt(event->pos().y());
        const bool kindFits = track >= 0 && m_timeline->trackKind(track) == m_timeline->trackKind(m_pressed->track());
        m_dragTrackDelta = kindFits ? track - m_pressed->track() : 0;
        update();
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        if (m_scrubbing) {
            m_scrubbing = false;
            return;
        }
        if (m_band && m_band->isVisible()) {
            const QRect band = m_band->geometry();
            m_band->hide();
            QList<IClip*> hit;
            for (IClip* clip : m_timeline->clips())
                if (clipRect(clip).intersects(band))
                    hit << clip;
            m_timeline->select(hit, event->modifiers() & Qt::ControlModifier ? ITimeline::SelectionMode::Add
                                                                            : ITimeline::SelectionMode::Replace);
            return;
        }
        IClip* clip = m_pressed;
        m_pressed = nullptr;
        if (!clip || m_dragging.isEmpty())
            return;
        const MediaTime start = timeAt(clipRect(clip).left() + m_dragOffset.x());
        const int track = clip->track() + m_dragTrackDelta;
        m_dragging.clear();
        m_dragOffset = QPoint();
        m_dragTrackDelta = 0;
        m_timeline->moveClip(clip, track, start);
        update();
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override
    {
        if (!clipAt(event->pos()) && trackAt(event->pos().y()) >= 0)
            emit m_panel->placeRequested(false, timeAt(event->pos().x()));
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
            m_timeline->removeClips(m_timeline->selectedClips());
            return;
        }
        QWidget::keyPressEvent(event);
    }

    void wheelEvent(QWheelEvent* event) override
    {
        if (!(event->modifiers() & Qt::ControlModifier)) {
            event->ignore();
            return;
        }
        m_panel->setZoom(zoom * (event->angleDelta().y() > 0 ? 1.25 : 0.8));
    }

    void contextMenuEvent(QContextMenuEvent* event) override
    {
        QMenu menu(this);
        const MediaTime at = timeAt(event->pos().x());
        QAction* place = menu.addAction(TimelinePanel::tr("Place selected media here"));
        place->setObjectName(QStringLiteral("placeHereAction"));
        Statistics::setEventKey(place, QStringLiteral("placeOnTimeline"), QStringLiteral("timelineContextMenu"));
        IClip* clip = clipAt(event->pos());
        if (clip && !m_timeline->isSelected(clip))
            m_timeline->select({clip}, ITimeline::SelectionMode::Replace);
        QAction* remove = menu.addAction(TimelinePanel::tr("Remove"));
        remove->setEnabled(!m_timeline->selectedClips().isEmpty());
        Statistics::setEventKey(remove, QStringLiteral("removeClips"), QStringLiteral("timelineContextMenu"));
        if (!m_timeline->selectedClips().isEmpty()) {
            menu.addSeparator();
            ClipActions::addTo(&menu, m_timeline);
            menu.addSeparator();
        }
        Statistics::setEventKey(menu.addAction(TimelinePanel::tr("Select all"), [this] { m_timeline->selectAll(); }),
                                QStringLiteral("selectAllClips"), QStringLiteral("timelineContextMenu"));
        Statistics::parse(&menu);
        QAction* chosen = menu.exec(event->globalPos());
        if (chosen == place)
            emit m_panel->placeRequested(false, at);
        else if (chosen == remove)
            m_timeline->removeClips(m_timeline->selectedClips());
    }

    // An effect dragged from the Effects page applies to the clip it is dropped on. Other
    // drags are the drop handler's (its filter has answered them before they come here).
    void dragEnterEvent(QDragEnterEvent* event) override
    {
        if (event->mimeData()->hasFormat(MimeUtils::EffectType))
            event->acceptProposedAction();
    }

    void dragMoveEvent(QDragMoveEvent* event) override
    {
        if (event->mimeData()->hasFormat(MimeUtils::EffectType))
            event->setAccepted(effectTarget(event) != nullptr);
    }

    void dropEvent(QDropEvent* event) override
    {
        if (!event->mimeData()->hasFormat(MimeUtils::EffectType))
            return;
        const QString id = QString::fromUtf8(event->mimeData()->data(MimeUtils::EffectType)).trimmed();
        IClip* clip = effectTarget(event);
        std::shared_ptr<Effect::Object> effect = clip ? Effect::Object::create(id) : nullptr;
        if (!effect) {
            LOG(WARNING) << "drop: " << objectName().toStdString() << " effect \"" << id.left(64).toStdString()
                         << (clip ? "\" is not in the catalogue" : "\" not on a clip");
            return;
        }
        if (m_timeline->addEffect(clip, effect)) {
            LOG(INFO) << "drop: " << objectName().toStdString() << " effect " << id.toStdString() << " on "
                      << clip->description().name.toStdString();
            event->acceptProposedAction();
        }
    }

private:
    IClip* effectTarget(const QDropEvent* event) const
    {
        IClip* clip = clipAt(event->pos());
        return clip && clip->takesAdjustments() ? clip : nullptr;
    }

    TimelineModel* m_timeline;
    TimelinePanel* m_panel;
    QRubberBand* m_band = nullptr;
    QPoint m_pressAt;
    IClip* m_pressed = nullptr;
    QList<IClip*> m_dragging;
    QPoint m_dragOffset;
    int m_dragTrackDelta = 0;
    Composition::IMarker* m_playhead = nullptr;
    int m_playheadX = 0;
    bool m_scrubbing = false;
};

TimelinePanel::TimelinePanel(TimelineModel* timeline, QWidget* parent) : QWidget(parent), m_timeline(timeline)
{
    setObjectName(QStringLiteral("timelinePanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    auto* bar = new QHBoxLayout;
    auto* place = new QPushButton(tr("Place on timeline"));
    place->setObjectName(QStringLiteral("placeOnTimelineButton"));
    place->setToolTip(tr("Puts the media selected in the bin at the end of the timeline"));
    connect(place, &QPushButton::clicked, this, [this] { emit placeRequested(true, MediaTime()); });
    Statistics::setEventKey(place, QStringLiteral("placeOnTimeline"), QStringLiteral("timelineToolBar"));
    auto* zoomOut = new QToolButton;
    zoomOut->setText(QStringLiteral("\u2212"));
    zoomOut->setObjectName(QStringLiteral("zoomOutButton"));
    auto* zoomIn = new QToolButton;
    zoomIn->setText(QStringLiteral("+"));
    zoomIn->setObjectName(QStringLiteral("zoomInButton"));
    connect(zoomOut, &QToolButton::clicked, this, [this] { setZoom(zoom() * 0.8); });
    connect(zoomIn, &QToolButton::clicked, this, [this] { setZoom(zoom() * 1.25); });
    Statistics::setEventKey(zoomOut, QStringLiteral("zoomOut"), QStringLiteral("timelineToolBar"));
    Statistics::setEventKey(zoomIn, QStringLiteral("zoomIn"), QStringLiteral("timelineToolBar"));
    m_videoLabel = new QLabel;
    m_videoLabel->setObjectName(QStringLiteral("projectVideoLabel"));
    auto* settings = new QToolButton;
    settings->setText(tr("Project settings..."));
    settings->setObjectName(QStringLiteral("projectSettingsButton"));
    connect(settings, &QToolButton::clicked, this, &TimelinePanel::projectSettingsRequested);
    Statistics::setEventKey(settings, QStringLiteral("projectSettings"), QStringLiteral("timelineToolBar"));
    bar->addWidget(place);
    bar->addSpacing(12);
    bar->addWidget(new QLabel(tr("Zoom")));
    bar->addWidget(zoomOut);
    bar->addWidget(zoomIn);
    bar->addStretch();
    bar->addWidget(m_videoLabel);
    bar->addWidget(settings);
    layout->addLayout(bar);

    m_view = new TimelineView(timeline, this);
    m_scroll = new QScrollArea;
    m_scroll->setObjectName(QStringLiteral("timelineScroll"));
    m_scroll->setWidget(m_view);
    m_scroll->setWidgetResizable(true);
    m_scroll->setMinimumHeight(kRulerHeight + kTrackHeight * timeline->trackCount() + 24);
    layout->addWidget(m_scroll);
    connect(timeline, &TimelineModel::changed, this, &TimelinePanel::updateVideoLabel);
    updateVideoLabel();
}

TimelinePanel::~TimelinePanel() = default;

void TimelinePanel::setThumbnailProvider(ThumbnailProvider provider)
{
    m_view->thumbnails = std::move(provider);
    m_view->update();
}

void TimelinePanel::setPlayhead(Composition::IMarker* playhead)
{
    m_view->setPlayhead(playhead);
}

void TimelinePanel::thumbnailReady(const QString&)
{
    m_view->update();
}

QWidget* TimelinePanel::view() const
{
    return m_view;
}

void TimelinePanel::dropPlacement(const QPoint& position, Timeline::ClipBuildingStrategy& strategy) const
{
    strategy.atEnd = false;
    strategy.position = m_view->timeAt(position.x());
    const int track = m_view->trackAt(position.y());
    if (track >= 0)
        strategy.track = track;
}

QPoint TimelinePanel::clipCenter(const Timeline::IClip* clip) const
{
    return m_view->clipRect(clip).center();
}

double TimelinePanel::zoom() const
{
    return m_view->zoom;
}

void TimelinePanel::setZoom(double pixelsPerSecond)
{
    m_view->zoom = std::clamp(pixelsPerSecond, kMinZoom, kMaxZoom);
    m_view->updateExtent();
}

void TimelinePanel::updateVideoLabel()
{
    const Media::Video* video = m_timeline->video();
    m_videoLabel->setText(tr("%1\u00d7%2 \u00b7 %3 fps")
                              .arg(video->frameWidth())
                              .arg(video->frameHeight())
                              .arg(video->frameRate(), 0, 'g', 4));
}
