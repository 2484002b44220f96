#pragma once

#include "Media/File.h"

#include <QString>

#include <functional>

namespace Media {

namespace Reader {
struct ProbeResult;
}

// What opening a file found out: applied to a Media::File on the GUI thread.
struct OpenResult
{
    File::State state = File::State::Failed;
    QString format;
    MediaTime duration;
    qint64 fileSize = 0;
    qint64 bitRate = 0;
    std::vector<VideoTrack> video;
    std::vector<AudioTrack> audio;
    QStringList unsupportedCodecs;
    std::vector<Tavrin::Proc::ProcessingError> errors;
    File::PathProblem pathProblem = File::PathProblem::None;

    void applyTo(File& file) const;
};

// Opens `path` on the calling thread (never the GUI thread: it reads the file and may load
// the reader module). Never throws; a failure is an OpenResult in state Failed with its
// errors. `timeoutMs` bounds how long a stalled input (a hung network share) may take;
// `cancelled`, when given, is asked while the file is read and ends the opening early.
OpenResult openFile(const QString& path, int timeoutMs = 20000, const std::function<bool()>& cancelled = {});

// The rule that turns what the reader saw into opened or failed (docs/media-model.md):
// - tracks that count are audio tracks and video tracks that are not cover art;
// - a counted track is unusable when the engine has no decoder for it or the format
//   configuration declares its codec unsupported; its codec joins unsupportedCodecs;
// - a stream whose parameters no real stream has (a side of 0 or over 16384 pixels, an
//   absurd frame rate, no sample rate or channels) is left out, as if absent;
// - no counted track at all: failed, input corrupted or missing (36);
// - counted tracks but none usable: failed, unsupported codec (11);
// - no plausible duration, unless a still picture: failed, input corrupted or missing (36);
// - otherwise opened, possibly with unsupported codecs.
OpenResult evaluate(const QString& path, const Reader::ProbeResult& probe);

// The reader module: where it is looked for, whether it is loaded (it is loaded by the
// first openFile), and why it could not be loaded.
QString mediaReaderPath();
bool isMediaReaderLoaded();

} // namespace Media
