#include "EffectsPage.h"

#include "MainWindow.h"

#include <Serialize/Serialize.h>
#include <Translator/Translator.h>

#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QUndoStack>
#include <QVBoxLayout>

#include <glog/logging.h>

namespace {

constexpr int kIdRole = Qt::UserRole;
const QString kEffectsCollection = QStringLiteral("Effects");

// A list whose items drag as effect identifiers.
class EffectList : public QListWidget
{
public:
    EffectList()
    {
        setDragEnabled(true);
        setDragDropMode(QAbstractItemView::DragOnly);
        setSelectionMode(QAbstractItemView::SingleSelection);
    }

protected:
    QStringList mimeTypes() const override { return {QString::fromLatin1(EffectsPage::kMimeType)}; }
    QMimeData* mimeData(const QList<QListWidgetItem*> items) const override
    {
        if (items.isEmpty())
            return nullptr;
        auto* data = new QMimeData;
        data->setData(QString::fromLatin1(EffectsPage::kMimeType), items.first()->data(kIdRole).toString().toUtf8());
        return data;
    }
};

} // namespace

EffectsPage::EffectsPage(Timeline::TimelineModel* timeline, const QString& title, QWidget* parent)
    : QWidget(parent), m_timeline(timeline)
{
    setObjectName(QStringLiteral("collectionPage_Effects"));
    auto* layout = new QVBoxLayout(this);
    QLabel* heading = MainWindow::makePageTitle(title);
    auto* hint = new QLabel(tr("Select clips on the timeline, then apply an effect to them, or drag it onto a clip."));
    hint->setWordWrap(true);
    m_list = new EffectList;
    m_list->setObjectName(QStringLiteral("effectsList"));
    for (const Effect::CatalogueEntry& entry : Effect::Catalogue::entries()) {
        if (entry.collection != kEffectsCollection)
            continue;
        auto* item = new QListWidgetItem(Translator::translate(entry.nameKey), m_list);
        item->setData(kIdRole, entry.id);
        item->setToolTip(entry.id);
    }
    auto* applyButton = new QPushButton(tr("Apply to selected clips"));
    applyButton->setObjectName(QStringLiteral("applyEffectButton"));
    const auto updateButton = [this, applyButton] {
        applyButton->setEnabled(m_list->currentItem() && !m_timeline->selectedClips().isEmpty());
    };
    connect(m_list, &QListWidget::currentItemChanged, this, updateButton);
    connect(m_timeline, &Timeline::TimelineModel::changed, this, updateButton);
    connect(applyButton, &QPushButton::clicked, this, &EffectsPage::applyCurrent);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &EffectsPage::applyCurrent);
    updateButton();
    layout->addWidget(heading);
    layout->addWidget(hint);
    layout->addWidget(m_list, 1);
    layout->addWidget(applyButton, 0, Qt::AlignLeft);
}

bool EffectsPage::holds(const QString& tag)
{
    for (const Effect::CatalogueEntry& entry : Effect::Catalogue::entries())
        if (entry.tag == tag)
            return entry.collection == kEffectsCollection;
    return false;
}

void EffectsPage::applyCurrent()
{
    if (QListWidgetItem* item = m_list->currentItem())
        apply(m_timeline, item->data(kIdRole).toString(), m_timeline->selectedClips());
}

int EffectsPage::apply(Timeline::ITimeline* timeline, const QString& id, const QList<Timeline::IClip*>& clips)
{
    const std::shared_ptr<Effect::Object> effect = Effect::Object::create(id);
    if (!effect) {
        LOG(WARNING) << "effects: no effect " << id.toStdString() << " in the catalogue";
        return 0;
    }
    QList<Timeline::IClip*> targets;
    for (Timeline::IClip* clip : clips)
        if (clip && clip->takesAdjustments())
            targets << clip;
    int applied = 0;
    if (!targets.isEmpty()) {
        timeline->undoStack()->beginMacro(tr("Apply %1").arg(Translator::translate(effect->nameKey())));
        for (Timeline::IClip* clip : targets)
            if (timeline->addEffect(clip, Serialize::deepCopy(effect.get())))
                ++applied;
        timeline->undoStack()->endMacro();
    }
    LOG(INFO) << "effects: applied " << id.toStdString() << " to " << applied << " clip(s)";
    return applied;
}
