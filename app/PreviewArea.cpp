#include "PreviewArea.h"

#include <Effect/Effect.h>

#include <QGraphicsPixmapItem>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QLabel>
#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <glog/logging.h>

#include <cmath>

namespace {

QString timeText(MediaTime t)
{
    const qint64 ms = t.milliseconds();
    return QStringLiteral("%1:%2.%3")
        .arg(ms / 60000)
        .arg((ms / 1000) % 60, 2, 10, QLatin1Char('0'))
        .arg((ms % 1000) / 10, 2, 10, QLatin1Char('0'));
}

// The clip's effects as one libavfilter chain, in the order they are applied.
QString filtersOf(const Timeline::IClip& clip)
{
    QStringList parts;
    for (const Effect::Object* effect : clip.effects()) {
        const QString part = Effect::Catalogue::renderDescription(*effect);
        if (!part.isEmpty())
            parts << part;
    }
    return parts.join(QLatin1Char(','));
}

// Where in its media the clip shows the timeline position `t`.
qint64 sourceTimeUs(const Timeline::IClip& clip, MediaTime t)
{
    if (clip.mediaType() == Media::Type::Image)
        return 0;
    const Timeline::ClipTiming timing = clip.timing();
    const qint64 offset = qint64(double((t - clip.compositionRange().start).microseconds()) * timing.speed);
    if (timing.isReversed())
        return std::max<qint64>(0, (timing.sourceIn + timing.sourceLength).microseconds() - 1 - offset);
    return timing.sourceIn.microseconds() + offset;
}

bool openGlAvailable()
{
    QOpenGLContext context;
    return context.create();
}

} // namespace

PreviewArea::PreviewArea(Timeline::TimelineModel* timeline, QWidget* parent)
    : QWidget(parent), m_timeline(timeline), m_editor(timeline), m_sceneEditor(m_editor)
{
    setObjectName(QStringLiteral("previewPanel"));
    m_playback = std::make_unique<PreviewPlayback>(m_editor.playheadMarker(), [this] { return m_timeline->duration(); });
    m_playback->setFrameRate(timeline->video()->frameRate());
    m_tracker = std::make_unique<EditPlaybackTracker>(m_sceneEditor, [this] { return m_editor.currentClip(); });

    m_view = new QGraphicsView;
    m_view->setObjectName(QStringLiteral("previewArea"));
    // The OpenGL viewport is what the OpenGL switch acts on; a machine without any OpenGL
    // (a headless test run) still gets a picture.
    if (openGlAvailable())
        m_view->setViewport(new QOpenGLWidget);
    else
        LOG(WARNING) << "preview: OpenGL is not available; the preview draws without it";
    m_view->setBackgroundBrush(QColor(0x10, 0x10, 0x12));
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setMinimumSize(320, 180);
    m_sceneHelper.scene()->setBackgroundBrush(Qt::black);
    m_view->setScene(m_sceneHelper.scene());
    m_picture = m_sceneHelper.scene()->addPixmap(QPixmap());
    m_picture->setTransformationMode(Qt::SmoothTransformation);

    m_playButton = new QPushButton(tr("Play"));
    m_playButton->setObjectName(QStringLiteral("playButton"));
    m_rotateButton = new QPushButton(tr("Rotate"));
    m_rotateButton->setObjectName(QStringLiteral("rotateButton"));
    m_rotateButton->setToolTip(tr("Turns the selected clip a quarter turn clockwise"));
    // Space belongs to play and pause wherever the focus is; a focused button would take it.
    m_playButton->setFocusPolicy(Qt::NoFocus);
    m_rotateButton->setFocusPolicy(Qt::NoFocus);
    m_timeLabel = new QLabel;
    m_timeLabel->setObjectName(QStringLiteral("previewTimeLabel"));
    auto* bar = new QHBoxLayout;
    bar->addWidget(m_playButton);
    bar->addWidget(m_rotateButton);
    bar->addStretch();
    bar->addWidget(m_timeLabel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_view, 1);
    layout->addLayout(bar);

    connect(m_playButton, &QPushButton::clicked, m_playback.get(), &PreviewPlayback::toggle);
    connect(m_rotateButton, &QPushButton::clicked, this, &PreviewArea::rotateClip);
    connect(m_playback.get(), &PreviewPlayback::playbackRunningChanged, this, &PreviewArea::updateControls);
    connect(&m_decoder, &PreviewDecoder::frameDecoded, this, &PreviewArea::show);

    m_sceneEditor.setSceneHelper(&m_sceneHelper);
    m_sceneEditor.setSceneSizeDelegate(timelineSizeDelegate());
    m_sceneEditor.setVideo(timeline->video());
    // The decoded frame is the scene's background picture: updates coalesce per event-loop
    // turn, so a burst of frames during scrubbing repaints once.
    m_sceneEditor.setBackgroundDelegate([this](Timeline::IClip*, MediaTime) { return m_frame; });
    connect(&m_sceneEditor, &SceneEditor::backgroundChanged, this, &PreviewArea::placeBackground);
    connect(&m_sceneEditor, &SceneEditor::sceneRectChanged, this, [this] { fitScene(); requestFrame(true); });
    connect(&m_sceneEditor, &SceneEditor::sceneBecomeUnavailable, this, [this] { m_sceneEditor.load(); });
    m_sceneEditor.load();

    watch(timeline);
    m_editor.playheadMarker()->addObserver(this);
    updateControls();
    requestFrame(true);
}

