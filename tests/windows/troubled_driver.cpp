// A driver library in whose hands nothing goes well: every read fails and brings an event, until reads are told to
// hang. Three ordinals are enough; the others are not there.
#include <windows.h>

#include <atomic>

#include "driver/obk_ctrlr.h"

namespace {

std::atomic<int> reads{0};
std::atomic<bool> isHanging{false};

}  // namespace

int obConnect(int, const char*) { return 0; }

int obGetDevNum(std::int32_t* count, std::int32_t*, std::int32_t*) {
    *count = 0;
    return 0;
}

int obReadDeviceData(int, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*,
                     std::int32_t*, std::int32_t*, std::int32_t* event, std::int32_t*, std::int32_t*) {
    while (isHanging) Sleep(10);  // until the test says that they do not any more
    *event = reads++;
    return -1;
}

extern "C" int readsSoFar() { return reads; }
extern "C" void hangReads(bool isToHang) { isHanging = isToHang; }
