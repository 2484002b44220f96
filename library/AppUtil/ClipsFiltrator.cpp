#include "ClipsFiltrator.h"

#include <functional>

namespace ClipsFiltrator {

namespace {

using Clips = std::set<Timeline::IClip*>;

// Erases the clips `remove` picks, calling `beforeErase` with each just before it goes.
int removeIf(Clips& clips, const std::function<bool(Timeline::IClip*)>& remove,
             const std::function<void(Timeline::IClip*)>& beforeErase = {})
{
    int erased = 0;
    for (auto it = clips.begin(); it != clips.end();) {
        if (remove(*it)) {
            if (beforeErase)
                beforeErase(*it);
            it = clips.erase(it);
            ++erased;
        } else {
            ++it;
        }
    }
    return erased;
}

} // namespace

void keepClipsByType(Clips& clips, QFlags<Timeline::ClipType> types)
{
    // The whole type word goes to testFlag as one value, so that a clip of several kinds
    // stays only when all of them are wanted.
    removeIf(clips, [types](Timeline::IClip* clip) {
        return !types.testFlag(static_cast<Timeline::ClipType>(quint32(clip->type())));
    });
}

void removeNativeAudio(Clips& clips)
{
    removeIf(clips, [](Timeline::IClip* clip) { return clip->isNativeAudio(); });
}

} // namespace ClipsFiltrator
