#include "tests/substitutes/windows.h"

#include <pthread.h>

#include <cerrno>
#include <cstdlib>

#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "common_sources/progress_window.h"

namespace substitute {

namespace {

std::atomic<int> allowedThreads{-1};
std::atomic<int> runningThreads{0};

struct ThreadStart {
    void* (*start)(void*);
    void* argument;
};

void* runCounted(void* memory) {
    const ThreadStart thread = *static_cast<ThreadStart*>(memory);
    std::free(memory);
    void* const result = thread.start(thread.argument);
    --runningThreads;
    return result;
}

}  // namespace

Windows& windows() {
    static Windows theWindows;
    return theWindows;
}

Progress& progress() {
    static Progress theProgress;
    return theProgress;
}

void allowThreads(int count) { allowedThreads = count; }

int threads() { return runningThreads; }

}  // namespace substitute

using substitute::windows;

void CreoProxy::discoverWindows() {
    ++windows().discoveries;
    if (windows().onDiscovery) windows().onDiscovery();
}

void CreoProxy::ensureTimer() { ++windows().timersEnsured; }

void CreoProxy::checkWindows() { ++windows().checks; }

void CreoProxy::killTimer() { ++windows().killedTimers; }

CreoProxy::ScrollKind CreoProxy::classifyPointerWindow(int&, int&, WindowHandle&) const {
    return isScrollingOn() ? static_cast<ScrollKind>(windows().scrollKind) : ScrollKind::none;
}

bool CreoProxy::scrollTreeAndList(std::int16_t tx, std::int16_t ty, std::int16_t tz) const {
    int x = 0, y = 0;
    WindowHandle window = nullptr;
    if (classifyPointerWindow(x, y, window) == ScrollKind::none) return false;
    windows().scrolls.push_back({tx, ty, tz});
    return windows().isScrollConsumed;
}

void CreoProxy::defineMapkey() { mIsMapkeyUsed = windows().isMapkeyAccepted; }

void CreoProxy::executeCommandByMapkey(const std::string& macro) { windows().mapkeyMacros.push_back(macro); }

CreoProxy::Generation CreoProxy::createMNUFile(const std::string& path) {
    using substitute::GenerationEnd;
    switch (windows().generate ? windows().generate(path) : GenerationEnd::failed) {
        case GenerationEnd::running:
            mHandOver.menuFileProgress = 0.5;
            return Generation::running;
        case GenerationEnd::succeeded:
            return Generation::succeeded;
        case GenerationEnd::failed:
            break;
    }
    return Generation::failed;
}

void CreoProxy::endGeneration() { ++windows().generationsEnded; }

struct ProgressWindow::Window {};

ProgressWindow::ProgressWindow() = default;

ProgressWindow::~ProgressWindow() { stop(); }

void ProgressWindow::start() {
    mIsRunning = true;
    ++substitute::progress().starts;
}

void ProgressWindow::update(double progress) {
    substitute::progress().last = progress;
    if (substitute::progress().isToEndByItself.exchange(false)) mIsRunning = false;
}

void ProgressWindow::stop() {
    mIsRunning = false;
    ++substitute::progress().stops;
}

#if defined(__SANITIZE_THREAD__)
// Threads that hang in the driver are left behind, by design.
extern "C" const char* __tsan_default_options() { return "report_thread_leaks=0"; }
#endif

// The linker sends the plug-in's calls of pthread_create here, and gives the functions their names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument);
}

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument) {
    if (substitute::allowedThreads == 0) return EAGAIN;
    if (substitute::allowedThreads > 0) --substitute::allowedThreads;
    ++substitute::runningThreads;
    // Not by operator new, which a test may let fail.
    auto* counted = static_cast<substitute::ThreadStart*>(std::malloc(sizeof(substitute::ThreadStart)));
    *counted = {start, argument};
    return __real_pthread_create(thread, attributes, substitute::runCounted, counted);
}
// NOLINTEND(bugprone-reserved-identifier)
