#pragma once

#include <QLatin1String>
#include <QString>
#include <QStringList>

namespace Tavrin {
namespace Conf {

// Codec identifiers of the format configuration. Media files, presets and statistics name
// codecs by these strings; compare them exactly (they are lower case).
struct IFormatCodecVideo
{
    static constexpr QLatin1String CODEC_ID_H264{"h264"};
    static constexpr QLatin1String CODEC_ID_H265{"h265"};
    static constexpr QLatin1String CODEC_ID_MPEG2{"mpeg2video"};
    static constexpr QLatin1String CODEC_ID_MPEG4{"mpeg4"};
    static constexpr QLatin1String CODEC_ID_VP8{"vp8"};
    static constexpr QLatin1String CODEC_ID_VP9{"vp9"};
    static constexpr QLatin1String CODEC_ID_AV1{"av1"};
    static constexpr QLatin1String CODEC_ID_PRORES{"prores"};
    static constexpr QLatin1String CODEC_ID_MJPEG{"mjpeg"};
    static constexpr QLatin1String CODEC_ID_PNG{"png"};
};

struct IFormatCodecAudio
{
    static constexpr QLatin1String CODEC_ID_AAC{"aac"};
    static constexpr QLatin1String CODEC_ID_MP3{"mp3"};
    static constexpr QLatin1String CODEC_ID_AC3{"ac3"};
    static constexpr QLatin1String CODEC_ID_FLAC{"flac"};
    static constexpr QLatin1String CODEC_ID_OPUS{"opus"};
    static constexpr QLatin1String CODEC_ID_VORBIS{"vorbis"};
    static constexpr QLatin1String CODEC_ID_PCM_S16LE{"pcm_s16le"};
};

// The display name of a codec identifier ("h265" -> "H.265/HEVC"). Returns false and
// leaves `name` untouched for an identifier the configuration does not know.
bool TranslateCodecId(const QString& codecId, QString& name);

// The configuration's identifier for a codec as the decoding engine names it ("hevc" ->
// "h265"); names without a counterpart are used as they are.
QString codecIdFromEngineName(const QString& engineName);

// Settings key: true lets the editor decode H.265 although the product declares it
// unsupported (builds that ship a licensed decoder).
constexpr QLatin1String H265DecodingSettingKey{"Media/H265DecodingEnabled"};

// True when the configuration declares the codec unsupported and no setting lifts that.
bool isCodecDeclaredUnsupported(const QString& codecId);

} // namespace Conf
} // namespace Tavrin
