#pragma once

#include <Timeline/TimelineModel.h>

#include <QListWidget>
#include <QWidget>

// The "Effects" collection page: the catalogue's filters in a list. "Apply to selected
// clips" (the button, or a double click) puts the effect on every selected clip as one undo
// step; the copies share one instance identifier, so the adjustments panel shows them as
// one row. Items can also be dragged: the data is the effect's identifier in UTF-8 under
// kMimeType, for whatever view accepts such drops.
class EffectsPage : public QWidget
{
    Q_OBJECT
public:
    static constexpr const char* kMimeType = "application/x-klipvane-effect";

    EffectsPage(Timeline::TimelineModel* timeline, const QString& title, QWidget* parent = nullptr);

    // Whether the page lists an effect of this type tag (the "Effects" collection's items).
    static bool holds(const QString& tag);
    // Puts the catalogue's effect `id` on each of `clips` that takes adjustments, as one undo
    // step; logs "effects: applied <id> to <n> clip(s)" and returns n (0 for an effect the
    // catalogue does not have, logged as such).
    static int apply(Timeline::ITimeline* timeline, const QString& id, const QList<Timeline::IClip*>& clips);

    QListWidget* list() const { return m_list; }
    void applyCurrent();

private:
    Timeline::TimelineModel* m_timeline;
    QListWidget* m_list;
};
