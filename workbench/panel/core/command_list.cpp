#include "workbench/panel/core/command_list.h"

#include <algorithm>

#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/mnu/mnu_own_entries.h"
#include "common_sources/mnu/mnu_reader.h"

namespace workbench {
namespace {

// The digit of a menu's or an own item's level is for the file's reader, not for people.
std::string withoutLevel(const std::string& key, char level) { return key.starts_with(level) ? key.substr(1) : key; }

bool isOwn(const std::string& key) {
    const auto hasKey = [&](const auto& entries) {
        return std::ranges::find(entries, key, &mnu_format::OwnEntry::key) != std::end(entries);
    };
    return hasKey(mnu_format::kOwnItems) || hasKey(mnu_format::kOwnGermanItems);
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    const std::string folded = foldedCase(text);
    for (std::size_t at = 0; at < folded.size();) {
        const std::size_t end = std::min(folded.find(' ', at), folded.size());
        if (end > at) words.push_back(folded.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

}  // namespace

std::string foldedCase(std::string_view utf8) {
    std::string folded(utf8);
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const auto c = static_cast<unsigned char>(folded[i]);
        if (c >= 'A' && c <= 'Z') folded[i] = static_cast<char>(c + 0x20);
        // U+00C0 to U+00DE, but for the multiplication sign
        const bool isLatin = i > 0 && folded[i - 1] == '\xC3' && c >= 0x80 && c <= 0x9E && c != 0x97;
        if (isLatin) folded[i] = static_cast<char>(c + 0x20);
    }
    return folded;
}

CommandList::CommandList(Cnfg& menuFile) {
    MenuFileTree tree = readMenuFileTree(menuFile);
    mIsWhole = tree.isWhole;
    mModes = std::move(tree.modeNames);
    for (const std::string& menu : tree.menus) {
        mMenus.push_back({utf8FromCodePage(withoutLevel(menu, '0')), 0, 0});
    }
    for (MenuFileItem& item : tree.items) {
        Menu& menu = mMenus[item.menu];
        if (menu.last == 0) menu.first = mItems.size();
        menu.last = mItems.size() + 1;
        const std::string label = utf8FromCodePage(isOwn(item.label) ? withoutLevel(item.label, '1') : item.label);
        mFolded.push_back(foldedCase(label + '\n' + item.command));
        mByCommand.emplace(item.command, mItems.size());
        mItems.push_back({item.menu, label, std::move(item.command), utf8FromCodePage(item.help)});
    }
}

std::vector<std::size_t> CommandList::search(std::string_view text) const {
    const std::vector<std::string> words = wordsOf(text);
    std::vector<std::size_t> first, others;
    for (std::size_t i = 0; i < mItems.size(); ++i) {
        const std::string& folded = mFolded[i];
        if (!std::ranges::all_of(words, [&](const std::string& word) { return folded.find(word) != folded.npos; })) {
            continue;
        }
        (!words.empty() && folded.starts_with(words.front()) ? first : others).push_back(i);
    }
    first.insert(first.end(), others.begin(), others.end());
    return first;
}

const CommandList::Item* CommandList::find(const std::string& command) const {
    const auto found = mByCommand.find(command);
    return found == mByCommand.end() ? nullptr : &mItems[found->second];
}

}  // namespace workbench
