#pragma once

#include <EditingStatistics.h>
#include <Editing/ClipAdjustments.h>
#include <Editing/TimelineAspectAdjuster.h>

#include <Timeline/TimelineModel.h>

#include <QObject>

#include <memory>

class AdjustmentsPanel;
class EffectsPage;
class MainWindow;

// The library's services over the editing model, wired into the host:
// - the Effects collection page and the adjustments panel of the selection (a dock);
// - the stabilization service: it answers Stabilization::ClipStabilizeRequest by turning
//   stabilization of the clip on or off through the model (undoable), and logs
//     stabilization: on|off <clip id>
// - the aspect offer for the first media on an empty timeline; its answer is logged from
//   the statistics message:
//     aspect: suggested <num>/<den> <w>x<h> accepted|declined
//
// A change of the project video is logged too: timeline: video <w>x<h>
class ClipServices : public QObject, private Timeline::TimelineWatcher
{
    Q_OBJECT
public:
    ClipServices(MainWindow* window, Timeline::TimelineModel* timeline, QObject* parent = nullptr);
    ~ClipServices() override;

    EffectsPage* effectsPage() const { return m_effects; }
    AdjustmentsPanel* adjustmentsPanel() const { return m_panel; }

    // Unattended runs: selects every clip that takes adjustments, applies the effect `id`
    // (if any) and the clip actions (see ClipActions::run) to them. False when one failed.
    bool applyToAll(const QString& effectId, const QString& clipActions);
    // Unattended runs: from now on the aspect offer's dialog is answered by clicking its
    // "Change" button, as a person would.
    void acceptAspectOffers();

private:
    void videoChanged(Timeline::ITimeline& timeline, const Media::Video& previous) override;

    Timeline::TimelineModel* m_timeline;
    EffectsPage* m_effects = nullptr;
    AdjustmentsPanel* m_panel = nullptr;
    PubSub::Subscription<Stabilization::ClipStabilizeRequest> m_stabilization;
    PubSub::Subscription<Statistics::AdjustProjectAspectSuggestedNotification> m_aspectLog;
    std::unique_ptr<TimelineAspectAdjuster> m_aspect;
};
