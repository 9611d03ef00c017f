// Macros, a mapkey and a trail file, all of which run commands of the probe.
#include <fstream>

#include "tools/probe/checker.h"
#include "tools/probe/registrations.h"
#include "tools/seat/file.h"

namespace probe {

namespace {

constexpr int kPatienceMs = 5000;
constexpr char kKeys[] = "q9";
constexpr LPARAM kKeyPressed = 1;
constexpr LPARAM kKeyReleased = static_cast<LPARAM>(static_cast<LONG>(0xC0000001));

std::string macroOf(char mark) { return "~ Command `" + markCommand(mark) + "`;"; }

std::wstring wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::wstring withDoubledBackslashes(const std::wstring& path) {
    std::wstring doubled;
    for (const wchar_t c : path) doubled.append(c == L'\\' ? 2 : 1, c);
    return doubled;
}

std::filesystem::path trailFile() {
    wchar_t folder[MAX_PATH + 1] = L"";
    GetTempPathW(MAX_PATH, folder);
    return std::filesystem::path(folder) / "orbikon-probe-trail.txt";
}

void pressKeys(HWND window) {
    for (const char* key = kKeys; *key != '\0'; ++key) {
        const auto virtualKey = static_cast<WPARAM>(LOBYTE(VkKeyScanA(*key)));
        PostMessageA(window, WM_KEYDOWN, virtualKey, kKeyPressed);
        PostMessageA(window, WM_CHAR, static_cast<WPARAM>(*key), kKeyPressed);
        PostMessageA(window, WM_KEYUP, virtualKey, kKeyReleased);
    }
}

class MacroChecker : public Checker {
  public:
    explicit MacroChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void perform(Task task, bool yes) override {
        if (task == Task::macros && Context::has({"ProMacroLoad"})) loadMacros();
        if (task == Task::mapkey && Context::has({"ProConfigoptSet"})) defineMapkey();
        if (task == Task::undoAfterMove) answer("move.undo", yes);
        if (task == Task::undoAfterMacros) answer("macro.undo", yes);
        if (task == Task::undoAfterMapkey) answer("mapkey.undo", yes);
    }

    void tick() override {
        if (mAwaited == Task::start) return;
        mCame += takeMarks();
        const bool isComplete = mCame.size() >= (mAwaited == Task::macros ? 2u : 1u);
        if (!isComplete && !mDeadline.isOver()) return;
        const std::string found = mCame.empty() ? "none ran" : "ran: " + mCame;
        if (mAwaited == Task::macros) {
            mFindings.tell("macro.runs", isComplete, found);
            if (isComplete) mFindings.tell("macro.order", mCame == "BA", "loaded: AB, " + found);
        } else {
            mFindings.tell("mapkey.plays", mCame == "C", found);
            std::error_code ignored;
            std::filesystem::remove(trailFile(), ignored);
        }
        mAwaited = Task::start;
        mContext.end();
    }

  private:
    void answer(const char* row, bool yes) { mFindings.tell(row, yes, yes ? "the user says yes" : "the user says no"); }

    void await(Task task) {
        mAwaited = task;
        mDeadline = Deadline(kPatienceMs);
        mContext.begin(task);
    }

    void loadMacros() {
        takeMarks();
        mCame.clear();
        std::string results;
        const bool isTried = mContext.attempt("macro.queued", [&] {
            for (const char mark : {'A', 'B'}) {
                std::wstring macro = wide(macroOf(mark));
                results += " " + std::to_string(ProMacroLoad(macro.data()));
            }
        });
        if (!isTried) return;
        mCame = takeMarks();
        mFindings.tell(
            "macro.queued", mCame.empty(),
            "ProMacroLoad answers" + results + (mCame.empty() ? ", nothing ran inside" : ", ran inside: " + mCame));
        await(Task::macros);
    }

    void defineMapkey() {
        const std::filesystem::path file = trailFile();
        const std::wstring definition = wide(kKeys) +
                                        L" @MAPKEY_LABELOrbikon Probe;~ Command `ProCmdUtilTrailTrain` ;~ Update "
                                        L"`file_open` `Inputname` `" +
                                        withDoubledBackslashes(file.wstring()) +
                                        L"`;~ Command `ProFileSelPushOpen@context_dlg_open_cmd`;";
        std::wstring option = L"mapkey", value = definition;
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("mapkey.set", [&] { result = ProConfigoptSet(option.data(), value.data()); })) return;
        mFindings.tell("mapkey.set", result == PRO_TK_NO_ERROR, answerText("ProConfigoptSet", result));
        const auto problem =
            seat::replaceFile(file, "!trail file version No. 1500\n" + macroOf('C') + "\n!End of Trail File\n");
        if (problem) return mFindings.note("mapkey.plays", *problem);
        takeMarks();
        mCame.clear();
        pressKeys(firstThreadWindow());
        await(Task::mapkey);
    }

    Context& mContext;
    Findings& mFindings;
    Task mAwaited = Task::start;  // start: nothing
    Deadline mDeadline;
    std::string mCame;  // marks, in order
};

}  // namespace

std::unique_ptr<Checker> makeMacroChecker(Context& context) { return std::make_unique<MacroChecker>(context); }

}  // namespace probe
