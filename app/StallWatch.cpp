#include "StallWatch.h"

#include <glog/logging.h>

namespace {
constexpr int kTickMs = 5;
}

StallWatch::StallWatch(int thresholdMs, QObject* parent) : QObject(parent), m_thresholdMs(thresholdMs)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(kTickMs);
    connect(&m_timer, &QTimer::timeout, this, &StallWatch::tick);
    m_clock.start();
    m_timer.start();
}

StallWatch::~StallWatch()
{
    LOG(INFO) << "stalls: longest " << m_longest << " ms, " << m_stalls << " over " << m_thresholdMs << " ms";
}

void StallWatch::tick()
{
    const qint64 now = m_clock.elapsed();
    const qint64 late = now - m_last - kTickMs;
    m_last = now;
    if (late > m_longest)
        m_longest = late;
    if (late > m_thresholdMs) {
        ++m_stalls;
        LOG(INFO) << "stall: " << late << " ms";
    }
}
