// The FFmpeg-backed reader of the media model, built as a run-time loaded module.
#include "Media/MediaReader_p.h"
#include "MediaReader/LibavPointers.h"
#include "MediaReader/StreamAnalysis.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

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
    // What demuxers return for impossible values in a damaged header (a frame 0 pixels wide).
    case AVERROR(EINVAL):
    case AVERROR(EBUSY):
    case AVERROR(ERANGE):
    case AVERROR(EOVERFLOW):
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
    const std::function<bool()>* cancelled;
};

int interrupted(void* opaque)
{
    const auto* deadline = static_cast<Deadline*>(opaque);
    return Clock::now() > deadline->at || (*deadline->cancelled && (*deadline->cancelled)()) ? 1 : 0;
}

qint64 microseconds(int64_t value, AVRational timeBase)
{
    return av_rescale_q(value, timeBase, AV_TIME_BASE_Q);
}

// The longest duration the streams report themselves.
MediaTime streamsDuration(const AVFormatContext* context)
{
    qint64 longest = 0;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        const AVStream* stream = context->streams[i];
        if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
            longest = std::max(longest, microseconds(stream->duration, stream->time_base));
    }
    return MediaTime::fromMicroseconds(longest);
}

int64_t startOf(const AVStream* stream)
{
    return stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
}

// Where the last packets end, as FFmpeg's tools establish a duration the headers do not
// give: from the index of an indexed container (its last two entries: the last packet's
// time and its length), else by reading the packets of the file's last part.
MediaTime packetsEnd(AVFormatContext* context, qint64 fileSize)
{
    qint64 end = 0;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        AVStream* stream = context->streams[i];
        const int count = avformat_index_get_entries_count(stream);
        const AVIndexEntry* last = count > 0 ? avformat_index_get_entry(stream, count - 1) : nullptr;
        if (!last || last->timestamp == AV_NOPTS_VALUE)
            continue;
        const AVIndexEntry* before = count > 1 ? avformat_index_get_entry(stream, count - 2) : nullptr;
        const int64_t length = before && before->timestamp != AV_NOPTS_VALUE ? last->timestamp - before->timestamp : 0;
        end = std::max(end, microseconds(last->timestamp - startOf(stream) + std::max<int64_t>(length, 0), stream->time_base));
    }
    if (end > 0)
        return MediaTime::fromMicroseconds(end);

    // A bounded read: enough for the last seconds of any stream, not a scan of a whole film.
    constexpr qint64 tailBytes = 4 << 20;
    constexpr int maxPackets = 20000;
    if (fileSize > tailBytes && context->pb && avio_seek(context->pb, fileSize - tailBytes, SEEK_SET) < 0)
        return MediaTime();
    AVPacket* packet = av_packet_alloc();
    if (!packet)
        return MediaTime();
    qint64 read = 0;
    for (int n = 0; n < maxPackets && read < 2 * tailBytes && av_read_frame(context, packet) >= 0; ++n) {
        read += packet->size;
        const int64_t at = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
        if (at != AV_NOPTS_VALUE && packet->stream_index >= 0 && unsigned(packet->stream_index) < context->nb_streams) {
            const AVStream* stream = context->streams[packet->stream_index];
            const int64_t length = packet->duration > 0 ? packet->duration : 0;
            end = std::max(end, microseconds(at - startOf(stream) + length, stream->time_base));
        }
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    return MediaTime::fromMicroseconds(end);
}

// The first plausible of: the container's figure, the streams' own, the packets' end.
MediaTime establishDuration(AVFormatContext* context, qint64 fileSize)
{
    using Media::Reader::plausibleDuration;
    if (context->duration != AV_NOPTS_VALUE && context->duration > 0) {
        const MediaTime container = MediaTime::fromMicroseconds(microseconds(context->duration, AV_TIME_BASE_Q));
        if (plausibleDuration(container, fileSize))
            return container;
    }
    const MediaTime streams = streamsDuration(context);
    if (plausibleDuration(streams, fileSize))
        return streams;
    const MediaTime packets = packetsEnd(context, fileSize);
    return plausibleDuration(packets, fileSize) ? packets : MediaTime();
}

// Picture demuxers read one still frame; a still picture has no duration to check.
bool isPictureDemuxer(const AVInputFormat* format)
{
    const std::string name = format->name ? format->name : "";
    const std::string suffix = "_pipe";
    return name == "image2"
        || (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0);
}

class FFmpegReader final : public Media::Reader::IMediaReader
{
public:
    Media::Reader::ProbeResult probe(const QString& path, int timeoutMs, const std::function<bool()>& cancelled) override
    {
        Media::Reader::ProbeResult result;
        AVFormatContext* raw = avformat_alloc_context();
        if (!raw) {
            result.error = AllocationFailed;
            result.errorMessage = "Cannot allocate a demuxer";
            return result;
        }
        Deadline deadline{Clock::now() + std::chrono::milliseconds(timeoutMs), &cancelled};
        raw->interrupt_callback.callback = &interrupted;
        raw->interrupt_callback.opaque = &deadline;

        const QByteArray name = path.toUtf8();
        int rc = avformat_open_input(&raw, name.constData(), nullptr, nullptr); // frees raw on failure
        if (rc < 0) {
            result.error = codeOf(rc);
            result.errorMessage = describe(rc);
            return result;
        }
        Media::Reader::Input context(raw);
        Media::Reader::StreamAnalysis analysis;
        rc = analysis.run(context.get());
        if (rc < 0 && context->nb_streams == 0) {
            result.error = codeOf(rc);
            result.errorMessage = describe(rc);
            return result;
        }

        const AVInputFormat* format = context->iformat;
        result.format = nameOrEmpty(format->long_name ? format->long_name : format->name);
        result.formatId = nameOrEmpty(format->name);
        result.fileSize = context->pb ? std::max<int64_t>(avio_size(context->pb), 0) : 0;
        result.stillPicture = isPictureDemuxer(format);
        result.bitRate = std::max<int64_t>(context->bit_rate, 0);

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
                const AVRational rate = analysis.frameRate(context.get(), stream);
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
        // Last: it may read packets, which moves the demuxer on.
        if (!result.stillPicture)
            result.duration = establishDuration(context.get(), result.fileSize);
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
