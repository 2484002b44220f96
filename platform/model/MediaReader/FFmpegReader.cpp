// The FFmpeg-backed reader of the media model, built as a run-time loaded module.
#include "Media/MediaReader_p.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/pixdesc.h>
}

#include <chrono>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;

// Numbers of Tavrin::Proc::TranscodingErrors; the module does not link the model, so they
// are repeated here.
enum Code {
    UnknownError = 8,
    UnsupportedCodec = 11,
    NoSpaceLeftOnDevice = 22,
    OutOfMemory = 34,
    AllocationFailed = 35,
    InputCorruptedOrMissing = 36,
};

int codeOf(int averror)
{
    switch (averror) {
    case AVERROR(ENOMEM):
        return OutOfMemory;
    case AVERROR(ENOSPC):
        return NoSpaceLeftOnDevice;
    case AVERROR_DECODER_NOT_FOUND:
    case AVERROR_PATCHWELCOME:
        return UnsupportedCodec;
    case AVERROR(ENOENT):
    case AVERROR(EACCES):
    case AVERROR(EPERM):
    case AVERROR(EISDIR):
    case AVERROR(ENOTDIR):
    case AVERROR(EIO):
    case AVERROR(ENXIO):
    case AVERROR_INVALIDDATA:
    case AVERROR_EOF:
    case AVERROR_STREAM_NOT_FOUND:
    case AVERROR_DEMUXER_NOT_FOUND:
    case AVERROR_EXIT: // the deadline passed: the file is as good as missing
        return InputCorruptedOrMissing;
    default:
        return UnknownError;
    }
}

std::string describe(int averror)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(averror, text, sizeof text);
    return text;
}

QString nameOrEmpty(const char* name)
{
    return name ? QString::fromLatin1(name) : QString();
}

struct Deadline
{
    Clock::time_point at;
};

int interrupted(void* opaque)
{
    return Clock::now() > static_cast<Deadline*>(opaque)->at ? 1 : 0;
}

struct CloseInput
{
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

class FFmpegReader final : public Media::Reader::IMediaReader
{
public:
    Media::Reader::ProbeResult probe(const QString& path, int timeoutMs) override
    {
        Media::Reader::ProbeResult result;
        AVFormatContext* raw = avformat_alloc_context();
        if (!raw) {
            result.error = AllocationFailed;
            result.errorMessage = "Cannot allocate a demuxer";
            return result;
        }
        Deadline deadline{Clock::now() + std::chrono::milliseconds(timeoutMs)};
        raw->interrupt_callback.callback = &interrupted;
        raw->interrupt_callback.opaque = &deadline;

        const QByteArray name = path.toUtf8();
        int rc = avformat_open_input(&raw, name.constData(), nullptr, nullptr); // frees raw on failure
        if (rc < 0) {
            result.error = codeOf(rc);
            result.errorMessage = describe(rc);
            return result;
        }
        std::unique_ptr<AVFormatContext, CloseInput> context(raw);
        rc = avformat_find_stream_info(context.get(), nullptr);
        if (rc < 0 && context->nb_streams == 0) {
            result.error = codeOf(rc);
            result.errorMessage = describe(rc);
            return result;
        }

        const AVInputFormat* format = context->iformat;
        result.format = nameOrEmpty(format->long_name ? format->long_name : format->name);
        result.formatId = nameOrEmpty(format->name);
        if (context->duration != AV_NOPTS_VALUE && context->duration > 0)
            result.duration = MediaTime::fromMicroseconds(av_rescale_q(context->duration, AV_TIME_BASE_Q, {1, 1000000}));
        result.bitRate = context->bit_rate;

        for (unsigned i = 0; i < context->nb_streams; ++i) {
            AVStream* stream = context->streams[i];
            const AVCodecParameters* parameters = stream->codecpar;
            const bool decodable = avcodec_find_decoder(parameters->codec_id) != nullptr;
            if (parameters->codec_type == AVMEDIA_TYPE_VIDEO) {
                Media::VideoTrack track;
                track.codecId = nameOrEmpty(avcodec_get_name(parameters->codec_id));
                track.frameSize = QSize(parameters->width, parameters->height);
                AVRational aspect = av_guess_sample_aspect_ratio(context.get(), stream, nullptr);
                if (aspect.num > 0 && aspect.den > 0) {
                    track.pixelAspectX = aspect.num;
                    track.pixelAspectY = aspect.den;
                }
                const AVRational rate = av_guess_frame_rate(context.get(), stream, nullptr);
                track.frameRate = rate.den > 0 ? av_q2d(rate) : 0.0;
                track.bitRate = parameters->bit_rate;
                if (parameters->color_trc != AVCOL_TRC_UNSPECIFIED)
                    track.transfer = nameOrEmpty(av_color_transfer_name(parameters->color_trc));
                if (parameters->color_primaries != AVCOL_PRI_UNSPECIFIED)
                    track.primaries = nameOrEmpty(av_color_primaries_name(parameters->color_primaries));
                track.pixelFormat = nameOrEmpty(av_get_pix_fmt_name(AVPixelFormat(parameters->format)));
                track.coverArt = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
                result.video.push_back(track);
                result.videoDecodable.push_back(decodable);
            } else if (parameters->codec_type == AVMEDIA_TYPE_AUDIO) {
                Media::AudioTrack track;
                track.codecId = nameOrEmpty(avcodec_get_name(parameters->codec_id));
                track.sampleRate = parameters->sample_rate;
                track.bitRate = parameters->bit_rate;
                track.channels = parameters->ch_layout.nb_channels;
                if (parameters->ch_layout.order == AV_CHANNEL_ORDER_NATIVE) {
                    track.channelLayout = parameters->ch_layout.u.mask;
                } else if (track.channels > 0) {
                    AVChannelLayout fallback;
                    av_channel_layout_default(&fallback, track.channels);
                    if (fallback.order == AV_CHANNEL_ORDER_NATIVE)
                        track.channelLayout = fallback.u.mask;
                    av_channel_layout_uninit(&fallback);
                }
                track.sampleFormat = nameOrEmpty(av_get_sample_fmt_name(AVSampleFormat(parameters->format)));
                result.audio.push_back(track);
                result.audioDecodable.push_back(decodable);
            }
        }
        return result;
    }
};

} // namespace

extern "C" Q_DECL_EXPORT Media::Reader::IMediaReader* kvCreateMediaReader()
{
    // The model logs every failure itself; FFmpeg's own lines would only repeat them.
    av_log_set_level(AV_LOG_QUIET);
    static FFmpegReader reader;
    return &reader;
}
