#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestSandbox.h"

#include <Project/ProjectFile.h>

// A project's media: old path and the size the project recorded for it (-1 none).
using MediaList = QList<QPair<QString, qint64>>;

// The relinking of moved media, from outside: `kvrelink` over a list of missing paths and
// over a project, and the host opening a project whose media folder was renamed.
//
// The tree: "media" (a.mp4, b.wav, sub/c.png, "new\nline.mp4"), then renamed "media moved".
class TestRelink : public QObject
{
    Q_OBJECT

    // A project at `path` whose clips use `media` (old path -> the size it recorded, -1 none).
    static void writeProject(const QString& path, const MediaList& media)
    {
        QJsonArray entries, clips;
        for (int i = 0; i < media.size(); ++i) {
            QJsonObject entry{{QStringLiteral("path"), media[i].first}};
            if (media[i].second >= 0)
                entry.insert(QStringLiteral("size"), media[i].second);
            entries << entry;
            clips << QJsonObject{{QStringLiteral("id"), QStringLiteral("c%1").arg(i)}, {QStringLiteral("type"), 1},
                                 {QStringLiteral("track"), 0}, {QStringLiteral("start"), i * 1000000},
                                 {QStringLiteral("in"), 0}, {QStringLiteral("length"), 1000000},
                                 {QStringLiteral("speed"), 1}, {QStringLiteral("media"), i},
                                 {QStringLiteral("name"), QFileInfo(media[i].first).fileName()},
                                 {QStringLiteral("category"), QStringLiteral("Video")},
                                 {QStringLiteral("reversed"), false}, {QStringLiteral("speedCompensated"), false},
                                 {QStringLiteral("nativeAudio"), false}, {QStringLiteral("mediaType"), 1}};
        }
        const QJsonObject root{{QStringLiteral("format"), QStringLiteral("klipvane-project")},
                               {QStringLiteral("version"), 1},
                               {QStringLiteral("video"), QJsonObject{{QStringLiteral("width"), 1920},
                                                                     {QStringLiteral("height"), 1080},
                                                                     {QStringLiteral("frameRate"), 25}}},
                               {QStringLiteral("tracks"), QJsonArray{QStringLiteral("video")}},
                               {QStringLiteral("media"), entries},
                               {QStringLiteral("clips"), clips}};
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QJsonDocument(root).toJson());
    }

    // The media paths of the clips of the project at `path`, in clip order.
    static QStringList clipMedia(const QString& path)
    {
        Project::Loaded loaded;
        QString error;
        if (!Project::load(path, &loaded, &error))
            return {error};
        QStringList paths;
        for (const auto& clip : loaded.content.clips)
            paths << clip->mediaPath();
        return paths;
    }

    QString moved(const QString& old) const { return QString(old).replace(QStringLiteral("/media/"), QStringLiteral("/media moved/")); }
    QString gone() const { return m_dir.filePath(QStringLiteral("media/gone.mp4")); }


