#include "PlatformHelpers.h"

#include <App/PowerManager.h>
#include <Types/UniqueId.h>

#include <QApplication>
#include <QEvent>
#include <QTimerEvent>
#include <QWidget>

#include <string>

namespace {

const char kHotkeyTag[] = "hotkeyTag";
const char kHotkeyContextTag[] = "hotkeyContextTag";

void setHotkeyTag(QObject* object, const QVariant& tag, const QString& context)
{
    if (!object)
        return;
    object->setProperty(kHotkeyTag, tag);
    object->setProperty(kHotkeyContextTag, context);
}

class PowersaveSuppressor : public ISystemPowersaveSuppressor
{
public:
    explicit PowersaveSuppressor(std::shared_ptr<Tavrin::App::IPowerManager> manager) : m_manager(std::move(manager)) {}
    void suppressPowersave() override { m_manager->SuppressPowerSaving(); }
    void restorePowersave() override { m_manager->RestorePowerSaving(); }

private:
    std::shared_ptr<Tavrin::App::IPowerManager> m_manager;
};

} // namespace

namespace Util {

void setHotkeyTagApplication(QObject* object, const QVariant& tag)
{
    setHotkeyTag(object, tag, QStringLiteral("application"));
}

void setHotkeyTagWidget(QObject* object, const QVariant& tag)
{
    setHotkeyTag(object, tag, QStringLiteral("widget"));
}

void setHotkeyTagWindow(QObject* object, const QVariant& tag)
{
    setHotkeyTag(object, tag, QStringLiteral("window"));
}

} // namespace Util

ISystemPowersaveSuppressor::~ISystemPowersaveSuppressor() = default;

Tavrin::App::MultiUserPowerManager& powersaveSuppressorManager()
{
    // Kept until the process ends; the static's initialisation makes its creation
    // thread-safe.
    static Tavrin::App::MultiUserPowerManager manager(Tavrin::App::CreateDefaultImplPowerManager());
    return manager;
}

std::shared_ptr<ISystemPowersaveSuppressor> createPowersaveSuppressor()
{
    auto& manager = powersaveSuppressorManager();
    const std::string id = std::to_string(Types::nextUniqueId());
    return std::make_shared<PowersaveSuppressor>(manager.GetPowerManager(id));
}

MacModalDialogOrderKeeper::MacModalDialogOrderKeeper()
{
    if (auto* application = QCoreApplication::instance())
        application->installEventFilter(this);
}

// Destroying a QObject removes it from the filters it was installed in.
MacModalDialogOrderKeeper::~MacModalDialogOrderKeeper() = default;

bool MacModalDialogOrderKeeper::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowDeactivate && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        if (widget->isWindow() && widget == QApplication::activeModalWidget() && !m_timer)
            m_timer = startTimer(0, Qt::CoarseTimer);
    }
    return QObject::eventFilter(watched, event);
}

void MacModalDialogOrderKeeper::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer)
        return QObject::timerEvent(event);
    killTimer(m_timer);
    m_timer = 0;
    QWidget* modal = QApplication::activeModalWidget();
    if (modal && QGuiApplication::applicationState() == Qt::ApplicationActive) {
        modal->activateWindow();
        modal->raise();
    }
}
