#include <UniqueIPC/Frame.h>

#include <QtTest>

using namespace Tavrin::UniqueIPC;

Q_DECLARE_METATYPE(std::string)

namespace {

Call sampleCall(std::uint32_t serial)
{
    Call call;
    call.serial = serial;
    call.sender = "klipvane+screencapture+12+abc";
    call.target = "klipvane";
    call.function = "OnAddFiles";
    call.version = {1, 0, 0, 0, "beta"};
    call.arguments = {"/tmp/ä ö/clip 1.mp4", "", std::string("nul\0inside", 10)};
    call.types = {"QString", "QString", "QString"};
    return call;
}

std::string u32(std::uint32_t v)
{
    return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
}

std::string header(unsigned char kind, std::uint32_t length, std::uint16_t format = kFormatVersion,
                   unsigned char reserved = 0)
{
    return "KVIP" + std::string{char(format >> 8), char(format), char(kind), char(reserved)} + u32(length);
}

// A call frame by hand, with one argument, so that counts and lengths can lie.
std::string callFrame(std::uint32_t argc, bool typed, const std::string& trailer = std::string())
{
    const std::string b = u32(1) + u32(0) + u32(1) + "k" + u32(1) + "F" + u32(1) + u32(0) + u32(0) + u32(0) + u32(0)
                        + u32(argc) + u32(1) + "a" + (typed ? u32(1) + u32(7) + "QString" : u32(0));
    return header(1, std::uint32_t(b.size() + trailer.size())) + b + trailer;
}

std::string reencode(const Frame& f)
{
    return f.kind == FrameKind::Call    ? encodeCall(f.call)
         : f.kind == FrameKind::Reply ? encodeReply(f.serial, f.status)
                                        : encodeHello(f.connectId);
}

} // namespace

class tst_Frame : public QObject
{
    Q_OBJECT
private slots:
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
        std::vector<std::string> frames;
        std::string stream;
        for (std::uint32_t i = 0; i < 3000; ++i) {
            frames.push_back(i % 3 == 0   ? encodeCall(sampleCall(i))
                             : i % 3 == 1 ? encodeReply(i, ReplyStatus::Failed)
                                          : encodeHello(std::to_string(i)));
            stream += frames.back();
        }
        FrameReader reader;
        Frame frame;
        std::size_t seen = 0;
        bool whole = true;
        auto drain = [&] {
            // Each frame read out encodes back to exactly the bytes it came from.
            while (reader.next(frame) == FrameReader::Result::Frame)
                whole = whole && seen < frames.size() && reencode(frame) == frames[seen++];
        };
        int pieces = 0;
        for (std::size_t at = 0; at < stream.size(); at += std::size_t(pieceSize)) {
            reader.append(stream.data() + at, std::min(std::size_t(pieceSize), stream.size() - at));
            if (++pieces % drainEvery == 0)
                drain();
        }
        drain();
        QVERIFY2(reader.error().empty(), reader.error().c_str());
        QVERIFY(whole);
        QCOMPARE(seen, frames.size());
        QCOMPARE(reader.buffered(), std::size_t(0));
        QVERIFY(!reader.hasPartialFrame());

        // A frame short of its last byte waits for it.
        reader.append(frames[0].data(), frames[0].size() - 1);
        QCOMPARE(reader.next(frame), FrameReader::Result::NeedMore);
        QVERIFY(reader.hasPartialFrame());
        std::string error;
        QVERIFY(!decodeFrame(frames[0].data(), frames[0].size() - 1, frame, error));
        QCOMPARE(error, std::string("truncated body"));
    }

    void refused_data()
    {
        QTest::addColumn<std::string>("bytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("bad magic") << std::string("GET / HTTP/1.1\r\n\r\n") << "bad magic";
        QTest::newRow("format version") << header(1, 0, 2) << "unsupported format version 2";
        QTest::newRow("unknown kind") << header(9, 0) << "unknown frame kind 9";
        QTest::newRow("reserved byte") << header(1, 0, kFormatVersion, 1) << "reserved byte set";
        // Refused from the header alone: the reader must not wait for the body first.
        QTest::newRow("oversized") << header(1, std::uint32_t(kMaxBodySize + 1)) << "exceeds the limit";
        QTest::newRow("counts differ") << callFrame(1, false) << "argument and type counts differ";
        QTest::newRow("lying argument count") << callFrame(100000, false) << "truncated body";
        QTest::newRow("trailing bytes") << callFrame(1, true, "xx") << "trailing bytes";
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
};

QTEST_GUILESS_MAIN(tst_Frame)
#include "tst_frame.moc"
