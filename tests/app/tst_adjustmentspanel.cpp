// The host's adjustments panel and Effects page with real widgets: three selected clips,
// their merged rows (mixed where they disagree), changed, bypassed and removed by clicking,
// each change one undo step; effects applied from the page and dragged from it.

#include "EditingFixtures.h"
#include "TestSandbox.h"

#include "AdjustmentsPanel.h"
#include "EffectsPage.h"

#include <Serialize/Serialize.h>

#include <QCheckBox>
#include <QLabel>
#include <QMimeData>
#include <QSlider>
#include <QStyleOptionButton>
#include <QToolButton>
#include <QTreeWidget>
#include <QUndoStack>
#include <QtTest>

using Timeline::IClip;

class tst_AdjustmentsPanel : public QObject
{
    Q_OBJECT

    FakeMedia m_media;
    std::unique_ptr<Timeline::TimelineModel> m_timeline;
    QList<IClip*> m_clips;

    // Three clips, each with a blur of the given intensity (one effect applied to all three).
    void threeClips(const QList<double>& intensities)
    {
        m_timeline = std::make_unique<Timeline::TimelineModel>();
        m_timeline->setMediaResolver(m_media.resolver());
        m_clips.clear();
        auto blur = Effect::Object::create(QStringLiteral("blur"));
        for (double intensity : intensities) {
            IClip* clip = m_timeline->placeMedia({QStringLiteral("/m/a.mp4")}, {}).first();
            auto copy = Serialize::deepCopy(blur.get());
            copy->setIntensity(intensity);
            m_timeline->addEffect(clip, copy);
            m_clips << clip;
        }
        m_timeline->select(m_clips, Timeline::ITimeline::SelectionMode::Replace);
    }
    template <class W>
    static W* control(AdjustmentsPanel& panel, const char* name)
    {
        QTreeWidget* tree = panel.findChild<QTreeWidget*>(QStringLiteral("adjustmentsList"));
        for (int column = 0; column < tree->columnCount(); ++column) {
            QWidget* widget = tree->itemWidget(tree->topLevelItem(0), column);
            if (!widget)
                continue;
            if (widget->objectName() == QLatin1String(name))
                return qobject_cast<W*>(widget);
            if (auto* inside = widget->findChild<W*>(QLatin1String(name)))
                return inside;
        }
        return nullptr;
    }
    // A control of a rebuilt row is placed by the view's next layout pass.
    template <class W>
    static W* placed(W* widget)
    {
        if (widget && !QTest::qWaitFor([widget] { return widget->isVisible() && !widget->size().isEmpty(); }))
            return nullptr;
        return widget;
    }
    // Clicks the box of a check box (a click beside it, where it has no text, does nothing).
    static void clickBox(QCheckBox* box)
    {
        QStyleOptionButton option;
        option.initFrom(box);
        QTest::mouseClick(box, Qt::LeftButton, {},
                          box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box).center());
    }
    QList<double> intensities() const
    {
        QList<double> values;
        for (IClip* clip : m_clips)
            values << (clip->effects().isEmpty() ? -1.0 : clip->effects().first()->intensity());
        return values;
    }

