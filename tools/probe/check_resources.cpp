// What Creo's compiled resource libraries look like.
#include <algorithm>
#include <map>
#include <system_error>
#include <utility>

#include "tools/probe/checker.h"
#include "tools/seat/text.h"

namespace probe {

namespace {

namespace fs = std::filesystem;

constexpr char kMainLibrary[] = "pro_default_resources.dll";
constexpr std::size_t kSampleSize = 160;

struct Library {
    std::map<std::string, int> types;  // how many resources of each
    int panes = 0, commands = 0, labels = 0;
    int texts = 0, foreign = 0, beyondAscii = 0;
    std::string paneSample, commandSample;
};

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

std::string nameOf(LPCSTR name) {
    return IS_INTRESOURCE(name) ? "#" + std::to_string(reinterpret_cast<ULONG_PTR>(name)) : std::string(name);
}

std::string_view textOf(HMODULE module, LPCSTR type, LPCSTR name) {
    const HRSRC resource = FindResourceA(module, name, type);
    const HGLOBAL loaded = resource != nullptr ? LoadResource(module, resource) : nullptr;
    const auto* bytes = loaded != nullptr ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    if (bytes == nullptr) return {};
    return {bytes, SizeofResource(module, resource)};
}

std::string sampleOf(const std::string& name, std::string_view text) {
    std::string sample = name + ": " + std::string(text.substr(0, kSampleSize));
    while (!seat::isUtf8(sample) && !sample.empty()) sample.pop_back();  // not in the middle of a letter
    return sample;
}

void note(Library& library, const std::string& name, std::string_view text) {
    const std::string kind = upper(name);
    const bool isPane = kind.ends_with("_PANE.RES");
    const bool isCommand = kind.starts_with("PROCMD") && kind.ends_with(".TXT");
    if (!isPane && !isCommand) return;
    ++library.texts;
    if (!seat::isUtf8(text)) ++library.foreign;
    if (!seat::isAscii(text)) ++library.beyondAscii;
    ++(isPane ? library.panes : library.commands);
    std::string& sample = isPane ? library.paneSample : library.commandSample;
    if (sample.empty()) sample = sampleOf(name, text);
    if (isCommand && upper(std::string(text)).find("] COMMAND.LABEL") != std::string::npos) ++library.labels;
}

BOOL CALLBACK onName(HMODULE module, LPCSTR type, LPSTR name, LONG_PTR found) {
    Library& library = *reinterpret_cast<Library*>(found);
    ++library.types[nameOf(type)];
    if (!IS_INTRESOURCE(name)) note(library, name, textOf(module, type, name));
    return TRUE;
}

BOOL CALLBACK onType(HMODULE module, LPSTR type, LONG_PTR found) {
    EnumResourceNamesA(module, type, onName, found);
    return TRUE;
}

Library readLibrary(const fs::path& file) {
    Library library;
    const HMODULE module =
        LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (module == nullptr) return {};
    EnumResourceTypesA(module, onType, reinterpret_cast<LONG_PTR>(&library));
    FreeLibrary(module);
    return library;
}

std::string typesText(const Library& library) {
    std::string text;
    for (const auto& [type, count] : library.types) {
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " of type " + type;
    }
    return text.empty() ? "nothing" : text;
}

class ResourceChecker : public Checker {
  public:
    explicit ResourceChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    // Once, and not inside user_initialize: a real installation has thousands of them.
    void look() override {
        if (std::exchange(mIsDone, true)) return;
        const fs::path folder = mContext.loadPoint / "text" / "compiled_resource";
        const std::string names = libraries(folder);
        const bool hasBoth = mMainThere && !mLanguageLibrary.empty();
        mFindings.tell("resources.libraries", hasBoth, names.empty() ? "none found" : names);
        if (hasBoth) mContext.attempt("resources.panes", [&] { checkBoth(folder); });
    }

  private:
    std::string libraries(const fs::path& folder) {
        std::string names;
        std::error_code error;
        for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
            const auto u8 = file->path().filename().u8string();
            const std::string name = seat::lowerCase({reinterpret_cast<const char*>(u8.data()), u8.size()});
            if (!name.starts_with("pro_default_")) continue;
            names += (names.empty() ? "" : ", ") + name;
            if (name == kMainLibrary) mMainThere = true;
            const bool isCreos = name == "pro_default_" + mContext.language + "_resources.dll";
            if (name != kMainLibrary && (mLanguageLibrary.empty() || isCreos)) mLanguageLibrary = name;
        }
        return names;
    }

    void checkBoth(const fs::path& folder) {
        const Library panes = readLibrary(folder / kMainLibrary);
        const Library commands = readLibrary(folder / mLanguageLibrary);
        mFindings.tell("resources.panes", panes.panes > 0, typesText(panes) + "; " + panes.paneSample);
        mFindings.tell(
            "resources.commands", commands.commands > 0 && commands.labels == commands.commands,
            typesText(commands) + ", " + std::to_string(commands.labels) + " with a label; " + commands.commandSample);
        const int foreign = panes.foreign + commands.foreign;
        mFindings.tell("resources.encoding", foreign == 0,
                       std::to_string(foreign) + " of " + std::to_string(panes.texts + commands.texts) +
                           " texts are not UTF-8, " + std::to_string(panes.beyondAscii + commands.beyondAscii) +
                           " are beyond ASCII");
    }

    Context& mContext;
    Findings& mFindings;
    bool mIsDone = false;
    bool mMainThere = false;
    std::string mLanguageLibrary;
};

}  // namespace

std::unique_ptr<Checker> makeResourceChecker(Context& context) { return std::make_unique<ResourceChecker>(context); }

}  // namespace probe
