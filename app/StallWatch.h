#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// Watches the GUI thread from inside it: a timer that should fire every few milliseconds
// measures how late it comes. Each gap longer than the threshold is logged as
// "stall: <ms> ms", and the longest as "stalls: longest <ms> ms, <n> over <threshold> ms"
// when the watch ends (klipvane --log-stalls <ms>; bench/run_intake.sh reads both).
class StallWatch : public QObject
{
public:
    explicit StallWatch(int thresholdMs, QObject* parent = nullptr);
    ~StallWatch() override;

private:
    void tick();

    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_longest = 0;
    int m_thresholdMs;
    int m_stalls = 0;
};
