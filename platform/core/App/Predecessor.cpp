#include "Predecessor.h"

#include <QFile>
#include <QString>
#include <QtGlobal>

#include <glog/logging.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

namespace Tavrin {
namespace App {

const char kPredecessorVariable[] = "KLIPVANE_RESTART_OF";

namespace {
// A predecessor still running after this long is left alone; the new process goes on.
constexpr auto kPredecessorTimeout = std::chrono::seconds(30);
} // namespace

bool processEnded(pid_t pid)
{
    if (::kill(pid, 0) != 0)
        return errno == ESRCH;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return true;
    const QByteArray text = stat.readAll();
    const int close = text.lastIndexOf(')');
    return close > 0 && text.size() > close + 2 && text.at(close + 2) == 'Z';
}

void waitForPredecessor()
{
    if (!qEnvironmentVariableIsSet(kPredecessorVariable))
        return;
    const pid_t pid = pid_t(qEnvironmentVariableIntValue(kPredecessorVariable));
    qunsetenv(kPredecessorVariable);
    if (pid <= 0)
        return;
    const auto deadline = std::chrono::steady_clock::now() + kPredecessorTimeout;
    while (!processEnded(pid)) {
        if (std::chrono::steady_clock::now() > deadline) {
            LOG(WARNING) << "opengl: the editor being restarted (process " << pid << ") has not ended; going on";
            return;
        }
        // No event loop exists yet: this process has nothing else to do meanwhile.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace App
} // namespace Tavrin
