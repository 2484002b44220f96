// The wire format: what decodes, and every way a frame is refused.

#include <UniqueIPC/Frame.h>

#include <QtTest>

using namespace Tavrin::UniqueIPC;

Q_DECLARE_METATYPE(std::string)

namespace {

Call sampleCall()
{
    Call call;
    call.serial = 42;
    call.sender = "klipvane+screencapture+12+abc";
    call.target = "klipvane";
    call.function = "OnAddFiles";
    call.version = {1, 0, 0, 0, "beta"};
    call.arguments = {"/tmp/ä ö/clip 1.mp4", "", std::string("nul\0inside", 10)};
    call.types = {"QString", "QString", "QString"};
    return call;
}

std::string header(unsigned char kind, std::uint32_t length, std::uint16_t format = kFormatVersion,
                   unsigned char reserved = 0)
{
    std::string h = "KVIP";
    h.push_back(char(format >> 8));
    h.push_back(char(format));
    h.push_back(char(kind));
    h.push_back(char(reserved));
    for (int shift : {24, 16, 8, 0})
        h.push_back(char(length >> shift));
    return h;
}

std::string u32(std::uint32_t v)
{
    return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
}

// A call body by hand, so that counts and lengths can lie.
std::string callBody(std::uint32_t argc, std::uint32_t typec, const std::string& function = "F")
{
    std::string b = u32(1) + u32(0) + u32(1) + "k" + u32(std::uint32_t(function.size())) + function;
    b += u32(1) + u32(0) + u32(0) + u32(0) + u32(0);
    b += u32(argc);
    for (std::uint32_t i = 0; i < argc && i < 4; ++i)
        b += u32(1) + "a";
    b += u32(typec);
    for (std::uint32_t i = 0; i < typec && i < 4; ++i)
        b += u32(7) + "QString";
    return b;
}

} // namespace

class tst_Frame : public QObject
{
    Q_OBJECT
private slots:
    void roundTrip()
    {
        const Call call = sampleCall();
        const std::string bytes = encodeCall(call);
        Frame frame;
        std::string error;
        QVERIFY2(decodeFrame(bytes.data(), bytes.size(), frame, error), error.c_str());
        QCOMPARE(frame.kind, FrameKind::Call);
        QCOMPARE(frame.call.serial, 42u);
        QVERIFY(frame.call.sender == call.sender);
        QVERIFY(frame.call.target == call.target);
        QVERIFY(frame.call.function == call.function);
        QVERIFY(frame.call.version == call.version);
        QVERIFY(frame.call.arguments == call.arguments);
        QVERIFY(frame.call.types == call.types);
    }

    void byteByByteAndBackToBack()
    {
        const std::string stream = encodeHello("peer") + encodeCall(sampleCall()) + encodeReply(7, ReplyStatus::Failed);
        FrameReader reader;
        std::vector<Frame> frames;
        Frame frame;
        for (char c : stream) {
            reader.append(&c, 1);
            while (reader.next(frame) == FrameReader::Result::Frame)
                frames.push_back(frame);
        }
        QCOMPARE(int(frames.size()), 3);
        QVERIFY(frames[0].connectId == "peer");
        QVERIFY(frames[1].call.arguments == sampleCall().arguments);
        QCOMPARE(frames[2].serial, 7u);
        QCOMPARE(frames[2].status, ReplyStatus::Failed);
        QVERIFY(!reader.hasPartialFrame());
    }

    // A burst of frames arriving in pieces that do not line up with frames, read out after
    // every piece or only now and then: every frame comes out once, in order, whole.
    void burstInPieces_data()
    {
        QTest::addColumn<int>("pieceSize");
        QTest::addColumn<int>("drainEvery");

        QTest::newRow("small pieces, drained each time") << 7 << 1;
        QTest::newRow("small pieces, drained every third") << 7 << 3;
        QTest::newRow("large pieces, drained every other") << 4099 << 2;
        QTest::newRow("byte by byte, drained at the end") << 1 << 1000000000;
        QTest::newRow("all at once") << 1000000000 << 1;
    }

