#include "workbench/host/model/host_state.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace workbench {
namespace {

constexpr std::size_t MESSAGES_KEPT = 200;

struct StyleName {
    DisplayStyle style;
    const char* name;
};
constexpr StyleName STYLE_NAMES[] = {
    {DisplayStyle::WIREFRAME, "Wireframe"},
    {DisplayStyle::HIDDEN_LINE, "Hidden line"},
    {DisplayStyle::NO_HIDDEN, "No hidden"},
    {DisplayStyle::SHADING, "Shading"},
};

bool equalsAnyCase(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

HostState& host() {
    static HostState state;
    return state;
}

HostState::HostState() : mModels(makeSampleModels()), mCurrent(mModels.front().get()) {
    for (const auto& model : mModels) mViews[model.get()].refit(model->bounds());
}

Model* HostState::findModel(const void* handle) const {
    for (const auto& model : mModels) {
        if (model.get() == handle) return model.get();
    }
    return nullptr;
}

Model* HostState::findModelByName(const std::string& name) const {
    for (const auto& model : mModels) {
        if (equalsAnyCase(model->name, name) || equalsAnyCase(model->name.substr(0, model->name.find('.')), name)) {
            return model.get();
        }
    }
    return nullptr;
}

void HostState::resizeViews(int width, int height) {
    for (auto& [model, view] : mViews) view.resize(width, height);
}

void HostState::open(Model& model) {
    mCurrent = &model;
    mSelection.clear();
    forcedMode.reset();
    forcedSketch.reset();
    forcedWindow.reset();
    listeners.modelChanged();
}

void HostState::rebuildAssembly(int components) {
    history.clear();  // its steps are about components that are gone
    fillWithComponents(*mModels.front(), components);
    viewOf(*mModels.front()).refit(mModels.front()->bounds());
    mSelection.clear();
    listeners.modelChanged();
}

ProMode HostState::mode() const { return forcedMode.value_or(mCurrent->mode); }
bool HostState::isSketchActive() const { return forcedSketch.value_or(mCurrent->isSketchActive); }
int HostState::window() const { return forcedWindow.value_or(mCurrent->window); }

void HostState::select(std::vector<ComponentPath> paths) {
    mSelection = std::move(paths);
    dropUnknownSelections();
    listeners.selectionChanged();
}

void HostState::toggleSelected(const ComponentPath& path) {
    const auto found = std::find(mSelection.begin(), mSelection.end(), path);
    if (found != mSelection.end()) {
        mSelection.erase(found);
    } else {
        mSelection.push_back(path);
    }
    dropUnknownSelections();
    listeners.selectionChanged();
}

void HostState::selectAll() {
    std::vector<ComponentPath> paths;
    for (const Component& component : mCurrent->components) {
        if (component.isShown()) paths.push_back({component.id});
    }
    select(std::move(paths));
}

void HostState::setPosition(Model& model, Component& component, const ComponentPath& path, const Transform& position) {
    const ComponentState before = stateOf(component);
    component.position = position;
    history.changed(model, path, before, "Move component");
}

bool HostState::changeSelected(const std::string& name, const std::function<void(Component&)>& change) {
    UndoStep step{name, mCurrent, {}};
    for (const ComponentPath& path : mSelection) {
        Component* component = mCurrent->find(path);
        if (component == nullptr) continue;
        const ComponentState before = stateOf(*component);
        change(*component);
        step.changes.push_back({path, before, stateOf(*component)});
    }
    if (step.changes.empty()) return false;
    history.record(std::move(step));
    dropUnknownSelections();
    listeners.modelChanged();
    return true;
}

bool HostState::deleteSelected() {
    return changeSelected("Delete", [](Component& component) { component.isDeleted = true; });
}

bool HostState::suppressSelected() {
    return changeSelected("Suppress", [](Component& component) { component.isSuppressed = true; });
}

bool HostState::resumeAll() {
    UndoStep step{"Resume", mCurrent, {}};
    for (Component& component : mCurrent->components) {
        if (component.isDeleted || !component.isSuppressed) continue;
        const ComponentState before = stateOf(component);
        component.isSuppressed = false;
        step.changes.push_back({{component.id}, before, stateOf(component)});
    }
    if (step.changes.empty()) return false;
    history.record(std::move(step));
    listeners.modelChanged();
    return true;
}

bool HostState::undo() {
    if (!history.undo()) return false;
    dropUnknownSelections();
    listeners.modelChanged();
    return true;
}

bool HostState::redo() {
    if (!history.redo()) return false;
    dropUnknownSelections();
    listeners.modelChanged();
    return true;
}

void HostState::dropUnknownSelections() {
    std::erase_if(mSelection, [this](const ComponentPath& path) {
        const Component* component = mCurrent->find(path);
        return !path.empty() && (component == nullptr || !component->isShown());
    });
}

void HostState::message(const std::string& text) {
    mMessages.push_back(text);
    if (mMessages.size() > MESSAGES_KEPT) mMessages.pop_front();
    listeners.messageShown(text);
}

void HostState::error(const std::string& text) {
    ++mErrors;
    std::fprintf(stderr, "creo_host: %s\n", text.c_str());
    std::fflush(stderr);
    message(text);
}

const char* styleName(DisplayStyle style) {
    return std::find_if(std::begin(STYLE_NAMES), std::end(STYLE_NAMES), [&](const auto& s) { return s.style == style; })
        ->name;
}

std::optional<DisplayStyle> styleByName(const std::string& name) {
    for (const auto& [style, text] : STYLE_NAMES) {
        if (name == text) return style;
    }
    return std::nullopt;
}

}  // namespace workbench
