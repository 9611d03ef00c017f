// The folders that a workbench makes, the processes that it starts, and pictures of real windows.
#include <gtest/gtest.h>

#include "workbench/control/picture.h"
#include "workbench/control/workbench.h"

namespace workbench {
namespace {

TEST(Workbench, MakesAndRemovesItsFolder) {
    std::filesystem::path folder;
    {
        const Workbench bench(
            {.settings = "[PROGRAM]\n", .menuFile = "[Modes]\n", .plugin = {}, .textDir = "C:\\texts"});
        folder = bench.folder();
        EXPECT_EQ(readTextFile(folder / "profile" / "OrbikonController" / "Applications" / "Creo_plugin.ini"),
                  "[PROGRAM]\n");
        EXPECT_EQ(readTextFile(bench.menuFile()), "[Modes]\n");
        const std::string registry = readTextFile(folder / "protk.dat");
        EXPECT_NE(registry.find("\nexec_file " + (buildFolder() / "orbikon_creo.dll").string() + '\n'),
                  std::string::npos);
        EXPECT_NE(registry.find("\ntext_dir C:\\texts\n"), std::string::npos);
        EXPECT_TRUE(registry.ends_with("\nend\n"));
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(Workbench, WorkbenchesDoNotMeet) {
    Workbench one;
    Workbench other;
    one.startDaemon();
    other.startDaemon();
    one.daemon("legacy 0");
    EXPECT_EQ(one.daemonStatus("legacy"), "0");
    EXPECT_EQ(other.daemonStatus("legacy"), "1");
    EXPECT_THROW(one.daemon("jump"), std::runtime_error);
}

TEST(Process, TakesArgumentsAndEnvironment) {
    const Workbench bench;
    const std::filesystem::path output = bench.folder() / "out put.txt";
    const Process process = bench.start(std::filesystem::path(std::getenv("COMSPEC")),
                                        {"/c", "echo", "%USERPROFILE%=%EXTRA%"}, output, {{"EXTRA", "a b"}});
    EXPECT_EQ(process.waitForExit(kPatienceMs), 0u);
    EXPECT_NE(readTextFile(output).find(bench.profile().string() + "=a b"), std::string::npos) << readTextFile(output);
}

class Window {
  public:
    explicit Window(COLORREF colour) : mBrush(CreateSolidBrush(colour)) {
        WNDCLASSA description{};
        description.lpfnWndProc = DefWindowProcA;
        description.hbrBackground = mBrush;
        description.lpszClassName = "PictureTest";
        RegisterClassA(&description);
        mWindow = CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, "PictureTest", "", WS_POPUP | WS_VISIBLE, 100, 80,
                                  60, 40, nullptr, nullptr, nullptr, nullptr);
        UpdateWindow(mWindow);
    }
    ~Window() {
        DestroyWindow(mWindow);
        UnregisterClassA("PictureTest", nullptr);
        DeleteObject(mBrush);
    }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HWND handle() const { return mWindow; }
    void pump() const {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }

  private:
    HBRUSH mBrush;
    HWND mWindow = nullptr;
};

TEST(Picture, ShowsWhatIsOnTheScreen) {
    const Window window(RGB(200, 40, 10));
    const Colour colour{200, 40, 10};
    EXPECT_TRUE(waitFor([&] {
        window.pump();
        return Picture::ofWindow(window.handle()).countNear(colour, 0) == 60 * 40;
    }));
    const Picture desktop = Picture::ofDesktop();
    EXPECT_EQ(desktop.width(), GetSystemMetrics(SM_CXVIRTUALSCREEN));
    EXPECT_EQ(desktop.pixel(130, 100), colour);
    EXPECT_EQ(desktop.countNear({150, 110, 170, 130}, colour, 0), 100) << "a quarter of the rectangle is covered";
    EXPECT_EQ(desktop.countNear({100, 80, 160, 120}, {195, 45, 15}, 5), 60 * 40);
    EXPECT_EQ(desktop.countNear({100, 80, 160, 120}, {194, 45, 15}, 5), 0);
    EXPECT_THROW(desktop.pixel(-1, 0), std::out_of_range);
    EXPECT_THROW(Picture::ofWindow(nullptr), std::runtime_error);

    const Workbench bench;
    const std::filesystem::path file = bench.folder() / "pictures" / "desktop.png";
    desktop.save(file);
    EXPECT_GT(std::filesystem::file_size(file), 100u);
}

}  // namespace
}  // namespace workbench
