// The host's timeline view takes effects dragged from the Effects page: real drag events
// carrying "application/x-klipvane-effect" with the effect identifier, dropped on a clip.

#include "TimelinePanel.h"

#include <Mime/MimeUtils.h>

#include <QApplication>
#include <QMimeData>
#include <QUndoStack>
#include <QtTest>

#include "TestSandbox.h"

class TestTimelinePanel : public QObject
{
    Q_OBJECT

private slots:
    void effectDrop_data()
    {
        QTest::addColumn<QByteArray>("effect");
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<bool>("applied");
        // The clip starts at 0 s on the first track: x from 36, y from 24 + 3.
        QTest::newRow("blur on the clip") << QByteArray("blur") << QPoint(60, 40) << true;
        QTest::newRow("identifier with a line end") << QByteArray("grayscale\r\n") << QPoint(60, 40) << true;
        QTest::newRow("unknown effect") << QByteArray("no-such-effect") << QPoint(60, 40) << false;
        QTest::newRow("empty identifier") << QByteArray() << QPoint(60, 40) << false;
        QTest::newRow("not UTF-8") << QByteArray("\xff\xfe") << QPoint(60, 40) << false;
        QTest::newRow("beside the clip") << QByteArray("blur") << QPoint(400, 40) << false;
        QTest::newRow("on the ruler") << QByteArray("blur") << QPoint(60, 5) << false;
    }

    void effectDrop()
    {
        QFETCH(QByteArray, effect);
        QFETCH(QPoint, at);
        QFETCH(bool, applied);
        Timeline::TimelineModel timeline;
        Timeline::ClipBuildingStrategy strategy;
        strategy.stillDuration = MediaTime::fromSeconds(10);
        QCOMPARE(timeline.placeMedia({QStringLiteral("/nowhere/still.png")}, strategy).size(), 1);
        Timeline::IClip* clip = timeline.clips().first();
        TimelinePanel panel(&timeline);
        panel.resize(800, 300);
        QWidget* view = panel.view();
        view->setAcceptDrops(true);
        const int steps = timeline.undoStack()->count();

        QMimeData data;
        data.setData(MimeUtils::EffectType, effect);
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view, &enter);
        QVERIFY(enter.isAccepted()); // an effect drag is taken in; where it may land is the move's answer
        QDragMoveEvent move(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view, &move);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view, &drop);
        QCOMPARE(drop.isAccepted(), applied);
        QCOMPARE(clip->effects().size(), applied ? 1 : 0);
        QCOMPARE(timeline.undoStack()->count(), steps + (applied ? 1 : 0));
        if (applied) {
            QCOMPARE(clip->effects().first()->id(), QString::fromUtf8(effect).trimmed());
            timeline.undoStack()->undo();
            QVERIFY(clip->effects().isEmpty());
        }
    }

    // Clips dropped on the view go where the pointer is: its track and time.
    void dropPlacement()
    {
        Timeline::TimelineModel timeline;
        TimelinePanel panel(&timeline);
        Timeline::ClipBuildingStrategy strategy;
        panel.dropPlacement(QPoint(36 + 120, 24 + 46 + 10), strategy); // 12 px a second: 10 s, second track
        QVERIFY(!strategy.atEnd);
        QCOMPARE(strategy.position.microseconds(), qint64(10000000));
        QCOMPARE(strategy.track, 1);
    }
};

QTEST_MAIN(TestTimelinePanel)
#include "tst_timelinepanel.moc"
