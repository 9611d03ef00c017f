#include "tools/doctor/report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <generated/version.h>
#include <nlohmann/json.hpp>

#include "common_sources/mnu/mnu_encoding.h"
#include "tools/seat/file.h"
#include "tools/seat/private_names.h"
#include "tools/seat/text.h"

namespace doctor {

namespace {

constexpr std::size_t kLogLines = 200;
constexpr int kStatusColumn = 8;

std::string groupOf(std::string_view id) { return std::string(id.substr(0, id.find('.'))); }

std::string column(std::string text, int width) {
    text.resize(std::max(text.size(), static_cast<std::size_t>(width)), ' ');
    return text;
}

std::string lineOf(const Finding& finding) {
    std::string line =
        column(statusName(finding.status), kStatusColumn) + std::string(finding.id) + ": " + finding.found + "\n";
    if (!finding.remedy.empty()) line += std::string(kStatusColumn, ' ') + "-> " + std::string(finding.remedy) + "\n";
    return line;
}

std::string summaryOf(const Findings& findings) {
    const auto count = [&](Status status) {
        return static_cast<std::size_t>(std::ranges::count(findings.all(), status, &Finding::status));
    };
    return seat::counted(count(Status::error), "error") + ", " + seat::counted(count(Status::warning), "warning") +
           ", " + std::to_string(count(Status::ok)) + " ok\n";
}

std::string utf8Text(std::string_view bytes) {
    if (bytes.starts_with(seat::kUtf8Mark)) bytes.remove_prefix(seat::kUtf8Mark.size());
    std::string text = seat::isUtf8(bytes) ? std::string(bytes) : utf8FromCodePage(bytes);
    std::erase(text, '\r');
    return text;
}

std::string lastLines(const std::string& text, std::size_t count) {
    std::size_t begin = text.size();
    for (std::size_t lines = 0; begin > 0; --begin) {
        if (text[begin - 1] == '\n' && begin != text.size() && ++lines == count) break;
    }
    return text.substr(begin);
}

// Names that tell whose seat it is, and what stands for them.
seat::PrivateNames privateNames(const Seat& seat) {
    seat::PrivateNames names = {{seat::textOf(seat.profile), "%USERPROFILE%"},
                                {seat::textOf(seat.profile.filename()), "%USERNAME%"}};
    for (const char* variable : seat::kPrivateVariables) {
        if (const char* value = std::getenv(variable)) {
            names.emplace_back(utf8FromCodePage(value), "%" + std::string(variable) + "%");
        }
    }
    return names;
}

std::string section(const std::string& title, const std::string& text) { return "\n== " + title + "\n\n" + text; }

}  // namespace

std::string textOf(const Findings& findings, bool isVerbose) {
    std::string text, group;
    for (const Finding& finding : findings.all()) {
        if (!isVerbose && finding.status == Status::ok && groupOf(finding.id) == group) continue;
        text += lineOf(finding);
        group = groupOf(finding.id);
    }
    return text + "\n" + summaryOf(findings);
}

std::string jsonOf(const Findings& findings) {
    nlohmann::ordered_json json = {{"version", kProductVersion}, {"checks", nlohmann::ordered_json::array()}};
    for (const Finding& finding : findings.all()) {
        json["checks"].push_back({{"id", finding.id},
                                  {"status", statusName(finding.status)},
                                  {"found", finding.found},
                                  {"remedy", finding.remedy}});
    }
    // What came from a file may be any bytes.
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string reportOf(const Seat& seat, const Findings& findings) {
    std::string text = "orbikon_doctor " + std::string(kProductVersion) + "\n";
    text += section("Checks", textOf(findings, true));
    text += section("Settings", utf8Text(seat::readFile(seat.settingsFile()).bytes));
    const seat::FileBytes log = seat::readFile(seat.logFile());
    text += section("Log, its last " + std::to_string(kLogLines) + " lines",
                    log.isRead() ? lastLines(utf8Text(log.bytes), kLogLines) : log.problem + "\n");
    return seat::withoutNames(std::move(text), privateNames(seat));
}

}  // namespace doctor
