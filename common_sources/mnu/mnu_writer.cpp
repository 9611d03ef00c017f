#include "common_sources/mnu/mnu_writer.h"

#include <algorithm>
#include <iterator>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_format.h"
#include "common_sources/mnu/mnu_own_entries.h"
#include "config/new_file.h"

namespace {

constexpr char kLogClass[] = "MNUParser";

// A command whose name Creo's resources know, and the command with an option that does the same.
struct Substitution {
    std::string_view command;
    std::string_view written;
};
constexpr Substitution kSubstitutions[] = {
    {"ProCmdViewWireframe", "ProCmdEnvMdlDisp*Wireframe"},
    {"ProCmdViewShaded", "ProCmdEnvMdlDisp*Shading"},
    {"ProCmdViewHiddenLine", "ProCmdEnvMdlDisp*Hidden line"},
    {"ProCmdViewNoHidden", "ProCmdEnvMdlDisp*No hidden"},
};

constexpr char kCommandEnds[] = {mnu_format::kComment, mnu_format::kCommandEnd, '\0'};
constexpr std::size_t kKeyGap = 5;           // blanks behind the longest label
constexpr std::size_t kMaxLabelSize = 1000;  // every line is as wide as the longest label

using Records = std::vector<const CommandRecord*>;

bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }
bool isControlOtherThanTab(char c) { return c != '\t' && isControl(c); }

std::string_view writtenCommand(std::string_view command) {
    const auto found = std::ranges::find(kSubstitutions, command, &Substitution::command);
    return found == std::end(kSubstitutions) ? command : found->written;
}

Records readableRecords(const Records& records) {
    Records result;
    for (const CommandRecord* record : records) {
        if (const char* reason = unreadableReason(*record)) {
            OB_LOG(LogLevel::WRN) << "Command left out, " << reason << ": " << record->resourceCommandName;
        } else {
            result.push_back(record);
        }
    }
    return result;
}

class MenuFileWriter {
  public:
    MenuFileWriter(std::ostream& out, std::size_t keyWidth) : mOut(out), mKeyWidth(keyWidth) {}

    void writeModes() {
        mOut << mnu_format::kFirstLine << "\n";
        writeSection(mnu_format::kModesSection);
        int number = 0;
        for (const std::string_view mode : mnu_format::kModes) writeEntry(mode, std::to_string(++number));
    }

    void writeOwnMenu(bool isGerman) {
        writeSection(mnu_format::kMenuBarSection);
        writeEntry(mnu_format::kOwnMenu.key, mnu_format::kOwnMenu.value);
        for (const auto& item : isGerman ? mnu_format::kOwnGermanItems : mnu_format::kOwnItems) {
            writeEntry(item.key, item.value);
        }
    }

    void writeMenuKey(std::string_view key) { writeEntry(key, mnu_format::kNoPlacement); }

    void writeCommand(const CommandRecord& record) {
        std::string value(mnu_format::kNoPlacement);
        value.append(writtenCommand(record.command)).append(1, mnu_format::kCommandEnd).append(record.helpText);
        writeEntry(record.label, value);
    }

    void writeEnd() { mOut << ' '; }

  private:
    void writeSection(std::string_view name) { mOut << " \n[" << name << "]\n"; }

    void writeEntry(std::string_view key, std::string_view value) {
        const std::size_t blanks = key.size() < mKeyWidth ? mKeyWidth - key.size() : 0;
        mOut << key << std::string(blanks, ' ') << mnu_format::kKeyEnd << value << '\n';
    }

    std::ostream& mOut;
    std::size_t mKeyWidth;
};

}  // namespace

const char* unreadableReason(const CommandRecord& record) {
    const std::string& label = record.label;
    const auto first = label.find_first_not_of(' ');
    if (first == label.npos) return "its label is blank";
    if (label[first] == mnu_format::kComment) return "its label would be read as a comment";
    if (label[first] == mnu_format::kSectionBegin) return "its label would be read as a section";
    if (label.find(mnu_format::kKeyEndMark) != label.npos) return "its label holds a '='";
    if (std::ranges::any_of(label, isControl)) return "its label holds a control character";
    if (label.size() > kMaxLabelSize) return "its label is too long";
    if (record.command.find_first_of(kCommandEnds) != std::string::npos) return "its name holds a '#' or '|'";
    if (std::ranges::any_of(record.command, isControl)) return "its name holds a control character";
    if (std::ranges::any_of(record.helpText, isControlOtherThanTab)) return "its help text holds a control character";
    return nullptr;
}

std::optional<std::string> writeMenuFile(const std::string& path, const MenuTables::Menus& menus,
                                         const MenuFileOptions& options) {
    static constexpr char kCancelled[] = "Menu file generation was cancelled";
    const auto isCancelled = [&] { return options.cancel && options.cancel->load(std::memory_order_relaxed); };
    if (isNameTaken(path)) return "Menu file exists already: " + path;

    std::map<std::string_view, Records> readable;
    std::size_t longestLabel = 0;
    for (const auto& [key, records] : menus) {
        if (isCancelled()) return kCancelled;
        Records& kept = readable[key] = readableRecords(records);
        std::ranges::stable_sort(kept, {}, &CommandRecord::label);
        for (const CommandRecord* record : kept) longestLabel = std::max(longestLabel, record->label.size());
    }

    NewFile file(path);
    MenuFileWriter writer(file.stream(), longestLabel + kKeyGap);
    writer.writeModes();
    writer.writeOwnMenu(options.isGerman);
    for (const auto& [key, records] : readable) {
        if (!records.empty()) writer.writeMenuKey(key);
        for (const CommandRecord* record : records) {
            if (isCancelled()) return kCancelled;
            writer.writeCommand(*record);
        }
        if (options.afterMenu) options.afterMenu();
    }
    writer.writeEnd();
    const auto reason = file.publish();
    return reason ? "Menu file " + *reason : reason;
}
