// The reference host of EditorAppUtil: a small editor shell that wires every subsystem
// of the library so that a person (or a test) can watch it work.

#include "CaptureTools.h"
#include "ClipServices.h"
#include "DialogGallery.h"
#include "DisplayMenu.h"
#include "EditorModule.h"
#include "DropTargets.h"
#include "HostOptions.h"
#include "HostServices.h"
#include "ImportMenu.h"
#include "MainWindow.h"
#include "MediaBin.h"
#include "PowerSaving.h"
#include "PreviewArea.h"
#include "PreviewPlayback.h"
#include "PreviewScript.h"
#include "ProjectController.h"
#include "SecondLaunch.h"
#include "StallWatch.h"
#include "ThumbnailExport.h"
#include "UsageTracker.h"
#include "UsageUi.h"

#include <ActionGateway.h>
#include <CommandProvider.h>
#include <FileDialog.h>
#include <IPCController.h>

#include <App/ILinksManager.h>
#include <App/OpenglSwitchHelper.h>
#include <App/ServiceRegistry.h>
#include <Launcher/Launcher.h>
#include <Log/Logging.h>
#include <Util/Allocator.h>
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
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>
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

// A driver that fails with one OpenGL implementation, for scripts that exercise the
// switch's crash guard: --crash-with-opengl aborts, --hang-with-opengl stops responding.
void failAsAsked(const HostOptions& options)
{
    const QString current = Tavrin::App::OpenglSwitchHelper::name(Tavrin::App::OpenglSwitchHelper::currentImplementation());
    if (options.crashWithOpengl == current) {
        LOG(ERROR) << "opengl: aborting with " << current.toStdString() << " as asked";
        google::FlushLogFiles(google::GLOG_INFO);
        std::abort();
    }
    if (options.hangWithOpengl == current) {
        LOG(ERROR) << "opengl: hanging with " << current.toStdString() << " as asked";
        google::FlushLogFiles(google::GLOG_INFO);
        for (;;)
            std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

// A restart repeats the session, not its one-shot requests.
QStringList withoutOneShotOptions(const QStringList& arguments)
{
    const QStringList oneShot{QStringLiteral("--request-opengl"), QStringLiteral("--request-opengl-silently")};
    QStringList kept;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString name = arguments.at(i).section(QLatin1Char('='), 0, 0);
        if (i > 0 && oneShot.contains(name)) {
            if (!arguments.at(i).contains(QLatin1Char('=')))
                ++i;
            continue;
        }
        kept << arguments.at(i);
    }
    return kept;
}

} // namespace

