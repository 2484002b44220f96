#include "Editing/SceneEditor.h"

#include <Effect/Effect.h>

#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

const QSizeF SceneBox(800, 800);

bool relativelyEqual(double a, double b)
{
    return std::fabs(a - b) * 1e12 <= std::min(std::fabs(a), std::fabs(b));
}

bool sameSize(const QSizeF& a, const QSizeF& b)
{
    return relativelyEqual(a.width(), b.width()) && relativelyEqual(a.height(), b.height());
}

QSizeF fitted(double width, double height)
{
    return QSizeF(width, height).scaled(SceneBox, Qt::KeepAspectRatio);
}

// The crop's transform without its rotation: the rotation of a crop turns the frame, and
// the frame's turn is the transpose effect's.
QTransform withoutRotation(const QTransform& t)
{
    const double scaleX = std::hypot(t.m11(), t.m12());
    const double scaleY = std::hypot(t.m21(), t.m22());
    // The sign of the determinant keeps a mirror a mirror.
    const double sign = t.m11() * t.m22() - t.m12() * t.m21() < 0 ? -1.0 : 1.0;
    return QTransform(scaleX, 0, 0, sign * scaleY, t.dx(), t.dy());
}

// The scale a transform applies to `rect`, taken from the mapped rectangle's size.
QSizeF extractScale(const QTransform& t, const QRectF& rect)
{
    const QRectF mapped = t.mapRect(rect);
    if (rect.width() <= 0 || rect.height() <= 0)
        return QSizeF(1, 1);
    return QSizeF(mapped.width() / rect.width(), mapped.height() / rect.height());
}

} // namespace

QSizeF calculateSceneSize(int width, int height)
{
    return fitted(width, height);
}

QSizeF timelineSceneSize(const Timeline::ITimeline* timeline)
{
    if (!timeline || !timeline->video())
        return QSizeF();
    const Media::Video* video = timeline->video();
    return calculateSceneSize(video->frameWidth(), video->frameHeight());
}

QSizeF clipSceneSize(const Timeline::IClip* clip, const std::set<QString>& ignoredEffects)
{
    if (!clip || !clip->mediaFile() || clip->mediaFile()->videoTracks().empty())
        return QSizeF();
    const Media::VideoTrack* track = clip->currentVideoTrack();
    if (!track)
        track = &clip->mediaFile()->videoTracks().front();
    const int aspectY = std::max(1, track->pixelAspectY);
    int width = int(std::lround(double(qint64(track->frameSize.width()) * track->pixelAspectX) / aspectY));
    int height = track->frameSize.height();
    if (width <= 0 || height <= 0)
        return QSizeF();

    if (!ignoredEffects.count(Effect::Id::Transpose)) {
        const Effect::Object* transpose = clip->findEffect(Effect::Id::Transpose);
        if (transpose && !transpose->bypass() && transpose->angle() % 180 != 0)
            std::swap(width, height);
    }
    if (!ignoredEffects.count(Effect::Id::Crop)) {
        const Effect::Object* crop = clip->findEffect(Effect::Id::Crop);
        if (crop && !crop->bypass()) {
            bool invertible = false;
            const QTransform inverse = withoutRotation(crop->cropTransform()).inverted(&invertible);
            if (invertible) {
                const QSizeF scale = extractScale(inverse, QRectF(0, 0, width, height));
                width = int(scale.width() * width);
                height = int(scale.height() * height);
            }
        }
    }
    if (width <= 0 || height <= 0)
        return QSizeF();
    return fitted(width, height);
}

SceneSizeDelegate timelineSizeDelegate()
{
    return [](const Editor::IEditor& editor, Timeline::IClip*) {
        return editor.timeline() ? timelineSceneSize(editor.timeline()) : QSizeF();
    };
}

SceneSizeDelegate clipSizeDelegate(std::set<QString> ignoredEffects)
{
    return [ignored = std::move(ignoredEffects)](const Editor::IEditor& editor, Timeline::IClip* clip) {
        if (!editor.timeline())
            return QSizeF();
        const QList<Timeline::IClip*> current = editor.currentClips();
        if (current.isEmpty())
            return QSizeF();
        return clipSceneSize(clip && current.contains(clip) ? clip : current.first(), ignored);
    };
}

