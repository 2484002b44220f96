#pragma once

#include "AppUtil_export.h"

#include <Timeline/Timeline.h>

#include <set>

// Narrowing a set of timeline clips in place, before a command acts on them:
//
//   std::set<Timeline::IClip*> clips = ...;                // the selection
//   ClipsFiltrator::keepClipsByType(clips, Timeline::ClipType::Video | Timeline::ClipType::Image);
//   ClipsFiltrator::removeNativeAudio(clips);             // a video's own sound goes with it
namespace ClipsFiltrator {

// Keeps the clips whose type passes QFlags::testFlag against `types`: every bit of the
// clip's type is wanted, and a clip of type zero stays only when nothing is wanted.
APPUTIL_EXPORT void keepClipsByType(std::set<Timeline::IClip*>& clips, QFlags<Timeline::ClipType> types);
// Drops the audio clips that came with, and belong to, a video clip.
APPUTIL_EXPORT void removeNativeAudio(std::set<Timeline::IClip*>& clips);

} // namespace ClipsFiltrator
