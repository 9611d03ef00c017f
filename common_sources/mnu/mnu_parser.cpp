// The part of MNUParser that works on texts only; mnu_parser_windows.cpp reads the libraries.
#include "common_sources/mnu/mnu_parser.h"

#include <algorithm>
#include <utility>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/mnu/mnu_text.h"
#include "common_sources/mnu/mnu_writer.h"

namespace {

constexpr char kLogClass[] = "MNUParser";

// Shares of the progress: reading is over at 0.9, and a library has about 50 panes and 3500 command texts.
constexpr double kPaneStep = 0.006;
constexpr double kPaneLimit = 0.3;
constexpr double kCommandStep = 0.00017142857142857145;
constexpr double kCommandLimit = 0.9;
constexpr double kWriteLimit = 0.999999;

}  // namespace

MNUParser::MNUParser() {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

MNUParser::~MNUParser() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

void MNUParser::start(std::atomic<double>* progress, const std::string& language, const std::atomic<bool>* cancel) {
    mProgress = progress;
    mCancel = cancel;
    mTables.clear();
    // The German library has the English texts, too, above the German ones.
    mIsMainLanguage = language == mnu_libraries::kEnglish;
    mIsGermanOutput = language == mnu_libraries::kGerman;
    mFailure.clear();
}

void MNUParser::AddResource(std::string_view name, std::string_view text) {
    switch (resourceKind(name)) {
        case ResourceKind::kPane:
            mTables.setPane(menuKeyOfPane(name), std::string(text));
            advanceProgress(kPaneStep, kPaneLimit);
            break;
        case ResourceKind::kCommandText: {
            const CommandText command = parseCommandText(text, mIsMainLanguage ? TextLine::kFirst : TextLine::kSecond);
            if (!command.label.empty()) {
                AddCommand({.resourceCommandName = resourceCommandName(name),
                            .command = {},
                            .label = codePageFromUtf8(command.label),
                            .helpText = codePageFromUtf8(command.helpText)});
            }
            advanceProgress(kCommandStep, kCommandLimit);
            break;
        }
        case ResourceKind::kOther:
            break;
    }
}

void MNUParser::AddCommand(CommandRecord record) { mTables.addCommand(std::move(record)); }

bool MNUParser::WriteMNUFile(const std::string& mnuPath) {
    OB_LOG(LogLevel::DBG) << "Create MNU File: " << mnuPath;
    const MenuTables::Menus& menus = mTables.menus(mCancel);
    const double step = (1.0 - kCommandLimit) / static_cast<double>(std::max<std::size_t>(menus.size(), 1));
    const auto reason = writeMenuFile(
        mnuPath, menus,
        {.isGerman = mIsGermanOutput, .cancel = mCancel, .afterMenu = [&] { advanceProgress(step, kWriteLimit); }});
    if (reason) return fail(*reason);
    mFailure.clear();
    OB_LOG(LogLevel::DBG) << "MNU File created successfully: " << mnuPath;
    return true;
}

bool MNUParser::fail(std::string text) {
    mFailure = std::move(text);
    OB_LOG(LogLevel::ERR) << mFailure;
    return false;
}

bool MNUParser::isCancelled() const { return mCancel && mCancel->load(std::memory_order_relaxed); }

void MNUParser::setProgress(double value) {
    if (mProgress && value >= 0.0 && value <= 1.0) mProgress->store(value, std::memory_order_relaxed);
}

// A step ends at its limit and never takes back what other steps have reached.
void MNUParser::advanceProgress(double step, double limit) {
    if (!mProgress) return;
    const double value = mProgress->load(std::memory_order_relaxed);
    if (value < limit) setProgress(std::min(value + step, limit));
}
