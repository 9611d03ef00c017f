// One topic's checks, and what all topics share. Everything runs on Creo's thread.
#pragma once

#include <windows.h>

#include <array>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>

#include "toolkit/pro_toolkit.h"
#include "tools/probe/crash_note.h"
#include "tools/probe/findings.h"

namespace probe {

// What user_initialize was handed.
struct EntryArguments {
    int argc;
    char** argv;
    char* version;
    char* build;
    wchar_t* errorText;
};

struct Context {
    Findings& findings;
    EntryArguments entry;
    std::filesystem::path ownFile;    // of the probe's library
    std::filesystem::path hostFile;   // of Creo's main module
    std::filesystem::path loadPoint;  // the nearest folder above with compiled resources; empty: none
    std::string language;             // Creo's, in lower case
    bool isGerman;
    DWORD windowThread;            // of the probe's own window
    std::atomic<int> running{-1};  // the task that goes on, as a number

    // Whether Creo's main module has all of these functions; what needs another is not checked.
    static bool has(std::initializer_list<const char*> functions);

    // Makes a call of Creo or the driver that a row is about. False when it has ended Creo before, or threw.
    template <typename Body>
    bool attempt(const char* row, Body&& body) {
        if (!findings.mayTry(row)) return false;
        try {
            const Findings::Attempt attempt(findings, row);
            const CrashNote note(row);
            body();
            return true;
        } catch (...) {
            findings.tell(row, false, "an exception came out of the call");
            return false;
        }
    }

    void begin(Task task) { running = static_cast<int>(task); }
    void end() { running = -1; }
};

class Checker {
  public:
    virtual ~Checker() = default;
    virtual void start() {}                      // once, inside user_initialize
    virtual void tick() {}                       // ten times a second
    virtual void look() {}                       // twice a second
    virtual void perform(Task, bool /*yes*/) {}  // the user asked for it, or answers it
};

std::unique_ptr<Checker> makeEntryChecker(Context& context);
std::unique_ptr<Checker> makeModeChecker(Context& context);
std::unique_ptr<Checker> makeViewChecker(Context& context);
std::unique_ptr<Checker> makeSelectionChecker(Context& context);
std::unique_ptr<Checker> makeMoveChecker(Context& context);
std::unique_ptr<Checker> makeMacroChecker(Context& context);
std::unique_ptr<Checker> makeWindowChecker(Context& context);
std::unique_ptr<Checker> makePointerChecker(Context& context);
std::unique_ptr<Checker> makeTimerChecker(Context& context);
std::unique_ptr<Checker> makeResourceChecker(Context& context);
std::unique_ptr<Checker> makeRegistrationChecker(Context& context);
std::unique_ptr<Checker> makeDriverChecker(Context& context);

// A record that somebody else fills, with marks around it.
template <typename Record>
struct Marked {
    std::array<unsigned char, 256> before;
    Record record;
    std::array<unsigned char, 256> behind;

    Marked() {
        before.fill(kMark);
        behind.fill(kMark);
        std::memset(&record, 0, sizeof record);
    }
    bool isIntact() const {
        for (const auto* marks : {&before, &behind}) {
            for (const unsigned char mark : *marks) {
                if (mark != kMark) return false;
            }
        }
        return true;
    }
    static constexpr unsigned char kMark = 0xA5;
};

// "before the record was written" or the like, for evidence.
inline std::string intactText(bool isIntact) {
    return isIntact ? "the marks are untouched" : "the marks are overwritten";
}

inline std::string answerText(const char* function, int result) {
    return std::string(function) + " answers " + std::to_string(result);
}

std::string classOf(HWND window);
HWND firstThreadWindow();  // of the calling thread, as the plug-in finds it; null: none

// For what is to happen within a time.
class Deadline {
  public:
    explicit Deadline(int ms = 0) : mEnd(GetTickCount64() + static_cast<ULONGLONG>(ms)) {}
    bool isOver() const { return GetTickCount64() >= mEnd; }

  private:
    ULONGLONG mEnd;
};

}  // namespace probe
