#include "PowerSaving.h"

#include <PlatformHelpers.h>

#include <QTimer>

PowerSaving::PowerSaving(QObject* parent) : QObject(parent), m_suppressor(createPowersaveSuppressor()) {}

PowerSaving::~PowerSaving()
{
    setPlaybackRunning(false);
}

void PowerSaving::setPlaybackRunning(bool running)
{
    if (running == m_suppressing)
        return;
    m_suppressing = running;
    if (running)
        m_suppressor->suppressPowersave();
    else
        m_suppressor->restorePowersave();
}

void PowerSaving::suppressFor(int ms)
{
    setPlaybackRunning(true);
    QTimer::singleShot(ms, this, [this] { setPlaybackRunning(false); });
}
