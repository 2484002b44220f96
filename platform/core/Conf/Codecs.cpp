#include "Conf/Codecs.h"

#include "Conf/FormatConfiguration.h"
#include "Settings/Settings.h"

#include <QHash>

#include <bitset>
#include <iterator>

namespace Tavrin {
namespace Conf {
namespace {

struct CodecName
{
    QLatin1String id;
    const char* name;
};

// Display names, as the user sees them in file information and statistics.
constexpr CodecName codecNames[] = {
    {IFormatCodecVideo::CODEC_ID_H264, "H.264/AVC"},
    {IFormatCodecVideo::CODEC_ID_H265, "H.265/HEVC"},
    {IFormatCodecVideo::CODEC_ID_MPEG2, "MPEG-2 Video"},
    {IFormatCodecVideo::CODEC_ID_MPEG4, "MPEG-4 Part 2"},
    {IFormatCodecVideo::CODEC_ID_VP8, "VP8"},
    {IFormatCodecVideo::CODEC_ID_VP9, "VP9"},
    {IFormatCodecVideo::CODEC_ID_AV1, "AV1"},
    {IFormatCodecVideo::CODEC_ID_PRORES, "Apple ProRes"},
    {IFormatCodecVideo::CODEC_ID_MJPEG, "Motion JPEG"},
    {IFormatCodecVideo::CODEC_ID_PNG, "PNG"},
    {QLatin1String("gif"), "GIF"},
    {QLatin1String("bmp"), "BMP"},
    {QLatin1String("tiff"), "TIFF"},
    {QLatin1String("webp"), "WebP"},
    {QLatin1String("wmv3"), "Windows Media Video 9"},
    {QLatin1String("vc1"), "VC-1"},
    {QLatin1String("dnxhd"), "Avid DNxHD"},
    {QLatin1String("theora"), "Theora"},
    {IFormatCodecAudio::CODEC_ID_AAC, "AAC"},
    {IFormatCodecAudio::CODEC_ID_MP3, "MP3"},
    {IFormatCodecAudio::CODEC_ID_AC3, "Dolby Digital (AC-3)"},
    {QLatin1String("eac3"), "Dolby Digital Plus (E-AC-3)"},
    {QLatin1String("dts"), "DTS"},
    {IFormatCodecAudio::CODEC_ID_FLAC, "FLAC"},
    {IFormatCodecAudio::CODEC_ID_OPUS, "Opus"},
    {IFormatCodecAudio::CODEC_ID_VORBIS, "Vorbis"},
    {IFormatCodecAudio::CODEC_ID_PCM_S16LE, "PCM 16-bit"},
    {QLatin1String("pcm_s24le"), "PCM 24-bit"},
    {QLatin1String("wmav2"), "Windows Media Audio 2"},
    {QLatin1String("alac"), "Apple Lossless"},
};

constexpr LayoutRecord layouts[] = {
    {0x4, 1, "mono"},
    {0x3, 2, "stereo"},
    {0xB, 3, "2.1"},
    {0x7, 3, "3.0"},
    {0x33, 4, "quad"},
    {0x107, 4, "4.0"},
    {0x37, 5, "5.0(back)"},
    {0x607, 5, "5.0(side)"},
    {0x3F, 6, "5.1(back)"},
    {0x60F, 6, "5.1(side)"},
    {0x70F, 7, "6.1"},
    {0x63F, 8, "7.1"},
};

} // namespace

bool TranslateCodecId(const QString& codecId, QString& name)
{
    for (const CodecName& entry : codecNames) {
        if (codecId == entry.id) {
            name = QString::fromLatin1(entry.name);
            return true;
        }
    }
    return false;
}

QString codecIdFromEngineName(const QString& engineName)
{
    if (engineName == QLatin1String("hevc"))
        return IFormatCodecVideo::CODEC_ID_H265;
    return engineName;
}

bool isCodecDeclaredUnsupported(const QString& codecId)
{
    if (!FormatConfiguration::instance().declaredUnsupportedCodecs().contains(codecId))
        return false;
    if (codecId == IFormatCodecVideo::CODEC_ID_H265 && Settings::value(H265DecodingSettingKey).toBool())
        return false;
    return true;
}

const LayoutRecord* LayoutRecord::Find(quint64 layout)
{
    for (const LayoutRecord& record : layouts)
        if (record.layout == layout)
            return &record;
    return nullptr;
}

int LayoutRecord::channelCount(quint64 layout)
{
    if (const LayoutRecord* record = Find(layout))
        return record->channels;
    return int(std::bitset<64>(layout).count());
}

} // namespace Conf
} // namespace Tavrin
