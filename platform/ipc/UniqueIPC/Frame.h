#pragma once

#include "UniqueIPC/ApiVersion.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Wire format of the inter-process layer. Plain C++ with no Qt, so the decoder can be
// fuzzed on its own.
//
// Every frame starts with a 12-byte header, all integers big-endian:
//
//   0  "KVIP"            magic
//   4  u16 format        kFormatVersion; anything else is refused
//   6  u8  kind          FrameKind
//   7  u8  reserved      0
//   8  u32 body length   at most kMaxBodySize
//  12  body
//
// Strings in a body are a u32 length followed by that many bytes (no terminator).
// Call body:  u32 serial, str sender, str target, str function,
//             i32 major, i32 minor, i32 patch, i32 build, str version text,
//             u32 argc, argc * str argument, u32 typec, typec * str type name (typec == argc)
// Reply body: u32 serial, u8 status
// Hello body: str connection id of the peer that opened the connection
namespace Tavrin {
namespace UniqueIPC {

constexpr std::uint16_t kFormatVersion = 1;
constexpr std::size_t kHeaderSize = 12;
constexpr std::size_t kMaxBodySize = 4u * 1024u * 1024u;
constexpr std::size_t kMaxArguments = 65536;

enum class FrameKind : std::uint8_t { Call = 1, Reply = 2, Hello = 3 };

enum class ReplyStatus : std::uint8_t { Handled = 0, Failed = 1 };

struct Call
{
    std::uint32_t serial = 0;
    std::string sender;   // connection id of the caller (may be empty for one-shot senders)
    std::string target;   // application id the call is meant for
    std::string function;
    ApiVersion version;
    std::vector<std::string> arguments;
    std::vector<std::string> types;
};

struct Frame
{
    FrameKind kind = FrameKind::Call;
    Call call;                                  // Call
    std::uint32_t serial = 0;                   // Reply
    ReplyStatus status = ReplyStatus::Handled;  // Reply
    std::string connectId;                      // Hello
};

std::string encodeCall(const Call& call);
std::string encodeReply(std::uint32_t serial, ReplyStatus status);
std::string encodeHello(const std::string& connectId);

// Incremental decoder for one connection's byte stream. Bytes are appended as they arrive;
// next() hands out complete frames. After an error the reader stays failed: the stream
// cannot be resynchronised and the connection must be closed.
class FrameReader
{
public:
    enum class Result { NeedMore, Frame, Error };

    explicit FrameReader(std::size_t maxBodySize = kMaxBodySize);

    void append(const char* data, std::size_t size);
    Result next(Frame& frame);

    const std::string& error() const { return m_error; }
    // True while part of a frame is buffered: a peer that stops here is stalling.
    bool hasPartialFrame() const { return buffered() != 0; }
    std::size_t buffered() const { return m_buffer.size() - m_consumed; }

private:
    Result fail(std::string reason);

    std::size_t m_maxBodySize;
    // Frames handed out are skipped, not erased: erasing each from the front would copy the
    // rest of the buffer once per frame, quadratic in a burst of small frames. The consumed
    // part is dropped when more bytes arrive and it is at least half of the buffer.
    std::string m_buffer;
    std::size_t m_consumed = 0;
    std::string m_error;
};

// Decodes one complete frame held in `data` (header included). Returns false with a reason
// for anything but exactly one well-formed frame.
bool decodeFrame(const char* data, std::size_t size, Frame& frame, std::string& error);

} // namespace UniqueIPC
} // namespace Tavrin
