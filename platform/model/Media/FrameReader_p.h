#pragma once

// The contract between the preview and the frame reader in the run-time loaded reader
// module (libKvMediaReader.so), beside the probe (Media/MediaReader_p.h) and the thumbnail
// decoder (Media/ThumbnailDecoder_p.h). Built from this tree with the same compiler, so C++
// types cross the boundary; only the entry point has C linkage.

#include <QImage>
#include <QString>

#include <memory>
#include <string>

namespace Media {
namespace Reader {

struct VideoFrame
{
    // A Tavrin::Proc::TranscodingErrors value; 0 when a picture was made.
    int error = 0;
    std::string errorMessage;
    // The frame shown at the asked time, its effects applied, fitted into the asked box.
    QImage image;
    qint64 ptsUs = -1;         // where the frame starts, from the start of the stream
    bool pastEnd = false;      // the time lies beyond the last frame: this is the last one
    bool decodingFailed = false; // the file stopped decoding before the asked time
};

// Reads the frames of one file's main picture track in order, seeking only when asked for
// a time behind it or far ahead. One instance serves one thread at a time.
class IFrameReader
{
public:
    virtual ~IFrameReader() = default;
    // The frame displayed at `timeUs` (exact, not the nearest key frame), rendered through
    // the libavfilter graph description `filters` (empty: none), fitted into `box`.
    virtual VideoFrame frameAt(qint64 timeUs, const std::string& filters, QSize box) = 0;
    virtual qint64 durationUs() const = 0;
    virtual double frameRate() const = 0;
};

// Null with `error` set when the file has no picture track that can be decoded.
using OpenFrameReaderFunction = IFrameReader* (*)(const QString& path, int timeoutMs, std::string* error);
constexpr const char* OpenFrameReaderFunctionName = "kvOpenFrameReader";

} // namespace Reader
} // namespace Media
