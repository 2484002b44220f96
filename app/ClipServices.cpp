#include "ClipServices.h"

#include "AdjustmentsPanel.h"
#include "ClipActions.h"
#include "EffectsPage.h"
#include "MainWindow.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QPushButton>
#include <QTimer>

#include <glog/logging.h>

namespace {

void stabilize(const Stabilization::ClipStabilizeRequest& request)
{
    Timeline::ITimeline* timeline = request.clip ? request.clip->timeline() : nullptr;
    if (!timeline) {
        LOG(WARNING) << "stabilization: the clip is not on a timeline";
        return;
    }
    if (timeline->setStabilized(request.clip, request.stabilize))
        LOG(INFO) << "stabilization: " << (request.stabilize ? "on " : "off ") << request.clip->id().toStdString();
}

void logAspect(const Statistics::AdjustProjectAspectSuggestedNotification& offer)
{
    LOG(INFO) << "aspect: suggested " << offer.aspect.numerator() << '/' << offer.aspect.denominator() << ' '
              << offer.frameSize.width() << 'x' << offer.frameSize.height() << ' '
              << (offer.accepted ? "accepted" : "declined");
}

} // namespace

ClipServices::ClipServices(MainWindow* window, Timeline::TimelineModel* timeline, QObject* parent)
    : QObject(parent),
      m_timeline(timeline),
      m_stabilization(Stabilization::globalObject(), &stabilize),
      m_aspectLog(Statistics::globalObject(), &logAspect),
      m_aspect(std::make_unique<TimelineAspectAdjuster>(timeline))
{
    const QString title = MainWindow::tr("Effects");
    m_effects = new EffectsPage(timeline, title);
    window->addCollectionPage(QStringLiteral("Effects"), title, m_effects, &EffectsPage::holds);

    m_panel = new AdjustmentsPanel(timeline);
    auto* dock = new QDockWidget(tr("Adjustments"), window);
    dock->setObjectName(QStringLiteral("adjustmentsDock"));
    dock->setWidget(m_panel);
    dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    window->addDockWidget(Qt::RightDockWidgetArea, dock);
    watch(timeline);
}

ClipServices::~ClipServices() = default;

void ClipServices::videoChanged(Timeline::ITimeline& timeline, const Media::Video&)
{
    LOG(INFO) << "timeline: video " << timeline.video()->frameWidth() << 'x' << timeline.video()->frameHeight();
}

void ClipServices::acceptAspectOffers()
{
    auto* timer = new QTimer(this);
    timer->setInterval(10);
    connect(timer, &QTimer::timeout, this, [] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog->objectName() != QLatin1String("AdjustProjectAspectDialog"))
            return;
        if (auto* buttons = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")))
            if (QPushButton* change = buttons->button(QDialogButtonBox::Ok))
                change->click();
    });
    timer->start();
}

bool ClipServices::applyToAll(const QString& effectId, const QString& clipActions)
{
    QList<Timeline::IClip*> clips;
    for (Timeline::IClip* clip : m_timeline->clips())
        if (clip->takesAdjustments())
            clips << clip;
    m_timeline->select(clips, Timeline::ITimeline::SelectionMode::Replace);
    bool ok = true;
    if (!effectId.isEmpty())
        ok = EffectsPage::apply(m_timeline, effectId, clips) > 0 || clips.isEmpty();
    if (!clipActions.isEmpty())
        ok = ClipActions::run(m_timeline, clips, clipActions) && ok;
    return ok;
}