void applyTranspose(Timeline::IClip* clip)
{
    if (!clip || clip->mediaType() != Media::Type::Video)
        return;
    std::shared_ptr<Effect::Object> turned = Effect::Object::create(Effect::Id::Transpose);
    if (!turned)
        return;
    int angle = 0;
    if (const Effect::Object* old = clip->findEffect(Effect::Id::Transpose)) {
        angle = old->angle();
        turned->setBypass(old->bypass());
        turned->setIntensity(old->intensity());
        clip->removeEffect(old->id(), old->uid());
    }
    turned->setAngle((angle + 90) % 360);
    if (turned->angle() != 0)
        clip->addEffect(turned);
}

SceneEditor::SceneEditor(Editor::IEditor& editor)
    : m_editor(editor), m_backgroundScheduler(this, &SceneEditor::updateBackground, 0)
{
}

SceneEditor::~SceneEditor()
{
    m_backgroundScheduler.setEnabled(false);
}

void SceneEditor::setSceneHelper(SceneHelper* helper)
{
    SceneHelper* previous = m_sceneHelper;
    m_sceneHelper = helper;
    m_sceneClient.setService(helper);
    emit sceneHelperChanged(previous, helper);
}

void SceneEditor::setSceneSizeDelegate(SceneSizeDelegate delegate)
{
    m_sizeDelegate = std::move(delegate);
}

void SceneEditor::setBackgroundDelegate(BackgroundDelegate delegate)
{
    m_backgroundDelegate = std::move(delegate);
}

void SceneEditor::enableBackgroundPreview(bool enable)
{
    if (enable == m_backgroundPreviewEnabled)
        return;
    m_backgroundPreviewEnabled = enable;
    scheduleUpdateBackground(true);
}

QRectF SceneEditor::sceneRect() const
{
    return m_sceneHelper ? m_sceneHelper->scene()->sceneRect() : QRectF();
}

bool SceneEditor::load()
{
    if (!m_sceneClient.inUse())
        m_sceneClient.breakAll();
    const QSizeF size = m_sizeDelegate ? m_sizeDelegate(m_editor, m_editor.currentClip()) : QSizeF();
    if (!m_sceneHelper || !size.isValid() || sameSize(size, sceneRect().size())) {
        emit loaded();
        return false;
    }
    const QRectF rect(QPointF(0, 0), size);
    m_sceneHelper->scene()->setSceneRect(rect);
    emit sceneRectChanged(rect);
    emit loaded();
    return true;
}

void SceneEditor::setVideo(const Media::Video* video)
{
    viewVideo(video);
}

void SceneEditor::videoChanged(const Media::Video*, const Media::Video* current)
{
    if (current && sameSize(QSizeF(current->frameSize()), sceneRect().size()))
        return;
    if (m_sceneClient.inUse())
        emit sceneBecomeUnavailable();
}

void SceneEditor::scheduleUpdateBackground(bool force)
{
    if (!force && m_editor.isUpdatePending())
        return;
    m_backgroundScheduler.schedule();
}

void SceneEditor::updateBackground()
{
    std::shared_ptr<const QPixmap> picture;
    if (m_backgroundPreviewEnabled && m_backgroundDelegate) {
        Timeline::IClip* clip = m_editor.currentClip();
        picture = m_backgroundDelegate(clip, clip ? clipEditTime(clip) : MediaTime());
    }
    if (picture == m_background)
        return;
    m_background = std::move(picture);
    emit backgroundChanged();
}

MediaTime SceneEditor::clipEditTime(const Timeline::IClip* clip)
{
    if (!clip)
        return MediaTime();
    const Timeline::CompositionRange range = clip->compositionRange();
    const Composition::IMarker* playhead = Composition::playheadOf(clip->timeline());
    const qint64 offset = playhead ? (playhead->position() - range.start).microseconds() : 0;
    const qint64 last = std::max<qint64>(0, range.length.microseconds() - 1);
    return MediaTime::fromMicroseconds(std::clamp<qint64>(offset, 0, last));
}
