#pragma once

#include "Timeline/Timeline.h"

#include <memory>
#include <vector>

namespace Serialize {
class JsonReader;
}

namespace Timeline {

class TimelineModel;

// The clip of TimelineModel. Its values change only through the model's undo commands.
class Clip final : public IClip, public Serialize::ISerializable, public std::enable_shared_from_this<Clip>
{
public:
    struct Data
    {
        QString id;
        ClipTypes type = ClipType::Video;
        bool nativeAudio = false;
        QString groupId; // the id of the clip that carries this one's timing; empty when none
        QString mediaPath;
        Media::Type mediaType = Media::Type::Unknown;
        int videoTrack = 0;
        ClipDescription description;
        QString text; // titles and overlays
        int track = 0;
        MediaTime start;
        ClipTiming timing;
        std::vector<std::shared_ptr<Effect::Object>> effects;
    };

    explicit Clip(Data data);
    ~Clip() override;
    // Null with the reader's error set when `json` does not validate. With `mediaTable`,
    // the clip names its media by index into it (as project files do), else by path.
    static std::shared_ptr<Clip> fromJson(const QJsonObject& json, Serialize::JsonReader& reader, const QString& where,
                                          const QStringList* mediaTable = nullptr);

    const Data& data() const { return m_data; }

    ITimeline* timeline() const override;
    QString id() const override { return m_data.id; }
    ClipTypes type() const override { return m_data.type; }
    bool isNativeAudio() const override { return m_data.nativeAudio; }
    IClip* timingClip() const override;
    const Media::File* mediaFile() const override;
    QString mediaPath() const override { return m_data.mediaPath; }
    bool isMediaMissing() const override;
    Media::Type mediaType() const override { return m_data.mediaType; }
    const Media::VideoTrack* currentVideoTrack() const override;
    int currentVideoTrackIndex() const override { return m_data.videoTrack; }
    ClipDescription description() const override { return m_data.description; }
    QString text() const { return m_data.text; }
    int track() const override { return m_data.track; }
    ClipTiming timing() const override { return m_data.timing; }
    double speed() const override { return m_data.timing.speed; }
    CompositionRange compositionRange() const override { return {m_data.start, m_data.timing.duration()}; }
    QList<const Effect::Object*> effects() const override;
    const Effect::Object* findEffect(const QString& id, const QString& uid) const override;
    const Effect::Object* findEffect(const QString& id) const override;
    bool addEffect(std::shared_ptr<Effect::Object> effect) override;
    bool removeEffect(const QString& id, const QString& uid) override;
    bool replaceEffect(std::shared_ptr<Effect::Object> effect) override;
    bool takesAdjustments() const override;
    bool hasNoAdjustableSpeed() const override;
    const Media::VideoTrack* stabilizableSource() const override;

    QString serialType() const override;
    QJsonObject toJson() const override;
    // Appends the clip as JSON text; with `mediaIndex` >= 0 the media is named by that index
    // into a project's media table, else by path.
    void writeJson(QByteArray& out, int mediaIndex) const;

private:
    friend class TimelineModel;
    Data m_data;
    TimelineModel* m_timeline = nullptr;
    bool m_attached = false;        // on its timeline now (not only in the undo history)
    bool m_marked = false;          // scratch mark of one TimelineModel call, false between calls
    Clip* m_leader = nullptr;       // the clip carrying this one's timing
    std::vector<Clip*> m_followers; // clips whose timing this one carries
};

} // namespace Timeline
