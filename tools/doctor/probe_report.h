// Reads what the probe has found in a real Creo. UTF-8, any thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace doctor {

// The report of the probe in `file` for people, or as JSON: {"facts": {...}, "summary": {...}, "rows": [{"id",
// "outcome", "statement", "file", "consequence", "check", "todo", "evidence"}]}. Nothing when it is no such file; the
// reason is in `problem`.
std::optional<std::string> probeReport(const std::filesystem::path& file, bool isJson, std::string& problem);

}  // namespace doctor
