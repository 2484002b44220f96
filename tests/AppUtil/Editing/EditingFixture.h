#pragma once

// A timeline with media as the host's media model would hold them once opened, and an
// editor over it, for the scene editor and playback tracker tests.

#include <Editor/Editor.h>
#include <Media/File.h>
#include <Timeline/TimelineModel.h>

#include <map>
#include <memory>

struct EditingFixture
{
    std::map<QString, std::unique_ptr<Media::File>> files;
    Timeline::TimelineModel timeline;
    Editor::Editor editor{&timeline};

    EditingFixture()
    {
        timeline.setMediaResolver([this](const QString& path) -> const Media::File* {
            const auto found = files.find(path);
            return found == files.end() ? nullptr : found->second.get();
        });
    }

    // A video file of `size` with pixel aspect x:y (or a sound file when size is empty),
    // placed on the timeline; returns its picture clip (or its sound clip).
    Timeline::IClip* place(const QString& path, QSize size, int aspectX = 1, int aspectY = 1, int seconds = 10)
    {
        auto file = std::make_unique<Media::File>(path);
        if (size.isValid()) {
            Media::VideoTrack track;
            track.frameSize = size;
            track.pixelAspectX = aspectX;
            track.pixelAspectY = aspectY;
            track.frameRate = 25;
            file->setVideoTracks({track});
        } else {
            Media::AudioTrack track;
            track.sampleRate = 48000;
            track.channels = 2;
            file->setAudioTracks({track});
        }
        file->setFileDuration(MediaTime::fromSeconds(seconds));
        file->setState(Media::File::State::Opened);
        files[path] = std::move(file);
        const QList<Timeline::IClip*> clips = timeline.placeMedia({path}, {});
        return clips.isEmpty() ? nullptr : clips.first();
    }
};
