// kvprobe FILE...
//
// Adds the files to a project through the editor's media model and file open handler,
// waits for the batch, and prints as JSON what the editor would make of them: each file's
// facts or the reason it failed, the handler's analysis, and the dialogs the editor would
// show. Exit status 0 whenever it ran, whatever the files were; 2 for a usage error.

#include "ProbeDialogStrategy.h"
#include "ProbeReport.h"

#include <FileOpenHandler.h>
#include <MediaStatistics.h>

#include <App/ProductServices.h>
#include <Log/Logging.h>
#include <Media/FilePool.h>
#include <Util/Allocator.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <glog/logging.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <optional>

namespace {

// The handler as the editor's import uses it: removal is offered, the failed-files dialog
// follows any file with a problem, the HDR notice follows an HDR file.
class ProbeHandler : public FileOpenHandler
{
public:
    std::optional<AnalyzedProduct> product;

private:
    bool allowToDeleteClips(const AnalyzedProduct&) override { return true; }
    void postProcessing(AnalyzedProduct analyzed) override
    {
        product = analyzed;
        if (!analyzed.failedFiles.empty() || !analyzed.openedUnsupportedCodecFiles.empty())
            showFailedFilesDialog(analyzed);
        if (analyzed.hasHDR)
            showHDRFilesAddedDialog();
        QCoreApplication::quit();
    }
};

// The product's names and addresses, for the texts of the report (the support link).
void registerProbeServices()
{
    QString problem;
    if (!Tavrin::App::registerProductServices(QCoreApplication::applicationDirPath() + QStringLiteral("/product.json"),
                                              {}, &problem))
        LOG(INFO) << "kvprobe runs without the product description: " << problem.toStdString();
}

void printUsage(std::FILE* to)
{
    std::fputs("usage: kvprobe [--] FILE...\n"
               "Opens the files as the editor would and prints the outcome as JSON.\n"
               "\n"
               "Options:\n"
               "  -h, --help     print this help and exit\n"
               "  -v, --version  print the version and exit\n"
               "  --             the arguments after it are files, even if they start with a dash\n",
               to);
}

bool isOption(const char* argument, std::initializer_list<const char*> names)
{
    for (const char* name : names) {
        if (std::strcmp(argument, name) == 0)
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    // Answered before anything starts, so asking for help leaves no log file behind.
    for (int i = 1; i < argc && std::strcmp(argv[i], "--") != 0; ++i) {
        if (isOption(argv[i], {"--help", "-h", "-?"})) {
            printUsage(stdout);
            return 0;
        }
        if (isOption(argv[i], {"--version", "-v"})) {
            std::fputs("kvprobe " KLIPVANE_VERSION "\n", stdout);
            return 0;
        }
    }
    Tavrin::Util::tuneAllocatorForMedia();
    // No GUI thread to keep responsive here: opening is partly waiting for the disk, so a
    // few more threads than cores pay off.
    Media::FilePool::setWorkerThreads(std::max(4, QThread::idealThreadCount() * 2));
    Tavrin::Log::init(argv[0]);
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Klipvane"));
    QCoreApplication::setApplicationName(QStringLiteral("kvprobe"));

    QStringList paths = QCoreApplication::arguments().mid(1);
    if (paths.isEmpty()) {
        printUsage(stderr);
        return 2;
    }
    // "--" ends options, so files whose names start with a dash can be probed.
    if (paths.first() == QLatin1String("--"))
        paths.removeFirst();
    for (QString& path : paths)
        path = QFileInfo(path).absoluteFilePath();

    registerProbeServices();
    auto dialogs = std::make_shared<ProbeDialogStrategy>();
    Dialog::initialize(dialogs);

    QJsonArray statistics;
    PubSub::Subscription<Statistics::CodecsFailed> codecs(
        Statistics::globalObject(), [&statistics](const Statistics::CodecsFailed& message) {
            statistics.append(QJsonObject{{QStringLiteral("event"), QStringLiteral("CodecsFailed")},
                                          {QStringLiteral("extension"), message.extension},
                                          {QStringLiteral("codecs"), QJsonArray::fromStringList(message.codecs)}});
        });
    PubSub::Subscription<Statistics::DeleteFailedFilesEventNotification> deletion(
        Statistics::globalObject(), [&statistics](const Statistics::DeleteFailedFilesEventNotification& message) {
            statistics.append(QJsonObject{{QStringLiteral("event"), QStringLiteral("DeleteFailedFiles")},
                                          {QStringLiteral("deletionOffered"), message.deletionOffered},
                                          {QStringLiteral("deletionChosen"), message.deletionChosen}});
        });

    Media::FilePool pool;
    ProbeHandler handler;
    pool.addView(&handler);
    const QList<const Media::File*> files = pool.addFiles(paths);
    QCoreApplication::exec();

    const QJsonObject report = probeReport(files, handler.product.value_or(FileOpenHandler::AnalyzedProduct()),
                                           *dialogs, statistics);
    const QByteArray json = QJsonDocument(report).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    Dialog::initialize({});
    return 0;
}
