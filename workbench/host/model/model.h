// The models that the host shows: an assembly of placed components, a part, a part with a sketch.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "toolkit/pro_toolkit.h"
#include "workbench/host/model/geometry.h"
#include "workbench/host/model/solid.h"

namespace workbench {

// Identifiers from the top assembly down; empty = the model itself.
using ComponentPath = std::vector<int>;

struct Component {
    int id = 0;
    std::string name;
    Transform position;  // within its owner
    Solid solid;         // own body; empty for a sub-assembly
    unsigned colour = 0xB0B8C0;
    std::vector<Component> children;
    bool isDeleted = false;     // kept for undo, otherwise as if it were not there
    bool isSuppressed = false;  // listed, but neither drawn nor movable

    bool isShown() const { return !isDeleted && !isSuppressed; }
};

struct Model {
    std::string name;
    ProMode mode = PRO_MODE_ASSEMBLY;
    bool isSketchActive = false;
    int window = 1;                     // number that the toolkit knows its window by
    std::vector<Component> components;  // of a part: its bodies, which are no components for the toolkit

    bool isAssembly() const { return mode == PRO_MODE_ASSEMBLY; }

    // Null when there is no such component, or when it is deleted.
    Component* find(const ComponentPath& path);

    // The same, deleted ones included; undo needs them.
    Component* findAny(const ComponentPath& path);

    // Box about everything shown, in model coordinates.
    Bounds bounds() const;
};

// Calls visit(path, component, placement in the model) for every shown component, owners before their children.
template <typename Visit>
void visitShown(const std::vector<Component>& components, const ComponentPath& above, const Transform& at,
                Visit&& visit) {
    for (const Component& component : components) {
        if (!component.isShown()) continue;
        ComponentPath path = above;
        path.push_back(component.id);
        const Transform placed = component.position * at;
        visit(path, component, placed);
        visitShown(component.children, path, placed, visit);
    }
}

// "41/3"; "" for the model itself.
std::string pathText(const ComponentPath& path);
std::optional<ComponentPath> parsePath(const std::string& text);

// The sample models, the assembly first.
std::vector<std::unique_ptr<Model>> makeSampleModels();

// Replaces an assembly's components by `count` small bodies in a block.
void fillWithComponents(Model& assembly, int count);

}  // namespace workbench
