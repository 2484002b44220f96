#pragma once

#include <cstdint>

namespace Tavrin {

// A re-entrancy counter shaped like a lock; no threads are involved.
struct RecursiveBoolLock
{
    bool locked = false;
    std::uint64_t count = 0;
};

// Calls on_lock_acquired() when the lock goes from free to held and on_lock_released()
// when it goes back; nested lock()/unlock() pairs in between notify nothing.
template <class Lockable>
class NotifiedLockableAdapter
{
public:
    virtual ~NotifiedLockableAdapter() = default;

    void lock() { lockImpl() ? on_lock_acquired() : void(); }
    void unlock() { unlockImpl() ? on_lock_released() : void(); }
    void lock() const { lockImpl() ? on_lock_acquired() : void(); }
    void unlock() const { unlockImpl() ? on_lock_released() : void(); }
    bool is_locked() const { return m_lock.locked; }
    std::uint64_t lock_count() const { return m_lock.count; }

protected:
    virtual void on_lock_acquired() const {}
    virtual void on_lock_acquired() {}
    virtual void on_lock_released() const {}
    virtual void on_lock_released() {}

private:
    // Each returns whether the locked state changed. The const forms share the state, so
    // it is mutable: locking a const object must not be undefined behaviour.
    bool lockImpl() const
    {
        const bool before = m_lock.locked;
        if (m_lock.count == 0)
            m_lock.locked = true;
        ++m_lock.count;
        return !before && m_lock.locked;
    }
    bool unlockImpl() const
    {
        const bool before = m_lock.locked;
        if (m_lock.count != 0 && --m_lock.count == 0)
            m_lock.locked = false;
        return before && !m_lock.locked;
    }

    mutable Lockable m_lock;
};

} // namespace Tavrin
