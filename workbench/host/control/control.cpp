#include "workbench/host/control/control.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <future>
#include <memory>
#include <sstream>

#include "workbench/host/windows/ui_loop.h"

namespace workbench {
namespace {

constexpr std::chrono::seconds ANSWER_TIME{60};  // the plug-in may keep the thread busy for a while

Reply failure(std::string reason) { return {false, std::move(reason), {}}; }

const ControlCommand* findCommand(const std::string& name) {
    static const auto ALL = [] {
        auto all = queryCommands();
        const auto actions = actionCommands();
        all.insert(all.end(), actions.begin(), actions.end());
        return all;
    }();
    for (const ControlCommand& command : ALL) {
        if (name == command.name) return &command;
    }
    return nullptr;
}

}  // namespace

const std::string& Request::word(std::size_t i) const {
    if (i >= words.size()) throw ControlError("something is missing in the request");
    return words[i];
}

int Request::number(std::size_t i) const {
    const std::string& digits = word(i);
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{} || end != digits.data() + digits.size())
        throw ControlError("\"" + digits + "\" is no number");
    return value;
}

std::string numberText(const Transform& transform) {
    std::string text;
    for (const auto& row : transform.m) {
        for (const double value : row) {
            char number[32];
            std::snprintf(number, sizeof number, "%.17g", value);
            text += (text.empty() ? "" : " ") + std::string(number);
        }
    }
    return text;
}

Reply answerControl(const std::string& line) {
    std::istringstream in(line);
    std::string name;
    in >> name;
    Request request;
    std::getline(in >> std::ws, request.text);
    std::istringstream rest(request.text);
    for (std::string word; rest >> word;) request.words.push_back(word);
    const ControlCommand* command = findCommand(name);
    if (command == nullptr) return failure("unknown request \"" + name + "\"");
    Reply reply;
    try {
        command->run(request, reply.lines);
        reply.isOk = true;
    } catch (const std::runtime_error& error) {
        return failure(error.what());
    }
    return reply;
}

Reply answerControlFromAnyThread(const std::string& line) {
    auto promise = std::make_shared<std::promise<Reply>>();
    auto answer = promise->get_future();
    // The task alone holds the promise: when the loop ends first, the task is dropped and that ends the wait.
    postToUi([promise = std::move(promise), line] { promise->set_value(answerControl(line)); });
    if (answer.wait_for(ANSWER_TIME) != std::future_status::ready) {
        return failure("the user-interface thread does not answer");
    }
    try {
        return answer.get();
    } catch (const std::future_error&) {
        return failure("the host is ending");
    }
}

}  // namespace workbench