// The editor's main(), run by the klipvane launcher (LauncherMain.cpp) in its own process
// once the single-instance rule kept this launch, or for the tools that skip the rule. Host
// options, --help and --version were dealt with there; the log is set up.
extern "C" Q_DECL_EXPORT int klipvaneEditorMain(int argc, char** argv)
{
    Tavrin::Util::tuneAllocatorForMedia();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    // A restart repeats the host options too (they are taken out of `arguments` below).
    Tavrin::App::OpenglSwitchHelper::setRestartArguments(withoutOneShotOptions(arguments));
    const HostOptions options = HostOptions::take(arguments);
    Launcher::instance().setArguments(arguments);
    HostServices::registerProduct(EditorModule::executableDirectory(argv[0]), options.locale);

    // A tool, not an editor: no window, no display, no hand-over to a running editor.
    if (!options.thumbnailsDir.isEmpty()) {
        Tavrin::Log::startFile();
        QCoreApplication application(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("Klipvane"));
        QCoreApplication::setApplicationName(QStringLiteral("Klipvane"));
        return ThumbnailExport::run(options.thumbnailsDir, SecondLaunch::filesOf(arguments),
                                    std::max(1, options.thumbnailSize));
    }
    if (!options.dialogGalleryDir.isEmpty())
        DialogGallery::prepareEnvironment();
    // Read before the application object exists: Qt decides its OpenGL when it is created.
    else
        LOG(INFO) << "opengl: " << Tavrin::App::OpenglSwitchHelper::name(Tavrin::App::OpenglSwitchHelper::applyAtStartup()).toStdString();

    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Klipvane"));
    QApplication::setApplicationName(QStringLiteral("Klipvane"));

    HostServices::install(application);
    if (!options.dialogGalleryDir.isEmpty())
        return DialogGallery::render(options.dialogGalleryDir);
    registerActionGateway();
    failAsAsked(options);

    // Listening before anything can publish a statistics message; recording only with consent.
    UsageTracker usage(options.usageLog);
    if (!options.usageLevel.isEmpty()) {
        const auto level = UsageTracker::levelFromName(options.usageLevel);
        if (!level) {
            std::fprintf(stderr, "klipvane: unknown usage level \"%s\" (off, basic or detailed)\n", qPrintable(options.usageLevel));
            return 2;
        }
        usage.setLevel(*level, false);
    }
    LOG(INFO) << "statistics: usage level " << UsageTracker::levelName(usage.level()).toStdString();

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
    DisplayMenu::install(window, project);
    // Playback keeps the desktop awake through this object (setPlaybackRunning).
    PowerSaving powerSaving;
    // The Effects page, the adjustments of the selection, stabilization and the aspect offer.
    ClipServices clipServices(&window, project.timeline());
    if (options.acceptAspect)
        clipServices.acceptAspectOffers();
    // Without a list, the search folder is for the projects the command line opens.
    if (options.findMissingList.isEmpty() && !options.searchFolder.isEmpty())
        project.setRelinkFolder(options.searchFolder);

    // Drops of files, bin items, overlay presets onto the bin, the timeline and the import page.
    window.addCollectionPage(QStringLiteral("Overlays"), MainWindow::tr("Overlays"),
                             QObject::tr("Titles and captions: drag one onto the timeline."));
    DropTargets drops(&window, &mediaBin, &project);
    drops.installOverlayPresets(window.findChild<QWidget*>(QStringLiteral("collectionPage_Overlays")));

    // The preview above the timeline, and what the host options ask of it.
    PreviewArea* preview = installPreview(&window, project);
    PreviewScript previewScript(preview, options);
    drops.registerWidget(preview, DragAndDropHandler::MediaFiles, Statistics::AddingMethod::DropOnPreview);
    // The screen stays on while the timeline plays, and may blank again on pause.
    QObject::connect(&preview->playback(), &PreviewPlayback::playbackRunningChanged, &powerSaving,
                     &PowerSaving::setPlaybackRunning);

    UsageUi::install(&window, &usage);
    UsageUi::parseWindow(&window); // last: every page, menu and toolbar is built by now
    window.show();
    PubSub::publish(Command::ReadyNotification());
    // After the first paint: a start with a new OpenGL implementation got this far.
    QTimer::singleShot(0, &window, [&options, &project, &powerSaving] {
        DisplayMenu::ready();
        if (!options.requestOpengl.isEmpty())
            DisplayMenu::request(options.requestOpengl, project, options.requestOpenglSilently);
        if (options.inhibitMs >= 0)
            powerSaving.suppressFor(options.inhibitMs);
    });
    for (const QString& tag : options.statisticsClicks) {
        QTimer::singleShot(0, &window, [&window, tag] {
            if (!UsageUi::activateTagged(&window, tag))
                LOG(WARNING) << "statistics: no control tagged " << tag.toStdString();
        });
    }
    const QStringList namedFiles = project.takeNamedFiles();
    const bool portable = !options.savePortablePath.isEmpty();
    const QString savePath = portable ? options.savePortablePath : options.saveProjectPath;
    const bool changeClips = !options.applyEffect.isEmpty() || !options.clipActions.isEmpty();
    if (options.placeOnTimeline || !savePath.isEmpty() || changeClips || previewScript.hasWork()) {
        project.placeWhenOpened(options.placeOnTimeline ? namedFiles : QStringList(), [&, portable, savePath, changeClips] {
            if (changeClips)
                clipServices.applyToAll(options.applyEffect, options.clipActions);
            previewScript.start();
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

    std::unique_ptr<StallWatch> stallWatch;
    if (options.logStallsMs >= 0)
        stallWatch = std::make_unique<StallWatch>(options.logStallsMs);

    const int status = QApplication::exec();
    stallWatch.reset();
    IPC::Controller::destroy();
    LOG(INFO) << "exit: " << status;
    return status;
}
