#pragma once

#include <QMetaObject>
#include <QMutex>
#include <QObject>

#include <utility>

namespace Tavrin {
namespace Util {

// Where work on another thread delivers to an object that may be gone by then. The owner
// closes the mailbox first thing in its destructor; a worker posts through it, holding its
// lock, so it never posts to a half-destroyed receiver, and long work can ask isClosed() to
// stop early. Shared by the owner and its workers (std::shared_ptr).
//
//   auto box = std::make_shared<Mailbox>(this);
//   pool->start([box] { auto result = work([&] { return box->isClosed(); });
//                       box->post([result] { ... }); });
//   Owner::~Owner() { box->close(); }
class Mailbox
{
public:
    explicit Mailbox(QObject* receiver) : m_receiver(receiver) {}

    void close()
    {
        QMutexLocker lock(&m_mutex);
        m_receiver = nullptr;
    }

    bool isClosed()
    {
        QMutexLocker lock(&m_mutex);
        return !m_receiver;
    }

    // Runs `call` on the receiver's thread, unless the mailbox is closed (then drops it).
    template <class Call>
    void post(Call&& call)
    {
        QMutexLocker lock(&m_mutex);
        if (m_receiver)
            QMetaObject::invokeMethod(m_receiver, std::forward<Call>(call), Qt::QueuedConnection);
    }

private:
    QMutex m_mutex;
    QObject* m_receiver;
};

} // namespace Util
} // namespace Tavrin
