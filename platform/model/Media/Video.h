#pragma once

#include <PubSub/PubSub.h>

#include <QSize>

namespace Media {

// What kind of media a clip shows. The values are stored in project files: append only.
enum class Type { Unknown = 0, Video = 1, Audio = 2, Image = 3 };

// The project video: the frame every clip is composed into. A value type; the timeline
// owns the one in use and changes it only through a VideoChangeRequest, so that the
// change can be undone.
class Video
{
public:
    Video() = default;
    Video(int width, int height, double frameRate) : m_size(width, height), m_frameRate(frameRate) {}

    int frameWidth() const { return m_size.width(); }
    int frameHeight() const { return m_size.height(); }
    QSize frameSize() const { return m_size; }
    void setFrameSize(int width, int height) { m_size = QSize(width, height); }
    // Pixel aspect ratio, x:y (1:1 for square pixels).
    int frameAspectX() const { return m_aspectX; }
    int frameAspectY() const { return m_aspectY; }
    void setFrameAspect(int x, int y)
    {
        m_aspectX = x;
        m_aspectY = y;
    }
    double frameRate() const { return m_frameRate; }
    void setFrameRate(double frameRate) { m_frameRate = frameRate; }

    bool operator==(const Video& o) const
    {
        return m_size == o.m_size && m_aspectX == o.m_aspectX && m_aspectY == o.m_aspectY && m_frameRate == o.m_frameRate;
    }
    bool operator!=(const Video& o) const { return !(*this == o); }

private:
    QSize m_size{1920, 1080};
    int m_aspectX = 1;
    int m_aspectY = 1;
    double m_frameRate = 25.0;
};

// Asks the owner of `source` to replace it by `replacement`. The owner applies it as one
// undoable change and then publishes VideoChangedNotification.
struct VideoChangeRequest : Message::Types::Request<Video>
{
    VideoChangeRequest(const Video* source, const Video& replacement) : Request(source), replacement(replacement) {}
    Video replacement;
};

// Published by the owner after `source` changed; `previous` is its value before.
struct VideoChangedNotification : Message::Types::Notification<Video>
{
    VideoChangedNotification(const Video* source, const Video& previous) : Notification(source), previous(previous) {}
    Video previous;
};

// Sends changes of one video while it lives: subscribe, send, let it go.
//
//   Media::VideoChanger changer(*timeline->video());
//   Media::Video copy = *timeline->video();
//   copy.setFrameSize(1920, 1080);
//   changer.change(copy);
class VideoChanger
{
public:
    explicit VideoChanger(const Video& video) : m_video(&video) {}
    void change(const Video& replacement) const { PubSub::publish(VideoChangeRequest(m_video, replacement)); }

private:
    const Video* m_video;
};

namespace Details {

// A view of one video: videoChanged() is called after each change of the video it views.
class VideoViewBase : private PubSub::Subscriber<VideoChangedNotification>
{
public:
    VideoViewBase() = default;
    ~VideoViewBase() override = default;

    const Video* viewedVideo() const { return m_viewed; }
    void viewVideo(const Video* video)
    {
        if (m_viewed)
            unsubscribe(m_viewed);
        m_viewed = video;
        if (m_viewed)
            subscribe(m_viewed);
    }

private:
    virtual void videoChanged(const Video* previous, const Video* current) = 0;
    void notify(const VideoChangedNotification& message) final { videoChanged(&message.previous, message.source()); }

    const Video* m_viewed = nullptr;
};

} // namespace Details
} // namespace Media
