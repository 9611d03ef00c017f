// What lies under the resting pointer, and how it scrolls.
#include <algorithm>
#include <optional>
#include <vector>

#include "tools/probe/checker.h"

namespace probe {

namespace {

constexpr int kRestMs = 1000;
constexpr int kPatienceMs = 60000;
constexpr int kBetweenNotchesMs = 2000;

struct Place {
    Task task;
    const char* row;
    std::vector<std::string> classes;  // empty: none of those that the plug-in scrolls
};
const std::vector<Place>& places() {
    static const std::vector<Place> kPlaces = {
        {Task::restTree, "pointer.tree", {"SysTreeView32", "TreeView", "Tree"}},
        {Task::restList, "pointer.list", {"SysListView32", "ListBox", "List"}},
        {Task::restBrowser, "pointer.browser", {"Internet Explorer_Server"}},
        {Task::restToolbar, "pointer.toolbar", {"ToolbarWindow32"}},
        {Task::restGraphics, "pointer.graphics", {}},
    };
    return kPlaces;
}
constexpr const char* kScrolled[] = {"SysTreeView32", "TreeView", "SysListView32",           "ListBox",
                                     "Edit",          "GXWND",    "ToolbarWindow32",         "uintGraphDrawArea",
                                     "List",          "Tree",     "Internet Explorer_Server"};

bool isOneOf(const std::string& name, const auto& names) {
    return std::ranges::any_of(names, [&](const auto& known) { return name == known; });
}

bool isOwnProcess(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
}

int positionOf(HWND window) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    return GetScrollInfo(window, SB_VERT, &info) ? info.nPos : -1;
}

class PointerChecker : public Checker {
  public:
    explicit PointerChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void perform(Task task, bool yes) override {
        if (task == Task::wheelMoved) {
            return mFindings.tell("scroll.wheel", yes, yes ? "the user says yes" : "the user says no");
        }
        if (textOf(task).kind != TaskKind::rest) return;
        mTask = task;
        mGiveUp = Deadline(kPatienceMs);
        mRest = Deadline(kRestMs);
        mContext.begin(task);
    }

    void tick() override {
        turnBack();
        if (!mTask) return;
        POINT at{};
        GetCursorPos(&at);
        const HWND window = WindowFromPoint(at);
        const bool isElsewhere = window == nullptr || !isOwnProcess(window) ||
                                 GetWindowThreadProcessId(window, nullptr) == mContext.windowThread;
        if (isElsewhere || at.x != mAt.x || at.y != mAt.y) mRest = Deadline(kRestMs);
        mAt = at;
        const bool isGivenUp = mGiveUp.isOver();
        if (!isGivenUp && !mRest.isOver()) return;
        const Task task = *mTask;
        mTask.reset();
        if (!isGivenUp) restedOn(task, window);
        if (!mWheelWindow) mContext.end();
    }

  private:
    void restedOn(Task task, HWND window) {
        if (task == Task::scrollBars) return scrollByLine(window);
        if (task == Task::scrollWheel) return turnWheel(window);
        const auto place = std::ranges::find(places(), task, &Place::task);
        if (place == places().end()) return;
        const std::string name = classOf(window);
        const bool isAsAssumed = place->classes.empty() ? !isOneOf(name, kScrolled) : isOneOf(name, place->classes);
        mFindings.tell(place->row, isAsAssumed, name + " in " + classOf(GetParent(window)));
    }

    void scrollByLine(HWND window) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_ALL;
        const std::string name = classOf(window);
        const bool hasRange = GetScrollInfo(window, SB_VERT, &info) != 0 && info.nMax > info.nMin;
        if (!hasRange) return mFindings.tell("scroll.bars", false, name + " tells no range");
        const bool isAtEnd = info.nPos + static_cast<int>(info.nPage) > info.nMax;
        const int before = info.nPos;
        int between = before;
        mContext.attempt("scroll.bars", [&] {
            SendMessageW(window, WM_VSCROLL, isAtEnd ? SB_LINEUP : SB_LINEDOWN, 0);
            between = positionOf(window);
            SendMessageW(window, WM_VSCROLL, isAtEnd ? SB_LINEDOWN : SB_LINEUP, 0);
        });
        const int after = positionOf(window);
        mFindings.tell("scroll.bars", between != before && after == before,
                       name + " from " + std::to_string(info.nMin) + " to " + std::to_string(info.nMax) + ", page " +
                           std::to_string(info.nPage) + ": " + std::to_string(before) + ", " + std::to_string(between) +
                           ", " + std::to_string(after));
    }

    void turnWheel(HWND window) {
        const bool isCreos = GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
        mFindings.tell("scroll.thread", isCreos,
                       classOf(window) + (isCreos ? ", Creo's own thread" : ", another thread"));
        postNotch(window, -WHEEL_DELTA);
        mWheelWindow = window;
        mNotch = Deadline(kBetweenNotchesMs);
    }

    void turnBack() {
        if (!mWheelWindow || !mNotch.isOver()) return;
        postNotch(*mWheelWindow, WHEEL_DELTA);
        mWheelWindow.reset();
        mContext.end();
    }

    void postNotch(HWND window, int delta) const {
        PostMessageW(window, WM_MOUSEWHEEL, static_cast<WPARAM>(static_cast<DWORD>(delta) << 16),
                     MAKELPARAM(mAt.x, mAt.y));
    }

    Context& mContext;
    Findings& mFindings;
    std::optional<Task> mTask;
    POINT mAt{};
    Deadline mRest;
    Deadline mGiveUp;
    std::optional<HWND> mWheelWindow;
    Deadline mNotch;
};

}  // namespace

std::unique_ptr<Checker> makePointerChecker(Context& context) { return std::make_unique<PointerChecker>(context); }

}  // namespace probe
