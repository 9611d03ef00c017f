#include "workbench/host/model/scene.h"

#include <algorithm>

namespace workbench {
namespace {

constexpr Colour BACKGROUND_TOP = 0xC9D6E4;
constexpr Colour BACKGROUND_BOTTOM = 0xF4F7FA;
constexpr Colour EDGE = 0x202830;
constexpr Colour EDGE_HIDDEN = 0x8E9BA8;
constexpr Colour EDGE_SELECTED = 0x00A040;
constexpr Colour FACE_SELECTED = 0x48E070;
constexpr double SELECTED_SHARE = 0.45;
constexpr double AMBIENT = 0.45;
constexpr Vec3 LIGHT{0.30, 0.45, 0.84};  // from the viewer's upper right
constexpr double TRIAD_LENGTH = 38.0;
constexpr Vec3 TRIAD_ORIGIN{60.0, 60.0, 1e6};

struct Item {
    const Component* component;
    std::vector<Vec3> points;                // on the screen
    std::vector<std::pair<int, int>> lines;  // edges and the silhouette lines that show
    bool isSelected;
};

// Selected itself or as part of a selected sub-assembly.
bool isSelected(const std::set<ComponentPath>& selection, const ComponentPath& path) {
    for (ComponentPath above = path; !above.empty(); above.pop_back()) {
        if (selection.contains(above)) return true;
    }
    return false;
}

std::vector<std::pair<int, int>> linesOf(const Solid& solid, const Transform& onScreen) {
    auto lines = solid.edges;
    for (const auto& [from, to, normals] : solid.silhouettes) {
        const bool isFirstTowards = onScreen.direction(normals[0]).z > 0.0;
        const bool isSecondTowards = onScreen.direction(normals[1]).z > 0.0;
        if (isFirstTowards != isSecondTowards) lines.emplace_back(from, to);
    }
    return lines;
}

Colour faceColour(const Item& item, const Vec3 corners[3]) {
    const Vec3 normal = normalised(cross(corners[1] - corners[0], corners[2] - corners[0]));
    const double light = AMBIENT + (1.0 - AMBIENT) * std::abs(dot(normal, LIGHT));
    const Colour colour = item.component->colour;
    return shaded(item.isSelected ? mixed(colour, FACE_SELECTED, SELECTED_SHARE) : colour, light);
}

void paintFaces(const Item& item, int number, bool paints, Raster& raster) {
    for (const auto& [a, b, c] : item.component->solid.triangles) {
        const Vec3 corners[3] = {item.points[a], item.points[b], item.points[c]};
        raster.triangle(corners, paints ? faceColour(item, corners) : 0, number, paints);
    }
}

void paintEdges(const Item& item, Colour colour, LineVisibility visibility, Raster& raster) {
    constexpr Vec3 ASIDE[] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}};
    for (const auto& [from, to] : item.lines) {
        raster.line(item.points[from], item.points[to], colour, visibility);
        if (!item.isSelected) continue;
        for (const Vec3& aside : ASIDE) {  // selected edges are thicker
            raster.line(item.points[from] + aside, item.points[to] + aside, colour, visibility);
        }
    }
}

Colour edgeColour(const Item& item) { return item.isSelected ? EDGE_SELECTED : EDGE; }

void paintLines(const std::vector<Item>& items, DisplayStyle style, Raster& raster) {
    if (style == DisplayStyle::HIDDEN_LINE) {
        for (const Item& item : items) paintEdges(item, EDGE_HIDDEN, LineVisibility::BEHIND_ONLY, raster);
    }
    const auto visible = style == DisplayStyle::WIREFRAME ? LineVisibility::ALL : LineVisibility::IN_FRONT_ONLY;
    for (const bool selectedOnes : {false, true}) {  // selected ones last, over the others
        for (const Item& item : items) {
            if (item.isSelected == selectedOnes) paintEdges(item, edgeColour(item), visible, raster);
        }
    }
}

void paintTriad(const Transform& view, Raster& raster) {
    constexpr Vec3 AXES[] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
    constexpr Colour COLOURS[] = {0xD02020, 0x208030, 0x2040D0};
    for (std::size_t i = 0; i < 3; ++i) {
        Vec3 tip = TRIAD_ORIGIN + normalised(view.direction(AXES[i])) * TRIAD_LENGTH;
        tip.z = TRIAD_ORIGIN.z;
        for (const double aside : {0.0, 1.0}) {
            const Vec3 by{aside, aside, 0.0};
            raster.line(TRIAD_ORIGIN + by, tip + by, COLOURS[i], LineVisibility::ALL);
        }
    }
}

}  // namespace

std::vector<ComponentPath> paint(const Scene& scene, Raster& raster) {
    std::vector<ComponentPath> paths;
    std::vector<Item> items;
    visitShown(scene.model.components, {}, {},
               [&](const ComponentPath& path, const Component& component, const Transform& placed) {
                   const Transform onScreen = placed * scene.view;
                   Item item{&component, {}, linesOf(component.solid, onScreen), isSelected(scene.selection, path)};
                   item.points.reserve(component.solid.points.size());
                   for (const Vec3& p : component.solid.points) item.points.push_back(onScreen.point(p));
                   items.push_back(std::move(item));
                   paths.push_back(path);
               });
    raster.clear(BACKGROUND_TOP, BACKGROUND_BOTTOM);
    for (std::size_t i = 0; i < items.size(); ++i) {
        paintFaces(items[i], static_cast<int>(i), scene.style == DisplayStyle::SHADING, raster);
    }
    paintLines(items, scene.style, raster);
    if (scene.hasTriad) paintTriad(scene.view, raster);
    return paths;
}

}  // namespace workbench
