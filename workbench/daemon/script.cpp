#include "workbench/daemon/script.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "workbench/pipes/numbers.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr long long kMaxWaitMs = 3600 * 1000;
constexpr ULONGLONG kPollMs = 10;

void awaitConnection(Device& device, ULONGLONG patienceMs, HANDLE stop) {
    const ULONGLONG deadline = GetTickCount64() + patienceMs;
    while (device.clientCount() == 0) {
        if (GetTickCount64() >= deadline) throw std::runtime_error("no application has connected");
        if (WaitForSingleObject(stop, kPollMs) == WAIT_OBJECT_0) return;
    }
}

void playLine(const std::string& line, Control& control, Device& device, HANDLE stop) {
    std::istringstream words(line);
    std::string command, duration, more;
    words >> command >> duration;
    if (command == "wait" || command == "wait-connected") {
        if (words >> more) throw std::runtime_error("usage: " + command + " MS");
        const auto patience = static_cast<DWORD>(parseNumber(duration, 0, kMaxWaitMs));
        if (command == "wait") {
            WaitForSingleObject(stop, patience);
        } else {
            awaitConnection(device, patience, stop);
        }
        return;
    }
    const Reply reply = control.run(line);
    for (const std::string& answer : reply.lines) std::cout << answer << '\n';
    std::cout.flush();
    if (!reply.isOk) throw std::runtime_error(reply.error);
}

}  // namespace

bool playScript(const std::string& path, Control& control, Device& device, HANDLE stop) {
    std::ifstream file(pathOf(path));
    if (!file) {
        std::cerr << "cannot read \"" << path << "\"\n";
        return false;
    }
    bool isDone = true;
    std::string line;
    for (int number = 1; std::getline(file, line) && WaitForSingleObject(stop, 0) != WAIT_OBJECT_0; ++number) {
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first == std::string::npos || line[first] == '#') continue;
        try {
            playLine(line, control, device, stop);
        } catch (const std::runtime_error& failure) {
            std::cerr << path << ':' << number << ": " << failure.what() << std::endl;
            isDone = false;
        }
    }
    return isDone;
}

}  // namespace workbench
