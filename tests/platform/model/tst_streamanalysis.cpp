// The stream analysis that reads an H.264 stream's first picture headers instead of decoding
// its pictures must leave every file's parameters exactly as FFmpeg's own analysis does.
#include "TestMedia.h"

#include <MediaReader/LibavPointers.h>
#include <MediaReader/StreamAnalysis.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/pixdesc.h>
}

#include <QtTest>

#include <functional>
#include <memory>

using Media::Reader::StreamAnalysis;

namespace {

using Media::Reader::Input;
using Media::Reader::Packet;

Input openInput(const QString& path)
{
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr) < 0)
        return nullptr;
    return Input(raw);
}

QString rational(AVRational value)
{
    return QStringLiteral("%1/%2").arg(value.num).arg(value.den);
}

// Everything a reader takes from a stream after the analysis, one line per stream.
QStringList describe(AVFormatContext* context, const std::function<AVRational(AVStream*)>& frameRate)
{
    QStringList lines;
    for (unsigned i = 0; i < context->nb_streams; ++i) {
        AVStream* stream = context->streams[i];
        const AVCodecParameters* p = stream->codecpar;
        const char* format = p->codec_type == AVMEDIA_TYPE_VIDEO ? av_get_pix_fmt_name(AVPixelFormat(p->format))
                                                                  : av_get_sample_fmt_name(AVSampleFormat(p->format));
        lines << QStringLiteral("%1 %2 %3 %4x%5 sar %6 range %7 primaries %8 transfer %9 space %10 chroma %11 "
                                "fields %12 profile %13 level %14 bits %15 rate %16 r %17 avg %18 start %19")
                     .arg(av_get_media_type_string(p->codec_type) ? av_get_media_type_string(p->codec_type) : "?")
                     .arg(avcodec_get_name(p->codec_id))
                     .arg(format ? format : "none")
                     .arg(p->width)
                     .arg(p->height)
                     .arg(rational(av_guess_sample_aspect_ratio(context, stream, nullptr)))
                     .arg(p->color_range)
                     .arg(p->color_primaries)
                     .arg(p->color_trc)
                     .arg(p->color_space)
                     .arg(p->chroma_location)
                     .arg(p->field_order)
                     .arg(p->profile)
                     .arg(p->level)
                     .arg(p->bits_per_raw_sample)
                     .arg(rational(frameRate(stream)))
                     .arg(rational(stream->r_frame_rate))
                     .arg(rational(stream->avg_frame_rate))
                     .arg(stream->start_time);
    }
    return lines;
}

} // namespace

class tst_StreamAnalysis : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    // NAME made by ffmpeg with ARGUMENTS, in the test's folder.
    QString make(const QString& name, const QStringList& arguments)
    {
        const QString path = m_dir.filePath(name);
        if (QFile::exists(path))
            return path;
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     QStringList{"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                                 "testsrc2=size=320x180:rate=25:duration=0.6"}
                         + arguments + QStringList{path});
        if (!ffmpeg.waitForFinished(60000) || ffmpeg.exitCode() != 0)
            return QString();
        return path;
    }

