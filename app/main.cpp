// The reference host of EditorAppUtil: a small editor shell that wires every subsystem
// of the library so that a person (or a test) can watch it work.

#include "CaptureTools.h"
#include "DialogGallery.h"
#include "HostOptions.h"
#include "HostServices.h"
#include "MainWindow.h"
#include "MediaBin.h"
#include "ProjectController.h"
#include "SecondLaunch.h"

#include <ActionGateway.h>
#include <CommandProvider.h>
#include <IPCController.h>

#include <App/ILinksManager.h>
#include <App/ServiceRegistry.h>
#include <Launcher/Launcher.h>
#include <Log/Logging.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QBoxLayout>
#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QScreen>
#include <QTimer>

#include <glog/logging.h>

#include <cstdio>

namespace {

void registerActionGateway()
{
    auto gateway = std::make_shared<Action::Gateway>();
    Tavrin::App::ServiceRegistry::instance().set<Tavrin::ExternalStimulus::IGateway>(gateway);
}

void saveScreenshot(MainWindow& window, const QString& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    const QPixmap shot = window.grab();
    if (shot.save(path))
        LOG(INFO) << "screenshot: " << QFileInfo(path).absoluteFilePath().toStdString();
    else
        LOG(ERROR) << "Could not save the screenshot to " << path.toStdString();
}

// The folder of the executable, known without an application object (product.json and
// the catalogues sit there).
QString executableDirectory(const char* argv0)
{
    const QFileInfo self(QStringLiteral("/proc/self/exe"));
    const QString path = self.exists() ? self.canonicalFilePath() : QFileInfo(QString::fromLocal8Bit(argv0)).absoluteFilePath();
    return QFileInfo(path).absolutePath();
}

// Links open through the inter-process layer, so a companion of the product family can
// take them over; the desktop opener stays the fallback.
void routeLinksThroughIpc()
{
    if (auto links = Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::ILinksManager>())
        links->setLinksOpener(IPC::Controller::instance().createIPCLinksOpener());
}

} // namespace

int main(int argc, char** argv)
{
    Tavrin::Log::init(argv[0]);

    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const HostOptions options = HostOptions::take(arguments);
    Launcher::instance().setArguments(arguments);
    HostServices::registerProduct(executableDirectory(argv[0]), options.locale);

    // Decided before any application object: a launch that only hands its files to the
    // running editor must not pay for widgets. The gallery is a tool, not an editor.
    SecondLaunch launch;
    if (options.dialogGalleryDir.isEmpty()) {
        launch = SecondLaunch::decide(arguments);
        if (launch.exitCode)
            return *launch.exitCode;
    } else {
        DialogGallery::prepareEnvironment();
    }

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Klipvane"));
    QApplication::setApplicationName(QStringLiteral("Klipvane"));

    HostServices::install(application);
    if (!options.dialogGalleryDir.isEmpty())
        return DialogGallery::render(options.dialogGalleryDir);
    registerActionGateway();

    // Created first: it reads the mode and the files of this launch and holds them until
    // the window announces itself ready.
    CommandProvider provider;
    // Listening starts before the window is built: a launch arriving meanwhile is held by
    // the provider like this launch's own files.
    IPC::Controller::init(&provider, QStringLiteral("klipvane"));
    IPC::Controller::instance().waitForInitialize();
    routeLinksThroughIpc();

    MainWindow window;
    Tavrin::Util::SpontaneousDialog::setMainWindow(&window);
    HostServices::decorateMainWindow(&window);
    if (auto* layout = qobject_cast<QBoxLayout*>(window.toolsPage()->layout()))
        layout->insertWidget(2, new CaptureTools);
    window.addCollectionPage(QStringLiteral("UserFiles"), QObject::tr("Files you added from outside the editor."));
    window.addCollectionPage(QStringLiteral("Effects"), QObject::tr("Filters, transitions and titles."));

    // Files reaching the bin are opened by the media model; the bin reports each batch.
    MediaBin mediaBin(window.mediaBin());
    QObject::connect(&window, &MainWindow::filesAdded, &mediaBin, &MediaBin::addFiles);
    // The project: timeline panel, File and Edit menus, project files from the command line.
    ProjectController project(&window, &mediaBin);

    window.show();
    PubSub::publish(Command::ReadyNotification());
    const QStringList namedFiles = project.takeNamedFiles();
    if (options.placeOnTimeline || !options.saveProjectPath.isEmpty()) {
        project.placeWhenOpened(options.placeOnTimeline ? namedFiles : QStringList(), [&] {
            if (options.saveProjectPath.isEmpty())
                return;
            QString why;
            if (project.saveAs(options.saveProjectPath, &why)) {
                QApplication::exit(0);
            } else {
                std::fprintf(stderr, "klipvane: cannot save the project to %s: %s\n",
                             qPrintable(options.saveProjectPath), qPrintable(why));
                QApplication::exit(1);
            }
        });
    }

    // Start-up work goes through the gateway, so it waits if a blocking dialog is up.
    Action::proposeAction(Action::ACTION_STARTUP, [&window] {
        LOG(INFO) << "startup: " << window.mediaBin()->count() << " file(s) in the media bin";
    });

    if (!options.screenshotPath.isEmpty()) {
        // Let the window lay out and paint before it is grabbed.
        QTimer::singleShot(options.quitAfterReadyMs >= 0 ? options.quitAfterReadyMs : 800, &window, [&] {
            saveScreenshot(window, options.screenshotPath);
            QApplication::quit();
        });
    } else if (options.quitAfterReadyMs >= 0) {
        QTimer::singleShot(options.quitAfterReadyMs, &application, &QApplication::quit);
    }

    const int status = QApplication::exec();
    IPC::Controller::destroy();
    LOG(INFO) << "exit: " << status;
    return status;
}
