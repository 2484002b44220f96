#pragma once

// Media files as the host's media model holds them, for timelines in editing tests.

#include <Media/File.h>
#include <Timeline/TimelineModel.h>

#include <map>
#include <memory>

struct FakeMedia
{
    std::map<QString, std::unique_ptr<Media::File>> files;

    // A file in `state` with one video track per size (none: sound only) and, optionally, sound.
    Media::File* add(const QString& path, const QList<QSize>& videoSizes, bool audio = true,
                     Media::File::State state = Media::File::State::Opened)
    {
        auto file = std::make_unique<Media::File>(path);
        std::vector<Media::VideoTrack> tracks;
        for (const QSize& size : videoSizes) {
            Media::VideoTrack track;
            track.frameSize = size;
            tracks.push_back(track);
        }
        file->setVideoTracks(tracks);
        if (audio)
            file->setAudioTracks({Media::AudioTrack{}});
        file->setFileDuration(MediaTime::fromSeconds(10));
        file->setState(state);
        Media::File* raw = file.get();
        files[path] = std::move(file);
        return raw;
    }
    Timeline::TimelineModel::MediaResolver resolver()
    {
        return [this](const QString& path) -> const Media::File* {
            const auto found = files.find(path);
            return found == files.end() ? nullptr : found->second.get();
        };
    }
};
