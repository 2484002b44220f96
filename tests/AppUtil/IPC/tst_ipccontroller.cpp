// IPC::Controller with real peers: calls sent by other processes are decoded and reach the
// command provider and the package bus, capture companions are launched and tracked, isAlone
// answers for both scopes.

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

struct UserFiles : EditorCollection::ICollection
{
    explicit UserFiles(QStringList& log) : log(log) {}
    QString name() const override { return QStringLiteral("UserFiles"); }
    void showPage() override { log << QStringLiteral("collection:UserFiles"); }
    QStringList& log;
};

template <class C, class Source>
std::shared_ptr<void> record(QStringList& log, const Source* source, std::function<QString(const C&)> text)
{
    return std::make_shared<PubSub::Subscription<C>>(source, [&log, text](const C& c) { log << text(c); });
}

// Hands one call to the editor from another process (helpers/ipcsend.cpp); its exit code.
int send(const QStringList& call)
{
    QProcess sender;
    sender.start(KvTest::binDir() + QStringLiteral("/ipcsend"), QStringList{QStringLiteral("klipvane")} + call);
    // The answer comes from the IPC thread; the event loop only has to carry the routes.
    const bool done = QTest::qWaitFor([&] { return sender.state() == QProcess::NotRunning; }, 10000);
    return done ? sender.exitCode() : -1;
}

const QStringList kSameProduct{"--app-id", "klipvane", "--product-id", "klipvane"};

} // namespace

class tst_IPCController : public QObject
{
    Q_OBJECT

    std::unique_ptr<KvTest::IpcEnvironment> m_env;
    std::shared_ptr<FakeCustomization> m_customization;
    std::unique_ptr<CommandProvider> m_provider;
    std::vector<std::shared_ptr<void>> m_subscriptions;
    QStringList m_log; // commands, collection pages and package results, in order

