#include "AdjustmentsPanel.h"

#include <Editing/ClipAdjustments.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSlider>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <glog/logging.h>

namespace {

enum Column { NameColumn, IntensityColumn, BypassColumn, RemoveColumn };

// The intensity as the slider and the log show it; a mixed one has no number.
QString intensityText(const std::shared_ptr<Adjustment>& row)
{
    const auto* effect = dynamic_cast<const EffectAdjustment*>(row.get());
    if (effect && effect->isIntensityMixed())
        return AdjustmentsPanel::tr("mixed");
    return QString::number(row->intensity(), 'f', 2);
}

QString describe(const std::shared_ptr<Adjustment>& row)
{
    const auto* effect = dynamic_cast<const EffectAdjustment*>(row.get());
    QString text = row->name();
    if (row->hasIntensity())
        text += QLatin1Char(' ') + (effect && effect->isIntensityMixed() ? QStringLiteral("mixed") : QString::number(row->intensity(), 'f', 2));
    if (effect && effect->isBypassMixed())
        text += QStringLiteral(" bypass mixed");
    else if (row->bypass())
        text += QStringLiteral(" bypassed");
    text += QStringLiteral(" [%1]").arg(row->clips().size());
    if (!row->innerAdjustments().isEmpty()) {
        QStringList inner;
        for (const auto& innerRow : row->innerAdjustments())
            inner << describe(innerRow);
        text += QStringLiteral(" (") + inner.join(QStringLiteral(", ")) + QLatin1Char(')');
    }
    return text;
}

} // namespace

AdjustmentsPanel::AdjustmentsPanel(Timeline::TimelineModel* timeline, QWidget* parent)
    : QWidget(parent), m_timeline(timeline)
{
    setObjectName(QStringLiteral("adjustmentsPanel"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    m_heading = new QLabel;
    m_heading->setObjectName(QStringLiteral("adjustmentsHeading"));
    layout->addWidget(m_heading);
    m_tree = new QTreeWidget;
    m_tree->setObjectName(QStringLiteral("adjustmentsList"));
    m_tree->setColumnCount(4);
    m_tree->setHeaderLabels({tr("Adjustment"), tr("Intensity"), tr("Bypass"), QString()});
    m_tree->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_tree->setSelectionMode(QAbstractItemView::NoSelection);
    m_tree->setRootIsDecorated(true);
    layout->addWidget(m_tree);
    watch(timeline);
    rebuild();
}

AdjustmentsPanel::~AdjustmentsPanel() = default;

void AdjustmentsPanel::scheduleRebuild()
{
    // Several model notifications (one per clip of a change) make one rebuild, after the
    // change, and never while a row's own control is still handling its signal.
    if (m_rebuildPending)
        return;
    m_rebuildPending = true;
    QTimer::singleShot(0, this, [this] {
        m_rebuildPending = false;
        rebuild();
    });
}

void AdjustmentsPanel::rebuild()
{
    const QList<Timeline::IClip*> clips = m_timeline->selectedClips();
    const QList<std::shared_ptr<Adjustment>> rows = ClipAdjustmentsProvider::mergedAdjustments(clips);
    m_tree->clear();
    m_heading->setText(clips.isEmpty() ? tr("Select clips on the timeline to see their adjustments.")
                                       : tr("Adjustments of %n selected clip(s)", nullptr, clips.size()));
    QStringList described;
    for (const auto& row : rows) {
        addRow(row, nullptr);
        described << describe(row);
    }
    m_tree->expandAll();
    const QString summary = clips.isEmpty() ? QString()
                                            : QStringLiteral("%1 clip(s): %2").arg(clips.size()).arg(described.isEmpty() ? QStringLiteral("none") : described.join(QStringLiteral("; ")));
    if (summary != m_summary && !summary.isEmpty())
        LOG(INFO) << "adjustments: " << summary.toStdString();
    m_summary = summary;
}

void AdjustmentsPanel::addRow(const std::shared_ptr<Adjustment>& row, QTreeWidgetItem* parent)
{
    auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(m_tree);
    item->setText(NameColumn, row->name());
    auto* effect = dynamic_cast<EffectAdjustment*>(row.get());

    if (row->hasIntensity()) {
        auto* box = new QWidget;
        auto* boxLayout = new QHBoxLayout(box);
        boxLayout->setContentsMargins(0, 0, 0, 0);
        auto* slider = new QSlider(Qt::Horizontal);
        slider->setObjectName(QStringLiteral("intensitySlider"));
        slider->setRange(0, 100);
        const bool mixed = effect && effect->isIntensityMixed();
        // A mixed value has no position of its own: the handle rests at the middle, greyed,
        // until the user moves it.
        slider->setValue(mixed ? 50 : qRound(row->intensity() * 100));
        slider->setProperty("mixed", mixed);
        auto* value = new QLabel(mixed ? QStringLiteral("\u2013") : intensityText(row));
        value->setObjectName(QStringLiteral("intensityValue"));
        value->setToolTip(mixed ? tr("The selected clips differ") : QString());
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("0.00")));
        if (mixed)
            slider->setStyleSheet(QStringLiteral("QSlider::handle:horizontal { background: palette(mid); }"));
        boxLayout->addWidget(slider);
        boxLayout->addWidget(value);
        const auto apply = [row, slider] { row->setIntensity(slider->value() / 100.0); };
        connect(slider, &QSlider::sliderReleased, this, apply);
        connect(slider, &QSlider::valueChanged, this, [slider, value, apply](int v) {
            value->setText(QString::number(v / 100.0, 'f', 2));
            if (!slider->isSliderDown())
                apply(); // keys and clicks on the groove; a drag writes once, on release
        });
        m_tree->setItemWidget(item, IntensityColumn, box);
    }

    if (row->bypassAvailable()) {
        auto* bypass = new QCheckBox;
        bypass->setObjectName(QStringLiteral("bypassSwitch"));
        const bool mixed = effect && effect->isBypassMixed();
        bypass->setTristate(mixed);
        bypass->setCheckState(mixed ? Qt::PartiallyChecked : (row->bypass() ? Qt::Checked : Qt::Unchecked));
        bypass->setToolTip(mixed ? tr("Bypassed on some of the selected clips") : tr("Bypass"));
        connect(bypass, &QCheckBox::clicked, this, [row, effect, mixed, bypass] {
            const bool on = bypass->checkState() != Qt::Unchecked;
            // A mixed row's stored switch is the first clip's: write to all, even when it
            // already has the new value.
            if (mixed && effect)
                effect->updateValue(&Effect::Object::setBypass, on);
            else
                row->setBypass(on);
        });
        m_tree->setItemWidget(item, BypassColumn, bypass);
    }

    if (!row->isInnerAdjustment()) {
        auto* remove = new QToolButton;
        remove->setObjectName(QStringLiteral("removeAdjustmentButton"));
        remove->setText(QStringLiteral("\u2715"));
        remove->setToolTip(tr("Remove from the selected clips"));
        connect(remove, &QToolButton::clicked, this, [row] { row->remove(); });
        m_tree->setItemWidget(item, RemoveColumn, remove);
    }

    for (const auto& inner : row->innerAdjustments())
        addRow(inner, item);
}
