#include "ActionGateway.h"

#include <App/ServiceRegistry.h>
#include <Util/SpontaneousDialog.h>

#include <QApplication>
#include <QVariant>
#include <QWidget>

#include <glog/logging.h>

#include <exception>

namespace Action {

const char* const ACTION_STARTUP = "STARTUP";
const char* const ACTION_ALL = "*";
const char* const g_BlockSpontaneousActivityFlag = "blockSpontaneousActivityFlag";

namespace {
// Actions that must not start while any modal window is up, flagged or not.
const std::set<QString>& modalWaitNames()
{
    static const std::set<QString> names{QStringLiteral("REQUEST_CHECK_AUTO_UPDATE")};
    return names;
}
// Whether Qt counts `window` as blocked by `modal`, and so sends it WindowUnblocked when
// `modal` goes. Qt tracks this only for windows that have been created.
bool blocks(const QWidget* modal, const QWidget* window)
{
    if (!window->windowHandle() || modal->window() == window->window())
        return false;
    switch (modal->windowModality()) {
    case Qt::ApplicationModal:
        return true;
    case Qt::WindowModal:
        for (const QWidget* parent = modal->parentWidget(); parent; parent = parent->parentWidget())
            if (parent->window() == window->window())
                return true;
        return false;
    case Qt::NonModal:
        break;
    }
    return false;
}

} // namespace

using Tavrin::ExternalStimulus::Action;

Gateway::Gateway(QObject* parent) : QObject(parent) {}

Gateway::~Gateway() = default;

QWidget* Gateway::blockingWindow()
{
    for (QWidget* widget = QApplication::activeModalWidget(); widget; widget = widget->parentWidget()) {
        const QVariant flag = widget->property(g_BlockSpontaneousActivityFlag);
        if (flag.isValid() && flag.toBool())
            return widget;
    }
    return nullptr;
}

void Gateway::ProposeAction(const Action& action)
{
    if (QWidget* blocking = blockingWindow()) {
        new EventWatcher(blocking, this, QEvent::Hide, action);
        return;
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (modal && modalWaitNames().count(QString::fromStdString(action.name))) {
        QWidget* mainWindow = Tavrin::Util::SpontaneousDialog::GetMainWindow();
        if (mainWindow && blocks(modal, mainWindow))
            new EventWatcher(mainWindow, this, QEvent::WindowUnblocked, action);
        else
            // The main window will never be told it is unblocked (a start-up dialog before
            // it was first shown, or a dialog modal to another window): wait for the
            // modal window itself to go instead of waiting forever.
            new EventWatcher(modal, this, QEvent::Hide, action);
        return;
    }
    if (isEnabled(action.name))
        m_storage.Add(action);
    if (m_storage.IsBusy() || is_locked())
        return;
    while (!m_storage.IsEmpty())
        m_storage.ExecAll();
}

void Gateway::CancelActions(const std::string& name)
{
    m_storage.Remove(name);
}

bool Gateway::IsBlockedActions(const std::string& name) const
{
    return m_storage.IsBlocked(name);
}

void Gateway::BlacklistAction(const std::string& name)
{
    m_blacklist.insert(name);
    filterQueue();
}

void Gateway::AllowAction(const std::string& name)
{
    m_allowed.insert(name);
}

void Gateway::on_lock_released()
{
    if (!m_storage.IsEmpty())
        ProposeAction(Action{std::string(), {}});
}

bool Gateway::isEnabled(const std::string& name) const
{
    if (m_allowed.count(name))
        return true;
    if (m_blacklist.count(ACTION_ALL))
        return false;
    return m_blacklist.count(name) == 0;
}

void Gateway::filterQueue()
{
    const auto actions = m_storage.GetActions();
    m_storage.Clear();
    for (const Action& action : actions)
        if (isEnabled(action.name))
            m_storage.Add(action);
}

void GatewayEmpty::ProposeAction(const Action&) {}
void GatewayEmpty::CancelActions(const std::string&) {}
bool GatewayEmpty::IsBlockedActions(const std::string&) const
{
    return false;
}
void GatewayEmpty::on_lock_released() {}

EventWatcher::EventWatcher(QWidget* watched, Gateway* gateway, QEvent::Type awaited, const Action& action)
    : QObject(watched), m_gateway(gateway), m_awaited(awaited), m_action(action)
{
    watched->installEventFilter(this);
}

EventWatcher::~EventWatcher()
{
    if (m_gateway)
        m_gateway->ProposeAction(m_action);
}

bool EventWatcher::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != m_awaited)
        return false;
    // Qt asks the filter installed last first. Releasing every watcher of this widget that
    // waits for the same event, in the order they were created (their order as children),
    // brings the held actions back in the order they were proposed.
    for (QObject* child : object->children()) {
        auto* watcher = qobject_cast<EventWatcher*>(child);
        if (watcher && !watcher->m_released && watcher->m_awaited == m_awaited) {
            watcher->m_released = true;
            object->removeEventFilter(watcher);
            watcher->deleteLater();
        }
    }
    return false;
}

void proposeAction(const std::string& name, const std::function<void()>& function)
{
    auto gateway = Tavrin::App::ServiceRegistry::instance().get<Tavrin::ExternalStimulus::IGateway>();
    if (!gateway) {
        // Nothing gates actions in a host without a gateway: run it rather than lose it.
        LOG(WARNING) << "No action gateway registered; running " << name << " at once";
        if (!function)
            return;
        try {
            function();
        } catch (const std::exception& e) {
            LOG(ERROR) << "Action " << name << " failed: " << e.what();
        } catch (...) {
            LOG(ERROR) << "Action " << name << " failed";
        }
        return;
    }
    gateway->ProposeAction(Action{name, function});
}

} // namespace Action
