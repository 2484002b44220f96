#include "CommandProvider.h"

#include <EditorCollection/Collection.h>
#include <FileUtil/FileUtil.h>
#include <Launcher/Launcher.h>

#include <QCommandLineOption>
#include <QCommandLineParser>

#include <utility>

class CommandProvider::Impl : public PubSub::Subscriber<Command::ReadyNotification>
{
public:
    Impl()
        : modeOption(QStringLiteral("mode"), QStringLiteral("Editor mode. Can be \"normal\" (default) and \"slideshow\"."),
                     QStringLiteral("mode"), QStringLiteral("normal"))
    {
        subscribe(Command::globalObject());
        parser.addOption(modeOption);
        parser.addHelpOption();
        // parse(), not process(): a bad command line must neither print nor exit the editor.
        (void)parser.parse(Launcher::instance().arguments());
        pendingFiles << FileUtil::extractFiles(parser.positionalArguments(), FileUtil::supportedFileExtensions());
    }

    void flushFiles()
    {
        // Taken out before publishing: a subscriber may hand us new files from its handler,
        // and those must not be wiped by the clearing of the ones being published.
        const QStringList held = std::exchange(pendingFiles, QStringList());
        const QStringList files = FileUtil::extractFiles(held, FileUtil::supportedFileExtensions());
        if (!files.isEmpty())
            PubSub::publish(Command::AddFiles(files));
    }

    // Before the editor is ready a request only raises its flag; the ready notification
    // replays the flags in their fixed order.
    template <class Message>
    void publishOrHold(bool& held)
    {
        if (ready)
            PubSub::publish(Message());
        else
            held = true;
    }

    void openCollection(const QString& name)
    {
        if (auto collection = EditorCollection::CollectionProvider::collection(name))
            collection->showPage();
    }

    void notify(const Command::ReadyNotification&) override
    {
        if (parser.isSet(modeOption) && parser.value(modeOption) == QLatin1String("slideshow"))
            PubSub::publish(Command::StartSlideshow());
        flushFiles();
        if (showMainWindow)
            PubSub::publish(Command::ShowMainWindow());
        if (hideMainWindow)
            PubSub::publish(Command::HideMainWindow());
        if (!pendingCollection.isEmpty())
            openCollection(pendingCollection);
        else if (showImportPage)
            PubSub::publish(Command::ShowImportPage());
        else if (showToolsPage)
            PubSub::publish(Command::ShowToolsPage());
        // The flags stay set: every later request takes the immediate path, so they are
        // consumed exactly once unless the editor announces itself ready again.
        ready = true;
        // Files handed over by a subscriber during the replay above arrived while we were
        // not ready yet; they go out now instead of waiting for the next request.
        if (!pendingFiles.isEmpty())
            flushFiles();
    }

    QCommandLineParser parser;
    QCommandLineOption modeOption;
    QStringList pendingFiles;
    bool ready = false;
    bool showMainWindow = false;
    bool hideMainWindow = false;
    bool showToolsPage = false;
    bool showImportPage = false;
    QString pendingCollection;
};

CommandProvider::CommandProvider() : d(std::make_unique<Impl>()) {}

CommandProvider::~CommandProvider() = default;

void CommandProvider::handleFile(const QString& path)
{
    d->pendingFiles << path;
    if (d->ready)
        d->flushFiles();
}

void CommandProvider::handleFiles(const QStringList& paths)
{
    d->pendingFiles << paths;
    if (d->ready)
        d->flushFiles();
}

bool CommandProvider::hasPendingFiles() const
{
    return !d->pendingFiles.isEmpty();
}

void CommandProvider::showMainWindow()
{
    d->publishOrHold<Command::ShowMainWindow>(d->showMainWindow);
}

void CommandProvider::hideMainWindow()
{
    d->publishOrHold<Command::HideMainWindow>(d->hideMainWindow);
}

void CommandProvider::showToolsPage()
{
    d->publishOrHold<Command::ShowToolsPage>(d->showToolsPage);
}

void CommandProvider::showImportPage()
{
    d->publishOrHold<Command::ShowImportPage>(d->showImportPage);
}

void CommandProvider::showCollectionPage(const QString& name)
{
    if (d->ready)
        d->openCollection(name);
    else
        d->pendingCollection = name;
}
