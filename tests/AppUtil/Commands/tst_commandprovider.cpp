#include <CommandProvider.h>

#include <EditorCollection/Collection.h>
#include <Launcher/Launcher.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "TestSandbox.h"

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

// Writes every command seen on the command channel into one log, in order.
class CommandLog
{
public:
    CommandLog()
        : m_slideshow(Command::globalObject(), [this](const auto&) { log << QStringLiteral("StartSlideshow"); }),
          m_files(Command::globalObject(),
                  [this](const Command::AddFiles& m) {
                      log << QStringLiteral("AddFiles ") + m.files.join(QLatin1Char(' '));
                      if (onAddFiles)
                          onAddFiles();
                  }),
          m_show(Command::globalObject(), [this](const auto&) { log << QStringLiteral("ShowMainWindow"); }),
          m_hide(Command::globalObject(), [this](const auto&) { log << QStringLiteral("HideMainWindow"); }),
          m_tools(Command::globalObject(), [this](const auto&) { log << QStringLiteral("ShowToolsPage"); }),
          m_import(Command::globalObject(), [this](const auto&) { log << QStringLiteral("ShowImportPage"); })
    {
    }
    QStringList log;
    std::function<void()> onAddFiles;

private:
    PubSub::Subscription<Command::StartSlideshow> m_slideshow;
    PubSub::Subscription<Command::AddFiles> m_files;
    PubSub::Subscription<Command::ShowMainWindow> m_show;
    PubSub::Subscription<Command::HideMainWindow> m_hide;
    PubSub::Subscription<Command::ShowToolsPage> m_tools;
    PubSub::Subscription<Command::ShowImportPage> m_import;
};

class FakeCollection : public EditorCollection::ICollection
{
public:
    FakeCollection(QString name, QStringList& log) : m_name(std::move(name)), m_log(log) {}
    QString name() const override { return m_name; }
    void showPage() override { m_log << QStringLiteral("collection ") + m_name; }

private:
    QString m_name;
    QStringList& m_log;
};

void ready()
{
    PubSub::publish(Command::ReadyNotification());
}

// Captures what is written to stdout and stderr while it lives.
class OutputCapture
{
public:
    explicit OutputCapture(const QString& path) : m_path(path)
    {
        std::fflush(stdout);
        std::fflush(stderr);
        m_out = ::dup(1);
        m_err = ::dup(2);
        std::FILE* file = std::fopen(QFile::encodeName(path).constData(), "w");
        ::dup2(::fileno(file), 1);
        ::dup2(::fileno(file), 2);
        std::fclose(file);
    }
    QByteArray finish()
    {
        std::fflush(stdout);
        std::fflush(stderr);
        ::dup2(m_out, 1);
        ::dup2(m_err, 2);
        ::close(m_out);
        ::close(m_err);
        QFile file(m_path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

private:
    QString m_path;
    int m_out = -1;
    int m_err = -1;
};

} // namespace

// Files in the data rows are names inside a temporary folder; the real files exist:
// a.mp4, b.MOV, c.png, notes.txt, song.wav.
class TestCommandProvider : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void replayAtReady_data();
    void replayAtReady();
    void heldFilesAreNotPublishedBeforeReady();
    void pendingListOfUnsupportedFilesIsEmptiedSilently();
    void immediateAfterReady();
    void secondReadyRepeatsTheRequests();
    void filesHandedOverDuringReplayAreNotLost();
    void commandLine_data();
    void commandLine();
    void destroyedBeforeReadyDropsEverything();

private:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QStringList paths(const QStringList& names) const;
    QStringList expand(const QStringList& lines) const;
    void setCommandLine(const QStringList& arguments) const;

    QTemporaryDir m_dir;
    QStringList m_collectionLog;
};

