// kvcompanion: a small companion application of the editor's product family.
//
//   kvcompanion --app-id screencapture [--product-id orvel-capture] [--source Klipvane]
//
// It joins the IPC layer as the given application, logs the calls it receives, and quits
// on the "Quit" call, on SIGTERM/SIGINT, or when the process that launched it ends.

#include <App/AppManager.h>
#include <App/ApplicationRegistry.h>
#include <App/IPCBaseProtocol.h>
#include <Log/Logging.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <glog/logging.h>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

int s_signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(s_signalPipe[1], &byte, 1);
}

// Runs a callable for a received call and answers "handled".
class CallbackInvoker : public Tavrin::UniqueIPC::IInvoker
{
public:
    explicit CallbackInvoker(std::function<void(const std::vector<std::string>&)> fn) : m_fn(std::move(fn)) {}
    bool Invoke(const std::vector<std::string>& arguments, const std::vector<std::string>&) override
    {
        m_fn(arguments);
        return true;
    }

private:
    std::function<void(const std::vector<std::string>&)> m_fn;
};

std::string joined(const std::vector<std::string>& arguments)
{
    std::string out;
    for (const auto& a : arguments)
        out += (out.empty() ? "" : "|") + a;
    return out;
}

} // namespace

int main(int argc, char** argv)
{
    // A capture application started by the editor does not outlive it.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);

    QCoreApplication application(argc, argv);
    Tavrin::Log::init(argv[0]);

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption appIdOption(QStringLiteral("app-id"), QStringLiteral("Application id to register as."),
                                         QStringLiteral("id"));
    const QCommandLineOption productOption(QStringLiteral("product-id"),
                                           QStringLiteral("Product id (default: from the application registry)."),
                                           QStringLiteral("id"));
    const QCommandLineOption sourceOption(QStringLiteral("source"), QStringLiteral("Product that launched us."),
                                          QStringLiteral("name"));
    parser.addOptions({appIdOption, productOption, sourceOption});
    parser.process(application);

    const QString appId = parser.value(appIdOption);
    if (appId.isEmpty()) {
        LOG(ERROR) << "kvcompanion: --app-id is required";
        return 2;
    }
    QString productId = parser.value(productOption);
    if (productId.isEmpty()) {
        const auto info = Tavrin::App::CreateApplicationRegistryProvider()->GetApplication(appId);
        productId = info ? info->productId : appId;
    }

    Tavrin::App::IPCBaseProtocol protocol(appId.toStdString(), productId.toStdString(), {1, 0, 0, 0, std::string()});
    auto& invokers = protocol.GetInvokers();
    const Tavrin::UniqueIPC::ApiVersion version{1, 0, 0, 0, std::string()};
    invokers.Register("OnPrepareToCapture", {"QString"}, version,
                      std::make_shared<CallbackInvoker>([](const std::vector<std::string>& arguments) {
                          LOG(INFO) << "companion: prepare to capture for " << joined(arguments);
                      }));
    invokers.Register("OpenLink", {"QString"}, version,
                      std::make_shared<CallbackInvoker>([](const std::vector<std::string>& arguments) {
                          LOG(INFO) << "companion: open link " << joined(arguments);
                      }));
    invokers.Register("Quit", {}, version, std::make_shared<CallbackInvoker>([&application](const std::vector<std::string>&) {
                          LOG(INFO) << "companion: quit requested";
                          QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
                      }));
    invokers.SetFallback(std::make_shared<CallbackInvoker>([](const std::vector<std::string>& arguments) {
        LOG(INFO) << "companion: unhandled call with arguments " << joined(arguments);
    }));

    QObject::connect(&protocol, &Tavrin::App::IPCBaseProtocol::OnNewApplication, [](const QString& id) {
        LOG(INFO) << "companion: new application " << id.toStdString();
    });
    QObject::connect(&protocol, &Tavrin::App::IPCBaseProtocol::OnApplicationQuit, [](const QString& id) {
        LOG(INFO) << "companion: application quit " << id.toStdString();
    });

    if (::pipe(s_signalPipe) == 0) {
        auto* notifier = new QSocketNotifier(s_signalPipe[0], QSocketNotifier::Read, &application);
        QObject::connect(notifier, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
        std::signal(SIGTERM, onSignal);
        std::signal(SIGINT, onSignal);
    }

    try {
        protocol.StartCommunication();
    } catch (const std::exception& e) {
        LOG(ERROR) << "kvcompanion: cannot start IPC communication: " << e.what();
        return 1;
    }
    LOG(INFO) << "companion: " << protocol.GetConnectId() << " ready"
              << (protocol.IsStartedFromAny() ? " (started from another application)" : "");
    const int status = application.exec();
    LOG(INFO) << "companion: " << protocol.GetConnectId() << " quits";
    return status;
}
