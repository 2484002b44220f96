// Owning pointers for the libav* objects the media reader's parts hold.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <memory>

namespace Media {
namespace Reader {

struct CloseInput
{
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct FreeDecoder
{
    void operator()(AVCodecContext* decoder) const { avcodec_free_context(&decoder); }
};
struct FreeFrame
{
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct FreePacket
{
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FreeParameters
{
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
};

using Input = std::unique_ptr<AVFormatContext, CloseInput>;
using Decoder = std::unique_ptr<AVCodecContext, FreeDecoder>;
using Frame = std::unique_ptr<AVFrame, FreeFrame>;
using Packet = std::unique_ptr<AVPacket, FreePacket>;
using Parameters = std::unique_ptr<AVCodecParameters, FreeParameters>;

} // namespace Reader
} // namespace Media
