// A driver library in whose hands nothing goes well: every read fails and brings an event, until reads are told to
// hang. Four ordinals are enough; the others are not there.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>

#include "driver/obk_ctrlr.h"
#include "tests/windows/troubled_driver.h"

namespace {

std::atomic<int> reads{0};
std::atomic<bool> isHanging{false};

// From a read that says that the settings have changed to the question for them; both come from the reading thread.
std::atomic<long long> changeTold{0};  // 0: not since they were asked for
std::atomic<long long> shortestDelay{std::numeric_limits<int>::max()};

long long microseconds() {
    using namespace std::chrono;
    return duration_cast<std::chrono::microseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

int obConnect(int, const char*) { return 0; }

int obGetDevNum(std::int32_t* count, std::int32_t*, std::int32_t*) {
    *count = 0;
    return 0;
}

int obReadDeviceData(int, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*,
                     std::int32_t*, std::int32_t*, std::int32_t* event, std::int32_t*, std::int32_t*) {
    while (isHanging) Sleep(10);  // until the test says that they do not any more
    const int read = reads++;
    const bool isChange = read % kReadsAChange == kReadsAChange - 1;
    *event = isChange ? kEventSettingsChanged1 : read;
    if (isChange) changeTold = microseconds();
    return -1;
}

int obGetAdvancedSettings(int, ObAdvancedSettings*) {
    const long long told = changeTold.exchange(0);
    if (told != 0) shortestDelay = std::min<long long>(shortestDelay, microseconds() - told);
    return -1;
}

extern "C" int readsSoFar() { return reads; }
extern "C" int shortestDelayUs() { return static_cast<int>(shortestDelay); }
extern "C" void hangReads(bool isToHang) { isHanging = isToHang; }
