// The picture side of the reader module: one representative frame of a video, or the
// loudness of an audio file, for the thumbnail service (Media/Thumbnails.cpp).
#include "Media/ThumbnailDecoder_p.h"
#include "MediaReader/LibavPointers.h"
#include "MediaReader/StreamAnalysis.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libswscale/swscale.h>
}

#include <QTransform>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;
using Media::Reader::DecodedPicture;

// Numbers of Tavrin::Proc::TranscodingErrors (the module does not link the model).
enum Code { UnknownError = 8, UnsupportedCodec = 11, InputCorruptedOrMissing = 36 };

// Where in a video the picture is taken: a tenth of the way in skips title fades and the
// black first frames most recordings start with, and still shows the opening scene.
constexpr double RepresentativeFraction = 0.1;
// Frames darker or flatter than this are passed over for a later key frame.
constexpr double DarkMeanLuma = 24.0;
constexpr double FlatLumaDeviation = 6.0;
constexpr int FrameCandidates = 6;
// Packets of the picture track read after the seek before giving up on finding a frame.
constexpr int PacketBudget = 1500;
// Columns of a waveform, and the length above which the audio is sampled at that many
// places instead of decoded whole.
constexpr int WaveformColumns = 100;
constexpr qint64 SampledAudioAboveMs = 120000;

struct Deadline
{
    Clock::time_point at;
};

int interrupted(void* opaque)
{
    return Clock::now() > static_cast<Deadline*>(opaque)->at ? 1 : 0;
}

std::string describe(int averror)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(averror, text, sizeof text);
    return text;
}

DecodedPicture failure(int code, std::string message)
{
    DecodedPicture result;
    result.error = code;
    result.errorMessage = std::move(message);
    return result;
}

struct FreeScaler
{
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using Media::Reader::Decoder;
using Media::Reader::Frame;
using Media::Reader::Input;
using Media::Reader::Packet;

Decoder openDecoder(const AVStream* stream, std::string& problem)
{
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec) {
        problem = "No decoder for " + std::string(avcodec_get_name(stream->codecpar->codec_id));
        return nullptr;
    }
    Decoder context(avcodec_alloc_context3(codec));
    if (!context || avcodec_parameters_to_context(context.get(), stream->codecpar) < 0) {
        problem = "Cannot set up the decoder";
        return nullptr;
    }
    // Files are decoded side by side on the service's threads; a decoder's own frame threads
    // would only add latency to the one frame we want.
    context->thread_count = 1;
    context->pkt_timebase = stream->time_base;
    const int rc = avcodec_open2(context.get(), codec, nullptr);
    if (rc < 0) {
        problem = describe(rc);
        return nullptr;
    }
    return context;
}

// Display size of a frame: square pixels, fitted into maxSize x maxSize, never enlarged.
QSize fittedSize(const AVFrame* frame, AVRational aspect, int maxSize)
{
    double width = frame->width;
    if (aspect.num > 0 && aspect.den > 0)
        width = width * aspect.num / aspect.den;
    const double scale = std::min({1.0, maxSize / width, maxSize / double(frame->height)});
    return QSize(std::max(1, int(std::lround(width * scale))), std::max(1, int(std::lround(frame->height * scale))));
}

QImage toImage(const AVFrame* frame, QSize size)
{
    std::unique_ptr<SwsContext, FreeScaler> scaler(sws_getContext(frame->width, frame->height, AVPixelFormat(frame->format),
                                                                   size.width(), size.height(), AV_PIX_FMT_RGB32,
                                                                   SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        return QImage();
    // Untagged high-definition video is BT.709 in practice; swscale would assume BT.601.
    int colorspace = frame->colorspace;
    if (colorspace == AVCOL_SPC_UNSPECIFIED)
        colorspace = frame->height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_BT470BG;
    const int fullRange = frame->color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(colorspace), fullRange,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
    // AV_PIX_FMT_RGB32 is QImage's 0xAARRGGBB word in native byte order.
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    uint8_t* planes[4] = {image.bits(), nullptr, nullptr, nullptr};
    int strides[4] = {int(image.bytesPerLine()), 0, 0, 0};
    sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, planes, strides);
    return image;
}

// How interesting a picture is: its mean luma and how much it varies.
struct Interest
{
    double mean = 0;
    double deviation = 0;
    bool isDull() const { return mean < DarkMeanLuma || deviation < FlatLumaDeviation; }
};

Interest interestOf(const QImage& image)
{
    double sum = 0;
    double squares = 0;
    int count = 0;
    for (int y = 0; y < image.height(); y += 2) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); x += 2) {
            const double luma = 0.2126 * qRed(line[x]) + 0.7152 * qGreen(line[x]) + 0.0722 * qBlue(line[x]);
            sum += luma;
            squares += luma * luma;
            ++count;
        }
    }
    Interest interest;
    if (count > 0) {
        interest.mean = sum / count;
        interest.deviation = std::sqrt(std::max(0.0, squares / count - interest.mean * interest.mean));
    }
    return interest;
}

