#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace Tavrin {
namespace App {

class ICustomizationManager;
class IInternetConnectionChecker;
class IStatisticsTracker;

// Completes a recorded OpenGL switch: asks the user (unless silent), lets the editor finish
// its work (`callback`, e.g. saving the project; false stops the switch), and restarts.
class IOpenglSwitcher
{
public:
    // What `run` does once the user agreed.
    enum Mode { RecordOnly = 1, Restart = 2 };

    virtual ~IOpenglSwitcher() = default;
    // True when the switch went ahead. A declined or cancelled switch is forgotten; a
    // restart that could not start the new process leaves the switch recorded for the
    // next start.
    virtual bool run(const std::function<bool()>& callback, bool silent, int mode,
                     std::shared_ptr<IStatisticsTracker> tracker) = 0;
};

// Which OpenGL implementation the editor renders with. The choice is read once, before the
// application object exists, so a switch is recorded in the settings and completed by a
// restart:
//
//   int main(int argc, char** argv) {
//       Tavrin::App::waitForPredecessor();          // a restarted editor: the old one ends first (launcher)
//       ...single-instance decision...
//       OpenglSwitchHelper::applyAtStartup();       // sets the attributes, watches a new choice
//       QApplication app(argc, argv);
//       ...window shown...
//       OpenglSwitchHelper::markReady();            // the new choice works
//
// The first start after a switch is watched: when it does not get ready (it crashes, or it
// hangs longer than the trial timeout), the next start goes back to the implementation that
// worked and takeFallback() says so once, for the editor to tell the user.
class OpenglSwitchHelper
{
public:
    enum Implementation { Software = 1, Hardware = 2 };

    // "software" or "hardware".
    static QString name(int implementation);
    // 0 for a text that names neither.
    static int fromName(const QString& name);

    // The implementation this process uses (hardware until applyAtStartup() decided).
    static int currentImplementation();
    // The implementation recorded for the next start.
    static int requestedImplementation();
    // Records `implementation` for the next start; the one in use now is kept as the one to
    // go back to should the first start with the new one fail. Requesting the one in use
    // forgets an earlier request.
    static void requestImplementationSwitch(int implementation);

    static std::unique_ptr<IOpenglSwitcher> createSwitcher(std::shared_ptr<IInternetConnectionChecker> connectionChecker,
                                                           std::shared_ptr<ICustomizationManager> customizationManager,
                                                           QObject* parentWindow);

    // The question a switcher asks before it restarts (true: go ahead). The editor installs
    // its restart dialog; without one a switch goes ahead unasked.
    static void setConsentQuestion(std::function<bool()> question);

    // Before the application object exists: takes the recorded implementation (or goes back
    // from one whose first start failed), sets Qt's attribute for it, and for software the
    // Mesa software rasteriser (LIBGL_ALWAYS_SOFTWARE). Returns the implementation applied.
    static int applyAtStartup();
    // The start reached ready: a new implementation under watch is kept.
    static void markReady();

    struct Fallback
    {
        int failed = 0;   // the implementation whose first start did not get ready
        int restored = 0; // the one this start went back to
    };
    // Once, after a start that went back to the previous implementation.
    static std::optional<Fallback> takeFallback();

    // Starts a new editor with this process's command line; it waits for this process to
    // end before it decides whether it is the editor. False (and `error`) when it could not
    // be started.
    static bool startSuccessor(QString* error);
    // The command line a restart repeats (element 0 is the program); without one, the
    // launcher's arguments.
    static void setRestartArguments(const QStringList& arguments);
    static QStringList restartArguments();
};

} // namespace App
} // namespace Tavrin
