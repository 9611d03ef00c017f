#include "tools/probe/findings.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "tools/seat/file.h"
#include "tools/seat/text.h"

namespace probe {

namespace {

constexpr std::string_view kCrashText = "Creo ended inside this call";

std::string firstWordOf(std::string_view text) { return std::string(text.substr(0, text.find_first_of(" \r\n"))); }

}  // namespace

Findings::Findings(std::filesystem::path folder, seat::PrivateNames names)
    : mFolder(std::move(folder)), mNames(std::move(names)) {
    for (const Assumption& row : assumptions()) mFindings[row.id];
    std::error_code ignored;  // shows when the report is written
    std::filesystem::create_directories(mFolder, ignored);
    recallCrashes();
    write();
}

void Findings::recallCrashes() {
    const auto crashed = [this](const std::string& id, const std::string& evidence) {
        if (findAssumption(id) == nullptr) return;
        mFindings[id] = {Outcome::doesNotHold, evidence};
        mCrashed.insert(id);
    };
    if (const auto before = readReport(seat::readFile(reportFile()).bytes)) {
        for (const ReportRow& row : before->rows) {
            if (row.evidence.starts_with(kCrashText)) crashed(row.id, row.evidence);
        }
    }
    const seat::FileBytes inDoubt = seat::readFile(inDoubtFile());
    if (!inDoubt.isRead()) return;
    const std::string id = firstWordOf(inDoubt.bytes);
    const std::string_view more = seat::trimmed(std::string_view(inDoubt.bytes).substr(id.size()));
    crashed(id,
            std::string(kCrashText) + ", which is not tried any more" + (more.empty() ? "" : ": ") + std::string(more));
    std::error_code ignored;
    std::filesystem::remove(inDoubtFile(), ignored);
}

Findings::Finding& Findings::at(std::string_view id) {
    return const_cast<Finding&>(static_cast<const Findings*>(this)->at(id));
}

const Findings::Finding& Findings::at(std::string_view id) const {
    const auto found = mFindings.find(id);
    if (found == mFindings.end()) throw std::invalid_argument("no row " + std::string(id));
    return found->second;
}

void Findings::setFact(const std::string& name, const std::string& value) {
    const std::lock_guard lock(mLock);
    const auto known = std::ranges::find(mFacts, name, &std::pair<std::string, std::string>::first);
    if (known != mFacts.end()) {
        known->second = value;
    } else {
        mFacts.emplace_back(name, value);
    }
    write();
}

void Findings::tell(std::string_view id, bool holds, const std::string& evidence) {
    const std::lock_guard lock(mLock);
    Finding& finding = at(id);
    const Outcome outcome = holds ? Outcome::holds : Outcome::doesNotHold;
    if (finding.outcome == outcome || finding.outcome == Outcome::doesNotHold) return;
    finding = {outcome, evidence};
    write();
}

void Findings::note(std::string_view id, const std::string& evidence) {
    const std::lock_guard lock(mLock);
    Finding& finding = at(id);
    if (finding.outcome != Outcome::notMet || finding.evidence == evidence) return;
    finding.evidence = evidence;
    write();
}

Outcome Findings::outcome(std::string_view id) const {
    const std::lock_guard lock(mLock);
    return at(id).outcome;
}

bool Findings::isDone(Task task) const {
    const std::lock_guard lock(mLock);
    return std::ranges::none_of(assumptions(), [&](const Assumption& row) {
        return row.task == task && at(row.id).outcome == Outcome::notMet;
    });
}

bool Findings::mayTry(std::string_view id) const {
    const std::lock_guard lock(mLock);
    return !mCrashed.contains(id);
}

void Findings::flush() {
    const std::lock_guard lock(mLock);
    if (!mIsWritten) write();
}

Report Findings::report() const {
    Report report;
    for (const auto& [name, value] : mFacts) report.facts.emplace_back(name, seat::withoutNames(value, mNames));
    for (const Assumption& row : assumptions()) {
        const Finding& finding = at(row.id);
        const std::string todo = row.task == Task::start ? "" : probe::textOf(row.task).title.english;
        report.rows.push_back({row.id, finding.outcome, row.statement, row.file, row.consequence, row.check, todo,
                               seat::withoutNames(finding.evidence, mNames)});
    }
    return report;
}

void Findings::write() {
    mIsWritten = !seat::replaceFile(reportFile(), std::string(seat::kUtf8Mark) + textOf(report()));
}

void Findings::writeInDoubt() const {
    std::error_code ignored;
    if (mInDoubt.empty()) {
        std::filesystem::remove(inDoubtFile(), ignored);
    } else {
        seat::replaceFile(inDoubtFile(), mInDoubt.back() + "\n");
    }
}

// The call may end the process at once, so the file stands before it begins.
Findings::Attempt::Attempt(Findings& findings, std::string_view id) : mFindings(findings) {
    const std::lock_guard lock(findings.mLock);
    mIsFirst = findings.mTried.emplace(id).second;
    if (!mIsFirst) return;
    findings.mInDoubt.emplace_back(id);
    findings.writeInDoubt();
}

Findings::Attempt::~Attempt() {
    if (!mIsFirst) return;
    const std::lock_guard lock(mFindings.mLock);
    mFindings.mInDoubt.pop_back();
    mFindings.writeInDoubt();
}

}  // namespace probe
