#include <FileUtil/FileUtil.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

#include <unistd.h>

// Paths in the data rows are relative to a temporary tree; "@" stands for its root.
//
//   a.mp4  C.MP4  notes.txt  noext  locked.mp4 (mode 000)
//   dir/z.png  dir/b.jpg  dir/readme.md  dir/sub/a.wav
//   clips.mov/inner.mp4    (a folder whose name looks like a video)
//   odd/clip<0xff>.mp4 (a name that is not UTF-8)  odd/loop.mp4 <-> odd/loop2.mp4 (links in a loop)
//   odd/dangling.mp4 (a link to nothing)  odd/up -> .. (a link to a folder, not followed)
class TestFileUtil : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const char* name : {"a.mp4", "C.MP4", "notes.txt", "noext", "locked.mp4", "dir/z.png", "dir/b.jpg",
                                 "dir/readme.md", "dir/sub/a.wav", "clips.mov/inner.mp4"}) {
            QFile file(m_dir.filePath(QLatin1String(name)));
            QVERIFY(QDir().mkpath(QFileInfo(file).absolutePath()));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(QFile::setPermissions(m_dir.filePath(QStringLiteral("locked.mp4")), QFileDevice::Permissions()));
        const QByteArray odd = QFile::encodeName(m_dir.filePath(QStringLiteral("odd"))) + '/';
        QVERIFY(QDir().mkpath(QFile::decodeName(odd)));
        QVERIFY(QFile(QFile::decodeName(odd + "clip.mp4")).open(QIODevice::WriteOnly));
        QCOMPARE(::rename((odd + "clip.mp4").constData(), (odd + "clip\xff.mp4").constData()), 0);
        for (const auto& [target, link] : {std::pair{"loop2.mp4", "loop.mp4"}, {"loop.mp4", "loop2.mp4"},
                                           {"gone.mp4", "dangling.mp4"}, {"..", "up"}})
            QCOMPARE(::symlink(target, (odd + link).constData()), 0);
    }

    // The name Qt cannot decode cannot be removed through Qt either.
    void cleanupTestCase() { ::unlink((QFile::encodeName(m_dir.filePath(QStringLiteral("odd"))) + "/clip\xff.mp4").constData()); }

    void extractFiles_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QStringList>("extensions"); // empty: the supported ones
        QTest::addColumn<QStringList>("expected");

        const QStringList all;
        QTest::newRow("unsupported, missing and blank dropped")
            << QStringList{"@/notes.txt", "@/nothere.mp4", "", "@/a.mp4", " ", "@/noext"} << all << QStringList{"@/a.mp4"};
        QTest::newRow("order and duplicates kept")
            << QStringList{"@/dir/z.png", "@/a.mp4", "@/C.MP4", "@/a.mp4"} << all
            << QStringList{"@/dir/z.png", "@/a.mp4", "@/C.MP4", "@/a.mp4"};
        QTest::newRow("folder recursed and sorted")
            << QStringList{"@/dir"} << all << QStringList{"@/dir/b.jpg", "@/dir/sub/a.wav", "@/dir/z.png"};
        QTest::newRow("folder in place among files")
            << QStringList{"@/a.mp4", "@/dir/sub", "@/C.MP4"} << all << QStringList{"@/a.mp4", "@/dir/sub/a.wav", "@/C.MP4"};
        QTest::newRow("folder named like a video is a folder")
            << QStringList{"@/clips.mov"} << all << QStringList{"@/clips.mov/inner.mp4"};
        QTest::newRow("unclean paths cleaned")
            << QStringList{"@/dir/../a.mp4", "@//dir/./z.png"} << all << QStringList{"@/a.mp4", "@/dir/z.png"};
        QTest::newRow("extensions ignore case")
            << QStringList{"@/a.mp4", "@/C.MP4", "@/dir/z.png"} << QStringList{"MP4"} << QStringList{"@/a.mp4", "@/C.MP4"};
        // Opening them tells the user what is wrong, rather than nothing at all.
        QTest::newRow("undecodable name and link loop kept")
            << QStringList{"@/odd", "@/odd/loop.mp4"} << all
            << QStringList{"@/odd/clip\ufffd.mp4", "@/odd/loop.mp4", "@/odd/loop2.mp4", "@/odd/loop.mp4"};
        QTest::newRow("unreadable dropped") << QStringList{"@/locked.mp4", "@/a.mp4"} << all << QStringList{"@/a.mp4"};
    }

    void extractFiles()
    {
        QFETCH(QStringList, paths);
        QFETCH(QStringList, extensions);
        QFETCH(QStringList, expected);
        if (paths.contains(QStringLiteral("@/locked.mp4")) && ::geteuid() == 0)
            QSKIP("root reads every file; an unreadable file cannot be made here");
        const QString root = QDir(m_dir.path()).canonicalPath();
        paths.replaceInStrings(QStringLiteral("@"), root);
        expected.replaceInStrings(QStringLiteral("@"), root);
        QCOMPARE(FileUtil::extractFiles(paths, extensions.isEmpty() ? FileUtil::supportedFileExtensions() : extensions),
                 expected);
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestFileUtil)
#include "tst_fileutil.moc"
