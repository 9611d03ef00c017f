// What was found so far, row by row, kept in the report's file, which is complete at any moment. Any thread.
#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "tools/probe/assumptions.h"
#include "tools/probe/report.h"
#include "tools/seat/private_names.h"

namespace probe {

class Findings {
  public:
    // Files in `folder`, which is made when it is missing: the report, and, for the time of a call that may end Creo,
    // the row that it is about. When the last start ended inside such a call, the row does not hold and is not tried
    // any more, at this start and at later ones.
    Findings(std::filesystem::path folder, seat::PrivateNames names);

    static constexpr const char* kReportFile = "probe_report.txt";
    static constexpr const char* kInDoubtFile = "probe_in_doubt.txt";

    // A line of the report's head.
    void setFact(const std::string& name, const std::string& value);

    // What a row's check has come to. What does not hold stays so; the first evidence of an outcome stays. The report
    // is written. Throws std::invalid_argument for an id that no row has.
    void tell(std::string_view id, bool holds, const std::string& evidence);
    // Evidence of a row that is not met yet.
    void note(std::string_view id, const std::string& evidence);

    Outcome outcome(std::string_view id) const;
    bool isDone(Task task) const;            // every row of the task has an outcome
    bool mayTry(std::string_view id) const;  // not what has ended Creo

    // Writes the report again when that failed the last time, as while somebody reads it.
    void flush();

    std::filesystem::path reportFile() const { return mFolder / kReportFile; }
    std::filesystem::path inDoubtFile() const { return mFolder / kInDoubtFile; }

    // The time of a call that a row is about; of several the innermost is in doubt. Once a row's call has come back it
    // is not in doubt any more.
    class Attempt {
      public:
        Attempt(Findings& findings, std::string_view id);
        ~Attempt();
        Attempt(const Attempt&) = delete;
        Attempt& operator=(const Attempt&) = delete;

      private:
        Findings& mFindings;
        bool mIsFirst;
    };

  private:
    struct Finding {
        Outcome outcome = Outcome::notMet;
        std::string evidence;
    };

    Finding& at(std::string_view id);
    const Finding& at(std::string_view id) const;
    void recallCrashes();
    void writeInDoubt() const;  // mLock is held
    Report report() const;
    void write();  // mLock is held

    mutable std::mutex mLock;
    std::filesystem::path mFolder;
    seat::PrivateNames mNames;
    std::vector<std::pair<std::string, std::string>> mFacts;
    std::map<std::string, Finding, std::less<>> mFindings;
    std::set<std::string, std::less<>> mCrashed;  // rows whose call ended Creo
    std::set<std::string, std::less<>> mTried;    // rows whose call was made
    std::vector<std::string> mInDoubt;            // rows whose first call goes on, the innermost last
    bool mIsWritten = true;
};

}  // namespace probe
