#pragma once

#include "UniqueIPC/Frame.h"

#include <QString>

namespace Tavrin {
namespace App {

enum class DeliveryResult {
    Delivered,    // the recipient answered "handled"
    NotHandled,   // the recipient answered, but did not handle the call
    NoRecipient,  // no running application with the target id (stale sockets were removed)
    NoAnswer,     // a recipient accepted the connection but did not answer in time
    Lost          // the recipient closed the connection, or ended, before answering
};

// Sends one call and waits for its answer, without an event loop and without becoming a
// peer itself: the way a short-lived process (a second launch of the editor) hands its
// request over. The call goes to the first running instance of `call.target` that accepts
// a connection. `timeoutMs` bounds the whole exchange. A NoAnswer recipient may still
// handle the call later (it was written). After Lost the call may or may not have been
// applied: a caller that sends it again keeps `call.sender` and `call.serial` (0 is sent
// as 1), and a recipient that applied it already answers without applying it twice.
DeliveryResult SendCallAndWait(const UniqueIPC::Call& call, int timeoutMs, QString* detail = nullptr);

const char* describe(DeliveryResult result);

} // namespace App
} // namespace Tavrin
