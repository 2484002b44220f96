#include <App/ServiceRegistry.h>

#include <QtTest>

#include "TestSandbox.h"

Q_DECLARE_METATYPE(boost::any)

using Tavrin::App::ServiceRegistry;

namespace {

class IClock
{
public:
    virtual ~IClock() = default;
    virtual int now() const = 0;
};

class IOther
{
public:
    virtual ~IOther() = default;
};

class FixedClock : public IClock, public IOther
{
public:
    explicit FixedClock(int value) : m_value(value) {}
    int now() const override { return m_value; }

private:
    int m_value;
};

} // namespace

class TestServiceRegistry : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ServiceRegistry::instance().clear(); }

    void typedGetReturnsTheRegisteredService();
    void missingEntryIsEmpty();
    void wrongTypeRaisesBadAnyCast_data();
    void wrongTypeRaisesBadAnyCast();
    void replaceAndRemove();
};

void TestServiceRegistry::typedGetReturnsTheRegisteredService()
{
    auto clock = std::make_shared<FixedClock>(12);
    ServiceRegistry::instance().set<IClock>(clock);
    const std::shared_ptr<IClock> found = ServiceRegistry::instance().get<IClock>();
    QVERIFY(found);
    QCOMPARE(found.get(), static_cast<IClock*>(clock.get()));
    QCOMPARE(found->now(), 12);
    // The registry shares ownership: the service outlives the caller's pointer.
    clock.reset();
    QCOMPARE(ServiceRegistry::instance().get<IClock>()->now(), 12);
}

void TestServiceRegistry::missingEntryIsEmpty()
{
    QVERIFY(!ServiceRegistry::instance().get<IClock>());
    QVERIFY(ServiceRegistry::instance().entry(typeid(IClock)).empty());
}

void TestServiceRegistry::wrongTypeRaisesBadAnyCast_data()
{
    QTest::addColumn<boost::any>("entry");
    QTest::newRow("int") << boost::any(5);
    QTest::newRow("concrete shared_ptr") << boost::any(std::make_shared<FixedClock>(3));
    QTest::newRow("raw pointer") << boost::any(static_cast<IClock*>(nullptr));
    QTest::newRow("other interface") << boost::any(std::shared_ptr<IOther>(std::make_shared<FixedClock>(4)));
}

void TestServiceRegistry::wrongTypeRaisesBadAnyCast()
{
    QFETCH(boost::any, entry);
    ServiceRegistry::instance().setEntry(typeid(IClock), entry);
    QVERIFY_EXCEPTION_THROWN(ServiceRegistry::instance().get<IClock>(), boost::bad_any_cast);
}

void TestServiceRegistry::replaceAndRemove()
{
    ServiceRegistry::instance().set<IClock>(std::make_shared<FixedClock>(1));
    ServiceRegistry::instance().set<IClock>(std::make_shared<FixedClock>(2));
    QCOMPARE(ServiceRegistry::instance().get<IClock>()->now(), 2);
    ServiceRegistry::instance().remove<IClock>();
    QVERIFY(!ServiceRegistry::instance().get<IClock>());
    // Registering an empty pointer is not an entry of the wrong type.
    ServiceRegistry::instance().set<IClock>(std::shared_ptr<IClock>());
    QVERIFY(!ServiceRegistry::instance().get<IClock>());
}

QTEST_GUILESS_MAIN(TestServiceRegistry)
#include "tst_serviceregistry.moc"
