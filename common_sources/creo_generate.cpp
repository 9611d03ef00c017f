// First start: has the menu file generated from Creo's compiled resource libraries. Reading libraries and writing a
// file need no toolkit, so this runs on a thread of its own and Creo's message loop goes on; the timer looks whether
// it has ended.
#include <pthread.h>
#include <windows.h>

#include <atomic>
#include <cctype>
#include <cstdlib>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/settings.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr char kResourceFolder[] = "\\text\\compiled_resource";
constexpr std::size_t kModulePathSize = 512;
constexpr std::size_t kShortestFolder = 4;  // longer than a drive's root
constexpr int kLanguageNameSize = 32;

bool isDirectory(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The nearest folder above Creo's executable that has compiled resources; empty when there is none.
std::string findLoadpoint() {
    char buffer[kModulePathSize] = "";
    const DWORD size = GetModuleFileNameA(nullptr, buffer, kModulePathSize);
    std::string folder(buffer, size < kModulePathSize ? size : 0);
    for (;;) {
        const auto cut = folder.rfind('\\');
        if (cut == std::string::npos || cut < kShortestFolder) return {};
        folder.resize(cut);
        if (isDirectory(folder + kResourceFolder)) return folder;
    }
}

std::string systemLanguage() {
    char name[kLanguageNameSize] = "";
    GetLocaleInfoA(LOCALE_SYSTEM_DEFAULT, LOCALE_SENGLANGUAGE, name, kLanguageNameSize);
    return name;
}

void replaceIfSet(std::string& text, const char* variable) {
    if (const char* value = std::getenv(variable)) text = value;
}

}  // namespace

// The running generation. Creo's thread owns it; the generating thread reads the texts and writes the outcome.
struct CreoProxy::GenerationJob {
    std::atomic<double>* progress;
    std::string menuFile;
    std::string resourceFolder;
    std::string language;
    const std::atomic<bool>* isCancelled;
    std::atomic<bool> isRunning{true};
    bool hasSucceeded = false;  // valid once isRunning is false
    pthread_t thread{};
};

bool CreoProxy::getLoadpointAndLanguage(std::string& loadpoint, std::string& language) const {
    loadpoint = findLoadpoint();
    language = systemLanguage();
    replaceIfSet(language, "LANG");
    replaceIfSet(language, "PRO_LANG");
    if (!mSettings.mMNULanguage.empty()) language = mSettings.mMNULanguage;
    for (char& c : language) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return !loadpoint.empty() && !language.empty();
}

// Starts the generation; once it runs, tells how it stands, and forgets it when it has ended.
CreoProxy::Generation CreoProxy::createMNUFile(const std::string& path) {
    if (mGeneration != nullptr) {
        if (mGeneration->isRunning) return Generation::running;
        const bool hasSucceeded = mGeneration->hasSucceeded;
        endGeneration();
        return hasSucceeded ? Generation::succeeded : Generation::failed;
    }
    std::string loadpoint, language;
    if (!getLoadpointAndLanguage(loadpoint, language)) {
        OB_LOG(LogLevel::ERR) << "Cannot determine loadpoint and/or language";
        return Generation::failed;
    }
    mGeneration = std::make_shared<GenerationJob>();
    mGeneration->progress = &mHandOver.menuFileProgress;
    mGeneration->isCancelled = &mHandOver.isEnding;
    mGeneration->menuFile = path;
    mGeneration->resourceFolder = loadpoint + kResourceFolder;
    mGeneration->language = language;
    mHandOver.menuFileProgress = 0.0;
    if (pthread_create(&mGeneration->thread, nullptr, &generationEntry, mGeneration.get()) != 0) {
        OB_LOG(LogLevel::ERR) << "Error creating generating thread!";
        mGeneration.reset();
        return Generation::failed;
    }
    return Generation::running;
}

void* CreoProxy::generationEntry(void* generation) {
    auto* job = static_cast<GenerationJob*>(generation);
    job->hasSucceeded = atEdge({kLogClass, "generationEntry"}, false, [job] {
        MNUParser parser;
        return parser.CreateMNU(job->progress, job->menuFile, job->resourceFolder, job->language, job->isCancelled);
    });
    job->isRunning = false;
    return nullptr;
}

// Waits for the generating thread, which looks every few entries whether it is cancelled.
void CreoProxy::endGeneration() {
    if (mGeneration == nullptr) return;
    pthread_join(mGeneration->thread, nullptr);
    mGeneration.reset();
}
