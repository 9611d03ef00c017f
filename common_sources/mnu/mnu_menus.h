// Which command stands in which menu.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

// A Creo command as the menu file lists it. Texts are in the process code page.
struct CommandRecord {
    std::string resourceCommandName;  // upper case
    std::string command;              // in Creo's own spelling; empty until a pane has it
    std::string label;
    std::string helpText;
};

// Panes and commands of the resource libraries, in the order in which they are met.
//
// A command belongs to every pane known at the time of its addCommand() whose text holds its name anywhere, without
// regard to ASCII letter case. Its spelling is that of the first such pane in key order. A pane that comes later, or
// comes again under the same key with another text, counts for later commands only; what an earlier text has brought
// into a menu stays there.
//
// Texts are searched when the menus are asked for, for all commands at once (see NameFinder): each text remembers
// for which commands, by their number, it was the pane's current one, which yields the same menus as a search of all
// panes at each addCommand(). One thread at a time.
class MenuTables {
  public:
    // Records of each menu, in the order of their addCommand(). Only menus with records.
    using Menus = std::map<std::string, std::vector<const CommandRecord*>>;

    void clear();

    // `text` is UTF-8. A text that the pane of this key had before is replaced.
    void setPane(const std::string& key, std::string text);

    // A record without resource command name or label is dropped.
    void addCommand(CommandRecord record);

    // Searches the panes for the commands added since the last call. Ends early, with incomplete menus, once `cancel`
    // is set (may be null). The result is valid until the next call of any member.
    const Menus& menus(const std::atomic<bool>* cancel = nullptr);

  private:
    using CommandNumber = std::size_t;  // index into mCommands
    static constexpr CommandNumber kStillCurrent = ~CommandNumber{0};

    struct PaneText {
        std::string text;
        CommandNumber from;                   // first command that it counts for
        CommandNumber until = kStillCurrent;  // first one that it counts no more for
    };

    class PendingNames;
    void match(const PaneText& pane, PendingNames& names, std::vector<CommandNumber>& found,
               const std::atomic<bool>* cancel);

    std::map<std::string, std::vector<PaneText>> mPanes;  // by key; only the last of each may be current
    std::deque<CommandRecord> mCommands;                  // records do not move
    CommandNumber mFirstPending = 0;                      // commands from here on are not in mMenus yet
    Menus mMenus;
};
