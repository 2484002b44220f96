#pragma once

// The contract between the media model and its FFmpeg-backed reader module
// (libKvMediaReader.so). The module is loaded at run time so that executables linking the
// model do not pay for libavformat's ~140 shared libraries at every start; see
// docs/media-model.md. Both sides are built from this tree with the same compiler, so C++
// types cross the boundary; only the entry point has C linkage.

#include "Media/File.h"

#include <QStringList>

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
    MediaTime duration;
    qint64 bitRate = 0;
    // Tracks in stream order, with the engine's codec names; whether the engine has a
    // decoder for each track runs parallel to them.
    std::vector<VideoTrack> video;
    std::vector<bool> videoDecodable;
    std::vector<AudioTrack> audio;
    std::vector<bool> audioDecodable;
};

class IMediaReader
{
public:
    virtual ~IMediaReader() = default;
    // Reads the container and its streams' parameters. Safe to call from several threads
    // at once; never throws; gives up on an input that stalls for longer than `timeoutMs`.
    virtual ProbeResult probe(const QString& path, int timeoutMs) = 0;
};

using CreateFunction = IMediaReader* (*)();
constexpr const char* CreateFunctionName = "kvCreateMediaReader";

} // namespace Reader
} // namespace Media
