#include "Log/Logging.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <glog/logging.h>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <mutex>

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

std::string escaped(const char* message, size_t length)
{
    std::string out;
    out.reserve(length);
    for (size_t i = 0; i < length; ++i) {
        const unsigned char c = static_cast<unsigned char>(message[i]);
        if (c == '\\') {
            out += "\\\\";
        } else if (c == '\n') {
            out += "\\n";
        } else if (c == '\r') {
            out += "\\r";
        } else if ((c < 0x20 && c != '\t') || c == 0x7f) {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02x", c);
            out += code;
        } else {
            out += char(c);
        }
    }
    return out;
}

void writeAll(int fd, const std::string& text)
{
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n <= 0)
            return; // a full disk or a closed stderr must not stop the program
        done += size_t(n);
    }
}

// Deletes all but the newest kKeptRuns log files of `program`, and the files and links the
// former per-severity layout left behind.
void prune(const QDir& folder, const QString& program)
{
    const QString name = QRegularExpression::escape(program);
    const QRegularExpression run(QStringLiteral("^%1\\.\\d{8}-\\d{6}\\.\\d{3}\\.\\d+\\.log$").arg(name));
    const QRegularExpression former(
        QStringLiteral("^%1\\.(.+\\.log\\.)?(INFO|WARNING|ERROR|FATAL)(\\.\\d{8}-\\d{6}\\.\\d+)?$").arg(name));
    QStringList runs;
    const QFileInfoList entries = folder.entryInfoList({program + QStringLiteral(".*")},
                                                       QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        if (run.match(entry.fileName()).hasMatch())
            runs << entry.fileName();
        else if (former.match(entry.fileName()).hasMatch())
            QFile::remove(entry.filePath());
    }
    runs.sort(); // the names sort by start time
    for (int i = 0; i + kKeptRuns < runs.size(); ++i)
        QFile::remove(folder.filePath(runs.at(i)));
}

// Every glog line passes through here: glog's own files and stderr output are switched off,
// so this is where lines are escaped, and where the file gets its name and permissions.
class Sink : public google::LogSink
{
public:
    Sink(QString program, bool holdLines) : m_program(std::move(program)), m_holding(holdLines) {}

    void send(google::LogSeverity severity, const char* fullFileName, const char* baseFileName, int line,
              const google::LogMessageTime& time, const char* message, size_t length) override
    {
        (void)fullFileName;
        const std::string text = escaped(message, length);
        const std::string formatted = ToString(severity, baseFileName, line, time, text.data(), text.size()) + '\n';
        std::lock_guard<std::mutex> lock(m_mutex);
        writeAll(STDERR_FILENO, formatted);
        if (m_fd >= 0)
            writeAll(m_fd, formatted);
        else if (m_holding && m_held.size() + formatted.size() <= kMaxHeldBytes)
            m_held += formatted;
    }

    // Qt calls here may log (a warning becomes a glog line that comes back to send()), so
    // the lock is held only around the switch from held lines to the file.
    void startFile()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_fd >= 0 || m_failed)
                return;
        }
        const QString folderPath = logDirectory();
        QDir().mkpath(folderPath);
        // Also tightens a folder an earlier version created readable for everyone.
        QFile::setPermissions(folderPath, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        const QDir folder(folderPath);
        const QString name = QStringLiteral("%1.%2.%3.log")
                                 .arg(m_program,
                                      QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss.zzz")))
                                 .arg(::getpid());
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0600);
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (fd < 0) {
                m_failed = true;
                writeAll(STDERR_FILENO, "Could not create the log file " + path.toStdString() + "\n");
                return;
            }
            writeAll(fd, m_held);
            m_held.clear();
            m_holding = false;
            m_fd = fd;
        }
        prune(folder, m_program);
    }

private:
    // Lines before the file starts are a launch's first few; this only bounds a runaway.
    static constexpr size_t kMaxHeldBytes = 256 * 1024;

    const QString m_program;
    std::mutex m_mutex;
    int m_fd = -1;
    bool m_holding;
    bool m_failed = false;
    std::string m_held;
};

Sink* sink = nullptr;

} // namespace

QString logDirectory()
{
    QString folder = qEnvironmentVariable("KLIPVANE_LOG_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + QStringLiteral("/Klipvane/log");
    return folder;
}

void init(const char* argv0, FileStart start)
{
    static std::atomic_bool done{false};
    if (done.exchange(true))
        return;
    const char* program = argv0 ? argv0 : "klipvane";
    google::InitGoogleLogging(program);
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    FLAGS_logtostderr = false;
    FLAGS_alsologtostderr = false;
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    // Lives until the process ends: glog may log from any thread up to the very end.
    sink = new Sink(QFileInfo(QFile::decodeName(program)).fileName(), start == FileStart::Later);
    google::AddLogSink(sink);
    if (start == FileStart::Now)
        sink->startFile();
    qInstallMessageHandler(qtMessageToGlog);
}

void startFile()
{
    if (sink)
        sink->startFile();
}

} // namespace Log
} // namespace Tavrin
