#include "common_sources/mnu/mnu_menus.h"

#include <gmock/gmock.h>

#include <random>

#include "common_sources/mnu/mnu_text.h"
#include "tests/mnu/large_set.h"
#include "tests/mnu/plain_menus.h"

namespace {

using testing::ElementsAre;

std::vector<std::string> describe(const CommandRecord& record) {
    return {record.resourceCommandName, record.command, record.label, record.helpText};
}

void expectSame(const MenuTables::Menus& menus, const PlainMenus& plain) {
    ASSERT_EQ(menus.size(), plain.menus.size());
    for (const auto& [key, records] : plain.menus) {
        const auto found = menus.find(key);
        ASSERT_NE(found, menus.end()) << key;
        ASSERT_EQ(found->second.size(), records.size()) << key;
        for (std::size_t i = 0; i < records.size(); ++i) {
            EXPECT_EQ(describe(*found->second[i]), describe(records[i])) << key << " " << i;
        }
    }
}

CommandRecord command(const std::string& name, const std::string& label = "label") {
    return {.resourceCommandName = name, .command = {}, .label = label, .helpText = {}};
}

std::vector<std::string> commandsOf(const MenuTables::Menus& menus, const std::string& key) {
    std::vector<std::string> result;
    if (const auto found = menus.find(key); found != menus.end()) {
        for (const CommandRecord* record : found->second) result.push_back(record->command);
    }
    return result;
}

TEST(MenuTables, SpellsACommandAsTheFirstPaneInKeyOrderDoes) {
    MenuTables tables;
    tables.setPane("0B", "procmdone");
    tables.setPane("0A", "xxProCmdOneTwo");
    tables.addCommand(command("PROCMDONE"));
    tables.addCommand(command("PROCMDNONE"));
    tables.addCommand(command("PROCMDONE", ""));
    EXPECT_THAT(commandsOf(tables.menus(), "0A"), ElementsAre("ProCmdOne"));
    EXPECT_THAT(commandsOf(tables.menus(), "0B"), ElementsAre("ProCmdOne"));
    EXPECT_EQ(tables.menus().size(), 2u);
}

TEST(MenuTables, APaneCountsFromWhenItCame) {
    MenuTables tables;
    tables.addCommand(command("PROCMDEARLY"));
    tables.setPane("0A", "ProCmdEarly ProCmdOld");
    tables.addCommand(command("PROCMDOLD"));
    tables.setPane("0A", "ProCmdNew");
    tables.addCommand(command("PROCMDOLD"));
    tables.addCommand(command("PROCMDNEW"));
    EXPECT_THAT(commandsOf(tables.menus(), "0A"), ElementsAre("ProCmdOld", "ProCmdNew"));
    tables.addCommand(command("PROCMDNEW"));
    EXPECT_THAT(commandsOf(tables.menus(), "0A"), ElementsAre("ProCmdOld", "ProCmdNew", "ProCmdNew"));
}

// Short names over few letters, so that names hold each other, overlap and repeat, with a common beginning or without;
// panes come, go and come again.
TEST(MenuTables, EqualsThePlainSearchOnRandomData) {
    std::mt19937 random(42);
    const auto word = [&random](std::string_view letters, std::size_t longest) {
        std::string result;
        for (auto size = 1 + random() % longest; size > 0; --size) result += letters[random() % letters.size()];
        return result;
    };
    for (int round = 0; round < 400; ++round) {
        const std::string beginning = round % 4 == 0 ? "" : word("AB@", 3);
        MenuTables tables;
        PlainMenus plain;
        for (int step = 0; step < 60; ++step) {
            const auto kind = random() % 10;
            if (kind < 3) {
                const std::string key = "0" + word("AB", 2);
                std::string text;
                for (auto parts = random() % 8; parts > 0; --parts) text += word("aAbBpP_@`", 40) + beginning;
                tables.setPane(key, text);
                plain.setPane(key, text);
            } else if (kind < 9) {
                CommandRecord record = command(beginning + word("ABP_", 5), std::to_string(step));
                if (random() % 5 == 0) record.command = "given";
                tables.addCommand(record);
                plain.addCommand(record);
            } else {
                tables.menus();
            }
        }
        expectSame(tables.menus(), plain);
        if (HasFailure()) FAIL() << "round " << round;
    }
}

TEST(MenuTables, EqualsThePlainSearchOnALargeSet) {
    const LargeSet set = makeLargeSet(200, 20, 5'000);
    MenuTables tables;
    PlainMenus plain;
    for (const Resource& pane : set.panes) {
        tables.setPane(menuKeyOfPane(pane.name), pane.text);
        plain.setPane(menuKeyOfPane(pane.name), pane.text);
    }
    for (const Resource& text : set.commands) {
        tables.addCommand(command(resourceCommandName(text.name)));
        plain.addCommand(command(resourceCommandName(text.name)));
    }
    ASSERT_EQ(plain.menus.size(), 20u);
    expectSame(tables.menus(), plain);
}

// Names within names at every place of a long text: what grows is the text, not the work for each place.
TEST(MenuTables, CopesWithTextsMadeToBeSlow) {
    MenuTables tables;
    std::string text;
    while (text.size() < 4'000'000) text += "PROCMD";
    tables.setPane("0A", text);
    std::string name;
    for (int i = 0; i < 500; ++i) tables.addCommand(command(name += "PROCMD"));
    tables.addCommand(command(name + "X"));
    EXPECT_EQ(tables.menus().at("0A").size(), 500u);
}

TEST(MenuTables, EndsWhenCancelled) {
    MenuTables tables;
    tables.setPane("0A", "ProCmdOne");
    tables.addCommand(command("PROCMDONE"));
    const std::atomic<bool> cancel{true};
    EXPECT_TRUE(tables.menus(&cancel).empty());
    EXPECT_EQ(tables.menus().size(), 1u) << "a later call makes up for it";
}

}  // namespace
