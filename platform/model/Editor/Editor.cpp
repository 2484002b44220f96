#include "Editor/Editor.h"

#include "Playback/Playback.h"

namespace Editor {

IEditor::~IEditor() = default;

Editor::Editor(Timeline::ITimeline* timeline) : m_timeline(timeline)
{
    Composition::setPlayheadOf(timeline, &m_playhead);
}

Editor::~Editor()
{
    if (Composition::playheadOf(m_timeline) == &m_playhead)
        Composition::setPlayheadOf(m_timeline, nullptr);
}

Timeline::IClip* Editor::currentClip() const
{
    return m_timeline ? m_timeline->firstSelectedClip() : nullptr;
}

QList<Timeline::IClip*> Editor::currentClips() const
{
    return m_timeline ? m_timeline->selectedClips() : QList<Timeline::IClip*>();
}

bool Editor::isPlaybackRunning() const
{
    const Playback::IPlayback* playback = Playback::current();
    return playback && playback->state() == Playback::State::Playing;
}

} // namespace Editor