// Degrees a frame is turned clockwise to stand upright (phones record sideways and say so).
int uprightRotation(const AVStream* stream)
{
    const uint8_t* matrix = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (!matrix)
        return 0;
    const double angle = -av_display_rotation_get(reinterpret_cast<const int32_t*>(matrix));
    if (std::isnan(angle))
        return 0;
    return ((int(std::lround(angle / 90.0)) * 90) % 360 + 360) % 360;
}

class FrameSearch
{
public:
    FrameSearch(AVFormatContext* input, AVStream* stream, AVCodecContext* decoder, int maxSize)
        : m_input(input), m_stream(stream), m_decoder(decoder), m_maxSize(maxSize)
    {
    }

    // Reads from the current position; only key frames are decoded unless `everyFrame`
    // (some streams mark no key frames at all). True when a picture was found.
    bool run(bool everyFrame)
    {
        Packet packet(av_packet_alloc());
        Frame frame(av_frame_alloc());
        if (!packet || !frame)
            return false;
        int packets = 0;
        bool ended = false;
        while (!ended && packets < PacketBudget) {
            if (av_read_frame(m_input, packet.get()) < 0) {
                ended = true;
                avcodec_send_packet(m_decoder, nullptr);
            } else {
                const bool ours = packet->stream_index == m_stream->index;
                packets += ours ? 1 : 0;
                const bool wanted = ours && (everyFrame || (packet->flags & AV_PKT_FLAG_KEY));
                const int sent = wanted ? avcodec_send_packet(m_decoder, packet.get()) : 0;
                av_packet_unref(packet.get());
                if (!wanted)
                    continue;
                if (sent < 0) {
                    m_lastError = sent;
                    continue;
                }
                // A key frame needs no other: draining hands it out now rather than after
                // the decoder's reordering delay, which would take further key frames.
                if (!everyFrame)
                    avcodec_send_packet(m_decoder, nullptr);
            }
            bool found = false;
            while (!found && avcodec_receive_frame(m_decoder, frame.get()) == 0) {
                found = consider(frame.get());
                av_frame_unref(frame.get());
            }
            if (found)
                return true;
            if (!everyFrame && !ended)
                avcodec_flush_buffers(m_decoder); // drained: ready for the next key frame
        }
        return !m_best.isNull();
    }

    QImage best() const { return m_best; }
    int lastError() const { return m_lastError; }

private:
    bool consider(const AVFrame* frame)
    {
        QImage image = toImage(frame, fittedSize(frame, av_guess_sample_aspect_ratio(m_input, m_stream, const_cast<AVFrame*>(frame)), m_maxSize));
        if (image.isNull())
            return false;
        const Interest interest = interestOf(image);
        ++m_candidates;
        if (m_best.isNull() || interest.deviation + interest.mean / 4 > m_bestScore) {
            m_best = image;
            m_bestScore = interest.deviation + interest.mean / 4;
        }
        if (!interest.isDull())
            m_best = image;
        return !interest.isDull() || m_candidates >= FrameCandidates;
    }

    AVFormatContext* m_input;
    AVStream* m_stream;
    AVCodecContext* m_decoder;
    int m_maxSize;
    QImage m_best;
    double m_bestScore = -1;
    int m_candidates = 0;
    int m_lastError = 0;
};

