#include "MediaReader/StreamAnalysis.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace Media {
namespace Reader {

namespace {

// Refuses every picture buffer. A decoder asks for one only after it has read the picture's
// headers and settled what it would output, which is all a probe needs; the picture itself
// (the costly part of opening a file, 5 ms for 1080p) is never decoded.
int refusePicture(AVCodecContext* decoder, AVFrame*, int)
{
    *static_cast<bool*>(decoder->opaque) = true;
    return AVERROR(ECANCELED);
}

} // namespace

std::optional<PictureHeader> StreamAnalysis::readPictureHeader(AVFormatContext* context, AVStream* stream)
{
    const AVCodecParameters* parameters = stream->codecpar;
    const std::string demuxer = context->iformat->name ? context->iformat->name : "";
    if (parameters->codec_type != AVMEDIA_TYPE_VIDEO || parameters->codec_id != AV_CODEC_ID_H264
        || demuxer.compare(0, 4, "mov,") != 0 || !context->pb || (stream->disposition & AV_DISPOSITION_ATTACHED_PIC))
        return std::nullopt;
    // The decoder FFmpeg's analysis itself uses for H.264, whatever else is registered.
    const AVCodec* codec = avcodec_find_decoder_by_name("h264");
    if (avformat_index_get_entries_count(stream) <= 0 || !codec || !(codec->capabilities & AV_CODEC_CAP_DR1))
        return std::nullopt;
    Decoder decoder(avcodec_alloc_context3(codec));
    Packet packet(av_packet_alloc());
    bool settled = false;
    if (!decoder || !packet || avcodec_parameters_to_context(decoder.get(), parameters) < 0)
        return std::nullopt;
    decoder->thread_count = 1;
    decoder->get_buffer2 = &refusePicture;
    decoder->opaque = &settled;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return std::nullopt;

    // Only a first picture that is a key picture: it settles the headers as the analysis'
    // own decoder would. A stream that starts otherwise, or whose first picture is damaged,
    // is analysed the usual way. The demuxer seeks to each sample it reads, so borrowing its
    // reader here leaves the analysis where it was; its position is put back all the same.
    // A damaged index may claim any size: none beyond the file's end is believed.
    constexpr int64_t maxBytes = 64 << 20;
    const int64_t fileSize = avio_size(context->pb);
    const AVIndexEntry* first = avformat_index_get_entry(stream, 0);
    if (!first || !(first->flags & AVINDEX_KEYFRAME) || first->size <= 0 || first->size > maxBytes || first->pos < 0
        || (fileSize > 0 && first->pos + first->size > fileSize) || av_new_packet(packet.get(), first->size) < 0)
        return std::nullopt;
    const int64_t position = avio_tell(context->pb);
    if (avio_seek(context->pb, first->pos, SEEK_SET) == first->pos
        && avio_read(context->pb, packet->data, first->size) == first->size)
        avcodec_send_packet(decoder.get(), packet.get()); // fails once the buffer is refused
    avio_seek(context->pb, position, SEEK_SET);
    if (!settled || decoder->pix_fmt == AV_PIX_FMT_NONE || decoder->width <= 0 || decoder->height <= 0)
        return std::nullopt;

    PictureHeader header;
    header.parameters.reset(avcodec_parameters_alloc());
    if (!header.parameters || avcodec_parameters_from_context(header.parameters.get(), decoder.get()) < 0)
        return std::nullopt;
    header.frameRate = decoder->framerate;
    header.ticksPerFrame = decoder->ticks_per_frame;
    return header;
}

namespace {

// Hands the analysis what the stream's decoder settled from the headers, as its own
// decoder would have found it; the rest (extradata, tags, rates) stays the container's.
void applyPictureHeader(AVCodecParameters* parameters, const AVCodecParameters& settled)
{
    parameters->format = settled.format;
    parameters->width = settled.width;
    parameters->height = settled.height;
    parameters->sample_aspect_ratio = settled.sample_aspect_ratio;
    parameters->color_range = settled.color_range;
    parameters->color_primaries = settled.color_primaries;
    parameters->color_trc = settled.color_trc;
    parameters->color_space = settled.color_space;
    parameters->chroma_location = settled.chroma_location;
    parameters->field_order = settled.field_order;
    parameters->profile = settled.profile;
    parameters->level = settled.level;
    parameters->bits_per_raw_sample = settled.bits_per_raw_sample;
}

// KLIPVANE_FULL_STREAM_ANALYSIS=1 analyses every stream as FFmpeg's tools do: a way back
// should a file ever be described differently, and the reference the benchmark measures.
bool fullAnalysisWanted()
{
    const char* value = std::getenv("KLIPVANE_FULL_STREAM_ANALYSIS");
    return value && std::strcmp(value, "1") == 0;
}

} // namespace

int StreamAnalysis::run(AVFormatContext* context)
{
    m_headers.clear();
    m_headers.resize(context->nb_streams);
    static const bool full = fullAnalysisWanted();
    if (full)
        return avformat_find_stream_info(context, nullptr);
    std::vector<AVDictionary*> options(context->nb_streams, nullptr);
    bool anyHeader = false;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        m_headers[i] = readPictureHeader(context, context->streams[i]);
        if (m_headers[i]) {
            applyPictureHeader(context->streams[i]->codecpar, *m_headers[i]->parameters);
            av_dict_set(&options[i], "skip_frame", "all", 0);
            anyHeader = true;
        }
    }
    const int rc = avformat_find_stream_info(context, anyHeader ? options.data() : nullptr);
    for (AVDictionary*& dictionary : options)
        av_dict_free(&dictionary);
    return rc;
}

// A codec rate counts when the container gives none, or gives the field rate of
// interlaced pictures.
AVRational StreamAnalysis::frameRate(AVFormatContext* context, AVStream* stream) const
{
    const int index = stream->index;
    if (index < 0 || size_t(index) >= m_headers.size() || !m_headers[size_t(index)])
        return av_guess_frame_rate(context, stream, nullptr);
    const std::optional<PictureHeader>& header = m_headers[size_t(index)];
    AVRational rate = stream->r_frame_rate;
    const AVRational average = stream->avg_frame_rate;
    if (average.num > 0 && average.den > 0 && rate.num > 0 && rate.den > 0 && av_q2d(average) < 70 && av_q2d(rate) > 210)
        rate = average;
    const AVRational codec = header->frameRate;
    if (header->ticksPerFrame > 1 && codec.num > 0 && codec.den > 0
        && (rate.num == 0
            || (av_q2d(codec) < av_q2d(rate) * 0.7 && std::fabs(1.0 - av_q2d(av_div_q(average, rate))) > 0.1)))
        rate = codec;
    return rate;
}

} // namespace Reader
} // namespace Media
