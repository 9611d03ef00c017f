#include "tools/seat/file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

#include "tools/seat/text.h"

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace seat {

namespace fs = std::filesystem;

namespace {

std::string lastFileError() { return std::strerror(errno); }

// Beside the file itself, so that it can take its place; different for each process.
fs::path temporaryPath(const fs::path& path) {
    fs::path result = path;
#ifdef _WIN32
    result += "." + std::to_string(_getpid()) + ".tmp";
#else
    result += "." + std::to_string(getpid()) + ".tmp";
#endif
    return result;
}

// A file that vanishes with this object, unless it was renamed.
struct TemporaryFile {
    explicit TemporaryFile(fs::path name) : path(std::move(name)) {}
    ~TemporaryFile() {
        std::error_code ignored;
        fs::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    fs::path path;
};

std::optional<std::string> writeWhole(const fs::path& path, std::string_view bytes) {
    errno = 0;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (out) return std::nullopt;
    return lastFileError();
}

bool isReadOnly(const fs::path& path) {
    std::error_code error;
    const auto status = fs::status(path, error);
    return !error && fs::exists(status) && (status.permissions() & fs::perms::owner_write) == fs::perms::none;
}

#ifdef _WIN32
std::string systemText(DWORD code) { return std::system_category().message(static_cast<int>(code)); }

std::optional<std::string> exchange(const fs::path& temporary, const fs::path& path, const fs::path& backup) {
    if (!fs::exists(path)) {
        if (MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_WRITE_THROUGH)) return std::nullopt;
        return systemText(GetLastError());
    }
    const wchar_t* const backupName = backup.empty() ? nullptr : backup.c_str();
    if (ReplaceFileW(path.c_str(), temporary.c_str(), backupName, 0, nullptr, nullptr)) return std::nullopt;
    const DWORD code = GetLastError();
    // The one failure that leaves the old file under its backup's name.
    if (code == ERROR_UNABLE_TO_MOVE_REPLACEMENT_2) MoveFileExW(backup.c_str(), path.c_str(), 0);
    return systemText(code);
}
#else
std::optional<std::string> exchange(const fs::path& temporary, const fs::path& path, const fs::path& backup) {
    std::error_code error;
    if (!backup.empty() && fs::exists(path)) {
        fs::permissions(temporary, fs::status(path).permissions(), error);
        fs::copy_file(path, backup, fs::copy_options::overwrite_existing, error);
        if (error) return error.message();
    }
    fs::rename(temporary, path, error);
    if (error) return error.message();
    return std::nullopt;
}
#endif

}  // namespace

FileBytes readFile(const fs::path& path, std::uintmax_t limit) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return {FileBytes::State::missing, {}, "not there"};
    if (fs::is_directory(status)) return {FileBytes::State::unreadable, {}, "is a folder"};
    const auto size = fs::file_size(path, error);
    if (!error && size > limit) return {FileBytes::State::unreadable, {}, "too large"};
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (!in) return {FileBytes::State::unreadable, {}, lastFileError()};
    FileBytes result{FileBytes::State::read, {std::istreambuf_iterator<char>(in), {}}, {}};
    if (in.bad()) return {FileBytes::State::unreadable, {}, lastFileError()};
    return result;
}

std::optional<std::string> replaceFile(const fs::path& path, std::string_view bytes, const fs::path& backup) {
    if (isReadOnly(path)) return textOf(path) + " is read-only";
    const TemporaryFile temporary(temporaryPath(path));
    if (const auto problem = writeWhole(temporary.path, bytes)) {
        return textOf(path) + " cannot be written: " + *problem;
    }
    if (const auto problem = exchange(temporary.path, path, backup)) {
        return textOf(path) + " cannot be replaced: " + *problem;
    }
    return std::nullopt;
}

std::optional<std::string> writingProblem(const fs::path& folder) {
    const TemporaryFile file(temporaryPath(folder / "orbikon_doctor"));
    return writeWhole(file.path, "x");
}

std::optional<std::string> rewritingProblem(const fs::path& file) {
    if (isReadOnly(file)) return "it is read-only";
    errno = 0;
    if (std::ofstream(file, std::ios::app)) return std::nullopt;
    return lastFileError();
}

std::string textOf(const fs::path& path) {
    const auto text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path pathOf(std::string_view utf8) {
    if (!isUtf8(utf8)) return {};
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace seat
