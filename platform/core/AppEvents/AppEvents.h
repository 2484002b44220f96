#pragma once

#include "PubSub/PubSub.h"

// The application-events channel: what the editor as a whole is doing, for the parts that
// behave differently meanwhile (a guided tutorial, for instance).
namespace AppEvents {

class Object
{
};
Object* globalObject();

// A guided tutorial started (`running` true) or ended. While one runs, the editor's views
// take no drops: the tutorial walks the user through fixed steps on a prepared project.
struct TutorialStateNotification : Message::Types::Notification<Object>
{
    explicit TutorialStateNotification(bool running) : Notification(globalObject()), running(running) {}
    bool running;
};

} // namespace AppEvents
