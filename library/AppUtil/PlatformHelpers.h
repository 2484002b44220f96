#pragma once

#include "AppUtil_export.h"

#include <QObject>
#include <QVariant>

#include <memory>

namespace Tavrin {
namespace App {
class MultiUserPowerManager;
}
} // namespace Tavrin

// Hotkey context tags: the application's hotkey handling reads "hotkeyTag" and
// "hotkeyContextTag" ("application", "widget" or "window") from the object a shortcut
// belongs to.
//
//   Util::setHotkeyTagWidget(playButton, QStringLiteral("play"));
namespace Util {

APPUTIL_EXPORT void setHotkeyTagApplication(QObject* object, const QVariant& tag);
APPUTIL_EXPORT void setHotkeyTagWidget(QObject* object, const QVariant& tag);
APPUTIL_EXPORT void setHotkeyTagWindow(QObject* object, const QVariant& tag);

} // namespace Util

// Keeps the desktop awake for one caller. Every suppressor is an independent user of one
// process-wide power manager: the desktop stays awake while any of them suppresses.
class APPUTIL_EXPORT ISystemPowersaveSuppressor
{
public:
    virtual ~ISystemPowersaveSuppressor();
    virtual void suppressPowersave() = 0;
    virtual void restorePowersave() = 0;
};

// Safe from any thread.
//
//   auto suppressor = createPowersaveSuppressor();
//   suppressor->suppressPowersave();   // playback started
//   suppressor->restorePowersave();    // paused (or drop the suppressor)
APPUTIL_EXPORT std::shared_ptr<ISystemPowersaveSuppressor> createPowersaveSuppressor();

// The process-wide manager behind the suppressors (created on first use).
APPUTIL_EXPORT Tavrin::App::MultiUserPowerManager& powersaveSuppressorManager();

// Brings the application's active modal dialog back in front of its parent window when the
// user switches back to the application (some window managers raise the parent instead).
class APPUTIL_EXPORT MacModalDialogOrderKeeper : public QObject
{
    Q_OBJECT

public:
    MacModalDialogOrderKeeper();
    ~MacModalDialogOrderKeeper() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    int m_timer = 0;
};
