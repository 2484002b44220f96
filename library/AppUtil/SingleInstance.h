#pragma once

#include "AppUtil_export.h"

#include <QString>

#include <memory>

namespace IPC {
namespace Util {

// Whether another editor process already runs, before this one builds its window.
//
//   auto instance = IPC::Util::createEditorSingleInstance();
//   if (instance->isAnotherInstanceRunning())
//       ...hand the files over to the running editor and exit...
//
// The lock is held for as long as the last shared pointer to the object lives.
class APPUTIL_EXPORT ISingleInstance
{
public:
    ISingleInstance() = default;
    ISingleInstance(const ISingleInstance&) = default;
    ISingleInstance& operator=(const ISingleInstance&) = default;
    virtual ~ISingleInstance();

    // The platform object's state flag: true when another process holds the editor's key,
    // false when this process holds it (see Tavrin::App::SingleInstance).
    virtual bool isAnotherInstanceRunning() const = 0;
    // Waits up to `timeout` milliseconds (negative: no limit) for the other process to let
    // go of the key and takes it; true when this process now holds it.
    virtual bool waitForOtherInstance(qint64 timeout) = 0;
};

// The key under which editor processes recognise each other: the customisation manager's
// single-instance key (registered in the service registry). A registry entry of the wrong
// type raises boost::bad_any_cast, a wiring mistake of the host; with no manager registered
// the key is "klipvane-editor" and a warning is logged.
APPUTIL_EXPORT QString editorSingleInstanceId();

APPUTIL_EXPORT std::shared_ptr<ISingleInstance> createEditorSingleInstance();

} // namespace Util
} // namespace IPC
