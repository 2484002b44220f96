// The klipvane executable. It applies the single-instance rule before anything with a
// window is loaded: a launch that finds an editor running hands its files over from here,
// having loaded only Qt Core, Qt Network and the inter-process layer, and ends. Otherwise
// it loads the editor (EditorModule, main.cpp) into this same process, which so keeps its
// process id and the lock it took.

#include "EditorModule.h"
#include "HostOptions.h"
#include "SecondLaunch.h"

#include <App/Predecessor.h>
#include <App/ProductKey.h>
#include <Log/Logging.h>

#include <cstdio>

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

    // Tools, not editors: the thumbnail writer and the dialog gallery skip the rule.
    SecondLaunch launch;
    if (options.thumbnailsDir.isEmpty()) {
        if (options.dialogGalleryDir.isEmpty()) {
            // Of the product description, a hand-off needs the key alone.
            // A restarted editor lets the old one end first, or it would hand its files to it.
            Tavrin::App::waitForPredecessor();
            const QString productFile = EditorModule::executableDirectory(argv[0]) + QStringLiteral("/product.json");
            launch = SecondLaunch::decide(arguments, Tavrin::App::readSingleInstanceKey(productFile));
        }
        if (launch.exitCode != SecondLaunch::HandedOver)
            Tavrin::Log::startFile(); // the editor's log, or the story of a launch that failed
        if (launch.exitCode)
            return *launch.exitCode;
    }
    // launch.instance holds the lock for as long as the editor runs.
    return EditorModule::run(argc, argv);
}
