#include "tools/doctor/probe_report.h"

#include <nlohmann/json.hpp>

#include "tools/probe/report.h"
#include "tools/seat/file.h"

namespace doctor {

namespace {

using Json = nlohmann::ordered_json;

std::string jsonText(const probe::Report& report) {
    using enum probe::Outcome;
    Json json = {{"facts", Json::object()}, {"summary", Json::object()}, {"rows", Json::array()}};
    for (const auto& [name, value] : report.facts) json["facts"][name] = value;
    for (const auto outcome : {holds, doesNotHold, notMet}) {
        json["summary"][probe::outcomeName(outcome)] = report.count(outcome);
    }
    for (const probe::ReportRow& row : report.rows) {
        json["rows"].push_back({{"id", row.id},
                                {"outcome", probe::outcomeName(row.outcome)},
                                {"statement", row.statement},
                                {"file", row.file},
                                {"consequence", row.consequence},
                                {"check", row.check},
                                {"todo", row.todo},
                                {"evidence", row.evidence}});
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";  // evidence may be any bytes
}

}  // namespace

std::optional<std::string> probeReport(const std::filesystem::path& file, bool isJson, std::string& problem) {
    const seat::FileBytes read = seat::readFile(file);
    problem = seat::textOf(file) + (read.isRead() ? " is no report of the probe" : ": " + read.problem);
    const auto report = probe::readReport(read.bytes);
    if (!report) return std::nullopt;
    return isJson ? jsonText(*report) : probe::textOf(*report);
}

}  // namespace doctor