    static QString companion() { return KvTest::binDir() + QStringLiteral("/kvcompanion"); }
    // Kills the connected applications with this id without a chance to say goodbye.
    static int killApplications(const QString& appId)
    {
        int n = 0;
        for (const std::string& id : IPC::Controller::instance().getProtocol()->GetConnectedApplications())
            if (Tavrin::App::AppManager::IsValidAppId(appId.toStdString(), id))
                n += ::kill(pid_t(Tavrin::App::ProductAppID(id).GetPid()), SIGKILL) == 0 ? 1 : 0;
        return n;
    }

private slots:
    void initTestCase()
    {
        m_env = std::make_unique<KvTest::IpcEnvironment>();
        m_customization = FakeCustomization::install();
        Launcher::instance().setArguments(QStringList{QStringLiteral("tst_ipccontroller")});
        m_provider = std::make_unique<CommandProvider>();
        const void* commands = Command::globalObject();
        m_subscriptions = {
            record<Command::AddFiles>(m_log, commands, [](const auto& m) { return "AddFiles:" + m.files.join('|'); }),
            record<Command::ShowMainWindow>(m_log, commands, [](const auto&) { return QStringLiteral("ShowMainWindow"); }),
            record<Command::HideMainWindow>(m_log, commands, [](const auto&) { return QStringLiteral("HideMainWindow"); }),
            record<Package::DeployFinishedNotification>(m_log, Package::globalObject(), [](const auto& n) {
                return QStringLiteral("deployed %1 %2 %3 %4").arg(n.packageId, n.version, n.location).arg(int(n.result));
            }),
            record<Package::InstallFinishedNotification>(m_log, Package::globalObject(), [](const auto& n) {
                return QStringLiteral("installed %1 %2 %3").arg(n.packageId).arg(int(n.result)).arg(int(n.mode));
            })};
        EditorCollection::CollectionProvider::add(std::make_shared<UserFiles>(m_log));
        PubSub::publish(Command::ReadyNotification());

        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        IPC::Controller::init(nullptr, QStringLiteral("ignored")); // a second init does nothing
        QCOMPARE(IPC::Controller::instance().commandProvider(), m_provider.get());
        IPC::Controller::instance().waitForInitialize();
        QVERIFY(QDir().mkpath(m_env->path(QStringLiteral("media/Ordner mit Leerzeichen"))));
        for (const char* name : {"media/Ordner mit Leerzeichen/clip one.mp4", "media/видео.mkv"}) {
            QFile file(m_env->path(QString::fromUtf8(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
        }
    }

    void cleanupTestCase()
    {
        IPC::Controller::destroy();
        m_subscriptions.clear();
        m_provider.reset();
        EditorCollection::CollectionProvider::clear();
        m_env.reset();
    }

    void init() { m_log.clear(); }

    // The call as ipcsend takes it ("@" for the media folder, "enum:" for the package enums
    // sent as signed decimal text), its answer, what follows and what is logged.
    void callsFromOtherProcesses_data()
    {
        QTest::addColumn<QStringList>("call");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QString>("logged");
        QTest::newRow("files") << QStringList{"OnAddFiles", "@/Ordner mit Leerzeichen/clip one.mp4", "@/видео.mkv"} << 0
                               << QStringList{"AddFiles:@/Ordner mit Leerzeichen/clip one.mp4|@/видео.mkv",
                                              "collection:UserFiles", "ShowMainWindow"}
                               << QString();
        QTest::newRow("no files") << QStringList{"OnAddFiles"} << 0 << QStringList{"ShowMainWindow"} << QString();
        QTest::newRow("project") << QStringList{"OnOpenProject", "@/видео.mkv"} << 0
                                 << QStringList{"AddFiles:@/видео.mkv", "ShowMainWindow"} << QString();
        QTest::newRow("deployed, -1") << QStringList{"OnPackageDeploy", "fx", "3", "/opt/fx", "enum:-1"} << 0
                                      << QStringList{"deployed fx 3 /opt/fx -1"} << QString();
        QTest::newRow("installed") << QStringList{"OnPackageInstall", "fx", "3", "/opt/fx", "enum:0", "enum:1"} << 0
                                   << QStringList{"installed fx 0 1"} << QString();
        QTest::newRow("not a number") << QStringList{"OnPackageDeploy", "a", "b", "c", "enum:x"} << 1 << QStringList()
                                      << "IPC call \"OnPackageDeploy\" dropped: invalid stoll argument";
        QTest::newRow("wider than the enum")
            << QStringList{"OnPackageInstall", "a", "b", "c", "enum:0", "enum:4294967296"} << 1 << QStringList()
            << "IPC call \"OnPackageInstall\" dropped: enum value out of range";
        QTest::newRow("unknown call") << QStringList{"OnFutureFeature", "a", "b c", ""} << 0 << QStringList()
                                      << "I Unhandled message with arguments = a|b c|";
    }

    void callsFromOtherProcesses()
    {
        QFETCH(QStringList, call);
        QFETCH(int, answer);
        QFETCH(QStringList, expected);
        QFETCH(QString, logged);
        const QString media = m_env->path(QStringLiteral("media"));
        KvTest::LogCapture log;
        QCOMPARE(send(call.replaceInStrings("@", media)), answer);
        QTRY_COMPARE_WITH_TIMEOUT(m_log.size(), expected.size(), 5000);
        QCOMPARE(m_log, expected.replaceInStrings("@", media));
        QVERIFY2(logged.isEmpty() || log.contains(logged), qPrintable(log.lines().join('\n')));
    }

    // A running screen capture is asked to get ready again; a running video capture is left
    // alone. The window steps aside while a capture runs and comes back when it quits, unless
    // another editor of this product is there to take over. isAlone follows who is there.
    void captureIsLaunchedAndTracked_data()
    {
        QTest::addColumn<bool>("screen");
        QTest::newRow("screen capture, editor alone") << true;
        QTest::newRow("video capture, another editor runs") << false;
    }

    void captureIsLaunchedAndTracked()
    {
        QFETCH(bool, screen);
        IPC::Controller& c = IPC::Controller::instance();
        const QString appId = screen ? QStringLiteral("screencapture") : QStringLiteral("videocapture");
        const auto canStart = [&] { return screen ? c.canStartScreenCapture() : c.canStartVideoCapture(); };
        const auto start = [&] { screen ? c.runScreenCapture() : c.runVideoCapture(); };
        QVERIFY(screen ? c.screenCaptureIsAvailable() : c.videoCaptureIsAvailable());
        QVERIFY(canStart());
        QVERIFY(c.isAlone(IPC::Controller::AnyApplication) && c.isAlone(IPC::Controller::SameProduct));
        QVERIFY(!c.isAlone(IPC::Controller::AppsScope(7)));
        QSignalSpy changed(&c, &IPC::Controller::startStateChanged);
        QSignalSpy terminated(&c, &IPC::Controller::childProcessTerminated);
        start();
        QVERIFY(!changed.isEmpty());
        QVERIFY(!canStart()); // starting
        QTRY_VERIFY_WITH_TIMEOUT(c.getProtocol()->IsApplicationConnected(appId.toStdString()), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(m_log.contains(QStringLiteral("HideMainWindow")), 10000);
        QTRY_COMPARE(canStart(), screen);
        start(); // running: no second launch
        QVERIFY(!c.isAlone(IPC::Controller::AnyApplication)); // the capture is of another product
        QVERIFY(c.isAlone(IPC::Controller::SameProduct));
        KvTest::Child editor;
        if (!screen) {
            changed.clear();
            editor.start(companion(), kSameProduct);
            QTRY_VERIFY_WITH_TIMEOUT(!c.isAlone(IPC::Controller::SameProduct), 10000);
            QTRY_VERIFY(!changed.isEmpty()); // a new application may change what can start
        }
        m_log.clear();
        QCOMPARE(killApplications(appId), 1);
        QTRY_COMPARE_WITH_TIMEOUT(terminated.count(), 1, 5000);
        QCOMPARE(m_log, screen ? QStringList{"ShowMainWindow"} : QStringList());
        QVERIFY(canStart());
        editor.stop();
        QTRY_VERIFY_WITH_TIMEOUT(c.isAlone(IPC::Controller::AnyApplication), 5000);
        QVERIFY(c.isAlone(IPC::Controller::SameProduct));
    }

    // A capture program that ends at once, before it ever connects, has failed to start: the
    // window that stepped aside for it comes back and the capture can be started again.
    void companionEndingBeforeConnectingHasFailed()
    {
        QFile registry(m_env->path(QStringLiteral("ends-at-once.json")));
        QVERIFY(registry.open(QIODevice::WriteOnly));
        registry.write(QStringLiteral(R"({"applications": [{"id": "screencapture", "productId": "x", "executable": "%1"}]})")
                           .arg(QStandardPaths::findExecutable(QStringLiteral("true")))
                           .toUtf8());
        registry.close();
        qputenv("KLIPVANE_APP_REGISTRY", QFile::encodeName(registry.fileName()));
        IPC::Controller::destroy();
        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        IPC::Controller& c = IPC::Controller::instance();
        c.waitForInitialize();
        KvTest::LogCapture log;
        c.runScreenCapture();
        QVERIFY(!c.canStartScreenCapture());
        QVERIFY2(log.waitFor(QStringLiteral("E Can't run screencapture"), 10000), qPrintable(log.lines().join('\n')));
        QCOMPARE(m_log, (QStringList{"HideMainWindow", "ShowMainWindow"}));
        QVERIFY(c.canStartScreenCapture());
    }

    // Last: the controller starts again with a registry whose capture program is missing and
    // an IPC folder that is a plain file.
    void brokenSetUpIsLogged()
    {
        QFile registry(m_env->path(QStringLiteral("applications.json")));
        QVERIFY(registry.open(QIODevice::WriteOnly));
        registry.write(R"({"applications": [{"id": "videocapture", "productId": "x", "executable": "missing"}]})");
        registry.close();
        qputenv("KLIPVANE_APP_REGISTRY", QFile::encodeName(registry.fileName()));
        qputenv("KLIPVANE_IPC_DIR", QFile::encodeName(registry.fileName()));
        KvTest::LogCapture log;
        IPC::Controller::destroy();
        IPC::Controller::init(m_provider.get(), QStringLiteral("klipvane"));
        IPC::Controller& c = IPC::Controller::instance();
        c.waitForInitialize();
        QVERIFY(log.contains(QStringLiteral("E Can not start IPC communication. Reason: ")));
        QVERIFY(!c.getProtocol()->IsCommunicationStarted());
        c.runVideoCapture();
        c.runScreenCapture();
        QVERIFY(log.contains(QStringLiteral("E Can't run videocapture")));
        QVERIFY(log.contains(QStringLiteral("E Can't run screencapture")));
        QVERIFY(c.canStartVideoCapture() && c.canStartScreenCapture());
    }
};

QTEST_GUILESS_MAIN(tst_IPCController)
#include "tst_ipccontroller.moc"
