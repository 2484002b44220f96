// libFuzzer target for the wire decoder: arbitrary bytes as a connection's stream, fed
// whole and in random pieces, and as one would-be frame.
//
// Beyond "no crash" (and, with the sanitizers, no read outside a buffer and no undefined
// behaviour), every run checks what the transport relies on:
//  - a frame handed out re-encodes to exactly the bytes it was read from, so the reader
//    neither skips nor invents bytes and the encoding has a single form;
//  - how the bytes are split into pieces changes nothing: same frames, same end state;
//  - a failed reader stays failed and holds nothing; a waiting one holds exactly the rest;
//  - a lower size limit only refuses earlier, it never lets a bigger body through;
//  - decodeFrame() agrees with the reader on every single frame.

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

[[noreturn]] void violated(const char* what, int line)
{
    std::fprintf(stderr, "fuzz_frame: invariant violated at line %d: %s\n", line, what);
    std::abort();
}

#define REQUIRE(condition)                      \
    do {                                        \
        if (!(condition))                       \
            violated(#condition, __LINE__);     \
    } while (0)

std::string encode(const Frame& frame)
{
    switch (frame.kind) {
    case FrameKind::Call:
        return encodeCall(frame.call);
    case FrameKind::Reply:
        return encodeReply(frame.serial, frame.status);
    case FrameKind::Hello:
        return encodeHello(frame.connectId);
    }
    violated("frame of an unknown kind handed out", __LINE__);
}

// Decodes `bytes` from a heap block of exactly its size, so that the address sanitizer
// reports a read one byte past the end (a std::string would hide it in its capacity).
bool decodeExact(const std::string& bytes, Frame& frame, std::string& error)
{
    std::unique_ptr<char[]> copy(new char[bytes.size() ? bytes.size() : 1]);
    if (!bytes.empty())
        std::memcpy(copy.get(), bytes.data(), bytes.size());
    return decodeFrame(copy.get(), bytes.size(), frame, error);
}

struct Outcome
{
    std::vector<std::string> frames;  // each frame handed out, re-encoded
    FrameReader::Result last = FrameReader::Result::NeedMore;
    std::string error;
    std::size_t buffered = 0;
};

struct Piece
{
    std::size_t size;
    bool drain;  // read the frames out after this piece, or let the bytes pile up
};

// Pieces from a small generator seeded by the input itself, so a crash reproduces from
// the saved input alone. Mostly tiny pieces (split headers and lengths), some large; now
// and then several pieces arrive before the reader is drained.
std::vector<Piece> randomPieces(const std::uint8_t* data, std::size_t size)
{
    std::uint64_t state = 1469598103934665603ull;
    for (std::size_t i = 0; i < size; ++i)
        state = (state ^ data[i]) * 1099511628211ull;
    state |= 1;
    std::vector<Piece> pieces;
    for (std::size_t fed = 0; fed < size;) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        std::size_t piece = (state & 3) ? 1 + (state >> 8) % 16 : 1 + (state >> 8) % 512;
        piece = piece < size - fed ? piece : size - fed;
        fed += piece;
        pieces.push_back({piece, (state & 0x30) != 0 || fed == size});
    }
    return pieces;
}

Outcome feed(const std::uint8_t* data, std::size_t size, const std::vector<Piece>& pieces, std::size_t maxBodySize)
{
    FrameReader reader(maxBodySize);
    Outcome outcome;
    std::size_t fed = 0;
    std::size_t consumed = 0;
    Frame frame;
    auto drain = [&] {
        for (;;) {
            outcome.last = reader.next(frame);
            if (outcome.last != FrameReader::Result::Frame)
                return;
            std::string bytes = encode(frame);
            // The frame is exactly the next bytes of the stream.
            REQUIRE(bytes.size() >= kHeaderSize);
            REQUIRE(bytes.size() - kHeaderSize <= maxBodySize);
            REQUIRE(consumed + bytes.size() <= fed);
            REQUIRE(std::memcmp(bytes.data(), data + consumed, bytes.size()) == 0);
            consumed += bytes.size();
            REQUIRE(reader.buffered() == fed - consumed);
            // The one-frame decoder accepts it too and reads the same frame.
            Frame again;
            std::string error;
            REQUIRE(decodeExact(bytes, again, error));
            REQUIRE(encode(again) == bytes);
            outcome.frames.push_back(std::move(bytes));
        }
    };
    for (const Piece& piece : pieces) {
        std::unique_ptr<char[]> copy(new char[piece.size]);
        std::memcpy(copy.get(), data + fed, piece.size);
        reader.append(copy.get(), piece.size);
        fed += piece.size;
        REQUIRE(reader.buffered() == fed - consumed || !reader.error().empty());
        if (!piece.drain)
            continue;
        drain();
        if (outcome.last == FrameReader::Result::Error)
            break;
    }
    outcome.error = reader.error();
    outcome.buffered = reader.buffered();
    if (outcome.last == FrameReader::Result::Error) {
        REQUIRE(!outcome.error.empty());
        REQUIRE(outcome.buffered == 0);
        REQUIRE(!reader.hasPartialFrame());
        // Failed for good: more bytes, even a valid frame, change nothing.
        const std::string hello = encodeHello("late");
        reader.append(hello.data(), hello.size());
        REQUIRE(reader.next(frame) == FrameReader::Result::Error);
        REQUIRE(reader.buffered() == 0);
    } else {
        REQUIRE(outcome.last == FrameReader::Result::NeedMore);
        REQUIRE(outcome.error.empty());
        REQUIRE(fed == size);
        REQUIRE(outcome.buffered == size - consumed);
        REQUIRE(reader.hasPartialFrame() == (outcome.buffered > 0));
        // What waits for more is not a complete frame on its own.
        if (outcome.buffered > 0) {
            Frame rest;
            std::string error;
            REQUIRE(!decodeExact(std::string(reinterpret_cast<const char*>(data) + consumed, outcome.buffered), rest, error));
            REQUIRE(!error.empty());
        }
    }
    return outcome;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The input as one would-be frame.
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Frame frame;
    std::string error;
    const bool oneFrame = decodeExact(bytes, frame, error);
    if (oneFrame) {
        REQUIRE(error.empty());
        REQUIRE(encode(frame) == bytes);
    } else {
        REQUIRE(!error.empty());
    }

    // The input as a stream: whole, in pieces, and under a small size limit.
    const Outcome whole = feed(data, size, size ? std::vector<Piece>{{size, true}} : std::vector<Piece>{}, kMaxBodySize);
    const Outcome pieces = feed(data, size, randomPieces(data, size), kMaxBodySize);
    REQUIRE(pieces.frames == whole.frames);
    REQUIRE(pieces.last == whole.last);
    REQUIRE(pieces.error == whole.error);
    REQUIRE(pieces.buffered == whole.buffered);

    // A complete frame on its own is exactly one frame of the stream, with nothing left.
    if (oneFrame) {
        REQUIRE(whole.frames.size() == 1);
        REQUIRE(whole.last == FrameReader::Result::NeedMore);
        REQUIRE(whole.buffered == 0);
    }

    const std::size_t smallLimit = size ? data[0] % 64 : 0;
    const Outcome limited = feed(data, size, randomPieces(data, size), smallLimit);
    REQUIRE(limited.frames.size() <= whole.frames.size());
    for (std::size_t i = 0; i < limited.frames.size(); ++i)
        REQUIRE(limited.frames[i] == whole.frames[i]);
    // Stopping short of a frame the unlimited reader completed can only be a refusal.
    if (limited.frames.size() < whole.frames.size())
        REQUIRE(limited.last == FrameReader::Result::Error);
    return 0;
}
