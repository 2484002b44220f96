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
//   empty/
class TestFileUtil : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void extractFiles_data();
    void extractFiles();
    void extractFilesDropsUnreadable();
    void extractFilesResolvesRelativePaths();
    void extensionListIsCaseInsensitive();
    void supportedExtensionsAreTheGroups();

private:
    QStringList resolve(const QStringList& paths) const;
    QTemporaryDir m_dir;
    QString m_root;
};

void TestFileUtil::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_root = QDir(m_dir.path()).canonicalPath();
    const QStringList files{"a.mp4", "C.MP4", "notes.txt", "noext", "locked.mp4", "dir/z.png", "dir/b.jpg",
                            "dir/readme.md", "dir/sub/a.wav", "clips.mov/inner.mp4"};
    for (const QString& name : files) {
        const QString path = m_root + QLatin1Char('/') + name;
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x");
    }
    QVERIFY(QDir().mkpath(m_root + QStringLiteral("/empty")));
    QVERIFY(QFile::setPermissions(m_root + QStringLiteral("/locked.mp4"), QFileDevice::Permissions()));
}

void TestFileUtil::cleanupTestCase()
{
    QFile::setPermissions(m_root + QStringLiteral("/locked.mp4"), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

QStringList TestFileUtil::resolve(const QStringList& paths) const
{
    QStringList result;
    for (QString path : paths)
        result << path.replace(QLatin1Char('@'), m_root);
    return result;
}

void TestFileUtil::extractFiles_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("one supported file") << QStringList{"@/a.mp4"} << QStringList{"@/a.mp4"};
    QTest::newRow("unsupported dropped") << QStringList{"@/notes.txt", "@/a.mp4", "@/noext"}
                                         << QStringList{"@/a.mp4"};
    QTest::newRow("missing dropped") << QStringList{"@/nothere.mp4", "@/a.mp4"} << QStringList{"@/a.mp4"};
    QTest::newRow("upper-case extension") << QStringList{"@/C.MP4"} << QStringList{"@/C.MP4"};
    QTest::newRow("order kept") << QStringList{"@/dir/z.png", "@/a.mp4", "@/C.MP4"}
                                << QStringList{"@/dir/z.png", "@/a.mp4", "@/C.MP4"};
    QTest::newRow("duplicates kept") << QStringList{"@/a.mp4", "@/a.mp4"} << QStringList{"@/a.mp4", "@/a.mp4"};
    QTest::newRow("folder recursed and sorted")
        << QStringList{"@/dir"} << QStringList{"@/dir/b.jpg", "@/dir/sub/a.wav", "@/dir/z.png"};
    QTest::newRow("folder in place among files")
        << QStringList{"@/a.mp4", "@/dir/sub", "@/C.MP4"} << QStringList{"@/a.mp4", "@/dir/sub/a.wav", "@/C.MP4"};
    QTest::newRow("folder named like a video is a folder")
        << QStringList{"@/clips.mov"} << QStringList{"@/clips.mov/inner.mp4"};
    QTest::newRow("empty folder") << QStringList{"@/empty"} << QStringList{};
    QTest::newRow("unclean paths cleaned")
        << QStringList{"@/dir/../a.mp4", "@//dir/./z.png"} << QStringList{"@/a.mp4", "@/dir/z.png"};
    QTest::newRow("empty and blank entries") << QStringList{"", "@/a.mp4", " "} << QStringList{"@/a.mp4"};
    QTest::newRow("nothing") << QStringList{} << QStringList{};
}

void TestFileUtil::extractFiles()
{
    QFETCH(QStringList, paths);
    QFETCH(QStringList, expected);
    // "locked.mp4" is never named here; its own test covers it.
    QCOMPARE(FileUtil::extractFiles(resolve(paths), FileUtil::supportedFileExtensions()), resolve(expected));
}

void TestFileUtil::extractFilesDropsUnreadable()
{
    if (::geteuid() == 0)
        QSKIP("root reads every file; an unreadable file cannot be made here");
    QCOMPARE(FileUtil::extractFiles(resolve({"@/locked.mp4", "@/a.mp4"}), FileUtil::supportedFileExtensions()),
             resolve({"@/a.mp4"}));
    // Nor is it found inside a folder.
    const QStringList inRoot = FileUtil::extractFiles(resolve({"@"}), FileUtil::supportedFileExtensions());
    QVERIFY(!inRoot.contains(m_root + QStringLiteral("/locked.mp4")));
    QVERIFY(inRoot.contains(m_root + QStringLiteral("/a.mp4")));
}

void TestFileUtil::extractFilesResolvesRelativePaths()
{
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_root + QStringLiteral("/dir")));
    const QStringList found = FileUtil::extractFiles({"z.png", "../a.mp4", "sub"}, FileUtil::supportedFileExtensions());
    QDir::setCurrent(previous);
    QCOMPARE(found, resolve({"@/dir/z.png", "@/a.mp4", "@/dir/sub/a.wav"}));
    for (const QString& path : found)
        QVERIFY2(QDir::isAbsolutePath(path), qPrintable(path));
}

void TestFileUtil::extensionListIsCaseInsensitive()
{
    QCOMPARE(FileUtil::extractFiles(resolve({"@/a.mp4", "@/C.MP4", "@/dir/z.png"}), {"MP4"}),
             resolve({"@/a.mp4", "@/C.MP4"}));
    QCOMPARE(FileUtil::extractFiles(resolve({"@/a.mp4"}), {}), QStringList());
}

void TestFileUtil::supportedExtensionsAreTheGroups()
{
    const QStringList all = FileUtil::supportedFileExtensions();
    QVERIFY(!FileUtil::videoExtensions().isEmpty());
    QVERIFY(!FileUtil::pictureExtensions().isEmpty());
    QVERIFY(!FileUtil::musicExtensions().isEmpty());
    for (const QStringList& group : {FileUtil::videoExtensions(), FileUtil::pictureExtensions(),
                                     FileUtil::musicExtensions()})
        for (const QString& extension : group)
            QVERIFY2(all.contains(extension), qPrintable(extension));
    for (const QString& extension : all) {
        QCOMPARE(extension, extension.toLower());
        QVERIFY2(!extension.startsWith(QLatin1Char('.')), qPrintable(extension));
        QCOMPARE(all.count(extension), 1);
    }
    QVERIFY(FileUtil::videoExtensions().contains(QStringLiteral("mp4")));
    QVERIFY(FileUtil::pictureExtensions().contains(QStringLiteral("png")));
    QVERIFY(FileUtil::musicExtensions().contains(QStringLiteral("wav")));
    QVERIFY(!all.contains(QStringLiteral("txt")));
}

QTEST_GUILESS_MAIN(TestFileUtil)
#include "tst_fileutil.moc"
