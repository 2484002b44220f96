// The preview side of the reader module: exact frames of a file's picture track, played in
// order or sought, rendered through libavfilter with the clip's effects.
#include "Media/FrameReader_p.h"
#include "MediaReader/LibavPointers.h"
#include "MediaReader/StreamAnalysis.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
}

#include <chrono>
#include <cstring>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;
using Media::Reader::VideoFrame;

enum Code { UnknownError = 8, InputCorruptedOrMissing = 36 };

// A request this far past the decoded position seeks instead of decoding up to it; within
// it, decoding on is cheaper than a seek back to the key frame before.
constexpr qint64 ForwardDecodeLimitUs = 2000000;
// Packets read without a frame before the file is taken as broken at that point.
constexpr int PacketBudget = 600;

std::string describe(int averror)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(averror, text, sizeof text);
    return text;
}

using Media::Reader::Frame;
struct FreeGraph { void operator()(AVFilterGraph* g) const { avfilter_graph_free(&g); } };

struct Deadline
{
    Clock::time_point at;
    int timeoutMs = 0;
    void restart() { at = Clock::now() + std::chrono::milliseconds(timeoutMs); }
};

int interrupted(void* opaque)
{
    return Clock::now() > static_cast<Deadline*>(opaque)->at ? 1 : 0;
}

class FrameReader final : public Media::Reader::IFrameReader
{
public:
    bool open(const QString& path, int timeoutMs, std::string* error)
    {
        m_deadline.timeoutMs = timeoutMs;
        m_deadline.restart();
        AVFormatContext* raw = avformat_alloc_context();
        if (!raw)
            return fail(error, "Cannot allocate a demuxer");
        raw->interrupt_callback.callback = &interrupted;
        raw->interrupt_callback.opaque = &m_deadline;
        int rc = avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr);
        if (rc < 0)
            return fail(error, describe(rc));
        m_input.reset(raw);
        Media::Reader::StreamAnalysis analysis;
        if ((rc = analysis.run(raw)) < 0 && raw->nb_streams == 0)
            return fail(error, describe(rc));
        for (unsigned i = 0; i < raw->nb_streams; ++i) {
            AVStream* stream = raw->streams[i];
            stream->discard = AVDISCARD_ALL;
            if (!m_stream && stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO
                && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC) && avcodec_find_decoder(stream->codecpar->codec_id))
                m_stream = stream;
        }
        if (!m_stream)
            return fail(error, "No picture track that can be decoded");
        m_stream->discard = AVDISCARD_DEFAULT;
        const AVCodec* codec = avcodec_find_decoder(m_stream->codecpar->codec_id);
        m_decoder.reset(avcodec_alloc_context3(codec));
        if (!m_decoder || avcodec_parameters_to_context(m_decoder.get(), m_stream->codecpar) < 0)
            return fail(error, "Cannot set up the decoder");
        // Playback of high-definition video needs both cores; slice threads add no delay
        // before the one frame a seek wants, frame threads would.
        m_decoder->thread_count = 2;
        m_decoder->thread_type = FF_THREAD_SLICE | FF_THREAD_FRAME;
        m_decoder->pkt_timebase = m_stream->time_base;
        if ((rc = avcodec_open2(m_decoder.get(), codec, nullptr)) < 0)
            return fail(error, describe(rc));
        m_startTs = m_stream->start_time != AV_NOPTS_VALUE ? m_stream->start_time : 0;
        if (raw->duration > 0)
            m_durationUs = raw->duration;
        else if (m_stream->duration > 0)
            m_durationUs = av_rescale_q(m_stream->duration, m_stream->time_base, AVRational{1, 1000000});
        const AVRational rate = analysis.frameRate(raw, m_stream);
        m_frameRate = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 25.0;
        m_packet.reset(av_packet_alloc());
        m_current.reset(av_frame_alloc());
        m_next.reset(av_frame_alloc());
        return m_packet && m_current && m_next;
    }

    qint64 durationUs() const override { return m_durationUs; }
    double frameRate() const override { return m_frameRate; }

    VideoFrame frameAt(qint64 timeUs, const std::string& filters, QSize box) override
    {
        m_deadline.restart();
        VideoFrame result;
        timeUs = std::max<qint64>(0, timeUs);
        const bool behind = m_currentPts < 0 || timeUs < m_currentPts;
        const bool farAhead = m_currentPts >= 0 && timeUs > std::max(m_currentPts, m_nextPts) + ForwardDecodeLimitUs
            && keyFrameBetween(std::max(m_currentPts, m_nextPts), timeUs);
        if (behind || farAhead)
            seek(timeUs);
        decodeUpTo(timeUs);
        if (m_currentPts < 0 && timeUs > 0) {
            // Nothing from the key frame on: it lies where the file is damaged or cut off;
            // decode from the start instead, up to where it breaks, and show the last frame
            // that could be decoded.
            seek(0);
            decodeUpTo(timeUs);
        }
        if (m_currentPts < 0) {
            result.error = InputCorruptedOrMissing;
            result.errorMessage = m_problem.empty() ? std::string("No picture could be decoded") : m_problem;
            result.decodingFailed = true;
            return result;
        }
        result.ptsUs = m_currentPts;
        result.pastEnd = m_ended && m_nextPts < 0 && timeUs >= m_currentPts;
        result.decodingFailed = m_broken && m_nextPts < 0;
        if (result.decodingFailed)
            result.errorMessage = m_problem;
        result.image = render(m_current.get(), filters, box, result.errorMessage);
        if (result.image.isNull() && result.error == 0)
            result.error = UnknownError;
        return result;
    }

    // Whether a key frame lies after `fromUs` and at or before `toUs`. Without one, a seek
    // would land behind the decoded position and decode everything again: a decoder that
    // fell behind during playback with long key-frame intervals would never catch up. A
    // stream without an index is taken to have one.
    bool keyFrameBetween(qint64 fromUs, qint64 toUs) const
    {
        const int64_t target = m_startTs + av_rescale_q(toUs, AVRational{1, 1000000}, m_stream->time_base);
        const int index = av_index_search_timestamp(m_stream, target, AVSEEK_FLAG_BACKWARD);
        const AVIndexEntry* entry = index >= 0 ? avformat_index_get_entry(m_stream, index) : nullptr;
        if (!entry)
            return avformat_index_get_entries_count(m_stream) == 0;
        return av_rescale_q(entry->timestamp - m_startTs, m_stream->time_base, AVRational{1, 1000000}) > fromUs;
    }

    // Decodes on until the next frame starts after `timeUs`.
    void decodeUpTo(qint64 timeUs)
    {
        while (!m_ended && (m_nextPts < 0 || m_nextPts <= timeUs)) {
            if (m_nextPts >= 0) {
                std::swap(m_current, m_next);
                m_currentPts = m_nextPts;
                m_nextPts = -1;
            }
            if (!decodeNext())
                break;
        }
        // The stream ended right after it, or its first frame starts after the asked time.
        if (m_nextPts >= 0 && (m_nextPts <= timeUs || m_currentPts < 0)) {
            std::swap(m_current, m_next);
            m_currentPts = m_nextPts;
            m_nextPts = -1;
        }
    }

