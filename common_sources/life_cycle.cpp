#include "common_sources/life_cycle.h"

#include <cstddef>
#include <iterator>

namespace {

using State = LifeCycle::State;
using Call = LifeCycle::Call;

enum class Deed { none, start, refuseStart, refuseEntry, hurry, end };

struct Step {
    State next = State::unchanged;
    Deed deed = Deed::none;
};

using enum LifeCycle::State;
constexpr Step kStay{};
constexpr Step kStart{starting, Deed::start};
constexpr Step kEnd{ending, Deed::end};
constexpr Step kEndFirst{endingToRestart, Deed::end};
constexpr Step kTwice{unchanged, Deed::refuseStart};
constexpr Step kClosed{unchanged, Deed::refuseEntry};

struct Row {
    State state;
    Step steps[6];  // by call
};

// A plug-in that is to end and then to go on after all does end, and is started anew: with its end Creo forgets what it
// has registered. "enter" and "leave" are those of the outermost callback, "over" comes after a start or an end,
// "failed" after a start.
// clang-format off
constexpr Row kTable[] = {
    // state             initialise            terminate                   enter     leave      over       failed
    {off,               {kStart,               kStay,                      kClosed,  kStay,     kStay,     kStay}},
    {starting,          {kTwice,               {startingToEnd},            kStay,    kStay,     {on},      {off}}},
    {startingToEnd,     {{startingToRestart},  kStay,                      kStay,    kStay,     kEnd,      {off}}},
    {startingToRestart, {kTwice,               {startingToEnd},            kStay,    kStay,     kEndFirst, kStart}},
    {on,                {kTwice,               kEnd,                       {inside}, kStay,     kStay,     kStay}},
    {inside,            {kTwice,               {insideToEnd, Deed::hurry}, kStay,    {on},      kStay,     kStay}},
    {insideToEnd,       {{insideToRestart},    kStay,                      kStay,    kEnd,      kStay,     kStay}},
    {insideToRestart,   {kTwice,               {insideToEnd},              kStay,    kEndFirst, kStay,     kStay}},
    {ending,            {{endingToRestart},    kStay,                      kClosed,  kStay,     {off},     kStay}},
    {endingToRestart,   {kTwice,               {ending},                   kClosed,  kStay,     kStart,    kStay}},
};
// clang-format on

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < std::size(kTable); ++i) {
        if (kTable[i].state != static_cast<State>(i)) return false;
    }
    return true;
}
static_assert(isInOrder() && std::size(kTable) == static_cast<std::size_t>(unchanged));

const Step& stepOf(State state, Call call) {
    return kTable[static_cast<std::size_t>(state)].steps[static_cast<std::size_t>(call)];
}

}  // namespace

bool LifeCycle::enter() {
    if (stepOf(mState, Call::enter).deed == Deed::refuseEntry) return false;
    if (mDepth++ == 0) take(Call::enter);
    return true;
}

void LifeCycle::leave() {
    if (--mDepth == 0) take(Call::leave);
}

void LifeCycle::take(Call call) {
    // Comes to its end with whatever is not a start or an end, or with the last one that was asked for.
    for (;;) {
        const Step& step = stepOf(mState, call);
        if (step.next != unchanged) mState = step.next;
        switch (step.deed) {
            case Deed::start:
                call = mDeeds.start() ? Call::over : Call::failed;
                continue;
            case Deed::end:
                mDeeds.end();
                call = Call::over;
                continue;
            case Deed::refuseStart:
                mDeeds.refuseStart();
                return;
            case Deed::hurry:
                mDeeds.hurry();
                return;
            case Deed::none:
            case Deed::refuseEntry:
                return;
        }
    }
}
