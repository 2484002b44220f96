#pragma once

#include <QElapsedTimer>

#include <glog/logging.h>

namespace Statistics {
// Profiler sample names of the application's start-up.
constexpr const char PROFILER_IPC_INIT[] = "IPC init";
constexpr const char PROFILER_IPC_WAIT_INIT[] = "IPC wait init";
} // namespace Statistics

namespace Tavrin {
namespace Profiler {

// A named span of start-up work; its duration is logged at verbose level 1 (--v=1).
class Sample
{
public:
    explicit Sample(const char* name) : m_name(name) { m_clock.start(); }
    ~Sample() { VLOG(1) << "profiler: " << m_name << " " << m_clock.nsecsElapsed() / 1000 << " us"; }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

private:
    const char* m_name;
    QElapsedTimer m_clock;
};

} // namespace Profiler
} // namespace Tavrin
