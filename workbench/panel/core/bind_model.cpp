#include "workbench/panel/core/bind_model.h"

#include <utility>

namespace workbench {
namespace {

constexpr std::size_t kMostUndos = 200;

}  // namespace

void BindModel::load(BindFile file) {
    mFile = std::move(file);
    mBefore.clear();
}

bool BindModel::bind(const std::string& mode, int button, const std::string& command) {
    const bool isWritable = !mode.empty() && !command.empty() && button >= 1 && button <= kMaxButton &&
                            (mode + command).find_first_of("\r\n") == std::string::npos;
    if (!isWritable) return false;
    BindFile next = mFile;
    next.modes[mode][button] = command;
    change(std::move(next));
    return true;
}

bool BindModel::unbind(const std::string& mode, int button) {
    BindFile next = mFile;
    const auto buttons = next.modes.find(mode);
    if (buttons == next.modes.end() || buttons->second.erase(button) == 0) return false;
    if (buttons->second.empty()) next.modes.erase(buttons);
    change(std::move(next));
    return true;
}

void BindModel::change(BindFile next) {
    if (next == mFile) return;
    if (mBefore.size() == kMostUndos) mBefore.erase(mBefore.begin());
    mBefore.push_back(std::exchange(mFile, std::move(next)));
}

bool BindModel::undo() {
    if (mBefore.empty()) return false;
    mFile = std::move(mBefore.back());
    mBefore.pop_back();
    return true;
}

BindModel::Bound BindModel::bound(const std::string& mode, int button) const {
    const std::string* command = mFile.find(mode, button);
    const auto own = mFile.modes.find(mode);
    return {command, command != nullptr && (own == mFile.modes.end() || !own->second.contains(button))};
}

}  // namespace workbench