qint64 durationMsOf(const AVFormatContext* input, const AVStream* stream)
{
    if (input->duration != AV_NOPTS_VALUE && input->duration > 0)
        return input->duration / 1000;
    if (stream && stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
        return av_rescale_q(stream->duration, stream->time_base, {1, 1000});
    return 0;
}

DecodedPicture decodeFrame(AVFormatContext* input, AVStream* stream, int maxSize)
{
    std::string problem;
    Decoder decoder = openDecoder(stream, problem);
    if (!decoder)
        return failure(UnsupportedCodec, problem);
    FrameSearch search(input, stream, decoder.get(), maxSize);
    const qint64 durationMs = durationMsOf(input, stream);
    const qint64 targetMs = qint64(durationMs * RepresentativeFraction);
    if (targetMs > 0) {
        const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
        const int64_t target = start + av_rescale_q(targetMs, {1, 1000}, stream->time_base);
        av_seek_frame(input, stream->index, target, AVSEEK_FLAG_BACKWARD);
    }
    if (!search.run(false) || search.best().isNull()) {
        // Nothing after the seek: read from the start, every frame.
        avformat_seek_file(input, -1, INT64_MIN, 0, 0, 0);
        avcodec_flush_buffers(decoder.get());
        search.run(true);
    }
    if (search.best().isNull())
        return failure(InputCorruptedOrMissing,
                       search.lastError() ? describe(search.lastError()) : std::string("No picture could be decoded"));
    DecodedPicture result;
    result.frame = search.best();
    if (const int rotation = uprightRotation(stream))
        result.frame = result.frame.transformed(QTransform().rotate(rotation));
    result.durationMs = durationMs;
    return result;
}

// The largest absolute sample of a frame, 0 to 1, over all channels.
float peakOf(const AVFrame* frame)
{
    const auto format = AVSampleFormat(frame->format);
    const bool planar = av_sample_fmt_is_planar(format);
    const int channels = frame->ch_layout.nb_channels;
    const int planes = planar ? channels : 1;
    const int count = planar ? frame->nb_samples : frame->nb_samples * channels;
    float peak = 0;
    for (int p = 0; p < planes; ++p) {
        const uint8_t* data = frame->extended_data[p];
        for (int i = 0; i < count; ++i) {
            float value = 0;
            switch (av_get_packed_sample_fmt(format)) {
            case AV_SAMPLE_FMT_U8: value = (data[i] - 128) / 128.0f; break;
            case AV_SAMPLE_FMT_S16: value = reinterpret_cast<const int16_t*>(data)[i] / 32768.0f; break;
            case AV_SAMPLE_FMT_S32: value = float(reinterpret_cast<const int32_t*>(data)[i] / 2147483648.0); break;
            case AV_SAMPLE_FMT_S64: value = float(double(reinterpret_cast<const int64_t*>(data)[i]) / 9.2233720368547758e18); break;
            case AV_SAMPLE_FMT_FLT: value = reinterpret_cast<const float*>(data)[i]; break;
            case AV_SAMPLE_FMT_DBL: value = float(reinterpret_cast<const double*>(data)[i]); break;
            default: return 0;
            }
            peak = std::max(peak, std::fabs(value));
        }
    }
    return std::min(peak, 1.0f);
}

// Decodes frames of `stream` until `enough` says so or the input ends; each frame's peak
// goes to `take`.
template <class Take, class Enough>
void readPeaks(AVFormatContext* input, AVStream* stream, AVCodecContext* decoder, Take take, Enough enough)
{
    Packet packet(av_packet_alloc());
    Frame frame(av_frame_alloc());
    if (!packet || !frame)
        return;
    bool ended = false;
    while (!ended && !enough()) {
        if (av_read_frame(input, packet.get()) < 0) {
            ended = true;
            avcodec_send_packet(decoder, nullptr);
        } else {
            const bool ours = packet->stream_index == stream->index;
            if (ours)
                avcodec_send_packet(decoder, packet.get());
            av_packet_unref(packet.get());
            if (!ours)
                continue;
        }
        while (avcodec_receive_frame(decoder, frame.get()) == 0) {
            take(peakOf(frame.get()), frame->nb_samples);
            av_frame_unref(frame.get());
        }
    }
}

DecodedPicture decodeLoudness(AVFormatContext* input, AVStream* stream)
{
    std::string problem;
    Decoder decoder = openDecoder(stream, problem);
    if (!decoder)
        return failure(UnsupportedCodec, problem);
    DecodedPicture result;
    result.durationMs = durationMsOf(input, stream);
    result.peaks.assign(WaveformColumns, 0.0f);
    if (result.durationMs > SampledAudioAboveMs) {
        // A long recording is sampled: a short stretch at each column's place.
        const int sampleRate = std::max(1, decoder->sample_rate);
        for (int column = 0; column < WaveformColumns; ++column) {
            const int64_t at = av_rescale(result.durationMs * column / WaveformColumns, AV_TIME_BASE, 1000);
            if (avformat_seek_file(input, -1, INT64_MIN, at, at, 0) < 0)
                break;
            avcodec_flush_buffers(decoder.get());
            int samples = 0;
            float& peak = result.peaks[std::size_t(column)];
            readPeaks(input, stream, decoder.get(),
                      [&](float p, int n) { peak = std::max(peak, p); samples += n; },
                      [&] { return samples >= sampleRate / 10; });
        }
    } else {
        std::vector<std::pair<float, int>> frames;
        readPeaks(input, stream, decoder.get(), [&](float p, int n) { frames.emplace_back(p, n); }, [] { return false; });
        qint64 total = 0;
        for (const auto& f : frames)
            total += f.second;
        // Each frame covers the columns of its stretch of time; a short clip has fewer
        // frames than columns.
        qint64 position = 0;
        for (const auto& [peak, samples] : frames) {
            const qint64 first = total > 0 ? position * WaveformColumns / total : 0;
            position += samples;
            const qint64 last = total > 0 ? (position * WaveformColumns + total - 1) / total - 1 : 0;
            for (qint64 column = first; column <= std::min<qint64>(std::max(first, last), WaveformColumns - 1); ++column)
                result.peaks[std::size_t(column)] = std::max(result.peaks[std::size_t(column)], peak);
        }
        if (frames.empty())
            return failure(InputCorruptedOrMissing, "No sound could be decoded");
    }
    return result;
}

class PictureDecoder final : public Media::Reader::IThumbnailDecoder
{
public:
    DecodedPicture decode(const QString& path, int maxSize, int timeoutMs) override
    {
        AVFormatContext* raw = avformat_alloc_context();
        if (!raw)
            return failure(UnknownError, "Cannot allocate a demuxer");
        Deadline deadline{Clock::now() + std::chrono::milliseconds(timeoutMs)};
        raw->interrupt_callback.callback = &interrupted;
        raw->interrupt_callback.opaque = &deadline;
        const QByteArray name = path.toUtf8();
        int rc = avformat_open_input(&raw, name.constData(), nullptr, nullptr); // frees raw on failure
        if (rc < 0)
            return failure(InputCorruptedOrMissing, describe(rc));
        Input input(raw);
        rc = Media::Reader::StreamAnalysis().run(input.get());
        if (rc < 0 && input->nb_streams == 0)
            return failure(InputCorruptedOrMissing, describe(rc));

        AVStream* picture = nullptr;
        AVStream* sound = nullptr;
        for (unsigned i = 0; i < input->nb_streams; ++i) {
            AVStream* stream = input->streams[i];
            // Only the chosen track's packets are wanted; the demuxer may drop the rest early.
            stream->discard = AVDISCARD_ALL;
            const AVMediaType type = stream->codecpar->codec_type;
            const bool coverArt = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
            if (type == AVMEDIA_TYPE_VIDEO && !coverArt && !picture && avcodec_find_decoder(stream->codecpar->codec_id))
                picture = stream;
            else if (type == AVMEDIA_TYPE_AUDIO && !sound && avcodec_find_decoder(stream->codecpar->codec_id))
                sound = stream;
        }
        if (picture) {
            picture->discard = AVDISCARD_DEFAULT;
            return decodeFrame(input.get(), picture, maxSize);
        }
        if (sound) {
            sound->discard = AVDISCARD_DEFAULT;
            return decodeLoudness(input.get(), sound);
        }
        return failure(UnsupportedCodec, "No picture or sound track that can be decoded");
    }
};

} // namespace

extern "C" Q_DECL_EXPORT Media::Reader::IThumbnailDecoder* kvCreateThumbnailDecoder()
{
    // The service logs every failure itself; FFmpeg's own lines would only repeat them.
    av_log_set_level(AV_LOG_QUIET);
    static PictureDecoder decoder;
    return &decoder;
}
