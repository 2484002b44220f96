#include <Util/Explore.h>

#include <QDesktopServices>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "PrivateSessionBus.h"
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
        if (!KvTest::PrivateSessionBus::available())
            QSKIP("dbus-daemon is not installed");
        QVERIFY(m_bus.start());
        // Before the first use of the session bus in this process, and for the helper.
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address());
        QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openUrl");
        QFile file(m_dir.filePath(QStringLiteral("clip one.mp4")));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        KvTest::stopProcess(m_manager);
        m_bus.stop();
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
    QTemporaryDir m_dir;
    KvTest::PrivateSessionBus m_bus;
    QProcess m_manager;
    QList<QUrl> m_opened;
};

QTEST_MAIN(TestExplore)
#include "tst_explore.moc"
