#include <FileDialog.h>

#include <Conf/FormatFile.h>
#include <FileUtil/Paths.h>
#include <Gui/StandardDialogs.h>
#include <Settings/FileDialogPaths.h>
#include <Settings/Settings.h>

#include <QFileDialog>
#include <QTemporaryDir>
#include <QtTest>

#include "ModalAnswer.h"
#include "ScriptedDialogStrategy.h"
#include "TestSandbox.h"

namespace {

// What the test saw of the file dialog it answered.
struct Seen
{
    QString title;
    QStringList filters;
    QString selectedFilter;
    QString directory;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    QFileDialog::Options options;
    bool shown = false;
};

// Answers the next file dialog with `choice` (a file or folder; empty: cancel).
std::shared_ptr<Seen> answerFileDialog(const QStringList& choice)
{
    auto seen = std::make_shared<Seen>();
    answerModal([seen, choice](QWidget* modal) {
        auto* dialog = qobject_cast<QFileDialog*>(modal);
        if (!dialog) {
            qWarning("not a file dialog: %s", modal->metaObject()->className());
            return;
        }
        seen->shown = true;
        seen->title = dialog->windowTitle();
        seen->filters = dialog->nameFilters();
        seen->selectedFilter = dialog->selectedNameFilter();
        seen->directory = dialog->directory().absolutePath();
        seen->mode = dialog->fileMode();
        seen->acceptMode = dialog->acceptMode();
        seen->options = dialog->options();
        if (choice.isEmpty()) {
            dialog->reject();
            return;
        }
        if (QFileInfo(choice.first()).isDir() && dialog->fileMode() == QFileDialog::Directory) {
            dialog->setDirectory(choice.first());
        } else {
            dialog->setDirectory(QFileInfo(choice.first()).absolutePath());
            QStringList names;
            for (const QString& path : choice)
                names << QLatin1Char('"') + QFileInfo(path).fileName() + QLatin1Char('"');
            dialog->selectFile(choice.size() == 1 ? QFileInfo(choice.first()).fileName() : names.join(QLatin1Char(' ')));
        }
        static_cast<QDialog*>(dialog)->accept();
    });
    return seen;
}

} // namespace

class TestFileDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The standard folders come from the home folder: keep them in the sandbox.
        qputenv("HOME", QFile::encodeName(m_home.path()));
        qunsetenv("XDG_CONFIG_HOME");
        for (const QString& folder : {FileUtil::moviesLocation(), FileUtil::musicLocation(), FileUtil::picturesLocation(),
                                      FileUtil::lastProjectDirectory()})
            QVERIFY(QDir().mkpath(folder));
        for (const char* file : {"media/a.mp4", "media/b.mp3", "media/c.png", "media/sub/d.jpg", "media/sub/e.txt"}) {
            const QString path = m_home.filePath(QLatin1String(file));
            QDir().mkpath(QFileInfo(path).absolutePath());
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        m_strategy = std::make_shared<ScriptedDialogStrategy>();
        Dialog::initialize(m_strategy);
    }

    void init()
    {
        for (const QString& key : {QStringLiteral("FileDialog")})
            Settings::remove(key);
    }

    void openFilesByKind_data()
    {
        using F = Tavrin::Conf::IFormatFile;
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("firstFilter");
        QTest::addColumn<QString>("standardFolder"); // "Movies", "Music" or "Pictures"
        QTest::addColumn<int>("filterCount");
        const QString video = FileUtil::getGroupExtentions({F::GROUP_ALL_VIDEO});
        const QString media = FileUtil::getGroupExtentions({F::GROUP_ALL_VIDEO, F::GROUP_ALL_IMAGES, F::GROUP_ALL_AUDIO});
        QTest::newRow("video") << 1 << "Open Video Files" << "(" + video + ")" << "Movies" << 2;
        QTest::newRow("audio") << 2 << "Open Audio Files"
                               << "(" + FileUtil::getGroupExtentions({F::GROUP_ALL_AUDIO}) + ")" << "Music" << 2;
        QTest::newRow("images, all files") << (4 | 16) << "Open Image Files"
                                           << "(" + FileUtil::getGroupExtentions({F::GROUP_ALL_IMAGES, F::GROUP_ALL_FILES}) + ")"
                                           << "Pictures" << 3;
        QTest::newRow("video and audio") << 3 << "Open Media Files"
                                         << "Media Files (*.mp4;*.avi;*.mp3;...)("
                + FileUtil::getGroupExtentions({F::GROUP_ALL_VIDEO, F::GROUP_ALL_AUDIO}) + ")"
                                         << "Movies" << 3;
        QTest::newRow("all media: sibling projects too")
            << 7 << "Open Media Files" << "Media Files (*.mp4;*.jpeg;*.mp3;...)(" + media + " *.kdxproj)" << "Movies" << 4;
        QTest::newRow("media and projects") << 15 << "Open Media Files"
                                            << "All Supported Files (" + media + " *.kdxproj *.kvproj)" << "Movies" << 5;
    }

    // Title, filters and start folder by kind; the chosen file's folder is remembered and
    // is where the next dialog of the same kind starts.
    void openFilesByKind()
    {
        QFETCH(int, kind);
        QFETCH(QString, title);
        QFETCH(QString, firstFilter);
        QFETCH(QString, standardFolder);
        QFETCH(int, filterCount);
        const QString chosen = m_home.filePath(QStringLiteral("media/a.mp4"));
        const auto seen = answerFileDialog({chosen});
        QCOMPARE(FileDialog::openFiles(kind), QStringList{chosen});
        QCOMPARE(seen->title, title);
        QCOMPARE(seen->filters.first(), firstFilter);
        QCOMPARE(seen->filters.size(), filterCount);
        QCOMPARE(seen->directory, standard(standardFolder));
        QCOMPARE(seen->mode, QFileDialog::ExistingFiles);
        QVERIFY(seen->options.testFlag(QFileDialog::HideNameFilterDetails));

        const auto again = answerFileDialog({});
        QVERIFY(FileDialog::openFile(kind).isEmpty());
        QCOMPARE(again->directory, m_home.filePath(QStringLiteral("media")));
        QCOMPARE(again->mode, QFileDialog::ExistingFile);
    }

    void savingProjectPath_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("expected");
        QTest::newRow("extension added") << "p/story" << "p/story.kvproj";
        QTest::newRow("extension kept, any case") << "p/./Story.KVPROJ" << "p/Story.KVPROJ";
        QTest::newRow("other extension kept before it") << "p/story.mp4" << "p/story.mp4.kvproj";
        QTest::newRow("cancelled") << "" << "";
    }

    void savingProjectPath()
    {
        QFETCH(QString, answer);
        QFETCH(QString, expected);
        QDir(m_home.path()).mkpath(QStringLiteral("p"));
        const auto seen = answerFileDialog(answer.isEmpty() ? QStringList() : QStringList{m_home.filePath(answer)});
        const QString result = FileDialog::savingProjectPath(QString());
        QCOMPARE(result, expected.isEmpty() ? QString() : m_home.filePath(expected));
        QCOMPARE(seen->title, QStringLiteral("Save Project"));
        QCOMPARE(seen->filters, QStringList{QStringLiteral("Project files (*.kvproj)")});
        QCOMPARE(seen->acceptMode, QFileDialog::AcceptSave);
        QCOMPARE(seen->directory, FileUtil::lastProjectDirectory());
    }

    // An existing folder of the same project is kept; another project's folder is replaced
    // only with consent.
    void savingProjectPortablePath_data()
    {
        QTest::addColumn<bool>("sameProject");
        QTest::addColumn<bool>("consent");
        QTest::addColumn<bool>("kept");
        QTest::addColumn<bool>("empty");
        QTest::newRow("same project: kept") << true << true << true << false;
        QTest::newRow("other project, consent: replaced") << false << true << false << false;
        QTest::newRow("refused") << false << false << true << true;
    }

    void savingProjectPortablePath()
    {
        QFETCH(bool, sameProject);
        QFETCH(bool, consent);
        QFETCH(bool, kept);
        QFETCH(bool, empty);
        const QString folder = m_home.filePath(QStringLiteral("portable/story"));
        const QString target = folder + QStringLiteral("/story.kvproj");
        QDir().mkpath(folder);
        QFile marker(folder + QStringLiteral("/media.mp4"));
        QVERIFY(marker.open(QIODevice::WriteOnly));
        marker.close();
        m_strategy->answer(QStringLiteral("alertOverwriteFolder"), consent);
        const auto seen = answerFileDialog({m_home.filePath(QStringLiteral("portable/story.kvproj"))});
        const QString result = FileDialog::savingProjectPortablePath(sameProject ? target : QStringLiteral("/else/story.kvproj"));
        QCOMPARE(result, empty ? QString() : target);
        QCOMPARE(m_strategy->lastArguments(QStringLiteral("alertOverwriteFolder")), QVariantList{QStringLiteral("story")});
        QCOMPARE(QFile::exists(marker.fileName()), kept);
        QVERIFY(QFileInfo(folder).isDir());
    }

    void savingSnapshotPathRemembersANewFolder()
    {
        const QString defaultFolder = Settings::snapshotPath();
        QVERIFY(!QFileInfo::exists(defaultFolder));
        const QString other = m_home.filePath(QStringLiteral("shots/mine.png"));
        QDir().mkpath(QFileInfo(other).absolutePath());
        const auto seen = answerFileDialog({other});
        QCOMPARE(FileDialog::savingSnapshotPath(), other);
        QVERIFY(QFileInfo(defaultFolder).isDir());
        QCOMPARE(seen->title, QStringLiteral("Save Snapshot"));
        QCOMPARE(seen->filters, QStringList{QStringLiteral("Snapshot files (*.png)")});
        QCOMPARE(seen->directory, defaultFolder);
        QCOMPARE(Settings::snapshotPath(), QFileInfo(other).absolutePath());
    }

    void foldersAreExpanded_data()
    {
        QTest::addColumn<bool>("imagesOnly");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("openDirectory") << false
                                       << QStringList{"media/a.mp4", "media/b.mp3", "media/c.png", "media/sub/d.jpg", "media/sub/e.txt"};
        QTest::newRow("openDirectoryAllImages") << true << QStringList{"media/c.png", "media/sub/d.jpg"};
    }

    void foldersAreExpanded()
    {
        QFETCH(bool, imagesOnly);
        QFETCH(QStringList, expected);
        const QString folder = m_home.filePath(QStringLiteral("media"));
        const auto seen = answerFileDialog({folder});
        const QStringList files = imagesOnly ? FileDialog::openDirectoryAllImages() : FileDialog::openDirectory();
        QStringList relative;
        for (const QString& file : files)
            relative << QDir(m_home.path()).relativeFilePath(file);
        QCOMPARE(relative, expected);
        QCOMPARE(seen->title, QStringLiteral("Open Folder"));
        QCOMPARE(seen->directory, standard(imagesOnly ? QStringLiteral("Pictures") : QStringLiteral("Movies")));
        QVERIFY(seen->options.testFlag(QFileDialog::ShowDirsOnly));
        QCOMPARE(imagesOnly ? Settings::lastAddImageDirectoryPath() : Settings::lastAddDirectoryPath(), folder);
    }

    // Files and folders in one dialog: the folder is expanded, the file kept, in order.
    void openAddFilesAndDirectories()
    {
        answerModal([this](QWidget* modal) {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            QVERIFY(dialog);
            QVERIFY(dialog->nameFilters().first().startsWith(QStringLiteral("All Supported Files (")));
            dialog->setDirectory(m_home.filePath(QStringLiteral("media")));
            dialog->selectFile(QStringLiteral("\"sub\" \"a.mp4\""));
            static_cast<QDialog*>(dialog)->accept();
        });
        QStringList relative;
        for (const QString& file : FileDialog::openAddFilesAndDirectoriesDialog())
            relative << QDir(m_home.path()).relativeFilePath(file);
        QCOMPARE(relative, (QStringList{"media/sub/d.jpg", "media/sub/e.txt", "media/a.mp4"}));
    }

    void findMissingFile_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::addColumn<QString>("startFolder"); // empty: no dialog
        QTest::addColumn<QString>("selectedFilter");
        QTest::newRow("video, folder exists") << m_home.filePath(QStringLiteral("media/gone.mp4")) << "media" << "Video Files";
        QTest::newRow("audio, folder gone") << "/nowhere/song.flac" << "Music" << "Audio Files";
        QTest::newRow("image") << "/nowhere/p.PNG" << "Pictures" << "Image Files";
        QTest::newRow("dvd") << "/nowhere/VIDEO_TS.IFO" << "Movies" << "DVD Files";
        QTest::newRow("unknown type") << "/nowhere/notes.xyz" << "" << "";
    }

    void findMissingFile()
    {
        QFETCH(QString, missing);
        QFETCH(QString, startFolder);
        QFETCH(QString, selectedFilter);
        const QString chosen = m_home.filePath(QStringLiteral("media/b.mp3"));
        if (startFolder.isEmpty()) {
            // Nothing may be shown; a dialog would be closed by this guard and counted.
            bool shown = false;
            QTimer guard;
            guard.setSingleShot(true);
            connect(&guard, &QTimer::timeout, this, [&shown] {
                if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                    shown = true;
                    modal->reject();
                }
            });
            guard.start(1000);
            QVERIFY(FileDialog::findMissingFile(missing).isEmpty());
            QVERIFY(!shown);
            return;
        }
        const auto seen = answerFileDialog({chosen});
        const QString result = FileDialog::findMissingFile(missing);
        QCOMPARE(result, chosen);
        QCOMPARE(seen->title, QStringLiteral("Find missing file: ") + QFileInfo(missing).fileName());
        QCOMPARE(seen->directory, startFolder == QStringLiteral("media") ? m_home.filePath(startFolder) : standard(startFolder));
        QCOMPARE(seen->selectedFilter, selectedFilter); // details hidden
        QVERIFY(seen->filters.last().startsWith(QStringLiteral("All Files")));
    }

    void findMissingFilesWithNothingMissing()
    {
        QMap<QString, QString> found;
        QVERIFY(FileDialog::findMissingFiles({}, found));
        QVERIFY(found.isEmpty());
    }

    void openLutFileAndProject()
    {
        const QString lut = m_home.filePath(QStringLiteral("luts/warm.cube"));
        QDir().mkpath(QFileInfo(lut).absolutePath());
        QFile(lut).open(QIODevice::WriteOnly);
        const auto seen = answerFileDialog({lut});
        QCOMPARE(FileDialog::openLutFile(), lut);
        QCOMPARE(seen->title, QStringLiteral("Open Lut Table file"));
        QCOMPARE(seen->filters, QStringList{QStringLiteral("Lut cube files (*.cube)")});
        QCOMPARE(Settings::userLutsSearchPath(), QFileInfo(lut).absolutePath());

        const auto project = answerFileDialog({});
        QVERIFY(FileDialog::openProject(m_home.filePath(QStringLiteral("media"))).isEmpty());
        QCOMPARE(project->title, QStringLiteral("Open Project"));
        QCOMPARE(project->filters, QStringList{QStringLiteral("Project files (*.kvproj)")});
        QCOMPARE(project->selectedFilter, QStringLiteral("Project files")); // details hidden
        QCOMPARE(project->directory, m_home.filePath(QStringLiteral("media")));
    }

private:
    static QString standard(const QString& name)
    {
        if (name == QStringLiteral("Music"))
            return FileUtil::musicLocation();
        return name == QStringLiteral("Pictures") ? FileUtil::picturesLocation() : FileUtil::moviesLocation();
    }

    QTemporaryDir m_home;
    std::shared_ptr<ScriptedDialogStrategy> m_strategy;
};

QTEST_MAIN(TestFileDialog)
#include "tst_FileDialog.moc"
