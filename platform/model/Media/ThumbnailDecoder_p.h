#pragma once

// The contract between the thumbnail service (Media/Thumbnails.cpp) and the picture decoder
// that lives in the run-time loaded reader module (libKvMediaReader.so) beside the probe
// (Media/MediaReader_p.h). Both sides are built from this tree with the same compiler, so
// C++ types cross the boundary; only the entry point has C linkage.

#include <QImage>

#include <string>
#include <vector>

namespace Media {
namespace Reader {

struct DecodedPicture
{
    // A Tavrin::Proc::TranscodingErrors value; 0 when a picture or a waveform was made.
    int error = 0;
    std::string errorMessage; // the engine's words, for logs
    // A frame of the main video track, fitted into the asked size, upright, square pixels.
    QImage frame;
    // For a file without a picture track: loudness peaks (0 to 1) of the first audio track,
    // evenly spread over the file, left to right.
    std::vector<float> peaks;
    qint64 durationMs = 0;
};

class IThumbnailDecoder
{
public:
    virtual ~IThumbnailDecoder() = default;
    // Decodes a representative picture of `path` (or its loudness) fitted into
    // `maxSize` x `maxSize`. Safe from several threads at once, never throws, gives up on an
    // input that stalls for longer than `timeoutMs`.
    virtual DecodedPicture decode(const QString& path, int maxSize, int timeoutMs) = 0;
};

using CreateThumbnailDecoderFunction = IThumbnailDecoder* (*)();
constexpr const char* CreateThumbnailDecoderFunctionName = "kvCreateThumbnailDecoder";

} // namespace Reader
} // namespace Media
