#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>
#include <typeindex>
#include <vector>

// The publish/subscribe bus of the editor.
//
// A message is a plain structure bound to a source object (its channel). Subscribers
// register per message type and per source; publishing delivers synchronously, on the
// publishing thread, in subscription order. A subscriber removed while a message is
// being delivered (unsubscribed or destroyed by an earlier handler) is skipped.
//
//   struct Saved : Message::Types::Notification<Project::Object> { using Notification::Notification; };
//   PubSub::Subscription<Saved> s(Project::globalObject(), [](const Saved&) { ... });
//   PubSub::publish(Saved(Project::globalObject()));
namespace PubSub {
namespace Details {

class MessageBase
{
public:
    virtual ~MessageBase();
    const void* sourceObject() const { return m_source; }

protected:
    explicit MessageBase(const void* source) : m_source(source) {}
    MessageBase(const MessageBase&) = default;
    MessageBase& operator=(const MessageBase&) = default;

private:
    const void* m_source;
};

class SubscriberBase
{
public:
    virtual ~SubscriberBase();
    virtual void deliver(const MessageBase& message) = 0;

protected:
    SubscriberBase() = default;
    SubscriberBase(const SubscriberBase&) = delete;
    SubscriberBase& operator=(const SubscriberBase&) = delete;
};

class Dispatcher
{
public:
    static Dispatcher& instance();

    void subscribe(std::type_index type, const void* source, SubscriberBase* subscriber);
    void unsubscribe(std::type_index type, const void* source, SubscriberBase* subscriber);
    void unsubscribeAll(SubscriberBase* subscriber);

    // Snapshot of the subscribers in subscription order.
    std::vector<SubscriberBase*> subscribers(std::type_index type, const void* source) const;
    bool isSubscribed(std::type_index type, const void* source, const SubscriberBase* subscriber) const;

    // Delivers to every subscriber of the snapshot that is still subscribed when its turn comes.
    void publish(std::type_index type, const MessageBase& message);

private:
    Dispatcher();
    ~Dispatcher();
    struct Impl;
    std::unique_ptr<Impl> d;
};

} // namespace Details

template <class Source>
class Message : public Details::MessageBase
{
public:
    using SourceType = Source;
    explicit Message(const Source* source) : MessageBase(source) {}
    const Source* source() const { return static_cast<const Source*>(sourceObject()); }
};

// Receives messages of type T from the sources it subscribed to.
template <class T>
class Subscriber : public Details::SubscriberBase
{
public:
    ~Subscriber() override { Details::Dispatcher::instance().unsubscribeAll(this); }

    void subscribe(const void* source) { Details::Dispatcher::instance().subscribe(typeid(T), source, this); }
    void unsubscribe(const void* source) { Details::Dispatcher::instance().unsubscribe(typeid(T), source, this); }
    bool isSubscribed(const void* source) const
    {
        return Details::Dispatcher::instance().isSubscribed(typeid(T), source, this);
    }

    virtual void notify(const T& message) = 0;

private:
    void deliver(const Details::MessageBase& message) final { notify(static_cast<const T&>(message)); }
};

// A subscriber that forwards to a callable: handy for hosts and tests.
template <class T>
class Subscription final : public Subscriber<T>
{
public:
    Subscription(const void* source, std::function<void(const T&)> handler) : m_handler(std::move(handler))
    {
        this->subscribe(source);
    }
    void notify(const T& message) override
    {
        if (m_handler)
            m_handler(message);
    }

private:
    std::function<void(const T&)> m_handler;
};

template <class T>
void publish(const T& message)
{
    Details::Dispatcher::instance().publish(typeid(T), message);
}

} // namespace PubSub

// Kinds of messages; a message type derives from one of them.
namespace Message {
namespace Types {
template <class Source>
struct Request : PubSub::Message<Source>
{
    using PubSub::Message<Source>::Message;
};
template <class Source>
struct Notification : PubSub::Message<Source>
{
    using PubSub::Message<Source>::Message;
};
} // namespace Types
} // namespace Message