void TestCommandProvider::initTestCase()
{
    QVERIFY(m_dir.isValid());
    for (const char* name : {"a.mp4", "b.MOV", "c.png", "notes.txt", "song.wav"}) {
        QFile file(path(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not really media");
    }
}

void TestCommandProvider::init()
{
    m_collectionLog.clear();
    EditorCollection::CollectionProvider::add(std::make_shared<FakeCollection>(QStringLiteral("UserFiles"), m_collectionLog));
    EditorCollection::CollectionProvider::add(std::make_shared<FakeCollection>(QStringLiteral("Effects"), m_collectionLog));
    setCommandLine({});
}

void TestCommandProvider::cleanup()
{
    EditorCollection::CollectionProvider::clear();
}

QStringList TestCommandProvider::paths(const QStringList& names) const
{
    QStringList result;
    for (const QString& name : names)
        result << path(name);
    return result;
}

// "AddFiles a.mp4 c.png" becomes "AddFiles <dir>/a.mp4 <dir>/c.png".
QStringList TestCommandProvider::expand(const QStringList& lines) const
{
    QStringList result;
    for (const QString& line : lines) {
        if (!line.startsWith(QLatin1String("AddFiles "))) {
            result << line;
            continue;
        }
        result << QStringLiteral("AddFiles ") + paths(line.mid(9).split(QLatin1Char(' '))).join(QLatin1Char(' '));
    }
    return result;
}

void TestCommandProvider::setCommandLine(const QStringList& arguments) const
{
    QStringList argv{QStringLiteral("klipvane")};
    for (const QString& argument : arguments) {
        // Plain names are files of the temporary folder; options stay as they are.
        const bool file = !argument.startsWith(QLatin1Char('-')) && argument.contains(QLatin1Char('.'));
        argv << (file ? path(argument) : argument);
    }
    Launcher::instance().setArguments(argv);
}

// Requests made before ready: "files:a.mp4,b.MOV", "file:c.png", "show", "hide", "tools",
// "import", "collection:<name>".
void TestCommandProvider::replayAtReady_data()
{
    QTest::addColumn<QStringList>("commandLine");
    QTest::addColumn<QStringList>("requests");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("slideshow before files") << QStringList{"--mode", "slideshow", "a.mp4", "c.png"} << QStringList{}
                                            << QStringList{"StartSlideshow", "AddFiles a.mp4 c.png"};
    QTest::newRow("mode=slideshow form") << QStringList{"--mode=slideshow", "a.mp4"} << QStringList{}
                                         << QStringList{"StartSlideshow", "AddFiles a.mp4"};
    QTest::newRow("normal mode") << QStringList{"--mode", "normal", "a.mp4"} << QStringList{}
                                 << QStringList{"AddFiles a.mp4"};
    QTest::newRow("mode is case-sensitive") << QStringList{"--mode", "Slideshow", "a.mp4"} << QStringList{}
                                            << QStringList{"AddFiles a.mp4"};
    QTest::newRow("unknown mode") << QStringList{"--mode", "kiosk"} << QStringList{} << QStringList{};
    QTest::newRow("nothing held") << QStringList{} << QStringList{} << QStringList{};
    QTest::newRow("command line then requests, arrival order, duplicates kept")
        << QStringList{"song.wav"} << QStringList{"files:c.png,a.mp4", "file:song.wav"}
        << QStringList{"AddFiles song.wav c.png a.mp4 song.wav"};
    QTest::newRow("unsupported filtered out")
        << QStringList{"notes.txt", "a.mp4"} << QStringList{"files:notes.txt,b.MOV,missing.mp4"}
        << QStringList{"AddFiles a.mp4 b.MOV"};
    QTest::newRow("show then hide") << QStringList{} << QStringList{"show", "hide"}
                                    << QStringList{"ShowMainWindow", "HideMainWindow"};
    QTest::newRow("hide then show still ends hidden") << QStringList{} << QStringList{"hide", "show"}
                                                      << QStringList{"ShowMainWindow", "HideMainWindow"};
    QTest::newRow("requested twice, published once") << QStringList{} << QStringList{"show", "show"}
                                                     << QStringList{"ShowMainWindow"};
    QTest::newRow("tools only") << QStringList{} << QStringList{"tools"} << QStringList{"ShowToolsPage"};
    QTest::newRow("import beats tools") << QStringList{} << QStringList{"import", "tools"}
                                        << QStringList{"ShowImportPage"};
    QTest::newRow("collection beats import and tools")
        << QStringList{} << QStringList{"tools", "import", "collection:UserFiles"}
        << QStringList{"collection UserFiles"};
    QTest::newRow("collection first still wins")
        << QStringList{} << QStringList{"collection:Effects", "import"} << QStringList{"collection Effects"};
    QTest::newRow("later collection replaces earlier")
        << QStringList{} << QStringList{"collection:UserFiles", "collection:Effects"}
        << QStringList{"collection Effects"};
    QTest::newRow("unknown collection still takes the page slot")
        << QStringList{} << QStringList{"import", "collection:Nowhere"} << QStringList{};
    QTest::newRow("everything in the fixed order")
        << QStringList{"--mode", "slideshow", "a.mp4"}
        << QStringList{"collection:UserFiles", "tools", "hide", "import", "files:c.png", "show"}
        << QStringList{"StartSlideshow", "AddFiles a.mp4 c.png", "ShowMainWindow", "HideMainWindow",
                       "collection UserFiles"};
}

void TestCommandProvider::replayAtReady()
{
    QFETCH(QStringList, commandLine);
    QFETCH(QStringList, requests);
    QFETCH(QStringList, expected);

    setCommandLine(commandLine);
    CommandProvider provider;
    CommandLog commands;
    for (const QString& request : requests) {
        const QString argument = request.section(QLatin1Char(':'), 1);
        if (request.startsWith(QLatin1String("files:")))
            provider.handleFiles(paths(argument.split(QLatin1Char(','))));
        else if (request.startsWith(QLatin1String("file:")))
            provider.handleFile(path(argument));
        else if (request == QLatin1String("show"))
            provider.showMainWindow();
        else if (request == QLatin1String("hide"))
            provider.hideMainWindow();
        else if (request == QLatin1String("tools"))
            provider.showToolsPage();
        else if (request == QLatin1String("import"))
            provider.showImportPage();
        else if (request.startsWith(QLatin1String("collection:")))
            provider.showCollectionPage(argument);
        else
            QFAIL(qPrintable(request));
    }
    QVERIFY(commands.log.isEmpty());
    QVERIFY(m_collectionLog.isEmpty());

    ready();
    QCOMPARE(commands.log + m_collectionLog, expand(expected));
    QVERIFY(!provider.hasPendingFiles());
}

void TestCommandProvider::heldFilesAreNotPublishedBeforeReady()
{
    setCommandLine({"a.mp4"});
    CommandProvider provider;
    CommandLog commands;
    QVERIFY(provider.hasPendingFiles());
    provider.handleFiles({});
    provider.handleFiles(paths({"c.png", "song.wav"}));
    QVERIFY(provider.hasPendingFiles());
    QVERIFY(commands.log.isEmpty());

    ready();
    QCOMPARE(commands.log, expand({"AddFiles a.mp4 c.png song.wav"}));
    QVERIFY(!provider.hasPendingFiles());
}

void TestCommandProvider::pendingListOfUnsupportedFilesIsEmptiedSilently()
{
    // Unsupported names on the command line are filtered when read, so nothing is held.
    setCommandLine({"notes.txt", "missing.mp4"});
    CommandProvider provider;
    CommandLog commands;
    QVERIFY(!provider.hasPendingFiles());

    // Requests are held as given and filtered only at ready.
    provider.handleFiles(paths({"notes.txt", "missing.mp4"}));
    provider.handleFile(QString());
    QVERIFY(provider.hasPendingFiles());
    ready();
    QVERIFY(commands.log.isEmpty());
    QVERIFY(!provider.hasPendingFiles());
}

void TestCommandProvider::immediateAfterReady()
{
    CommandProvider provider;
    CommandLog commands;
    ready();
    QVERIFY(commands.log.isEmpty());

    provider.handleFile(path("b.MOV"));
    QCOMPARE(commands.log, expand({"AddFiles b.MOV"}));
    provider.handleFile(path("notes.txt"));
    provider.handleFiles({});
    provider.handleFiles(paths({"notes.txt", "missing.png"}));
    QCOMPARE(commands.log.size(), 1);
    QVERIFY(!provider.hasPendingFiles());
    provider.handleFiles(paths({"c.png", "notes.txt", "a.mp4"}));
    QCOMPARE(commands.log.last(), expand({"AddFiles c.png a.mp4"}).constFirst());

    commands.log.clear();
    provider.showImportPage();
    provider.showToolsPage();
    provider.hideMainWindow();
    provider.showMainWindow();
    QCOMPARE(commands.log, (QStringList{"ShowImportPage", "ShowToolsPage", "HideMainWindow", "ShowMainWindow"}));

    provider.showCollectionPage(QStringLiteral("Effects"));
    provider.showCollectionPage(QStringLiteral("Nowhere"));
    provider.showCollectionPage(QString());
    provider.showCollectionPage(QStringLiteral("effects"));
    QCOMPARE(m_collectionLog, QStringList{"collection Effects"});
    QCOMPARE(commands.log.size(), 4);
}

void TestCommandProvider::secondReadyRepeatsTheRequests()
{
    setCommandLine({"--mode", "slideshow", "a.mp4"});
    CommandProvider provider;
    CommandLog commands;
    provider.showMainWindow();
    provider.showToolsPage();
    ready();
    QCOMPARE(commands.log, expand({"StartSlideshow", "AddFiles a.mp4", "ShowMainWindow", "ShowToolsPage"}));

    // The held requests are repeated; the files went out the first time.
    commands.log.clear();
    ready();
    QCOMPARE(commands.log, (QStringList{"StartSlideshow", "ShowMainWindow", "ShowToolsPage"}));
}

void TestCommandProvider::filesHandedOverDuringReplayAreNotLost()
{
    setCommandLine({"a.mp4"});
    CommandProvider provider;
    CommandLog commands;
    // A view that reacts to the first files by asking for one more, as a project would.
    bool asked = false;
    commands.onAddFiles = [&] {
        if (!std::exchange(asked, true))
            provider.handleFile(path("song.wav"));
    };
    ready();
    QCOMPARE(commands.log, expand({"AddFiles a.mp4", "AddFiles song.wav"}));
    QVERIFY(!provider.hasPendingFiles());
}

void TestCommandProvider::commandLine_data()
{
    QTest::addColumn<QStringList>("commandLine");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("--help") << QStringList{"--help", "a.mp4"} << QStringList{"AddFiles a.mp4"};
    QTest::newRow("-h") << QStringList{"-h"} << QStringList{};
    QTest::newRow("--help-all") << QStringList{"--help-all"} << QStringList{};
    QTest::newRow("-?") << QStringList{"-?", "c.png"} << QStringList{"AddFiles c.png"};
    QTest::newRow("unknown long option") << QStringList{"--fullscreen", "a.mp4"} << QStringList{"AddFiles a.mp4"};
    QTest::newRow("unknown short option") << QStringList{"-z", "a.mp4"} << QStringList{"AddFiles a.mp4"};
    QTest::newRow("--version not defined") << QStringList{"--version"} << QStringList{};
    QTest::newRow("mode without value at the end") << QStringList{"a.mp4", "--mode"} << QStringList{"AddFiles a.mp4"};
    // The parser takes the next argument as the value: the file becomes an unknown mode.
    QTest::newRow("mode swallows a file") << QStringList{"--mode", "a.mp4", "c.png"} << QStringList{"AddFiles c.png"};
    QTest::newRow("mode with empty value") << QStringList{"--mode=", "c.png"} << QStringList{"AddFiles c.png"};
    QTest::newRow("mode given twice, last wins") << QStringList{"--mode", "normal", "--mode", "slideshow"}
                                                 << QStringList{"StartSlideshow"};
    QTest::newRow("files after --") << QStringList{"--", "a.mp4", "--mode"} << QStringList{"AddFiles a.mp4"};
    QTest::newRow("help and slideshow together") << QStringList{"--help", "--mode", "slideshow"}
                                                 << QStringList{"StartSlideshow"};
    QTest::newRow("only the program name") << QStringList{} << QStringList{};
}

void TestCommandProvider::commandLine()
{
    QFETCH(QStringList, commandLine);
    QFETCH(QStringList, expected);

    setCommandLine(commandLine);
    // A bad command line neither prints nor exits: were it to exit, this test would die here.
    OutputCapture capture(m_dir.filePath(QStringLiteral("output.txt")));
    auto provider = std::make_unique<CommandProvider>();
    const QByteArray printed = capture.finish();
    QVERIFY2(printed.isEmpty(), printed.constData());

    CommandLog commands;
    ready();
    QCOMPARE(commands.log, expand(expected));
}

void TestCommandProvider::destroyedBeforeReadyDropsEverything()
{
    setCommandLine({"--mode", "slideshow", "a.mp4"});
    CommandLog commands;
    {
        CommandProvider provider;
        provider.showMainWindow();
        provider.showCollectionPage(QStringLiteral("UserFiles"));
    }
    QVERIFY(PubSub::Details::Dispatcher::instance()
                .subscribers(typeid(Command::ReadyNotification), Command::globalObject())
                .empty());
    ready();
    QVERIFY(commands.log.isEmpty());
    QVERIFY(m_collectionLog.isEmpty());
}

QTEST_GUILESS_MAIN(TestCommandProvider)
#include "tst_commandprovider.moc"
