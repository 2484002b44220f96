// IPC::Protocol: the received-call table, argument decoding and its errors, the senders and
// their not-started rule, and a round trip between two applications over real sockets.

#include "FakeCustomization.h"
#include "IpcTestSupport.h"

#include <IPCProtocol.h>

#include <App/AppManager.h>
#include <App/Delivery.h>
#include <UniqueIPC/Task.h>

#include <QSignalSpy>
#include <QtTest>

#include <stdexcept>

using Tavrin::UniqueIPC::Call;
namespace details = Tavrin::UniqueIPC::details;

Q_DECLARE_METATYPE(std::string)

namespace {

Call call(const std::string& function, std::vector<std::string> arguments)
{
    Call c;
    c.target = "klipvane";
    c.function = function;
    c.version = {1, 0, 0, 0, std::string()};
    c.types.assign(arguments.size(), "QString");
    c.arguments = std::move(arguments);
    return c;
}

} // namespace

class tst_IPCProtocol : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_env = std::make_unique<KvTest::IpcEnvironment>();
        m_customization = FakeCustomization::install();
        m_protocol = std::make_unique<IPC::Protocol>(QStringLiteral("klipvane"), nullptr);
    }

    void cleanupTestCase()
    {
        m_protocol.reset();
        m_env.reset();
    }

    void registersTheEditorCalls()
    {
        const auto names = m_protocol->GetInvokers().RegisteredFunctions();
        const std::vector<std::string> expected{"OnAddFiles", "OnOpenProject", "OnPackageInstall", "OnPackageDeploy",
                                                "hello_successfull"};
        QVERIFY(names == expected);
        QCOMPARE(QMetaType::type("Package::DeployResult") != QMetaType::UnknownType, true);
        QCOMPARE(QMetaType::type("Package::InstallMode") != QMetaType::UnknownType, true);
        QCOMPARE(m_protocol->GetAppName(), std::string("Klipvane"));
        QCOMPARE(m_protocol->GetProductId(), std::string("klipvane"));
    }

    void decodesEnums_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<qlonglong>("value");
        QTest::addColumn<QString>("error");
        QTest::newRow("minus one") << std::string("-1") << -1LL << QString();
        QTest::newRow("zero") << std::string("0") << 0LL << QString();
        QTest::newRow("64-bit max") << std::string("9223372036854775807") << 9223372036854775807LL << QString();
        QTest::newRow("leading blanks") << std::string("  7") << 7LL << QString();
        QTest::newRow("not a number") << std::string("x") << 0LL << QStringLiteral("invalid stoll argument");
        QTest::newRow("empty") << std::string() << 0LL << QStringLiteral("invalid stoll argument");
        QTest::newRow("beyond 64 bits") << std::string("99999999999999999999") << 0LL
                                        << QStringLiteral("stoll argument out of range");
    }

    void decodesEnums()
    {
        QFETCH(std::string, text);
        QFETCH(qlonglong, value);
        QFETCH(QString, error);
        try {
            QCOMPARE(qlonglong(details::StringToInt64(text)), value);
            QVERIFY2(error.isEmpty(), "expected an exception");
        } catch (const std::invalid_argument& e) {
            QCOMPARE(QString::fromLatin1(e.what()), error);
        } catch (const std::out_of_range& e) {
            QCOMPARE(QString::fromLatin1(e.what()), error);
        }
    }

    void narrowEnumsRefuseWideValues()
    {
        QVERIFY_EXCEPTION_THROWN(details::StringToEnum<Package::DeployResult>("4294967296"), std::out_of_range);
        QCOMPARE(int(details::StringToEnum<Package::DeployResult>("-1")), -1);
        QCOMPARE(details::ArgToString(Package::InstallMode::Update), std::string("1"));
        QCOMPARE(details::ArgToString(QStringLiteral("ä/ß")), std::string("\xc3\xa4/\xc3\x9f"));
    }

    void receivedFiles_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::newRow("none") << QStringList();
        QTest::newRow("one") << QStringList{QStringLiteral("/tmp/a.mp4")};
        QTest::newRow("non-ASCII and spaces") << QStringList{QStringLiteral("/tmp/Überblick 2.mp4"),
                                                              QStringLiteral("/tmp/夏 の 海.mov"), QString()};
    }

    void receivedFiles()
    {
        QFETCH(QStringList, files);
        std::vector<std::string> wire;
        for (const QString& f : files)
            wire.push_back(details::ArgToString(f));
        QSignalSpy spy(m_protocol.get(), &IPC::Protocol::onAddFiles);
        QVERIFY(m_protocol->GetInvokers().Invoke(call("OnAddFiles", wire)));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().first().toStringList(), files);
    }

    void receivedProjectAndGreeting()
    {
        QSignalSpy spy(m_protocol.get(), &IPC::Protocol::onOpenProject);
        QVERIFY(m_protocol->GetInvokers().Invoke(call("OnOpenProject", {"/tmp/ü.kvproj"})));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().first().toString(), QStringLiteral("/tmp/ü.kvproj"));
        Call hello = call("hello_successfull", {});
        hello.version = {0, 0, 0, 0, std::string()};
        QVERIFY(m_protocol->GetInvokers().Invoke(hello));
    }

    void receivedPackageCalls_data()
    {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("emitted");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("logged");
        const QStringList abc{QStringLiteral("pkg"), QStringLiteral("2.1"), QStringLiteral("/opt/pkg")};
        const QStringList empty{QString(), QString(), QString()};
        QTest::newRow("deploy") << "OnPackageDeploy" << abc + QStringList{QStringLiteral("1")} << true << abc << 1 << 0
                                << QString();
        QTest::newRow("deploy, -1") << "OnPackageDeploy" << abc + QStringList{QStringLiteral("-1")} << true << abc << -1
                                    << 0 << QString();
        QTest::newRow("install") << "OnPackageInstall" << abc + QStringList{QStringLiteral("2"), QStringLiteral("3")}
                                 << true << abc << 2 << 3 << QString();
        QTest::newRow("deploy, too few") << "OnPackageDeploy" << abc << true << empty << 0 << 0 << QString();
        QTest::newRow("install, too many") << "OnPackageInstall" << abc + abc << true << empty << 0 << 0 << QString();
        QTest::newRow("deploy, not a number") << "OnPackageDeploy" << abc + QStringList{QStringLiteral("x")} << false
                                              << QStringList() << 0 << 0
                                              << "IPC call \"OnPackageDeploy\" dropped: invalid stoll argument";
        QTest::newRow("install, out of range")
            << "OnPackageInstall" << abc + QStringList{QStringLiteral("0"), QStringLiteral("99999999999999999999")}
            << false << QStringList() << 0 << 0 << "IPC call \"OnPackageInstall\" dropped: stoll argument out of range";
        QTest::newRow("install, wider than the enum")
            << "OnPackageInstall" << abc + QStringList{QStringLiteral("0"), QStringLiteral("4294967296")} << false
            << QStringList() << 0 << 0 << "dropped: enum value out of range";
    }

    void receivedPackageCalls()
    {
        QFETCH(QString, function);
        QFETCH(QStringList, arguments);
        QFETCH(bool, emitted);
        QFETCH(QStringList, texts);
        QFETCH(int, result);
        QFETCH(int, mode);
        QFETCH(QString, logged);
        std::vector<std::string> wire;
        for (const QString& a : arguments)
            wire.push_back(a.toStdString());
        KvTest::LogCapture log;
        QSignalSpy deploy(m_protocol.get(), &IPC::Protocol::onPackageDeploy);
        QSignalSpy install(m_protocol.get(), &IPC::Protocol::onPackageInstall);
        const bool handled = m_protocol->GetInvokers().Invoke(call(function.toStdString(), wire));
        QCOMPARE(handled, emitted);
        QSignalSpy& spy = function == QLatin1String("OnPackageDeploy") ? deploy : install;
        QCOMPARE(deploy.count() + install.count(), emitted ? 1 : 0);
        if (emitted) {
            const QList<QVariant> values = spy.first();
            QCOMPARE((QStringList{values[0].toString(), values[1].toString(), values[2].toString()}), texts);
            QCOMPARE(int(values[3].value<Package::DeployResult>()), result);
            if (values.size() > 4)
                QCOMPARE(int(values[4].value<Package::InstallMode>()), mode);
        } else {
            QVERIFY2(log.contains(logged), qPrintable(log.lines().join(QLatin1Char('\n'))));
        }
    }

    void unknownCallsAreLoggedAndHandled()
    {
        KvTest::LogCapture log;
        QVERIFY(m_protocol->GetInvokers().Invoke(call("OnSomethingNew", {"a", "b c", ""})));
        QVERIFY2(log.contains(QStringLiteral("I Unhandled message with arguments = a|b c|")),
                 qPrintable(log.lines().join(QLatin1Char('\n'))));
    }

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
        m_protocol->StartCommunication();
        IPC::Protocol installer(QStringLiteral("kvinstaller"), nullptr);
        installer.StartCommunication();
        QTRY_VERIFY_WITH_TIMEOUT(installer.IsApplicationConnected("klipvane"), 5000);

        QSignalSpy project(m_protocol.get(), &IPC::Protocol::onOpenProject);
        QSignalSpy install(m_protocol.get(), &IPC::Protocol::onPackageInstall);
        installer.sendOpenProject(QStringLiteral("/home/zoë/Mein Projekt.kvproj"));
        installer.sendPackageInstalled(QStringLiteral("Ünïcode"), QStringLiteral("1.0"), QStringLiteral("/opt/x y"),
                                       Package::DeployResult::Failed, Package::InstallMode::Repair);
        QTRY_COMPARE_WITH_TIMEOUT(project.count(), 1, 5000);
        QCOMPARE(project.first().first().toString(), QStringLiteral("/home/zoë/Mein Projekt.kvproj"));
        QTRY_COMPARE_WITH_TIMEOUT(install.count(), 1, 5000);
        QCOMPARE(install.first().at(0).toString(), QStringLiteral("Ünïcode"));
        QCOMPARE(install.first().at(2).toString(), QStringLiteral("/opt/x y"));
        QCOMPARE(install.first().at(3).value<Package::DeployResult>(), Package::DeployResult::Failed);
        QCOMPARE(install.first().at(4).value<Package::InstallMode>(), Package::InstallMode::Repair);

        // The editor asks a capture application to get ready; here the installer stands in for
        // it and, having no handler, logs the editor's connection id.
        KvTest::LogCapture log;
        m_protocol->sendPrepareToCapture(QStringLiteral("kvinstaller"));
        QVERIFY(log.waitFor(QStringLiteral("Unhandled message with arguments = ")
                            + QString::fromStdString(m_protocol->GetConnectId())));
    }

    void secondLaunchCallsDecodeAsSent()
    {
        QSignalSpy files(m_protocol.get(), &IPC::Protocol::onAddFiles);
        const QStringList sent{QStringLiteral("/tmp/Ordner mit Leerzeichen/clip.mp4"), QStringLiteral("/tmp/видео.mkv")};
        QCOMPARE(Tavrin::App::SendCallAndWait(IPC::Protocol::addFilesCall(sent), 5000),
                 Tavrin::App::DeliveryResult::Delivered);
        QTRY_COMPARE(files.count(), 1);
        QCOMPARE(files.first().first().toStringList(), sent);
    }

private:
    std::unique_ptr<KvTest::IpcEnvironment> m_env;
    std::shared_ptr<FakeCustomization> m_customization;
    std::unique_ptr<IPC::Protocol> m_protocol;
};

QTEST_GUILESS_MAIN(tst_IPCProtocol)
#include "tst_ipcprotocol.moc"