PreviewArea::~PreviewArea()
{
    emit closing();
    m_editor.playheadMarker()->removeObserver(this);
    m_tracker.reset();
    m_playback.reset();
}

QImage PreviewArea::currentFrame() const
{
    return m_frameImage;
}

void PreviewArea::updateControls()
{
    const bool playing = m_playback->state() == Playback::State::Playing;
    m_playButton->setText(playing ? tr("Pause") : tr("Play"));
    m_timeLabel->setText(timeText(m_editor.playheadMarker()->position()));
}

void PreviewArea::playheadPositionChanged(Composition::IMarker& marker, Composition::MarkerChangeReason reason)
{
    if (reason != Composition::MarkerChangeReason::Moved)
        return;
    m_timeLabel->setText(timeText(marker.position()));
    requestFrame(false);
}

void PreviewArea::clipsRemoved(Timeline::ITimeline&, const QList<Timeline::IClip*>& clips)
{
    for (const Timeline::IClip* clip : clips) {
        if (!m_requestedClip.isEmpty() && clip->id() == m_requestedClip) {
            LOG(INFO) << "preview: clip " << clip->id().toStdString()
                      << " removed while its frame was decoded; the frame is dropped";
            m_requestedClip.clear();
        }
    }
    // Still alive during the call: look again once the removal is done.
    QMetaObject::invokeMethod(this, [this] { requestFrame(true); }, Qt::QueuedConnection);
}

void PreviewArea::videoChanged(Timeline::ITimeline&, const Media::Video&)
{
    m_playback->setFrameRate(m_timeline->video()->frameRate());
    m_sceneEditor.load();
}

void PreviewArea::timelineReset(Timeline::ITimeline&)
{
    m_playback->pause();
    m_editor.playheadMarker()->setPosition(MediaTime());
    m_sceneEditor.setVideo(m_timeline->video());
    m_sceneEditor.load();
    requestFrame(true);
}

Timeline::IClip* PreviewArea::clipAt(MediaTime position) const
{
    // The first video track is on top.
    for (int track = 0; track < m_timeline->trackCount(); ++track) {
        if (m_timeline->trackKind(track) != Timeline::TrackKind::Video)
            continue;
        for (Timeline::IClip* clip : m_timeline->clips(track))
            if (clip->compositionRange().contains(position) && !clip->mediaPath().isEmpty() && !clip->isMediaMissing()
                && (clip->mediaType() == Media::Type::Video || clip->mediaType() == Media::Type::Image))
                return clip;
    }
    return nullptr;
}

