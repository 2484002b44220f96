// The Dialog:: free functions against a scripted strategy: what reaches the strategy,
// what comes back, and the lifecycle of the installed strategy.
#include "ScriptedDialogStrategy.h"

#include <Dialog/DialogStrategy.h>

#include <QApplication>
#include <QtTest>

namespace {
// Counts its own destruction so a test can see exactly when a strategy is released.
class CountedStrategy : public ScriptedDialogStrategy
{
public:
    explicit CountedStrategy(int* destroyed) : m_destroyed(destroyed) {}
    ~CountedStrategy() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};
} // namespace

class tst_DialogForwarding : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        Dialog::initialize({});
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void answersComeBackUnchanged()
    {
        auto scripted = std::make_shared<ScriptedDialogStrategy>();
        Dialog::initialize(scripted);
        scripted->answer(QStringLiteral("alertAction"), 0x400001);
        scripted->answer(QStringLiteral("alertMissingFile"), int(Dialog::MissingFileAction::Browse));
        scripted->answer(QStringLiteral("showCrumbitInputDialog"), QStringLiteral("name"));
        scripted->answer(QStringLiteral("alertModifiedProject"), ScriptedDialogStrategy::DontSave);

        QCOMPARE(Dialog::alertAction(QStringLiteral("t"), QStringLiteral("x"), QString(), QString(), QStringLiteral("c")),
                 0x400001);
        QCOMPARE(Dialog::alertMissingFile(QStringLiteral("a.mp4"), QStringLiteral("/old")),
                 Dialog::MissingFileAction::Browse);
        QCOMPARE(Dialog::showCrumbitInputDialog(QStringLiteral("t"), QString(), QStringLiteral("Ok"),
                                                QStringLiteral("Cancel"), QStringLiteral("p")),
                 QStringLiteral("name"));
        bool save = true;
        QVERIFY(Dialog::alertModifiedProject(save));
        QVERIFY(!save);

        QCOMPARE(scripted->count(QStringLiteral("alertAction")), 1);
        QCOMPARE(scripted->lastArguments(QStringLiteral("alertMissingFile")),
                 (QVariantList{QStringLiteral("a.mp4"), QStringLiteral("/old")}));
    }

    void fourArgumentValidationAcceptsEverySoftly()
    {
        // A strategy that runs the soft validator it receives, to see what the overload passes.
        struct Probe : ScriptedDialogStrategy
        {
            bool softResult = false;
            QString softError = QStringLiteral("untouched");
            QString showValidationInputDialog(QString const&, QString const&, QString const& text,
                                              std::function<bool(QString const&, QString&)> const&,
                                              std::function<bool(QString const&, QString&)> const& soft) override
            {
                softResult = soft(text, softError);
                return text;
            }
        };
        auto probe = std::make_shared<Probe>();
        Dialog::initialize(probe);
        const auto reject = [](QString const&, QString& error) { error = QStringLiteral("no"); return false; };
        QCOMPARE(Dialog::showValidationInputDialog(QStringLiteral("t"), QStringLiteral("l"), QStringLiteral("x"), reject),
                 QStringLiteral("x"));
        QVERIFY(probe->softResult);
        QCOMPARE(probe->softError, QStringLiteral("untouched"));
    }

    void initializeReleasesThePrevious()
    {
        int destroyed = 0;
        Dialog::initialize(std::make_shared<CountedStrategy>(&destroyed));
        QCOMPARE(destroyed, 0);
        Dialog::initialize(std::make_shared<ScriptedDialogStrategy>());
        QCOMPARE(destroyed, 1);
    }

    void replacedFromInsideItsOwnDialogStaysAlive()
    {
        int destroyed = 0;
        auto first = std::make_shared<CountedStrategy>(&destroyed);
        auto second = std::make_shared<ScriptedDialogStrategy>();
        int destroyedDuringCall = -1;
        first->onCall(QStringLiteral("alertRestoreSession"), [&] {
            Dialog::initialize(second);
            destroyedDuringCall = destroyed;
        });
        first->answer(QStringLiteral("alertRestoreSession"), true);
        Dialog::initialize(first);
        first.reset(); // the installed pointer is now the only owner

        QVERIFY(Dialog::alertRestoreSession());
        QCOMPARE(destroyedDuringCall, 0);
        QCOMPARE(destroyed, 1);
        QVERIFY(!Dialog::alertRestoreSession()); // the replacement answers now
        QCOMPARE(second->count(QStringLiteral("alertRestoreSession")), 1);
    }
};

QTEST_MAIN(tst_DialogForwarding)
#include "tst_DialogForwarding.moc"
