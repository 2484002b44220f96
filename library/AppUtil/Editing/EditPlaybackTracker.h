#pragma once

#include "AppUtil_export.h"

#include <Composition/Marker.h>
#include <Playback/Playback.h>

#include <QObject>

#include <functional>

class SceneEditor;

namespace Timeline {
class IClip;
}

// Turns the editor's playback and playhead notifications into Qt signals for the views
// that edit a clip on the preview scene, and ends editing on the scene when playback
// starts.
//
//   EditPlaybackTracker tracker(sceneEditor, [&] { return editor.currentClip(); });
//   connect(&tracker, &EditPlaybackTracker::editPositionChanged, view, &View::showEditFrame);
//
// It follows the current playback object (Playback::current()) and watches the editor's
// playhead marker from the scene editor's first loaded() on.
class APPUTIL_EXPORT EditPlaybackTracker : public QObject,
                                           public Playback::PlaybackWatcher,
                                           public Composition::IMarkerObserver
{
    Q_OBJECT
public:
    EditPlaybackTracker(SceneEditor& sceneEditor, std::function<const Timeline::IClip*()> currentClip,
                        QObject* parent = nullptr);
    ~EditPlaybackTracker() override;

    MediaTime currentPosition() const;
    bool playing() const;
    void seekTo(MediaTime time);

    void isWaitingChanged(Playback::IPlayback& playback) override;
    void playbackStateChanged(Playback::IPlayback& playback) override;
    void playheadPositionChanged(Composition::IMarker& marker, Composition::MarkerChangeReason reason) override;

signals:
    void editPositionChanged();
    void playbackAvailable();
    void playbackPositionChanged();
    void playbackStateChanged();

private:
    void onLoaded();
    void checkEditPosition();
    void watchMarker(Composition::IMarker* marker);

    SceneEditor& m_sceneEditor;
    std::function<const Timeline::IClip*()> m_currentClip;
    Composition::IMarker* m_marker = nullptr;
    bool m_playbackRunning = false;
};
