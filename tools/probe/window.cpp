#include "tools/probe/window.h"

#include <algorithm>
#include <string>

#include "tools/probe/callers.h"
#include "tools/seat/wide_text.h"

namespace probe {

namespace {

constexpr int kWidth = 430, kHeight = 560, kGap = 8, kTextHeight = 170, kButtonHeight = 28;
constexpr UINT kSelectTask = WM_APP + 1;
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshMs = 250;

HINSTANCE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ownModule), &module);
    return module;
}

struct Caption {
    TaskKind kind;
    Bilingual yes;
};
constexpr Caption kCaptions[] = {
    {TaskKind::automatic, {"", ""}},
    {TaskKind::confirm, {"It is so now", "So ist es jetzt"}},
    {TaskKind::active, {"Do it", "Ausführen"}},
    {TaskKind::rest, {"Do it", "Ausführen"}},
    {TaskKind::question, {"Yes", "Ja"}},
};

}  // namespace

// What the window shows; its own thread.
struct Window::State {
    Window& owner;
    HWND window = nullptr, list = nullptr, text = nullptr, yes = nullptr, no = nullptr;
    std::wstring shown;      // the list's lines
    std::wstring shownText;  // below it

    Findings& findings() const { return owner.mContext.findings; }
    bool isGerman() const { return owner.mContext.isGerman; }

    HWND add(const wchar_t* className, DWORD style, int id, DWORD extended = 0) const {
        const HWND control =
            CreateWindowExW(extended, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 10, 10, window,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownModule(), nullptr);
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), TRUE);
        return control;
    }

    void create() {
        list = add(L"LISTBOX", WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, kList, WS_EX_CLIENTEDGE);
        text = add(L"STATIC", SS_NOPREFIX, kText);
        yes = add(L"BUTTON", BS_PUSHBUTTON, kYes);
        no = add(L"BUTTON", BS_PUSHBUTTON, kNo);
        SetWindowTextW(no, isGerman() ? L"Nein" : L"No");
        layOut();
        refresh();
        SetTimer(window, kRefreshTimer, kRefreshMs, nullptr);
    }

    void layOut() const {
        RECT client{};
        GetClientRect(window, &client);
        const int width = std::max(1, static_cast<int>(client.right) - 2 * kGap);
        const int buttons = static_cast<int>(client.bottom) - kGap - kButtonHeight;
        const int below = buttons - kGap - kTextHeight;
        MoveWindow(list, kGap, kGap, width, std::max(1, below - 2 * kGap), TRUE);
        MoveWindow(text, kGap, below, width, kTextHeight, TRUE);
        MoveWindow(yes, kGap, buttons, width / 2 - kGap, kButtonHeight, TRUE);
        MoveWindow(no, kGap + width / 2, buttons, width / 2, kButtonHeight, TRUE);
    }

    Task selected() const {
        const LRESULT index = SendMessageW(list, LB_GETCURSEL, 0, 0);
        return index < 0 ? Task::start : static_cast<Task>(index);
    }

    std::string mark(const TaskText& task) const {
        if (owner.mContext.running == static_cast<int>(task.task)) return "\xE2\x96\xB6 ";  // a triangle
        return findings().isDone(task.task) ? "\xE2\x9C\x93 " : "   ";                      // a tick
    }

    void refresh() {
        std::wstring lines;
        for (const TaskText& task : tasks()) lines += seat::wideText(mark(task) + task.title.in(isGerman())) + L'\n';
        if (lines != shown) fillList(lines);
        const std::wstring words = seat::wideText(detail());
        if (words == shownText) return;
        shownText = words;
        SetWindowTextW(text, words.c_str());
        showButtons();
    }

    void fillList(const std::wstring& lines) {
        const Task kept = selected();
        const LRESULT top = SendMessageW(list, LB_GETTOPINDEX, 0, 0);
        shown = lines;
        SendMessageW(list, WM_SETREDRAW, FALSE, 0);
        SendMessageW(list, LB_RESETCONTENT, 0, 0);
        for (std::size_t at = 0; at < lines.size();) {
            const std::size_t end = lines.find(L'\n', at);
            SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lines.substr(at, end - at).c_str()));
            at = end + 1;
        }
        SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(kept), 0);
        SendMessageW(list, LB_SETTOPINDEX, static_cast<WPARAM>(top), 0);
        SendMessageW(list, WM_SETREDRAW, TRUE, 0);
        InvalidateRect(list, nullptr, TRUE);
    }

    // What to do, and what has come of it.
    std::string detail() const {
        const TaskText& task = textOf(selected());
        std::string words = task.text.in(isGerman());
        words += "\n";
        if (task.task == Task::start) return words;
        for (const Assumption& row : assumptions()) {
            if (row.task != task.task) continue;
            const Outcome outcome = findings().outcome(row.id);
            const char* sign = outcome == Outcome::holds ? "+ " : outcome == Outcome::doesNotHold ? "!! " : "? ";
            words += "\n" + std::string(sign) + (isGerman() ? row.german : row.statement);
        }
        return words;
    }

    void showButtons() const {
        const TaskKind kind = textOf(selected()).kind;
        const auto* caption = std::ranges::find(kCaptions, kind, &Caption::kind);
        SetWindowTextW(yes, seat::wideText(caption->yes.in(isGerman())).c_str());
        ShowWindow(yes, kind != TaskKind::automatic ? SW_SHOW : SW_HIDE);
        ShowWindow(no, kind == TaskKind::question ? SW_SHOW : SW_HIDE);
    }

    void select(Task task) {
        ShowWindow(window, SW_SHOWNOACTIVATE);
        if (task != Task::start) SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(task), 0);
        refresh();
    }

    void answer(WPARAM wParam) {
        const int control = LOWORD(wParam);
        if (control == kYes || control == kNo) owner.mHandler(selected(), control == kYes);
        if (control == kList && HIWORD(wParam) == LBN_SELCHANGE) refresh();
    }
};

