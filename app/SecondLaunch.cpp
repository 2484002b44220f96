#include "SecondLaunch.h"

#include <IPCProtocol.h>

#include <App/Delivery.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>

#include <vector>

#include <glog/logging.h>

namespace {

// A running editor that accepted the connection gets this long to answer; longer means it
// is frozen, and waiting on it would only freeze this launch too.
constexpr int kAnswerTimeoutMs = 3000;
// An editor that holds the lock but does not listen yet is still starting; this bounds how
// long a launch waits for it (or for its lock, should it end meanwhile).
constexpr int kStartingEditorTimeoutMs = 15000;
constexpr unsigned long kRetryIntervalMs = 20;
// Project files go to the running editor to be opened as projects, not added as media.
const QString kProjectSuffix = QStringLiteral("kvproj");

// The calls that carry a launch's files: each project on its own, the other files together.
// A launch without files still sends its (empty) file list, which brings the window up.
std::vector<Tavrin::UniqueIPC::Call> callsFor(const QStringList& files)
{
    std::vector<Tavrin::UniqueIPC::Call> calls;
    QStringList media;
    for (const QString& file : files) {
        if (QFileInfo(file).suffix().compare(kProjectSuffix, Qt::CaseInsensitive) == 0)
            calls.push_back(IPC::Protocol::openProjectCall(file));
        else
            media << file;
    }
    if (!media.isEmpty() || calls.empty())
        calls.push_back(IPC::Protocol::addFilesCall(media));
    return calls;
}

} // namespace

QStringList SecondLaunch::filesOf(const QStringList& arguments)
{
    // The same reading as the editor's own (unknown options ignored, "--mode" takes a
    // value), so an option's value is never sent as a file.
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption(QStringLiteral("mode"), QString(), QStringLiteral("mode")));
    parser.addHelpOption();
    (void)parser.parse(arguments);
    QStringList files;
    // Made absolute here: the running editor does not share this launch's working folder.
    for (const QString& file : parser.positionalArguments())
        files << QDir::cleanPath(QFileInfo(file).absoluteFilePath());
    return files;
}

SecondLaunch SecondLaunch::decide(const QStringList& arguments)
{
    SecondLaunch launch;
    launch.instance = IPC::Util::createEditorSingleInstance();
    if (!launch.instance->isAnotherInstanceRunning())
        return launch;

    const QStringList files = filesOf(arguments);
    std::vector<Tavrin::UniqueIPC::Call> calls = callsFor(files);
    // Local sockets want an application object; a plain one costs next to nothing, unlike
    // the widget application this launch will not need.
    static int argc = 1;
    static char name[] = "klipvane";
    static char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);

    QElapsedTimer clock;
    clock.start();
    bool toldWaiting = false;
    for (;;) {
        // The editor may have ended since the lock was tried: then this launch is the editor.
        if (launch.instance->waitForOtherInstance(0)) {
            LOG(INFO) << "second launch: the running editor has ended; starting the editor";
            return launch;
        }
        QString detail;
        switch (Tavrin::App::SendCallAndWait(calls.front(), kAnswerTimeoutMs, &detail)) {
        case Tavrin::App::DeliveryResult::Delivered:
            calls.erase(calls.begin());
            if (!calls.empty())
                continue;
            LOG(INFO) << "second launch: handed " << files.size() << " file(s) to the running editor";
            launch.exitCode = HandedOver;
            return launch;
        case Tavrin::App::DeliveryResult::NotHandled:
            LOG(ERROR) << "second launch: the running editor refused the files (" << detail.toStdString() << ")";
            launch.exitCode = Refused;
            return launch;
        case Tavrin::App::DeliveryResult::NoAnswer:
            LOG(ERROR) << "second launch: the running editor does not answer (" << detail.toStdString()
                       << "); not starting another one";
            launch.exitCode = NoAnswer;
            return launch;
        case Tavrin::App::DeliveryResult::NoRecipient:
            break;
        }
        if (clock.elapsed() > kStartingEditorTimeoutMs) {
            LOG(ERROR) << "second launch: another editor holds the single-instance lock but does not listen";
            launch.exitCode = NobodyListening;
            return launch;
        }
        if (!toldWaiting) {
            LOG(INFO) << "second launch: waiting for the running editor to finish starting";
            toldWaiting = true;
        }
        QThread::msleep(kRetryIntervalMs);
    }
}
