#include "TestSandbox.h"

#include <Project/ProjectFile.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

#include <functional>

using namespace Timeline;

namespace {

QByteArray clipsText(const ITimeline& timeline)
{
    QJsonArray clips;
    for (IClip* clip : timeline.clips())
        clips.append(static_cast<Clip*>(clip)->toJson());
    return QJsonDocument(clips).toJson(QJsonDocument::Compact);
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

using Mutation = std::function<void(QJsonObject&)>;

// Edits the first clip of a project's JSON.
Mutation firstClip(std::function<void(QJsonObject&)> edit)
{
    return [edit](QJsonObject& root) {
        QJsonArray clips = root.value("clips").toArray();
        QJsonObject clip = clips.at(0).toObject();
        edit(clip);
        clips[0] = clip;
        root["clips"] = clips;
    };
}

} // namespace

Q_DECLARE_METATYPE(Mutation)

class tst_ProjectFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    // A small project over real (if not decodable) files in `folder`.
    void makeProject(TimelineModel& timeline, const QString& folder)
    {
        QDir().mkpath(folder + "/media");
        QStringList paths;
        for (const char* name : {"a.mp4", "b.mp3", "c.png"}) {
            paths << folder + "/media/" + name;
            QVERIFY(writeFile(paths.last(), QByteArray("media ") + name));
        }
        const QList<IClip*> clips = timeline.placeMedia(paths, {});
        auto group = Effect::EffectsHolder::create();
        group->append(Effect::Object::create("blur"));
        auto turn = Effect::Object::create(Effect::Id::Transpose);
        turn->setAngle(90);
        group->append(turn);
        QVERIFY(clips.at(0)->addEffect(group));
        auto crop = Effect::Object::create(Effect::Id::Crop);
        crop->setCropTransform(QTransform::fromScale(1.5, 1.25));
        QVERIFY(clips.at(0)->addEffect(crop));
        QVERIFY(timeline.setSpeed(clips.at(0), 1.5));
        QVERIFY(timeline.setReversed(clips.at(0), true));
        QVERIFY(timeline.addOverlayPreset({"Title", "Hello", MediaTime::fromSeconds(3)}, {}));
        Media::Video video(1280, 720, 30);
        timeline.setVideo(video);
    }

