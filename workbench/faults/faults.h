// What is to go wrong in the calls of functions that the workbench stands in for. The host's control (for toolkit
// functions) and the daemon's (for the driver's operations) take the same requests:
//
//   fail NAME WHICH [CODE]   these calls do nothing and answer the code, -1 unless given
//   hang NAME MS [WHICH]     these calls stand still for a while first
//   pump NAME [WHICH]        these calls dispatch their thread's messages first
//   chaos SEED [PER_MILLE]   of a thousand calls of whatever function so many (10 unless given) fail, hang for up to
//                            50 ms or pump, as the seed has it; "chaos off" ends it
//   calm                     ends all of these
//
// WHICH is a number (3 = the third call from now on, and that one alone), a range (2-5), "always" or "never"; the next
// call unless given.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace workbench {

// What one call is to suffer, in this order.
struct CallFault {
    int hangMs = 0;
    bool isPumping = false;
    std::optional<int> code;  // answered instead of doing anything
};

// Calls are counted by name. One thread at a time.
class Faults {
  public:
    using Words = std::vector<std::string>;

    static constexpr int kLongestHangMs = 60000;

    // Does a request of those above; `words` stand behind its name. The caller has checked the function's name.
    // Throws std::runtime_error saying what is wrong with it.
    void request(const std::string& verb, const Words& words);

    // Notes a call and answers what it is to suffer.
    CallFault enter(const std::string& name);

    int callsOf(const std::string& name) const;
    int refused() const { return mRefused; }  // calls that were made to fail, of all functions
    // How many calls in a row, up to the latest, were made to fail.
    int refusedInRow(const std::string& name) const;
    std::vector<std::string> names() const;  // of all functions called so far

    // Calls of the workbench's own making suffer nothing while one of these lives.
    class Quiet {
      public:
        explicit Quiet(Faults& faults) : mFaults(faults) { ++mFaults.mQuiet; }
        ~Quiet() { --mFaults.mQuiet; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

      private:
        Faults& mFaults;
    };

  private:
    // Numbers of calls, counted from the first ever; first > last = none.
    struct Which {
        int first = 1;
        int last = 0;
        bool holds(int call) const { return first <= call && call <= last; }
    };
    struct Function {
        int calls = 0;
        int refusedInRow = 0;
        Which failing, hanging, pumping;
        int code = 0;
        int hangMs = 0;
    };

    static Which parseWhich(const std::string& text, int callsSoFar);
    void setChaos(const Words& words);
    CallFault chaos();

    std::map<std::string, Function> mFunctions;
    int mQuiet = 0;
    int mRefused = 0;
    int mPerMille = 0;
    std::mt19937 mRandom;
};

}  // namespace workbench
