// The reference host of EditorAppUtil: a small editor shell that wires every subsystem
// of the library so that a person (or a test) can watch it work.

#include "CaptureTools.h"
#include "DialogGallery.h"
#include "DropTargets.h"
#include "HostOptions.h"
#include "HostServices.h"
#include "ImportMenu.h"
#include "MainWindow.h"
#include "MediaBin.h"
#include "ProjectController.h"
#include "SecondLaunch.h"
#include "ThumbnailExport.h"

#include <ActionGateway.h>
#include <CommandProvider.h>
#include <FileDialog.h>
#include <IPCController.h>

#include <App/ILinksManager.h>
#include <App/ServiceRegistry.h>
#include <Launcher/Launcher.h>
#include <Log/Logging.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QBoxLayout>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QScreen>
#include <QTimer>

#include <glog/logging.h>

#include <cstdio>
#include <unistd.h>

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

long residentKilobytes()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toLong() * (sysconf(_SC_PAGESIZE) / 1024) : -1;
}

} // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const HostOptions options = HostOptions::take(arguments);
    if (options.help || options.version) {
        const QString text = options.help ? HostOptions::usage() : QStringLiteral("klipvane " KLIPVANE_VERSION "\n");
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }
    // The log file waits until this process is known to need one: a launch that only hands
    // its files to the running editor leaves no log of its own.
    Tavrin::Log::init(argv[0], Tavrin::Log::FileStart::Later);
    Launcher::instance().setArguments(arguments);
    HostServices::registerProduct(executableDirectory(argv[0]), options.locale);

    // A tool, not an editor: no window, no display, no hand-over to a running editor.
    if (!options.thumbnailsDir.isEmpty()) {
        Tavrin::Log::startFile();
        QCoreApplication application(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("Klipvane"));
        QCoreApplication::setApplicationName(QStringLiteral("Klipvane"));
        return ThumbnailExport::run(options.thumbnailsDir, SecondLaunch::filesOf(arguments),
                                    std::max(1, options.thumbnailSize));
    }

    // Decided before any application object: a launch that only hands its files to the
    // running editor must not pay for widgets. The gallery is a tool, not an editor.
    SecondLaunch launch;
    if (options.dialogGalleryDir.isEmpty())
        launch = SecondLaunch::decide(arguments);
    else
        DialogGallery::prepareEnvironment();
    if (launch.exitCode != SecondLaunch::HandedOver)
        Tavrin::Log::startFile(); // the editor's log, or the story of a launch that failed
    if (launch.exitCode)
        return *launch.exitCode;

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
    window.addCollectionPage(QStringLiteral("UserFiles"), MainWindow::tr("Your Files"),
                             QObject::tr("Files you added from outside the editor."));
    window.addCollectionPage(QStringLiteral("Effects"), MainWindow::tr("Effects"),
                             QObject::tr("Filters, transitions and titles."));

    // Files reaching the bin are opened by the media model; the bin reports each batch.
    MediaBin mediaBin(window.mediaBin());
    QObject::connect(&window, &MainWindow::filesAdded, &mediaBin, &MediaBin::addFiles);
    QObject::connect(&mediaBin, &MediaBin::batchReported, &window, &MainWindow::showBatchOutcome);
    // What the bin costs: the resident memory once a batch is in (bench/run_bin_memory.sh).
    int batches = 0;
    QObject::connect(&mediaBin, &MediaBin::batchReported, &application, [&] {
        LOG(INFO) << "memory: " << residentKilobytes() << " kB resident, " << window.mediaBin()->count()
                  << " item(s) in the media bin";
        if (++batches == options.quitAfterBatches)
            QApplication::quit();
    });
    // The project: timeline panel, File and Edit menus, project files from the command line.
    ProjectController project(&window, &mediaBin);
    ImportMenu::install(window); // into the project's File menu
    // Without a list, the search folder is for the projects the command line opens.
    if (options.findMissingList.isEmpty() && !options.searchFolder.isEmpty())
        project.setRelinkFolder(options.searchFolder);

    // Drops of files, bin items, overlay presets onto the bin, the timeline and the import page.
    window.addCollectionPage(QStringLiteral("Overlays"), MainWindow::tr("Overlays"),
                             QObject::tr("Titles and captions: drag one onto the timeline."));
    DropTargets drops(&window, &mediaBin, &project);
    drops.installOverlayPresets(window.findChild<QWidget*>(QStringLiteral("collectionPage_Overlays")));

    window.show();
    PubSub::publish(Command::ReadyNotification());
    const QStringList namedFiles = project.takeNamedFiles();
    const bool portable = !options.savePortablePath.isEmpty();
    const QString savePath = portable ? options.savePortablePath : options.saveProjectPath;
    if (options.placeOnTimeline || !savePath.isEmpty()) {
        project.placeWhenOpened(options.placeOnTimeline ? namedFiles : QStringList(), [&, portable, savePath] {
            if (savePath.isEmpty())
                return;
            QString why;
            if (portable ? project.savePortable(savePath, &why) : project.saveAs(savePath, &why)) {
                QApplication::exit(0);
            } else {
                std::fprintf(stderr, "klipvane: cannot save the project to %s: %s\n", qPrintable(savePath),
                             qPrintable(why));
                QApplication::exit(1);
            }
        });
    }

    // Start-up work goes through the gateway, so it waits if a blocking dialog is up.
    Action::proposeAction(Action::ACTION_STARTUP, [&window] {
        LOG(INFO) << "startup: " << window.mediaBin()->count() << " file(s) in the media bin";
    });

    if (!options.findMissingList.isEmpty())
        QTimer::singleShot(0, &window, [&options] { ImportMenu::findMissing(options.findMissingList, options.searchFolder); });
    if (!options.showFile.isEmpty())
        FileDialog::showFile(options.showFile);
    if (!options.dropUriList.isEmpty())
        QTimer::singleShot(0, &window, [&] { drops.simulateDrop(options.dropUriList, options.dropTarget); });
    if (!options.dropBinItem.isEmpty())
        QTimer::singleShot(0, &window, [&] { drops.simulateBinItemDrop(options.dropBinItem); });
    if (!options.dropOverlay.isEmpty())
        QTimer::singleShot(0, &window, [&] { drops.simulateOverlayDrop(options.dropOverlay); });
    if (!options.dropEffect.isEmpty()) {
        auto* once = new QObject(&window);
        QObject::connect(project.timeline(), &Timeline::TimelineModel::changed, once, [&, once] {
            const QStringList media = project.timeline()->mediaPaths();
            if (media.isEmpty())
                return;
            delete once; // the first media clip only
            QTimer::singleShot(0, &window, [&] { drops.simulateEffectDrop(options.dropEffect); });
        });
    }

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
