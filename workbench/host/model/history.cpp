#include "workbench/host/model/history.h"

#include <algorithm>

namespace workbench {
namespace {

void apply(const UndoStep& step, bool forward) {
    for (const ComponentChange& change : step.changes) {
        Component* component = step.model->findAny(change.path);
        if (component == nullptr) continue;
        const ComponentState& state = forward ? change.after : change.before;
        component->position = state.position;
        component->isDeleted = state.isDeleted;
        component->isSuppressed = state.isSuppressed;
    }
}

ComponentChange* findChange(UndoStep& step, const ComponentPath& path) {
    const auto found = std::find_if(step.changes.begin(), step.changes.end(),
                                    [&](const ComponentChange& change) { return change.path == path; });
    return found == step.changes.end() ? nullptr : &*found;
}

bool concernSame(const UndoStep& a, const UndoStep& b) {
    return a.model == b.model && std::equal(a.changes.begin(), a.changes.end(), b.changes.begin(), b.changes.end(),
                                            [](const auto& x, const auto& y) { return x.path == y.path; });
}

}  // namespace

ComponentState stateOf(const Component& component) {
    return {component.position, component.isDeleted, component.isSuppressed};
}

void History::openDrag(Model& model) {
    if (mIsDragOpen) return;
    mIsDragOpen = true;
    mDrag = {"Move components", &model, {}};
}

void History::closeDrag(std::uint32_t nowMs) {
    if (!mIsDragOpen) return;
    mIsDragOpen = false;
    if (mDrag.changes.empty()) return;
    if (continuesDrag(mDrag, nowMs)) {
        UndoStep& last = mDone.back();
        for (std::size_t i = 0; i < last.changes.size(); ++i) last.changes[i].after = mDrag.changes[i].after;
    } else {
        record(std::move(mDrag));
    }
    mIsLastADrag = true;
    mLastDragMs = nowMs;
}

void History::changed(Model& model, const ComponentPath& path, const ComponentState& before, const std::string& name) {
    const ComponentState after = stateOf(*model.findAny(path));
    if (!mIsDragOpen || mDrag.model != &model) {
        record({name, &model, {{path, before, after}}});
    } else if (ComponentChange* change = findChange(mDrag, path)) {
        change->after = after;
    } else {
        mDrag.changes.push_back({path, before, after});
    }
}

void History::record(UndoStep step) {
    mDone.push_back(std::move(step));
    mUndone.clear();
    mIsLastADrag = false;
}

bool History::undo() {
    if (mDone.empty()) return false;
    apply(mDone.back(), false);
    mUndone.push_back(std::move(mDone.back()));
    mDone.pop_back();
    mIsLastADrag = false;
    return true;
}

bool History::redo() {
    if (mUndone.empty()) return false;
    apply(mUndone.back(), true);
    mDone.push_back(std::move(mUndone.back()));
    mUndone.pop_back();
    mIsLastADrag = false;
    return true;
}

void History::clear() {
    mDone.clear();
    mUndone.clear();
    mIsLastADrag = false;
}

const std::string& History::lastName() const {
    static const std::string NONE;
    return mDone.empty() ? NONE : mDone.back().name;
}

bool History::continuesDrag(const UndoStep& step, std::uint32_t nowMs) const {
    return mIsLastADrag && !mDone.empty() && nowMs - mLastDragMs <= DRAG_PAUSE_MS && concernSame(step, mDone.back());
}

}  // namespace workbench
