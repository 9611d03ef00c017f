// The panel without its windows: the cap in a hand, bindings and the way back, the bind file, and the search.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "common_sources/mnu/mnu_encoding.h"
#include "config/cnfg.h"
#include "tests/unit/scratch.h"
#include "workbench/panel/core/bind_model.h"
#include "workbench/panel/core/cap_state.h"
#include "workbench/panel/core/command_list.h"

namespace workbench {
namespace {

using Hand = CapState::Hand;
using ::testing::ElementsAre;

TEST(CapState, DragsBecomeAxes) {
    const struct {
        CapMotion motion;
        double right, up, gain, curve;
        CapAxes axes;
    } cases[] = {
        {CapMotion::push, 0.5, -0.2, 1.0, 1.0, {175, -70, 0, 0, 0, 0}},
        {CapMotion::turn, 0.5, -0.2, 1.0, 1.0, {0, 0, 0, 70, 175, 0}},
        {CapMotion::push, 7.0, -9.0, 1.0, 1.0, {350, -350, 0, 0, 0, 0}},
        {CapMotion::push, -1.0, 0.5, 0.5, 2.0, {-175, 44, 0, 0, 0, 0}},
        {CapMotion::push, 1.0, 0.0, 9.0, 0.0, {350, 0, 0, 0, 0, 0}},  // gain and curve are cut
        {CapMotion::push, 0.0 / 0.0, 1.0 / 0.0, 1.0, 1.0, {0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [motion, right, up, gain, curve, axes] : cases) {
        CapState cap;
        cap.setGain(gain);
        cap.setCurve(curve);
        cap.drag(motion, right, up);
        EXPECT_EQ(cap.axes(), axes) << right << ' ' << up << ' ' << gain << ' ' << curve;
        cap.letGo(Hand::drag);
        EXPECT_TRUE(cap.isAtRest());
    }
}

TEST(CapState, HandsPullTogetherAndLetGoAlone) {
    CapState cap;
    cap.deflect(Hand::drag, 0, 0.5);
    cap.deflect(Hand::keys, 0, 0.2);
    cap.deflect(Hand::sliders, 5, -1.0);
    EXPECT_EQ(cap.axes(), (CapAxes{245, 0, 0, 0, 0, -350}));
    cap.letGo(Hand::drag);
    cap.letGo(Hand::sliders, 4);  // another axis
    EXPECT_EQ(cap.axes(), (CapAxes{70, 0, 0, 0, 0, -350}));
    cap.releaseAll();
    EXPECT_TRUE(cap.isAtRest());
}

TEST(CapState, HoldKeepsUntilItEndsOrIsReleased) {
    CapState cap;
    cap.setHold(true);
    cap.drag(CapMotion::push, 0.5, 0.0);
    cap.letGo(Hand::drag);
    cap.letGo(Hand::drag);  // nothing is added by letting go of nothing
    EXPECT_EQ(cap.axes()[0], 175);
    cap.drag(CapMotion::push, 0.1, 0.0);
    EXPECT_EQ(cap.axes()[0], 35) << "a new grip leads";
    cap.letGo(Hand::drag);
    cap.setHold(false);
    EXPECT_TRUE(cap.isAtRest());
    cap.setHold(true);
    cap.deflect(Hand::wheel, 2, 1.0);
    cap.letGo(Hand::wheel);
    cap.releaseAll();
    EXPECT_TRUE(cap.isAtRest());
}

TEST(BindModel, BindsUnbindsAndGoesBack) {
    BindModel model;
    EXPECT_FALSE(model.undo());
    EXPECT_TRUE(model.bind("Default", 1, "A"));
    EXPECT_TRUE(model.bind("Part", 1, "B"));
    EXPECT_EQ(*model.bound("Part", 1).command, "B");
    EXPECT_FALSE(model.bound("Part", 1).isInherited);
    EXPECT_EQ(*model.bound("Assembly", 1).command, "A");
    EXPECT_TRUE(model.bound("Assembly", 1).isInherited);
    EXPECT_EQ(model.bound("Assembly", 2).command, nullptr);
    EXPECT_FALSE(model.unbind("Assembly", 1)) << "what all modes have is not the mode's own";
    EXPECT_TRUE(model.unbind("Part", 1));
    EXPECT_EQ(*model.bound("Part", 1).command, "A");
    EXPECT_TRUE(model.bind("Default", 1, "A")) << "no change";
    for (const char* before : {"B", "A"}) {
        EXPECT_TRUE(model.undo());
        EXPECT_EQ(*model.bound("Part", 1).command, before);
    }
    EXPECT_TRUE(model.undo());
    EXPECT_EQ(model.bound("Part", 1).command, nullptr);
    EXPECT_FALSE(model.canUndo());
    for (const char* command : {"", "A\nB"}) EXPECT_FALSE(model.bind("Part", 1, command));
    for (const int button : {0, -1, 1000}) EXPECT_FALSE(model.bind("Part", button, "A"));
}

TEST(BindFile, IsWrittenAsItIsRead) {
    const std::string text = "# mine\n[Default]\n1 = OB_Toggle_Scroll_Mode\n12 = ProCmdGone\n[Part]\n1 = A*b = c\n";
    const BindFile file = parseBindFile(text, "b.txt");
    EXPECT_EQ(bindFileText(file), text);
    EXPECT_EQ(parseBindFile("\xEF\xBB\xBF# mine\r\n[ Part ]\r\n\r\n 1=A*b = c \r\n[Default]\n# old\n"
                            "1=OB_Toggle_Scroll_Mode\n12= ProCmdGone",
                            "b.txt"),
              file);
    const ScratchFolder folder;
    writeBindFile(file, std::filesystem::path(folder.path()) / "new" / "b.txt");
    writeBindFile(file, std::filesystem::path(folder.path()) / "new" / "b.txt");
    EXPECT_EQ(readBindFile(std::filesystem::path(folder.path()) / "new" / "b.txt"), file);
    EXPECT_THROW(writeBindFile(file, std::filesystem::path(folder.path()) / "new"), std::runtime_error) << "a folder";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(std::filesystem::path(folder.path()) / "new"), {}), 1)
        << "nothing left over";
}

#ifdef _WIN32  // elsewhere nobody's reading keeps a file from being replaced
TEST(BindFile, IsWrittenAsSoonAsNobodyReadsIt) {
    const ScratchFolder folder;
    const auto path = std::filesystem::path(folder.path()) / "b.txt";
    writeBindFile(parseBindFile("[Part]\n1 = A\n", "b.txt"), path);
    const BindFile changed = parseBindFile("[Part]\n1 = B\n", "b.txt");
    std::ifstream reader(path);
    ASSERT_TRUE(reader.is_open());
    std::thread end([&reader] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        reader.close();
    });
    EXPECT_NO_THROW(writeBindFile(changed, path));
    end.join();
    EXPECT_EQ(readBindFile(path), changed);
}
#endif

class Commands : public ::testing::Test {
  protected:
    CommandList read(const std::string& text) {
        std::ofstream(std::filesystem::path(mFolder.path()) / "Creo.mnu", std::ios::binary) << codePageFromUtf8(text);
        Cnfg file((std::filesystem::path(mFolder.path()) / "Creo.mnu").string());
        return CommandList(file);
    }
    static std::vector<std::string> labels(const CommandList& list, const char* words) {
        std::vector<std::string> labels;
        for (const std::size_t hit : list.search(words)) labels.push_back(list.items()[hit].label);
        return labels;
    }

