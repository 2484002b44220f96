#include <App/ServiceRegistry.h>

#include <QtTest>

#include "TestSandbox.h"

Q_DECLARE_METATYPE(boost::any)

using Tavrin::App::ServiceRegistry;

namespace {

struct IClock
{
    virtual ~IClock() = default;
    virtual int now() const = 0;
};

struct IOther
{
    virtual ~IOther() = default;
};

struct FixedClock : IClock, IOther
{
    int now() const override { return 3; }
};

} // namespace

class TestServiceRegistry : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { ServiceRegistry::instance().clear(); }

    void wrongTypeRaisesBadAnyCast_data()
    {
        QTest::addColumn<boost::any>("entry");
        QTest::addColumn<bool>("wrong");
        QTest::newRow("right type") << boost::any(std::shared_ptr<IClock>(std::make_shared<FixedClock>())) << false;
        QTest::newRow("int") << boost::any(5) << true;
        QTest::newRow("concrete shared_ptr") << boost::any(std::make_shared<FixedClock>()) << true;
        QTest::newRow("other interface") << boost::any(std::shared_ptr<IOther>(std::make_shared<FixedClock>())) << true;
    }

    void wrongTypeRaisesBadAnyCast()
    {
        QFETCH(boost::any, entry);
        ServiceRegistry::instance().setEntry(typeid(IClock), entry);
        QFETCH(bool, wrong);
        if (wrong)
            QVERIFY_EXCEPTION_THROWN(ServiceRegistry::instance().get<IClock>(), boost::bad_any_cast);
        else
            QCOMPARE(ServiceRegistry::instance().get<IClock>()->now(), 3);
    }
};

QTEST_GUILESS_MAIN(TestServiceRegistry)
#include "tst_serviceregistry.moc"
