#include "tests/mnu/large_set.h"

#include <random>
#include <string_view>

#include "common_sources/mnu/mnu_text.h"

namespace {

constexpr std::string_view kWords[] = {"View", "Model", "Sketch",  "Surface", "Feature", "Mold",  "Drawing",
                                       "Edit", "Round", "Pattern", "Sheet",   "Mirror",  "Refit", "Datum"};
constexpr std::string_view kFillers[] = {"    (Item ", "    (Separator)\n", "    (Toggle Pro", "attribute sensitive\n",
                                         "resource_path ui/commands/process\n"};
constexpr std::size_t kBytesPerCommand = 150;  // of a pane, on average

template <std::size_t N>
std::string_view pick(std::mt19937& random, const std::string_view (&texts)[N]) {
    return texts[random() % N];
}

}  // namespace

LargeSet makeLargeSet(std::size_t commandCount, std::size_t paneCount, std::size_t paneSize) {
    std::mt19937 random(271828);
    std::vector<std::string> names;
    LargeSet set;
    for (std::size_t i = 0; i < commandCount; ++i) {
        std::string name = "ProCmd";
        name.append(pick(random, kWords)).append(pick(random, kWords)).append(std::to_string(i));
        const std::string text = "#1 [" + name + "] Command.Label\n&" + name + " label\n&Name von " + name + "\n#2 [" +
                                 name + "] Command.Helptext\nHelp on " + name + ".\nHilfe zu " + name + ".\n#\n";
        set.commands.push_back({asciiUpper(name) + ".TXT", text});
        names.push_back(std::move(name));
    }
    for (std::size_t i = 0; i < paneCount; ++i) {
        std::string text;
        std::size_t nextCommand = 0;
        while (text.size() < paneSize) {
            text += pick(random, kFillers);
            if (text.size() >= nextCommand && !names.empty()) {
                text.append(names[random() % names.size()]).append(")\n");
                nextCommand = text.size() + random() % (2 * kBytesPerCommand);
            }
        }
        set.panes.push_back({"MENU_" + std::to_string(i) + "_PANE.RES", std::move(text)});
    }
    return set;
}
