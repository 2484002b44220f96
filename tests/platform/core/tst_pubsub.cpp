#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>

#include <QtTest>

#include "TestSandbox.h"

#include <memory>

namespace {

struct Source
{
};

struct Ping : Message::Types::Notification<Source>
{
    Ping(const Source* source, int value) : Notification(source), value(value) {}
    int value;
};

struct Pong : Message::Types::Notification<Source>
{
    using Notification::Notification;
};

struct CommandPing : Message::Types::Request<Command::Object>
{
    CommandPing() : Request(Command::globalObject()) {}
};

// Records every delivery as "<name>:<value>" into a shared log.
class Recorder : public PubSub::Subscriber<Ping>
{
public:
    Recorder(QStringList& log, QString name) : m_log(log), m_name(std::move(name)) {}
    void notify(const Ping& message) override
    {
        m_log << QStringLiteral("%1:%2").arg(m_name).arg(message.value);
        if (onNotify)
            onNotify();
    }
    std::function<void()> onNotify;

private:
    QStringList& m_log;
    QString m_name;
};

} // namespace

class TestPubSub : public QObject
{
    Q_OBJECT

private slots:
    void deliversInSubscriptionOrder();
    void skipsSubscriberRemovedDuringDelivery_data();
    void skipsSubscriberRemovedDuringDelivery();
    void destructionUnsubscribes();
    void sourcesAndTypesDoNotCross();
    void subscriptionForwardsToItsHandler();
};

void TestPubSub::deliversInSubscriptionOrder()
{
    Source source;
    QStringList log;
    Recorder c(log, QStringLiteral("c")), a(log, QStringLiteral("a")), b(log, QStringLiteral("b"));
    c.subscribe(&source);
    a.subscribe(&source);
    b.subscribe(&source);

    PubSub::publish(Ping(&source, 1));
    PubSub::publish(Ping(&source, 2));
    QCOMPARE(log, (QStringList{"c:1", "a:1", "b:1", "c:2", "a:2", "b:2"}));

    // Leaving and coming back puts a subscriber at the end.
    c.unsubscribe(&source);
    c.subscribe(&source);
    log.clear();
    PubSub::publish(Ping(&source, 3));
    QCOMPARE(log, (QStringList{"a:3", "b:3", "c:3"}));

    // One who joins during a delivery gets the next message, not this one.
    Recorder late(log, QStringLiteral("late"));
    a.onNotify = [&] { late.subscribe(&source); };
    log.clear();
    PubSub::publish(Ping(&source, 4));
    QCOMPARE(log, (QStringList{"a:4", "b:4", "c:4"}));
    PubSub::publish(Ping(&source, 5));
    QCOMPARE(log.mid(3), (QStringList{"a:5", "b:5", "c:5", "late:5"}));
}

void TestPubSub::skipsSubscriberRemovedDuringDelivery_data()
{
    QTest::addColumn<bool>("destroy");
    QTest::newRow("unsubscribed") << false;
    QTest::newRow("destroyed") << true;
}

void TestPubSub::skipsSubscriberRemovedDuringDelivery()
{
    QFETCH(bool, destroy);
    Source source;
    QStringList log;
    Recorder first(log, QStringLiteral("first"));
    auto second = std::make_unique<Recorder>(log, QStringLiteral("second"));
    Recorder third(log, QStringLiteral("third"));
    first.subscribe(&source);
    second->subscribe(&source);
    third.subscribe(&source);

    first.onNotify = [&] {
        if (destroy)
            second.reset();
        else
            second->unsubscribe(&source);
    };
    PubSub::publish(Ping(&source, 1));
    QCOMPARE(log, (QStringList{"first:1", "third:1"}));

    // A subscriber that unsubscribes itself still finishes its own handler, and the
    // ones after it are delivered.
    log.clear();
    first.onNotify = [&] { first.unsubscribe(&source); };
    PubSub::publish(Ping(&source, 2));
    QCOMPARE(log, (QStringList{"first:2", "third:2"}));
}

void TestPubSub::destructionUnsubscribes()
{
    Source source;
    QStringList log;
    {
        Recorder gone(log, QStringLiteral("gone"));
        gone.subscribe(&source);
        gone.subscribe(Command::globalObject());
        QCOMPARE(PubSub::Details::Dispatcher::instance().subscribers(typeid(Ping), &source).size(), size_t(1));
    }
    QVERIFY(PubSub::Details::Dispatcher::instance().subscribers(typeid(Ping), &source).empty());
    QVERIFY(PubSub::Details::Dispatcher::instance().subscribers(typeid(Ping), Command::globalObject()).empty());
    PubSub::publish(Ping(&source, 1));
    QVERIFY(log.isEmpty());
}

void TestPubSub::sourcesAndTypesDoNotCross()
{
    Source one, two;
    QStringList log;
    Recorder onOne(log, QStringLiteral("one")), onTwo(log, QStringLiteral("two"));
    onOne.subscribe(&one);
    onTwo.subscribe(&two);

    PubSub::publish(Ping(&two, 2));
    QCOMPARE(log, QStringList{"two:2"});
    PubSub::publish(Pong(&one));
    QCOMPARE(log, QStringList{"two:2"});

    int commandPings = 0;
    PubSub::Subscription<CommandPing> onCommand(Command::globalObject(), [&](const CommandPing&) { ++commandPings; });
    PubSub::publish(Ping(&one, 1));
    QCOMPARE(commandPings, 0);
    PubSub::publish(CommandPing());
    QCOMPARE(commandPings, 1);
    QCOMPARE(log, (QStringList{"two:2", "one:1"}));
}

void TestPubSub::subscriptionForwardsToItsHandler()
{
    Source source;
    const Source* seenSource = nullptr;
    int seenValue = 0;
    PubSub::Subscription<Ping> subscription(&source, [&](const Ping& ping) {
        seenSource = ping.source();
        seenValue = ping.value;
    });
    QVERIFY(subscription.isSubscribed(&source));
    PubSub::publish(Ping(&source, 42));
    QCOMPARE(seenValue, 42);
    QCOMPARE(seenSource, &source);

    // A subscription without a handler is harmless.
    PubSub::Subscription<Ping> silent(&source, nullptr);
    PubSub::publish(Ping(&source, 43));
    QCOMPARE(seenValue, 43);
}

QTEST_GUILESS_MAIN(TestPubSub)
#include "tst_pubsub.moc"
