#include <CommandProvider.h>

#include <EditorCollection/Collection.h>
#include <Launcher/Launcher.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QThreadPool>
#include <QMap>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include "TestSandbox.h"

#include <cstdio>
#include <functional>
#include <memory>
#include <type_traits>
#include <unistd.h>

namespace {

// Writes every command published on the command channel into `log` while it lives.
struct CommandLog
{
    explicit CommandLog(QStringList& log) : log(log) {}
    QStringList& log;
    std::function<void()> onCommand = [] {};
    template <class C>
    std::shared_ptr<void> named(const char* name)
    {
        return std::make_shared<PubSub::Subscription<C>>(Command::globalObject(), [this, name](const C& c) {
            log << QLatin1String(name);
            if constexpr (std::is_same_v<C, Command::AddFiles>)
                log.last() += QLatin1Char(' ') + c.files.join(QLatin1Char(' '));
            onCommand();
        });
    }
    const std::vector<std::shared_ptr<void>> subscriptions{
        named<Command::StartSlideshow>("StartSlideshow"), named<Command::AddFiles>("AddFiles"),
        named<Command::ShowMainWindow>("ShowMainWindow"), named<Command::HideMainWindow>("HideMainWindow"),
        named<Command::ShowToolsPage>("ShowToolsPage"), named<Command::ShowImportPage>("ShowImportPage")};
};

struct FakeCollection : EditorCollection::ICollection
{
    FakeCollection(const char* name, QStringList& log) : m_name(QString::fromLatin1(name)), m_log(log) {}
    QString name() const override { return m_name; }
    void showPage() override { m_log << QStringLiteral("collection ") + m_name; }
    QString m_name;
    QStringList& m_log;
};

// What `action` writes to stdout and stderr.
QByteArray printedBy(const std::function<void()>& action)
{
    QTemporaryFile out;
    out.open();
    std::fflush(nullptr);
    const int saved[] = {::dup(1), ::dup(2)};
    for (int fd : {1, 2})
        ::dup2(out.handle(), fd);
    action();
    std::fflush(nullptr);
    for (int fd : {1, 2}) {
        ::dup2(saved[fd - 1], fd);
        ::close(saved[fd - 1]);
    }
    out.seek(0);
    return out.readAll();
}

} // namespace

// In data rows "@" stands for the temporary folder, which holds a.mp4, b.MOV, c.png,
// notes.txt and song.wav.
class TestCommandProvider : public QObject
{
    Q_OBJECT

