#pragma once

// A QSignalSpy for signals emitted on another thread (the IPC thread emits the base layer's
// connection signals and runs the invokers). QSignalSpy appends on the emitting thread while the
// test reads the list on its own: a data race. This spy records each emission through a queued
// connection on the thread it lives in, so the list is only ever touched by the test's thread.
// The arguments' types must be known to the meta-type system, as for any queued connection.

#include <QList>
#include <QObject>
#include <QVariant>

#include <type_traits>

namespace KvTest {

class QueuedSpy : public QObject, public QList<QList<QVariant>>
{
public:
    template <typename Sender, typename... Args>
    QueuedSpy(const Sender* sender, void (Sender::*signal)(Args...))
    {
        connect(
            sender, signal, this,
            [this](Args... arguments) { append({QVariant::fromValue(std::decay_t<Args>(arguments))...}); },
            Qt::QueuedConnection);
    }
};

} // namespace KvTest