    // The document of a small project to be saved at `path` (its media made beside it),
    // edited by `mutation`.
    QJsonObject editedProject(const QString& path, const Mutation& mutation)
    {
        TimelineModel timeline;
        makeProject(timeline, QFileInfo(path).path());
        QJsonObject root = QJsonDocument::fromJson(Project::serialize(timeline, path)).object();
        mutation(root);
        return root;
    }

private slots:
    void roundTrip()
    {
        TimelineModel timeline;
        const QString folder = m_dir.filePath("roundtrip");
        makeProject(timeline, folder);
        const QString path = folder + "/story.kvproj";
        QString error;
        QVERIFY2(Project::save(path, timeline, &error), qPrintable(error));
        Project::Loaded loaded;
        QVERIFY2(Project::load(path, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.missingCount(), 0);
        QCOMPARE(loaded.media.size(), 3);
        QCOMPARE(loaded.media.at(0).relative, QStringLiteral("media/a.mp4"));
        QCOMPARE(loaded.media.at(0).size, qint64(11)); // "media a.mp4"
        QVERIFY(loaded.media.at(0).modified.isValid());
        TimelineModel reopened;
        reopened.reset(std::move(loaded.content));
        QCOMPARE(clipsText(reopened), clipsText(timeline));
        QCOMPARE(*reopened.video(), *timeline.video());
        QCOMPARE(reopened.clipCount(), timeline.clipCount());
        QCOMPARE(reopened.undoStack()->count(), 0);
        // New clips never take the id of a loaded one.
        const IClip* added = reopened.placeMedia({folder + "/media/a.mp4"}, {}).first();
        QCOMPARE(reopened.clipById(added->id()), added);
        QCOMPARE(reopened.clipCount(), timeline.clipCount() + 1);
    }

    // A project folder moved with its media opens from the relative paths; media that are
    // gone are reported missing, and their clips stay.
    void movedAndMissingMedia()
    {
        TimelineModel timeline;
        const QString folder = m_dir.filePath("before");
        makeProject(timeline, folder);
        QString error;
        QVERIFY(Project::save(folder + "/story.kvproj", timeline, &error));
        const QString moved = m_dir.filePath("after");
        QVERIFY(QDir().rename(folder, moved));
        Project::Loaded loaded;
        QVERIFY2(Project::load(moved + "/story.kvproj", &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.missingCount(), 0);
        QVERIFY(std::any_of(loaded.media.begin(), loaded.media.end(),
                            [&](const Project::MediaEntry& m) { return m.resolved == moved + "/media/b.mp3"; }));
        // The clips follow their media to where they were found.
        for (const auto& clip : loaded.content.clips)
            QVERIFY2(clip->mediaPath().isEmpty() || clip->mediaPath().startsWith(moved + '/'), qPrintable(clip->mediaPath()));

        QVERIFY(QFile::remove(moved + "/media/b.mp3"));
        QVERIFY(Project::load(moved + "/story.kvproj", &loaded, &error));
        QCOMPARE(loaded.missingCount(), 1);
        TimelineModel reopened;
        reopened.reset(std::move(loaded.content));
        QCOMPARE(reopened.clipCount(), timeline.clipCount());
        int missing = 0;
        for (IClip* clip : reopened.clips())
            missing += clip->isMediaMissing();
        QCOMPARE(missing, 1);
        QVERIFY(reopened.isMissing(folder + "/media/b.mp3"));
    }

    // Optional clip fields are read however many other keys a clip has, known or not: the
    // loader stops looking for them only once every key of the clip was read.
    void optionalFields_data()
    {
        QTest::addColumn<Mutation>("mutation");
        QTest::newRow("as saved") << firstClip([](QJsonObject&) {});
        QTest::newRow("an unknown key only") << firstClip([](QJsonObject& c) { c["comment"] = "x"; });
        QTest::newRow("unknown keys around the last optional one") << firstClip([](QJsonObject& c) {
            c["aaa"] = 1;
            c["zzz"] = true;
            c["speedCompensated"] = true;
        });
        QTest::newRow("without media, the rest found") << firstClip([](QJsonObject& c) {
            c.remove("media");
            c["reversed"] = true;
            c["videoTrack"] = 2;
            c["text"] = "Title";
        });
    }

    void optionalFields()
    {
        QFETCH(Mutation, mutation);
        const QString path = m_dir.filePath("optional/p.kvproj");
        const QJsonObject root = editedProject(path, mutation);
        const QJsonObject edited = root.value("clips").toArray().at(0).toObject();
        QVERIFY(writeFile(path, QJsonDocument(root).toJson()));
        Project::Loaded loaded;
        QString error;
        QVERIFY2(Project::load(path, &loaded, &error), qPrintable(error));
        const Clip& clip = *loaded.content.clips.at(0);
        QCOMPARE(clip.timing().isReversed(), edited.value("reversed").toBool());
        QCOMPARE(clip.timing().isSpeedCompensated(), edited.value("speedCompensated").toBool());
        QCOMPARE(clip.currentVideoTrackIndex(), edited.value("videoTrack").toInt());
        QCOMPARE(clip.text(), edited.value("text").toString());
        QCOMPARE(clip.mediaPath().isEmpty(), !edited.contains("media"));
        QCOMPARE(int(clip.effects().size()), edited.value("effects").toArray().size());
    }

    // Every damaged file is refused with a reason that names the problem.
    void corrupt_data()
    {
        QTest::addColumn<Mutation>("mutation");
        QTest::addColumn<QByteArray>("replacement"); // used instead of the mutation when set
        QTest::addColumn<QString>("reason");
        const Mutation none = [](QJsonObject&) {};
        QTest::newRow("not JSON") << none << QByteArray("<?xml version=\"1.0\"?><project/>") << "damaged or incomplete";
        QTest::newRow("empty") << none << QByteArray(" ") << "damaged or incomplete";
        QTest::newRow("another program's JSON") << none << QByteArray("{\"clips\": []}") << "not a Klipvane project";
        QTest::newRow("a list, not an object") << none << QByteArray("[1, 2]") << "not a Klipvane project";
        QTest::newRow("newer format") << Mutation([](QJsonObject& r) { r["version"] = 7; }) << QByteArray()
                                      << "newer version of Klipvane (format 7)";
        QTest::newRow("version as text") << Mutation([](QJsonObject& r) { r["version"] = "1"; }) << QByteArray()
                                         << "version: not a whole number";
        QTest::newRow("frame width absurd") << Mutation([](QJsonObject& r) {
            QJsonObject v = r["video"].toObject();
            v["width"] = 1e12;
            r["video"] = v;
        }) << QByteArray() << "video.width: not a whole number from 16 to 16384";
        QTest::newRow("frame rate zero") << Mutation([](QJsonObject& r) {
            QJsonObject v = r["video"].toObject();
            v["frameRate"] = 0;
            r["video"] = v;
        }) << QByteArray() << "video.frameRate";
        QTest::newRow("speed as text") << firstClip([](QJsonObject& c) { c["speed"] = "fast"; }) << QByteArray()
                                       << "clips[0].speed: not a number";
        QTest::newRow("negative start") << firstClip([](QJsonObject& c) { c["start"] = -5; }) << QByteArray()
                                        << "clips[0].start";
        QTest::newRow("fractional time") << firstClip([](QJsonObject& c) { c["length"] = 2.5; }) << QByteArray()
                                         << "clips[0].length";
        QTest::newRow("huge speed") << firstClip([](QJsonObject& c) { c["speed"] = 1e300; }) << QByteArray()
                                    << "clips[0].speed";
        QTest::newRow("unknown effect") << firstClip([](QJsonObject& c) {
            QJsonArray e = c["effects"].toArray();
            QJsonObject first = e[0].toObject();
            first["id"] = "teleport";
            e[0] = first;
            c["effects"] = e;
        }) << QByteArray() << "clips[0].effects[0].id: unknown effect \"teleport\"";
        QTest::newRow("effects not a list") << firstClip([](QJsonObject& c) { c["effects"] = 3; }) << QByteArray()
                                            << "clips[0].effects: not a list";
        QTest::newRow("media index out of range") << firstClip([](QJsonObject& c) { c["media"] = 99; }) << QByteArray()
                                                  << "clips[0].media";
        QTest::newRow("track that does not exist") << firstClip([](QJsonObject& c) { c["track"] = 40; }) << QByteArray()
                                                   << "which does not exist";
        QTest::newRow("sound on a video track") << firstClip([](QJsonObject& c) { c["type"] = 2; }) << QByteArray()
                                                << "wrong kind";
        QTest::newRow("two clips, one id") << Mutation([](QJsonObject& r) {
            QJsonArray clips = r["clips"].toArray();
            QJsonObject second = clips[1].toObject();
            second["id"] = clips[0].toObject()["id"];
            clips[1] = second;
            r["clips"] = clips;
        }) << QByteArray() << "two clips have the id";
        QTest::newRow("group of nobody") << firstClip([](QJsonObject& c) { c["group"] = "c999"; }) << QByteArray()
                                         << "group that does not exist";
        QTest::newRow("relative media path") << Mutation([](QJsonObject& r) {
            QJsonArray media = r["media"].toArray();
            QJsonObject m = media[0].toObject();
            m["path"] = "media/a.mp4";
            media[0] = m;
            r["media"] = media;
        }) << QByteArray() << "media[0].path: not an absolute path";
        QByteArray deep = "{\"id\": \"blur\", \"uid\": \"x\"}";
        for (int i = 0; i < 40; ++i)
            deep = "{\"id\": \"group\", \"uid\": \"g" + QByteArray::number(i) + "\", \"effects\": [" + deep + "]}";
        QTest::newRow("groups nested without end") << firstClip([deep](QJsonObject& c) {
            c["effects"] = QJsonArray{QJsonDocument::fromJson(deep).object()};
        }) << QByteArray() << "nested too deep";
    }

    void corrupt()
    {
        QFETCH(Mutation, mutation);
        QFETCH(QByteArray, replacement);
        QFETCH(QString, reason);
        const QString path = m_dir.filePath("corrupt/p.kvproj");
        const QJsonObject root = editedProject(path, mutation);
        QVERIFY(writeFile(path, replacement.isEmpty() ? QJsonDocument(root).toJson() : replacement));
        Project::Loaded loaded;
        QString error;
        QVERIFY(!Project::load(path, &loaded, &error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        QCOMPARE(loaded.content.clips.size(), size_t(0));
    }

    // A file cut anywhere is refused, never half loaded.
    void truncated()
    {
        TimelineModel timeline;
        makeProject(timeline, m_dir.filePath("truncated"));
        const QByteArray bytes = Project::serialize(timeline, m_dir.filePath("truncated/p.kvproj"));
        for (int cut = 0; cut < bytes.size() - 2; cut += 7) {
            QString error;
            QVERIFY2(!Project::parse(bytes.left(cut), m_dir.filePath("truncated/p.kvproj"), nullptr, &error),
                     qPrintable(QString::number(cut)));
            QVERIFY(!error.isEmpty());
        }
    }

    void oversized()
    {
        const QString path = m_dir.filePath("huge.kvproj");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(100LL * 1024 * 1024)); // sparse: no 100 MB written
        file.close();
        QString error;
        QVERIFY(!Project::load(path, nullptr, &error));
        QVERIFY2(error.contains("100 MB"), qPrintable(error));
    }

    // kill -9 in the middle of a save leaves the previous project whole; the saver never
    // leaves a file that does not load.
    void killedDuringSave()
    {
        const QString path = m_dir.filePath("killed/story.kvproj");
        QDir().mkpath(m_dir.filePath("killed"));
        TimelineModel old;
        old.placeMedia({"/media/old.mp4"}, {});
        QString error;
        QVERIFY(Project::save(path, old, &error));
        const QByteArray before = [&] {
            QFile f(path);
            f.open(QIODevice::ReadOnly);
            return f.readAll();
        }();

        // Killed as soon as it starts saving a large project over it (the temporary file
        // QSaveFile writes is unnamed until the commit, so there is nothing to watch for).
        QProcess saver;
        QByteArray said;
        connect(&saver, &QProcess::readyReadStandardOutput, this, [&] { said += saver.readAllStandardOutput(); });
        saver.start(QCoreApplication::applicationDirPath() + "/projectsaver", {path, "20000"});
        QVERIFY(QTest::qWaitFor([&] { return said.contains("started"); }, 20000));
        saver.kill();
        QVERIFY(saver.waitForFinished());
        QVERIFY2(!said.contains("saved"), "the first save ended before the kill");
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);

        // Killed at an arbitrary moment after some saves: whatever is there loads.
        said.clear();
        saver.start(QCoreApplication::applicationDirPath() + "/projectsaver", {path, "20000"});
        QVERIFY(QTest::qWaitFor([&] { return said.count("saved") >= 2; }, 60000));
        saver.kill();
        QVERIFY(saver.waitForFinished());
        Project::Loaded loaded;
        QVERIFY2(Project::load(path, &loaded, &error), qPrintable(error));
        QVERIFY(loaded.content.clips.size() == 20000 || loaded.content.clips.size() == 20001);
    }
};

QTEST_GUILESS_MAIN(tst_ProjectFile)
#include "tst_projectfile.moc"