    QString at(QString text) const { return text.replace(QLatin1Char('@'), m_dir.path() + QLatin1Char('/')); }
    QStringList at(const QStringList& lines) const
    {
        return at(lines.join(QLatin1Char('\n'))).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
    // Makes the requests of a data row ("files:@a.mp4,@b.MOV", "file:@c.png", "show", "hide",
    // "tools", "import", "collection:<name>").
    void request(CommandProvider& provider, const QStringList& requests) const
    {
        const QMap<QString, std::function<void(const QString&)>> actions{
            {"files", [&](const QString& a) { provider.handleFiles(at(a.split(',', Qt::SkipEmptyParts))); }},
            {"file", [&](const QString& a) { provider.handleFile(at(a)); }},
            {"show", [&](const QString&) { provider.showMainWindow(); }},
            {"hide", [&](const QString&) { provider.hideMainWindow(); }},
            {"tools", [&](const QString&) { provider.showToolsPage(); }},
            {"import", [&](const QString&) { provider.showImportPage(); }},
            {"collection", [&](const QString& a) { provider.showCollectionPage(a); }}};
        for (const QString& request : requests)
            actions.value(request.section(QLatin1Char(':'), 0, 0))(request.section(QLatin1Char(':'), 1));
    }
    void setCommandLine(const QStringList& arguments) const
    {
        Launcher::instance().setArguments(QStringList{QStringLiteral("klipvane")} + at(arguments));
    }

    QTemporaryDir m_dir;
    QStringList m_log; // commands and collection pages shown

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        for (const char* name : {"a.mp4", "b.MOV", "c.png", "notes.txt", "song.wav"}) {
            QFile file(m_dir.filePath(QString::fromLatin1(name)));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("not really media") > 0);
        }
    }

    void init()
    {
        m_log.clear();
        for (const char* name : {"UserFiles", "Effects"})
            EditorCollection::CollectionProvider::add(std::make_shared<FakeCollection>(name, m_log));
        setCommandLine({});
    }

    void cleanup() { EditorCollection::CollectionProvider::clear(); }

    // Rows: the command line, the requests made before ready (words) and what is published
    // at ready ("|" between commands).
    void replayAtReady_data()
    {
        QTest::addColumn<QStringList>("commandLine");
        QTest::addColumn<QStringList>("requests");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const char* commandLine, const char* requests, const char* expected) {
            QTest::newRow(name) << QString::fromUtf8(commandLine).split(QLatin1Char(' '), Qt::SkipEmptyParts)
                                << QString::fromUtf8(requests).split(QLatin1Char(' '), Qt::SkipEmptyParts)
                                << QString::fromUtf8(expected).split(QLatin1Char('|'), Qt::SkipEmptyParts);
        };
        row("slideshow before files", "--mode slideshow @a.mp4 @c.png", "", "StartSlideshow|AddFiles @a.mp4 @c.png");
        row("mode is case-sensitive", "--mode Slideshow @a.mp4", "", "AddFiles @a.mp4");
        row("command line then requests, arrival order, duplicates kept", "@song.wav",
            "files:@c.png,@a.mp4 file:@song.wav", "AddFiles @song.wav @c.png @a.mp4 @song.wav");
        row("unsupported filtered out", "@notes.txt @a.mp4", "files:@notes.txt,@b.MOV,@missing.mp4",
            "AddFiles @a.mp4 @b.MOV");
        row("nothing supported: no files at all", "@notes.txt @missing.mp4", "files:@notes.txt,@missing.mp4 file:", "");
        row("show once, hide last whatever the order", "", "hide show show", "ShowMainWindow|HideMainWindow");
        row("import beats tools", "", "import tools", "ShowImportPage");
        row("the last collection beats import and tools", "", "collection:Effects tools import collection:UserFiles",
            "collection UserFiles");
        row("unknown collection still takes the page slot", "", "import collection:Nowhere", "");
        row("everything in the fixed order", "--mode=slideshow @a.mp4",
            "collection:UserFiles tools hide import files:@c.png show",
            "StartSlideshow|AddFiles @a.mp4 @c.png|ShowMainWindow|HideMainWindow|collection UserFiles");
        // Command lines a user may type wrongly.
        row("help options with slideshow", "--help -? --help-all --mode slideshow @c.png", "",
            "StartSlideshow|AddFiles @c.png");
        row("unknown options, mode without value at the end", "--fullscreen -z --version @a.mp4 --mode", "",
            "AddFiles @a.mp4");
        // The parser takes the next argument as the value: the file becomes an unknown mode.
        row("mode swallows a file", "--mode @a.mp4 @c.png", "", "AddFiles @c.png");
        row("mode given twice, last wins", "--mode normal --mode slideshow", "", "StartSlideshow");
        row("files after --", "-- @a.mp4 --mode", "", "AddFiles @a.mp4");
    }

    void replayAtReady()
    {
        QFETCH(QStringList, commandLine);
        QFETCH(QStringList, requests);
        QFETCH(QStringList, expected);

        setCommandLine(commandLine);
        // A bad command line neither prints nor exits: were it to exit, this test would die here.
        std::unique_ptr<CommandProvider> provider;
        const QByteArray printed = printedBy([&] { provider = std::make_unique<CommandProvider>(); });
        QVERIFY2(printed.isEmpty(), printed.constData());
        CommandLog commands(m_log);
        request(*provider, requests);
        QVERIFY(m_log.isEmpty());
        // Files are held as given and filtered only at ready.
        QCOMPARE(provider->hasPendingFiles(), !requests.filter(QStringLiteral("file")).isEmpty()
                                                  || !expected.filter(QStringLiteral("AddFiles")).isEmpty());

        PubSub::publish(Command::ReadyNotification());
        QCOMPARE(m_log, at(expected));
        QVERIFY(!provider->hasPendingFiles());
    }

    void publishedAtOnceDuringAndAfterTheReplay()
    {
        setCommandLine({"@a.mp4"});
        CommandProvider provider;
        CommandLog commands(m_log);
        // A view that reacts to the first files by asking for more, as a project would.
        commands.onCommand = [&] {
            if (m_log.size() == 1)
                request(provider, {"file:@b.MOV", "file:@notes.txt", "files:"});
        };
        PubSub::publish(Command::ReadyNotification());
        request(provider, {"files:@c.png,@notes.txt,@missing.png,@a.mp4", "import", "tools", "hide", "show",
                           "collection:Effects", "collection:Nowhere", "collection:", "collection:effects"});
        QVERIFY(!provider.hasPendingFiles());
        QCOMPARE(m_log, at({"AddFiles @a.mp4", "AddFiles @b.MOV", "AddFiles @c.png @a.mp4", "ShowImportPage",
                            "ShowToolsPage", "HideMainWindow", "ShowMainWindow", "collection Effects"}));
    }

    // A folder is expanded off the GUI thread: the replay returns at once, and the commands
    // after the folder's files wait for them, so the order is the one the rules give.
    void foldersExpandInOrderOffTheGuiThread()
    {
        QTemporaryDir folder;
        for (const char* name : {"x/2.mp4", "x/1.png", "y/z/3.MOV", "notes.txt"}) {
            QVERIFY(QDir().mkpath(QFileInfo(folder.filePath(name)).path()));
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("not really media") > 0);
        }
        setCommandLine({"--mode", "slideshow", "@a.mp4", folder.path()});
        CommandProvider provider;
        CommandLog commands(m_log);
        request(provider, {"show", "tools"});
        PubSub::publish(Command::ReadyNotification());
        QCOMPARE(m_log, QStringList{"StartSlideshow"});
        request(provider, {"file:@c.png", "hide"});
        QCOMPARE(m_log, QStringList{"StartSlideshow"});
        QVERIFY(QTest::qWaitFor([&] { return m_log.size() == 6; }));
        const QString found = QStringList{"x/1.png", "x/2.mp4", "y/z/3.MOV"}.replaceInStrings(QRegularExpression("^"), folder.path() + '/').join(' ');
        QCOMPARE(m_log, at({"StartSlideshow", "AddFiles @a.mp4 " + found, "ShowMainWindow", "ShowToolsPage",
                            "AddFiles @c.png", "HideMainWindow"}));
        // Nothing waits any more: requests are published at once again.
        request(provider, {"show"});
        QCOMPARE(m_log.last(), QString("ShowMainWindow"));
    }

    // A large folder's files arrive in slices, one per event-loop turn, so that adding them
    // never holds the GUI thread for long; the order stays.
    void largeFoldersArriveInSlices()
    {
        QTemporaryDir folder;
        QStringList expected;
        for (int i = 0; i < 450; ++i) {
            expected << folder.filePath(QString("clip%1.mp4").arg(i, 3, 10, QChar('0')));
            QFile file(expected.last());
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
        }
        setCommandLine({folder.path()});
        CommandProvider provider;
        CommandLog commands(m_log);
        PubSub::publish(Command::ReadyNotification());
        provider.showMainWindow();
        QVERIFY(QTest::qWaitFor([&] { return !m_log.isEmpty(); }));
        QCOMPARE(m_log.size(), 1); // one slice per turn
        QVERIFY(QTest::qWaitFor([&] { return m_log.size() == 4; }));
        QCOMPARE(m_log.last(), QString("ShowMainWindow"));
        QStringList added;
        for (const QString& command : m_log.mid(0, 3)) {
            QVERIFY(command.startsWith("AddFiles "));
            added << command.mid(9).split(' ');
        }
        QCOMPARE(added, expected);
    }

    void destroyedWhileExpandingPublishesNothing()
    {
        setCommandLine({m_dir.path()});
        CommandLog commands(m_log);
        {
            CommandProvider provider;
            PubSub::publish(Command::ReadyNotification());
        }
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents();
        QVERIFY(m_log.isEmpty());
    }

    void destroyedBeforeReadyDropsEverything()
    {
        setCommandLine({"--mode", "slideshow", "@a.mp4"});
        CommandLog commands(m_log);
        {
            CommandProvider provider;
            provider.showMainWindow();
            provider.showCollectionPage(QStringLiteral("UserFiles"));
        }
        QVERIFY(PubSub::Details::Dispatcher::instance()
                    .subscribers(typeid(Command::ReadyNotification), Command::globalObject())
                    .empty());
        PubSub::publish(Command::ReadyNotification());
        QVERIFY(m_log.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestCommandProvider)
#include "tst_commandprovider.moc"
