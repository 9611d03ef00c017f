#include "workbench/host/model/model.h"

#include <algorithm>
#include <charconv>

namespace workbench {
namespace {

Component* findIn(std::vector<Component>& components, const ComponentPath& path, std::size_t level, bool withDeleted) {
    const auto found =
        std::find_if(components.begin(), components.end(), [&](const Component& c) { return c.id == path[level]; });
    if (found == components.end() || (found->isDeleted && !withDeleted)) return nullptr;
    return level + 1 == path.size() ? &*found : findIn(found->children, path, level + 1, withDeleted);
}

}  // namespace

Component* Model::find(const ComponentPath& path) {
    return path.empty() ? nullptr : findIn(components, path, 0, false);
}

Component* Model::findAny(const ComponentPath& path) {
    return path.empty() ? nullptr : findIn(components, path, 0, true);
}

Bounds Model::bounds() const {
    Bounds box;
    visitShown(components, {}, {}, [&](const ComponentPath&, const Component& component, const Transform& placed) {
        for (const Vec3& p : component.solid.points) box.add(placed.point(p));
    });
    return box;
}

std::string pathText(const ComponentPath& path) {
    std::string text;
    for (const int id : path) text += (text.empty() ? "" : "/") + std::to_string(id);
    return text;
}

std::optional<ComponentPath> parsePath(const std::string& text) {
    ComponentPath path;
    const char* at = text.data();
    const char* end = at + text.size();
    while (at < end) {
        int id = 0;
        const auto [next, error] = std::from_chars(at, end, id);
        if (error != std::errc{} || (next != end && *next != '/')) return std::nullopt;
        path.push_back(id);
        at = next == end ? end : next + 1;
    }
    return path;
}

}  // namespace workbench
