// The report as data, and as the text that is sent in. UTF-8, any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace probe {

enum class Outcome { notMet, holds, doesNotHold };
const char* outcomeName(Outcome outcome);  // "holds", "does not hold", "not met yet"

struct ReportRow {
    std::string id;
    Outcome outcome = Outcome::notMet;
    std::string statement;
    std::string file;  // of the plug-in, that depends on it
    std::string consequence;
    std::string check;
    std::string todo;  // by the user; empty: nothing
    std::string evidence;
};

struct Report {
    std::vector<std::pair<std::string, std::string>> facts;  // "release" and the like, in order
    std::vector<ReportRow> rows;

    std::size_t count(Outcome outcome) const;
};

// Summary and what does not hold on top, then every row. Line ends within a field become "; ".
std::string textOf(const Report& report);

// Reads what textOf() wrote, whatever was written around it. Nothing when it is no report.
std::optional<Report> readReport(std::string_view text);

}  // namespace probe
