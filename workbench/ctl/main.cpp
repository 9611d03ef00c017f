// Steers the daemon and the host from a command line or a script.
#include <windows.h>

#include <generated/version.h>
#include <algorithm>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "workbench/pipes/line_pipe.h"
#include "workbench/pipes/text.h"

namespace {

using namespace workbench;

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;
constexpr int kExitNobody = 3;
constexpr int kOpenMs = 2000;
constexpr int kAnswerMs = 600000;  // some commands wait for what may take long
constexpr char kUsage[] =
    "usage: obk_ctl daemon|host COMMAND [ARGUMENT...]\n"
    "       obk_ctl daemon|host -      does the lines of the standard input, one command each, up to the first that "
    "is\n"
    "                                  refused; empty lines and lines that begin with # are skipped, \"wait MS\" "
    "waits\n"
    "       obk_ctl daemon|host help   what there is to command\n"
    "       obk_ctl --version | --help\n"
    "Prints the answer. Ends with 0 when it is done, 1 when it is refused, 2 when this command line is not "
    "understood,\n"
    "3 when there is no daemon or host, or it went away. ORBIKON_WORKBENCH tells several workbenches apart.\n";

struct Side {
    const char* name;
    const char* role;
};
constexpr Side kSides[] = {{"daemon", "obk_control"}, {"host", "creo_control"}};

// As one line: an argument with blanks was one word on the command line, and is one for the daemon. The host takes the
// rest of a line as it is.
std::string commandOf(const std::vector<std::string>& words, bool isQuoting) {
    std::string line;
    for (const std::string& word : words) {
        const bool isSplit = isQuoting && (word.empty() || word.find_first_of(" \t") != std::string::npos);
        line += (line.empty() ? "" : " ") + (isSplit ? '"' + word + '"' : word);
    }
    return line;
}

int ask(LineClient& client, const std::string& line, const std::string& place) {
    const Reply reply = client.ask(line, kAnswerMs);
    for (const std::string& answer : reply.lines) std::cout << answer << '\n';
    std::cout.flush();
    if (reply.isOk) return 0;
    std::cerr << "obk_ctl: " << place << reply.error << '\n';
    return client.isOpen() ? kExitRefused : kExitNobody;
}

int playInput(LineClient& client) {
    std::string line;
    for (int number = 1; std::getline(std::cin, line); ++number) {
        if (line.ends_with('\r')) line.pop_back();
        const std::size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#') continue;
        const std::string place = "line " + std::to_string(number) + ": ";
        if (line.starts_with("wait ")) {
            const std::string time = line.substr(5);
            const bool isNumber = !time.empty() && time.size() < 8 &&
                                  std::ranges::all_of(time, [](char c) { return c >= '0' && c <= '9'; });
            if (!isNumber) {
                std::cerr << "obk_ctl: " << place << "usage: wait MS\n";
                return kExitRefused;
            }
            Sleep(static_cast<DWORD>(std::stoul(time)));
        } else if (const int status = ask(client, line, place); status != 0) {
            return status;
        }
    }
    return 0;
}

}  // namespace

int main() {
    SetConsoleOutputCP(CP_UTF8);
    std::vector<std::string> words = commandLineArguments();
    if (words.size() == 1 && words[0] == "--help") {
        std::cout << kUsage;
        return 0;
    }
    if (words.size() == 1 && words[0] == "--version") {
        std::cout << "obk_ctl " << kProductVersion << '\n';
        return 0;
    }
    const auto* side = words.empty() ? std::end(kSides) : std::ranges::find(kSides, words[0], &Side::name);
    if (side == std::end(kSides) || words.size() < 2) {
        std::cerr << "obk_ctl: " << (side == std::end(kSides) ? "say daemon or host" : "say what to command") << '\n'
                  << kUsage;
        return kExitUsage;
    }
    words.erase(words.begin());
    LineClient client;
    if (!client.open(pipeName(side->role), kOpenMs)) {
        std::cerr << "obk_ctl: there is no " << side->name << " (nobody serves " << pipeName(side->role) << ")\n";
        return kExitNobody;
    }
    if (words.size() == 1 && words[0] == "-") return playInput(client);
    return ask(client, commandOf(words, side == std::begin(kSides)), "");
}
