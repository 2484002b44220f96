#include "Log/Logging.h"

#include <QDir>
#include <QStandardPaths>

#include <glog/logging.h>

#include <atomic>

namespace Tavrin {
namespace Log {
namespace {

void qtMessageToGlog(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const char* file = context.file ? context.file : "qt";
    const int line = context.line;
    const std::string text = message.toStdString();
    switch (type) {
    case QtDebugMsg:
    case QtInfoMsg:
        google::LogMessage(file, line, google::GLOG_INFO).stream() << text;
        break;
    case QtWarningMsg:
        google::LogMessage(file, line, google::GLOG_WARNING).stream() << text;
        break;
    case QtCriticalMsg:
    case QtFatalMsg:
        // A Qt fatal message aborts in Qt itself; here it is only reported.
        google::LogMessage(file, line, google::GLOG_ERROR).stream() << text;
        break;
    }
}

} // namespace

QString logDirectory()
{
    QString folder = qEnvironmentVariable("KLIPVANE_LOG_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/Klipvane/log");
    return folder;
}

void init(const char* argv0)
{
    static std::atomic_bool done{false};
    if (done.exchange(true))
        return;
    const QString folder = logDirectory();
    QDir().mkpath(folder);
    static const std::string folderUtf8 = folder.toStdString();
    FLAGS_log_dir = folderUtf8;
    FLAGS_alsologtostderr = true;
    FLAGS_colorlogtostderr = false;
    FLAGS_logbufsecs = 0;
    google::InitGoogleLogging(argv0 ? argv0 : "klipvane");
    qInstallMessageHandler(qtMessageToGlog);
}

} // namespace Log
} // namespace Tavrin
