// Preview benchmark (bench/run_preview.sh):
//   bench_preview floor FILE N   bare libav* seek-and-decode of the exact frame at N random
//                                positions; prints the median in ms
//   bench_preview seek FILE N    the same positions through the preview's frame reader
//   bench_preview scrub FILE S   the playhead moved every 16 ms for S seconds through the
//                                preview's decoder; prints distinct frames shown per second
#include "PreviewDecoder.h"

#include <Media/FrameReader_p.h>
#include <Media/Opening.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLibrary>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <vector>

namespace {

// The same positions for both sides: a fixed seed over the file's first `lengthUs`.
std::vector<qint64> positions(int count, qint64 lengthUs)
{
    std::mt19937_64 random(20261123);
    std::uniform_int_distribution<qint64> pick(0, lengthUs - 1);
    std::vector<qint64> result;
    for (int i = 0; i < count; ++i)
        result.push_back(pick(random));
    return result;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

// The floor: what any program must at least do to show the exact frame at a time.
int floorRun(const char* path, int count)
{
    AVFormatContext* input = nullptr;
    if (avformat_open_input(&input, path, nullptr, nullptr) < 0 || avformat_find_stream_info(input, nullptr) < 0)
        return 1;
    const int index = av_find_best_stream(input, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    AVStream* stream = input->streams[index];
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    AVCodecContext* decoder = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder, stream->codecpar);
    decoder->thread_count = 2;
    avcodec_open2(decoder, codec, nullptr);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    const int64_t start = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
    std::vector<double> times;
    for (qint64 us : positions(count, input->duration)) {
        QElapsedTimer timer;
        timer.start();
        const int64_t target = start + av_rescale_q(us, {1, 1000000}, stream->time_base);
        av_seek_frame(input, index, target, AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(decoder);
        bool found = false;
        while (!found && av_read_frame(input, packet) >= 0) {
            if (packet->stream_index == index)
                avcodec_send_packet(decoder, packet);
            av_packet_unref(packet);
            while (!found && avcodec_receive_frame(decoder, frame) == 0) {
                const int64_t duration = frame->pkt_duration > 0 ? frame->pkt_duration : 1;
                found = frame->best_effort_timestamp + duration > target;
                av_frame_unref(frame);
            }
        }
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::printf("floor_median_ms=%.1f seeks=%d\n", median(times), count);
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&decoder);
    avformat_close_input(&input);
    return 0;
}

int seekRun(const char* path, int count)
{
    QLibrary library(Media::mediaReaderPath());
    auto open = reinterpret_cast<Media::Reader::OpenFrameReaderFunction>(
        library.resolve(Media::Reader::OpenFrameReaderFunctionName));
    std::string error;
    std::unique_ptr<Media::Reader::IFrameReader> reader(open ? open(QString::fromLocal8Bit(path), 10000, &error) : nullptr);
    if (!reader) {
        std::fprintf(stderr, "bench_preview: %s\n", error.c_str());
        return 1;
    }
    std::vector<double> times;
    for (qint64 us : positions(count, reader->durationUs())) {
        QElapsedTimer timer;
        timer.start();
        const Media::Reader::VideoFrame frame = reader->frameAt(us, std::string(), QSize(1920, 1080));
        times.push_back(timer.nsecsElapsed() / 1e6);
        if (frame.image.isNull() || frame.ptsUs > us)
            std::fprintf(stderr, "bench_preview: wrong frame at %lld us (got %lld)\n", us, frame.ptsUs);
    }
    std::printf("preview_median_ms=%.1f seeks=%d\n", median(times), count);
    return 0;
}

int scrubRun(const char* path, int seconds)
{
    PreviewDecoder decoder;
    std::set<qint64> shown;
    QObject::connect(&decoder, &PreviewDecoder::frameDecoded, [&](const DecodedFrame& frame) {
        if (!frame.image.isNull())
            shown.insert(frame.ptsUs);
    });
    // A hand dragging the playhead: forwards and back over the file, 40 ms of media per move.
    qint64 at = 0;
    int direction = 1;
    QTimer mover;
    mover.setTimerType(Qt::PreciseTimer);
    QObject::connect(&mover, &QTimer::timeout, [&] {
        at += direction * 40000;
        if (at > 50000000 || at < 0)
            direction = -direction;
        decoder.request({0, QString::fromLocal8Bit(path), at, QString(), QSize(800, 450), at});
    });
    mover.start(16);
    QTimer::singleShot(seconds * 1000, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    std::printf("scrub_distinct_frames_per_s=%.1f seconds=%d\n", double(shown.size()) / seconds, seconds);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (argc < 4) {
        std::fprintf(stderr, "usage: bench_preview floor|seek|scrub FILE N\n");
        return 2;
    }
    const QByteArray mode = argv[1];
    const int n = std::atoi(argv[3]);
    if (mode == "floor")
        return floorRun(argv[2], n);
    if (mode == "seek")
        return seekRun(argv[2], n);
    return scrubRun(argv[2], n);
}
