#include "UniqueIPC/Frame.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Tavrin {
namespace UniqueIPC {
namespace {

const char kMagic[4] = {'K', 'V', 'I', 'P'};

void putU32(std::string& out, std::uint32_t v)
{
    const char bytes[4] = {char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
    out.append(bytes, 4);
}

void putString(std::string& out, const std::string& s)
{
    putU32(out, std::uint32_t(s.size()));
    out.append(s);
}

std::string withHeader(FrameKind kind, const std::string& body)
{
    std::string out;
    out.reserve(kHeaderSize + body.size());
    out.append(kMagic, 4);
    out.push_back(char(kFormatVersion >> 8));
    out.push_back(char(kFormatVersion & 0xff));
    out.push_back(char(kind));
    out.push_back('\0');
    putU32(out, std::uint32_t(body.size()));
    out.append(body);
    return out;
}

std::uint32_t readU32(const unsigned char* p)
{
    return (std::uint32_t(p[0]) << 24) | (std::uint32_t(p[1]) << 16) | (std::uint32_t(p[2]) << 8) | std::uint32_t(p[3]);
}

// Bounds-checked reading of a body; every read fails once past the end.
class BodyReader
{
public:
    BodyReader(const char* data, std::size_t size) : m_p(reinterpret_cast<const unsigned char*>(data)), m_left(size) {}

    bool u8(std::uint8_t& v)
    {
        if (m_left < 1)
            return false;
        v = *m_p;
        ++m_p;
        --m_left;
        return true;
    }
    bool u32(std::uint32_t& v)
    {
        if (m_left < 4)
            return false;
        v = readU32(m_p);
        m_p += 4;
        m_left -= 4;
        return true;
    }
    bool i32(int& v)
    {
        std::uint32_t u = 0;
        if (!u32(u))
            return false;
        std::int32_t s;
        std::memcpy(&s, &u, sizeof s);
        v = s;
        return true;
    }
    bool str(std::string& s)
    {
        std::uint32_t n = 0;
        if (!u32(n) || n > m_left)
            return false;
        s.assign(reinterpret_cast<const char*>(m_p), n);
        m_p += n;
        m_left -= n;
        return true;
    }
    bool strings(std::vector<std::string>& list)
    {
        std::uint32_t count = 0;
        // Each string needs at least its 4-byte length, which bounds a lying count.
        if (!u32(count) || count > kMaxArguments || std::size_t(count) * 4 > m_left)
            return false;
        list.resize(count);
        for (auto& s : list)
            if (!str(s))
                return false;
        return true;
    }
    bool atEnd() const { return m_left == 0; }

private:
    const unsigned char* m_p;
    std::size_t m_left;
};

bool decodeBody(FrameKind kind, const char* data, std::size_t size, Frame& frame, std::string& error)
{
    BodyReader in(data, size);
    frame = Frame();
    frame.kind = kind;
    bool ok = false;
    switch (kind) {
    case FrameKind::Call: {
        Call& c = frame.call;
        ok = in.u32(c.serial) && in.str(c.sender) && in.str(c.target) && in.str(c.function) && in.i32(c.version.major)
            && in.i32(c.version.minor) && in.i32(c.version.patch) && in.i32(c.version.build) && in.str(c.version.text)
            && in.strings(c.arguments) && in.strings(c.types);
        if (ok && c.types.size() != c.arguments.size()) {
            error = "argument and type counts differ";
            return false;
        }
        if (ok && c.function.empty()) {
            error = "call without a function name";
            return false;
        }
        break;
    }
    case FrameKind::Reply: {
        std::uint8_t status = 0;
        ok = in.u32(frame.serial) && in.u8(status);
        if (ok && status > std::uint8_t(ReplyStatus::Failed)) {
            error = "unknown reply status";
            return false;
        }
        frame.status = ReplyStatus(status);
        break;
    }
    case FrameKind::Hello:
        ok = in.str(frame.connectId);
        break;
    }
    if (!ok) {
        error = "truncated body";
        return false;
    }
    if (!in.atEnd()) {
        error = "trailing bytes after the body";
        return false;
    }
    return true;
}

// Checks a header; on success stores kind and body size.
bool checkHeader(const unsigned char* h, std::size_t maxBodySize, FrameKind& kind, std::size_t& bodySize, std::string& error)
{
    if (std::memcmp(h, kMagic, 4) != 0) {
        error = "bad magic";
        return false;
    }
    const unsigned format = (unsigned(h[4]) << 8) | h[5];
    if (format != kFormatVersion) {
        error = "unsupported format version " + std::to_string(format);
        return false;
    }
    if (h[6] < std::uint8_t(FrameKind::Call) || h[6] > std::uint8_t(FrameKind::Hello)) {
        error = "unknown frame kind " + std::to_string(unsigned(h[6]));
        return false;
    }
    if (h[7] != 0) {
        error = "reserved byte set";
        return false;
    }
    bodySize = readU32(h + 8);
    if (bodySize > maxBodySize) {
        error = "frame of " + std::to_string(bodySize) + " bytes exceeds the limit of " + std::to_string(maxBodySize);
        return false;
    }
    kind = FrameKind(h[6]);
    return true;
}

} // namespace

std::string encodeCall(const Call& call)
{
    std::string body;
    putU32(body, call.serial);
    putString(body, call.sender);
    putString(body, call.target);
    putString(body, call.function);
    for (int v : {call.version.major, call.version.minor, call.version.patch, call.version.build})
        putU32(body, std::uint32_t(v));
    putString(body, call.version.text);
    putU32(body, std::uint32_t(call.arguments.size()));
    for (const auto& a : call.arguments)
        putString(body, a);
    putU32(body, std::uint32_t(call.types.size()));
    for (const auto& t : call.types)
        putString(body, t);
    return withHeader(FrameKind::Call, body);
}

std::string encodeReply(std::uint32_t serial, ReplyStatus status)
{
    std::string body;
    putU32(body, serial);
    body.push_back(char(status));
    return withHeader(FrameKind::Reply, body);
}

std::string encodeHello(const std::string& connectId)
{
    std::string body;
    putString(body, connectId);
    return withHeader(FrameKind::Hello, body);
}

FrameReader::FrameReader(std::size_t maxBodySize) : m_maxBodySize(maxBodySize) {}

void FrameReader::append(const char* data, std::size_t size)
{
    if (!m_error.empty())
        return;
    // Dropped once it is at least half of the buffer, so every byte is moved at most once
    // on average, whether or not the caller drained the reader first.
    if (m_consumed && m_consumed >= m_buffer.size() - m_consumed) {
        m_buffer.erase(0, m_consumed);
        m_consumed = 0;
    }
    m_buffer.append(data, size);
}

FrameReader::Result FrameReader::fail(std::string reason)
{
    m_error = std::move(reason);
    m_buffer.clear();
    m_buffer.shrink_to_fit();
    m_consumed = 0;
    return Result::Error;
}

FrameReader::Result FrameReader::next(Frame& frame)
{
    if (!m_error.empty())
        return Result::Error;
    const char* data = m_buffer.data() + m_consumed;
    const std::size_t size = m_buffer.size() - m_consumed;
    // The header is checked as soon as it is complete, so an oversized frame is refused
    // before a single byte of its body is buffered.
    if (size < kHeaderSize) {
        if (size && std::memcmp(data, kMagic, std::min<std::size_t>(4, size)) != 0)
            return fail("bad magic");
        return Result::NeedMore;
    }
    FrameKind kind;
    std::size_t bodySize = 0;
    std::string error;
    if (!checkHeader(reinterpret_cast<const unsigned char*>(data), m_maxBodySize, kind, bodySize, error))
        return fail(error);
    if (size - kHeaderSize < bodySize)
        return Result::NeedMore;
    if (!decodeBody(kind, data + kHeaderSize, bodySize, frame, error))
        return fail(error);
    m_consumed += kHeaderSize + bodySize;
    if (m_consumed == m_buffer.size()) {
        m_buffer.clear();
        m_consumed = 0;
    }
    return Result::Frame;
}

bool decodeFrame(const char* data, std::size_t size, Frame& frame, std::string& error)
{
    if (size < kHeaderSize) {
        error = "truncated header";
        return false;
    }
    FrameKind kind;
    std::size_t bodySize = 0;
    if (!checkHeader(reinterpret_cast<const unsigned char*>(data), kMaxBodySize, kind, bodySize, error))
        return false;
    if (size - kHeaderSize != bodySize) {
        error = size - kHeaderSize < bodySize ? "truncated body" : "trailing bytes after the frame";
        return false;
    }
    return decodeBody(kind, data + kHeaderSize, bodySize, frame, error);
}

} // namespace UniqueIPC
} // namespace Tavrin
