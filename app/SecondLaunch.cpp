#include "SecondLaunch.h"

#include <IPCProtocol.h>

#include <App/AppManager.h>
#include <App/Delivery.h>
#include <FileUtil/FileUtil.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QThread>
#include <QUuid>

#include <cstdio>
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
// An editor that closes connections unanswered over and over is as good as frozen.
constexpr int kMaxLostConnections = 20;
// How long a hand-off left with a frozen editor is remembered for a retry of the same files.
constexpr qint64 kUnansweredMemorySecs = 600;
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

// True when files were named and none of them can be anything to the editor: neither a
// folder (which may hold media), nor a project, nor a file of a supported type.
bool allUnsupported(const QStringList& files)
{
    if (files.isEmpty())
        return false;
    const QStringList supported = FileUtil::supportedFileExtensions();
    for (const QString& file : files) {
        const QFileInfo info(file);
        if (info.isDir() || info.suffix().compare(kProjectSuffix, Qt::CaseInsensitive) == 0
            || supported.contains(info.suffix().toLower()))
            return false;
    }
    return true;
}

// Where a launch that gave up on a frozen editor leaves the identity of its hand-off: one
// file per hand-off content in the private socket folder.
QString unansweredRecord(const std::vector<Tavrin::UniqueIPC::Call>& calls)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (const auto& call : calls) {
        hash.addData(call.function.data(), int(call.function.size()) + 1);
        for (const std::string& argument : call.arguments)
            hash.addData(argument.data(), int(argument.size()) + 1);
    }
    return Tavrin::App::AppManager::SocketDirectory() + QStringLiteral("/handoff-")
        + QString::fromLatin1(hash.result().toHex().left(20));
}

// Every hand-off carries an identity (the calls' sender, with serials 1..n) so that the
// editor applies it once however often it arrives. A retry of a hand-off that a frozen
// editor still holds reuses that one's identity: the editor, once awake, takes the first and
// ignores the retry.
std::string handOffIdentity(const QString& record)
{
    QFile in(record);
    const QFileInfo info(record);
    if (info.exists() && info.lastModified().secsTo(QDateTime::currentDateTime()) < kUnansweredMemorySecs
        && in.open(QIODevice::ReadOnly)) {
        const QByteArray identity = in.readAll().trimmed();
        if (identity.startsWith("launch-"))
            return identity.toStdString();
    }
    return "launch-" + QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

void rememberUnanswered(const QString& record, const std::string& identity)
{
    QSaveFile out(record);
    if (out.open(QIODevice::WriteOnly)) {
        out.write(identity.data(), qint64(identity.size()));
        out.commit();
    }
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

SecondLaunch SecondLaunch::decide(const QStringList& arguments, const QString& key)
{
    SecondLaunch launch;
    launch.instance = std::make_shared<Tavrin::App::SingleInstance>(key);
    if (!launch.instance->isAnotherInstanceRunning())
        return launch;

    const QStringList files = filesOf(arguments);
    if (allUnsupported(files)) {
        // Nothing to hand over; say so where the user who typed the command looks.
        std::fprintf(stderr, "klipvane: the editor cannot open %s: %s\n",
                     files.size() == 1 ? "this file" : "any of these files",
                     QFile::encodeName(files.join(QStringLiteral(", "))).constData());
        LOG(WARNING) << "second launch: none of the " << files.size() << " file(s) is of a supported type";
        launch.exitCode = Unsupported;
        return launch;
    }
    std::vector<Tavrin::UniqueIPC::Call> calls = callsFor(files);
    const QString record = unansweredRecord(calls);
    const std::string identity = handOffIdentity(record);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        calls[i].sender = identity;
        calls[i].serial = std::uint32_t(i + 1);
    }
    // Local sockets want an application object; a plain one costs next to nothing, unlike
    // the widget application this launch will not need.
    static int argc = 1;
    static char name[] = "klipvane";
    static char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);

    QElapsedTimer clock;
    clock.start();
    bool toldWaiting = false;
    int lost = 0;
    for (;;) {
        // The editor may have ended since the lock was tried: then this launch is the editor.
        if (launch.instance->waitForOtherInstance(0)) {
            LOG(INFO) << "second launch: the running editor has ended; starting the editor";
            QFile::remove(record);
            return launch;
        }
        QString detail;
        switch (Tavrin::App::SendCallAndWait(calls.front(), kAnswerTimeoutMs, &detail)) {
        case Tavrin::App::DeliveryResult::Delivered:
            calls.erase(calls.begin());
            if (!calls.empty())
                continue;
            LOG(INFO) << "second launch: handed " << files.size() << " file(s) to the running editor ("
                      << detail.toStdString() << ")";
            QFile::remove(record);
            launch.exitCode = HandedOver;
            return launch;
        case Tavrin::App::DeliveryResult::NotHandled:
            LOG(ERROR) << "second launch: the running editor refused the files (" << detail.toStdString() << ")";
            QFile::remove(record);
            launch.exitCode = Refused;
            return launch;
        case Tavrin::App::DeliveryResult::Lost:
            // Closed or died before answering: not frozen. Look again at the lock (this launch
            // may be the editor now) and at who listens; the identity makes a resend safe.
            if (++lost <= kMaxLostConnections) {
                LOG(WARNING) << "second launch: " << detail.toStdString() << " before answering; trying again";
                clock.restart();
                QThread::msleep(kRetryIntervalMs);
                continue;
            }
            Q_FALLTHROUGH();
        case Tavrin::App::DeliveryResult::NoAnswer:
            LOG(ERROR) << "second launch: the running editor does not answer (" << detail.toStdString()
                       << "); not starting another one";
            rememberUnanswered(record, identity);
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
