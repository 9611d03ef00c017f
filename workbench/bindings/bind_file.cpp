#include "workbench/bindings/bind_file.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "workbench/pipes/numbers.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kMark = "\xEF\xBB\xBF";  // editors of Windows put it before UTF-8

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

class Parser {
  public:
    explicit Parser(std::string name) : mName(std::move(name)) {}

    void take(std::string_view line) {
        ++mNumber;
        if (line.starts_with('#') && mButtons == nullptr) mFile.heading += std::string(line) + '\n';
        if (line.empty() || line.front() == '#') return;
        if (line.front() == '[' && line.back() == ']') {
            mButtons = &mFile.modes[std::string(trim(line.substr(1, line.size() - 2)))];
        } else {
            bind(line);
        }
    }
    BindFile& file() { return mFile; }

  private:
    void bind(std::string_view line) {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) fail("neither [Mode] nor button = command");
        if (mButtons == nullptr) fail("a binding before the first [Mode]");
        int button = 0;
        try {
            button = static_cast<int>(parseNumber(trim(line.substr(0, equals)), 1, kMaxButton));
        } catch (const std::runtime_error& failure) {
            fail(failure.what());
        }
        (*mButtons)[button] = trim(line.substr(equals + 1));
    }
    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(mName + ':' + std::to_string(mNumber) + ": " + what);
    }

    std::string mName;
    int mNumber = 0;
    BindFile mFile;
    BindFile::Buttons* mButtons = nullptr;
};

// On Windows a file cannot be replaced while somebody reads it, as the daemon does, for a moment, after each change.
void putInPlace(const std::filesystem::path& fresh, const std::filesystem::path& path, std::error_code& failure) {
    constexpr int kTries = 50;
    constexpr std::chrono::milliseconds kPause{20};
    for (int i = 0; i < kTries; ++i) {
        failure.clear();
        std::filesystem::rename(fresh, path, failure);
        if (!failure) return;
        std::this_thread::sleep_for(kPause);
    }
}

}  // namespace

const std::string* BindFile::find(const std::string& mode, int button) const {
    for (const std::string& candidate : {mode, std::string(kDefaultMode)}) {
        const auto buttons = modes.find(candidate);
        if (buttons == modes.end()) continue;
        const auto found = buttons->second.find(button);
        if (found != buttons->second.end()) return &found->second;
    }
    return nullptr;
}

BindFile parseBindFile(std::string_view text, const std::string& name) {
    if (text.starts_with(kMark)) text.remove_prefix(kMark.size());
    Parser parser(name);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        parser.take(trim(text.substr(0, end)));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return std::move(parser.file());
}

std::string bindFileText(const BindFile& file) {
    std::string text = file.heading;
    for (const auto& [mode, buttons] : file.modes) {
        if (buttons.empty()) continue;
        text += '[' + mode + "]\n";
        for (const auto& [button, command] : buttons) text += std::to_string(button) + " = " + command + '\n';
    }
    return text;
}

BindFile readBindFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read \"" + textOf(path) + '"');
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    return parseBindFile(text, textOf(path));
}

void writeBindFile(const BindFile& file, const std::filesystem::path& path) {
    const std::filesystem::path fresh = std::filesystem::path(path) += ".new";
    std::error_code failure;
    if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), failure);
    std::ofstream stream(fresh, std::ios::binary | std::ios::trunc);
    stream << bindFileText(file);
    stream.close();
    if (stream) putInPlace(fresh, path, failure);
    if (!stream || failure) throw std::runtime_error("cannot write \"" + textOf(path) + '"');
}

}  // namespace workbench
