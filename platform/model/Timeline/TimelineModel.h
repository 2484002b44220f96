#pragma once

#include "Timeline/Clip.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <functional>
#include <memory>
#include <vector>

namespace Timeline {

// The editor's timeline, in memory, owned by the GUI thread. Every change is a command on
// undoStack(), so Edit > Undo reverts whatever the host or a library service changed.
// Clips removed by a command stay alive in the command, so their pointers stay valid for
// as long as undo can bring them back.
class TimelineModel : public QObject, public ITimeline
{
    Q_OBJECT
public:
    // Finds the host's media file for a path (null while unknown).
    using MediaResolver = std::function<const Media::File*(const QString& path)>;

    // The whole state, as a project file holds it.
    struct Content
    {
        Media::Video video;
        std::vector<TrackKind> tracks;
        std::vector<std::shared_ptr<Clip>> clips; // any order; each knows its track
        QSet<QString> missingMedia;               // media paths that were not found
    };
    static std::vector<TrackKind> defaultTracks();

    explicit TimelineModel(QObject* parent = nullptr);
    ~TimelineModel() override;

    // Replaces everything (an opened project, a new one). Not undoable: the undo history
    // is cleared. Clips must have unique ids, tracks in range, groups pointing at clips.
    void reset(Content content);
    // Checks what reset() needs; the reason in `error` when it refuses.
    static bool validate(const Content& content, QString* error);

    void setMediaResolver(MediaResolver resolver);
    const Media::File* resolveMedia(const QString& path) const;
    QSet<QString> missingMedia() const { return m_missing; }
    bool isMissing(const QString& path) const { return m_missing.contains(path); }
    // Media paths used by clips, in first-use order.
    QStringList mediaPaths() const;
    Clip* clipById(const QString& id) const;

    // The project video, changed as one undoable step (also reached through
    // Media::VideoChanger on video()).
    void setVideo(const Media::Video& video);

    // ITimeline
    const Media::Video* video() const override { return &m_video; }
    int trackCount() const override { return int(m_tracks.size()); }
    TrackKind trackKind(int track) const override;
    QList<IClip*> clips(int track) const override;
    QList<IClip*> clips() const override;
    int clipCount() const override { return m_clipCount; }
    MediaTime duration() const override;
    QList<IClip*> placeMedia(const QStringList& paths, const ClipBuildingStrategy& strategy) override;
    QList<IClip*> addCollectionItem(const CollectionItem& item, const ClipBuildingStrategy& strategy) override;
    IClip* addOverlayPreset(const OverlayPreset& preset, const ClipBuildingStrategy& strategy) override;
    QList<IClip*> addMediaRange(const CollectionItem& item, MediaTime sourceIn, MediaTime sourceLength,
                                const ClipBuildingStrategy& strategy) override;
    // Changes the text of a title or overlay clip, as one undo step; false when it is not one.
    bool setClipText(IClip* clip, const QString& text);
    bool moveClip(IClip* clip, int track, MediaTime start) override;
    void removeClips(const QList<IClip*>& clips) override;
    QList<IClip*> selectedClips() const override;
    IClip* firstSelectedClip() const override;
    bool isSelected(const IClip* clip) const override { return m_selection.contains(clip); }
    void select(const QList<IClip*>& clips, SelectionMode mode) override;
    void selectAll() override;
    void clearSelection() override;
    IClip* timingClip(IClip* clip) const override;
    bool takesAdjustments(const IClip* clip) const override;
    bool setSpeed(IClip* clip, double speed) override;
    bool setReversed(IClip* clip, bool reversed) override;
    bool setSpeedCompensated(IClip* clip, bool compensated) override;
    bool setStabilized(IClip* clip, bool stabilized) override;
    bool addEffect(IClip* clip, std::shared_ptr<Effect::Object> effect) override;
    bool removeEffect(IClip* clip, const QString& id, const QString& uid) override;
    bool replaceEffect(IClip* clip, std::shared_ptr<Effect::Object> effect) override;
    QUndoStack* undoStack() const override { return m_undo; }
    void addObserver(ITimelineObserver* observer) override;
    void removeObserver(ITimelineObserver* observer) override;

signals:
    // After any change of content, selection or video, for views that simply repaint.
    void changed();

private:
    friend class Clip;
    class Command;
    class InsertCommand;
    class RemoveCommand;
    class MoveCommand;
    class TimingCommand;
    class EffectsCommand;
    class VideoCommand;
    class TextCommand;
    struct Track
    {
        TrackKind kind;
        std::vector<std::shared_ptr<Clip>> clips; // by start time
        // Where the track's last clip ends; kept while clips are only appended, so placing
        // clip after clip costs the same at any length.
        mutable MediaTime end;
        mutable bool endKnown = false;
    };
    struct VideoRequests;

    Clip* own(IClip* clip) const;
    std::shared_ptr<Clip> shared(Clip* clip) const;
    QString newClipId();
    int firstTrack(TrackKind kind, int wanted) const;
    MediaTime trackEnd(int track) const;
    void forgetEnds();
    std::shared_ptr<Clip> makeClip(Clip::Data data);
    // A part of each file when `range` is set (in, length).
    QList<IClip*> placeMediaParts(const QStringList& paths, const ClipBuildingStrategy& strategy,
                                  const std::pair<MediaTime, MediaTime>* range);
    void attach(const std::vector<std::shared_ptr<Clip>>& clips);
    void detach(const std::vector<std::shared_ptr<Clip>>& clips);
    void placeInTrack(const std::shared_ptr<Clip>& clip);
    void takeFromTrack(Clip* clip);
    void applyVideo(const Media::Video& video);
    std::vector<std::shared_ptr<Clip>> withGroups(const QList<IClip*>& clips) const;
    bool changeEffects(IClip* clip, const std::function<bool(std::vector<std::shared_ptr<Effect::Object>>&)>& edit,
                       const QString& text);
    bool changeTiming(IClip* clip, const std::function<void(ClipTiming&)>& edit, const QString& text);
    QList<IClip*> inOrder(std::vector<Clip*> clips) const;
    template <class F>
    void notify(F&& f);

    Media::Video m_video;
    std::vector<Track> m_tracks;
    int m_clipCount = 0;
    // Clips by id, rebuilt on demand: kept up to date on every change it would cost a
    // string hash per clip of each insertion and removal.
    mutable QHash<QString, Clip*> m_byId;
    mutable bool m_byIdValid = true;
    QSet<const IClip*> m_selection;
    QSet<QString> m_missing;
    MediaResolver m_resolver;
    std::vector<ITimelineObserver*> m_observers;
    QUndoStack* m_undo = nullptr;
    quint64 m_nextId = 1;
    std::unique_ptr<VideoRequests> m_videoRequests;
};

} // namespace Timeline
