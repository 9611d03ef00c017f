#include "common_sources/mnu/mnu_menus.h"

#include <algorithm>
#include <utility>

#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/mnu/mnu_matcher.h"

namespace {

bool isSet(const std::atomic<bool>* flag) { return flag && flag->load(std::memory_order_relaxed); }

}  // namespace

// The names of the commands to be searched, and which commands have each name.
class MenuTables::PendingNames {
  public:
    PendingNames(const std::deque<CommandRecord>& commands, CommandNumber first, const std::atomic<bool>* cancel) {
        for (CommandNumber number = first; number < commands.size() && !isSet(cancel); ++number) {
            const std::string name = utf8FromCodePage(commands[number].resourceCommandName);
            const NameFinder::NameId id = mFinder.add(name);
            if (id == mNames.size()) mNames.push_back({.length = name.size(), .commands = {}});
            mNames[id].commands.push_back(number);
        }
    }

    // Calls visit(command number, spelling in the text) for each command that the text holds.
    template <typename Visit>
    void find(const std::string& text, const std::atomic<bool>* cancel, Visit visit) {
        for (const NameFinder::Hit& hit : mFinder.find(text, cancel)) {
            const std::string_view spelling = std::string_view(text).substr(hit.position, mNames[hit.name].length);
            for (const CommandNumber number : mNames[hit.name].commands) visit(number, spelling);
        }
    }

  private:
    struct Name {
        std::size_t length;  // in UTF-8
        std::vector<CommandNumber> commands;
    };
    NameFinder mFinder;
    std::vector<Name> mNames;  // by id
};

void MenuTables::clear() {
    mPanes.clear();
    mMenus.clear();
    mCommands.clear();
    mFirstPending = 0;
}

void MenuTables::setPane(const std::string& key, std::string text) {
    std::vector<PaneText>& texts = mPanes[key];
    if (!texts.empty()) {
        const bool isNeeded = texts.back().from < mCommands.size() && mFirstPending < mCommands.size();
        if (isNeeded) {
            texts.back().until = mCommands.size();
        } else {
            texts.pop_back();
        }
    }
    texts.push_back({.text = std::move(text), .from = mCommands.size()});
}

void MenuTables::addCommand(CommandRecord record) {
    if (record.resourceCommandName.empty() || record.label.empty()) return;
    mCommands.push_back(std::move(record));
}

const MenuTables::Menus& MenuTables::menus(const std::atomic<bool>* cancel) {
    if (mFirstPending == mCommands.size()) return mMenus;
    PendingNames names(mCommands, mFirstPending, cancel);
    for (auto& [key, texts] : mPanes) {
        std::vector<CommandNumber> found;
        for (const PaneText& pane : texts) {
            if (isSet(cancel)) return mMenus;
            match(pane, names, found, cancel);
        }
        if (!found.empty()) {
            std::ranges::sort(found);
            std::vector<const CommandRecord*>& records = mMenus[key];
            for (const CommandNumber number : found) records.push_back(&mCommands[number]);
        }
        texts.erase(texts.begin(), texts.end() - 1);
    }
    mFirstPending = mCommands.size();
    return mMenus;
}

// Adds the commands that the text counts for and holds to `found`. Panes come in key order, so the first that has a
// command gives its spelling.
void MenuTables::match(const PaneText& pane, PendingNames& names, std::vector<CommandNumber>& found,
                       const std::atomic<bool>* cancel) {
    names.find(pane.text, cancel, [&](CommandNumber number, std::string_view spelling) {
        if (number < pane.from || number >= pane.until) return;
        CommandRecord& record = mCommands[number];
        if (record.command.empty()) record.command = codePageFromUtf8(spelling);
        found.push_back(number);
    });
}
