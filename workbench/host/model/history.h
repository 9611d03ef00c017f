// What was done to the assembly, for undo and redo.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/host/model/model.h"

namespace workbench {

struct ComponentState {
    Transform position;
    bool isDeleted = false;
    bool isSuppressed = false;
};

struct ComponentChange {
    ComponentPath path;
    ComponentState before;
    ComponentState after;
};

struct UndoStep {
    std::string name;
    Model* model = nullptr;
    std::vector<ComponentChange> changes;
};

ComponentState stateOf(const Component& component);

class History {
  public:
    // Dragged steps that follow each other within this time and concern the same components count as one.
    static constexpr std::uint32_t DRAG_PAUSE_MS = 1000;

    // A bracket makes one step of all changes in it. Brackets are dragged moves (ProAssemblyDynPosSet); they do not
    // nest, a second opening is ignored.
    void openDrag(Model& model);
    void closeDrag(std::uint32_t nowMs);  // milliseconds, may wrap around; an empty bracket leaves no step
    bool isDragOpen() const { return mIsDragOpen; }

    // To be called after a component was changed, with its state from before.
    void changed(Model& model, const ComponentPath& path, const ComponentState& before, const std::string& name);
    void record(UndoStep step);

    // False when there is nothing to undo or redo.
    bool undo();
    bool redo();
    void clear();

    std::size_t undoDepth() const { return mDone.size(); }
    std::size_t redoDepth() const { return mUndone.size(); }
    const std::string& lastName() const;  // of the step that undo would take back; "" for none

  private:
    bool continuesDrag(const UndoStep& step, std::uint32_t nowMs) const;

    std::vector<UndoStep> mDone;
    std::vector<UndoStep> mUndone;
    UndoStep mDrag;
    bool mIsDragOpen = false;
    bool mIsLastADrag = false;  // the last step came from a bracket that closed at mLastDragMs
    std::uint32_t mLastDragMs = 0;
};

}  // namespace workbench
