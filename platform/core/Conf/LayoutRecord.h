#pragma once

#include <QtGlobal>

namespace Tavrin {
namespace Conf {

// An audio channel layout the editor knows: its channel mask (one bit per speaker
// position, the usual WAVE_FORMAT_EXTENSIBLE bit order), its channel count and its name.
struct LayoutRecord
{
    quint64 mask = 0;
    int channels = 0;
    const char* name = "";

    // The record of `mask`, or null when the layout is not one of the known ones.
    static const LayoutRecord* Find(quint64 mask);
    // The channel count of `mask`: the record's count for a known layout, otherwise the
    // number of speaker bits set (0 for an empty mask).
    static int channelCount(quint64 mask);
};

} // namespace Conf
} // namespace Tavrin
