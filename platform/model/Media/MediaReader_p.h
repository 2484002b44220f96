#pragma once

// The contract between the media model and its FFmpeg-backed reader module
// (libKvMediaReader.so). The module is loaded at run time so that executables linking the
// model do not pay for libavformat's ~140 shared libraries at every start; see
// docs/media-model.md. Both sides are built from this tree with the same compiler, so C++
// types cross the boundary; only the entry point has C linkage.

#include "Media/File.h"

#include <QStringList>

#include <functional>
#include <string>
#include <vector>

namespace Media {
namespace Reader {

struct ProbeResult
{
    // A Tavrin::Proc::TranscodingErrors value; 0 when the container could be read.
    int error = 0;
    std::string errorMessage;  // the engine's words, for logs
    QString format;            // container name for people ("QuickTime / MOV")
    QString formatId;          // container short name ("mov,mp4,m4a,3gp,3g2,mj2")
    // Established by the reader: the container's figure when the file's size makes it
    // plausible, else the streams' own, else the end of the last packets; 0 when none holds.
    MediaTime duration;
    qint64 bitRate = 0;
    qint64 fileSize = 0;       // bytes, 0 when the input cannot tell
    bool stillPicture = false; // read by a picture demuxer: one frame, no duration needed
    // Tracks in stream order, with the engine's codec names; whether the engine has a
    // decoder for each track runs parallel to them.
    std::vector<VideoTrack> video;
    std::vector<bool> videoDecodable;
    std::vector<AudioTrack> audio;
    std::vector<bool> audioDecodable;
};

// What a stream must look like to be usable. A damaged header gives frames of 0 or 99999
// pixels a side, 12,800 frames per second, no sample rate: such a stream is not one the
// editor can show or play, whatever its codec.
constexpr int maxFrameSide = 16384;
constexpr double minFrameRate = 0.01; // a time-lapse of one frame every 100 s
constexpr double maxFrameRate = 1000; // beyond the fastest high-speed recordings people edit
constexpr int maxSampleRate = 768000;
constexpr int maxChannels = 64;       // seventh-order ambisonics
// No stream stores a second of media in fewer bytes than this, headers and indexes included;
// a duration needing less is a damaged figure (a 16 KB file claiming years).
constexpr qint64 minBytesPerSecond = 16;

inline bool plausibleFrameSize(const QSize& size)
{
    return size.width() >= 1 && size.width() <= maxFrameSide && size.height() >= 1 && size.height() <= maxFrameSide;
}

inline bool plausibleVideo(const VideoTrack& track, bool stillPicture)
{
    return plausibleFrameSize(track.frameSize)
        && (stillPicture || (track.frameRate >= minFrameRate && track.frameRate <= maxFrameRate));
}

inline bool plausibleAudio(const AudioTrack& track)
{
    return track.sampleRate >= 1 && track.sampleRate <= maxSampleRate && track.channels >= 1
        && track.channels <= maxChannels;
}

// A positive duration that `fileSize` bytes can hold (any positive one when the size is unknown).
inline bool plausibleDuration(MediaTime duration, qint64 fileSize)
{
    if (duration.microseconds() <= 0)
        return false;
    return fileSize <= 0 || duration.microseconds() / 1000000 <= fileSize / minBytesPerSecond;
}

class IMediaReader
{
public:
    virtual ~IMediaReader() = default;
    // Reads the container and its streams' parameters. Safe to call from several threads
    // at once; never throws; gives up on an input that stalls for longer than `timeoutMs`,
    // and as soon as `cancelled` (when given) returns true.
    virtual ProbeResult probe(const QString& path, int timeoutMs, const std::function<bool()>& cancelled) = 0;
};

using CreateFunction = IMediaReader* (*)();
constexpr const char* CreateFunctionName = "kvCreateMediaReader";

} // namespace Reader
} // namespace Media
