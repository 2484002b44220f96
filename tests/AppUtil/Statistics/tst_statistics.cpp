// Tagged controls clicked for real (mouse events on shown widgets, triggered actions) and
// the interaction messages that reach the bus.

#include <Statistics.h>

#include <Gui/ClickableWidgets.h>

#include <QAction>
#include <QCheckBox>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

#include "TestSandbox.h"

namespace {

using Params = QMap<QString, QString>;

// Every interaction published while it lives.
struct Heard
{
    struct Entry
    {
        QString event;
        QString source;
        Params params;
    };
    QList<Entry> entries;
    PubSub::Subscription<Statistics::InteractionNotification> subscription{
        Statistics::globalObject(),
        [this](const Statistics::InteractionNotification& m) { entries.append({m.event, m.source, m.params}); }};
    QStringList events() const
    {
        QStringList list;
        for (const Entry& entry : entries)
            list << entry.event;
        return list;
    }
};

void click(QWidget* widget)
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, widget->rect().center());
}

} // namespace

class TestStatistics : public QObject
{
    Q_OBJECT

private slots:
    void setEventKeySetsSourceOnlyWhenGiven_data()
    {
        QTest::addColumn<QString>("source");
        QTest::newRow("empty source: no property") << QString();
        QTest::newRow("source given") << QStringLiteral("toolbar");
    }
    void setEventKeySetsSourceOnlyWhenGiven()
    {
        QFETCH(QString, source);
        QPushButton button;
        Statistics::setEventKey(&button, QStringLiteral("export"), source);
        QCOMPARE(button.property("statisticsEvent").toString(), QStringLiteral("export"));
        QCOMPARE(button.property("statisticsSource").isValid(), !source.isEmpty());
        QCOMPARE(button.dynamicPropertyNames().contains("statisticsSource"), !source.isEmpty());
    }

    void addEventParamReplacesAndKeepsOthers()
    {
        QAction action(nullptr);
        Statistics::addEventParam(&action, QStringLiteral("format"), QStringLiteral("mp4"));
        Statistics::addEventParam(&action, QStringLiteral("quality"), QStringLiteral("high"));
        Statistics::addEventParam(&action, QStringLiteral("format"), QStringLiteral("webm"));
        const QVariantMap params = action.property("statisticsExtraParams").toMap();
        QCOMPARE(params, (QVariantMap{{QStringLiteral("format"), QStringLiteral("webm")},
                                      {QStringLiteral("quality"), QStringLiteral("high")}}));
        Statistics::setEventKey(nullptr, QStringLiteral("x"));
        Statistics::addEventParam(nullptr, QStringLiteral("a"), QStringLiteral("b")); // no crash
    }

    // The state a checkable control reports for, and the events of clicking it from unchecked:
    // checked, unchecked, checked.
    void checkboxStateRule_data()
    {
        QTest::addColumn<int>("tagged"); // -1: no state property
        QTest::addColumn<bool>("asAction");
        QTest::addColumn<int>("expected");
        for (bool asAction : {false, true}) {
            const char* kind = asAction ? "action" : "checkbox";
            QTest::addRow("%s without a state: every click", kind) << -1 << asAction << 3;
            QTest::addRow("%s state true: only when it becomes checked", kind) << 1 << asAction << 2;
            QTest::addRow("%s state false: only when it becomes unchecked", kind) << 0 << asAction << 1;
        }
    }
    void checkboxStateRule()
    {
        QFETCH(int, tagged);
        QFETCH(bool, asAction);
        QFETCH(int, expected);
        Heard heard;
        QWidget window;
        auto* box = new QCheckBox(QStringLiteral("Snap"), &window);
        auto* action = new QAction(QStringLiteral("Snap"), &window);
        action->setCheckable(true);
        QObject* tagTarget = asAction ? static_cast<QObject*>(action) : box;
        Statistics::setEventKey(tagTarget, QStringLiteral("snap"));
        if (tagged >= 0) {
            if (asAction)
                Statistics::setEventState(action, tagged == 1);
            else
                Statistics::setEventState(box, tagged == 1);
        }
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        Statistics::parse(&window);
        Statistics::parse(action);
        for (int i = 0; i < 3; ++i) {
            if (asAction)
                action->trigger();
            else
                click(box);
        }
        QCOMPARE(heard.entries.size(), expected);
    }

