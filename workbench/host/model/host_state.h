// Everything that the host knows: models, what is selected, how it is shown, what was done. The windows show it and the
// toolkit functions answer from it. Only the user-interface thread may touch it.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "workbench/host/model/history.h"
#include "workbench/host/model/model.h"
#include "workbench/host/model/scene.h"
#include "workbench/host/model/view.h"

namespace workbench {

class HostState {
  public:
    HostState();

    // What the windows want to be told. Never empty functions.
    struct Listeners {
        std::function<void()> modelChanged = [] {};  // other model, other components
        std::function<void()> selectionChanged = [] {};
        std::function<void()> pictureChanged = [] {};  // view, style, positions
        std::function<void(const std::string&)> messageShown = [](const std::string&) {};
    } listeners;

    // Models. The current one is never null.
    const std::vector<std::unique_ptr<Model>>& models() const { return mModels; }
    Model& model() const { return *mCurrent; }
    Model* findModel(const void* handle) const;             // null when the handle is no model's
    Model* findModelByName(const std::string& name) const;  // any case, the ending may be left out
    View& view() { return mViews[mCurrent]; }
    View& viewOf(Model& model) { return mViews[&model]; }
    void resizeViews(int width, int height);
    void open(Model& model);  // makes it current, nothing selected
    void rebuildAssembly(int components);

    // Mode and window that the toolkit reports. What was set explicitly wins over what the model gives.
    ProMode mode() const;
    bool isSketchActive() const;
    int window() const;
    std::optional<ProMode> forcedMode;
    std::optional<bool> forcedSketch;
    std::optional<int> forcedWindow;

    // Selection, in the order of selecting. Paths are those of shown components, or empty for the model itself.
    const std::vector<ComponentPath>& selection() const { return mSelection; }
    void select(std::vector<ComponentPath> paths);  // unknown ones are left out
    void toggleSelected(const ComponentPath& path);
    void selectAll();

    // Edits. Each but moving records its own undo step and tells the windows.
    void setPosition(Model& model, Component& component, const ComponentPath& path, const Transform& position);
    bool deleteSelected();  // false when nothing is selected
    bool suppressSelected();
    bool resumeAll();
    bool undo();
    bool redo();
    History history;

    DisplayStyle style = DisplayStyle::SHADING;
    bool hasTriad = true;
    std::map<std::string, std::string> config;  // options, lower-case keys

    // Message line. An error is shown like any message and also goes to the standard error stream.
    void message(const std::string& text);
    void error(const std::string& text);
    const std::deque<std::string>& messages() const { return mMessages; }
    int errorCount() const { return mErrors; }

  private:
    bool changeSelected(const std::string& name, const std::function<void(Component&)>& change);
    void dropUnknownSelections();

    std::vector<std::unique_ptr<Model>> mModels;
    Model* mCurrent = nullptr;
    std::map<const Model*, View> mViews;
    std::vector<ComponentPath> mSelection;
    std::deque<std::string> mMessages;  // latest last
    int mErrors = 0;
};

HostState& host();

const char* styleName(DisplayStyle style);  // as in the macro option: "Wireframe", "Hidden line", ...
std::optional<DisplayStyle> styleByName(const std::string& name);

}  // namespace workbench
