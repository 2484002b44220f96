#include "Timeline/TimelineModel.h"

#include "Serialize/JsonReader.h"
#include "Translator/Translator.h"

#include <FileUtil/FileUtil.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QUndoCommand>
#include <QUndoStack>

#include <glog/logging.h>

#include <algorithm>
#include <cstdio>

namespace Timeline {

IClip::~IClip() = default;
ITimeline::~ITimeline() = default;
ITimelineObserver::~ITimelineObserver() = default;

TimelineWatcher::~TimelineWatcher()
{
    watch(nullptr);
}

void TimelineWatcher::watch(ITimeline* timeline)
{
    if (timeline == m_timeline)
        return;
    if (m_timeline)
        m_timeline->removeObserver(this);
    m_timeline = timeline;
    if (m_timeline)
        m_timeline->addObserver(this);
}

void ClipBuildingStrategy::applyImportItemProperties(const QVariantMap& itemProperties)
{
    for (auto it = itemProperties.constBegin(); it != itemProperties.constEnd(); ++it)
        properties.insert(it.key(), it.value());
}

namespace {

// Speeds a user can reach; beyond them a clip would last years or a few microseconds.
constexpr double kMinSpeed = 0.01;
constexpr double kMaxSpeed = 100.0;

bool sameTiming(const ClipTiming& a, const ClipTiming& b)
{
    return a.sourceIn == b.sourceIn && a.sourceLength == b.sourceLength && a.speed == b.speed &&
        a.reversed == b.reversed && a.speedCompensated == b.speedCompensated && a.stabilized == b.stabilized;
}

bool byStart(const std::shared_ptr<Clip>& a, const std::shared_ptr<Clip>& b)
{
    return a->data().start < b->data().start;
}

} // namespace

// ---------------------------------------------------------------- Clip

Clip::Clip(Data data) : m_data(std::move(data)) {}
Clip::~Clip() = default;

ITimeline* Clip::timeline() const
{
    return m_timeline;
}

IClip* Clip::timingClip() const
{
    return m_leader ? m_leader : const_cast<Clip*>(this);
}

const Media::File* Clip::mediaFile() const
{
    if (m_data.mediaPath.isEmpty() || !m_timeline || m_timeline->isMissing(m_data.mediaPath))
        return nullptr;
    return m_timeline->resolveMedia(m_data.mediaPath);
}

bool Clip::isMediaMissing() const
{
    return m_timeline && m_timeline->isMissing(m_data.mediaPath);
}

const Media::VideoTrack* Clip::currentVideoTrack() const
{
    const Media::File* file = mediaFile();
    if (!file || !file->isOpened())
        return nullptr;
    const auto& tracks = file->videoTracks();
    if (m_data.videoTrack < 0 || m_data.videoTrack >= int(tracks.size()))
        return nullptr;
    return &tracks[size_t(m_data.videoTrack)];
}

QList<const Effect::Object*> Clip::effects() const
{
    QList<const Effect::Object*> list;
    list.reserve(int(m_data.effects.size()));
    for (const auto& effect : m_data.effects)
        list << effect.get();
    return list;
}

const Effect::Object* Clip::findEffect(const QString& id, const QString& uid) const
{
    for (const auto& effect : m_data.effects)
        if (effect->id() == id && effect->uid() == uid)
            return effect.get();
    return nullptr;
}

const Effect::Object* Clip::findEffect(const QString& id) const
{
    for (const auto& effect : m_data.effects)
        if (effect->id() == id)
            return effect.get();
    return nullptr;
}

bool Clip::addEffect(std::shared_ptr<Effect::Object> effect)
{
    return m_timeline && m_timeline->addEffect(this, std::move(effect));
}

bool Clip::removeEffect(const QString& id, const QString& uid)
{
    return m_timeline && m_timeline->removeEffect(this, id, uid);
}

bool Clip::replaceEffect(std::shared_ptr<Effect::Object> effect)
{
    return m_timeline && m_timeline->replaceEffect(this, std::move(effect));
}

bool Clip::takesAdjustments() const
{
    return m_timeline && m_timeline->takesAdjustments(this);
}

bool Clip::hasNoAdjustableSpeed() const
{
    return m_data.type & (ClipType::Image | ClipType::Title | ClipType::Overlay);
}

const Media::VideoTrack* Clip::stabilizableSource() const
{
    if (m_data.mediaType != Media::Type::Video || !m_data.timing.stabilized)
        return nullptr;
    const Media::VideoTrack* track = currentVideoTrack();
    return track && !track->isCoverArt() ? track : nullptr;
}

QString Clip::serialType() const
{
    return QStringLiteral("clip");
}

namespace {

// JSON text of a string, escaped as RFC 8259 asks, in UTF-8.
void appendString(QByteArray& out, const QString& text)
{
    out += '"';
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        default:
            if (uchar(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", unsigned(uchar(c)));
                out += escaped;
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

void appendField(QByteArray& out, const char* key)
{
    if (!out.endsWith('{'))
        out += ',';
    out += '"';
    out += key;
    out += "\":";
}

} // namespace

void Clip::writeJson(QByteArray& out, int mediaIndex) const
{
    // Written as text, not built as a QJsonObject: saving a project of 10,000 clips spends
    // most of its time here, and the text costs a fraction of the object tree. The keys go
    // in the order QJsonObject keeps them (sorted), so that loading has none to sort: that
    // was a seventh of parsing a large project.
    const Data& d = m_data;
    out += '{';
    appendField(out, "category");
    appendString(out, d.description.category);
    if (!d.effects.empty()) {
        QJsonArray effects;
        for (const auto& effect : d.effects)
            effects.append(effect->toJson());
        appendField(out, "effects");
        out += QJsonDocument(effects).toJson(QJsonDocument::Compact);
    }
    if (!d.groupId.isEmpty()) {
        appendField(out, "group");
        appendString(out, d.groupId);
    }
    appendField(out, "id");
    appendString(out, d.id);
    appendField(out, "in");
    out += QByteArray::number(d.timing.sourceIn.microseconds());
    appendField(out, "length");
    out += QByteArray::number(d.timing.sourceLength.microseconds());
    if (mediaIndex >= 0) {
        appendField(out, "media");
        out += QByteArray::number(mediaIndex);
    } else if (!d.mediaPath.isEmpty()) {
        appendField(out, "media");
        appendString(out, d.mediaPath);
    }
    appendField(out, "mediaType");
    out += QByteArray::number(int(d.mediaType));
    appendField(out, "name");
    appendString(out, d.description.name);
    if (d.nativeAudio) {
        appendField(out, "nativeAudio");
        out += "true";
    }
    if (d.timing.reversed) {
        appendField(out, "reversed");
        out += "true";
    }
    appendField(out, "speed");
    out += QByteArray::number(d.timing.speed, 'g', QLocale::FloatingPointShortest);
    if (d.timing.speedCompensated) {
        appendField(out, "speedCompensated");
        out += "true";
    }
    if (d.timing.stabilized) {
        appendField(out, "stabilized");
        out += "true";
    }
    appendField(out, "start");
    out += QByteArray::number(d.start.microseconds());
    if (!d.text.isEmpty()) {
        appendField(out, "text");
        appendString(out, d.text);
    }
    appendField(out, "track");
    out += QByteArray::number(d.track);
    appendField(out, "type");
    out += QByteArray::number(uint(d.type));
    if (d.videoTrack) {
        appendField(out, "videoTrack");
        out += QByteArray::number(d.videoTrack);
    }
    out += '}';
}

QJsonObject Clip::toJson() const
{
    QByteArray text;
    writeJson(text, -1);
    return QJsonDocument::fromJson(text).object();
}

std::shared_ptr<Clip> Clip::fromJson(const QJsonObject& json, Serialize::JsonReader& reader, const QString& where,
                                     const QStringList* mediaTable)
{
    // Far beyond any real timeline, and well inside the integers a JSON double holds exactly.
    constexpr qint64 kMaxTime = 100000LL * 3600 * 1000000;
    constexpr qint64 kAllTypes = qint64(ClipType::Video | ClipType::Audio | ClipType::Image | ClipType::Title | ClipType::Overlay);
    Data d;
    const int foundBefore = reader.found();
    d.id = reader.string(json, QLatin1String("id"), where, 64);
    if (reader.ok() && d.id.isEmpty())
        reader.fail(Serialize::JsonReader::path(where, QStringLiteral("id")), QCoreApplication::translate("Project", "empty"));
    d.type = ClipTypes(int(reader.integer(json, QLatin1String("type"), where, 1, kAllTypes, 1)));
    d.track = int(reader.integer(json, QLatin1String("track"), where, 0, 63, 0));
    d.start = MediaTime::fromMicroseconds(reader.integer(json, QLatin1String("start"), where, 0, kMaxTime, 0));
    d.timing.sourceIn = MediaTime::fromMicroseconds(reader.integer(json, QLatin1String("in"), where, 0, kMaxTime, 0));
    d.timing.sourceLength = MediaTime::fromMicroseconds(reader.integer(json, QLatin1String("length"), where, 1, kMaxTime, 1));
    d.timing.speed = reader.number(json, QLatin1String("speed"), where, kMinSpeed, kMaxSpeed, 1.0);
    d.description.name = reader.string(json, QLatin1String("name"), where, 1024);
    d.description.category = reader.string(json, QLatin1String("category"), where, 256);
    d.mediaType = Media::Type(reader.integer(json, QLatin1String("mediaType"), where, 0, 3, 0));
    // The optional fields are looked up only while the object has keys not read yet: most
    // clips have none beyond their media, and a lookup that misses costs as much as a hit
    // (a binary search of the keys); in a large project that was a third of the lookups.
    const auto unread = [&] { return json.size() > reader.found() - foundBefore; };
    if (unread()) {
        if (mediaTable) {
            const qint64 index = reader.integer(json, QLatin1String("media"), where, 0, mediaTable->size() - 1, -1, false);
            d.mediaPath = index >= 0 ? mediaTable->at(int(index)) : QString();
        } else {
            d.mediaPath = reader.string(json, QLatin1String("media"), where, 4096, false);
        }
    }
    if (unread())
        d.videoTrack = int(reader.integer(json, QLatin1String("videoTrack"), where, 0, 63, 0, false));
    if (unread())
        d.nativeAudio = reader.boolean(json, QLatin1String("nativeAudio"), where, false);
    if (unread())
        d.groupId = reader.string(json, QLatin1String("group"), where, 64, false);
    if (unread())
        d.text = reader.string(json, QLatin1String("text"), where, 65536, false);
    if (unread())
        d.timing.reversed = reader.boolean(json, QLatin1String("reversed"), where, false);
    if (unread())
        d.timing.speedCompensated = reader.boolean(json, QLatin1String("speedCompensated"), where, false);
    if (unread())
        d.timing.stabilized = reader.boolean(json, QLatin1String("stabilized"), where, false);
    const QJsonArray effects = unread() ? reader.array(json, QLatin1String("effects"), where, 256, false) : QJsonArray();
    // Only clips with effects pay for the path of their effects.
    const QString effectsWhere = effects.isEmpty() ? QString() : Serialize::JsonReader::path(where, QStringLiteral("effects"));
    for (int i = 0; i < effects.size() && reader.ok(); ++i) {
        auto effect = Effect::Object::fromJson(reader.element(effects, i, effectsWhere), reader,
                                               Serialize::JsonReader::path(effectsWhere, i));
        if (effect)
            d.effects.push_back(std::move(effect));
    }
    if (!reader.ok())
        return nullptr;
    return std::make_shared<Clip>(std::move(d));
}

// ---------------------------------------------------------------- commands

class TimelineModel::Command : public QUndoCommand
{
public:
    Command(TimelineModel* model, const QString& text) : QUndoCommand(text), m(model) {}

protected:
    TimelineModel* m;
};

class TimelineModel::InsertCommand : public Command
{
public:
    InsertCommand(TimelineModel* model, std::vector<std::shared_ptr<Clip>> clips, const QString& text, bool insert = true)
        : Command(model, text), m_clips(std::move(clips)), m_insert(insert)
    {
    }
    void redo() override { m_insert ? m->attach(m_clips) : m->detach(m_clips); }
    void undo() override { m_insert ? m->detach(m_clips) : m->attach(m_clips); }

private:
    std::vector<std::shared_ptr<Clip>> m_clips;
    bool m_insert;
};

class TimelineModel::MoveCommand : public Command
{
public:
    struct Step
    {
        std::shared_ptr<Clip> clip;
        int fromTrack, toTrack;
        MediaTime from, to;
    };
    MoveCommand(TimelineModel* model, std::vector<Step> steps) : Command(model, QCoreApplication::translate("Timeline", "Move clip")), m_steps(std::move(steps)) {}
    void redo() override { apply(true); }
    void undo() override { apply(false); }

private:
    void apply(bool forward)
    {
        std::vector<Clip*> moved;
        m->forgetEnds();
        for (const Step& step : m_steps) {
            m->takeFromTrack(step.clip.get());
            step.clip->m_data.track = forward ? step.toTrack : step.fromTrack;
            step.clip->m_data.start = forward ? step.to : step.from;
            m->placeInTrack(step.clip);
            moved.push_back(step.clip.get());
        }
        const QList<IClip*> clips = m->inOrder(moved);
        m->notify([&](ITimelineObserver* o) { o->clipsChanged(*m, clips); });
    }
    std::vector<Step> m_steps;
};

class TimelineModel::TimingCommand : public Command
{
public:
    using Change = std::tuple<std::shared_ptr<Clip>, ClipTiming, ClipTiming>;
    TimingCommand(TimelineModel* model, std::vector<Change> changes, const QString& text)
        : Command(model, text), m_changes(std::move(changes))
    {
    }
    void redo() override { apply(true); }
    void undo() override { apply(false); }

private:
    void apply(bool forward)
    {
        std::vector<Clip*> changed;
        m->forgetEnds();
        for (const auto& [clip, before, after] : m_changes) {
            clip->m_data.timing = forward ? after : before;
            changed.push_back(clip.get());
        }
        const QList<IClip*> clips = m->inOrder(changed);
        m->notify([&](ITimelineObserver* o) { o->clipsChanged(*m, clips); });
    }
    std::vector<Change> m_changes;
};

class TimelineModel::EffectsCommand : public Command
{
public:
    using Effects = std::vector<std::shared_ptr<Effect::Object>>;
    EffectsCommand(TimelineModel* model, std::shared_ptr<Clip> clip, Effects before, Effects after, const QString& text)
        : Command(model, text), m_clip(std::move(clip)), m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void redo() override { apply(m_after); }
    void undo() override { apply(m_before); }

private:
    void apply(const Effects& effects)
    {
        m_clip->m_data.effects = effects;
        const QList<IClip*> clips{m_clip.get()};
        m->notify([&](ITimelineObserver* o) { o->clipsChanged(*m, clips); });
    }
    std::shared_ptr<Clip> m_clip;
    Effects m_before;
    Effects m_after;
};

class TimelineModel::TextCommand : public Command
{
public:
    TextCommand(TimelineModel* model, std::shared_ptr<Clip> clip, QString before, QString after)
        : Command(model, QCoreApplication::translate("Timeline", "Edit text")), m_clip(std::move(clip)),
          m_before(std::move(before)), m_after(std::move(after))
    {
    }
    void redo() override { apply(m_after); }
    void undo() override { apply(m_before); }

private:
    void apply(const QString& text)
    {
        m_clip->m_data.text = text;
        const QList<IClip*> clips{m_clip.get()};
        m->notify([&](ITimelineObserver* o) { o->clipsChanged(*m, clips); });
    }
    std::shared_ptr<Clip> m_clip;
    QString m_before;
    QString m_after;
};

class TimelineModel::VideoCommand : public Command
{
public:
    VideoCommand(TimelineModel* model, const Media::Video& before, const Media::Video& after)
        : Command(model, QCoreApplication::translate("Timeline", "Change project video")), m_before(before), m_after(after)
    {
    }
    void redo() override { m->applyVideo(m_after); }
    void undo() override { m->applyVideo(m_before); }

private:
    Media::Video m_before;
    Media::Video m_after;
};

// Changes of the project video asked for through the media model's change message.
struct TimelineModel::VideoRequests : PubSub::Subscriber<Media::VideoChangeRequest>
{
    explicit VideoRequests(TimelineModel* model) : m(model) { subscribe(&model->m_video); }
    void notify(const Media::VideoChangeRequest& request) override { m->setVideo(request.replacement); }
    TimelineModel* m;
};

// ---------------------------------------------------------------- TimelineModel

std::vector<TrackKind> TimelineModel::defaultTracks()
{
    return {TrackKind::Video, TrackKind::Video, TrackKind::Audio, TrackKind::Audio};
}

TimelineModel::TimelineModel(QObject* parent) : QObject(parent), m_undo(new QUndoStack(this))
{
    for (TrackKind kind : defaultTracks())
        m_tracks.push_back(Track{kind, {}, MediaTime(), false});
    m_videoRequests = std::make_unique<VideoRequests>(this);
}

TimelineModel::~TimelineModel()
{
    // Watchers may outlive the timeline; they must not call back into it.
    for (ITimelineObserver* observer : m_observers)
        if (auto* watcher = dynamic_cast<TimelineWatcher*>(observer))
            watcher->m_timeline = nullptr;
    m_observers.clear();
    // Commands hold clips; they go first so no clip outlives the model pointing at it.
    delete m_undo;
    m_undo = nullptr;
}

template <class F>
void TimelineModel::notify(F&& f)
{
    // An observer may remove itself (or another) during the call.
    const std::vector<ITimelineObserver*> snapshot = m_observers;
    for (ITimelineObserver* observer : snapshot)
        if (std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end())
            f(observer);
    emit changed();
}

void TimelineModel::addObserver(ITimelineObserver* observer)
{
    if (observer && std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end())
        m_observers.push_back(observer);
}

void TimelineModel::removeObserver(ITimelineObserver* observer)
{
    m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer), m_observers.end());
}

bool TimelineModel::validate(const Content& content, QString* error)
{
    const auto refuse = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    if (content.tracks.empty() || content.tracks.size() > 64)
        return refuse(QCoreApplication::translate("Timeline", "a project has 1 to 64 tracks"));
    // The ids by their hash in one sorted vector: a hash table allocated a node per clip,
    // and loading a large project checks its content twice (before handing it out and
    // when the timeline takes it).
    using Entry = std::pair<uint, const Clip*>;
    std::vector<Entry> ids;
    ids.reserve(content.clips.size());
    for (const auto& clip : content.clips) {
        const Clip::Data& d = clip->data();
        if (d.track < 0 || d.track >= int(content.tracks.size()))
            return refuse(QCoreApplication::translate("Timeline", "clip \"%1\" is on track %2, which does not exist").arg(d.id).arg(d.track));
        const bool audioTrack = content.tracks[size_t(d.track)] == TrackKind::Audio;
        if (audioTrack != bool(d.type & ClipType::Audio))
            return refuse(QCoreApplication::translate("Timeline", "clip \"%1\" is on a track of the wrong kind").arg(d.id));
        ids.emplace_back(qHash(d.id), clip.get());
    }
    const auto byHash = [](const Entry& a, const Entry& b) { return a.first < b.first; };
    std::sort(ids.begin(), ids.end(), byHash);
    const auto find = [&](const QString& id) -> const Clip* {
        const auto range = std::equal_range(ids.begin(), ids.end(), Entry{qHash(id), nullptr}, byHash);
        for (auto it = range.first; it != range.second; ++it)
            if (it->second->data().id == id)
                return it->second;
        return nullptr;
    };
    for (auto run = ids.begin(); run != ids.end();) {
        const auto end = std::find_if(run, ids.end(), [&](const Entry& e) { return e.first != run->first; });
        for (auto a = run; a != end; ++a)
            for (auto b = std::next(a); b != end; ++b)
                if (a->second->data().id == b->second->data().id)
                    return refuse(QCoreApplication::translate("Timeline", "two clips have the id \"%1\"").arg(a->second->data().id));
        run = end;
    }
    for (const auto& clip : content.clips) {
        const QString& group = clip->data().groupId;
        if (group.isEmpty())
            continue;
        const Clip* leader = find(group);
        // One level only: a leader is never itself led, so timing has one carrier.
        if (!leader || leader == clip.get() || !leader->data().groupId.isEmpty())
            return refuse(QCoreApplication::translate("Timeline", "clip \"%1\" belongs to a group that does not exist").arg(clip->data().id));
    }
    return true;
}

void TimelineModel::reset(Content content)
{
    QString why;
    if (!validate(content, &why)) {
        LOG(ERROR) << "timeline: refused content: " << why.toStdString();
        return;
    }
    m_undo->clear();
    m_selection.clear();
    m_byId.clear();
    m_byIdValid = false;
    m_tracks.clear(); // and with them what was known of their ends
    for (TrackKind kind : content.tracks)
        m_tracks.push_back(Track{kind, {}, MediaTime(), false});
    m_clipCount = 0;
    m_missing = std::move(content.missingMedia);
    m_video = content.video;
    // New ids continue after the loaded ones, so a clip brought back by undo never meets
    // a newer clip of the same id.
    m_nextId = 1;
    for (const auto& clip : content.clips) {
        const QString& id = clip->m_data.id;
        bool numeric = false;
        const quint64 n = id.startsWith(QLatin1Char('c')) ? id.midRef(1).toULongLong(&numeric) : 0;
        if (numeric && n >= m_nextId)
            m_nextId = n + 1;
    }
    for (auto& clip : content.clips) {
        clip->m_leader = nullptr;
        clip->m_followers.clear();
        clip->m_timeline = this;
        clip->m_attached = true;
        m_tracks[size_t(clip->m_data.track)].clips.push_back(clip);
        ++m_clipCount;
    }
    for (Track& track : m_tracks)
        std::stable_sort(track.clips.begin(), track.clips.end(), byStart);
    for (auto& clip : content.clips) {
        if (Clip* leader = clip->m_data.groupId.isEmpty() ? nullptr : clipById(clip->m_data.groupId)) {
            clip->m_leader = leader;
            leader->m_followers.push_back(clip.get());
        }
    }
    notify([&](ITimelineObserver* o) { o->timelineReset(*this); });
}

void TimelineModel::setMediaResolver(MediaResolver resolver)
{
    m_resolver = std::move(resolver);
}

const Media::File* TimelineModel::resolveMedia(const QString& path) const
{
    return m_resolver && !path.isEmpty() ? m_resolver(path) : nullptr;
}

QStringList TimelineModel::mediaPaths() const
{
    QStringList paths;
    QSet<QString> seen;
    for (IClip* clip : clips()) {
        const QString path = clip->mediaPath();
        if (!path.isEmpty() && !seen.contains(path)) {
            seen.insert(path);
            paths << path;
        }
    }
    return paths;
}

Clip* TimelineModel::clipById(const QString& id) const
{
    if (!m_byIdValid) {
        m_byId.clear();
        m_byId.reserve(m_clipCount);
        for (const Track& track : m_tracks)
            for (const auto& clip : track.clips)
                m_byId.insert(clip->m_data.id, clip.get());
        m_byIdValid = true;
    }
    return m_byId.value(id);
}

Clip* TimelineModel::own(IClip* clip) const
{
    // No lookup by id: this runs once per clip of every change, and a pointer of another
    // timeline (or a clip only in the undo history) is told apart by the clip itself.
    auto* mine = dynamic_cast<Clip*>(clip);
    return mine && mine->m_timeline == this && mine->m_attached ? mine : nullptr;
}

QString TimelineModel::newClipId()
{
    // Unique without a lookup: ids of loaded clips are below m_nextId (see reset()), and
    // ids not of this form cannot meet one that is.
    return QStringLiteral("c%1").arg(m_nextId++);
}

TrackKind TimelineModel::trackKind(int track) const
{
    return track >= 0 && track < trackCount() ? m_tracks[size_t(track)].kind : TrackKind::Video;
}

QList<IClip*> TimelineModel::clips(int track) const
{
    QList<IClip*> list;
    if (track < 0 || track >= trackCount())
        return list;
    list.reserve(int(m_tracks[size_t(track)].clips.size()));
    for (const auto& clip : m_tracks[size_t(track)].clips)
        list << clip.get();
    return list;
}

QList<IClip*> TimelineModel::clips() const
{
    QList<IClip*> list;
    list.reserve(m_clipCount);
    for (const Track& track : m_tracks)
        for (const auto& clip : track.clips)
            list << clip.get();
    return list;
}

MediaTime TimelineModel::duration() const
{
    MediaTime end;
    for (int t = 0; t < trackCount(); ++t)
        end = std::max(end, trackEnd(t));
    return end;
}

MediaTime TimelineModel::trackEnd(int track) const
{
    const Track& t = m_tracks[size_t(track)];
    if (!t.endKnown) {
        t.end = MediaTime();
        for (const auto& clip : t.clips)
            t.end = std::max(t.end, clip->compositionRange().end());
        t.endKnown = true;
    }
    return t.end;
}

void TimelineModel::forgetEnds()
{
    for (Track& track : m_tracks)
        track.endKnown = false;
}

int TimelineModel::firstTrack(TrackKind kind, int wanted) const
{
    if (wanted >= 0 && wanted < trackCount() && m_tracks[size_t(wanted)].kind == kind)
        return wanted;
    for (int t = 0; t < trackCount(); ++t)
        if (m_tracks[size_t(t)].kind == kind)
            return t;
    return -1;
}

QList<IClip*> TimelineModel::inOrder(std::vector<Clip*> clips) const
{
    const auto before = [](const Clip* a, const Clip* b) {
        if (a->m_data.track != b->m_data.track)
            return a->m_data.track < b->m_data.track;
        return a->m_data.start < b->m_data.start;
    };
    // Undoing a removal brings clips back in the order they left: nothing to sort.
    if (!std::is_sorted(clips.begin(), clips.end(), before))
        std::sort(clips.begin(), clips.end(), before);
    QList<IClip*> list;
    list.reserve(int(clips.size()));
    for (Clip* clip : clips)
        list << clip;
    return list;
}

void TimelineModel::placeInTrack(const std::shared_ptr<Clip>& clip)
{
    auto& clips = m_tracks[size_t(clip->m_data.track)].clips;
    clips.insert(std::upper_bound(clips.begin(), clips.end(), clip, byStart), clip);
}

void TimelineModel::takeFromTrack(Clip* clip)
{
    auto& clips = m_tracks[size_t(clip->m_data.track)].clips;
    clips.erase(std::remove_if(clips.begin(), clips.end(), [clip](const auto& c) { return c.get() == clip; }), clips.end());
}

void TimelineModel::attach(const std::vector<std::shared_ptr<Clip>>& clips)
{
    std::vector<bool> touched(m_tracks.size(), false);
    std::vector<Clip*> attached;
    attached.reserve(clips.size());
    for (const auto& clip : clips) {
        clip->m_timeline = this;
        clip->m_attached = true;
        // Appended; a track that ends up out of order is sorted once, so re-attaching
        // thousands of clips stays O(n log n) and appending stays O(1) each.
        Track& track = m_tracks[size_t(clip->m_data.track)];
        if (!track.clips.empty() && clip->m_data.start < track.clips.back()->m_data.start)
            touched[size_t(clip->m_data.track)] = true;
        track.clips.push_back(clip);
        if (track.endKnown)
            track.end = std::max(track.end, clip->compositionRange().end());
        attached.push_back(clip.get());
        ++m_clipCount;
    }
    for (size_t t = 0; t < m_tracks.size(); ++t)
        if (touched[t])
            std::stable_sort(m_tracks[t].clips.begin(), m_tracks[t].clips.end(), byStart);
    m_byIdValid = false;
    // A group usually arrives whole (a video with its sound): its leader is found among
    // the clips of this insertion without indexing the whole timeline.
    QHash<QString, Clip*> batch;
    if (std::any_of(attached.begin(), attached.end(), [](const Clip* c) { return !c->m_data.groupId.isEmpty(); }))
        for (Clip* c : attached)
            batch.insert(c->m_data.id, c);
    for (Clip* clip : attached) {
        if (clip->m_data.groupId.isEmpty())
            continue;
        Clip* leader = batch.value(clip->m_data.groupId);
        if (!leader)
            leader = clipById(clip->m_data.groupId);
        if (leader) {
            clip->m_leader = leader;
            if (std::find(leader->m_followers.begin(), leader->m_followers.end(), clip) == leader->m_followers.end())
                leader->m_followers.push_back(clip);
        }
    }
    const QList<IClip*> inserted = inOrder(attached);
    notify([&](ITimelineObserver* o) { o->clipsInserted(*this, inserted); });
}

void TimelineModel::detach(const std::vector<std::shared_ptr<Clip>>& clips)
{
    // The leaving clips are marked detached first, so each track sheds them in one pass
    // with no set to look them up in.
    int selectedGone = 0;
    for (const auto& clip : clips) {
        clip->m_attached = false;
        if (!m_selection.isEmpty() && m_selection.contains(clip.get()))
            ++selectedGone;
    }
    // Collected track by track while they leave: already in timeline order, in one pass.
    QList<IClip*> ordered;
    ordered.reserve(int(clips.size()));
    for (Track& track : m_tracks) {
        auto& list = track.clips;
        list.erase(std::remove_if(list.begin(), list.end(),
                                  [&](const auto& c) {
                                      if (c->m_attached)
                                          return false;
                                      ordered << c.get();
                                      return true;
                                  }),
                   list.end());
    }
    forgetEnds();
    m_byIdValid = false;
    // Removing the selection (the usual case) empties it at once.
    if (selectedGone == m_selection.size())
        m_selection.clear();
    for (const auto& clip : clips) {
        if (selectedGone && !m_selection.isEmpty())
            m_selection.remove(clip.get());
        if (clip->m_leader) {
            auto& followers = clip->m_leader->m_followers;
            followers.erase(std::remove(followers.begin(), followers.end(), clip.get()), followers.end());
            clip->m_leader = nullptr;
        }
        --m_clipCount;
    }
    notify([&](ITimelineObserver* o) { o->clipsRemoved(*this, ordered); });
    if (selectedGone)
        notify([&](ITimelineObserver* o) { o->selectionChanged(*this); });
}

std::shared_ptr<Clip> TimelineModel::makeClip(Clip::Data data)
{
    data.id = newClipId();
    auto clip = std::make_shared<Clip>(std::move(data));
    clip->m_timeline = this;
    return clip;
}

QList<IClip*> TimelineModel::placeMedia(const QStringList& paths, const ClipBuildingStrategy& strategy)
{
    return placeMediaParts(paths, strategy, nullptr);
}

QList<IClip*> TimelineModel::addMediaRange(const CollectionItem& item, MediaTime sourceIn, MediaTime sourceLength,
                                           const ClipBuildingStrategy& strategy)
{
    if (item.kind != CollectionItem::Kind::Media || item.filePath.isEmpty() || sourceIn.microseconds() < 0
        || sourceLength.microseconds() <= 0)
        return {};
    ClipBuildingStrategy s = strategy;
    if (!item.name.isEmpty())
        s.properties.insert(QStringLiteral("name"), item.name);
    const std::pair<MediaTime, MediaTime> range(sourceIn, sourceLength);
    return placeMediaParts({item.filePath}, s, &range);
}

QList<IClip*> TimelineModel::placeMediaParts(const QStringList& paths, const ClipBuildingStrategy& strategy,
                                             const std::pair<MediaTime, MediaTime>* range)
{
    const QStringList pictures = FileUtil::pictureExtensions();
    const QStringList music = FileUtil::musicExtensions();
    std::vector<MediaTime> ends(m_tracks.size());
    for (int t = 0; t < trackCount(); ++t)
        ends[size_t(t)] = trackEnd(t);
    std::vector<std::shared_ptr<Clip>> made;
    for (const QString& path : paths) {
        const Media::File* file = resolveMedia(path);
        const bool opened = file && file->isOpened();
        const QString extension = FS::extensionL(path);
        bool hasVideo = true, hasAudio = false;
        if (opened) {
            hasVideo = std::any_of(file->videoTracks().begin(), file->videoTracks().end(),
                                   [](const Media::VideoTrack& t) { return !t.isCoverArt(); });
            hasAudio = !file->audioTracks().empty();
        } else if (music.contains(extension)) {
            hasVideo = false;
            hasAudio = true;
        }
        const bool picture = pictures.contains(extension);
        Clip::Data data;
        data.mediaPath = path;
        data.description.name = strategy.properties.value(QStringLiteral("name"), QFileInfo(path).fileName()).toString();
        if (picture) {
            data.type = ClipType::Image;
            data.mediaType = Media::Type::Image;
            data.description.category = QStringLiteral("Picture");
        } else if (hasVideo) {
            data.type = ClipType::Video;
            data.mediaType = Media::Type::Video;
            data.description.category = QStringLiteral("Video");
        } else {
            data.type = ClipType::Audio;
            data.mediaType = Media::Type::Audio;
            data.description.category = QStringLiteral("Music");
        }
        data.description.category = strategy.properties.value(QStringLiteral("category"), data.description.category).toString();
        const MediaTime fileLength = opened ? file->fileDuration() : MediaTime();
        data.timing.sourceLength = picture || fileLength.microseconds() <= 0 ? strategy.stillDuration : fileLength;
        if (range && !picture) {
            const qint64 available = fileLength.microseconds() > 0
                ? fileLength.microseconds() - range->first.microseconds() : range->second.microseconds();
            if (available <= 0)
                continue; // starts beyond the end of the file
            data.timing.sourceIn = range->first;
            data.timing.sourceLength = MediaTime::fromMicroseconds(std::min(available, range->second.microseconds()));
        }
        const bool audioOnly = data.type == ClipTypes(ClipType::Audio);
        data.track = firstTrack(audioOnly ? TrackKind::Audio : TrackKind::Video, strategy.track);
        const int audioTrack = firstTrack(TrackKind::Audio, audioOnly ? strategy.track : -1);
        const bool withNativeAudio = !audioOnly && !picture && hasAudio && audioTrack >= 0;
        if (data.track < 0)
            continue;
        MediaTime start = strategy.position;
        if (strategy.atEnd) {
            start = ends[size_t(data.track)];
            if (withNativeAudio)
                start = std::max(start, ends[size_t(audioTrack)]);
        }
        data.start = start;
        auto clip = makeClip(data);
        made.push_back(clip);
        ends[size_t(data.track)] = std::max(ends[size_t(data.track)], clip->compositionRange().end());
        if (withNativeAudio) {
            Clip::Data audio = data;
            audio.type = ClipType::Audio;
            audio.nativeAudio = true;
            audio.groupId = clip->id();
            audio.track = audioTrack;
            auto sound = makeClip(audio);
            made.push_back(sound);
            ends[size_t(audioTrack)] = std::max(ends[size_t(audioTrack)], sound->compositionRange().end());
        }
    }
    if (made.empty())
        return {};
    std::vector<Clip*> raw;
    for (const auto& clip : made)
        raw.push_back(clip.get());
    m_undo->push(new InsertCommand(this, made, QCoreApplication::translate("Timeline", "Place %n clip(s)", nullptr, int(paths.size()))));
    return inOrder(raw);
}

QList<IClip*> TimelineModel::addCollectionItem(const CollectionItem& item, const ClipBuildingStrategy& strategy)
{
    switch (item.kind) {
    case CollectionItem::Kind::Media: {
        ClipBuildingStrategy s = strategy;
        if (!item.name.isEmpty())
            s.properties.insert(QStringLiteral("name"), item.name);
        if (!item.category.isEmpty())
            s.properties.insert(QStringLiteral("category"), item.category);
        return placeMedia({item.filePath}, s);
    }
    case CollectionItem::Kind::Title: {
        OverlayPreset preset;
        preset.name = item.name;
        preset.text = item.text;
        preset.duration = strategy.stillDuration;
        IClip* clip = addOverlayPreset(preset, strategy);
        return clip ? QList<IClip*>{clip} : QList<IClip*>{};
    }
    case CollectionItem::Kind::Effect: {
        const QList<IClip*> targets = selectedClips();
        if (targets.isEmpty() || !Effect::Catalogue::find(item.effectId))
            return {};
        m_undo->beginMacro(QCoreApplication::translate("Timeline", "Apply %1").arg(item.name));
        QList<IClip*> changed;
        for (IClip* clip : targets)
            if (addEffect(clip, Effect::Object::create(item.effectId)))
                changed << clip;
        m_undo->endMacro();
        return changed;
    }
    }
    return {};
}

IClip* TimelineModel::addOverlayPreset(const OverlayPreset& preset, const ClipBuildingStrategy& strategy)
{
    // Overlays go above the main video: the second video track when there is one.
    int track = firstTrack(TrackKind::Video, strategy.track);
    if (strategy.track < 0)
        for (int t = track + 1; t < trackCount(); ++t)
            if (m_tracks[size_t(t)].kind == TrackKind::Video) {
                track = t;
                break;
            }
    if (track < 0 || preset.duration.microseconds() <= 0)
        return nullptr;
    Clip::Data data;
    data.type = ClipType::Overlay;
    data.description = {preset.name, QStringLiteral("Special effects")};
    data.text = preset.text;
    data.track = track;
    data.start = strategy.atEnd ? trackEnd(track) : strategy.position;
    data.timing.sourceLength = preset.duration;
    auto clip = makeClip(data);
    m_undo->push(new InsertCommand(this, {clip}, QCoreApplication::translate("Timeline", "Add %1").arg(preset.name)));
    return clip.get();
}

bool TimelineModel::setClipText(IClip* c, const QString& text)
{
    Clip* clip = own(c);
    if (!clip || !(clip->m_data.type & (ClipType::Title | ClipType::Overlay)) || clip->m_data.text == text)
        return false;
    m_undo->push(new TextCommand(this, shared(clip), clip->m_data.text, text));
    return true;
}

std::shared_ptr<Clip> TimelineModel::shared(Clip* clip) const
{
    return clip->shared_from_this();
}

std::vector<std::shared_ptr<Clip>> TimelineModel::withGroups(const QList<IClip*>& clips) const
{
    // Duplicates are told by a mark on the clip, not a set: removing all of a large
    // timeline then allocates nothing per clip (a set of 10,000 pointers cost more than
    // the rest of the removal).
    std::vector<std::shared_ptr<Clip>> result;
    result.reserve(size_t(clips.size()));
    const auto add = [&](Clip* clip) {
        if (!clip || clip->m_marked)
            return;
        clip->m_marked = true;
        result.push_back(shared(clip));
    };
    for (IClip* c : clips) {
        Clip* clip = own(c);
        if (!clip)
            continue;
        Clip* leader = clip->m_leader ? clip->m_leader : clip;
        add(leader);
        for (Clip* follower : leader->m_followers)
            add(follower);
    }
    for (const auto& clip : result)
        clip->m_marked = false;
    return result;
}

bool TimelineModel::moveClip(IClip* c, int track, MediaTime start)
{
    Clip* clip = own(c);
    if (!clip || track < 0 || track >= trackCount() ||
        (m_tracks[size_t(track)].kind == TrackKind::Audio) != bool(clip->m_data.type & ClipType::Audio))
        return false;
    const std::vector<std::shared_ptr<Clip>> group = withGroups({clip});
    qint64 delta = start.microseconds() - clip->m_data.start.microseconds();
    for (const auto& member : group)
        delta = std::max(delta, -member->m_data.start.microseconds());
    if (delta == 0 && track == clip->m_data.track)
        return false;
    std::vector<MoveCommand::Step> steps;
    for (const auto& member : group) {
        const int to = member.get() == clip ? track : member->m_data.track;
        steps.push_back({member, member->m_data.track, to, member->m_data.start,
                         member->m_data.start + MediaTime::fromMicroseconds(delta)});
    }
    m_undo->push(new MoveCommand(this, std::move(steps)));
    return true;
}

void TimelineModel::removeClips(const QList<IClip*>& clips)
{
    std::vector<std::shared_ptr<Clip>> gone = withGroups(clips);
    if (gone.empty())
        return;
    const int count = int(gone.size());
    m_undo->push(new InsertCommand(this, std::move(gone), QCoreApplication::translate("Timeline", "Remove %n clip(s)", nullptr, count), false));
}

QList<IClip*> TimelineModel::selectedClips() const
{
    QList<IClip*> list;
    if (m_selection.isEmpty())
        return list;
    for (const Track& track : m_tracks)
        for (const auto& clip : track.clips)
            if (m_selection.contains(clip.get()))
                list << clip.get();
    return list;
}

IClip* TimelineModel::firstSelectedClip() const
{
    const QList<IClip*> selected = selectedClips();
    return selected.isEmpty() ? nullptr : selected.first();
}

void TimelineModel::select(const QList<IClip*>& clips, SelectionMode mode)
{
    QSet<const IClip*> next = mode == SelectionMode::Replace ? QSet<const IClip*>() : m_selection;
    for (IClip* c : clips) {
        Clip* clip = own(c);
        if (!clip)
            continue;
        if (mode == SelectionMode::Toggle && next.contains(clip))
            next.remove(clip);
        else
            next.insert(clip);
    }
    if (next == m_selection)
        return;
    m_selection = std::move(next);
    notify([&](ITimelineObserver* o) { o->selectionChanged(*this); });
}

void TimelineModel::selectAll()
{
    QSet<const IClip*> all;
    all.reserve(m_clipCount);
    for (const Track& track : m_tracks)
        for (const auto& clip : track.clips)
            all.insert(clip.get());
    if (all == m_selection)
        return;
    m_selection = std::move(all);
    notify([&](ITimelineObserver* o) { o->selectionChanged(*this); });
}

void TimelineModel::clearSelection()
{
    select({}, SelectionMode::Replace);
}

IClip* TimelineModel::timingClip(IClip* clip) const
{
    Clip* mine = own(clip);
    return mine ? mine->timingClip() : clip;
}

bool TimelineModel::takesAdjustments(const IClip* clip) const
{
    // The sound of a video is adjusted through its video: speed and direction are the group's.
    return own(const_cast<IClip*>(clip)) && !clip->isNativeAudio();
}

bool TimelineModel::changeTiming(IClip* c, const std::function<void(ClipTiming&)>& edit, const QString& text)
{
    Clip* clip = own(c);
    if (!clip)
        return false;
    std::vector<TimingCommand::Change> changes;
    for (const auto& member : withGroups({clip})) {
        ClipTiming after = member->m_data.timing;
        edit(after);
        if (!sameTiming(after, member->m_data.timing))
            changes.emplace_back(member, member->m_data.timing, after);
    }
    if (changes.empty())
        return false;
    m_undo->push(new TimingCommand(this, std::move(changes), text));
    return true;
}

bool TimelineModel::setSpeed(IClip* clip, double speed)
{
    if (!(speed >= kMinSpeed && speed <= kMaxSpeed) || (clip && clip->hasNoAdjustableSpeed()))
        return false;
    return changeTiming(clip, [speed](ClipTiming& t) { t.speed = speed; }, QCoreApplication::translate("Timeline", "Change speed"));
}

bool TimelineModel::setReversed(IClip* clip, bool reversed)
{
    return changeTiming(clip, [reversed](ClipTiming& t) { t.reversed = reversed; },
                        reversed ? QCoreApplication::translate("Timeline", "Reverse") : QCoreApplication::translate("Timeline", "Play forward"));
}

bool TimelineModel::setSpeedCompensated(IClip* clip, bool compensated)
{
    return changeTiming(clip, [compensated](ClipTiming& t) { t.speedCompensated = compensated; }, QCoreApplication::translate("Timeline", "Original tone"));
}

bool TimelineModel::setStabilized(IClip* clip, bool stabilized)
{
    // Only the video itself is steadied; its sound and the rest of its group keep theirs.
    Clip* own = this->own(clip);
    if (!own || (stabilized && own->m_data.mediaType != Media::Type::Video))
        return false;
    ClipTiming after = own->m_data.timing;
    after.stabilized = stabilized;
    if (sameTiming(after, own->m_data.timing))
        return false;
    const std::shared_ptr<Clip> held = shared(own);
    if (!held)
        return false;
    std::vector<TimingCommand::Change> changes;
    changes.emplace_back(held, own->m_data.timing, after);
    m_undo->push(new TimingCommand(this, std::move(changes),
                                   stabilized ? QCoreApplication::translate("Timeline", "Stabilize")
                                              : QCoreApplication::translate("Timeline", "Stop stabilizing")));
    return true;
}

bool TimelineModel::changeEffects(IClip* c, const std::function<bool(std::vector<std::shared_ptr<Effect::Object>>&)>& edit,
                                  const QString& text)
{
    Clip* clip = own(c);
    if (!clip)
        return false;
    std::vector<std::shared_ptr<Effect::Object>> after = clip->m_data.effects;
    if (!edit(after))
        return false;
    const std::shared_ptr<Clip> held = shared(clip);
    if (!held)
        return false;
    m_undo->push(new EffectsCommand(this, held, clip->m_data.effects, std::move(after), text));
    return true;
}

bool TimelineModel::addEffect(IClip* clip, std::shared_ptr<Effect::Object> effect)
{
    if (!effect)
        return false;
    const QString name = effect->nameKey();
    return changeEffects(
        clip,
        [&](auto& effects) {
            for (const auto& e : effects)
                if (e->uid() == effect->uid() || e == effect)
                    return false;
            effects.push_back(effect);
            return true;
        },
        QCoreApplication::translate("Timeline", "Add %1").arg(name));
}

bool TimelineModel::removeEffect(IClip* clip, const QString& id, const QString& uid)
{
    return changeEffects(
        clip,
        [&](auto& effects) {
            const auto found = std::find_if(effects.begin(), effects.end(),
                                            [&](const auto& e) { return e->id() == id && e->uid() == uid; });
            if (found == effects.end())
                return false;
            effects.erase(found);
            return true;
        },
        QCoreApplication::translate("Timeline", "Remove effect"));
}

bool TimelineModel::replaceEffect(IClip* clip, std::shared_ptr<Effect::Object> effect)
{
    if (!effect)
        return false;
    return changeEffects(
        clip,
        [&](auto& effects) {
            for (auto& e : effects) {
                if (e->id() == effect->id() && e->uid() == effect->uid()) {
                    if (e == effect)
                        return false;
                    e = effect;
                    return true;
                }
            }
            // An inner effect: its group is copied with the effect in place, and replaced.
            for (auto& e : effects) {
                const auto* holder = dynamic_cast<const Effect::EffectsHolder*>(e.get());
                if (!holder || !holder->findEffect(effect->id(), effect->uid()))
                    continue;
                auto group = Serialize::deepCopy(holder);
                if (!group || !group->replaceEffect(effect))
                    return false;
                e = group;
                return true;
            }
            return false;
        },
        QCoreApplication::translate("Timeline", "Change %1").arg(Translator::translate(effect->nameKey())));
}

void TimelineModel::setVideo(const Media::Video& video)
{
    const bool valid = video.frameWidth() >= 16 && video.frameWidth() <= 16384 && video.frameHeight() >= 16 &&
        video.frameHeight() <= 16384 && video.frameRate() >= 1.0 && video.frameRate() <= 1000.0 &&
        video.frameAspectX() > 0 && video.frameAspectY() > 0;
    if (!valid) {
        LOG(WARNING) << "timeline: refused project video " << video.frameWidth() << 'x' << video.frameHeight() << " at "
                     << video.frameRate() << " fps";
        return;
    }
    if (video == m_video)
        return;
    m_undo->push(new VideoCommand(this, m_video, video));
}

void TimelineModel::applyVideo(const Media::Video& video)
{
    const Media::Video previous = m_video;
    m_video = video;
    PubSub::publish(Media::VideoChangedNotification(&m_video, previous));
    notify([&](ITimelineObserver* o) { o->videoChanged(*this, previous); });
}

} // namespace Timeline
