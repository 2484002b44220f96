// IPC::Controller with real peers: calls sent by other processes reach the command
// provider in the documented order, package results reach the bus, capture companions are
// launched, tracked and noticed when they quit, and isAlone answers for both scopes.

#include "FakeCustomization.h"
#include "IpcTestSupport.h"

#include <CommandProvider.h>
#include <IPCController.h>

#include <App/AppManager.h>
#include <EditorCollection/Collection.h>
#include <Launcher/Launcher.h>

#include <QSignalSpy>
#include <QtTest>

#include <csignal>

namespace {

class RecordingCollection : public EditorCollection::ICollection
{
public:
    explicit RecordingCollection(QStringList* log) : m_log(log) {}
    QString name() const override { return QStringLiteral("UserFiles"); }
    void showPage() override { m_log->append(QStringLiteral("collection:UserFiles")); }

private:
    QStringList* m_log;
};

} // namespace

class tst_IPCController : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_env = std::make_unique<KvTest::IpcEnvironment>();
        m_customization = FakeCustomization::install();
        Launcher::instance().setArguments(QStringList{QStringLiteral("tst_ipccontroller")});
        m_provider = std::make_unique<CommandProvider>();
        m_subscriptions = std::make_unique<Subscriptions>(&m_log);
        EditorCollection::CollectionProvider::add(std::make_shared<RecordingCollection>(&m_log));
        PubSub::publish(Command::ReadyNotification());

        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        IPC::Controller::init(nullptr, QStringLiteral("ignored"));  // a second init does nothing
        QCOMPARE(IPC::Controller::instance().commandProvider(), m_provider.get());
        IPC::Controller::instance().waitForInitialize();
        QVERIFY(IPC::Controller::instance().getProtocol()->IsCommunicationStarted());
        QVERIFY(IPC::Controller::instance().getApplicationRegistryProvider());

        m_media = m_env->path(QStringLiteral("media"));
        QDir().mkpath(m_media + QStringLiteral("/Ordner mit Leerzeichen"));
        for (const QString& name : {QStringLiteral("Ordner mit Leerzeichen/clip one.mp4"), QStringLiteral("видео.mkv"),
                                    QStringLiteral("notes.txt")}) {
            QFile file(m_media + QLatin1Char('/') + name);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("x");
        }
    }

    void cleanupTestCase()
    {
        IPC::Controller::destroy();
        m_subscriptions.reset();
        m_provider.reset();
        EditorCollection::CollectionProvider::clear();
        m_env.reset();
    }

    void init() { m_log.clear(); }

    void routesCallsFromOtherProcesses_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("expected");
        const QString clip = m_media + QStringLiteral("/Ordner mit Leerzeichen/clip one.mp4");
        const QString video = m_media + QStringLiteral("/видео.mkv");
        QTest::newRow("files") << QStringList{QStringLiteral("OnAddFiles"), clip, video}
                               << QStringList{QStringLiteral("AddFiles:") + clip + QLatin1Char('|') + video,
                                              QStringLiteral("collection:UserFiles"), QStringLiteral("ShowMainWindow")};
        QTest::newRow("no files") << QStringList{QStringLiteral("OnAddFiles")} << QStringList{QStringLiteral("ShowMainWindow")};
        QTest::newRow("unsupported file")
            << QStringList{QStringLiteral("OnAddFiles"), m_media + QStringLiteral("/notes.txt")}
            << QStringList{QStringLiteral("collection:UserFiles"), QStringLiteral("ShowMainWindow")};
        QTest::newRow("project") << QStringList{QStringLiteral("OnOpenProject"), video}
                                 << QStringList{QStringLiteral("AddFiles:") + video, QStringLiteral("ShowMainWindow")};
    }

    void routesCallsFromOtherProcesses()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, expected);
        QCOMPARE(send(arguments), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_log.size(), expected.size(), 5000);
        QCOMPARE(m_log, expected);
    }

    void republishesPackageResults()
    {
        QList<Package::DeployFinishedNotification> deployed;
        QList<Package::InstallFinishedNotification> installed;
        PubSub::Subscription<Package::DeployFinishedNotification> deploy(
            Package::globalObject(), [&](const Package::DeployFinishedNotification& n) { deployed << n; });
        PubSub::Subscription<Package::InstallFinishedNotification> install(
            Package::globalObject(), [&](const Package::InstallFinishedNotification& n) { installed << n; });

        QCOMPARE(send({QStringLiteral("OnPackageDeploy"), QStringLiteral("fx-pack"), QStringLiteral("3"),
                       QStringLiteral("/opt/fx"), QStringLiteral("enum:2")}),
                 0);
        QCOMPARE(send({QStringLiteral("OnPackageInstall"), QStringLiteral("fx-pack"), QStringLiteral("3"),
                       QStringLiteral("/opt/fx"), QStringLiteral("enum:0"), QStringLiteral("enum:1")}),
                 0);
        QTRY_COMPARE(deployed.size(), 1);
        QCOMPARE(deployed.first().packageId, QStringLiteral("fx-pack"));
        QCOMPARE(deployed.first().location, QStringLiteral("/opt/fx"));
        QCOMPARE(deployed.first().result, Package::DeployResult::Cancelled);
        QTRY_COMPARE(installed.size(), 1);
        QCOMPARE(installed.first().result, Package::DeployResult::Success);
        QCOMPARE(installed.first().mode, Package::InstallMode::Update);

        // A value that is not a number is refused at the receiving edge; the sender hears so.
        QCOMPARE(send({QStringLiteral("OnPackageDeploy"), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                       QStringLiteral("enum:x")}),
                 1);
        QTest::qWait(50);
        QCOMPARE(deployed.size(), 1);
        // Unknown calls are answered as handled.
        QCOMPARE(send({QStringLiteral("OnFutureFeature"), QStringLiteral("1")}), 0);
    }

    void isAloneForBothScopes()
    {
        IPC::Controller& c = IPC::Controller::instance();
        QVERIFY(c.isAlone(IPC::Controller::AnyApplication));
        QVERIFY(c.isAlone(IPC::Controller::SameProduct));
        QVERIFY(!c.isAlone(IPC::Controller::AppsScope(7)));

        QSignalSpy changed(&c, &IPC::Controller::startStateChanged);
        KvTest::Child otherProduct;
        otherProduct.start(companion(), {QStringLiteral("--app-id"), QStringLiteral("orvelplatform")});
        QTRY_VERIFY_WITH_TIMEOUT(!c.isAlone(IPC::Controller::AnyApplication), 10000);
        QVERIFY(c.isAlone(IPC::Controller::SameProduct));
        QTRY_VERIFY(!changed.isEmpty());  // a new application may change what can start

        KvTest::Child sameProduct;
        sameProduct.start(companion(), {QStringLiteral("--app-id"), QStringLiteral("klipvane"), QStringLiteral("--product-id"),
                                        QStringLiteral("klipvane")});
        QTRY_VERIFY_WITH_TIMEOUT(!c.isAlone(IPC::Controller::SameProduct), 10000);

        sameProduct.stop();
        QTRY_VERIFY_WITH_TIMEOUT(c.isAlone(IPC::Controller::SameProduct), 5000);
        otherProduct.stop();
        QTRY_VERIFY_WITH_TIMEOUT(c.isAlone(IPC::Controller::AnyApplication), 5000);
        QVERIFY(!c.isStartedFromAny());
    }

    void screenCaptureIsLaunchedAndTracked()
    {
        IPC::Controller& c = IPC::Controller::instance();
        QVERIFY(c.screenCaptureIsAvailable());
        QVERIFY(c.canStartScreenCapture());
        QSignalSpy changed(&c, &IPC::Controller::startStateChanged);
        QSignalSpy terminated(&c, &IPC::Controller::childProcessTerminated);

        c.runScreenCapture();
        QVERIFY(!changed.isEmpty());
        QVERIFY(!c.canStartScreenCapture());  // starting, not connected yet
        QTRY_VERIFY_WITH_TIMEOUT(m_log.contains(QStringLiteral("HideMainWindow")), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(c.canStartScreenCapture(), 10000);  // connected

        // Running already: asked to get ready instead of a second launch.
        const int before = countSockets(QStringLiteral("screencapture"));
        c.runScreenCapture();
        QTest::qWait(100);
        QCOMPARE(countSockets(QStringLiteral("screencapture")), before);

        m_log.clear();
        killApplication(QStringLiteral("screencapture"));
        QTRY_COMPARE_WITH_TIMEOUT(terminated.count(), 1, 5000);
        // Nobody else of this product runs: the window comes back.
        QTRY_COMPARE(m_log, QStringList{QStringLiteral("ShowMainWindow")});
        QVERIFY(c.canStartScreenCapture());
    }

    void videoCaptureStartsOnceAtATime()
    {
        IPC::Controller& c = IPC::Controller::instance();
        QVERIFY(c.videoCaptureIsAvailable());
        QVERIFY(c.canStartVideoCapture());
        QSignalSpy terminated(&c, &IPC::Controller::childProcessTerminated);
        c.runVideoCapture();
        QVERIFY(!c.canStartVideoCapture());
        QTRY_VERIFY_WITH_TIMEOUT(c.getProtocol()->IsApplicationConnected("videocapture"), 10000);
        QVERIFY(!c.canStartVideoCapture());  // running

        c.runVideoCapture();  // running: nothing happens
        QTest::qWait(100);
        QCOMPARE(countSockets(QStringLiteral("videocapture")), 1);

        // Another editor of this product is there: the window stays hidden when capture quits.
        KvTest::Child sameProduct;
        sameProduct.start(companion(), {QStringLiteral("--app-id"), QStringLiteral("klipvane"), QStringLiteral("--product-id"),
                                        QStringLiteral("klipvane")});
        QTRY_VERIFY_WITH_TIMEOUT(!c.isAlone(IPC::Controller::SameProduct), 10000);
        m_log.clear();
        killApplication(QStringLiteral("videocapture"));
        QTRY_COMPARE_WITH_TIMEOUT(terminated.count(), 1, 5000);
        QTest::qWait(50);
        QVERIFY(!m_log.contains(QStringLiteral("ShowMainWindow")));
        QTRY_VERIFY(c.canStartVideoCapture());
    }

    void launchFailureIsLoggedAndForgotten()
    {
        QFile registry(m_env->path(QStringLiteral("broken-applications.json")));
        QVERIFY(registry.open(QIODevice::WriteOnly));
        registry.write(R"({"applications": [{"id": "videocapture", "productId": "x", "executable": "missing-program"}]})");
        registry.close();
        qputenv("KLIPVANE_APP_REGISTRY", QFile::encodeName(registry.fileName()));
        IPC::Controller::destroy();
        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        qunsetenv("KLIPVANE_APP_REGISTRY");
        IPC::Controller& c = IPC::Controller::instance();
        c.waitForInitialize();
        QVERIFY(!c.videoCaptureIsAvailable());
        QVERIFY(!c.screenCaptureIsAvailable());

        KvTest::LogCapture log;
        c.runVideoCapture();
        c.runScreenCapture();
        QVERIFY(log.contains(QStringLiteral("E Can't run videocapture")));
        QVERIFY(log.contains(QStringLiteral("E Can't run screencapture")));
        QVERIFY(c.canStartVideoCapture());
        QVERIFY(c.canStartScreenCapture());
    }

    void failedStartIsLogged()
    {
        const QString notADirectory = m_env->path(QStringLiteral("plain-file"));
        QFile file(notADirectory);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        const QByteArray saved = qgetenv("KLIPVANE_IPC_DIR");
        qputenv("KLIPVANE_IPC_DIR", QFile::encodeName(notADirectory));
        IPC::Controller::destroy();
        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        KvTest::LogCapture log;
        IPC::Controller::instance().waitForInitialize();
        qputenv("KLIPVANE_IPC_DIR", saved);
        QVERIFY2(log.contains(QStringLiteral("E Can not start IPC communication. Reason: ")),
                 qPrintable(log.lines().join(QLatin1Char('\n'))));
        QVERIFY(!IPC::Controller::instance().getProtocol()->IsCommunicationStarted());
        // Without communication the senders drop their calls and nothing breaks.
        IPC::Controller::instance().openKVProject(QStringLiteral("/tmp/x.kvproj"));
        IPC::Controller::instance().openPlatformFileStorage();
    }

private:
    struct Subscriptions
    {
        explicit Subscriptions(QStringList* log)
            : addFiles(Command::globalObject(),
                       [log](const Command::AddFiles& m) { log->append(QStringLiteral("AddFiles:") + m.files.join(QLatin1Char('|'))); }),
              show(Command::globalObject(), [log](const Command::ShowMainWindow&) { log->append(QStringLiteral("ShowMainWindow")); }),
              hide(Command::globalObject(), [log](const Command::HideMainWindow&) { log->append(QStringLiteral("HideMainWindow")); })
        {
        }
        PubSub::Subscription<Command::AddFiles> addFiles;
        PubSub::Subscription<Command::ShowMainWindow> show;
        PubSub::Subscription<Command::HideMainWindow> hide;
    };

    static QString companion() { return KvTest::binDir() + QStringLiteral("/kvcompanion"); }

    int send(const QStringList& arguments)
    {
        QProcess sender;
        sender.start(KvTest::binDir() + QStringLiteral("/ipcsend"), QStringList{QStringLiteral("klipvane")} + arguments);
        // The answer comes from the IPC thread; the event loop only has to carry the routes.
        if (!QTest::qWaitFor([&] { return sender.state() == QProcess::NotRunning; }, 10000))
            return -1;
        return sender.exitCode();
    }

    int countSockets(const QString& appId) const
    {
        int n = 0;
        for (const QString& s : m_env->sockets())
            n += Tavrin::App::AppManager::IsValidAppId(appId.toStdString(), s.toStdString()) ? 1 : 0;
        return n;
    }

    static void killApplication(const QString& appId)
    {
        for (const std::string& id : IPC::Controller::instance().getProtocol()->GetConnectedApplications())
            if (Tavrin::App::AppManager::IsValidAppId(appId.toStdString(), id))
                ::kill(pid_t(Tavrin::App::ProductAppID(id).GetPid()), SIGKILL);
    }

    std::unique_ptr<KvTest::IpcEnvironment> m_env;
    std::shared_ptr<FakeCustomization> m_customization;
    std::unique_ptr<CommandProvider> m_provider;
    std::unique_ptr<Subscriptions> m_subscriptions;
    QStringList m_log;
    QString m_media;
};

QTEST_GUILESS_MAIN(tst_IPCController)
#include "tst_ipccontroller.moc"
