// Reading and replacing whole small files. Paths of any script; texts of failures are the system's.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace seat {

struct FileBytes {
    enum class State { read, missing, unreadable };
    State state = State::missing;
    std::string bytes;    // empty unless read
    std::string problem;  // the system's text unless read
    bool isRead() const { return state == State::read; }
};

// Reads a whole file. One that is larger than `limit` counts as unreadable.
FileBytes readFile(const std::filesystem::path& path, std::uintmax_t limit = 256u << 20);

// Gives a file this content in one step: whoever reads it meanwhile sees the old content or the new one. What was there
// is kept as `backup`, unless that is empty. Missing folders are not made. When it fails nothing has changed, and the
// text says why.
std::optional<std::string> replaceFile(const std::filesystem::path& path, std::string_view bytes,
                                       const std::filesystem::path& backup = {});

// Whether a file could be made in this folder; tried with one that goes at once. Nothing when it could, otherwise why.
std::optional<std::string> writingProblem(const std::filesystem::path& folder);

// Whether an existing file could be written, without changing it.
std::optional<std::string> rewritingProblem(const std::filesystem::path& file);

// UTF-8, for people. On Windows a path's own encoding is UTF-16.
std::string textOf(const std::filesystem::path& path);
std::filesystem::path pathOf(std::string_view utf8);  // what is no UTF-8 gives an empty path

}  // namespace seat