    void parsingTwiceConnectsOnce()
    {
        Heard heard;
        QWidget window;
        auto* layout = new QVBoxLayout(&window);
        auto* button = new QPushButton(QStringLiteral("Export"));
        layout->addWidget(button);
        Statistics::setEventKey(button, QStringLiteral("export"), QStringLiteral("toolbar"));
        auto* menuBar = new QMenuBar(&window);
        QMenu* menu = menuBar->addMenu(QStringLiteral("File"));
        QAction* save = menu->addAction(QStringLiteral("Save"));
        Statistics::setEventKey(save, QStringLiteral("save"), QStringLiteral("fileMenu"));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (int i = 0; i < 2; ++i) {
            Statistics::parse(&window);
            Statistics::parse(menuBar);
            Statistics::parse(menu);
            Statistics::parse(menu->actions());
        }
        click(button);
        save->trigger();
        QCOMPARE(heard.events(), (QStringList{QStringLiteral("export"), QStringLiteral("save")}));
        QCOMPARE(heard.entries.at(0).source, QStringLiteral("toolbar"));
        QCOMPARE(heard.entries.at(1).source, QStringLiteral("fileMenu"));
    }

    // The tags are read when the control is parsed; what changes afterwards is not sent.
    void tagsAreReadAtParseTime()
    {
        Heard heard;
        QToolButton button;
        Statistics::setEventKey(&button, QStringLiteral("zoomIn"), QStringLiteral("timeline"));
        Statistics::addEventParam(&button, QStringLiteral("step"), QStringLiteral("1.25"));
        button.setProperty("statisticsExtraParams",
                           QVariantMap{{QStringLiteral("step"), 2}, {QStringLiteral("kinds"), QStringList{"a", "b"}}});
        Statistics::parse(&button);
        Statistics::addEventParam(&button, QStringLiteral("late"), QStringLiteral("yes"));
        Statistics::setEventKey(&button, QStringLiteral("renamed"), QStringLiteral("elsewhere"));
        button.click();
        QCOMPARE(heard.entries.size(), 1);
        QCOMPARE(heard.entries.at(0).event, QStringLiteral("zoomIn"));
        QCOMPARE(heard.entries.at(0).source, QStringLiteral("timeline"));
        QCOMPARE(heard.entries.at(0).params,
                 (Params{{QStringLiteral("step"), QStringLiteral("2")}, {QStringLiteral("kinds"), QStringLiteral("a,b")}}));
    }

    void plainWidgetIsNotConnectedButItsChildrenAre()
    {
        Heard heard;
        QWidget window;
        Statistics::setEventKey(&window, QStringLiteral("panel"));
        auto* inner = new QWidget(&window);
        auto* button = new QPushButton(QStringLiteral("Go"), inner);
        Statistics::setEventKey(button, QStringLiteral("go"));
        auto* label = new Tavrin::Gui::ZLabel(QStringLiteral("link"), inner);
        label->move(0, 40);
        Statistics::setEventKey(label, QStringLiteral("link"));
        auto* split = new Tavrin::Gui::ButtonWithMenu(QStringLiteral("Export"), inner);
        split->move(0, 80);
        Statistics::setEventKey(split, QStringLiteral("exportSplit"));
        // A context menu that is a child of a widget is parsed as a menu: its actions count.
        auto* menu = new QMenu(inner);
        QAction* entry = menu->addAction(QStringLiteral("Entry"));
        Statistics::setEventKey(entry, QStringLiteral("menuEntry"));
        window.resize(300, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        const int before = Statistics::connectedCount();
        Statistics::parse(&window);
        QCOMPARE(Statistics::connectedCount() - before, 4); // button, label, split, entry
        click(button);
        click(label);
        click(split->button());
        entry->trigger();
        QCOMPARE(heard.events(), (QStringList{"go", "link", "exportSplit", "menuEntry"}));
    }

    void nullIsIgnored()
    {
        Heard heard;
        Statistics::parse(static_cast<QWidget*>(nullptr));
        Statistics::parse(static_cast<QMenuBar*>(nullptr));
        Statistics::parse(static_cast<QMenu*>(nullptr));
        Statistics::parse(static_cast<QAction*>(nullptr));
        Statistics::parse(QList<QAction*>{nullptr});
        Statistics::setEventState(static_cast<QAbstractButton*>(nullptr), true);
        QVERIFY(heard.entries.isEmpty());
    }

    // A destroyed control leaves the registry: another one at the same address is connected.
    void destroyedControlsLeaveTheRegistry()
    {
        Heard heard;
        const int before = Statistics::connectedCount();
        for (int i = 0; i < 3; ++i) {
            auto button = std::make_unique<QPushButton>();
            Statistics::setEventKey(button.get(), QStringLiteral("again"));
            Statistics::parse(button.get());
            QCOMPARE(Statistics::connectedCount(), before + 1);
            button->click();
        }
        QCOMPARE(Statistics::connectedCount(), before);
        QCOMPARE(heard.entries.size(), 3);
    }
};

QTEST_MAIN(TestStatistics)
#include "tst_statistics.moc"
