#include "common_sources/mnu/mnu_writer.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <vector>

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
constexpr std::size_t kWrittenAtOnce = std::size_t{64} * 1024;
constexpr std::size_t kKeyGap = 5;           // blanks behind the longest label
constexpr std::size_t kMaxLabelSize = 1000;  // every line is as wide as the longest label

using Records = std::vector<const CommandRecord*>;

bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }
bool isControlOtherThanTab(char c) { return c != '\t' && isControl(c); }

std::string_view writtenCommand(std::string_view command) {
    const auto found = std::ranges::find(kSubstitutions, command, &Substitution::command);
    return found == std::end(kSubstitutions) ? command : found->written;
}

// A command that stands in menus. Most stand in many, so that each is judged, ranked and put into its line once.
struct Item {
    const CommandRecord* record;
    const char* unreadable;  // reason, or null
    std::size_t rank = 0;    // order of the labels; the same for the same ones
    std::string line = {};
};

class Items {
  public:
    explicit Items(const MenuTables::Menus& menus) {
        for (const auto& [key, records] : menus) {
            for (const CommandRecord* record : records) {
                if (mNumbers.emplace(record, mItems.size()).second)
                    mItems.push_back({record, unreadableReason(*record)});
            }
        }
        std::vector<Item*> sorted;
        for (Item& item : mItems) {
            if (!item.unreadable) sorted.push_back(&item);
        }
        const auto label = [](const Item* item) -> const std::string& { return item->record->label; };
        std::ranges::sort(sorted, {}, label);
        std::size_t rank = 0;
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            if (i > 0 && label(sorted[i]) != label(sorted[i - 1])) ++rank;
            sorted[i]->rank = rank;
            mLongestLabel = std::max(mLongestLabel, label(sorted[i]).size());
        }
    }

    std::size_t longestLabel() const { return mLongestLabel; }

    // Those of a menu that the file's readers can read back, in the order of their labels. The others are logged.
    std::vector<Item*> readable(const Records& records) {
        std::vector<Item*> result;
        for (const CommandRecord* record : records) {
            Item& item = mItems[mNumbers.at(record)];
            if (item.unreadable) {
                OB_LOG(LogLevel::WRN) << "Command left out, " << item.unreadable << ": " << record->resourceCommandName;
            } else {
                result.push_back(&item);
            }
        }
        std::ranges::stable_sort(result, {}, &Item::rank);
        return result;
    }

  private:
    std::vector<Item> mItems;
    std::unordered_map<const CommandRecord*, std::size_t> mNumbers;
    std::size_t mLongestLabel = 0;
};

class MenuFileWriter {
  public:
    MenuFileWriter(NewFile& file, std::size_t keyWidth) : mFile(file), mKeyWidth(keyWidth) {}

    void writeModes() {
        mText.append(mnu_format::kFirstLine).append("\n");
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

    void writeCommand(Item& item) {
        if (item.line.empty()) {
            const CommandRecord& record = *item.record;
            appendKey(item.line, record.label);
            item.line.append(mnu_format::kNoPlacement).append(writtenCommand(record.command));
            item.line.append(1, mnu_format::kCommandEnd).append(record.helpText).append("\n");
        }
        mText += item.line;
        if (mText.size() >= kWrittenAtOnce) flush();
    }

    void writeEnd() {
        mText += ' ';
        flush();
    }

  private:
    void writeSection(std::string_view name) { mText.append(" \n[").append(name).append("]\n"); }

    void writeEntry(std::string_view key, std::string_view value) {
        appendKey(mText, key);
        mText.append(value).append("\n");
    }

    void appendKey(std::string& text, std::string_view key) const {
        const std::size_t blanks = key.size() < mKeyWidth ? mKeyWidth - key.size() : 0;
        text.append(key).append(blanks, ' ').append(mnu_format::kKeyEnd);
    }

    void flush() {
        mFile.write(mText);
        mText.clear();
    }

    NewFile& mFile;
    std::string mText;  // not written yet
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

    if (isCancelled()) return kCancelled;
    Items items(menus);
    NewFile file(path);
    MenuFileWriter writer(file, items.longestLabel() + kKeyGap);
    writer.writeModes();
    writer.writeOwnMenu(options.isGerman);
    for (const auto& [key, records] : menus) {
        const std::vector<Item*> readable = items.readable(records);
        if (!readable.empty()) writer.writeMenuKey(key);
        for (Item* item : readable) {
            if (isCancelled()) return kCancelled;
            writer.writeCommand(*item);
        }
        if (options.afterMenu) options.afterMenu();
    }
    writer.writeEnd();
    const auto reason = file.publish();
    return reason ? "Menu file " + *reason : reason;
}
