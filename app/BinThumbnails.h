#pragma once

#include <QImage>
#include <QStyleOptionViewItem>

class QAbstractItemView;
class QModelIndex;
class QPainter;

// Pictures of the files in the media bin. An item whose `role` names a file shows that
// file's thumbnail in place of its icon. The picture is asked of Media::Thumbnails while the
// item is painted, so only the items on screen are ever asked for, and it is drawn straight
// from the service's bounded memory cache: the bin keeps no picture per file.
namespace BinThumbnails {

// Side of the box a picture is fitted into, in pixels (a 16:9 video gives 64 x 36).
constexpr int Size = 64;

// The picture to draw for `index`, or a null image while there is none (the item keeps its
// icon). When there is one, the icon of `option` is cleared and its place kept for it.
QImage prepare(QStyleOptionViewItem& option, const QModelIndex& index, int role);
// Draws `picture` where `option` (as prepared) puts the icon.
void draw(QPainter* painter, const QStyleOptionViewItem& option, const QImage& picture);
// Repaints `view` whenever a picture arrives, for as long as `context` lives.
void watch(QAbstractItemView* view, QObject* context);

} // namespace BinThumbnails
