#include "OpenglHelper.h"

#include "Dialog/DialogStrategy.h"

#include <App/IInternetConnectionChecker.h>
#include <App/ICustomizationManager.h>
#include <App/OpenglSwitchHelper.h>
#include <App/ServiceRegistry.h>
#include <App/StatisticsTracker.h>
#include <Util/SpontaneousDialog.h>

#include <QCoreApplication>
#include <QString>
#include <QWidget>

#include <boost/any.hpp>
#include <glog/logging.h>

#include <stdexcept>

namespace {

using Tavrin::App::OpenglSwitchHelper;

// What the switcher's mode selects: restart the editor once the user agreed.
constexpr int kRestartMode = Tavrin::App::IOpenglSwitcher::Restart;

QString restartText(const char* text)
{
    return QCoreApplication::translate("RestartDialog", text);
}

template <class Interface>
std::shared_ptr<Interface> requiredService(const char* what)
{
    auto service = Tavrin::App::ServiceRegistry::instance().get<Interface>();
    if (!service)
        throw std::runtime_error(std::string("no ") + what + " is registered");
    return service;
}

bool switchTo(std::string const& source, std::function<bool()> const& callback, bool useSoftware, bool silent)
{
    const int requested = useSoftware ? OpenglSwitchHelper::Software : OpenglSwitchHelper::Hardware;
    if (OpenglSwitchHelper::currentImplementation() == requested)
        return false;
    try {
        // Fetched before anything is recorded: a host that forgot a service records nothing.
        auto checker = requiredService<Tavrin::App::IInternetConnectionChecker>("internet connection checker");
        auto customization = requiredService<Tavrin::App::ICustomizationManager>("customization manager");
        OpenglSwitchHelper::requestImplementationSwitch(requested);

        std::shared_ptr<Tavrin::App::IStatisticsTracker> tracker;
        if (useSoftware) {
            if (auto factory = Tavrin::App::ServiceRegistry::instance().get<Tavrin::App::IStatisticsTrackerFactory>())
                tracker = factory->createTracker();
            if (tracker) {
                tracker->addDataFiller("*", [source](const std::string&, Tavrin::App::IStatisticsTracker::Fields& fields) {
                    fields["SOURCE"] = source;
                });
            }
        }
        OpenglSwitchHelper::setConsentQuestion([] { return Restart::showRestartDialog({{Restart::Reason::OpenglSwitch}}); });
        auto switcher = OpenglSwitchHelper::createSwitcher(checker, customization,
                                                           Tavrin::Util::SpontaneousDialog::GetMainWindow());
        return switcher->run(callback, silent, kRestartMode, tracker);
    } catch (const std::exception& error) {
        // A host wiring mistake: loud in the log, but the editor goes on with what it has.
        LOG(ERROR) << "opengl: cannot switch: " << error.what();
        return false;
    }
}

} // namespace

namespace OpenglHelper {

bool isSoftwareOpenglUsed()
{
    return OpenglSwitchHelper::currentImplementation() == OpenglSwitchHelper::Software;
}

bool switchOpenglImplementation(std::string const& source, std::function<bool()> const& callback, bool useSoftware)
{
    return switchTo(source, callback, useSoftware, false);
}

bool switchOpenglImplementationSilently(std::string const& source, std::function<bool()> const& callback,
                                        bool useSoftware)
{
    return switchTo(source, callback, useSoftware, true);
}

} // namespace OpenglHelper

namespace Restart {

bool showRestartDialog(Settings const& settings)
{
    QString title = restartText("Restart");
    QString text = restartText("The program will restart. It can take some time.");
    if (settings.reasons.count(Reason::OpenglSwitch)) {
        title = restartText("OpenGL activation");
        text = restartText("The program will restart to activate OpenGL. It can take some time.");
    }
    return Dialog::alertAction(title, text, restartText("Restart"), QString());
}

} // namespace Restart
