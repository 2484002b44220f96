#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "HostProcess.h"
#include "TestSandbox.h"

// The relinking of moved media, from outside: `kvrelink` over a list of missing paths, and
// the host showing the missing-files dialog for a project whose media folder was renamed.
//
// The tree: "media" (a.mp4, b.wav, sub/c.png, "new\nline.mp4"), then renamed "media moved".
class TestRelink : public QObject
{
    Q_OBJECT

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

private:
    QTemporaryDir m_dir;
    QTemporaryDir m_home;
    QStringList m_old;
};

QTEST_GUILESS_MAIN(TestRelink)
#include "tst_relink.moc"
