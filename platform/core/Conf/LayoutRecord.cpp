#include "Conf/LayoutRecord.h"

#include <bitset>
#include <iterator>

namespace Tavrin {
namespace Conf {
namespace {
// Speaker bits: FL 0x1, FR 0x2, FC 0x4, LFE 0x8, BL 0x10, BR 0x20, FLC 0x40, FRC 0x80,
// BC 0x100, SL 0x200, SR 0x400.
const LayoutRecord knownLayouts[] = {
    {0x4, 1, "mono"},
    {0x3, 2, "stereo"},
    {0xB, 3, "2.1"},
    {0x7, 3, "3.0"},
    {0x107, 4, "4.0"},
    {0x33, 4, "quad"},
    {0x37, 5, "5.0(side)"},
    {0x607, 5, "5.0"},
    {0x3F, 6, "5.1"},
    {0x60F, 6, "5.1(side)"},
    {0x13F, 7, "6.1"},
    {0x63F, 8, "7.1"},
    {0xFF, 8, "7.1(wide)"},
};
} // namespace

const LayoutRecord* LayoutRecord::Find(quint64 mask)
{
    for (const LayoutRecord& record : knownLayouts)
        if (record.mask == mask)
            return &record;
    return nullptr;
}

int LayoutRecord::channelCount(quint64 mask)
{
    if (const LayoutRecord* record = Find(mask))
        return record->channels;
    return int(std::bitset<64>(mask).count());
}

} // namespace Conf
} // namespace Tavrin