private:
    static bool fail(std::string* error, std::string message)
    {
        if (error)
            *error = std::move(message);
        return false;
    }

    qint64 ptsOf(const AVFrame* frame) const
    {
        const int64_t ts = frame->best_effort_timestamp != AV_NOPTS_VALUE ? frame->best_effort_timestamp : frame->pts;
        if (ts == AV_NOPTS_VALUE)
            return m_currentPts < 0 ? 0 : m_currentPts + qint64(1e6 / m_frameRate);
        return av_rescale_q(ts - m_startTs, m_stream->time_base, AVRational{1, 1000000});
    }

    void seek(qint64 timeUs)
    {
        const int64_t target = m_startTs + av_rescale_q(timeUs, AVRational{1, 1000000}, m_stream->time_base);
        if (av_seek_frame(m_input.get(), m_stream->index, target, AVSEEK_FLAG_BACKWARD) < 0)
            av_seek_frame(m_input.get(), m_stream->index, m_startTs, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_ANY);
        avcodec_flush_buffers(m_decoder.get());
        m_currentPts = m_nextPts = -1;
        m_ended = m_draining = m_broken = false;
        m_problem.clear();
    }

    // Decodes the next frame into m_next; false at the end of the stream or when it broke.
    bool decodeNext()
    {
        int packets = 0;
        for (;;) {
            const int got = avcodec_receive_frame(m_decoder.get(), m_next.get());
            if (got == 0) {
                m_nextPts = ptsOf(m_next.get());
                // Frames from before a seek's target but behind the current one come from
                // reordering at a broken point: never go back in time.
                if (m_currentPts >= 0 && m_nextPts <= m_currentPts) {
                    av_frame_unref(m_next.get());
                    m_nextPts = -1;
                    continue;
                }
                return true;
            }
            if (got == AVERROR_EOF || m_draining) {
                m_ended = true;
                return false;
            }
            if (++packets > PacketBudget) {
                breakOff("No picture in " + std::to_string(PacketBudget) + " packets");
                return false;
            }
            const int read = av_read_frame(m_input.get(), m_packet.get());
            if (read < 0) {
                if (read != AVERROR_EOF)
                    m_broken = true, m_problem = describe(read);
                m_draining = true;
                avcodec_send_packet(m_decoder.get(), nullptr);
                continue;
            }
            if (m_packet->stream_index == m_stream->index) {
                const int sent = avcodec_send_packet(m_decoder.get(), m_packet.get());
                if (sent < 0 && sent != AVERROR(EAGAIN))
                    m_problem = describe(sent);
            }
            av_packet_unref(m_packet.get());
        }
    }

    void breakOff(std::string why)
    {
        m_broken = true;
        m_ended = true;
        m_problem = std::move(why);
    }

    bool buildGraph(const AVFrame* frame, const std::string& filters, QSize box, std::string& problem)
    {
        m_graph.reset(avfilter_graph_alloc());
        if (!m_graph)
            return false;
        // Filters run on this thread; the decoder already has the other core.
        m_graph->nb_threads = 1;
        const AVRational sar = frame->sample_aspect_ratio.num > 0 ? frame->sample_aspect_ratio : AVRational{1, 1};
        char args[256];
        std::snprintf(args, sizeof args, "video_size=%dx%d:pix_fmt=%d:time_base=1/1000000:pixel_aspect=%d/%d",
                      frame->width, frame->height, frame->format, sar.num, sar.den);
        int rc = avfilter_graph_create_filter(&m_source, avfilter_get_by_name("buffer"), "in", args, nullptr, m_graph.get());
        if (rc >= 0)
            rc = avfilter_graph_create_filter(&m_sink, avfilter_get_by_name("buffersink"), "out", nullptr, nullptr, m_graph.get());
        if (rc < 0) {
            problem = describe(rc);
            return false;
        }
        // Square pixels first, so that the effects and the fitting see the picture as shown.
        std::string chain = sar.num != sar.den ? "scale=w=trunc(iw*sar/2)*2:h=ih,setsar=1," : "";
        if (!filters.empty())
            chain += filters + ",";
        chain += "scale=w=" + std::to_string(box.width()) + ":h=" + std::to_string(box.height())
            + ":force_original_aspect_ratio=decrease:flags=bilinear,setsar=1,format=bgra";
        AVFilterInOut* outputs = avfilter_inout_alloc();
        AVFilterInOut* inputs = avfilter_inout_alloc();
        outputs->name = av_strdup("in");
        outputs->filter_ctx = m_source;
        inputs->name = av_strdup("out");
        inputs->filter_ctx = m_sink;
        rc = avfilter_graph_parse_ptr(m_graph.get(), chain.c_str(), &inputs, &outputs, nullptr);
        avfilter_inout_free(&inputs);
        avfilter_inout_free(&outputs);
        if (rc >= 0)
            rc = avfilter_graph_config(m_graph.get(), nullptr);
        if (rc < 0) {
            problem = "Effects \"" + filters + "\": " + describe(rc);
            m_graph.reset();
            return false;
        }
        m_graphKey = {filters, box, frame->width, frame->height, frame->format};
        return true;
    }

    QImage render(AVFrame* frame, const std::string& filters, QSize box, std::string& problem)
    {
        box = box.isValid() && !box.isEmpty() ? box : QSize(frame->width, frame->height);
        const GraphKey key{filters, box, frame->width, frame->height, frame->format};
        if (!m_graph || !(key == m_graphKey)) {
            if (!buildGraph(frame, filters, box, problem)) {
                // Effects the filters cannot render (a damaged description) leave the
                // picture as it is rather than none.
                if (filters.empty() || !buildGraph(frame, std::string(), box, problem))
                    return QImage();
            }
        }
        Frame input(av_frame_clone(frame));
        Frame output(av_frame_alloc());
        if (!input || !output)
            return QImage();
        input->pts = 0;
        if (av_buffersrc_add_frame_flags(m_source, input.get(), AV_BUFFERSRC_FLAG_KEEP_REF) < 0
            || av_buffersink_get_frame(m_sink, output.get()) < 0)
            return QImage();
        QImage image(output->width, output->height, QImage::Format_RGB32);
        if (image.isNull())
            return image;
        const int bytes = output->width * 4;
        for (int y = 0; y < output->height; ++y)
            std::memcpy(image.scanLine(y), output->data[0] + std::ptrdiff_t(y) * output->linesize[0], std::size_t(bytes));
        return image;
    }

    struct GraphKey
    {
        std::string filters;
        QSize box;
        int width = 0, height = 0, format = -1;
        bool operator==(const GraphKey& o) const
        {
            return filters == o.filters && box == o.box && width == o.width && height == o.height && format == o.format;
        }
    };

    Deadline m_deadline;
    Media::Reader::Input m_input;
    AVStream* m_stream = nullptr;
    Media::Reader::Decoder m_decoder;
    Media::Reader::Packet m_packet;
    Frame m_current;
    Frame m_next;
    qint64 m_currentPts = -1;
    qint64 m_nextPts = -1;
    bool m_ended = false;
    bool m_draining = false;
    bool m_broken = false;
    std::string m_problem;
    int64_t m_startTs = 0;
    qint64 m_durationUs = 0;
    double m_frameRate = 25.0;
    std::unique_ptr<AVFilterGraph, FreeGraph> m_graph;
    AVFilterContext* m_source = nullptr;
    AVFilterContext* m_sink = nullptr;
    GraphKey m_graphKey;
};

} // namespace

extern "C" Q_DECL_EXPORT Media::Reader::IFrameReader* kvOpenFrameReader(const QString& path, int timeoutMs, std::string* error)
{
    av_log_set_level(AV_LOG_QUIET);
    auto reader = std::make_unique<FrameReader>();
    if (!reader->open(path, timeoutMs, error))
        return nullptr;
    return reader.release();
}
