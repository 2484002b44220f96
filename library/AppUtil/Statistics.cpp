#include "Statistics.h"

#include <Gui/ClickableWidgets.h>

#include <QAbstractButton>
#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace Statistics {

const char* const EventProperty = "statisticsEvent";
const char* const SourceProperty = "statisticsSource";
const char* const ExtraParamsProperty = "statisticsExtraParams";
const char* const CheckboxStateProperty = "statisticsCheckboxState";

namespace {

// What a control reports, read once when it is connected.
struct EventDescriptor
{
    QString event;
    QString source;
    QMap<QString, QString> params;
    std::optional<bool> checkboxState;
};

QString asText(const QVariant& value)
{
    if (value.userType() == QMetaType::QStringList || value.userType() == QMetaType::QVariantList)
        return value.toStringList().join(QLatin1Char(','));
    return value.toString();
}

EventDescriptor readDescriptor(const QObject* object, bool withState)
{
    EventDescriptor descriptor;
    descriptor.event = object->property(EventProperty).toString();
    descriptor.source = object->property(SourceProperty).toString();
    const QVariantMap extra = object->property(ExtraParamsProperty).toMap();
    for (auto it = extra.cbegin(); it != extra.cend(); ++it)
        descriptor.params.insert(it.key(), asText(it.value()));
    const QVariant state = object->property(CheckboxStateProperty);
    if (withState && state.isValid())
        descriptor.checkboxState = state.toBool();
    return descriptor;
}

// The objects already connected. Kept for the life of the process (never destroyed) so
// that controls destroyed after main returns can still leave it. GUI thread only.
QSet<const QObject*>& registry()
{
    static auto* connected = new QSet<const QObject*>;
    return *connected;
}

bool shouldConnect(const QObject* object)
{
    return object && !registry().contains(object) && object->property(EventProperty).isValid();
}

void remember(QObject* object)
{
    registry().insert(object);
    QObject::connect(object, &QObject::destroyed, [object] { registry().remove(object); });
}

void send(const EventDescriptor& descriptor)
{
    PubSub::publish(InteractionNotification(descriptor.event, descriptor.source, descriptor.params));
}

// A checkable control tagged with a state reports only when the click leaves it in that state.
auto sender(EventDescriptor descriptor)
{
    return [descriptor = std::move(descriptor)](bool checked) {
        if (descriptor.checkboxState && *descriptor.checkboxState != checked)
            return;
        send(descriptor);
    };
}

void connectWidget(QWidget* widget)
{
    if (!shouldConnect(widget))
        return;
    if (auto* label = qobject_cast<Tavrin::Gui::ZLabel*>(widget)) {
        QObject::connect(label, &Tavrin::Gui::ZLabel::clicked, label,
                         [d = readDescriptor(label, false)] { send(d); });
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        QObject::connect(button, &QAbstractButton::clicked, button, sender(readDescriptor(button, true)));
    } else if (auto* split = qobject_cast<Tavrin::Gui::ButtonWithMenu*>(widget)) {
        QObject::connect(split, &Tavrin::Gui::ButtonWithMenu::clicked, split,
                         [d = readDescriptor(split, false)] { send(d); });
    } else {
        return; // other widgets have no click to count
    }
    remember(widget);
}

} // namespace

void setEventKey(QObject* object, const QString& event, const QString& source)
{
    if (!object)
        return;
    object->setProperty(EventProperty, event);
    if (!source.isEmpty())
        object->setProperty(SourceProperty, source);
}

void addEventParam(QObject* object, const QString& name, const QString& value)
{
    if (!object)
        return;
    QVariantMap params = object->property(ExtraParamsProperty).toMap();
    params.insert(name, value);
    object->setProperty(ExtraParamsProperty, params);
}

void setEventState(QAbstractButton* button, bool state)
{
    if (button)
        button->setProperty(CheckboxStateProperty, state);
}

void setEventState(QAction* action, bool state)
{
    if (action)
        action->setProperty(CheckboxStateProperty, state);
}

void parse(QWidget* widget)
{
    // Walked with a stack of its own: a deeply nested form must not exhaust the call stack.
    std::vector<QWidget*> pending;
    if (widget)
        pending.push_back(widget);
    while (!pending.empty()) {
        QWidget* current = pending.back();
        pending.pop_back();
        connectWidget(current);
        const QObjectList& children = current->children();
        for (auto it = children.crbegin(); it != children.crend(); ++it) {
            if (auto* menu = qobject_cast<QMenu*>(*it))
                parse(menu);
            else if ((*it)->isWidgetType())
                pending.push_back(static_cast<QWidget*>(*it));
        }
    }
}

void parse(QMenu* menu)
{
    if (menu)
        parse(menu->actions());
}

void parse(QMenuBar* menuBar)
{
    if (!menuBar)
        return;
    for (QMenu* menu : menuBar->findChildren<QMenu*>())
        parse(menu);
}

void parse(QAction* action)
{
    if (!shouldConnect(action))
        return;
    QObject::connect(action, &QAction::triggered, action, sender(readDescriptor(action, true)));
    remember(action);
}

void parse(const QList<QAction*>& actions)
{
    for (QAction* action : actions)
        parse(action);
}

int connectedCount()
{
    return registry().size();
}

} // namespace Statistics
