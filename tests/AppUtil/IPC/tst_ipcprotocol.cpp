// IPC::Protocol's senders: nothing goes out before communication starts; afterwards calls reach
// another application over real sockets as they were sent. (Decoding and its errors are
// covered with real senders in tst_ipccontroller.)

#include "FakeCustomization.h"
#include "IpcTestSupport.h"
#include "QueuedSpy.h"

#include <IPCProtocol.h>

#include <App/Delivery.h>

#include <QtTest>

class tst_IPCProtocol : public QObject
{
    Q_OBJECT

    KvTest::IpcEnvironment m_env;
    std::shared_ptr<FakeCustomization> m_customization = FakeCustomization::install();

private slots:
    void sendersWaitForCommunication()
    {
        IPC::Protocol idle(QStringLiteral("kvinstaller"), nullptr);
        KvTest::LogCapture log;
        idle.sendOpenProject(QStringLiteral("/tmp/p.kvproj"));
        idle.sendPackageDeployed(QString(), QString(), QString(), Package::DeployResult::Success);
        QVERIFY(log.contains(QStringLiteral("\"OnOpenProject\" was not sent")));
        QVERIFY(log.contains(QStringLiteral("\"OnPackageDeploy\" was not sent")));
    }

    void roundTripBetweenApplications()
    {
        IPC::Protocol editor(QStringLiteral("klipvane"), nullptr);
        IPC::Protocol installer(QStringLiteral("kvinstaller"), nullptr);
        editor.StartCommunication();
        installer.StartCommunication();
        QTRY_VERIFY_WITH_TIMEOUT(installer.IsApplicationConnected("klipvane"), 5000);
        KvTest::QueuedSpy project(&editor, &IPC::Protocol::onOpenProject);
        KvTest::QueuedSpy install(&editor, &IPC::Protocol::onPackageInstall);
        KvTest::QueuedSpy files(&editor, &IPC::Protocol::onAddFiles);

        installer.sendOpenProject(QStringLiteral("/home/zoë/Mein Projekt.kvproj"));
        installer.sendPackageInstalled(QStringLiteral("Ünïcode"), QStringLiteral("1.0"), QStringLiteral("/opt/x y"),
                                       Package::DeployResult::Failed, Package::InstallMode::Repair);
        // As a second launch hands its files over, or only asks for the window.
        const QStringList sent{QStringLiteral("/tmp/Ordner mit Leerzeichen/clip.mp4"), QStringLiteral("/tmp/видео.mkv")};
        for (const QStringList& list : {sent, QStringList()})
            QCOMPARE(Tavrin::App::SendCallAndWait(IPC::Protocol::addFilesCall(list), 5000),
                     Tavrin::App::DeliveryResult::Delivered);
        QTRY_COMPARE_WITH_TIMEOUT(project.count() + install.count() + files.count(), 4, 5000);
        QCOMPARE(project.first().first().toString(), QStringLiteral("/home/zoë/Mein Projekt.kvproj"));
        QCOMPARE(install.first().at(0).toString(), QStringLiteral("Ünïcode"));
        QCOMPARE(install.first().at(2).toString(), QStringLiteral("/opt/x y"));
        QCOMPARE(install.first().at(3).value<Package::DeployResult>(), Package::DeployResult::Failed);
        QCOMPARE(install.first().at(4).value<Package::InstallMode>(), Package::InstallMode::Repair);
        QCOMPARE(files.at(0).first().toStringList(), sent);
        QCOMPARE(files.at(1).first().toStringList(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_IPCProtocol)
#include "tst_ipcprotocol.moc"
