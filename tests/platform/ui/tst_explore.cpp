#include <Util/Explore.h>

#include <QDesktopServices>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

// ExploreSingleFile against a private session bus (a dbus-daemon started here): with a
// file manager owning org.freedesktop.FileManager1 (a helper process that prints the calls
// it gets) the file is shown there; without one, its folder is opened through
// QDesktopServices (caught here by a URL handler).
class TestExplore : public QObject
{
    Q_OBJECT

public slots:
    void openUrl(const QUrl& url) { m_opened << url; }

private slots:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("dbus-daemon")).isEmpty())
            QSKIP("dbus-daemon is not installed");
        m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                      QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")});
        QVERIFY(m_daemon.waitForStarted(5000));
        QVERIFY(QTest::qWaitFor([this] { return m_daemon.canReadLine(); }, 5000));
        const QByteArray address = m_daemon.readLine().trimmed();
        QVERIFY(!address.isEmpty());
        // Before the first use of the session bus in this process, and for the helper.
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openUrl");
        QFile file(m_dir.filePath(QStringLiteral("clip one.mp4")));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        stop(m_manager);
        stop(m_daemon);
    }

    void withoutAFileManagerTheFolderOpens()
    {
        m_opened.clear();
        Tavrin::Util::ExploreSingleFile(m_dir.filePath(QStringLiteral("clip one.mp4")));
        QVERIFY(QTest::qWaitFor([this] { return !m_opened.isEmpty(); }, 10000));
        QCOMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(m_dir.path())});
    }

    void theFileManagerShowsTheFile()
    {
        m_manager.setProgram(QString::fromLocal8Bit(qgetenv("KLIPVANE_TEST_BIN_DIR")) + QStringLiteral("/kv_filemanager1"));
        m_manager.start();
        QVERIFY(m_manager.waitForStarted(5000));
        QVERIFY(QTest::qWaitFor([this] { return m_manager.canReadLine(); }, 5000));
        QCOMPARE(m_manager.readLine().trimmed(), QByteArray("ready"));

        m_opened.clear();
        Tavrin::Util::ExploreSingleFile(m_dir.filePath(QStringLiteral("clip one.mp4")));
        QVERIFY(QTest::qWaitFor([this] { return m_manager.canReadLine(); }, 10000));
        const QByteArray expected = "ShowItems " + QUrl::fromLocalFile(m_dir.filePath(QStringLiteral("clip one.mp4"))).toEncoded();
        QCOMPARE(m_manager.readLine().trimmed(), expected);
        QTest::qWait(50);
        QVERIFY(m_opened.isEmpty());
    }

private:
    static void stop(QProcess& process)
    {
        if (process.state() == QProcess::NotRunning)
            return;
        process.kill(); // our own child, by its id
        process.waitForFinished(5000);
    }

    QTemporaryDir m_dir;
    QProcess m_daemon;
    QProcess m_manager;
    QList<QUrl> m_opened;
};

QTEST_MAIN(TestExplore)
#include "tst_explore.moc"
