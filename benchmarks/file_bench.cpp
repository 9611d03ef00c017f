// What it costs to read the settings file as the plug-in writes it, and a large menu file, against inih.
#include <ini.h>

#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/compare.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/settings.h"
#include "config/cnfg.h"
#include "tests/mnu/large_set.h"

namespace {

// The rules of our files. To inih an indented line would otherwise be a second line of the value above.
void setUpPeer() {
    static char comment[] = "#";
    ini_inline_comment_prefixes = comment;
    ini_allow_multiline = false;
    ini_use_stack = false;
    ini_max_line = 2000;
    ini_initial_alloc = 2000;
}

using Values = std::vector<std::string>;  // in the order of the keys

struct PeerSettings {
    std::span<const SettingsKey> keys;
    Values values;
};

int takeSetting(void* user, const char* section, const char* name, const char* value) {
    auto& settings = *static_cast<PeerSettings*>(user);
    for (std::size_t i = 0; i < settings.keys.size(); ++i) {
        if (settings.keys[i].name != name || settings.keys[i].section != section) continue;
        std::string_view text(value);
        text = text.substr(0, text.find('#'));
        settings.values[i] = text.substr(0, text.find_last_not_of(" \t") + 1);
        break;
    }
    return 1;
}

void settings() {
    const bench::ScratchFile file("settings.ini");
    std::ofstream(file.path()) << Settings(Settings::DefaultsOnly()).fileText();
    const auto keys = Settings::keys();
    Values ours(keys.size());
    PeerSettings theirs{keys, Values(keys.size())};
    ini_allow_inline_comments = false;  // it wants a blank before them; takeSetting() cuts ours off
    constexpr int kCalls = 2000;
    const auto readOurs = [&] {
        Cnfg reader(file.path());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            std::string_view value;
            reader.readParameter(keys[i].section, keys[i].name, value);
            ours[i] = value;
        }
    };
    bench::compare(
        {.what = "default settings file, " + std::to_string(keys.size()) + " keys", .peer = "inih", .calls = kCalls},
        [&] {
            for (int i = 0; i < kCalls; ++i) readOurs();
        },
        [&] {
            for (int i = 0; i < kCalls; ++i) ini_parse(file.path().c_str(), &takeSetting, &theirs);
        });
    bench::expectSame(ours == theirs.values && ours[0] == "Geiplaigok", "values of the settings");
}

int takeMenuEntry(void* user, const char* section, const char*, const char* value) {
    if (std::strcmp(section, "MenuBar") != 0) return 1;
    if (const char* brace = std::strchr(value, '}')) value = brace + 1;
    const std::size_t size = std::strcspn(value, "|");
    if (size != 0) static_cast<Values*>(user)->emplace_back(value, size);
    return 1;
}

void menuFile() {
    const bench::ScratchFile file("menu.mnu");
    const LargeSet set = makeLargeSet(4000, 104, 50'000);
    MNUParser parser;
    for (const Resource& pane : set.panes) parser.AddResource(pane.name, pane.text);
    for (const Resource& text : set.commands) parser.AddResource(text.name, text.text);
    bench::expectSame(parser.WriteMNUFile(file.path()), parser.failure());

    ini_allow_inline_comments = true;
    MenuFileContent ours;
    Values theirs;
    const auto readOurs = [&] {
        Cnfg reader(file.path());
        ours = readMenuFileContent(reader);
    };
    readOurs();
    const std::string entries = std::to_string((ours.commands.size() + 500) / 1000);
    bench::compare({.what = "menu file, " + entries + ",000 entries", .peer = "inih", .calls = 1}, readOurs, [&] {
        theirs.clear();
        ini_parse(file.path().c_str(), &takeMenuEntry, &theirs);
    });
    bool isSame = ours.commands.size() == theirs.size();
    for (std::size_t i = 0; isSame && i < theirs.size(); ++i) isSame = ours.commands[i] == theirs[i];
    bench::expectSame(isSame, "commands of the menu file");
}

}  // namespace

int main() {
    setUpPeer();
    settings();
    menuFile();
}