  private:
    ScratchFolder mFolder;
};

TEST_F(Commands, TreeAndSearch) {
    const CommandList list = read(
        "[Modes]\nPart = 1\nDefault = 2\n \n[MenuBar]\n0Orbikon = {}\n1Toggle Move Mode = {+ "
        "6}OB_Toggle_Object_Move_Mode"
        "|Moves | things\n0VIEW = {}\nNothing = {}|help\n3D View = {}ProCmdView3d|Shows\nGR\u00C4TEN = "
        "{}ProCmdEdges*x\n"
        "Review = {}ProCmdReview\n \nBehind = {}ProCmdBehind\n");
    EXPECT_THAT(list.modes(), ElementsAre("Part", "Default"));
    ASSERT_EQ(list.menus().size(), 3u) << "an entry without a command opens a menu, as it counts for nobody";
    EXPECT_EQ(list.menus()[1].title, "VIEW");
    EXPECT_EQ(list.items().at(0).label, "Toggle Move Mode");
    EXPECT_EQ(list.items().at(0).help, "Moves | things");
    EXPECT_EQ(list.items().at(1).label, "3D View") << "a digit of Creo's own stays";
    EXPECT_EQ(list.menus()[2].last, 4u);
    EXPECT_EQ(list.find("ProCmdReview")->label, "Review");
    EXPECT_EQ(list.find("ProCmdBehind"), nullptr);

    EXPECT_THAT(labels(list, "view"), ElementsAre("3D View", "Review"));
    EXPECT_THAT(labels(list, "rev"), ElementsAre("Review"));
    EXPECT_THAT(labels(list, "VIEW  3d"), ElementsAre("3D View"));
    EXPECT_THAT(labels(list, "procmdedges"), ElementsAre("GR\u00C4TEN"));
    EXPECT_THAT(labels(list, "gr\u00E4ten"), ElementsAre("GR\u00C4TEN"));
    EXPECT_THAT(labels(list, "re"), ElementsAre("Review"));
    EXPECT_THAT(labels(list, "mode"), ElementsAre("Toggle Move Mode"));
    EXPECT_THAT(labels(list, "nowhere"), ElementsAre());
    EXPECT_EQ(labels(list, " ").size(), 4u);
}

}  // namespace
}  // namespace workbench
