// The windows of Creo's thread.
#include <map>

#include "tools/probe/checker.h"

namespace probe {

namespace {

constexpr char kGraphicsClass[] = "PGLWindow";
constexpr int kPatienceMs = 10000;  // Creo may show its windows after the start
constexpr std::size_t kMostClasses = 60;

struct Survey {
    std::string windows;                 // top-level ones, with class and size
    std::map<std::string, int> classes;  // of those below them
    bool hasGraphics = false;
};

BOOL CALLBACK noteChild(HWND window, LPARAM survey) {
    Survey& found = *reinterpret_cast<Survey*>(survey);
    const std::string name = classOf(window);
    found.hasGraphics = found.hasGraphics || name == kGraphicsClass;
    ++found.classes[name];
    return TRUE;
}

BOOL CALLBACK noteTop(HWND window, LPARAM survey) {
    RECT place{};
    GetWindowRect(window, &place);
    reinterpret_cast<Survey*>(survey)->windows +=
        (reinterpret_cast<Survey*>(survey)->windows.empty() ? "" : ", ") + classOf(window) + " " +
        std::to_string(place.right - place.left) + "x" + std::to_string(place.bottom - place.top) +
        (IsWindowVisible(window) ? "" : " hidden") + (GetMenu(window) != nullptr ? " with a menu bar" : "");
    EnumChildWindows(window, noteChild, survey);
    return TRUE;
}

class WindowChecker : public Checker {
  public:
    explicit WindowChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void look() override {
        if (mFindings.outcome("windows.first") != Outcome::notMet &&
            mFindings.outcome("windows.graphics") != Outcome::notMet) {
            return;
        }
        Survey survey;
        EnumThreadWindows(GetCurrentThreadId(), noteTop, reinterpret_cast<LPARAM>(&survey));
        checkFirst(survey);
        checkGraphics(survey);
    }

  private:
    // Creo's main window is the one with the most in it.
    void checkFirst(const Survey& survey) {
        const HWND first = firstThreadWindow();
        Survey below;
        if (first != nullptr) EnumChildWindows(first, noteChild, reinterpret_cast<LPARAM>(&below));
        const bool isMain = first != nullptr && IsWindowVisible(first) && 2 * sum(below) >= sum(survey);
        if (isMain || mPatience.isOver()) mFindings.tell("windows.first", isMain, "in order: " + survey.windows);
    }

    void checkGraphics(const Survey& survey) {
        std::string classes;
        std::size_t left = kMostClasses;
        for (const auto& [name, count] : survey.classes) {
            if (left-- == 0) break;
            classes += (classes.empty() ? "" : ", ") + name + " " + std::to_string(count);
        }
        if (survey.hasGraphics) return mFindings.tell("windows.graphics", true, classes);
        ProMdl model = nullptr;
        bool isOpen = false;
        mContext.attempt("windows.graphics",
                         [&] { isOpen = ProMdlCurrentGet(&model) == PRO_TK_NO_ERROR && model != nullptr; });
        if (!isOpen) mPatience = Deadline(kPatienceMs);  // the window comes with the model
        if (isOpen && mPatience.isOver()) mFindings.tell("windows.graphics", false, "none, but: " + classes);
    }

    static int sum(const Survey& survey) {
        int all = 0;
        for (const auto& [name, count] : survey.classes) all += count;
        return all;
    }

    Context& mContext;
    Findings& mFindings;
    Deadline mPatience{kPatienceMs};
};

}  // namespace

std::unique_ptr<Checker> makeWindowChecker(Context& context) { return std::make_unique<WindowChecker>(context); }

}  // namespace probe
