#pragma once

#include <Timeline/TimelineModel.h>

#include <QWidget>

#include <memory>

class Adjustment;
class QTreeWidget;
class QTreeWidgetItem;
class QLabel;

// The adjustments of the timeline's selected clips, merged into one list: one row per effect
// or special change, acting on every selected clip that has it. A row has its name, an
// intensity slider where the effect has one, a bypass switch and a remove button; the
// effects inside a group sit indented under it. Where the clips disagree the row says so
// (the slider's value reads "mixed", the switch is partly checked) rather than show a value
// only some of them have. Every change is one undo step, whatever the number of clips.
//
// Each time the rows change it logs them, e.g.
//   adjustments: 3 clip(s): Filter: Blur 0.40 [3]; Speed [2]; Reverse [1]
// (intensity or "mixed", "bypassed" or "bypass mixed", the number of clips in brackets).
class AdjustmentsPanel : public QWidget, private Timeline::TimelineWatcher
{
    Q_OBJECT
public:
    explicit AdjustmentsPanel(Timeline::TimelineModel* timeline, QWidget* parent = nullptr);
    ~AdjustmentsPanel() override;

    // The rows as the log line gives them (without the prefix); empty without a selection.
    QString summary() const { return m_summary; }

private:
    void clipsInserted(Timeline::ITimeline&, const QList<Timeline::IClip*>&) override { scheduleRebuild(); }
    void clipsRemoved(Timeline::ITimeline&, const QList<Timeline::IClip*>&) override { scheduleRebuild(); }
    void clipsChanged(Timeline::ITimeline&, const QList<Timeline::IClip*>&) override { scheduleRebuild(); }
    void selectionChanged(Timeline::ITimeline&) override { scheduleRebuild(); }
    void timelineReset(Timeline::ITimeline&) override { scheduleRebuild(); }

    void scheduleRebuild();
    void rebuild();
    void addRow(const std::shared_ptr<Adjustment>& row, QTreeWidgetItem* parent);

    Timeline::TimelineModel* m_timeline;
    QTreeWidget* m_tree;
    QLabel* m_heading;
    bool m_rebuildPending = false;
    QString m_summary;
};
