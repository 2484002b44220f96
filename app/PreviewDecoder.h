#pragma once

#include <QImage>
#include <QObject>
#include <QString>

#include <memory>

// What the preview asks of the decoder: one frame of one file, its effects, a size.
struct FrameRequest
{
    quint64 serial = 0;   // given by PreviewDecoder::request
    QString path;
    qint64 sourceUs = 0;  // the time in the file
    QString filters;      // libavfilter description of the clip's effects
    QSize box;            // fitted into
    qint64 timelineUs = 0; // where on the timeline it is shown
};

struct DecodedFrame
{
    FrameRequest request;
    QImage image;         // null when nothing could be decoded
    qint64 ptsUs = -1;
    bool pastEnd = false;
    bool decodingFailed = false;
    QString problem;
    qint64 decodeUs = 0;  // time spent decoding and rendering
};
Q_DECLARE_METATYPE(DecodedFrame)

// Decodes preview frames on a thread of its own with the reader module's frame reader,
// newest request first: a request made while another is decoded replaces any request
// still waiting, so scrubbing never queues up work the user has already moved past.
//
//   decoder.request({0, "/m/a.mp4", 2'000'000, "hflip", {800, 450}});
//   connect(&decoder, &PreviewDecoder::frameDecoded, this, &Preview::show);
class PreviewDecoder : public QObject
{
    Q_OBJECT
public:
    explicit PreviewDecoder(QObject* parent = nullptr);
    ~PreviewDecoder() override;

    // Returns the request's serial; results come back in the order asked.
    quint64 request(FrameRequest request);
    // Whether the reader module could be loaded (a log line says why not).
    bool isAvailable() const;

signals:
    void frameDecoded(const DecodedFrame& frame);

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};
