#pragma once

#include "MediaTime.h"
#include "Proc/ProcessingError.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

namespace Media {

struct VideoTrack
{
    QString codecId;          // the format configuration's codec identifier ("h264", "h265", ...)
    QSize frameSize;
    int pixelAspectX = 1;     // sample aspect ratio, x:y
    int pixelAspectY = 1;
    double frameRate = 0.0;
    qint64 bitRate = 0;       // bits per second, 0 when unknown
    QString transfer;         // colour transfer ("bt709", "smpte2084", "arib-std-b67", ...)
    QString primaries;        // colour primaries ("bt709", "bt2020", ...)
    QString pixelFormat;      // the decoder's pixel format ("yuv420p", "yuv420p10le", ...)
    bool coverArt = false;    // an attached picture, not a moving video

    bool isCoverArt() const { return coverArt; }
};

struct AudioTrack
{
    QString codecId;
    int sampleRate = 0;
    qint64 bitRate = 0;
    quint64 channelLayout = 0; // channel mask, resolved with Tavrin::Conf::LayoutRecord::Find
    int channels = 0;
    QString sampleFormat;      // "fltp", "s16", ...
};

// A media file of the project, as the editing model knows it. It starts opening when it
// is added; it ends either opened (usable, maybe with some streams it cannot decode) or
// failed. Only the media model changes it, on the GUI thread.
class File
{
public:
    enum class State { Opening, Opened, Failed };
    // What was wrong with the path itself, beyond the error code's "corrupted or missing".
    enum class PathProblem {
        None,
        UnreadableName, // the name's bytes are not valid in the system's encoding (UTF-8)
        SymlinkLoop,    // symbolic links that lead back to themselves
    };

    explicit File(const QString& path = QString()) : m_path(path) {}
    virtual ~File() = default;

    QString filePath() const { return m_path; }
    QString format() const { return m_format; }
    const std::vector<VideoTrack>& videoTracks() const { return m_video; }
    const std::vector<AudioTrack>& audioTracks() const { return m_audio; }
    MediaTime fileDuration() const { return m_duration; }

    State state() const { return m_state; }
    bool isOpening() const { return m_state == State::Opening; }
    bool isOpened() const { return m_state == State::Opened; }
    bool isFailed() const { return m_state == State::Failed; }

    // Codec identifiers of streams the editor cannot decode.
    QStringList unsupportedCodecs() const { return m_unsupported; }
    // True when a video stream uses a high-dynamic-range transfer (PQ or HLG). A failed file
    // shows nothing, so it has no HDR streams to convert.
    bool hasHDRStreams() const;
    static bool hasHDRStreams(const File* file) { return file && file->hasHDRStreams(); }

    // Filled by the media model (and by tests that need a file in a given state).
    void setFormat(const QString& format) { m_format = format; }
    void setVideoTracks(std::vector<VideoTrack> tracks) { m_video = std::move(tracks); }
    void setAudioTracks(std::vector<AudioTrack> tracks) { m_audio = std::move(tracks); }
    void setFileDuration(MediaTime duration) { m_duration = duration; }
    void setUnsupportedCodecs(const QStringList& codecs) { m_unsupported = codecs; }
    void setState(State state) { m_state = state; }

    // Why the file failed: the processing errors reported when it was opened (empty while
    // opening and when opened).
    const std::vector<Tavrin::Proc::ProcessingError>& errors() const { return m_errors; }
    void setErrors(std::vector<Tavrin::Proc::ProcessingError> errors) { m_errors = std::move(errors); }
    PathProblem pathProblem() const { return m_pathProblem; }
    void setPathProblem(PathProblem problem) { m_pathProblem = problem; }
    // Size in bytes and the container's overall bit rate (0 when unknown).
    qint64 fileSize() const { return m_size; }
    void setFileSize(qint64 size) { m_size = size; }
    qint64 bitRate() const { return m_bitRate; }
    void setBitRate(qint64 bitRate) { m_bitRate = bitRate; }

private:
    QString m_path;
    QString m_format;
    std::vector<VideoTrack> m_video;
    std::vector<AudioTrack> m_audio;
    MediaTime m_duration;
    QStringList m_unsupported;
    State m_state = State::Opening;
    std::vector<Tavrin::Proc::ProcessingError> m_errors;
    qint64 m_size = 0;
    qint64 m_bitRate = 0;
    PathProblem m_pathProblem = PathProblem::None;
};

inline bool File::hasHDRStreams() const
{
    if (isFailed())
        return false;
    for (const VideoTrack& track : m_video)
        if (track.transfer == QLatin1String("smpte2084") || track.transfer == QLatin1String("arib-std-b67"))
            return true;
    return false;
}

} // namespace Media
