// Whether a timer as the plug-in's arrives, and how late while Creo works.
#include <algorithm>
#include <vector>

#include "tools/probe/callers.h"
#include "tools/probe/checker.h"

namespace probe {

namespace {

constexpr UINT_PTR kTimerId = 98;  // not the plug-in's, should both be loaded
constexpr UINT kPeriodMs = 100;
constexpr std::size_t kFirstTicks = 5;
constexpr std::size_t kAllTicks = 21;
constexpr int kPatienceMs = 10000;
constexpr int kWorkMs = 5000;
constexpr ULONGLONG kShortestMs = 80, kLongestMs = 200, kLongestPauseMs = 1000;

std::vector<ULONGLONG> arrivals;  // Creo's thread

void CALLBACK onTimer(HWND window, UINT, UINT_PTR id, DWORD) {
    atEdge(0, [&] {
        arrivals.push_back(GetTickCount64());
        if (arrivals.size() >= kAllTicks) KillTimer(window, id);
        return 0;
    });
}

class TimerChecker : public Checker {
  public:
    explicit TimerChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    ~TimerChecker() override {
        if (mWindow != nullptr) KillTimer(mWindow, kTimerId);
    }

    void start() override {
        arrivals.clear();
        mWindow = firstThreadWindow();
        if (mWindow != nullptr) SetTimer(mWindow, kTimerId, kPeriodMs, onTimer);
    }

    void look() override {
        const bool isEnough = arrivals.size() >= kFirstTicks;
        if (isEnough || mPatience.isOver()) {
            mFindings.tell("timers.first-window", isEnough,
                           std::to_string(arrivals.size()) + " ticks on " + classOf(mWindow));
        }
        if (arrivals.size() < kAllTicks || mFindings.outcome("timers.period") != Outcome::notMet) return;
        std::vector<ULONGLONG> pauses;
        for (std::size_t i = 1; i < arrivals.size(); ++i) pauses.push_back(arrivals[i] - arrivals[i - 1]);
        std::ranges::sort(pauses);
        const ULONGLONG median = pauses[pauses.size() / 2];
        mFindings.tell("timers.period", median >= kShortestMs && median <= kLongestMs,
                       "median " + std::to_string(median) + " ms, longest " + std::to_string(pauses.back()) + " ms");
    }

    void perform(Task task, bool) override {
        if (task != Task::work) return;
        mIsWorking = true;
        mLongestPause = 0;
        mWorkEnd = Deadline(kWorkMs);
        mContext.begin(task);
    }

    void tick() override {
        const ULONGLONG now = GetTickCount64();
        if (mLastTick != 0) mLongestPause = std::max(mLongestPause, now - mLastTick);
        mLastTick = now;
        if (!mIsWorking || !mWorkEnd.isOver()) return;
        mIsWorking = false;
        mFindings.tell("timers.work", mLongestPause <= kLongestPauseMs,
                       "longest pause " + std::to_string(mLongestPause) + " ms");
        mContext.end();
    }

  private:
    Context& mContext;
    Findings& mFindings;
    HWND mWindow = nullptr;
    Deadline mPatience{kPatienceMs};
    bool mIsWorking = false;
    Deadline mWorkEnd;
    ULONGLONG mLastTick = 0;
    ULONGLONG mLongestPause = 0;
};

}  // namespace

std::unique_ptr<Checker> makeTimerChecker(Context& context) { return std::make_unique<TimerChecker>(context); }

}  // namespace probe
