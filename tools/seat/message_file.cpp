#include "tools/seat/message_file.h"

#include <algorithm>

#include "tools/seat/text.h"

namespace seat {

namespace {

using Kind = MessageProblem::Kind;

constexpr std::size_t kLinesPerMessage = 4;
constexpr std::size_t kLongestLine = 4096;
constexpr char kReserved = '#';

bool isBlank(std::string_view line) { return trimmed(line).empty(); }

std::string place(std::size_t index) { return "line " + std::to_string(index + 1); }

void checkEncoding(std::string_view text, MessageFile& file) {
    if (file.hasMark) {
        if (!isUtf8(text)) file.problems.push_back({Kind::encoding, "it has a byte order mark and is no UTF-8"});
        return;
    }
    const auto lines = linesOf(text);
    const auto foreign = std::ranges::find_if_not(lines, isAscii);
    if (foreign == lines.end()) return;
    const bool isLikelyUtf8 = isUtf8(text);
    file.problems.push_back({Kind::encoding, place(static_cast<std::size_t>(foreign - lines.begin())) +
                                                 " has letters other than ASCII, and the file has no byte order mark" +
                                                 (isLikelyUtf8 ? " (it is UTF-8)" : "")});
}

// What is wrong with the message that begins at this line; empty when nothing is.
std::string groupProblem(const std::vector<std::string_view>& lines, std::size_t begin) {
    if (isBlank(lines[begin])) return place(begin) + " should be a keyword and is empty";
    if (lines.size() - begin < kLinesPerMessage) return place(begin) + " begins a message of less than four lines";
    if (isBlank(lines[begin + 1])) return place(begin + 1) + " should be a message's text and is empty";
    const std::string_view reserved = trimmed(lines[begin + 3]);
    if (reserved.empty() || reserved.front() == kReserved) return {};
    return place(begin + 3) + " should be the empty fourth line of a message";
}

void checkGroups(std::vector<std::string_view> lines, MessageFile& file) {
    // Empty lines behind the last message do no harm, its own third and fourth line may be among them.
    std::size_t used = lines.size();
    while (used > 0 && isBlank(lines[used - 1])) --used;
    const std::size_t whole = (used + kLinesPerMessage - 1) / kLinesPerMessage * kLinesPerMessage;
    lines.resize(std::min(lines.size(), whole));
    for (std::size_t begin = 0; begin < lines.size(); begin += kLinesPerMessage) {
        if (std::string problem = groupProblem(lines, begin); !problem.empty()) {
            file.problems.push_back({Kind::groups, std::move(problem)});
            return;  // from here on all messages are out of step
        }
        ++file.messages;
    }
    if (file.messages == 0) file.problems.push_back({Kind::groups, "it has no message"});
}

}  // namespace

MessageFile checkMessageFile(std::string_view bytes) {
    MessageFile file;
    file.hasMark = bytes.starts_with(kUtf8Mark);
    if (file.hasMark) bytes.remove_prefix(kUtf8Mark.size());
    checkEncoding(bytes, file);
    const auto lines = linesOf(bytes);
    checkGroups(lines, file);
    const auto tooLong = std::ranges::find_if(lines, [](auto line) { return line.size() > kLongestLine; });
    if (tooLong != lines.end()) {
        file.problems.push_back({Kind::lineLength, place(static_cast<std::size_t>(tooLong - lines.begin())) +
                                                       " has more than " + std::to_string(kLongestLine) +
                                                       " characters"});
    }
    return file;
}

}  // namespace seat
