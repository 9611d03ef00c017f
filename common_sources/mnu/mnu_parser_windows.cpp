// The part of MNUParser that reads resource libraries.
#include "common_sources/mnu/mnu_parser.h"

#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <optional>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/mnu/mnu_text.h"

namespace {

constexpr char kLogClass[] = "MNUParser";

constexpr double kMainLibraryDone = 0.3;
constexpr double kLanguageLibraryDone = 0.9;
constexpr double kFileWritten = 0.999999;

// A library mapped for reading only. Its code never runs, so a library of any origin or machine type will do.
class ResourceLibrary {
  public:
    explicit ResourceLibrary(const std::string& path)
        : mModule(LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {
        // A system of the other bit width may refuse to map it as an image.
        if (mModule == nullptr) mModule = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    }
    ~ResourceLibrary() {
        if (mModule) FreeLibrary(mModule);
    }
    ResourceLibrary(const ResourceLibrary&) = delete;
    ResourceLibrary& operator=(const ResourceLibrary&) = delete;

    HMODULE module() const { return mModule; }

  private:
    HMODULE mModule;
};

bool canBeOpened(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file != nullptr) std::fclose(file);
    return file != nullptr;
}

// Whether all of the bytes are mapped for reading; the sizes in a damaged library may be anything.
bool isReadable(const char* bytes, std::size_t size) {
    constexpr DWORD kUnreadable = PAGE_NOACCESS | PAGE_GUARD;
    auto at = reinterpret_cast<std::uintptr_t>(bytes);
    if (size > UINTPTR_MAX - at) return false;
    for (const std::uintptr_t end = at + size; at < end;) {
        MEMORY_BASIC_INFORMATION region;
        if (VirtualQuery(reinterpret_cast<const void*>(at), &region, sizeof region) == 0) return false;
        if (region.State != MEM_COMMIT || (region.Protect & kUnreadable) != 0) return false;
        const std::uintptr_t next = reinterpret_cast<std::uintptr_t>(region.BaseAddress) + region.RegionSize;
        if (next <= at) return true;  // the last region of the address space
        at = next;
    }
    return true;
}

// Text of a resource, valid as long as the library is; nothing, with a log line, when it cannot be had.
std::optional<std::string_view> resourceText(HMODULE module, const char* type, const char* name) {
    const HRSRC resource = FindResourceA(module, name, type);
    if (!resource) {
        OB_LOG(LogLevel::ERR) << "Invalid Resource name: " << name;
        return std::nullopt;
    }
    const HGLOBAL loaded = LoadResource(module, resource);
    if (!loaded) {
        OB_LOG(LogLevel::ERR) << "Kann Datei in DLL-Resource nicht laden: " << name;
        return std::nullopt;
    }
    const std::size_t size = SizeofResource(module, resource);
    if (size == 0) {
        OB_LOG(LogLevel::ERR) << "Leere Datei in DLL-Resource: " << name;
        return std::nullopt;
    }
    const auto* bytes = static_cast<const char*>(LockResource(loaded));
    if (!bytes || !isReadable(bytes, size)) {
        OB_LOG(LogLevel::ERR) << "Kann Datei in DLL-Resource nicht locken: " << name;
        return std::nullopt;
    }
    return std::string_view(bytes, size);
}

BOOL CALLBACK enumNames(HMODULE module, LPCSTR type, LPSTR name, LONG_PTR parser) {
    return reinterpret_cast<MNUParser*>(parser)->EnumNamesFunc(module, type, name) ? TRUE : FALSE;
}

// Answers "go on" whatever became of the type's names: the parser knows when it has had enough.
BOOL CALLBACK enumTypes(HMODULE module, LPSTR type, LONG_PTR parser) {
    EnumResourceNamesA(module, type, enumNames, parser);
    return TRUE;
}

}  // namespace

bool MNUParser::CreateMNU(std::atomic<double>* progress, const std::string& mnuPath, const std::string& resourceDir,
                          const std::string& language, const std::atomic<bool>* cancel) {
    try {
        start(progress, language, cancel);
        return createMNU(mnuPath, resourceDir, language);
    } catch (...) {
        OB_LOG(LogLevel::ERR) << "Error CreateMNU()";
        mFailure = "Out of memory";  // short enough to need none
        return false;
    }
}

bool MNUParser::createMNU(const std::string& mnuPath, std::string resourceDir, const std::string& language) {
    if (resourceDir.empty()) return fail("No folder of compiled resources given");
    if (!resourceDir.ends_with('\\')) resourceDir += '\\';
    const std::string mainLibrary = resourceDir + mnu_libraries::mainLibrary();
    const std::string languageLibrary = resourceDir + mnu_libraries::languageLibrary(language);

    // A language comes from the environment; it names a library in the resource folder and nowhere else.
    const bool isName = language.find_first_of("\\/:") == language.npos;
    if (!isName || !canBeOpened(languageLibrary)) {
        return fail("Compiled Language Resource File does not exist: " + languageLibrary);
    }
    if (!canBeOpened(mainLibrary)) return fail("Compiled Main Resource File does not exist: " + mainLibrary);

    if (!ExtractResources(mainLibrary)) return false;
    setProgress(kMainLibraryDone);
    if (!ExtractResources(languageLibrary)) return false;
    setProgress(kLanguageLibraryDone);
    if (!WriteMNUFile(mnuPath)) return false;
    setProgress(kFileWritten);
    return true;
}

bool MNUParser::ExtractResources(const std::string& dllPath) {
    const ResourceLibrary library(dllPath);
    if (!library.module()) return fail("Cannot load DLL " + dllPath);
    mIsEnumerationBroken = false;
    EnumResourceTypesA(library.module(), enumTypes, reinterpret_cast<LONG_PTR>(this));
    if (isCancelled()) return fail("Menu file generation was cancelled");
    if (mIsEnumerationBroken) return fail("Not all resources could be read: " + dllPath);
    mFailure.clear();
    return true;
}

bool MNUParser::EnumNamesFunc(void* module, const char* type, char* name) {
    try {
        return enumName(module, type, name);
    } catch (...) {
        mIsEnumerationBroken = true;
        OB_LOG(LogLevel::ERR) << "Error EnumNamesFunc()";
        return false;
    }
}

bool MNUParser::enumName(void* module, const char* type, const char* name) {
    if (isCancelled() || mIsEnumerationBroken) return false;
    if (IS_INTRESOURCE(name) || resourceKind(name) == ResourceKind::kOther) return true;
    if (const auto text = resourceText(static_cast<HMODULE>(module), type, name)) AddResource(name, *text);
    return true;
}
