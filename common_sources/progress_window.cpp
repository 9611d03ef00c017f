#include "common_sources/progress_window.h"

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <thread>

#include "OB_Daemon/src/logging.h"
#include "common_sources/edge.h"

namespace {

constexpr char kLogClass[] = "ProgressWindow";

constexpr char kWindowClass[] = "MNUDlgClass";
constexpr char kTitle[] = "Orbikon";
constexpr char kText[] = "Preparing for first start...";
constexpr char kErrorCaption[] = "Error!";
constexpr DWORD kPollMs = 50;

struct Rectangle {
    int x, y, width, height;
};
constexpr Rectangle kFrame = {CW_USEDEFAULT, CW_USEDEFAULT, 216, 80};
constexpr Rectangle kBarPlace = {0, 4, 200, 18};
constexpr Rectangle kTextPlace = {0, 25, 200, 20};

// The module this code lies in: the plug-in, not the program that has loaded it.
HINSTANCE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       kWindowClass, &module);
    return module;
}

HWND createChild(HWND parent, DWORD extendedStyle, const char* windowClass, const char* text, DWORD style,
                 const Rectangle& place) {
    return CreateWindowExA(extendedStyle, windowClass, text, WS_CHILD | WS_VISIBLE | style, place.x, place.y,
                           place.width, place.height, parent, nullptr, ownModule(), nullptr);
}

void showError(const char* text) { MessageBoxA(nullptr, text, kErrorCaption, MB_ICONEXCLAMATION | MB_OK); }

BOOL CALLBACK closeWindow(HWND window, LPARAM) {
    PostMessageA(window, WM_CLOSE, 0, 0);
    return TRUE;
}

}  // namespace

struct ProgressWindow::Window {
    std::thread thread;
    std::atomic<HWND> text{nullptr};  // set and cleared by the window's thread
    std::atomic<HWND> bar{nullptr};

    void createControls(HWND frame) {
        const HWND label = createChild(frame, WS_EX_NOPARENTNOTIFY, "STATIC", kText, WS_GROUP, kTextPlace);
        SendMessageA(label, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
        const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&controls);
        const HWND progressBar = createChild(frame, 0, PROGRESS_CLASSA, "", 0, kBarPlace);
        SendMessageA(progressBar, PBM_SETRANGE, 0, MAKELPARAM(0, 100));
        text = label;
        bar = progressBar;
    }

    void forgetControls() { text = bar = nullptr; }

    static LRESULT handle(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_CREATE: {
                const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
                static_cast<Window*>(creation->lpCreateParams)->createControls(frame);
                return 1;
            }
            case WM_CLOSE:
                return 0;  // only stop() closes it
            default:
                return DefWindowProcA(frame, message, wParam, lParam);
        }
    }

    static LRESULT CALLBACK procedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
        return atEdge({kLogClass, "WindowProc"}, LRESULT{0}, [&] { return handle(frame, message, wParam, lParam); });
    }

    static bool registerClass() {
        WNDCLASSEXA windowClass = {};
        windowClass.cbSize = sizeof windowClass;
        windowClass.style = CS_HREDRAW | CS_VREDRAW;
        windowClass.lpfnWndProc = procedure;
        windowClass.hInstance = ownModule();
        windowClass.hIcon = windowClass.hIconSm = LoadIconA(nullptr, IDI_APPLICATION);
        windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
        windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW);
        windowClass.lpszClassName = kWindowClass;
        return RegisterClassExA(&windowClass) != 0;
    }

    HWND createFrame() {
        return CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kWindowClass, kTitle, WS_OVERLAPPEDWINDOW, kFrame.x,
                               kFrame.y, kFrame.width, kFrame.height, nullptr, nullptr, ownModule(), this);
    }
};

ProgressWindow::ProgressWindow() : mWindow(std::make_unique<Window>()) {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

ProgressWindow::~ProgressWindow() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    stop();
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

void ProgressWindow::start() {
    if (mIsRunning) return;
    stop();  // what is left of a thread that ended by itself
    mIsRunning = true;
    try {
        mWindow->thread = std::thread([this] {
            atEdge({kLogClass, "run"}, [this] { run(); });
            mWindow->forgetControls();
            mIsRunning = false;
        });
    } catch (...) {
        OB_LOG(LogLevel::ERR) << "Error start()";
        mIsRunning = false;
    }
}

void ProgressWindow::update(double progress) {
    const HWND text = mWindow->text;
    const HWND bar = mWindow->bar;
    if (!(progress >= 0.0 && progress <= 1.0) || !text || !bar) return;
    // These calls end: the window's thread waits for no other thread, and it looks for messages every 50 ms until it
    // destroys the windows; a call to a window that is being destroyed, or is gone, returns at once. The one thing
    // that holds the thread up is an error message box, and that looks for messages, too.
    const int percent = static_cast<int>(progress * 100);
    SendMessageA(bar, PBM_SETPOS, percent, 0);
    const std::string caption = std::string(kText) + " " + std::to_string(percent) + "%";
    SendMessageA(text, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(caption.c_str()));
}

void ProgressWindow::stop() {
    std::thread& thread = mWindow->thread;
    mIsRunning = false;
    if (!thread.joinable()) return;
    // An error message box would stay until somebody answers it; the progress window itself ignores being closed.
    const HANDLE handle = pthread_gethandle(thread.native_handle());
    while (WaitForSingleObject(handle, kPollMs) == WAIT_TIMEOUT) {
        EnumThreadWindows(GetThreadId(handle), closeWindow, 0);
    }
    thread.join();
}

// Body of the window's thread.
void ProgressWindow::run() {
    if (!Window::registerClass()) {
        showError("Window Registration Failed!");
        return;
    }
    if (const HWND frame = mWindow->createFrame()) {
        ShowWindow(frame, SW_SHOW);
        UpdateWindow(frame);
        while (mIsRunning) {
            MSG message;
            if (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
                TranslateMessage(&message);
                DispatchMessageA(&message);
            } else {
                Sleep(kPollMs);
            }
        }
        mWindow->forgetControls();
        ShowWindow(frame, SW_HIDE);
        UpdateWindow(frame);
        DestroyWindow(frame);
        PostQuitMessage(0);
    } else {
        mWindow->forgetControls();
        showError("Window Creation Failed!");
    }
    UnregisterClassA(kWindowClass, ownModule());
}
