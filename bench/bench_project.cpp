// bench_project io CLIPS MEDIA DIR   a project of CLIPS clips over MEDIA files (made in DIR),
//                                    saved and loaded through the project file code, against
//                                    QJsonDocument alone writing and parsing the same bytes;
//                                    interleaved, best of 15 rounds each, in milliseconds.
// bench_project load FILE N          FILE loaded N times (for a profiler: no setup, no peer).
// bench_project edit N               N clips placed one by one (N undo steps), all selected,
//                                    all removed in one step; milliseconds of each phase.

#include <Project/ProjectFile.h>
#include <Util/Allocator.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QUndoStack>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

double timedMs(const std::function<void()>& run)
{
    QElapsedTimer timer;
    timer.start();
    run();
    return timer.nsecsElapsed() / 1e6;
}

int io(int clips, int media, const QString& dir)
{
    QDir().mkpath(dir + "/media");
    QStringList paths;
    for (int i = 0; i < clips; ++i) {
        const QString path = QStringLiteral("%1/media/file%2.mp4").arg(dir).arg(i % media, 5, 10, QLatin1Char('0'));
        if (i < media) {
            QFile file(path);
            if (!file.exists() && !(file.open(QIODevice::WriteOnly) && file.write("bench media") > 0))
                return 1;
        }
        paths << path;
    }
    Timeline::TimelineModel timeline;
    const QList<Timeline::IClip*> placed = timeline.placeMedia(paths, {});
    for (int i = 0; i < placed.size(); i += 5)
        placed[i]->addEffect(Effect::Object::create(QStringLiteral("blur")));
    const QString path = dir + "/bench.kvproj";
    QString error;

    // The floor: the same bytes, parsed and written by QJsonDocument with nothing else.
    if (!Project::save(path, timeline, &error))
        std::fprintf(stderr, "save: %s\n", qPrintable(error));
    QFile in(path);
    in.open(QIODevice::ReadOnly);
    const QByteArray bytes = in.readAll();
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    const QString floorPath = dir + "/floor.json";

    // Each side once per round, interleaved, best round of each: on a shared machine a slow
    // spell then falls on both sides alike. A loaded model is destroyed after its timing:
    // loading ends with the model built; taking it down is not part of it.
    double save = 1e300, load = 1e300, floorSave = 1e300, floorLoad = 1e300;
    for (int round = 0; round < 15; ++round) {
        save = std::min(save, timedMs([&] {
            if (!Project::save(path, timeline, &error))
                std::fprintf(stderr, "save: %s\n", qPrintable(error));
        }));
        floorSave = std::min(floorSave, timedMs([&] {
            QFile out(floorPath);
            out.open(QIODevice::WriteOnly);
            out.write(document.toJson(QJsonDocument::Indented));
        }));
        Timeline::TimelineModel reopened;
        load = std::min(load, timedMs([&] {
            Project::Loaded loaded;
            if (!Project::load(path, &loaded, &error))
                std::fprintf(stderr, "load: %s\n", qPrintable(error));
            reopened.reset(std::move(loaded.content));
        }));
        QJsonDocument parsed;
        floorLoad = std::min(floorLoad, timedMs([&] {
            QFile file(floorPath);
            file.open(QIODevice::ReadOnly);
            parsed = QJsonDocument::fromJson(file.readAll());
            if (parsed.isNull())
                std::fprintf(stderr, "floor: not parsed\n");
        }));
    }
    std::printf("io clips=%d media=%d bytes=%d save_ms=%.1f floor_save_ms=%.1f load_ms=%.1f floor_load_ms=%.1f "
                "save_ratio=%.2f load_ratio=%.2f\n",
                timeline.clipCount(), media, int(bytes.size()), save, floorSave, load, floorLoad, save / floorSave,
                load / floorLoad);
    return 0;
}

int loadOnly(const QString& path, int count)
{
    QString error;
    for (int i = 0; i < count; ++i) {
        Project::Loaded loaded;
        if (!Project::load(path, &loaded, &error)) {
            std::fprintf(stderr, "load: %s\n", qPrintable(error));
            return 1;
        }
        Timeline::TimelineModel reopened;
        reopened.reset(std::move(loaded.content));
    }
    return 0;
}

int edit(int count)
{
    double insert = 0, select = 0, remove = 0;
    // Best of three, each on a fresh timeline.
    for (int round = 0; round < 3; ++round) {
        Timeline::TimelineModel timeline;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < count; ++i)
            timeline.placeMedia({QStringLiteral("/media/clip%1.mp4").arg(i % 100)}, {});
        const double i1 = timer.nsecsElapsed() / 1e6;
        timer.restart();
        timeline.selectAll();
        const double s1 = timer.nsecsElapsed() / 1e6;
        timer.restart();
        timeline.removeClips(timeline.selectedClips());
        const double r1 = timer.nsecsElapsed() / 1e6;
        if (timeline.clipCount() != 0 || timeline.undoStack()->count() != count + 1)
            return 1;
        if (round == 0 || i1 + s1 + r1 < insert + select + remove) {
            insert = i1;
            select = s1;
            remove = r1;
        }
    }
    std::printf("edit clips=%d insert_ms=%.2f select_ms=%.2f remove_ms=%.2f\n", count, insert, select, remove);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    // The allocator as the editor sets it up (KLIPVANE_MALLOC_DEFAULTS=1 leaves the defaults).
    Tavrin::Util::tuneAllocatorForMedia();
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && arguments.at(1) == QLatin1String("io"))
        return io(arguments.at(2).toInt(), arguments.at(3).toInt(), arguments.at(4));
    if (arguments.size() == 4 && arguments.at(1) == QLatin1String("load"))
        return loadOnly(arguments.at(2), arguments.at(3).toInt());
    if (arguments.size() == 3 && arguments.at(1) == QLatin1String("edit"))
        return edit(arguments.at(2).toInt());
    std::fprintf(stderr, "usage: bench_project io CLIPS MEDIA DIR | load FILE N | edit N\n");
    return 2;
}
