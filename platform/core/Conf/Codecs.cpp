#include "Conf/Codecs.h"

#include "Conf/FormatConfiguration.h"
#include "Settings/Settings.h"

#include <QHash>


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

} // namespace Conf
} // namespace Tavrin
