#pragma once

#include <QString>
#include <QStringList>

namespace Tavrin {
namespace Conf {

// The file-type groups the dialogs filter by, over the format configuration's groups.
struct IFormatFile
{
    enum Group { GROUP_ALL_VIDEO, GROUP_ALL_AUDIO, GROUP_ALL_IMAGES, GROUP_ALL_FILES, GROUP_DVD };
    using Groups = QList<Group>;
};

// Lower-case extensions without the dot of one group; empty for GROUP_ALL_FILES (any file).
QStringList GetSupportedFormatExtensions(IFormatFile::Group group);
// The group's name in a file dialog's filter ("Video Files"), translated.
QString groupDisplayName(IFormatFile::Group group);

} // namespace Conf
} // namespace Tavrin
