#include "workbench/host/toolkit/plugins.h"

#include <algorithm>
#include <utility>

#include "workbench/host/commands/commands.h"
#include "workbench/host/model/creo_variant.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"
#include "workbench/host/toolkit/message_texts.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/system_calls.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/menu_bar.h"

namespace workbench {
namespace {

constexpr int ERROR_TEXT_LENGTH = 80;
constexpr wchar_t REGISTRY_FILE[] = L"protk.dat";
char versionText[] = "30";
char buildText[] = "M060";

using Initialise = int (*)(int argc, char** argv, char* version, char* build, wchar_t* errorText);
using Terminate = int (*)();  // answers nothing; what is in the result register is ignored

template <typename Function>
Function entryPoint(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

std::string systemError(DWORD code) {
    wchar_t text[256] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text, 256, nullptr);
    std::string message = wideToUtf8(text);
    while (!message.empty() && static_cast<unsigned char>(message.back()) <= ' ') message.pop_back();
    return "error " + std::to_string(code) + (message.empty() ? "" : ", " + message);
}

// Menus and commands of a terminated plug-in go. Notifications that it did not unset go on being sent, until it is
// unloaded.
void forgetMenus() {
    menuBar().dropPluginMenus();
    commands().dropPluginCommands();
    frame().rebuildMenu();
}

std::chrono::microseconds since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
}

}  // namespace

Plugins& plugins() {
    static Plugins all;
    return all;
}

std::filesystem::path loadPoint() {
    wchar_t program[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return std::filesystem::path(program).parent_path().parent_path();
}

void Plugins::findRegistered() {
    if (const auto config = readFile(L"config.pro")) {
        for (auto& [option, value] : parseConfig(*config)) host().config[option] = value;
    }
    readRegistry(REGISTRY_FILE, false);
    const auto named = host().config.find("toolkit_registry_file");
    if (named != host().config.end()) readRegistry(utf8ToWide(named->second), true);
    readRegistry(loadPoint() / "text" / REGISTRY_FILE, false);
}

void Plugins::readRegistry(const std::filesystem::path& file, bool isRequired) {
    const std::string name = wideToUtf8(file.wstring());
    const auto content = readFile(file);
    if (!content) {
        if (isRequired) host().error("The toolkit registry file \"" + name + "\" cannot be opened.");
        return;
    }
    const RegistryParse registry = parseRegistry(*content);
    for (const std::string& error : registry.errors) host().error(name + ": " + error);
    for (const PluginEntry& entry : registry.entries) {
        const bool isKnown = std::any_of(mPlugins.begin(), mPlugins.end(),
                                         [&](const Plugin& plugin) { return plugin.entry.name == entry.name; });
        if (!isKnown) mPlugins.push_back({entry, nullptr, false});
    }
}

bool Plugins::start() {
    bool isFine = true;
    for (Plugin& plugin : mPlugins) isFine = load(plugin) && initialise(plugin) && isFine;
    return isFine;
}

bool Plugins::load(Plugin& plugin) {
    if (plugin.module != nullptr) return true;
    const auto begin = std::chrono::steady_clock::now();
    plugin.module = LoadLibraryW(utf8ToWide(plugin.entry.execFile).c_str());
    mLoadTime = since(begin);
    if (plugin.module == nullptr) {
        host().error("The application \"" + plugin.entry.name + "\" cannot be loaded from \"" + plugin.entry.execFile +
                     "\" (" + systemError(GetLastError()) + ").");
        return false;
    }
    if (creoVariant().hasOtherModule) LoadLibraryW(L"creo_toolkit.dll");
    watchSystemCallsOf(plugin.module);
    return true;
}

bool Plugins::initialise(Plugin& plugin) { return plugin.isInitialised || callInitialise(plugin); }

// The state is noted before the call: what is called inside it comes later and wins.
bool Plugins::callInitialise(Plugin& plugin) {
    if (plugin.module == nullptr) return false;
    const auto entry = entryPoint<Initialise>(plugin.module, "user_initialize");
    if (entry == nullptr) {
        host().error("The application \"" + plugin.entry.name + "\" has no user_initialize.");
        return false;
    }
    setTextDirectory(plugin.entry.textDir);
    wchar_t errorText[ERROR_TEXT_LENGTH] = L"";
    char name[] = "xtop.exe";
    char* arguments[] = {name, nullptr};
    const bool isStart = !std::exchange(plugin.isInitialised, true);
    const int refused = toolkitCalls().faults().refused();
    const auto begin = std::chrono::steady_clock::now();
    const int result = callPlugin(entry, 1, arguments, versionText, buildText, errorText);
    if (isStart) {  // else the plug-in says that it runs already
        mStartTime = since(begin);
        mIsStartDisturbed = toolkitCalls().faults().refused() != refused;
    }
    errorText[ERROR_TEXT_LENGTH - 1] = L'\0';
    if (result != 0) {
        host().error("The application \"" + plugin.entry.name + "\" refused to start (" + std::to_string(result) +
                     "): " + wideToUtf8(errorText));
        plugin.isInitialised = false;
        forgetMenus();
        return false;
    }
    host().message("Application \"" + plugin.entry.name + "\" started.");
    return true;
}

bool Plugins::initialise() {
    return std::all_of(mPlugins.begin(), mPlugins.end(), [this](Plugin& plugin) { return initialise(plugin); });
}

bool Plugins::terminate(Plugin& plugin) { return !plugin.isInitialised || callTerminate(plugin); }

bool Plugins::callTerminate(Plugin& plugin) {
    if (plugin.module == nullptr) return false;
    const auto entry = entryPoint<Terminate>(plugin.module, "user_terminate");
    plugin.isInitialised = false;
    if (entry != nullptr) {
        callPlugin(entry);
    } else {
        host().error("The application \"" + plugin.entry.name + "\" has no user_terminate.");
    }
    if (!plugin.isInitialised) forgetMenus();
    return entry != nullptr;
}

bool Plugins::call(bool isStart) {
    return std::all_of(mPlugins.begin(), mPlugins.end(),
                       [=, this](Plugin& plugin) { return isStart ? callInitialise(plugin) : callTerminate(plugin); });
}

bool Plugins::terminate() {
    bool isFine = true;
    for (Plugin& plugin : mPlugins) isFine = terminate(plugin) && isFine;
    return isFine;
}

void Plugins::unload() {
    for (Plugin& plugin : mPlugins) {
        terminate(plugin);
        if (plugin.isInitialised) continue;  // started anew inside its end
        notifications().clear();
        if (plugin.module != nullptr) FreeLibrary(plugin.module);
        plugin.module = nullptr;
    }
}

std::string Plugins::state() const {
    if (mPlugins.empty()) return "none";
    const Plugin& first = mPlugins.front();
    return first.isInitialised ? "initialised" : first.module != nullptr ? "loaded" : "registered";
}

HMODULE Plugins::moduleAt(const void* address) const {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(address), &module);
    const bool isPlugin =
        std::any_of(mPlugins.begin(), mPlugins.end(), [&](const Plugin& plugin) { return plugin.module == module; });
    return isPlugin ? module : nullptr;
}

}  // namespace workbench
