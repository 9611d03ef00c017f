// Reads the menu file into the table by which a button's function index becomes a command.
#include <fstream>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/settings.h"
#include "config/cnfg.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr char kMenuFile[] = "Creo.mnu";

bool canBeRead(const std::string& path) { return std::ifstream(path).good(); }

}  // namespace

void CreoProxy::loadMenufile() {
    // Whatever comes, loading is at its end then, and the reading thread is not kept waiting.
    struct ProgressGuard {
        std::atomic<double>& progress;
        bool isAtEnd = true;
        ~ProgressGuard() {
            if (isAtEnd) progress = HandOver::kProgressDone;
        }
    } guard{mHandOver.menuFileProgress};

    const std::string path = mSettings.settingsDirPath() + kPathSeparator + kMenuFile;
    if (mGeneration != nullptr || !canBeRead(path)) {
        const Generation generation = createMNUFile(path);
        guard.isAtEnd = generation != Generation::running;
        if (generation != Generation::succeeded || !canBeRead(path)) return;
    }
    readMenuFile(path);
}

void CreoProxy::readMenuFile(const std::string& path) {
    OB_LOG(LogLevel::DBG) << "Loading menu file ...";
    Cnfg file(path);
    if (!file.isOpen()) {
        OB_LOG(LogLevel::ERR) << file.errorText();
        return;
    }
    MenuFileContent content = readMenuFileContent(file);
    mHandOver.publishModeNames(std::move(content.modeNames));
    mMenuFunctions = std::move(content.commands);
    OB_LOG(LogLevel::TRC) << "Menu file '" << path << "' with " << mMenuFunctions.size() << " entries loaded.";
}
