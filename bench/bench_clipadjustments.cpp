// The adjustments of a large selection: N clips with 10 effects each, every effect applied
// to all clips together (so each is one merged row), all selected.
//   build_ms   ClipAdjustmentsProvider::mergedAdjustments over the selection
//   change_ms  one setIntensity on a merged row (a deep copy per clip, one undo step)
//   undo_steps how many undo steps that change made (must be 1)
// Usage: bench_clipadjustments N   (prints key=value pairs; the least of 3 rounds)

#include <Editing/ClipAdjustments.h>

#include <Media/File.h>
#include <Serialize/Serialize.h>
#include <Timeline/TimelineModel.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QUndoStack>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int clips = argc > 1 ? std::max(1, atoi(argv[1])) : 1000;
    const QStringList ids{"blur", "grayscale", "sepia", "brightness", "sharpen",
                          "vignette", "blur", "brightness", "sharpen", "grayscale"};

    Media::File file(QStringLiteral("/bench/a.mp4"));
    Media::VideoTrack track;
    track.frameSize = QSize(1920, 1080);
    file.setVideoTracks({track});
    file.setFileDuration(MediaTime::fromSeconds(10));
    file.setState(Media::File::State::Opened);

    Timeline::TimelineModel timeline;
    timeline.setMediaResolver([&](const QString&) { return &file; });
    QStringList paths;
    for (int i = 0; i < clips; ++i)
        paths << file.filePath();
    timeline.placeMedia(paths, {});
    const QList<Timeline::IClip*> placed = timeline.clips(0);
    for (const QString& id : ids) {
        const auto effect = Effect::Object::create(id);
        effect->setIntensity(0.5);
        for (Timeline::IClip* clip : placed)
            timeline.addEffect(clip, Serialize::deepCopy(effect.get()));
    }
    timeline.select(placed, Timeline::ITimeline::SelectionMode::Replace);

    double build = 1e300, change = 1e300;
    int steps = -1;
    int rows = 0;
    for (int round = 0; round < 3; ++round) {
        QElapsedTimer timer;
        timer.start();
        const auto merged = ClipAdjustmentsProvider::mergedAdjustments(timeline.selectedClips());
        build = std::min(build, timer.nsecsElapsed() / 1e6);
        rows = merged.size();
        const int before = timeline.undoStack()->count();
        timer.restart();
        merged.first()->setIntensity(0.25 + round * 0.1);
        change = std::min(change, timer.nsecsElapsed() / 1e6);
        steps = timeline.undoStack()->count() - before;
    }
    std::printf("clips=%d rows=%d build_ms=%.2f change_ms=%.2f undo_steps=%d\n", int(placed.size()), rows, build,
                change, steps);
    return steps == 1 ? 0 : 1;
}
