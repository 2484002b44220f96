#pragma once

#include <QDialog>
#include <QSize>
#include <QTime>

#include <memory>
#include <optional>

namespace Tavrin {
namespace Gui {

// "File information": the container format of a media file and the main properties of
// its first video and first audio track. Rows appear only for the fields that were set,
// so an audio file shows no video section.
class FileInfoDialog : public QDialog
{
    Q_OBJECT

public:
    // What was set, for the dialog's own rows and for whoever checks them.
    struct Fields
    {
        QString fileName;
        std::optional<QString> formatName;
        std::optional<QString> videoCodecName;
        std::optional<QSize> videoGeometry;
        std::optional<QSize> aspectRatio;
        std::optional<QString> videoDuration;
        std::optional<double> frameRate;
        std::optional<qint64> videoBitRate;
        std::optional<QString> audioCodecName;
        std::optional<QString> audioDuration;
        std::optional<int> sampleRate;
        std::optional<qint64> audioBitRate;
        std::optional<int> channels;
    };

    explicit FileInfoDialog(const QString& fileName, QWidget* parent = nullptr);
    ~FileInfoDialog() override;

    void setFormatName(const QString& name);

    void setVideoCodecName(const QString& name);
    void setVideoGeometry(const QSize& frameSize);
    // The display aspect ratio as a reduced fraction (16 x 9).
    void setAspectRatio(int width, int height);
    // An empty format shows hours, minutes and seconds.
    void setVideoDuration(const QTime& duration, const QString& format = QString());
    void setFrameRate(double framesPerSecond);
    void setVideoBitRate(qint64 bitsPerSecond);

    void setAudioCodecName(const QString& name);
    void setAudioDuration(const QTime& duration, const QString& format = QString());
    void setSampleRate(int hertz);
    void setAudioBitRate(qint64 bitsPerSecond);
    void setChannels(int channels);

    const Fields& fields() const;

private:
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace Gui
} // namespace Tavrin