private slots:
    void initTestCase()
    {
        av_log_set_level(AV_LOG_QUIET);
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is needed to make the test media");
    }

    void sameParametersAsFFmpegsAnalysis_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("headerRead");
        const QStringList h264{"-c:v", "libx264", "-preset", "veryfast"};
        QTest::newRow("H.264 without B-frames") << TestMedia::path("h264_tiny.mp4") << true;
        QTest::newRow("H.264 1080p with sound") << TestMedia::path("h264_1080p.mp4") << true;
        QTest::newRow("H.264 tagged HLG") << TestMedia::path("hdr_h264.mp4") << true;
        QTest::newRow("H.264 with B-frames")
            << make("bframes.mp4", h264 + QStringList{"-pix_fmt", "yuv420p", "-bf", "3"}) << true;
        QTest::newRow("H.264 10-bit") << make("high10.mp4", h264 + QStringList{"-pix_fmt", "yuv420p10le"}) << true;
        QTest::newRow("H.264 4:4:4 full range") << make("full444.mov", h264 + QStringList{"-pix_fmt", "yuvj444p"}) << true;
        QTest::newRow("H.264 RGB")
            << make("rgb.mp4", {"-c:v", "libx264rgb", "-preset", "veryfast", "-pix_fmt", "gbrp"}) << true;
        QTest::newRow("H.264 with a picture aspect")
            << make("sar.mp4", h264 + QStringList{"-vf", "setsar=4/3", "-pix_fmt", "yuv420p"}) << true;
        QTest::newRow("H.264 interlaced")
            << make("interlaced.mp4", h264 + QStringList{"-pix_fmt", "yuv420p", "-flags", "+ildct+ilme"}) << true;
        QTest::newRow("H.264 cropped to odd lines")
            << make("odd.mp4", h264 + QStringList{"-vf", "crop=318:178", "-pix_fmt", "yuv420p"}) << true;
        QTest::newRow("H.264 fragmented")
            << make("fragmented.mp4", h264 + QStringList{"-pix_fmt", "yuv420p", "-movflags", "frag_keyframe+empty_moov"})
            << true;
        QTest::newRow("H.264 parameter sets in the stream")
            << make("avc3.mp4", h264 + QStringList{"-pix_fmt", "yuv420p", "-tag:v", "avc3"}) << true;
        QTest::newRow("H.264 in Matroska") << make("h264.mkv", h264 + QStringList{"-pix_fmt", "yuv420p"}) << false;
        QTest::newRow("H.265") << TestMedia::path("h265_aac.mp4") << false;
        QTest::newRow("sound only") << TestMedia::path("audio.m4a") << false;
        QTest::newRow("still picture") << TestMedia::path("still.png") << false;

        // Damaged files: the headers cannot be read, and the analysis is FFmpeg's own.
        const QString source = TestMedia::path("h264_1080p.mp4");
        const QString faststart = make("faststart.mp4", h264 + QStringList{"-pix_fmt", "yuv420p", "-movflags", "+faststart"});
        QFile in(faststart);
        QVERIFY(in.open(QIODevice::ReadOnly));
        QByteArray bytes = in.readAll();
        const int data = bytes.indexOf("mdat");
        QVERIFY(data > 0);
        QByteArray garbled = bytes;
        for (int i = data + 8; i < qMin(garbled.size(), data + 1200); ++i)
            garbled[i] = char((i * 131) ^ 0x5a);
        const QString garbledPath = m_dir.filePath("garbled.mp4");
        const QString cutPath = m_dir.filePath("cut.mp4");
        QFile out(garbledPath);
        QVERIFY(out.open(QIODevice::WriteOnly) && out.write(garbled) == garbled.size());
        out.close();
        QFile cut(cutPath);
        QVERIFY(cut.open(QIODevice::WriteOnly) && cut.write(bytes.left(data + 16)) > 0);
        cut.close();
        QTest::newRow("first picture garbled") << garbledPath << false;
        QTest::newRow("pictures cut off after the index") << cutPath << false;
    }

    void sameParametersAsFFmpegsAnalysis()
    {
        QFETCH(QString, path);
        QFETCH(bool, headerRead);
        QVERIFY2(QFile::exists(path), qPrintable(path));

        Input plain = openInput(path);
        Input ours = openInput(path);
        QVERIFY(plain && ours);
        const int plainResult = avformat_find_stream_info(plain.get(), nullptr);

        bool anyHeader = false;
        for (unsigned i = 0; i < ours->nb_streams; ++i)
            anyHeader = anyHeader || StreamAnalysis::readPictureHeader(ours.get(), ours->streams[i]).has_value();
        QCOMPARE(anyHeader, headerRead);

        StreamAnalysis analysis;
        QCOMPARE(analysis.run(ours.get()) < 0, plainResult < 0);
        QCOMPARE(describe(ours.get(), [&](AVStream* stream) { return analysis.frameRate(ours.get(), stream); }),
                 describe(plain.get(), [&](AVStream* stream) { return av_guess_frame_rate(plain.get(), stream, nullptr); }));
        // No more of the file was read: skipping pictures must not make the analysis go on
        // looking for what it would have decoded.
        QCOMPARE(avio_tell(ours->pb), avio_tell(plain->pb));

        // The packets that follow are the same, where a reader goes on from the analysis.
        const Packet a(av_packet_alloc());
        const Packet b(av_packet_alloc());
        for (int n = 0; n < 12; ++n) {
            const int ra = av_read_frame(plain.get(), a.get());
            const int rb = av_read_frame(ours.get(), b.get());
            QCOMPARE(rb, ra);
            if (ra < 0)
                break;
            QCOMPARE(b->stream_index, a->stream_index);
            QCOMPARE(b->pts, a->pts);
            QCOMPARE(b->size, a->size);
            av_packet_unref(a.get());
            av_packet_unref(b.get());
        }
    }
};

QTEST_GUILESS_MAIN(tst_StreamAnalysis)
#include "tst_streamanalysis.moc"
