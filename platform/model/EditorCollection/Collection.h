#pragma once

#include "Timeline/Timeline.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace EditorCollection {

// An item of a collection, as the timeline takes it.
struct Item
{
    Timeline::CollectionItem content;
    // Properties an imported item brings along (its name, its category); empty for the
    // collection's own items.
    QVariantMap importProperties;
    bool isImportItem() const { return !importProperties.isEmpty(); }
};

// What a drag out of a collection names: the collection and one of its items.
class Payload
{
public:
    QString collection;
    QString itemId;

    // The item as the collection holds it now, or null when the collection or the item is
    // gone (removed while it was being dragged).
    std::shared_ptr<const Item> findItem() const;
};

// The import object a drag out of a collection carries, in the MIME type mimeType().
struct ImportObject
{
    // What the item is. Kind 4 is a part of a media file: `first` is where it starts in the
    // file and `second` how long it is, both in microseconds.
    enum Kind { Media = 1, Title = 2, Effect = 3, MediaRange = 4 };

    int kind = Media;
    Payload payload;
    qint64 first = 0;
    qint64 second = 0;

    static QString mimeType();
    QByteArray encode() const;
    // Null with `error` set when `data` is not an import object (it comes from outside).
    static std::optional<ImportObject> decode(const QByteArray& data, QString* error = nullptr);
};

// A collection of the editor (user files, effects, music...) that has a page of its own.
class ICollection
{
public:
    virtual ~ICollection() = default;
    virtual QString name() const = 0;
    // Brings the collection's page to the front of the editor.
    virtual void showPage() = 0;
    // Whether the collection offers an item of this type tag (an effect's tag, ...).
    // Collections that list no typed items hold none.
    virtual bool holds(const QString& tag) const
    {
        Q_UNUSED(tag);
        return false;
    }
    // The item `id` of the collection, or null.
    virtual std::shared_ptr<const Item> findItem(const QString& id) const
    {
        Q_UNUSED(id)
        return {};
    }
};

// The collections the running editor knows, by name.
class CollectionProvider
{
public:
    static std::shared_ptr<ICollection> collection(const QString& name);

    static void add(const std::shared_ptr<ICollection>& collection);
    static void remove(const QString& name);
    static void clear();
    static std::vector<std::shared_ptr<ICollection>> collections();
};

} // namespace EditorCollection
