// The analysis of an opened file's streams, shared by the media reader's probe, the
// thumbnails' picture decoder and the preview's frame reader.
#pragma once

#include "MediaReader/LibavPointers.h"

#include <optional>
#include <vector>

namespace Media {
namespace Reader {

// What an H.264 decoder settles from a stream's first picture headers: the output format,
// the picture's size and aspect, its colours (all in PARAMETERS) and the codec's frame rate.
struct PictureHeader
{
    Parameters parameters;
    AVRational frameRate{0, 1};
    int ticksPerFrame = 1;
};

// avformat_find_stream_info without its costliest part. FFmpeg's analysis of an H.264
// stream decodes its first pictures (seven when it has no B-frames, as most cameras' and
// phones' footage) to learn the pixel format and the decoder's delay. In an indexed container
// the first picture's bytes are known before the analysis, so its headers are read here
// through the same decoder, without decoding the picture, and the analysis then skips every
// picture of that stream. Other codecs, and containers without an index, are analysed as
// FFmpeg's tools do. What the analysis leaves in the streams' parameters is the same either
// way.
class StreamAnalysis
{
public:
    // avformat_find_stream_info's result.
    int run(AVFormatContext* context);
    // av_guess_frame_rate, with the codec's rate taken from the headers where the analysis'
    // own decoder skipped the pictures that would have told it.
    AVRational frameRate(AVFormatContext* context, AVStream* stream) const;

    // The headers of a stream's first picture, if its codec and container allow reading
    // them ahead of the analysis.
    static std::optional<PictureHeader> readPictureHeader(AVFormatContext* context, AVStream* stream);

private:
    std::vector<std::optional<PictureHeader>> m_headers;
};

} // namespace Reader
} // namespace Media
