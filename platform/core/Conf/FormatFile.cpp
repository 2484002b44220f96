#include "Conf/FormatFile.h"

#include "Conf/FormatConfiguration.h"

#include <QObject>

namespace Tavrin {
namespace Conf {

QStringList GetSupportedFormatExtensions(IFormatFile::Group group)
{
    const FormatConfiguration& formats = FormatConfiguration::instance();
    switch (group) {
    case IFormatFile::GROUP_ALL_VIDEO: return formats.extensions(QStringLiteral("video"));
    case IFormatFile::GROUP_ALL_AUDIO: return formats.extensions(QStringLiteral("music"));
    case IFormatFile::GROUP_ALL_IMAGES: return formats.extensions(QStringLiteral("picture"));
    // A DVD is opened through the information file of its VIDEO_TS folder.
    case IFormatFile::GROUP_DVD: return {QStringLiteral("ifo")};
    case IFormatFile::GROUP_ALL_FILES: break;
    }
    return {};
}

QString groupDisplayName(IFormatFile::Group group)
{
    switch (group) {
    case IFormatFile::GROUP_ALL_VIDEO: return QObject::tr("Video Files");
    case IFormatFile::GROUP_ALL_AUDIO: return QObject::tr("Audio Files");
    case IFormatFile::GROUP_ALL_IMAGES: return QObject::tr("Image Files");
    case IFormatFile::GROUP_DVD: return QObject::tr("DVD Files");
    case IFormatFile::GROUP_ALL_FILES: break;
    }
    return QObject::tr("All Files");
}

} // namespace Conf
} // namespace Tavrin
