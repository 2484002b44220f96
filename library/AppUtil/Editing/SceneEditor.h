#pragma once

#include "AppUtil_export.h"

#include <Editor/Editor.h>
#include <Media/Video.h>
#include <MediaTime.h>
#include <Scene/SceneHelper.h>
#include <Util/Scheduler.h>

#include <QObject>
#include <QPixmap>
#include <QRectF>
#include <QSizeF>

#include <functional>
#include <memory>
#include <set>

// Scene sizes: every preview scene is the frame size of the video or clip fitted into
// 800 x 800 scene units with its aspect ratio kept (1920 x 1080 gives 800 x 450).
APPUTIL_EXPORT QSizeF calculateSceneSize(int width, int height);
// The project video's frame fitted into the scene box; invalid without a timeline.
APPUTIL_EXPORT QSizeF timelineSceneSize(const Timeline::ITimeline* timeline);
// The clip's displayed frame (pixel aspect applied, turned by its transpose, cut by its
// crop, unless those effects are in `ignoredEffects`) fitted into the scene box; invalid
// for a clip without a video track.
APPUTIL_EXPORT QSizeF clipSceneSize(const Timeline::IClip* clip, const std::set<QString>& ignoredEffects);

using SceneSizeDelegate = std::function<QSizeF(const Editor::IEditor&, Timeline::IClip*)>;
using BackgroundDelegate = std::function<std::shared_ptr<const QPixmap>(Timeline::IClip*, MediaTime)>;

// The scene of the whole timeline.
APPUTIL_EXPORT SceneSizeDelegate timelineSizeDelegate();
// The scene of the clip given when it is one of the editor's current clips, else of the
// first current clip; invalid when there is none.
APPUTIL_EXPORT SceneSizeDelegate clipSizeDelegate(std::set<QString> ignoredEffects);

// Turns a video clip a quarter turn clockwise; the fourth turn removes its transpose effect.
// Other clips are left alone.
APPUTIL_EXPORT void applyTranspose(Timeline::IClip* clip);

// Links the editor, the scene of a SceneHelper and the project video: sizes the scene,
// tells the views when the scene must be rebuilt, and schedules the background picture
// shown behind the edited clip.
//
//   SceneEditor sceneEditor(editor);
//   sceneEditor.setSceneHelper(&helper);
//   sceneEditor.setSceneSizeDelegate(timelineSizeDelegate());
//   sceneEditor.setVideo(timeline->video());
//   sceneEditor.load();                       // sceneRectChanged(0, 0, 800, 450), loaded()
//
// Background requests are coalesced: many scheduleUpdateBackground() calls in one turn of
// the event loop give one updateBackground() on a later turn.
class APPUTIL_EXPORT SceneEditor : public QObject, private Media::Details::VideoViewBase
{
    Q_OBJECT
public:
    explicit SceneEditor(Editor::IEditor& editor);
    ~SceneEditor() override;

    Editor::IEditor& editor() const { return m_editor; }
    SceneHelper* sceneHelper() const { return m_sceneHelper; }
    void setSceneHelper(SceneHelper* helper);
    ExclusiveClient& sceneClient() { return m_sceneClient; }
    const ExclusiveClient& sceneClient() const { return m_sceneClient; }

    void setSceneSizeDelegate(SceneSizeDelegate delegate);
    void setBackgroundDelegate(BackgroundDelegate delegate);
    bool backgroundPreviewEnabled() const { return m_backgroundPreviewEnabled; }
    void enableBackgroundPreview(bool enable);

    // Sizes the scene for the editor's current clip; true when the scene rectangle changed.
    bool load();
    void setVideo(const Media::Video* video);
    void scheduleUpdateBackground(bool force);
    void updateBackground();
    // The last picture the background delegate gave (null before, or when disabled).
    std::shared_ptr<const QPixmap> background() const { return m_background; }

    // Where the playhead is inside `clip`, clamped to the clip.
    static MediaTime clipEditTime(const Timeline::IClip* clip);

signals:
    void loaded();
    void sceneBecomeUnavailable();
    void sceneHelperChanged(SceneHelper* previous, SceneHelper* current);
    void sceneRectChanged(QRectF rect);
    void backgroundChanged();

private:
    void videoChanged(const Media::Video* previous, const Media::Video* current) override;
    QRectF sceneRect() const;

    Editor::IEditor& m_editor;
    SceneHelper* m_sceneHelper = nullptr;
    ExclusiveClient m_sceneClient;
    SceneSizeDelegate m_sizeDelegate;
    BackgroundDelegate m_backgroundDelegate;
    bool m_backgroundPreviewEnabled = true;
    std::shared_ptr<const QPixmap> m_background;
    Tavrin::Util::Scheduler<SceneEditor> m_backgroundScheduler;
};
