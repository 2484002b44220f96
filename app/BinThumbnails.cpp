#include "BinThumbnails.h"

#include <Media/Thumbnails.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace BinThumbnails {

QImage prepare(QStyleOptionViewItem& option, const QModelIndex& index, int role)
{
    // Every item gets the view's whole icon box, so that the names line up whether an item
    // shows a picture or a state icon (drawn centred in the box).
    if (const auto* view = qobject_cast<const QAbstractItemView*>(option.widget))
        option.decorationSize = view->iconSize();
    const QString path = index.data(role).toString();
    if (path.isEmpty())
        return QImage();
    const QImage picture = Media::Thumbnails::instance().request(path, Size);
    if (!picture.isNull()) {
        // The style still lays the item out around the decoration box.
        option.icon = QIcon();
        option.features |= QStyleOptionViewItem::HasDecoration;
    }
    return picture;
}

void draw(QPainter* painter, const QStyleOptionViewItem& option, const QImage& picture)
{
    if (picture.isNull())
        return;
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    const QRect box = style->subElementRect(QStyle::SE_ItemViewItemDecoration, &option, option.widget);
    QSize fitted = picture.size();
    fitted.scale(box.size(), Qt::KeepAspectRatio);
    QRect target(QPoint(), fitted);
    target.moveCenter(box.center());
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(target, picture);
    painter->restore();
}

void watch(QAbstractItemView* view, QObject* context)
{
    QObject::connect(&Media::Thumbnails::instance(), &Media::Thumbnails::ready, context,
                     [view] { view->viewport()->update(); });
}

} // namespace BinThumbnails
