// libFuzzer target for the media reader module (platform/model/MediaReader): arbitrary bytes
// as a media file, read by FFmpeg through the module as the editor opens files. Beyond "no
// crash, no hang" (and, with the sanitizers, no bad access, leak or undefined behaviour in
// our code), every run checks what the media model relies on:
//  - tracks and their decoder flags run parallel;
//  - a duration the reader reports is one the file's size can hold (never years for a few
//    kilobytes), and a still picture has none;
//  - the rule that decides what is usable never sees a negative frame rate or size.

#include "Media/MediaReader_p.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

extern "C" Media::Reader::IMediaReader* kvCreateMediaReader();

namespace {

#define REQUIRE(condition)                                                                               \
    do {                                                                                                 \
        if (!(condition)) {                                                                              \
            std::fprintf(stderr, "fuzz_media_open: line %d: %s does not hold\n", __LINE__, #condition); \
            std::abort();                                                                                \
        }                                                                                                \
    } while (0)

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Media::Reader::IMediaReader* reader = kvCreateMediaReader();
    // A file without a name on disk: the reader opens paths, as the editor gives it.
    const int fd = memfd_create("media", 0);
    REQUIRE(fd >= 0);
    for (std::size_t written = 0; written < size;) {
        const ssize_t n = write(fd, data + written, size - written);
        REQUIRE(n > 0);
        written += std::size_t(n);
    }
    const QString path = QStringLiteral("/proc/self/fd/") + QString::number(fd);
    const Media::Reader::ProbeResult result = reader->probe(path, 5000, [] { return false; });
    close(fd);

    REQUIRE(result.video.size() == result.videoDecodable.size());
    REQUIRE(result.audio.size() == result.audioDecodable.size());
    REQUIRE(result.fileSize >= 0 && result.fileSize <= qint64(size));
    REQUIRE(result.duration.microseconds() >= 0);
    if (result.duration.microseconds() > 0)
        REQUIRE(Media::Reader::plausibleDuration(result.duration, result.fileSize));
    if (result.stillPicture)
        REQUIRE(result.duration.microseconds() == 0);
    if (result.error != 0)
        REQUIRE(result.video.empty() && result.audio.empty());
    for (const Media::VideoTrack& track : result.video) {
        REQUIRE(track.frameRate >= 0 && track.frameRate == track.frameRate);
        REQUIRE(track.pixelAspectX > 0 && track.pixelAspectY > 0);
        (void)Media::Reader::plausibleVideo(track, result.stillPicture);
    }
    for (const Media::AudioTrack& track : result.audio)
        (void)Media::Reader::plausibleAudio(track);
    return 0;
}