void PreviewArea::requestFrame(bool force)
{
    const MediaTime position = m_editor.playheadMarker()->position();
    const double rate = m_playback->frameRate();
    const qint64 index = qint64(std::floor(position.seconds() * rate));
    // Every position inside one timeline frame shows that frame.
    const MediaTime frameStart = MediaTime::fromMicroseconds(qint64(std::ceil(double(index) * 1e6 / rate)));
    Timeline::IClip* clip = clipAt(frameStart);
    if (!clip) {
        m_requestedClip.clear();
        m_requested = 0; // anything still being decoded is stale now
        m_lastRequest = FrameRequest();
        if (m_frame) {
            m_frame.reset();
            m_frameImage = QImage();
            m_sceneEditor.scheduleUpdateBackground(true);
        }
        m_playback->frameShown(index);
        return;
    }
    FrameRequest request;
    request.path = clip->mediaPath();
    request.sourceUs = sourceTimeUs(*clip, frameStart);
    request.filters = filtersOf(*clip);
    request.box = m_sceneHelper.scene()->sceneRect().size().toSize();
    request.timelineUs = frameStart.microseconds();
    if (!force && request.path == m_lastRequest.path && request.sourceUs == m_lastRequest.sourceUs
        && request.filters == m_lastRequest.filters && request.box == m_lastRequest.box)
        return;
    m_lastRequest = request;
    m_requestedClip = clip->id();
    m_playback->setWaiting(true);
    m_requested = m_decoder.request(request);
}

void PreviewArea::show(const DecodedFrame& frame)
{
    const QString path = frame.request.path;
    if (frame.image.isNull()) {
        if (!m_reported.contains(path)) {
            m_reported.insert(path);
            LOG(WARNING) << "preview: " << path.toStdString() << " cannot be decoded: " << frame.problem.toStdString();
        }
    } else if (frame.decodingFailed && !m_reported.contains(path)) {
        m_reported.insert(path);
        LOG(WARNING) << "preview: " << path.toStdString() << " stopped decoding at " << frame.ptsUs / 1000
                     << " ms: " << frame.problem.toStdString();
    } else if (frame.pastEnd && frame.request.sourceUs > frame.ptsUs + 1000000 && !m_reported.contains(path)) {
        m_reported.insert(path);
        LOG(INFO) << "preview: " << frame.request.sourceUs / 1000 << " ms is past the end of " << path.toStdString()
                  << "; its last frame is shown";
    }
    // An older request's frame: a newer one is on its way (or nothing is to be shown).
    if (frame.request.serial != m_requested)
        return;
    m_requestedClip.clear();
    if (!frame.image.isNull()) {
        m_frameImage = frame.image;
        m_frame = std::make_shared<const QPixmap>(QPixmap::fromImage(frame.image));
        m_playback->frameShown(qint64(std::floor(double(frame.request.timelineUs) * m_playback->frameRate() / 1e6 + 1e-6)));
        m_sceneEditor.scheduleUpdateBackground(true);
    }
    // Last: whoever waits for the frame finds it in place.
    m_playback->setWaiting(false);
}

void PreviewArea::placeBackground()
{
    const std::shared_ptr<const QPixmap> picture = m_sceneEditor.background();
    const QRectF scene = m_sceneHelper.scene()->sceneRect();
    if (!picture) {
        m_picture->setPixmap(QPixmap());
        return;
    }
    m_picture->setPixmap(*picture);
    // Centred: a turned clip in a landscape project has bars at its sides.
    m_picture->setPos(scene.center() - QPointF(picture->width() / 2.0, picture->height() / 2.0));
    emit frameShown();
}

void PreviewArea::fitScene()
{
    m_view->fitInView(m_sceneHelper.scene()->sceneRect(), Qt::KeepAspectRatio);
}

void PreviewArea::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    fitScene();
}

bool PreviewArea::rotateClip()
{
    Timeline::IClip* clip = m_editor.currentClip();
    if (!clip)
        clip = clipAt(m_editor.playheadMarker()->position());
    if (!clip || clip->mediaType() != Media::Type::Video) {
        LOG(INFO) << "preview: no video clip to rotate";
        return false;
    }
    applyTranspose(clip);
    const Effect::Object* turned = clip->findEffect(Effect::Id::Transpose);
    LOG(INFO) << "preview: rotated clip " << clip->id().toStdString() << " to " << (turned ? turned->angle() : 0)
              << " degrees";
    return true;
}