private slots:
    void initTestCase()
    {
        for (const char* file : {"media/a.mp4", "media/b.wav", "media/sub/c.png", "media/new\nline.mp4"}) {
            const QString path = m_dir.filePath(QString::fromUtf8(file));
            QDir().mkpath(QFileInfo(path).absolutePath());
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("12345");
        }
        for (const char* file : {"a.mp4", "b.wav", "sub/c.png"})
            m_old << m_dir.filePath(QStringLiteral("media/") + QLatin1String(file));
        QVERIFY(QDir(m_dir.path()).rename(QStringLiteral("media"), QStringLiteral("media moved")));
    }

    void kvrelink_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<int>("found");
        QTest::addColumn<QStringList>("missing");
        QTest::addColumn<int>("sizeDiffers");
        const QByteArray lines = (m_old.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
        QTest::newRow("lines, duplicates dropped") << QStringList{} << lines + lines << 0 << 3 << QStringList{} << 0;
        QTest::newRow("one still missing")
            << QStringList{} << lines + "/old/gone.mp4\n" << 1 << 3 << QStringList{"/old/gone.mp4"} << 0;
        QTest::newRow("NUL-separated, a newline in a name")
            << QStringList{"--null"} << QByteArray("/old/new\nline.mp4\0/old/a.mp4\0", 29) << 0 << 2 << QStringList{} << 0;
        QTest::newRow("sizes: one differs")
            << QStringList{"--with-sizes"} << QByteArray("5\t/old/a.mp4\n7\t/old/b.wav\n") << 0 << 2 << QStringList{} << 1;
        QTest::newRow("malformed size") << QStringList{"--with-sizes"} << QByteArray("x\t/old/a.mp4\n") << 2 << -1
                                        << QStringList{} << 0;
        QTest::newRow("no such folder") << QStringList{"--folder-gone"} << lines << 2 << -1 << QStringList{} << 0;
    }

    void kvrelink()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, input);
        QFETCH(int, exitCode);
        QFETCH(int, found);
        QFETCH(QStringList, missing);
        QFETCH(int, sizeDiffers);
        const bool folderGone = arguments.removeAll(QStringLiteral("--folder-gone")) > 0;
        QProcess tool;
        tool.setProcessEnvironment(KvTest::hostEnvironment(m_home));
        tool.start(KvTest::builtProgram(QStringLiteral("kvrelink")),
                   QStringList{folderGone ? m_dir.filePath(QStringLiteral("nowhere")) : m_dir.path(),
                               QStringLiteral("--names-from"), QStringLiteral("-")}
                       + arguments);
        QVERIFY(tool.waitForStarted());
        tool.write(input);
        tool.closeWriteChannel();
        QVERIFY(tool.waitForFinished(20000));
        QCOMPARE(tool.exitCode(), exitCode);
        if (found < 0)
            return;
        const QJsonObject report = QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
        const QJsonObject map = report.value(QStringLiteral("found")).toObject();
        QCOMPARE(map.size(), found);
        for (auto it = map.begin(); it != map.end(); ++it)
            QCOMPARE(QFileInfo(it.value().toString()).fileName(), QFileInfo(it.key()).fileName());
        QCOMPARE(report.value(QStringLiteral("missing")).toVariant().toStringList(), missing);
        QCOMPARE(report.value(QStringLiteral("sizeDiffers")).toArray().size(), sizeDiffers);
    }

    // The host shows the dialog with the search of the renamed folder started: every file is
    // found, the dialog closes by itself, and the new paths are logged.
    void hostRelinksARenamedFolder()
    {
        const QString list = m_home.filePath(QStringLiteral("missing.txt"));
        QFile file(list);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write((m_old.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
        file.close();
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(m_home));
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   {QStringLiteral("--find-missing"), list, QStringLiteral("--search-folder"),
                    m_dir.filePath(QStringLiteral("media moved")), QStringLiteral("--quit-after-ready"), QStringLiteral("1500")});
        QVERIFY(host.waitForFinished(60000));
        QCOMPARE(host.exitCode(), 0);
        const QStringList relinked = KvTest::logged(host.readAllStandardError(), QStringLiteral("relink: "));
        QStringList expected;
        for (const QString& old : qAsConst(m_old))
            expected << old + QStringLiteral(" -> ") + QString(old).replace(QStringLiteral("/media/"), QStringLiteral("/media moved/"));
        expected << QStringLiteral("3 found, 0 still missing");
        QCOMPARE(relinked, expected);
    }

    // A project over the renamed folder, opened by the host with the search of the new folder
    // started at once, then saved: what was found is saved with its new path, the rest (and
    // everything when the dialog was dismissed) keeps its old one.
    void hostRelinksAProject_data()
    {
        QTest::addColumn<MediaList>("media");
        QTest::addColumn<bool>("search");
        QTest::addColumn<QString>("summary");
        QTest::addColumn<int>("sizeDiffers");
        QTest::newRow("renamed folder") << MediaList{{m_old[0], 5}, {m_old[2], -1}} << true
                                        << QStringLiteral("2 found, 0 still missing") << 0;
        QTest::newRow("two missing, one found") << MediaList{{m_old[1], 5}, {gone(), 5}} << true
                                                << QStringLiteral("1 found, 1 still missing") << 0;
        QTest::newRow("size differs") << MediaList{{m_old[0], 9}} << true
                                      << QStringLiteral("1 found, 0 still missing") << 1;
        QTest::newRow("skipped") << MediaList{{m_old[0], 5}, {m_old[1], 5}} << false
                                 << QStringLiteral("0 found, 2 still missing (skipped)") << 0;
    }

    void hostRelinksAProject()
    {
        QFETCH(MediaList, media);
        QFETCH(bool, search);
        QFETCH(QString, summary);
        QFETCH(int, sizeDiffers);
        const QString project = m_home.filePath(QStringLiteral("story.kvproj"));
        const QString saved = m_home.filePath(QStringLiteral("saved.kvproj"));
        QFile::remove(saved);
        writeProject(project, media);
        QProcessEnvironment environment = KvTest::hostEnvironment(m_home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        QStringList arguments{project, QStringLiteral("--save-project"), saved};
        if (search)
            arguments << QStringLiteral("--search-folder") << m_dir.filePath(QStringLiteral("media moved"));
        QProcess host;
        host.setProcessEnvironment(environment);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")), arguments);
        QVERIFY(host.waitForFinished(60000));
        const QByteArray log = host.readAllStandardError();
        QVERIFY2(host.exitCode() == 0, log.constData());

        QStringList expectedLog, expectedPaths;
        for (const auto& entry : qAsConst(media)) {
            const bool found = search && QFileInfo::exists(moved(entry.first));
            if (found)
                expectedLog << entry.first + QStringLiteral(" -> ") + moved(entry.first);
            expectedPaths << (found ? moved(entry.first) : entry.first);
        }
        expectedLog.sort();
        expectedLog << summary;
        QStringList relinked = KvTest::logged(log, QStringLiteral("relink: "));
        QCOMPARE(relinked.filter(QStringLiteral("size differs: ")).size(), sizeDiffers);
        QCOMPARE(KvTest::logged(log, QStringLiteral("media bin: marked ")).size(), sizeDiffers);
        relinked = relinked.filter(QRegularExpression(QStringLiteral("^(?!size differs: )")));
        QCOMPARE(relinked, expectedLog);
        QCOMPARE(KvTest::logged(log, QStringLiteral("project: saved ")), QStringList{saved});
        QCOMPARE(clipMedia(saved), expectedPaths);
    }

    // A relinked project saved portable: its media copied beside it (two files of one name
    // kept apart), the clips on the copies, and the folder still whole once moved.
    void hostSavesPortableProject()
    {
        const QString project = m_home.filePath(QStringLiteral("story.kvproj"));
        const QString other = m_dir.filePath(QStringLiteral("media moved/sub/a.mp4"));
        QVERIFY(QFile::copy(m_dir.filePath(QStringLiteral("media moved/a.mp4")), other));
        writeProject(project, {{m_old[0], 5}, {other, 5}, {gone(), 5}});
        const QString portable = m_home.filePath(QStringLiteral("portable/story.kvproj"));
        QProcess host;
        QProcessEnvironment environment = KvTest::hostEnvironment(m_home);
        environment.insert(QStringLiteral("KLIPVANE_DISMISS_DIALOGS_MS"), QStringLiteral("0"));
        host.setProcessEnvironment(environment);
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   {project, QStringLiteral("--search-folder"), m_dir.filePath(QStringLiteral("media moved")),
                    QStringLiteral("--save-portable"), portable});
        QVERIFY(host.waitForFinished(60000));
        const QByteArray log = host.readAllStandardError();
        QVERIFY2(host.exitCode() == 0, log.constData());
        QCOMPARE(KvTest::logged(log, QStringLiteral("project: saved portable ")),
                 QStringList{portable + QStringLiteral(" (3 media)")});
        QVERIFY(QFile::remove(other));

        QVERIFY(QDir(m_home.path()).rename(QStringLiteral("portable"), QStringLiteral("portable moved")));
        const QString movedFolder = m_home.filePath(QStringLiteral("portable moved/"));
        Project::Loaded loaded;
        QString error;
        QVERIFY2(Project::load(movedFolder + QStringLiteral("story.kvproj"), &loaded, &error), qPrintable(error));
        QStringList paths;
        for (const auto& clip : loaded.content.clips)
            paths << clip->mediaPath();
        QCOMPARE(paths, (QStringList{movedFolder + QStringLiteral("media/a.mp4"),
                                     movedFolder + QStringLiteral("media/a (2).mp4"), gone()}));
        QCOMPARE(loaded.missingCount(), 1);
    }

    // A portable project that cannot be written: the reason told, exit status 1, the source
    // project untouched.
    void hostPortableFails()
    {
        const QString project = m_home.filePath(QStringLiteral("story.kvproj"));
        writeProject(project, {{moved(m_old[0]), 5}});
        const QByteArray before = [&] { QFile f(project); return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray(); }();
        const QString blocked = m_home.filePath(QStringLiteral("blocked"));
        QFile file(blocked); // a file where the folder would go
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QProcess host;
        host.setProcessEnvironment(KvTest::hostEnvironment(m_home));
        host.start(KvTest::builtProgram(QStringLiteral("klipvane")),
                   {project, QStringLiteral("--save-portable"), blocked + QStringLiteral("/story.kvproj")});
        QVERIFY(host.waitForFinished(60000));
        const QByteArray log = host.readAllStandardError();
        QCOMPARE(host.exitCode(), 1);
        QVERIFY2(log.contains("klipvane: cannot save the project to "), log.constData());
        QFile after(project);
        QVERIFY(after.open(QIODevice::ReadOnly));
        QCOMPARE(after.readAll(), before);
    }

    // kvrelink over a project: the map as JSON, and with --write the project saved in place
    // with the new paths (the rest kept); without it the file is not touched.
    void kvrelinkProject_data()
    {
        QTest::addColumn<MediaList>("media");
        QTest::addColumn<bool>("write");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QStringList>("missing");
        QTest::newRow("all found, written") << MediaList{{m_old[0], 5}, {m_old[2], 5}} << true << 0
                                            << QStringList{};
        QTest::newRow("one of two found, written") << MediaList{{m_old[1], 5}, {gone(), 5}} << true
                                                   << 1 << QStringList{gone()};
        QTest::newRow("not written") << MediaList{{m_old[0], 5}} << false << 0 << QStringList{};
    }

    void kvrelinkProject()
    {
        QFETCH(MediaList, media);
        QFETCH(bool, write);
        QFETCH(int, exitCode);
        QFETCH(QStringList, missing);
        const QString project = m_home.filePath(QStringLiteral("tool.kvproj"));
        writeProject(project, media);
        QFile before(project);
        QVERIFY(before.open(QIODevice::ReadOnly));
        const QByteArray original = before.readAll();
        before.close();
        QProcess tool;
        tool.setProcessEnvironment(KvTest::hostEnvironment(m_home));
        QStringList arguments{project, m_dir.filePath(QStringLiteral("media moved"))};
        if (write)
            arguments << QStringLiteral("--write");
        tool.start(KvTest::builtProgram(QStringLiteral("kvrelink")), arguments);
        QVERIFY(tool.waitForFinished(20000));
        QVERIFY2(tool.exitCode() == exitCode, tool.readAllStandardError().constData());
        const QJsonObject report = QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
        QCOMPARE(report.value(QStringLiteral("missing")).toVariant().toStringList(), missing);
        QStringList expectedPaths;
        for (const auto& entry : qAsConst(media)) {
            const bool found = !missing.contains(entry.first);
            QCOMPARE(report.value(QStringLiteral("found")).toObject().value(entry.first).toString(),
                     found ? moved(entry.first) : QString());
            expectedPaths << (found && write ? moved(entry.first) : entry.first);
        }
        QCOMPARE(clipMedia(project), expectedPaths);
        if (!write) {
            QVERIFY(before.open(QIODevice::ReadOnly));
            QCOMPARE(before.readAll(), original);
        }
    }

    void kvrelinkRefusesBadProjects()
    {
        const QString bad = m_home.filePath(QStringLiteral("bad.kvproj"));
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\"format\": \"klipvane-project\", \"version\": 1, \"tracks\": [\"vid");
        file.close();
        QProcess tool;
        tool.setProcessEnvironment(KvTest::hostEnvironment(m_home));
        tool.start(KvTest::builtProgram(QStringLiteral("kvrelink")), {bad, m_dir.path(), QStringLiteral("--write")});
        QVERIFY(tool.waitForFinished(20000));
        QCOMPARE(tool.exitCode(), 2);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().endsWith("[\"vid"));
    }

private:
    QTemporaryDir m_dir;
    QTemporaryDir m_home;
    QStringList m_old;
};

QTEST_GUILESS_MAIN(TestRelink)
#include "tst_relink.moc"
