#include "Util/StyleHint.h"

#include <QEvent>
#include <QLayout>
#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace Util {
namespace {
const char styleHintProperty[] = "styleHint";
const char colorHintProperty[] = "colorHint";

class LayoutController : public QObject
{
public:
    explicit LayoutController(QWidget* widget)
        : QObject(widget)
        , m_widget(widget)
    {
        setObjectName(QStringLiteral("layoutController"));
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_widget && event->type() == QEvent::LayoutRequest) {
            // Let the layout settle first (the filter sees the request before the layout
            // does), then follow its size hint, both growing and shrinking.
            if (QLayout* layout = m_widget->layout())
                layout->activate();
            m_widget->resize(m_widget->sizeHint().expandedTo(m_widget->minimumSizeHint()));
        }
        return false;
    }

private:
    QWidget* m_widget;
};
} // namespace

void repolish(QWidget* widget)
{
    if (!widget)
        return;
    QStyle* style = widget->style();
    style->unpolish(widget);
    style->polish(widget);
    widget->update();
}

void applyStyleHint(QWidget* widget, const QString& hint)
{
    if (!widget)
        return;
    widget->setProperty(styleHintProperty, hint);
    repolish(widget);
}

QString styleHint(const QWidget* widget)
{
    return widget ? widget->property(styleHintProperty).toString() : QString();
}

void installLayoutController(QWidget* widget)
{
    if (!widget || widget->findChild<QObject*>(QStringLiteral("layoutController"), Qt::FindDirectChildrenOnly))
        return;
    widget->installEventFilter(new LayoutController(widget));
}

} // namespace Util

namespace ColorHint {

void applyColorHint(QWidget* widget, const QString& hint)
{
    if (!widget)
        return;
    widget->setProperty(Util::colorHintProperty, hint);
    Util::repolish(widget);
}

QString colorHint(const QWidget* widget)
{
    return widget ? widget->property(Util::colorHintProperty).toString() : QString();
}

} // namespace ColorHint
