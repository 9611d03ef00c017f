#include "tools/probe/report.h"

#include <algorithm>

#include "tools/seat/text.h"

namespace probe {

namespace {

constexpr std::string_view kTitle = "Orbikon probe report";
constexpr std::string_view kRowsTitle = "All rows";
constexpr Outcome kOutcomes[] = {Outcome::holds, Outcome::doesNotHold, Outcome::notMet};

struct Field {
    std::string_view name;
    std::string ReportRow::*member;
};
constexpr Field kFields[] = {
    {"statement", &ReportRow::statement}, {"file", &ReportRow::file},  {"consequence", &ReportRow::consequence},
    {"check", &ReportRow::check},         {"to do", &ReportRow::todo}, {"evidence", &ReportRow::evidence},
};

std::string inOneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n')
            line += "; ";
        else if (c != '\r')
            line += c;
    }
    return line;
}

std::string lineOf(std::string_view name, const std::string& value) {
    return std::string(name) + ": " + inOneLine(value) + "\n";
}

std::string summaryOf(const Report& report) {
    std::string text;
    for (const Outcome outcome : kOutcomes) {
        text += (text.empty() ? "" : ", ") + std::string(outcomeName(outcome)) + " " +
                std::to_string(report.count(outcome));
    }
    return lineOf("summary", text);
}

std::string breachesOf(const Report& report) {
    std::string text;
    for (const ReportRow& row : report.rows) {
        if (row.outcome != Outcome::doesNotHold) continue;
        text += "  " + row.id + ": " + inOneLine(row.statement) + "\n    found: " + inOneLine(row.evidence) +
                "\n    so: " + inOneLine(row.consequence) + " (" + row.file + ")\n";
    }
    return text.empty() ? text : "\nWhat does not hold\n" + text;
}

// "name: value"; nothing for a line of another form.
std::optional<std::pair<std::string, std::string>> fieldOf(std::string_view line) {
    const auto colon = line.find(": ");
    if (colon == line.npos) return std::nullopt;
    return std::pair(std::string(line.substr(0, colon)), std::string(line.substr(colon + 2)));
}

// "[id] outcome".
std::optional<ReportRow> rowOf(std::string_view line) {
    const auto end = line.find("] ");
    if (!line.starts_with('[') || end == line.npos) return std::nullopt;
    ReportRow row;
    row.id = line.substr(1, end - 1);
    const auto outcome = std::ranges::find(kOutcomes, line.substr(end + 2),
                                           [](Outcome known) { return std::string_view(outcomeName(known)); });
    if (outcome == std::end(kOutcomes)) return std::nullopt;
    row.outcome = *outcome;
    return row;
}

void readField(Report& report, std::string_view line, bool isInRows) {
    const bool isIndented = line.starts_with("  ");
    const auto field = fieldOf(seat::trimmed(line));
    if (!field || isIndented != isInRows) return;
    if (!isInRows) {
        if (field->first != "summary") report.facts.push_back(*field);
        return;
    }
    const auto known = std::ranges::find(kFields, field->first, &Field::name);
    if (known != std::end(kFields) && !report.rows.empty()) report.rows.back().*(known->member) = field->second;
}

}  // namespace

const char* outcomeName(Outcome outcome) {
    switch (outcome) {
        case Outcome::holds:
            return "holds";
        case Outcome::doesNotHold:
            return "does not hold";
        default:
            return "not met yet";
    }
}

std::size_t Report::count(Outcome outcome) const {
    return static_cast<std::size_t>(std::ranges::count(rows, outcome, &ReportRow::outcome));
}

std::string textOf(const Report& report) {
    std::string text = std::string(kTitle) + "\n\n";
    for (const auto& [name, value] : report.facts) text += lineOf(name, value);
    text += summaryOf(report) + breachesOf(report) + "\n" + std::string(kRowsTitle) + "\n";
    for (const ReportRow& row : report.rows) {
        text += "\n[" + row.id + "] " + outcomeName(row.outcome) + "\n";
        for (const auto& [name, member] : kFields) {
            if (!(row.*member).empty()) text += "  " + lineOf(name, row.*member);
        }
    }
    return text;
}

std::optional<Report> readReport(std::string_view text) {
    if (text.starts_with(seat::kUtf8Mark)) text.remove_prefix(seat::kUtf8Mark.size());
    Report report;
    bool isReport = false, isInRows = false;
    for (const std::string_view line : seat::linesOf(text)) {
        isReport = isReport || line == kTitle;
        isInRows = isInRows || (isReport && line == kRowsTitle);
        if (!isReport) continue;
        if (auto row = isInRows ? rowOf(line) : std::nullopt) {
            report.rows.push_back(std::move(*row));
        } else {
            readField(report, line, isInRows);
        }
    }
    if (!isReport) return std::nullopt;
    return report;
}

}  // namespace probe
