// The installer's pages, and what the doctor says of the seat behind it.
#include <windows.h>

#include <algorithm>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

namespace fs = std::filesystem;

constexpr int kNextButton = 1;  // of the installer's window, on every page
constexpr DWORD kMostWarnings = 1;
constexpr const char* kMachineType = sizeof(void*) == 8 ? "x86e_win64" : "i486_nt";
constexpr const char* kPluginFolder = sizeof(void*) == 8 ? "x64" : "x86";
constexpr const char* kDoctor = sizeof(void*) == 8 ? "orbikon_doctor_64.exe" : "orbikon_doctor.exe";

fs::path setupProgram() {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(buildFolder() / ".." / ".." / "out" / "package", none)) {
        if (entry.path().filename().string().ends_with("-setup.exe")) return fs::canonical(entry.path());
    }
    return {};
}

// A load point as large as a real one, but for what nobody needs here.
fs::path makeLoadPoint(const fs::path& folder) {
    const fs::path loadPoint = folder / "PTC" / "Creo" / "Common Files";
    fs::create_directories(loadPoint);
    fs::copy(buildFolder() / "workbench" / "creo", loadPoint, fs::copy_options::recursive);
    return loadPoint;
}

std::string textOf(HWND window) {
    char text[512] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

BOOL CALLBACK addText(HWND child, LPARAM texts) {
    if (IsWindowVisible(child)) *reinterpret_cast<std::string*>(texts) += textOf(child) + "\n";
    return TRUE;
}

// What a window shows: the texts of its visible children, one a line.
std::string textsIn(HWND window) {
    std::string texts;
    EnumChildWindows(window, addText, reinterpret_cast<LPARAM>(&texts));
    return texts;
}

bool isOneColour(const Picture& picture) {
    return picture.countNear(picture.pixel(0, 0), 0) == picture.width() * picture.height();
}

// A text that was not drawn yet ends the enumeration.
BOOL CALLBACK isTextDrawn(HWND child, LPARAM) {
    return !IsWindowVisible(child) || textOf(child).empty() || !isOneColour(Picture::ofWindow(child));
}

BOOL CALLBACK uncheck(HWND child, LPARAM) {
    const auto kind = GetWindowLongA(child, GWL_STYLE) & BS_TYPEMASK;
    char name[16] = "";
    GetClassNameA(child, name, sizeof name);
    if (lstrcmpiA(name, "Button") == 0 && kind == BS_AUTOCHECKBOX) SendMessageA(child, BM_SETCHECK, 0, 0);
    return TRUE;
}

class Installer {
  public:
    explicit Installer(const Process& process) {
        waitFor([&] { return (mWindow = process.windowWith(kNextButton)) != nullptr; });
        if (mWindow == nullptr) throw std::runtime_error("the installer shows no window");
    }

    HWND window() const { return mWindow; }
    std::string texts() const { return textsIn(mWindow); }

    // Waits for a page on which this text stands, on which one can go on, and which can be seen.
    bool isAt(const std::string& text) const {
        return waitFor([&] {
            return texts().find(text) != std::string::npos && IsWindowEnabled(GetDlgItem(mWindow, kNextButton)) &&
                   EnumChildWindows(mWindow, isTextDrawn, 0);
        });
    }
    void goOn() const { PostMessageA(mWindow, WM_COMMAND, MAKEWPARAM(kNextButton, BN_CLICKED), 0); }

    // No further program is started from the last page.
    void uncheckAll() const { EnumChildWindows(mWindow, uncheck, 0); }

  private:
    HWND mWindow = nullptr;
};

struct Page {
    const char* text;  // that stands on no other
    const char* caption;
};
constexpr Page kPages[] = {
    {"Welcome", "Welcome."},
    {"License Agreement", "The licence."},
    {"Choose Components", "The components; the simulator only for those who want it."},
    {"Destination Folder", "The folder."},
    {"load points", "The installations of Creo, each with its machine type."},
    {"Check this seat", "Done; the doctor can look at the seat at once."},
};

void showPages(Stage& stage, Step& step, const Process& process) {
    const Installer installer(process);
    std::size_t seen = 0;
    for (const Page& page : kPages) {
        if (!installer.isAt(page.text)) throw std::runtime_error("no page with \"" + std::string(page.text) + "\"");
        ++seen;
        stage.shootTogether(step, page.caption, {installer.window()});
        installer.uncheckAll();
        installer.goOn();
    }
    const auto code = process.waitForExit(kPatienceMs);
    step.check("Pages seen", "0", std::to_string(seen), std::to_string(std::size(kPages)), seen == std::size(kPages));
    step.check("Exit code of the installer", "", code ? std::to_string(*code) : "-", "0", code == 0u);
}

void consultDoctor(Stage& stage, Step& step, const fs::path& folder, const fs::path& loadPoint) {
    Workbench& bench = stage.bench();
    const fs::path output = bench.folder() / "doctor.txt";
    const Process doctor = bench.start(folder / "tools" / kDoctor, {"--load-point", loadPoint.string(), "--verbose"},
                                       output, kHostEnvironment);
    const auto code = doctor.waitForExit(kPatienceMs);
    step.excerpt = readTextFile(output);
    step.check("Exit code of the doctor", "", code ? std::to_string(*code) : "-", "0, or 1 with warnings",
               code && *code <= kMostWarnings);
}

}  // namespace

bool isPackageThere() { return !setupProgram().empty(); }

void playInstaller(Stage& stage) {
    Workbench& bench = stage.openEmpty({.isRegistered = false});
    const fs::path loadPoint = makeLoadPoint(bench.folder());
    const fs::path folder = bench.folder() / "Orbikon plug-in";
    bench.startDaemon();
    stage.step("The installer", std::string("It was run for a load point of machine type ") + kMachineType + ".",
               [&](Step& step) {
                   const Process setup({.program = setupProgram(),
                                        .arguments = {"/LOADPOINT=" + loadPoint.string()},
                                        .lastArgument = "/D=" + folder.string(),
                                        .folder = bench.folder(),
                                        .environment = {{"TEMP", bench.temp().string()}},
                                        .outputFile = {}});
                   showPages(stage, step, setup);
                   const std::string registration = readTextFile(loadPoint / "text" / "protk.dat");
                   const bool isEntered = contains(registration, std::string(kPluginFolder) + "\\orbikon_creo.dll");
                   step.check("Registered", "", isEntered ? "yes" : "no", "yes", isEntered);
               });
    stage.step("The doctor's verdict", "orbikon_doctor was run on the seat.",
               [&](Step& step) { consultDoctor(stage, step, folder, loadPoint); });
    const fs::path remover = bench.folder() / "remove.exe";
    fs::copy_file(folder / "uninstall.exe", remover);
    stage.step("Removed again", "The uninstaller was run without windows.", [&](Step& step) {
        const Process removal({.program = remover,
                               .arguments = {"/S"},
                               .lastArgument = "_?=" + folder.string(),
                               .folder = bench.folder(),
                               .environment = {{"TEMP", bench.temp().string()}},
                               .outputFile = {}});
        const auto code = removal.waitForExit(kPatienceMs);
        step.check("Exit code of the uninstaller", "", code ? std::to_string(*code) : "-", "0", code == 0u);
        step.check("Folder", "there", fs::exists(folder) ? "there" : "gone", "gone", !fs::exists(folder));
        const bool isRegistered = fs::exists(loadPoint / "text" / "protk.dat");
        step.check("Registration file", "there", isRegistered ? "there" : "gone", "gone", !isRegistered);
    });
}

}  // namespace workbench
