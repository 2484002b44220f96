#include "DisplayMenu.h"

#include "MainWindow.h"
#include "ProjectController.h"

#include <Dialog/DialogStrategy.h>
#include <OpenglHelper.h>

#include <App/IInternetConnectionChecker.h>
#include <App/OpenglSwitchHelper.h>
#include <App/ServiceRegistry.h>
#include <App/StatisticsTracker.h>

#include <QActionGroup>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

#include <glog/logging.h>

namespace DisplayMenu {
namespace {

using Tavrin::App::OpenglSwitchHelper;

QString tr(const char* text)
{
    return QCoreApplication::translate("DisplayMenu", text);
}

// The host's part of a switch: unsaved work first, and the project open now comes back
// after the restart.
std::function<bool()> beforeRestart(ProjectController& project)
{
    return [&project] {
        if (!project.maySafelyDiscard())
            return false;
        const QString path = project.projectPath();
        if (!path.isEmpty()) {
            QStringList arguments = OpenglSwitchHelper::restartArguments();
            bool named = false;
            for (const QString& argument : arguments.mid(1))
                named = named || QFileInfo(argument).absoluteFilePath() == QFileInfo(path).absoluteFilePath();
            if (!named)
                OpenglSwitchHelper::setRestartArguments(arguments << path);
        }
        return true;
    };
}

QMenu* viewMenu(MainWindow& window)
{
    for (QAction* action : window.menuBar()->actions()) {
        if (action->menu() && action->text().remove(QLatin1Char('&')) == MainWindow::tr("&View").remove(QLatin1Char('&')))
            return action->menu();
    }
    return window.menuBar()->addMenu(MainWindow::tr("&View"));
}

} // namespace

QMenu* install(MainWindow& window, ProjectController& project)
{
    // What a switch takes from the registry.
    auto& registry = Tavrin::App::ServiceRegistry::instance();
    if (!registry.get<Tavrin::App::IInternetConnectionChecker>())
        registry.set<Tavrin::App::IInternetConnectionChecker>(std::make_shared<Tavrin::App::InternetConnectionChecker>());
    if (!registry.get<Tavrin::App::IStatisticsTrackerFactory>())
        registry.set<Tavrin::App::IStatisticsTrackerFactory>(std::make_shared<Tavrin::App::LoggingStatisticsTrackerFactory>());

    QMenu* display = viewMenu(window)->addMenu(tr("&Display"));
    display->setObjectName(QStringLiteral("displayMenu"));
    auto* group = new QActionGroup(display);
    const bool software = OpenglHelper::isSoftwareOpenglUsed();
    const std::pair<QString, bool> entries[] = {{tr("&Hardware OpenGL"), false}, {tr("&Software OpenGL"), true}};
    for (const auto& [text, useSoftware] : entries) {
        QAction* action = display->addAction(text);
        action->setObjectName(useSoftware ? QStringLiteral("softwareOpenglAction") : QStringLiteral("hardwareOpenglAction"));
        action->setCheckable(true);
        action->setChecked(useSoftware == software);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, display, [&project, useSoftware = useSoftware] {
            request(OpenglSwitchHelper::name(useSoftware ? OpenglSwitchHelper::Software : OpenglSwitchHelper::Hardware),
                    project, false);
        });
    }
    // A switch that does not go ahead leaves the check on the implementation in use.
    QObject::connect(display, &QMenu::aboutToShow, display, [group] {
        const bool software = OpenglHelper::isSoftwareOpenglUsed();
        for (QAction* action : group->actions())
            action->setChecked((action->objectName() == QLatin1String("softwareOpenglAction")) == software);
    });
    return display;
}

bool request(const QString& kind, ProjectController& project, bool silent)
{
    const int implementation = OpenglSwitchHelper::fromName(kind);
    if (!implementation) {
        LOG(ERROR) << "opengl: unknown implementation \"" << kind.toStdString() << "\" (software or hardware)";
        return false;
    }
    if (implementation == OpenglSwitchHelper::currentImplementation()) {
        LOG(INFO) << "opengl: " << kind.toStdString() << " is already in use";
        return false;
    }
    const bool useSoftware = implementation == OpenglSwitchHelper::Software;
    const bool switched = silent ? OpenglHelper::switchOpenglImplementationSilently("displayMenu", beforeRestart(project), useSoftware)
                                 : OpenglHelper::switchOpenglImplementation("displayMenu", beforeRestart(project), useSoftware);
    if (!switched && OpenglSwitchHelper::requestedImplementation() == implementation) {
        Dialog::showWarning(tr("OpenGL"), tr("The editor could not restart. %1 OpenGL will be used from the next start.")
                                              .arg(useSoftware ? tr("Software") : tr("Hardware")));
    }
    return switched;
}

void ready()
{
    OpenglSwitchHelper::markReady();
    const auto fallback = OpenglSwitchHelper::takeFallback();
    if (!fallback)
        return;
    const auto kindText = [](int implementation) {
        return implementation == OpenglSwitchHelper::Software ? tr("software") : tr("hardware");
    };
    LOG(INFO) << "opengl: going back to " << OpenglSwitchHelper::name(fallback->restored).toStdString() << " after "
              << OpenglSwitchHelper::name(fallback->failed).toStdString() << " failed to start";
    Dialog::showWarning(tr("OpenGL"),
                        tr("The editor did not start with %1 OpenGL, so it went back to %2 OpenGL.")
                            .arg(kindText(fallback->failed), kindText(fallback->restored)));
}

} // namespace DisplayMenu
