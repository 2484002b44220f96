#pragma once

#include "Composition/Marker.h"
#include "Timeline/Timeline.h"

#include <QList>

namespace Editor {

// What the editor's views ask of the editor: the timeline it edits, the clip (or clips)
// being edited, its playhead, and whether playback runs.
class IEditor
{
public:
    virtual ~IEditor();
    // Null while no project is open.
    virtual Timeline::ITimeline* timeline() const = 0;
    // The clip being edited, or null; it is the first of currentClips().
    virtual Timeline::IClip* currentClip() const = 0;
    // The clips being edited, in timeline order.
    virtual QList<Timeline::IClip*> currentClips() const = 0;
    virtual Composition::IMarker* playheadMarker() const = 0;
    virtual bool isPlayhead(const Composition::IMarker& marker) const = 0;
    virtual bool isPlaybackRunning() const = 0;
    // Set while a change of the model is on its way to the views; a view's own update can
    // wait for it instead of working on what is about to change.
    virtual bool isUpdatePending() const = 0;
};

// The editor over one timeline: the clips being edited are the timeline's selection, the
// playhead is its own marker (registered as the composition's playhead), and playback
// runs when the current playback object plays.
//
//   Editor::Editor editor(&timeline);
//   editor.playheadMarker()->setPosition(MediaTime::fromSeconds(3));
class Editor final : public IEditor
{
public:
    explicit Editor(Timeline::ITimeline* timeline);
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;
    ~Editor() override;

    Timeline::ITimeline* timeline() const override { return m_timeline; }
    Timeline::IClip* currentClip() const override;
    QList<Timeline::IClip*> currentClips() const override;
    Composition::IMarker* playheadMarker() const override { return &m_playhead; }
    bool isPlayhead(const Composition::IMarker& marker) const override { return &marker == &m_playhead; }
    bool isPlaybackRunning() const override;
    bool isUpdatePending() const override { return m_updatePending; }
    void setUpdatePending(bool pending) { m_updatePending = pending; }

private:
    Timeline::ITimeline* m_timeline;
    mutable Composition::Marker m_playhead;
    bool m_updatePending = false;
};

} // namespace Editor
