#pragma once

#include "AppUtil_export.h"

#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>

#include <QString>
#include <QStringList>

#include <memory>

// Commands published on the command channel (Command::globalObject()). The editor's
// window and pages subscribe to them; the CommandProvider publishes them.
namespace Command {

struct ReadyNotification : Message::Types::Request<Command::Object>
{
    ReadyNotification() : Request(Command::globalObject()) {}
};

struct AddFiles : Message::Types::Request<Command::Object>
{
    explicit AddFiles(QStringList paths) : Request(Command::globalObject()), files(std::move(paths)) {}
    QStringList files;
};

struct ShowMainWindow : Message::Types::Request<Command::Object>
{
    ShowMainWindow() : Request(Command::globalObject()) {}
};

struct HideMainWindow : Message::Types::Request<Command::Object>
{
    HideMainWindow() : Request(Command::globalObject()) {}
};

struct ShowToolsPage : Message::Types::Request<Command::Object>
{
    ShowToolsPage() : Request(Command::globalObject()) {}
};

struct ShowImportPage : Message::Types::Request<Command::Object>
{
    ShowImportPage() : Request(Command::globalObject()) {}
};

struct StartSlideshow : Message::Types::Request<Command::Object>
{
    StartSlideshow() : Request(Command::globalObject()) {}
};

} // namespace Command

// The one funnel through which requests from outside the editor's own user interface
// (this launch's command line, a second launch, companion processes) become commands.
//
// Requests made before the editor publishes Command::ReadyNotification are held and
// replayed at that moment in a fixed order: slideshow mode, files, show window, hide
// window, then one page (a collection beats the import page, which beats the tools page).
// Afterwards every request is published at once.
//
//   CommandProvider provider;                 // reads "--mode" and the files of argv
//   ...build the main window...
//   PubSub::publish(Command::ReadyNotification());
class APPUTIL_EXPORT CommandProvider
{
public:
    CommandProvider();
    ~CommandProvider();
    CommandProvider(const CommandProvider&) = delete;
    CommandProvider& operator=(const CommandProvider&) = delete;

    void handleFile(const QString& path);
    void handleFiles(const QStringList& paths);
    bool hasPendingFiles() const;

    void showMainWindow();
    void hideMainWindow();
    void showToolsPage();
    void showImportPage();
    void showCollectionPage(const QString& name);

    class Impl;

private:
    std::unique_ptr<Impl> d;
};