    void burstInPieces()
    {
        QFETCH(int, pieceSize);
        QFETCH(int, drainEvery);

        std::string stream;
        const int count = 3000;
        for (int i = 0; i < count; ++i) {
            Call call = sampleCall();
            call.serial = std::uint32_t(i);
            stream += i % 3 == 0 ? encodeCall(call) : i % 3 == 1 ? encodeReply(std::uint32_t(i), ReplyStatus::Handled)
                                                                 : encodeHello(std::to_string(i));
        }
        FrameReader reader;
        Frame frame;
        int seen = 0;
        bool inOrder = true;
        auto drain = [&] {
            while (reader.next(frame) == FrameReader::Result::Frame) {
                const std::uint32_t number = frame.kind == FrameKind::Call    ? frame.call.serial
                                             : frame.kind == FrameKind::Reply ? frame.serial
                                                                              : std::uint32_t(std::stoul(frame.connectId));
                inOrder = inOrder && number == std::uint32_t(seen) && int(frame.kind) == seen % 3 + 1;
                ++seen;
            }
        };
        int pieces = 0;
        for (std::size_t at = 0; at < stream.size(); at += std::size_t(pieceSize)) {
            reader.append(stream.data() + at, std::min(std::size_t(pieceSize), stream.size() - at));
            if (++pieces % drainEvery == 0)
                drain();
        }
        drain();
        QVERIFY2(reader.error().empty(), reader.error().c_str());
        QVERIFY(inOrder);
        QCOMPARE(seen, count);
        QCOMPARE(reader.buffered(), std::size_t(0));
        QVERIFY(!reader.hasPartialFrame());
    }

    void refused_data()
    {
        QTest::addColumn<std::string>("bytes");
        QTest::addColumn<QString>("reason");

        const std::string body = callBody(1, 1);
        QTest::newRow("bad magic") << std::string("GET / HTTP/1.1\r\n\r\n") << "bad magic";
        QTest::newRow("bad magic, short") << std::string("XY") << "bad magic";
        QTest::newRow("format version") << header(1, 0, 2) << "unsupported format version 2";
        QTest::newRow("unknown kind") << header(9, 0) << "unknown frame kind 9";
        QTest::newRow("reserved byte") << header(1, 0, kFormatVersion, 1) << "reserved byte set";
        QTest::newRow("oversized") << header(1, std::uint32_t(kMaxBodySize + 1)) << "exceeds the limit";
        QTest::newRow("huge length") << header(1, 0xffffffffu) << "exceeds the limit";
        QTest::newRow("counts differ") << header(1, std::uint32_t(callBody(1, 0).size())) + callBody(1, 0)
                                       << "argument and type counts differ";
        QTest::newRow("lying argument count") << header(1, std::uint32_t(callBody(100000, 0).size())) + callBody(100000, 0)
                                              << "truncated body";
        QTest::newRow("no function") << header(1, std::uint32_t(callBody(0, 0, "").size())) + callBody(0, 0, "")
                                     << "without a function name";
        QTest::newRow("trailing bytes") << header(1, std::uint32_t(body.size() + 2)) + body + "xx" << "trailing bytes";
        QTest::newRow("string past end") << header(3, 4) + u32(100) << "truncated body";
        QTest::newRow("reply status") << header(2, 5) + u32(1) + std::string(1, '\x05') << "unknown reply status";
    }

    void refused()
    {
        QFETCH(std::string, bytes);
        QFETCH(QString, reason);
        FrameReader reader;
        reader.append(bytes.data(), bytes.size());
        Frame frame;
        QCOMPARE(reader.next(frame), FrameReader::Result::Error);
        QVERIFY2(QString::fromStdString(reader.error()).contains(reason), reader.error().c_str());
        // A failed stream stays failed and keeps nothing buffered.
        reader.append("KVIP", 4);
        QCOMPARE(reader.next(frame), FrameReader::Result::Error);
        QCOMPARE(reader.buffered(), std::size_t(0));
    }

    void oversizedIsRefusedFromItsHeader()
    {
        // Only the 12 header bytes arrive: the reader must not wait for 4 MiB first.
        const std::string h = header(1, std::uint32_t(kMaxBodySize) + 1);
        FrameReader reader;
        reader.append(h.data(), h.size());
        Frame frame;
        QCOMPARE(reader.next(frame), FrameReader::Result::Error);
    }

    void truncatedIsPending()
    {
        const std::string bytes = encodeCall(sampleCall());
        FrameReader reader;
        reader.append(bytes.data(), bytes.size() - 1);
        Frame frame;
        QCOMPARE(reader.next(frame), FrameReader::Result::NeedMore);
        QVERIFY(reader.hasPartialFrame());
        std::string error;
        QVERIFY(!decodeFrame(bytes.data(), bytes.size() - 1, frame, error));
        QVERIFY(error == "truncated body");
    }
};

QTEST_GUILESS_MAIN(tst_Frame)
#include "tst_frame.moc"
