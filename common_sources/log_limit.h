// Keeps a line of the log whose cause lasts from coming with every tick. One thread; allocates nothing.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

class LogLimit {
  public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::chrono::seconds kPause{1};

    // Whether a line about this cause is due, which it is when there was none for a second; the caller writes it then.
    // The text of `cause` outlives this object.
    bool isDue(std::string_view cause, Clock::time_point now = Clock::now()) {
        auto found = std::find_if(mEntries.begin(), mEntries.end(), [&](const Entry& e) { return e.cause == cause; });
        if (found == mEntries.end()) {
            found = std::min_element(mEntries.begin(), mEntries.end(),
                                     [](const Entry& a, const Entry& b) { return a.due < b.due; });
            *found = {cause, now};
        }
        if (now < found->due) return false;
        found->due = now + kPause;
        return true;
    }

  private:
    struct Entry {
        std::string_view cause;
        Clock::time_point due;  // when the next line about it may come
    };
    std::array<Entry, 16> mEntries{};  // the one that is due first makes room
};
