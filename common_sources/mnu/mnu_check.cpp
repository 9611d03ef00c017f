#include "common_sources/mnu/mnu_check.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>

#include "common_sources/mnu/mnu_format.h"
#include "config/cnfg.h"

namespace {

constexpr std::size_t kMaxTold = 50;

void tell(std::vector<std::string>& list, std::size_t line, const std::string& text) {
    if (list.size() < kMaxTold) list.push_back("line " + std::to_string(line) + ": " + text);
}

class Checker {
  public:
    MenuFileFacts check(std::string_view bytes) {
        for (std::size_t number = 1; !bytes.empty(); ++number) {
            const auto end = bytes.find('\n');
            std::string_view line = bytes.substr(0, end);
            bytes.remove_prefix(end == bytes.npos ? bytes.size() : end + 1);
            if (line.ends_with('\r')) line.remove_suffix(1);
            if (line.starts_with(mnu_format::kComment) || line.starts_with('\r')) continue;
            takeLine(Cnfg::split(line), number);
        }
        return std::move(mFacts);
    }

  private:
    enum class Place { outside, modes, menus, belowMenus };

    // As the reader does it: a section's entries end at the first line without one, and its first header counts.
    void takeLine(const Cnfg::Line& line, std::size_t number) {
        if (line.key.empty()) {
            if (mPlace == Place::menus) mEndLine = number;
            mPlace = mPlace == Place::menus || mPlace == Place::belowMenus ? Place::belowMenus : Place::outside;
        }
        if (line.isSection) {
            mPlace = Place::outside;
            if (line.section == mnu_format::kModesSection && !std::exchange(mHasModes, true)) mPlace = Place::modes;
            if (line.section == mnu_format::kMenuBarSection && !std::exchange(mHasMenus, true)) mPlace = Place::menus;
        }
        if (line.key.empty()) return;
        if (mPlace == Place::modes) ++mFacts.modes;
        if (mPlace == Place::menus) takeEntry(line, number);
        if (mPlace == Place::belowMenus) takeUnread(number);
    }

    void takeUnread(std::size_t number) {
        mFacts.unreadLine = mEndLine;
        tell(mFacts.unreadable, number, "stands below line " + std::to_string(mEndLine) + ", which ended the menus");
    }

    void takeEntry(const Cnfg::Line& line, std::size_t number) {
        mFacts.ownLanguage.takeKey(line.key);
        const std::string_view command = commandPart(line.value);
        if (command.empty()) {
            if (line.value == mnu_format::kNoPlacement) {
                ++mFacts.menus;
                mMenu = line.key;
            } else {
                tell(mFacts.unreadable, number, "has no command");
            }
            return;
        }
        ++mFacts.commands;
        const auto [first, isNew] = mSeen.emplace(std::tuple(mMenu, line.key, command), number);
        if (!isNew) tell(mFacts.duplicates, number, "the same entry as in line " + std::to_string(first->second));
    }

    MenuFileFacts mFacts;
    Place mPlace = Place::outside;
    bool mHasModes = false;
    bool mHasMenus = false;
    std::size_t mEndLine = 0;
    std::string_view mMenu;
    std::map<std::tuple<std::string_view, std::string_view, std::string_view>, std::size_t> mSeen;
};

}  // namespace

MenuFileFacts menuFileFacts(std::string_view bytes) { return Checker().check(bytes); }
