#include "PubSub/PubSub.h"

#include <algorithm>
#include <map>
#include <mutex>

namespace PubSub {
namespace Details {

MessageBase::~MessageBase() = default;
SubscriberBase::~SubscriberBase() = default;

namespace {
using Key = std::pair<std::type_index, const void*>;
}

struct Dispatcher::Impl
{
    mutable std::recursive_mutex mutex;
    std::map<Key, std::vector<SubscriberBase*>> table;
};

Dispatcher::Dispatcher() : d(std::make_unique<Impl>()) {}
Dispatcher::~Dispatcher() = default;

Dispatcher& Dispatcher::instance()
{
    // Never destroyed: subscribers that outlive main() still unsubscribe safely.
    static Dispatcher* dispatcher = new Dispatcher;
    return *dispatcher;
}

void Dispatcher::subscribe(std::type_index type, const void* source, SubscriberBase* subscriber)
{
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    auto& list = d->table[Key(type, source)];
    if (std::find(list.begin(), list.end(), subscriber) == list.end())
        list.push_back(subscriber);
}

void Dispatcher::unsubscribe(std::type_index type, const void* source, SubscriberBase* subscriber)
{
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    auto it = d->table.find(Key(type, source));
    if (it == d->table.end())
        return;
    auto& list = it->second;
    list.erase(std::remove(list.begin(), list.end(), subscriber), list.end());
    if (list.empty())
        d->table.erase(it);
}

void Dispatcher::unsubscribeAll(SubscriberBase* subscriber)
{
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    for (auto it = d->table.begin(); it != d->table.end();) {
        auto& list = it->second;
        list.erase(std::remove(list.begin(), list.end(), subscriber), list.end());
        it = list.empty() ? d->table.erase(it) : std::next(it);
    }
}

std::vector<SubscriberBase*> Dispatcher::subscribers(std::type_index type, const void* source) const
{
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    auto it = d->table.find(Key(type, source));
    return it == d->table.end() ? std::vector<SubscriberBase*>() : it->second;
}

bool Dispatcher::isSubscribed(std::type_index type, const void* source, const SubscriberBase* subscriber) const
{
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    auto it = d->table.find(Key(type, source));
    return it != d->table.end() && std::find(it->second.begin(), it->second.end(), subscriber) != it->second.end();
}

void Dispatcher::publish(std::type_index type, const MessageBase& message)
{
    const auto snapshot = subscribers(type, message.sourceObject());
    for (SubscriberBase* subscriber : snapshot) {
        if (isSubscribed(type, message.sourceObject(), subscriber))
            subscriber->deliver(message);
    }
}

} // namespace Details
} // namespace PubSub
