#include "EditorCollection/Collection.h"

#include <algorithm>
#include <mutex>

namespace EditorCollection {
namespace {
std::mutex& mutex()
{
    static std::mutex m;
    return m;
}
std::vector<std::shared_ptr<ICollection>>& all()
{
    static std::vector<std::shared_ptr<ICollection>> list;
    return list;
}
} // namespace

std::shared_ptr<ICollection> CollectionProvider::collection(const QString& name)
{
    std::lock_guard<std::mutex> lock(mutex());
    for (const auto& c : all())
        if (c->name() == name)
            return c;
    return {};
}

void CollectionProvider::add(const std::shared_ptr<ICollection>& collection)
{
    if (!collection)
        return;
    remove(collection->name());
    std::lock_guard<std::mutex> lock(mutex());
    all().push_back(collection);
}

void CollectionProvider::remove(const QString& name)
{
    std::lock_guard<std::mutex> lock(mutex());
    auto& list = all();
    list.erase(std::remove_if(list.begin(), list.end(), [&](const auto& c) { return c->name() == name; }), list.end());
}

void CollectionProvider::clear()
{
    std::lock_guard<std::mutex> lock(mutex());
    all().clear();
}

std::vector<std::shared_ptr<ICollection>> CollectionProvider::collections()
{
    std::lock_guard<std::mutex> lock(mutex());
    return all();
}

} // namespace EditorCollection
