#include "tools/seat/registration_file.h"

#include <algorithm>

#include "tools/seat/text.h"

namespace seat {

namespace {

constexpr char kName[] = "name";
constexpr char kExecFile[] = "exec_file";
constexpr char kEnd[] = "end";
constexpr std::string_view kBlanks = " \t";

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

std::string_view RegistrationEntry::value(std::string_view keyword) const {
    const auto found = std::find_if(fields.rbegin(), fields.rend(),
                                    [&](const RegistrationField& field) { return field.keyword == keyword; });
    return found == fields.rend() ? std::string_view{} : std::string_view(found->value);
}

RegistrationFile::RegistrationFile(std::string bytes) : mBytes(std::move(bytes)) { parse(); }

bool RegistrationFile::isBlank() const {
    std::string_view text = mBytes;
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
    return trimmed(text).empty();
}

void RegistrationFile::parse() {
    mLines.clear();
    mEntries.clear();
    mIsEntryOpen = false;
    for (std::size_t at = mBytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0; at < mBytes.size();) {
        const auto lineEnd = mBytes.find('\n', at);
        const Line line{at, lineEnd == std::string::npos ? mBytes.size() : lineEnd + 1, kNoEntry};
        take(line, trimmed(std::string_view(mBytes).substr(at, line.end - at)));
        at = line.end;
    }
}

// What does not begin with a letter is no field: a blank line or a comment.
void RegistrationFile::take(const Line& line, std::string_view text) {
    mLines.push_back(line);
    if (text.empty() || !isLetter(text.front())) return;
    const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
    RegistrationField field{lowerCase(word), std::string(trimmed(text.substr(word.size())))};
    if (field.keyword == kEnd) {
        if (!mIsEntryOpen) return;
        mEntries.back().isClosed = true;
        mIsEntryOpen = false;
    } else {
        // A second name is that of another entry: the "end" of the one before is missing.
        const bool isOther = mIsEntryOpen && field.keyword == kName && !mEntries.back().value(kName).empty();
        if (!mIsEntryOpen || isOther) mEntries.push_back({.fields = {}, .isClosed = false, .line = mLines.size()});
        mIsEntryOpen = true;
        mEntries.back().fields.push_back(std::move(field));
    }
    mLines.back().entry = mEntries.size() - 1;
}

bool RegistrationFile::isOf(const RegistrationEntry& entry, const ApplicationId& id) const {
    return entry.isClosed &&
           (isSameName(entry.value(kName), id.name) || isSameName(fileNameOf(entry.value(kExecFile)), id.library));
}

std::vector<const RegistrationEntry*> RegistrationFile::entriesOf(const ApplicationId& id) const {
    std::vector<const RegistrationEntry*> found;
    for (const auto& entry : mEntries) {
        if (isOf(entry, id)) found.push_back(&entry);
    }
    return found;
}

bool RegistrationFile::isUnterminated() const { return !mLines.empty() && mBytes.back() != '\n'; }

std::size_t RegistrationFile::firstByteOf(std::size_t entry) const {
    return std::ranges::find(mLines, entry, &Line::entry)->begin;
}

// Behind an entry that is not closed another one would be taken for a part of it.
std::size_t RegistrationFile::placeInFrontOfOpenOnes(std::size_t entry) const {
    while (entry > 0 && !mEntries[entry - 1].isClosed) --entry;
    return firstByteOf(entry);
}

// Always the beginning of a line, so that nothing need be added to another line's end.
std::size_t RegistrationFile::placeForAnother() const {
    if (mIsEntryOpen) return placeInFrontOfOpenOnes(mEntries.size() - 1);
    if (!isUnterminated()) return mBytes.size();
    const Line& last = mLines.back();
    return last.entry != kNoEntry ? placeInFrontOfOpenOnes(last.entry) : last.begin;
}

std::string RegistrationFile::textOf(const RegistrationFields& fields) const {
    const auto lineEnd = mBytes.find('\n');
    const bool isBare = lineEnd != std::string::npos && (lineEnd == 0 || mBytes[lineEnd - 1] != '\r');
    const char* const end = isBare ? "\n" : "\r\n";
    std::string text;
    for (const auto& field : fields) text += field.keyword + " " + field.value + end;
    return text + kEnd + end;
}

void RegistrationFile::set(const ApplicationId& id, const RegistrationFields& fields) {
    const std::string text = textOf(fields);
    const auto own = std::ranges::find_if(mEntries, [&](const auto& entry) { return isOf(entry, id); });
    const bool isAlone = own == mEntries.begin() || (own != mEntries.end() && std::prev(own)->isClosed);
    // What is removed lies behind the first entry's beginning, which therefore stays where it is.
    std::size_t place = isAlone && own != mEntries.end() ? firstByteOf(static_cast<std::size_t>(own - mEntries.begin()))
                                                         : std::string::npos;
    remove(id);
    if (place == std::string::npos) place = placeForAnother();
    mBytes.insert(place, text);
    parse();
}

// What follows a removed entry may end an unfinished one in front of it, which then is the application's, too.
bool RegistrationFile::remove(const ApplicationId& id) {
    bool isAnyRemoved = false;
    while (removeOnce(id)) isAnyRemoved = true;
    return isAnyRemoved;
}

bool RegistrationFile::removeOnce(const ApplicationId& id) {
    std::string kept = mBytes.substr(0, mLines.empty() ? mBytes.size() : mLines.front().begin);
    bool isAnyRemoved = false;
    for (const Line& line : mLines) {
        const bool isOwn = line.entry != kNoEntry && isOf(mEntries[line.entry], id);
        isAnyRemoved = isAnyRemoved || isOwn;
        if (!isOwn) kept.append(mBytes, line.begin, line.end - line.begin);
    }
    mBytes = std::move(kept);
    parse();
    return isAnyRemoved;
}

RegistrationFields registrationOf(const ApplicationId& id, const std::string& execFile, const std::string& textDir) {
    // fail_tol: Creo goes on when the application cannot start; without it Creo shuts itself down.
    return {{kName, id.name},     {"startup", "dll"},      {kExecFile, execFile},    {"text_dir", textDir},
            {"fail_tol", "TRUE"}, {"allow_stop", "FALSE"}, {"delay_start", "FALSE"}, {"unicode_encoding", "FALSE"}};
}

}  // namespace seat
