// libFuzzer target for the wire decoder: arbitrary bytes as a connection's stream, fed whole
// and in pieces. Beyond "no crash" (and, with the sanitizers, no bad read and no undefined
// behaviour), every run checks what the transport relies on:
//  - a frame handed out re-encodes to exactly the bytes it was read from, so the reader
//    neither skips nor invents bytes, and decodeFrame() reads the same frame;
//  - how the bytes are split into pieces changes nothing: same frames, same end state.
// Built with -DKV_FRAME_SEEDS instead, the file is the program that writes the seed corpus
// with the encoder itself, so the seeds follow the format as it is today.

#include "UniqueIPC/Frame.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace Tavrin::UniqueIPC;

namespace {

#define REQUIRE(condition)                                                                         \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "fuzz_frame: line %d: %s does not hold\n", __LINE__, #condition); \
            std::abort();                                                                          \
        }                                                                                          \
    } while (0)

std::string encode(const Frame& frame)
{
    return frame.kind == FrameKind::Call    ? encodeCall(frame.call)
         : frame.kind == FrameKind::Reply ? encodeReply(frame.serial, frame.status)
                                            : encodeHello(frame.connectId);
}

// A heap block of exactly the input's size, so that the address sanitizer reports a read one
// byte past the end (a std::string would hide it in its capacity).
std::unique_ptr<char[]> exactCopy(const void* data, std::size_t size)
{
    std::unique_ptr<char[]> copy(new char[size ? size : 1]);
    std::memcpy(copy.get(), data, size);
    return copy;
}

struct Outcome
{
    std::vector<std::string> frames; // each frame handed out, re-encoded
    FrameReader::Result last = FrameReader::Result::NeedMore;
    std::string error;
    std::size_t buffered = 0;
};

// Piece sizes from a generator seeded by the input itself, so a crash reproduces from the
// saved input alone: mostly tiny pieces (split headers and lengths), some large.
Outcome feed(const std::uint8_t* data, std::size_t size, bool inPieces)
{
    std::uint64_t state = 1469598103934665603ull;
    for (std::size_t i = 0; i < size; ++i)
        state = (state ^ data[i]) * 1099511628211ull;
    FrameReader reader;
    Outcome outcome;
    Frame frame;
    std::size_t consumed = 0;
    for (std::size_t fed = 0; fed < size && outcome.last != FrameReader::Result::Error;) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        const std::size_t wanted = !inPieces ? size : (state & 3) ? 1 + (state >> 8) % 16 : 1 + (state >> 8) % 512;
        const std::size_t piece = wanted < size - fed ? wanted : size - fed;
        reader.append(exactCopy(data + fed, piece).get(), piece);
        fed += piece;
        if (inPieces && (state & 0x30) == 0 && fed < size)
            continue; // now and then the bytes pile up before the reader is drained
        while ((outcome.last = reader.next(frame)) == FrameReader::Result::Frame) {
            const std::string bytes = encode(frame);
            REQUIRE(consumed + bytes.size() <= fed);
            REQUIRE(std::memcmp(bytes.data(), data + consumed, bytes.size()) == 0);
            consumed += bytes.size();
            Frame again;
            std::string error;
            REQUIRE(decodeFrame(exactCopy(bytes.data(), bytes.size()).get(), bytes.size(), again, error));
            REQUIRE(encode(again) == bytes);
            outcome.frames.push_back(bytes);
        }
        REQUIRE(reader.buffered() == (outcome.last == FrameReader::Result::Error ? 0 : fed - consumed));
    }
    outcome.error = reader.error();
    outcome.buffered = reader.buffered();
    REQUIRE(outcome.error.empty() == (outcome.last != FrameReader::Result::Error));
    return outcome;
}

} // namespace

#ifndef KV_FRAME_SEEDS

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Outcome whole = feed(data, size, false);
    const Outcome pieces = feed(data, size, true);
    REQUIRE(pieces.frames == whole.frames);
    REQUIRE(pieces.last == whole.last);
    REQUIRE(pieces.error == whole.error);
    REQUIRE(pieces.buffered == whole.buffered);
    return 0;
}

#else

int main(int argc, char** argv)
{
    Call call;
    call.serial = 7;
    call.sender = "klipvane+klipvane+4242+1a2b";
    call.target = "klipvane";
    call.function = "OnAddFiles";
    call.version = {2, 3, 4, 5, "beta"};
    call.arguments = {"/home/u/Videos/clip 1.mp4", "/tmp/\xc3\xa4\xc3\xb6.mov", "-1"};
    call.types = {"QString", "QString", "enum64_t"};
    const std::string addFiles = encodeCall(call);
    const std::pair<const char*, std::string> seeds[] = {
        {"hello", encodeHello("klipvane+screencapture+77+ff00")},
        {"reply", encodeReply(0xfffffffeu, ReplyStatus::Failed)},
        {"call", addFiles},
        {"stream", encodeHello("klipvane+klipvane+1+2") + addFiles + encodeReply(9, ReplyStatus::Handled)},
        {"stream_truncated", addFiles + addFiles.substr(0, addFiles.size() / 2)},
    };
    for (const auto& seed : seeds) {
        std::FILE* file = argc == 2 ? std::fopen((std::string(argv[1]) + "/" + seed.first).c_str(), "wb") : nullptr;
        if (!file || std::fwrite(seed.second.data(), 1, seed.second.size(), file) != seed.second.size()
            || std::fclose(file) != 0) {
            std::fprintf(stderr, "frame_seeds: cannot write %s (usage: frame_seeds OUT_DIR)\n", seed.first);
            return 1;
        }
    }
    return 0;
}

#endif
