#include <App/PowerManager.h>

#include <QtTest>

#include <thread>

#include "TestSandbox.h"

namespace {

// The desktop's side as the shared manager sees it: the calls in order.
class RecordingPowerManager : public Tavrin::App::IPowerManager
{
public:
    void SuppressPowerSaving() override { calls.push_back("suppress"); }
    void RestorePowerSaving() override { calls.push_back("restore"); }
    std::vector<std::string> calls;
};

} // namespace

class TestMultiUserPowerManager : public QObject
{
    Q_OBJECT

private slots:
    // Steps: "<user>+" suppresses, "<user>-" restores, "<user>x" drops the user's manager.
    void oneInhibitionWhileAnyUserSuppresses_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("calls");
        QTest::newRow("one user") << QStringList{"a+", "a-"} << QStringList{"suppress", "restore"};
        QTest::newRow("overlapping users") << QStringList{"a+", "b+", "a-", "b-"} << QStringList{"suppress", "restore"};
        QTest::newRow("repeated suppression counts once") << QStringList{"a+", "a+", "a-"} << QStringList{"suppress", "restore"};
        QTest::newRow("restore without suppression") << QStringList{"a-", "b-"} << QStringList{};
        QTest::newRow("dropped while suppressing") << QStringList{"a+", "b+", "ax", "bx"} << QStringList{"suppress", "restore"};
        QTest::newRow("again after the last ended") << QStringList{"a+", "a-", "b+", "b-"}
                                                    << QStringList{"suppress", "restore", "suppress", "restore"};
    }

    void oneInhibitionWhileAnyUserSuppresses()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, calls);
        auto recorder = std::make_shared<RecordingPowerManager>();
        Tavrin::App::MultiUserPowerManager shared(recorder);
        std::map<QChar, std::shared_ptr<Tavrin::App::IPowerManager>> users;
        for (const QString& step : steps) {
            auto& user = users[step.at(0)];
            if (!user)
                user = shared.GetPowerManager(step.left(1).toStdString());
            if (step.at(1) == QLatin1Char('+'))
                user->SuppressPowerSaving();
            else if (step.at(1) == QLatin1Char('-'))
                user->RestorePowerSaving();
            else
                user.reset();
        }
        QStringList seen;
        for (const std::string& call : recorder->calls)
            seen << QString::fromStdString(call);
        QCOMPARE(seen, calls);
    }

    void usersAreKeptByIdWhileAlive()
    {
        Tavrin::App::MultiUserPowerManager shared(std::make_shared<RecordingPowerManager>());
        auto first = shared.GetPowerManager("1");
        QCOMPARE(shared.GetPowerManager("1"), first);
        auto second = shared.GetPowerManager("2");
        QVERIFY(second != first);
        second->SuppressPowerSaving();
        QCOMPARE(shared.Users(), (std::vector<std::string>{"1", "2"}));
        QCOMPARE(shared.SuppressingUsers(), std::vector<std::string>{"2"});
        second.reset();
        QCOMPARE(shared.Users(), std::vector<std::string>{"1"});
        QVERIFY(shared.SuppressingUsers().empty());
    }

    void aUserOutlivesTheManager()
    {
        auto recorder = std::make_shared<RecordingPowerManager>();
        std::shared_ptr<Tavrin::App::IPowerManager> user;
        {
            Tavrin::App::MultiUserPowerManager shared(recorder);
            user = shared.GetPowerManager("late");
            user->SuppressPowerSaving();
        } // the manager releases what it held
        user->SuppressPowerSaving();
        user.reset();
        QCOMPARE(recorder->calls, (std::vector<std::string>{"suppress", "restore"}));
    }

    void usersOnSeveralThreads()
    {
        auto recorder = std::make_shared<RecordingPowerManager>();
        Tavrin::App::MultiUserPowerManager shared(recorder);
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&shared, t] {
                for (int i = 0; i < 200; ++i) {
                    auto user = shared.GetPowerManager(std::to_string(t * 1000 + i));
                    user->SuppressPowerSaving();
                }
            });
        }
        for (auto& thread : threads)
            thread.join();
        QVERIFY(shared.SuppressingUsers().empty());
        QCOMPARE(recorder->calls.size() % 2, size_t(0));
        for (size_t i = 0; i < recorder->calls.size(); ++i)
            QCOMPARE(recorder->calls[i], std::string(i % 2 ? "restore" : "suppress"));
    }
};

QTEST_GUILESS_MAIN(TestMultiUserPowerManager)
#include "tst_multiuserpowermanager.moc"
