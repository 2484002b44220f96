#include "Editing/EditPlaybackTracker.h"

#include "Editing/SceneEditor.h"

EditPlaybackTracker::EditPlaybackTracker(SceneEditor& sceneEditor, std::function<const Timeline::IClip*()> currentClip,
                                         QObject* parent)
    : QObject(parent), m_sceneEditor(sceneEditor), m_currentClip(std::move(currentClip))
{
    connect(&sceneEditor, &SceneEditor::loaded, this, &EditPlaybackTracker::onLoaded);
}

EditPlaybackTracker::~EditPlaybackTracker()
{
    watchMarker(nullptr);
}

void EditPlaybackTracker::onLoaded()
{
    // The editor's playhead is the one to watch; a reload finds it again in case the
    // editor replaced it.
    watchMarker(m_sceneEditor.editor().playheadMarker());
}

void EditPlaybackTracker::watchMarker(Composition::IMarker* marker)
{
    if (marker == m_marker)
        return;
    if (m_marker)
        m_marker->removeObserver(this);
    m_marker = marker;
    if (m_marker)
        m_marker->addObserver(this);
}

MediaTime EditPlaybackTracker::currentPosition() const
{
    const Playback::IPlayback* playback = this->playback();
    const Playback::IPositionSource* source = playback ? playback->positionSource() : nullptr;
    return source ? source->currentPosition() : MediaTime();
}

bool EditPlaybackTracker::playing() const
{
    return playback() && playback()->state() == Playback::State::Playing;
}

void EditPlaybackTracker::seekTo(MediaTime time)
{
    if (Playback::IPlayback* playback = this->playback())
        if (Playback::ISeekable* seekable = playback->seekable())
            seekable->seek(time, Playback::SeekFlag::None);
}

void EditPlaybackTracker::isWaitingChanged(Playback::IPlayback& playback)
{
    if (!playback.isWaiting())
        emit playbackAvailable();
}

void EditPlaybackTracker::playbackStateChanged(Playback::IPlayback& playback)
{
    emit playbackStateChanged();
    if (playback.state() == Playback::State::Playing && m_sceneEditor.sceneClient().inUse())
        m_sceneEditor.sceneClient().breakAll();
}

void EditPlaybackTracker::playheadPositionChanged(Composition::IMarker& marker, Composition::MarkerChangeReason reason)
{
    if (reason != Composition::MarkerChangeReason::Moved)
        return;
    if (m_sceneEditor.editor().isPlayhead(marker))
        emit playbackPositionChanged();
    if (m_sceneEditor.sceneClient().inUse()) {
        m_playbackRunning = m_sceneEditor.editor().isPlaybackRunning();
        if (!m_playbackRunning)
            checkEditPosition();
    }
}

void EditPlaybackTracker::checkEditPosition()
{
    if (!playback() || !m_sceneEditor.sceneClient().inUse() || !m_currentClip)
        return;
    const Timeline::IClip* clip = m_currentClip();
    if (clip && clip->compositionRange().contains(currentPosition()))
        emit editPositionChanged();
}