private slots:
    void initTestCase() { m_media.add(QStringLiteral("/m/a.mp4"), {QSize(1920, 1080)}); }

    void mergedRowControls_data()
    {
        QTest::addColumn<QList<double>>("start");
        QTest::addColumn<QString>("shown");
        QTest::newRow("agreeing") << QList<double>{0.4, 0.4, 0.4} << "0.40";
        QTest::newRow("disagreeing") << QList<double>{0.3, 0.3, 0.7} << "\u2013";
    }
    void mergedRowControls()
    {
        QFETCH(QList<double>, start);
        QFETCH(QString, shown);
        threeClips(start);
        AdjustmentsPanel panel(m_timeline.get());
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QCOMPARE(panel.findChild<QTreeWidget*>()->topLevelItemCount(), 1);
        QCOMPARE(control<QLabel>(panel, "intensityValue")->text(), shown);
        QVERIFY(panel.summary().startsWith(QStringLiteral("3 clip(s): Blur")));

        // A key on the slider writes once, to all three clips.
        QUndoStack* undo = m_timeline->undoStack();
        int steps = undo->count();
        QSlider* slider = control<QSlider>(panel, "intensitySlider");
        slider->setValue(90);
        QCOMPARE(undo->count(), steps + 1);
        QCOMPARE(intensities(), (QList<double>{0.9, 0.9, 0.9}));
        QTRY_COMPARE(control<QLabel>(panel, "intensityValue")->text(), QStringLiteral("0.90"));

        steps = undo->count();
        QCheckBox* bypassSwitch = placed(control<QCheckBox>(panel, "bypassSwitch"));
        QVERIFY(bypassSwitch);
        clickBox(bypassSwitch);
        QCOMPARE(undo->count(), steps + 1);
        for (IClip* clip : m_clips)
            QVERIFY(clip->effects().first()->bypass());

        QTRY_VERIFY(control<QCheckBox>(panel, "bypassSwitch") != bypassSwitch); // rebuilt after the change
        QToolButton* remove = placed(control<QToolButton>(panel, "removeAdjustmentButton"));
        QVERIFY(remove);
        QTest::mouseClick(remove, Qt::LeftButton);
        QCOMPARE(undo->count(), steps + 2);
        QCOMPARE(intensities(), (QList<double>{-1, -1, -1}));
        QTRY_COMPARE(panel.findChild<QTreeWidget*>()->topLevelItemCount(), 0);

        undo->undo();
        undo->undo();
        undo->undo();
        QCOMPARE(intensities(), start);
        QTRY_COMPARE(panel.findChild<QTreeWidget*>()->topLevelItemCount(), 1);
    }

    // Only some clips bypassed: the switch is partly checked, and a click bypasses all.
    void mixedBypass()
    {
        threeClips({0.5, 0.5, 0.5});
        auto bypassed = Serialize::deepCopy(m_clips.first()->effects().first());
        bypassed->setBypass(true);
        m_timeline->replaceEffect(m_clips.first(), bypassed);
        AdjustmentsPanel panel(m_timeline.get());
        panel.show();
        QVERIFY(QTest::qWaitForWindowExposed(&panel));
        QCheckBox* bypass = placed(control<QCheckBox>(panel, "bypassSwitch"));
        QVERIFY(bypass);
        QCOMPARE(bypass->checkState(), Qt::PartiallyChecked);
        const int steps = m_timeline->undoStack()->count();
        clickBox(bypass);
        QCOMPARE(bypass->checkState(), Qt::Checked);
        QCOMPARE(m_timeline->undoStack()->count(), steps + 1);
        for (IClip* clip : m_clips)
            QVERIFY(clip->effects().first()->bypass());
    }

    void effectsPage()
    {
        threeClips({});
        for (int i = 0; i < 3; ++i)
            m_clips << m_timeline->placeMedia({QStringLiteral("/m/a.mp4")}, {}).first();
        m_timeline->select(m_clips, Timeline::ITimeline::SelectionMode::Replace);
        EffectsPage page(m_timeline.get(), QStringLiteral("Effects"));
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        QListWidget* list = page.list();
        QVERIFY(list->count() > 0);
        QVERIFY(EffectsPage::holds(Effect::Catalogue::find(QStringLiteral("blur"))->tag));
        QVERIFY(!EffectsPage::holds(Effect::Catalogue::find(QStringLiteral("crop"))->tag));

        // Dragged, an item carries the effect's identifier.
        const QModelIndex first = list->model()->index(0, 0);
        std::unique_ptr<QMimeData> dragged(list->model()->mimeData({first}));
        QVERIFY(dragged);
        QCOMPARE(dragged->formats(), QStringList{EffectsPage::kMimeType});
        const QString id = QString::fromUtf8(dragged->data(EffectsPage::kMimeType));
        QVERIFY(Effect::Catalogue::find(id));

        const int steps = m_timeline->undoStack()->count();
        list->setCurrentRow(0);
        const QPoint at = list->visualItemRect(list->item(0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(m_timeline->undoStack()->count(), steps + 1);
        for (IClip* clip : m_clips) {
            QCOMPARE(clip->effects().size(), 1);
            QCOMPARE(clip->effects().first()->id(), id);
            QCOMPARE(clip->effects().first()->uid(), m_clips.first()->effects().first()->uid());
        }
        QCOMPARE(EffectsPage::apply(m_timeline.get(), QStringLiteral("no-such-effect"), m_clips), 0);
        QCOMPARE(m_timeline->undoStack()->count(), steps + 1);
    }
};

QTEST_MAIN(tst_AdjustmentsPanel)
#include "tst_adjustmentspanel.moc"
