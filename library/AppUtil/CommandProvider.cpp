#include "CommandProvider.h"

#include <EditorCollection/Collection.h>
#include <FileUtil/FileUtil.h>
#include <Launcher/Launcher.h>
#include <Util/Mailbox.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>
#include <deque>
#include <functional>
#include <utility>

namespace {

// A folder named on the command line or handed over may be huge ("/"): it is expanded on a
// worker thread, and publications that come after it wait in order behind it, so the
// subscribers see the commands in the order a synchronous expansion would give, while the
// GUI thread stays free.
struct Step
{
    bool ready = false;
    std::function<void()> publish;
    bool yieldAfter = false; // the steps after it go out on a later event-loop turn
};

// The files of a folder reach the editor in slices, one per event-loop turn: adding a file
// to the bin costs the GUI thread some 0.1 ms, so a slice stays well under 50 ms.
constexpr int filesPerSlice = 200;

void publishFiles(const QStringList& files)
{
    if (!files.isEmpty())
        PubSub::publish(Command::AddFiles(files));
}

} // namespace

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
        // Folders stay as they are until the files are flushed, off the GUI thread.
        const QStringList extensions = FileUtil::supportedFileExtensions();
        for (const QString& argument : parser.positionalArguments()) {
            const QFileInfo info(argument);
            if (info.isDir())
                pendingFiles << info.absoluteFilePath();
            else
                pendingFiles << FileUtil::extractFiles({argument}, extensions);
        }
    }

    // Stops a walk under way and drops its result.
    ~Impl() override { mailbox->close(); }

    // Publishes now, unless an expansion is under way: then after it, in order.
    void inOrder(std::function<void()> publish)
    {
        if (steps.empty())
            publish();
        else
            steps.push_back(std::make_shared<Step>(Step{true, std::move(publish)}));
    }

    void publishReadySteps()
    {
        while (!steps.empty() && steps.front()->ready) {
            const std::shared_ptr<Step> step = steps.front();
            steps.pop_front();
            step->publish(); // may add steps; they stay behind the ones still waiting
            if (step->yieldAfter && !steps.empty()) {
                QMetaObject::invokeMethod(&context, [this] { publishReadySteps(); }, Qt::QueuedConnection);
                return;
            }
        }
    }

    // Replaces the waiting `step` by the slices of `files`, in order.
    void expanded(const std::shared_ptr<Step>& step, const QStringList& files)
    {
        auto at = std::find(steps.begin(), steps.end(), step);
        if (at == steps.end())
            return;
        for (int first = 0; first < files.size() || first == 0; first += filesPerSlice) {
            auto slice = first == 0 ? step : std::make_shared<Step>();
            slice->ready = true;
            slice->yieldAfter = true;
            slice->publish = [slice = files.mid(first, filesPerSlice)] { publishFiles(slice); };
            at = first == 0 ? at : steps.insert(std::next(at), slice);
        }
        publishReadySteps();
    }

    void flushFiles()
    {
        // Taken out before publishing: a subscriber may hand us new files from its handler,
        // and those must not be wiped by the clearing of the ones being published.
        const QStringList held = std::exchange(pendingFiles, QStringList());
        const QStringList extensions = FileUtil::supportedFileExtensions();
        if (!FileUtil::containsFolder(held)) {
            const QStringList files = FileUtil::extractFiles(held, extensions);
            inOrder([files] { publishFiles(files); });
            return;
        }
        auto step = std::make_shared<Step>();
        steps.push_back(step);
        std::shared_ptr<Tavrin::Util::Mailbox> box = mailbox;
        QThreadPool::globalInstance()->start([this, box, step, held, extensions] {
            QStringList files = FileUtil::extractFiles(held, extensions, [&box] { return box->isClosed(); });
            box->post([this, step, files = std::move(files)] { expanded(step, files); });
        });
    }

    // Before the editor is ready a request only raises its flag; the ready notification
    // replays the flags in their fixed order.
    template <class Message>
    void publishOrHold(bool& held)
    {
        if (ready)
            inOrder([] { PubSub::publish(Message()); });
        else
            held = true;
    }

    void openCollection(const QString& name)
    {
        inOrder([name] {
            if (auto collection = EditorCollection::CollectionProvider::collection(name))
                collection->showPage();
        });
    }

    void notify(const Command::ReadyNotification&) override
    {
        if (parser.isSet(modeOption) && parser.value(modeOption) == QLatin1String("slideshow"))
            inOrder([] { PubSub::publish(Command::StartSlideshow()); });
        flushFiles();
        if (showMainWindow)
            inOrder([] { PubSub::publish(Command::ShowMainWindow()); });
        if (hideMainWindow)
            inOrder([] { PubSub::publish(Command::HideMainWindow()); });
        if (!pendingCollection.isEmpty())
            openCollection(pendingCollection);
        else if (showImportPage)
            inOrder([] { PubSub::publish(Command::ShowImportPage()); });
        else if (showToolsPage)
            inOrder([] { PubSub::publish(Command::ShowToolsPage()); });
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
    // Publications waiting behind a folder expansion, oldest first.
    std::deque<std::shared_ptr<Step>> steps;
    QObject context; // receives the expansions' results on the GUI thread
    std::shared_ptr<Tavrin::Util::Mailbox> mailbox = std::make_shared<Tavrin::Util::Mailbox>(&context);
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
