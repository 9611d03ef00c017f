#include "tools/seat/registration_update.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "tools/seat/file.h"

namespace seat {

namespace fs = std::filesystem;

namespace {

using Outcome = RegistrationUpdate::Outcome;

// Marks an entry whose file was made for it; Creo keeps the text and does nothing with it.
constexpr char kMarkField[] = "revision";
constexpr char kMark[] = "made with this file";

bool isMarked(const RegistrationFile& file, const ApplicationId& id) {
    return std::ranges::any_of(file.entriesOf(id), [](const auto* entry) { return entry->value(kMarkField) == kMark; });
}

RegistrationUpdate failed(std::string text) { return {Outcome::failed, std::move(text)}; }

// Why this file cannot be edited; nothing when it can.
std::optional<std::string> editingProblem(const fs::path& path, const FileBytes& content) {
    if (content.state == FileBytes::State::unreadable) return textOf(path) + " cannot be read: " + content.problem;
    if (!RegistrationFile(content.bytes).isText()) return textOf(path) + " is no plain text (UTF-16?); left as it is";
    return std::nullopt;
}

RegistrationUpdate removeWhole(const fs::path& path) {
    std::error_code error;
    fs::remove(path, error);
    if (error) return failed(textOf(path) + " cannot be removed: " + error.message());
    fs::remove(registrationBackup(path), error);
    return {Outcome::removed, textOf(path) + " removed, nothing else was in it"};
}

}  // namespace

fs::path registrationBackup(const fs::path& file) {
    fs::path backup = file;
    backup += ".bak";
    return backup;
}

RegistrationUpdate registerApplication(const fs::path& path, const ApplicationId& id,
                                       const RegistrationFields& fields) {
    const FileBytes content = readFile(path);
    if (const auto problem = editingProblem(path, content)) return failed(*problem);
    RegistrationFile file(content.bytes);
    RegistrationFields entry = fields;
    if (!content.isRead() || isMarked(file, id)) entry.push_back({kMarkField, kMark});
    file.set(id, entry);
    if (content.isRead() && file.bytes() == content.bytes) {
        return {Outcome::unchanged, textOf(path) + " has this entry already"};
    }
    if (const auto problem = replaceFile(path, file.bytes(), registrationBackup(path))) return failed(*problem);
    return {Outcome::written, id.name + " entered in " + textOf(path)};
}

RegistrationUpdate unregisterApplication(const fs::path& path, const ApplicationId& id) {
    const FileBytes content = readFile(path);
    if (const auto problem = editingProblem(path, content)) return failed(*problem);
    RegistrationFile file(content.bytes);
    const bool isOurs = isMarked(file, id);
    if (!file.remove(id)) return {Outcome::unchanged, textOf(path) + " has no entry of " + id.name};
    if (isOurs && file.isBlank()) return removeWhole(path);
    if (const auto problem = replaceFile(path, file.bytes(), registrationBackup(path))) return failed(*problem);
    return {Outcome::written, id.name + " taken out of " + textOf(path)};
}

}  // namespace seat
