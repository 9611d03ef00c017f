#include "workbench/host/commands/macro_text.h"

#include <algorithm>
#include <iterator>

namespace workbench {
namespace {

constexpr std::string_view BLANKS = " \t\r\n";
constexpr std::string_view TRAIL_HEAD = "!trail file version No. ";
constexpr std::string_view TRAIL_END = "!End of Trail File";
constexpr std::string_view LABEL_MARK = "@MAPKEY_LABEL";
constexpr char QUOTE = '`';

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == text.npos ? std::string_view{} : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

// Reads a text from its front.
class Reader {
  public:
    explicit Reader(std::string_view text) : mRest(text) {}

    void skipBlanks() { mRest.remove_prefix(std::min(mRest.find_first_not_of(BLANKS), mRest.size())); }
    bool isAtEnd() const { return mRest.empty(); }
    char front() const { return mRest.empty() ? '\0' : mRest.front(); }
    bool take(char expected) {
        if (front() != expected) return false;
        mRest.remove_prefix(1);
        return true;
    }
    std::string word() {
        const std::size_t end = std::min(mRest.find_first_of(" \t\r\n`;"), mRest.size());
        std::string text(mRest.substr(0, end));
        mRest.remove_prefix(end);
        return text;
    }
    // The text up to the closing quote mark; nothing when there is none.
    std::optional<std::string> quoted() {
        const std::size_t end = mRest.find(QUOTE, 1);
        if (end == mRest.npos) return std::nullopt;
        std::string text;
        for (std::size_t i = 1; i < end; ++i) {
            text += mRest[i];
            if (mRest[i] == '\\' && mRest[i + 1] == '\\') ++i;
        }
        mRest.remove_prefix(end + 1);
        return text;
    }

  private:
    std::string_view mRest;
};

// Reads one statement with its ";". Answers the reason when it is malformed, "" otherwise.
std::string readStatement(Reader& reader, MacroStatement& statement) {
    if (!reader.take('~')) return "a statement does not begin with \"~\"";
    reader.skipBlanks();
    statement.verb = reader.word();
    if (statement.verb.empty()) return "a statement has no verb";
    for (reader.skipBlanks(); !reader.isAtEnd() && !reader.take(';'); reader.skipBlanks()) {
        if (reader.front() != QUOTE) {
            statement.arguments.push_back(reader.word());
        } else if (auto text = reader.quoted()) {
            statement.arguments.push_back(std::move(*text));
        } else {
            return "a quote mark is not closed";
        }
    }
    return {};
}

}  // namespace

MacroParse parseMacro(std::string_view text) {
    MacroParse parse;
    Reader reader(text);
    for (reader.skipBlanks(); !reader.isAtEnd() && parse.error.empty(); reader.skipBlanks()) {
        MacroStatement statement;
        parse.error = readStatement(reader, statement);
        if (parse.error.empty()) parse.statements.push_back(std::move(statement));
    }
    if (parse.error.empty() && parse.statements.empty()) parse.error = "the macro is empty";
    return parse;
}

MacroParse parseTrailFile(std::string_view content) {
    MacroParse parse;
    bool hasHead = false;
    bool hasEnd = false;
    while (!content.empty() && !hasEnd && parse.error.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        const std::string_view line = trimmed(content.substr(0, end));
        content.remove_prefix(std::min(end + 1, content.size()));
        if (!hasHead) {
            hasHead = line.starts_with(TRAIL_HEAD) && line.size() > TRAIL_HEAD.size();
            if (!hasHead) parse.error = "the first line is no trail file version line";
        } else if (line == TRAIL_END) {
            hasEnd = true;
        } else if (!line.empty() && line.front() != '!') {
            MacroParse statements = parseMacro(line);
            parse.error = std::move(statements.error);
            std::move(statements.statements.begin(), statements.statements.end(), std::back_inserter(parse.statements));
        }
    }
    if (parse.error.empty() && !hasEnd) parse.error = "the end line is missing";
    return parse;
}

std::optional<Mapkey> parseMapkey(std::string_view value) {
    Mapkey mapkey;
    const std::string_view text = trimmed(value);
    const std::size_t gap = std::min(text.find(' '), text.size());
    mapkey.keys = text.substr(0, gap);
    std::string_view rest = trimmed(text.substr(gap));
    if (rest.starts_with(LABEL_MARK)) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        mapkey.label = rest.substr(LABEL_MARK.size(), end - LABEL_MARK.size());
        rest = trimmed(rest.substr(std::min(end + 1, rest.size())));
    }
    mapkey.macro = rest;
    const bool isPrintable = std::all_of(mapkey.keys.begin(), mapkey.keys.end(),
                                         [](char c) { return c > ' ' && c < '\x7f' && c != '~' && c != '@'; });
    if (mapkey.keys.empty() || mapkey.macro.empty() || !isPrintable) return std::nullopt;
    return mapkey;
}

}  // namespace workbench