LRESULT CALLBACK Window::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return atEdge(LRESULT{0}, [&]() -> LRESULT {
        auto* const state = reinterpret_cast<State*>(GetWindowLongPtrW(window, GWLP_USERDATA));
        if (state == nullptr) return DefWindowProcW(window, message, wParam, lParam);
        switch (message) {
            case WM_SIZE:
                state->layOut();
                return 0;
            case WM_TIMER:
                state->refresh();
                return 0;
            case WM_COMMAND:
                state->answer(wParam);
                return 0;
            case kSelectTask:
                state->select(static_cast<Task>(wParam));
                return 0;
            case WM_MOUSEACTIVATE:
                return MA_NOACTIVATE;  // Creo stays in front
            case WM_CLOSE:
                ShowWindow(window, SW_HIDE);  // the menu shows it again
                return 0;
            case WM_DESTROY:
                PostQuitMessage(0);
                return 0;
            default:
                return DefWindowProcW(window, message, wParam, lParam);
        }
    });
}

Window::Window(Context& context, Handler handler) : mContext(context), mHandler(std::move(handler)) {
    mThread = std::thread([this] {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = procedure;
        windowClass.hInstance = ownModule();
        windowClass.lpszClassName = kWindowClass;
        windowClass.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
        windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
        RegisterClassW(&windowClass);
        mContext.windowThread = GetCurrentThreadId();
        RECT desk{};  // what a task bar leaves
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &desk, 0);
        const int left = std::max(0, static_cast<int>(desk.right) - kWidth - kGap);
        mWindow = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kWindowClass, L"Orbikon Probe",
                                  WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_CLIPCHILDREN, left, 120,
                                  kWidth, kHeight, nullptr, nullptr, ownModule(), nullptr);
        mMade.set_value();
        if (mWindow != nullptr) atEdge(0, [this] { return run(), 0; });
    });
    mMade.get_future().wait();
}

Window::~Window() {
    if (mWindow != nullptr) PostMessageW(mWindow, WM_APP, 0, 0);  // ends the loop
    mThread.join();
}

void Window::show(Task task) const {
    if (mWindow != nullptr) PostMessageW(mWindow, kSelectTask, static_cast<WPARAM>(task), 0);
}

void Window::run() {
    State state{*this, mWindow, nullptr, nullptr, nullptr, nullptr, {}, {}};
    SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&state));
    state.create();
    ShowWindow(mWindow, SW_SHOWNOACTIVATE);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0 && message.message != WM_APP) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    SetWindowLongPtrW(mWindow, GWLP_USERDATA, 0);
    DestroyWindow(mWindow);
    UnregisterClassW(kWindowClass, ownModule());
}

}  // namespace probe
