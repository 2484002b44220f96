#pragma once

#include <QObject>

#include <memory>

class ISystemPowersaveSuppressor;

// Keeps the desktop awake while the editor plays: one power-save suppressor of its own,
// suppressing while playback runs and released on pause and when the editor ends. Logs
// "power: inhibited via <service>", "power: released" or "power: unavailable: <why>" as the
// desktop answers.
class PowerSaving : public QObject
{
    Q_OBJECT

public:
    explicit PowerSaving(QObject* parent = nullptr);
    ~PowerSaving() override;

    bool isSuppressing() const { return m_suppressing; }

public slots:
    void setPlaybackRunning(bool running);
    // For scripts: suppress for `ms` milliseconds, then release.
    void suppressFor(int ms);

private:
    std::shared_ptr<ISystemPowersaveSuppressor> m_suppressor;
    bool m_suppressing = false;
};
