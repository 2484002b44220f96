#pragma once

#include "AppUtil_export.h"

#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>
#include <Statistics/TimelineWatcher.h> // AddingMethod and the messages of additions

#include <QList>
#include <QMap>
#include <QString>

class QAbstractButton;
class QAction;
class QMenu;
class QMenuBar;
class QObject;
class QWidget;

// Tagging of controls for usage statistics.
//
// A form only marks the controls whose use is counted, through dynamic properties:
//
//   Statistics::setEventKey(exportButton, QStringLiteral("export"), QStringLiteral("toolbar"));
//   Statistics::addEventParam(exportButton, QStringLiteral("format"), QStringLiteral("mp4"));
//
// Once the window is built, one `Statistics::parse(window)` connects every tagged control;
// each click or trigger then publishes an `InteractionNotification` on `globalObject()`,
// where the application's tracker listens. Parsing again is harmless: a control is
// connected once for its lifetime.
namespace Statistics {

// A tagged control was clicked or triggered.
struct APPUTIL_EXPORT InteractionNotification : Message::Types::Notification<Object>
{
    InteractionNotification(QString event, QString source, QMap<QString, QString> params)
        : Notification(globalObject()), event(std::move(event)), source(std::move(source)), params(std::move(params))
    {
    }
    QString event;
    QString source;
    QMap<QString, QString> params;
};

// Names of the dynamic properties the tags live in.
APPUTIL_EXPORT extern const char* const EventProperty;         // "statisticsEvent"
APPUTIL_EXPORT extern const char* const SourceProperty;        // "statisticsSource"
APPUTIL_EXPORT extern const char* const ExtraParamsProperty;   // "statisticsExtraParams"
APPUTIL_EXPORT extern const char* const CheckboxStateProperty; // "statisticsCheckboxState"

// Marks `object` as counted under `event`; `source` (where the event comes from) is set
// only when not empty.
APPUTIL_EXPORT void setEventKey(QObject* object, const QString& event, const QString& source = QString());
// Adds or replaces one extra parameter sent with the object's event.
APPUTIL_EXPORT void addEventParam(QObject* object, const QString& name, const QString& value);
// A checkable control tagged with a state reports only the clicks that leave it in that state.
APPUTIL_EXPORT void setEventState(QAbstractButton* button, bool state);
APPUTIL_EXPORT void setEventState(QAction* action, bool state);

// Connect the tagged controls. Tags are read at this moment: later changes of a control's
// properties do not change what it reports.
APPUTIL_EXPORT void parse(QWidget* widget);   // the widget, then its child widgets and child menus
APPUTIL_EXPORT void parse(QMenu* menu);       // the menu's actions
APPUTIL_EXPORT void parse(QMenuBar* menuBar); // every menu of the bar
APPUTIL_EXPORT void parse(QAction* action);
APPUTIL_EXPORT void parse(const QList<QAction*>& actions);

// How many controls are connected now (destroyed ones leave the count).
APPUTIL_EXPORT int connectedCount();

} // namespace Statistics
