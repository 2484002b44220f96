#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace EditorCollection {

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
