#include <FileUtil/Traverser.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// The tree, built once (names are bytes; "\xff" makes a name that is not UTF-8):
//
//   b.mp4  a.mp4  .hidden.mp4  "new\nline.mp4"  "\xff\xfe.mp4"
//   link.mp4 -> a.mp4      dangling.mp4 -> nowhere      loop -> .      back -> a
//   a/clip.mp4  a/sub/deep.mp4  z/clip.mp4  "bad\xff"/x.mp4  locked/inside.mp4 (mode 000)
namespace {

struct Walk
{
    QList<QByteArray> files; // relative to the root
    QList<QByteArray> failures;
};

Walk walk(const QByteArray& root, bool followSymlinks)
{
    FS::TraverseOptions options;
    options.followSymlinks = followSymlinks;
    const auto traverser = FS::createTraverser(QFile::decodeName(root), options);
    Walk result;
    while (traverser->next())
        result.files << traverser->nativePath().mid(root.size() + 1);
    for (const auto& failure : traverser->failures())
        result.failures << failure.path.mid(root.size() + 1);
    return result;
}

// Root reads every folder whatever its mode: the walk runs in a child that gave up root.
Walk walkAsNobody(const QByteArray& root)
{
    int channel[2];
    if (pipe(channel) != 0)
        return {};
    const pid_t child = fork();
    if (child == 0) {
        ::close(channel[0]);
        if (setgid(65534) != 0 || setuid(65534) != 0)
            _exit(2);
        const Walk result = walk(root, true);
        QByteArray out;
        for (const QByteArray& file : result.files)
            out += "F" + file + '\0';
        for (const QByteArray& failure : result.failures)
            out += "X" + failure + '\0';
        const bool written = ::write(channel[1], out.constData(), size_t(out.size())) == out.size();
        _exit(written ? 0 : 3);
    }
    ::close(channel[1]);
    QByteArray in;
    char buffer[4096];
    for (ssize_t n; (n = ::read(channel[0], buffer, sizeof buffer)) > 0;)
        in.append(buffer, int(n));
    ::close(channel[0]);
    int status = 0;
    waitpid(child, &status, 0);
    Walk result;
    for (const QByteArray& record : in.split('\0')) {
        if (record.startsWith('F'))
            result.files << record.mid(1);
        else if (record.startsWith('X'))
            result.failures << record.mid(1);
    }
    return result;
}

} // namespace

class TestTraverser : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_root = QFile::encodeName(m_dir.path());
        QVERIFY(::chmod(m_root.constData(), 0755) == 0);
        for (const char* folder : {"a", "a/sub", "z", "bad\xff", "locked"})
            QVERIFY(::mkdir(path(folder).constData(), 0755) == 0);
        for (const char* file : {"b.mp4", "a.mp4", ".hidden.mp4", "new\nline.mp4", "\xff\xfe.mp4", "a/clip.mp4",
                                       "a/sub/deep.mp4", "z/clip.mp4", "bad\xff/x.mp4", "locked/inside.mp4"}) {
            const int fd = ::open(path(file).constData(), O_CREAT | O_WRONLY, 0644);
            QVERIFY(fd >= 0);
            ::close(fd);
        }
        QVERIFY(::symlink("a.mp4", path("link.mp4").constData()) == 0);
        QVERIFY(::symlink("nowhere", path("dangling.mp4").constData()) == 0);
        QVERIFY(::symlink(".", path("loop").constData()) == 0);
        QVERIFY(::symlink("a", path("back").constData()) == 0);
        QVERIFY(::chmod(path("locked").constData(), 0) == 0);
    }

    void cleanupTestCase() { ::chmod(path("locked").constData(), 0755); }

    // Level by level, names in byte order; each real folder once, whatever links lead to it.
    void orderAndLinks_data()
    {
        QTest::addColumn<bool>("followSymlinks");
        QTest::addColumn<QList<QByteArray>>("expected");
        const QList<QByteArray> rootFiles{".hidden.mp4", "a.mp4", "b.mp4"};
        const QList<QByteArray> tail{"new\nline.mp4", "\xff\xfe.mp4", "a/clip.mp4", "bad\xff/x.mp4", "locked/inside.mp4",
                                     "z/clip.mp4", "a/sub/deep.mp4"};
        QTest::newRow("following links") << true << (rootFiles + QList<QByteArray>{"link.mp4"} + tail);
        QTest::newRow("not following links") << false << (rootFiles + tail);
    }

    void orderAndLinks()
    {
        QFETCH(bool, followSymlinks);
        QFETCH(QList<QByteArray>, expected);
        if (::geteuid() != 0)
            expected.removeAll("locked/inside.mp4");
        const Walk first = walk(m_root, followSymlinks);
        QCOMPARE(first.files, expected);
        QCOMPARE(walk(m_root, followSymlinks).files, first.files);
    }

    void unreadableFolderIsSkippedAndListedOnce()
    {
        const Walk result = ::geteuid() == 0 ? walkAsNobody(m_root) : walk(m_root, true);
        QVERIFY2(!result.files.isEmpty(), "the walk (as an unprivileged user) found nothing");
        QVERIFY(!result.files.contains("locked/inside.mp4"));
        QVERIFY(result.files.contains("a/sub/deep.mp4"));
        QCOMPARE(result.failures, QList<QByteArray>{"locked"});
    }

    void textPathsOnlyWhenTheyRoundTrip()
    {
        const auto traverser = FS::createTraverser(QFile::decodeName(m_root));
        QMap<QByteArray, QString> texts;
        while (traverser->next())
            texts.insert(traverser->nativePath().mid(m_root.size() + 1), traverser->path());
        QCOMPARE(texts.value("new\nline.mp4"), m_dir.filePath(QStringLiteral("new\nline.mp4")));
        QVERIFY(texts.contains("\xff\xfe.mp4"));
        QVERIFY(texts.value("\xff\xfe.mp4").isEmpty());
        QVERIFY(texts.value("bad\xff/x.mp4").isEmpty());
        QCOMPARE(texts.value("a/clip.mp4"), m_dir.filePath(QStringLiteral("a/clip.mp4")));
    }

    void stopFlagAndMissingRoot()
    {
        std::atomic_bool stop{true};
        FS::TraverseOptions options;
        options.stop = &stop;
        QVERIFY(!FS::createTraverser(m_dir.path(), options)->next());

        const auto missing = FS::createTraverser(m_dir.filePath(QStringLiteral("no such folder")));
        QVERIFY(!missing->next());
        QCOMPARE(missing->failures().size(), size_t(1));
        QCOMPARE(missing->failures().front().error, ENOENT);
        QVERIFY(!FS::createTraverser(QString())->next());
    }

private:
    QByteArray path(const QByteArray& relative) const { return m_root + '/' + relative; }

    QTemporaryDir m_dir;
    QByteArray m_root;
};

QTEST_GUILESS_MAIN(TestTraverser)
#include "tst_traverser.moc"
