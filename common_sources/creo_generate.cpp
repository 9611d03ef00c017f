// First start: has the menu file generated from Creo's compiled resource libraries, and read. Files need no toolkit, so
// this runs on a thread of its own and Creo's message loop goes on; the timer looks whether it has ended.
#include <pthread.h>
#include <windows.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/load_point.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/settings.h"
#include "config/cnfg.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr DWORD kLongestPath = 32768;  // characters, with the end

NativePath ownExecutable() {
    NativePath path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    return path;
}

// In the process code page, as the generation takes it.
std::string narrow(const NativePath& path) {
    const int length = static_cast<int>(path.size());
    std::string result(WideCharToMultiByte(CP_ACP, 0, path.data(), length, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(CP_ACP, 0, path.data(), length, result.data(), static_cast<int>(result.size()), nullptr,
                        nullptr);
    return result;
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
    bool hasSucceeded = false;                 // this and what follows: valid once isRunning is false
    std::unique_ptr<MenuFileContent> content;  // of the file; null when it could not be read
    pthread_t thread{};

    void readMenuFile() {
        Cnfg file(menuFile);
        auto read = std::make_unique<MenuFileContent>(readMenuFileContent(file));
        if (file.isOpen() && read->isWhole) content = std::move(read);
    }
};

// Starts the generation; once it runs, tells how it stands, and forgets it when it has ended.
CreoProxy::Generation CreoProxy::createMNUFile(const std::string& path) {
    if (mGeneration != nullptr) {
        if (mGeneration->isRunning) return Generation::running;
        const bool hasSucceeded = mGeneration->hasSucceeded;
        mGeneratedContent = std::move(mGeneration->content);
        endGeneration();
        return hasSucceeded ? Generation::succeeded : Generation::failed;
    }
    const NativePath loadpoint = findLoadPoint(ownExecutable());
    const CreoLanguage language = creoLanguage(mSettings.mMNULanguage);
    if (loadpoint.empty() || language.name.empty()) {
        OB_LOG(LogLevel::ERR) << "Cannot determine loadpoint and/or language";
        return Generation::failed;
    }
    mGeneration = std::make_shared<GenerationJob>();
    mGeneration->progress = &mHandOver.menuFileProgress;
    mGeneration->isCancelled = &mHandOver.isEnding;
    mGeneration->menuFile = path;
    mGeneration->resourceFolder = narrow(compiledResources(loadpoint));
    mGeneration->language = language.name;
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
    if (job->hasSucceeded) atEdge({kLogClass, "generationEntry"}, [job] { job->readMenuFile(); });
    job->isRunning = false;
    return nullptr;
}

// Waits for the generating thread, which looks every few entries whether it is cancelled.
void CreoProxy::endGeneration() {
    if (mGeneration == nullptr) return;
    pthread_join(mGeneration->thread, nullptr);
    mGeneration.reset();
}
