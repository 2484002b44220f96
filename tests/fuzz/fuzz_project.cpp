// libFuzzer target for the project loader: arbitrary bytes as a .kvproj file. Beyond "no
// crash" (and, with the sanitizers, no bad read, leak or undefined behaviour), every input
// the loader accepts must hold what the editor relies on:
//  - the timeline takes the loaded content as it is (reset() validates it again);
//  - saving it and loading the saved bytes gives the same clips, so a project that opened
//    once opens again after a save.
// Built with -DKV_PROJECT_SEEDS instead, the file is the program that writes the seed
// corpus with the saver itself, so the seeds follow the format as it is today.

#include <Project/ProjectFile.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <cstdlib>

#define REQUIRE(condition)                                                                           \
    do {                                                                                             \
        if (!(condition)) {                                                                          \
            std::fprintf(stderr, "fuzz_project: line %d: %s does not hold\n", __LINE__, #condition); \
            std::abort();                                                                            \
        }                                                                                            \
    } while (0)

namespace {

const QString kPath = QStringLiteral("/nonexistent-klipvane-fuzz/story.kvproj");

QCoreApplication& application()
{
    static int argc = 1;
    static char name[] = "fuzz_project";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    return app;
}

} // namespace

#ifndef KV_PROJECT_SEEDS

static QByteArray clipsOf(const Timeline::ITimeline& timeline)
{
    QJsonArray clips;
    for (Timeline::IClip* clip : timeline.clips())
        clips.append(static_cast<Timeline::Clip*>(clip)->toJson());
    return QJsonDocument(clips).toJson(QJsonDocument::Compact);
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
    application();
    Project::Loaded loaded;
    QString error;
    const bool ok = Project::parse(QByteArray(reinterpret_cast<const char*>(data), int(size)), kPath, &loaded, &error);
    REQUIRE(ok == error.isEmpty());
    if (!ok)
        return 0;
    Timeline::TimelineModel timeline;
    const size_t count = loaded.content.clips.size();
    timeline.reset(std::move(loaded.content));
    REQUIRE(size_t(timeline.clipCount()) == count);

    Project::Loaded again;
    REQUIRE(Project::parse(Project::serialize(timeline, kPath), kPath, &again, &error));
    Timeline::TimelineModel reopened;
    reopened.reset(std::move(again.content));
    REQUIRE(clipsOf(reopened) == clipsOf(timeline));
    return 0;
}

#else

// Writes seeds made by the saver into the folder named on the command line.
int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    application();
    Timeline::TimelineModel timeline;
    const QString folder = QString::fromLocal8Bit(argv[1]);
    int n = 0;
    const auto write = [&] {
        QFile out(QStringLiteral("%1/seed%2.kvproj").arg(folder).arg(n++));
        return out.open(QIODevice::WriteOnly) && out.write(Project::serialize(timeline, kPath)) > 0;
    };
    bool ok = write(); // empty
    const QList<Timeline::IClip*> clips =
        timeline.placeMedia({QStringLiteral("/m/a.mp4"), QStringLiteral("/m/b.mp3"), QStringLiteral("/m/c.png")}, {});
    ok = ok && write();
    auto group = Effect::EffectsHolder::create();
    group->append(Effect::Object::create(QStringLiteral("blur")));
    auto turn = Effect::Object::create(Effect::Id::Transpose);
    turn->setAngle(270);
    group->append(turn);
    clips.first()->addEffect(group);
    auto crop = Effect::Object::create(Effect::Id::Crop);
    crop->setCropTransform(QTransform::fromScale(2, 1.5));
    clips.first()->addEffect(crop);
    timeline.setSpeed(clips.first(), 0.5);
    timeline.setReversed(clips.first(), true);
    timeline.addOverlayPreset({QStringLiteral("Title"), QStringLiteral("Hello"), MediaTime::fromSeconds(2)}, {});
    ok = ok && write();
    return ok ? 0 : 1;
}

#endif
