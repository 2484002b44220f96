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

// Records every delivery as "<name>:<value>" into a shared log.
struct Recorder : PubSub::Subscriber<Ping>
{
    Recorder(QStringList& log, const char* name) : log(log), name(QLatin1String(name)) {}
    void notify(const Ping& message) override
    {
        log << QStringLiteral("%1:%2").arg(name).arg(message.value);
        if (onNotify)
            onNotify();
    }
    QStringList& log;
    QString name;
    std::function<void()> onNotify;
};

} // namespace

class TestPubSub : public QObject
{
    Q_OBJECT

private slots:
    void deliversAtOnceInSubscriptionOrder()
    {
        Source source, other;
        QStringList log;
        Recorder c(log, "c"), a(log, "a"), b(log, "b"), late(log, "late");
        c.subscribe(&source);
        a.subscribe(&source);
        b.subscribe(&source);
        PubSub::publish(Ping(&source, 1));
        PubSub::publish(Ping(&other, 9));
        QCOMPARE(log, (QStringList{"c:1", "a:1", "b:1"}));

        // Leaving and coming back puts a subscriber at the end.
        c.unsubscribe(&source);
        c.subscribe(&source);
        // One who joins during a delivery gets the next message, not this one.
        a.onNotify = [&] { late.subscribe(&source); };
        log.clear();
        PubSub::publish(Ping(&source, 2));
        PubSub::publish(Ping(&source, 3));
        QCOMPARE(log, (QStringList{"a:2", "b:2", "c:2", "a:3", "b:3", "c:3", "late:3"}));
    }

    void skipsSubscriberRemovedDuringDelivery_data()
    {
        QTest::addColumn<QString>("removal");
        QTest::addColumn<QStringList>("expected");
        const QStringList skipped{"first:1", "third:1", "first:2", "third:2"};
        QTest::newRow("next unsubscribed") << "unsubscribe" << skipped;
        // Destruction unsubscribes, even in the middle of a delivery.
        QTest::newRow("next destroyed") << "destroy" << skipped;
        // The one leaving finishes its own handler, and the ones after it are delivered.
        QTest::newRow("itself") << "self" << QStringList{"first:1", "second:1", "third:1", "second:2", "third:2"};
    }

    void skipsSubscriberRemovedDuringDelivery()
    {
        QFETCH(QString, removal);
        Source source;
        QStringList log;
        Recorder first(log, "first"), third(log, "third");
        auto second = std::make_unique<Recorder>(log, "second");
        first.subscribe(&source);
        second->subscribe(&source);
        third.subscribe(&source);
        first.onNotify = [&] {
            if (removal == QLatin1String("destroy"))
                second.reset();
            else if (second)
                (removal == QLatin1String("self") ? &first : second.get())->unsubscribe(&source);
        };
        PubSub::publish(Ping(&source, 1));
        PubSub::publish(Ping(&source, 2));
        QTEST(log, "expected");
        QCOMPARE(PubSub::Details::Dispatcher::instance().subscribers(typeid(Ping), &source).size(), size_t(2));
    }
};

QTEST_GUILESS_MAIN(TestPubSub)
#include "tst_pubsub.moc"
