// The real host with projects: placing the command line's media and saving unattended,
// opening a project from the command line and from a second launch (asking first when the
// current project has unsaved changes), media missing at load, and files it refuses.

#include "HostProcess.h"
#include "TestMedia.h"

#include <Project/ProjectFile.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using KvTest::Host;

class TestKlipvaneProject : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
    QString m_folder; // the launches' working folder, symbolic links resolved

    std::unique_ptr<Host> launch(const QStringList& arguments)
    {
        return std::make_unique<Host>(m_environment, KvTest::builtProgram(QStringLiteral("klipvane")), arguments, m_folder);
    }
    QString at(const QString& name) const { return m_folder + QLatin1Char('/') + name; }

    // story.kvproj over media/: a video with sound, a picture, a failing file and music.
    void makeStory()
    {
        QDir().mkpath(at("media"));
        for (const char* name : {"h264_1080p.mp4", "still.png", "text.mp4", "audio.m4a"})
            QVERIFY(QFile::copy(TestMedia::path(name), at(QStringLiteral("media/") + name)));
        auto host = launch({"--place-on-timeline", "media/h264_1080p.mp4", "media/still.png", "media/text.mp4",
                            "media/audio.m4a", "--save-project", "story.kvproj"});
        QVERIFY(host->waitForFinished(60000));
        QCOMPARE(host->exitCode(), 0);
        QCOMPARE(host->logged("timeline: placed "), QStringList{"4 clip(s) from 3 file(s)"});
        QCOMPARE(host->logged("project: saved "), QStringList{at("story.kvproj")});
    }

private slots:
    void initTestCase()
    {
        if (TestMedia::folder().isEmpty())
            QSKIP("ffmpeg is not installed: no test media");
    }

    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_environment = KvTest::hostEnvironment(*m_home);
        // Nobody answers dialogs here: each is dismissed as Escape would.
        m_environment.insert("KLIPVANE_DISMISS_DIALOGS_MS", "0");
        QDir().mkpath(m_home->filePath("files"));
        m_folder = QDir(m_home->filePath("files")).canonicalPath();
    }

    // Placed and saved unattended, then opened again: the same timeline; the folder moved
    // with its media still opens, and a file gone since is reported missing.
    void saveAndReopen()
    {
        makeStory();
        Project::Loaded saved;
        QString error;
        QVERIFY2(Project::load(at("story.kvproj"), &saved, &error), qPrintable(error));
        QCOMPARE(saved.content.clips.size(), size_t(4)); // the video's sound is a clip of its own
        QCOMPARE(saved.media.size(), 3);

        auto host = launch({"story.kvproj", "--quit-after-ready", "1500"});
        QVERIFY(host->waitForFinished(30000));
        QCOMPARE(host->logged("project: opened "), QStringList{at("story.kvproj") + " (4 clips, 0 missing)"});

        const QString moved = m_folder + "-moved";
        QVERIFY(QDir().rename(m_folder, moved));
        m_folder = moved;
        QVERIFY(QFile::remove(at("media/audio.m4a")));
        host = launch({"story.kvproj", "--quit-after-ready", "1500"});
        QVERIFY(host->waitForFinished(30000));
        QCOMPARE(host->logged("project: opened "), QStringList{at("story.kvproj") + " (4 clips, 1 missing)"});
    }

    // A file the host cannot open is refused with its reason, through the dialog strategy.
    void refused_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<QString>("reason");
        QTest::newRow("not JSON") << QByteArray("klipvane test file") << "damaged or incomplete";
        QTest::newRow("newer format") << QByteArray("{\"format\": \"klipvane-project\", \"version\": 9}")
                                      << "newer version of Klipvane (format 9)";
        QTest::newRow("cut short") << QByteArray("{\"format\": \"klipvane-project\", \"version\": 1, \"tracks\": [\"vid")
                                   << "damaged or incomplete";
    }

    void refused()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QString, reason);
        QFile file(at("bad.kvproj"));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        file.close();
        auto host = launch({"bad.kvproj", "--quit-after-ready", "1500"});
        QVERIFY(host->waitForFinished(30000));
        const QStringList refusedLines = host->logged("project: refused ");
        QCOMPARE(refusedLines.size(), 1);
        QVERIFY2(refusedLines.first().startsWith(at("bad.kvproj") + ": ") && refusedLines.first().contains(reason),
                 qPrintable(refusedLines.first()));
        QCOMPARE(host->logged("dialog: ").filter("showWarning").size(), 1);
        QVERIFY(host->logged("project: opened ").isEmpty());
    }

    // A second launch with a project opens it in the running editor; with unsaved changes
    // there, the editor asks first (dismissed here: the project is not opened).
    void secondLaunch_data()
    {
        QTest::addColumn<bool>("modified");
        QTest::newRow("nothing unsaved: opened") << false;
        QTest::newRow("unsaved changes: asked, cancelled") << true;
    }

    void secondLaunch()
    {
        QFETCH(bool, modified);
        makeStory();
        QStringList arguments{"--quit-after-ready", "60000"};
        if (modified)
            arguments << "--place-on-timeline" << "media/still.png";
        auto editor = launch(arguments);
        QVERIFY(editor->waitForLog(modified ? "timeline: placed" : "] startup: "));
        auto second = launch({"story.kvproj"});
        QVERIFY(second->waitForFinished(20000));
        QCOMPARE(second->exitCode(), 0);
        if (modified) {
            QVERIFY(editor->waitForLog("dialog answer: alertModifiedProject"));
            QVERIFY(editor->logged("project: opened ").isEmpty());
        } else {
            QVERIFY(editor->waitForLog("project: opened "));
            QCOMPARE(editor->logged("project: opened "), QStringList{at("story.kvproj") + " (4 clips, 0 missing)"});
            QVERIFY(editor->logged("dialog: ").filter("alertModifiedProject").isEmpty());
        }
    }

    void saveFailsWithReason()
    {
        auto host = launch({"--save-project", "no/such/folder/story.kvproj"});
        QVERIFY(host->waitForFinished(30000));
        QCOMPARE(host->exitCode(), 1);
        QVERIFY(host->log().contains("klipvane: cannot save the project to no/such/folder/story.kvproj"));
    }
};

QTEST_GUILESS_MAIN(TestKlipvaneProject)
#include "tst_klipvane_project.moc"
