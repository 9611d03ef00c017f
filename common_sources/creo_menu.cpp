// Reads the menu file into the table by which a button's function index becomes a command.
#include <memory>
#include <utility>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "common_sources/load_point.h"
#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/settings.h"
#include "config/cnfg.h"
#include "config/new_file.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr char kMenuFile[] = "Creo.mnu";
constexpr char kRenewal[] = "; delete it, start Creo, which makes it anew, and bind the device's buttons again.";
constexpr std::chrono::seconds kPatience{30};  // with a menu file that another program holds

// A menu file that can be read and still does not serve the user.
void tellMistakes(const std::string& path, std::size_t commands, const OwnLanguage& own,
                  const std::string& mnuLanguage) {
    const std::string language = creoLanguage(mnuLanguage).name;
    if (commands == 0) {
        OB_LOG_IN(LogLevel::WRN, "loadMenufile")
            << "Menu file '" << path << "' has no entry, buttons run no commands" << kRenewal;
    } else if (own.isForeignTo(language)) {
        OB_LOG_IN(LogLevel::WRN, "loadMenufile")
            << "Menu file '" << path << "' is " << (own.isGerman ? "German" : "English") << ", Creo's language is '"
            << language << "'" << kRenewal;
    }
}

}  // namespace

bool CreoProxy::isMenuFileAwaited() const {
    return mMenuFileDeadline || mHandOver.menuFileProgress != HandOver::kProgressDone;
}

void CreoProxy::loadMenufile() {
    const std::string path = mSettings.settingsDirPath() + kPathSeparator + kMenuFile;
    if (!generateMenuFile(path)) return;
    if (const auto content = std::exchange(mGeneratedContent, nullptr)) {
        OB_LOG(LogLevel::DBG) << "Loading menu file ...";
        takeMenuFile(std::move(*content), path);
        return;
    }
    // Another program may hold the file just now, and memory may be short: later ticks try again, for a while.
    const auto now = std::chrono::steady_clock::now();
    const bool isFirstTry = !mMenuFileDeadline.has_value();
    if (isFirstTry) mMenuFileDeadline = now + kPatience;
    const bool isLastTry = now >= *mMenuFileDeadline;
    if (isLastTry) mMenuFileDeadline.reset();
    Cnfg file(path);
    if (file.isOpen() && readMenuFile(file, path)) {
        mMenuFileDeadline.reset();
    } else if (isFirstTry) {
        OB_LOG(LogLevel::WRN) << "Menu file '" << path << "' cannot be read, trying again for " << kPatience.count()
                              << " s; close the program that holds it.";
    } else if (isLastTry) {
        OB_LOG(LogLevel::ERR) << "Menu file '" << path << "' could not be read, buttons run no commands; close the "
                              << "program that holds it and start Creo again.";
    }
}

// Answers whether there is a file to be read by now. What is there, readable or not, is never generated over.
bool CreoProxy::generateMenuFile(const std::string& path) {
    // Whatever comes, the generation is at its end then, and the reading thread is not kept waiting.
    struct ProgressGuard {
        std::atomic<double>& progress;
        bool isAtEnd = true;
        ~ProgressGuard() {
            if (isAtEnd) progress = HandOver::kProgressDone;
        }
    } guard{mHandOver.menuFileProgress};

    if (mGeneration == nullptr && isNameTaken(path)) return true;
    // One that was there is perhaps being replaced.
    if (guard.progress == HandOver::kProgressDone) return mMenuFileDeadline.has_value();
    const Generation generation = createMNUFile(path);
    guard.isAtEnd = generation != Generation::running;
    return generation == Generation::succeeded && isNameTaken(path);
}

bool CreoProxy::readMenuFile(Cnfg& file, const std::string& path) {
    OB_LOG(LogLevel::DBG) << "Loading menu file ...";
    MenuFileContent content = readMenuFileContent(file);
    if (!content.isWhole) return false;
    takeMenuFile(std::move(content), path);
    return true;
}

void CreoProxy::takeMenuFile(MenuFileContent content, const std::string& path) {
    mHandOver.publishModeNames(std::move(content.modeNames));
    mMenuFunctions = std::move(content.commands);
    OB_LOG(LogLevel::TRC) << "Menu file '" << path << "' with " << mMenuFunctions.size() << " entries loaded.";
    tellMistakes(path, mMenuFunctions.size(), content.ownLanguage, mSettings.mMNULanguage);
}
