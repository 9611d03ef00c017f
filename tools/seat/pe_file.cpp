#include "tools/seat/pe_file.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace seat {

namespace {

// Places and numbers of the format.
constexpr std::uint32_t kHeaderPointer = 0x3C;
constexpr std::uint32_t kFileHeaderSize = 20;
constexpr std::uint32_t kSectionHeaderSize = 40;
constexpr std::uint16_t kPlainHeader = 0x010B;  // of a 32-bit file
constexpr std::uint16_t kPlusHeader = 0x020B;   // of a 64-bit file
constexpr std::uint32_t kPlainDirectories = 96;
constexpr std::uint32_t kPlusDirectories = 112;
constexpr std::uint16_t kLibraryFlag = 0x2000;
enum Directory : std::uint32_t { kExports = 0, kImports = 1, kResources = 2 };
constexpr std::uint32_t kImportSize = 20;
constexpr std::uint32_t kVersionType = 16;
constexpr std::uint32_t kBelowFlag = 0x80000000;
constexpr std::uint32_t kFixedInfoSignature = 0xFEEF04BD;
constexpr std::uint32_t kFixedInfoSearch = 64;  // the fixed part stands within the first bytes of the resource

constexpr std::uint32_t kMaxName = 512;
constexpr std::uint32_t kMaxCount = 65536;  // of exports, imports, resource names: more is damage
constexpr std::uint32_t kMaxTypes = 64;     // of resources

class Reader {
  public:
    explicit Reader(std::string_view bytes) : mBytes(bytes) {}

    std::optional<PeFile> read() {
        if (!mBytes.starts_with("MZ")) return std::nullopt;
        const std::uint32_t header = u32(kHeaderPointer);
        if (at(header, 4) != std::string_view("PE\0\0", 4)) return std::nullopt;
        mFileHeader = std::uint64_t{header} + 4;
        mOptionalHeader = mFileHeader + kFileHeaderSize;
        const std::uint16_t kind = u16(mOptionalHeader);
        if (kind != kPlainHeader && kind != kPlusHeader) return std::nullopt;
        mDirectories = mOptionalHeader + (kind == kPlainHeader ? kPlainDirectories : kPlusDirectories);
        PeFile file;
        file.machine = u16(mFileHeader);
        file.isLibrary = (u16(mFileHeader + 18) & kLibraryFlag) != 0;
        readExports(file);
        readImports(file);
        readVersion(file);
        readResourceNames(file);
        return file;
    }

  private:
    // Bytes of the file; empty when not all of them are there.
    std::string_view at(std::uint64_t offset, std::uint64_t size) const {
        if (offset > mBytes.size() || size > mBytes.size() - offset) return {};
        return mBytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
    }

    // Little-endian numbers; 0 when they are not there.
    std::uint32_t number(std::uint64_t offset, unsigned size) const {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const char byte : at(offset, size)) {
            value |= std::uint32_t{static_cast<unsigned char>(byte)} << shift;
            shift += 8;
        }
        return value;
    }
    std::uint16_t u16(std::uint64_t offset) const { return static_cast<std::uint16_t>(number(offset, 2)); }
    std::uint32_t u32(std::uint64_t offset) const { return number(offset, 4); }

    std::string nameAt(std::uint64_t offset) const {
        if (offset >= mBytes.size()) return {};
        const std::string_view text = mBytes.substr(static_cast<std::size_t>(offset), kMaxName);
        return std::string(text.substr(0, text.find('\0')));
    }

    // Place in the file of an address in the loaded image; behind the file's end when there is none.
    std::uint64_t place(std::uint32_t address) const {
        const std::uint32_t sections = u16(mFileHeader + 2);
        const std::uint64_t table = mOptionalHeader + u16(mFileHeader + 16);
        for (std::uint32_t i = 0; i < sections; ++i) {
            const std::uint64_t section = table + std::uint64_t{i} * kSectionHeaderSize;
            const std::uint32_t begin = u32(section + 12);
            const std::uint32_t size = std::max(u32(section + 8), u32(section + 16));
            if (address >= begin && address - begin < size) return std::uint64_t{u32(section + 20)} + (address - begin);
        }
        return mBytes.size();
    }

    std::uint32_t directory(Directory which) const {
        const std::uint32_t count = u32(mDirectories - 4);
        return which < count ? u32(mDirectories + std::uint64_t{which} * 8) : 0;
    }

    void readExports(PeFile& file) const {
        const std::uint32_t address = directory(kExports);
        if (address == 0) return;
        const std::uint64_t table = place(address);
        const std::uint32_t base = u32(table + 16);
        const std::uint32_t count = std::min(u32(table + 20), kMaxCount);
        const std::uint32_t names = std::min(u32(table + 24), kMaxCount);
        const std::uint64_t functions = place(u32(table + 28));
        const std::uint64_t namePointers = place(u32(table + 32));
        const std::uint64_t nameOrdinals = place(u32(table + 36));
        std::vector<std::string> nameOf(at(functions, std::uint64_t{count} * 4).empty() ? 0 : count);
        for (std::uint32_t i = 0; i < names; ++i) {
            if (at(namePointers + std::uint64_t{i} * 4, 4).empty()) break;
            const std::uint16_t index = u16(nameOrdinals + std::uint64_t{i} * 2);
            if (index < nameOf.size()) nameOf[index] = nameAt(place(u32(namePointers + std::uint64_t{i} * 4)));
        }
        for (std::uint32_t i = 0; i < nameOf.size(); ++i) {
            if (u32(functions + std::uint64_t{i} * 4) != 0) file.exports.push_back({base + i, std::move(nameOf[i])});
        }
    }

    void readImports(PeFile& file) const {
        const std::uint32_t address = directory(kImports);
        if (address == 0) return;
        std::uint64_t entry = place(address);
        for (std::uint32_t i = 0; i < kMaxCount; ++i, entry += kImportSize) {
            const std::uint32_t name = u32(entry + 12);
            if (at(entry, kImportSize).empty() || name == 0) return;
            if (std::string text = nameAt(place(name)); !text.empty()) file.imports.push_back(std::move(text));
        }
    }

    // Entries of a resource directory, each the numbers of its name and of what is below.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> resourceEntries(std::uint64_t table) const {
        std::vector<std::pair<std::uint32_t, std::uint32_t>> entries;
        const std::uint32_t count = std::uint32_t{u16(table + 12)} + u16(table + 14);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t entry = table + 16 + std::uint64_t{i} * 8;
            if (at(entry, 8).empty()) break;
            entries.emplace_back(u32(entry), u32(entry + 4));
        }
        return entries;
    }

    // A counted text of UTF-16; what is no ASCII shows as '?'.
    std::string wideName(std::uint64_t offset) const {
        std::string name;
        const std::string_view text = at(offset + 2, std::uint64_t{std::min<std::uint32_t>(u16(offset), kMaxName)} * 2);
        for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
            name += text[i + 1] == 0 && text[i] > 0 ? text[i] : '?';
        }
        return name;
    }

    // Type, name and language are a directory each; below them stands where the bytes are.
    void readVersion(PeFile& file) const {
        const std::uint32_t address = directory(kResources);
        if (address == 0) return;
        const std::uint64_t root = place(address);
        const auto types = resourceEntries(root);
        const auto type = std::ranges::find(types, kVersionType, [](const auto& entry) { return entry.first; });
        if (type == types.end()) return;
        std::uint32_t below = type->second;
        for (int level = 0; level < 2 && (below & kBelowFlag) != 0; ++level) {
            const auto entries = resourceEntries(root + (below & ~kBelowFlag));
            if (entries.empty()) return;
            below = entries.front().second;
        }
        if ((below & kBelowFlag) != 0) return;
        const std::uint64_t data = place(u32(root + below));
        for (std::uint32_t offset = 0; offset < kFixedInfoSearch; offset += 4) {
            const std::uint64_t info = data + offset;
            if (u32(info) != kFixedInfoSignature) continue;
            file.fileVersion = {u16(info + 10), u16(info + 8), u16(info + 14), u16(info + 12)};
            return;
        }
    }

    void readResourceNames(PeFile& file) const {
        const std::uint32_t address = directory(kResources);
        if (address == 0) return;
        const std::uint64_t root = place(address);
        std::uint32_t types = 0;
        for (const auto& [type, names] : resourceEntries(root)) {
            if ((names & kBelowFlag) == 0 || ++types > kMaxTypes) continue;
            for (const auto& [name, below] : resourceEntries(root + (names & ~kBelowFlag))) {
                if (file.resourceNames.size() == kMaxCount) return;
                if ((name & kBelowFlag) != 0) file.resourceNames.push_back(wideName(root + (name & ~kBelowFlag)));
            }
        }
    }

    std::string_view mBytes;
    std::uint64_t mFileHeader = 0;
    std::uint64_t mOptionalHeader = 0;
    std::uint64_t mDirectories = 0;
};

}  // namespace

bool PeFile::hasExport(std::string_view name) const {
    return std::ranges::find(exports, name, &Export::name) != exports.end();
}

bool PeFile::hasExport(std::uint32_t ordinal) const {
    return std::ranges::find(exports, ordinal, &Export::ordinal) != exports.end();
}

std::optional<PeFile> readPeFile(std::string_view bytes) { return Reader(bytes).read(); }

std::string machineName(std::uint16_t machine) {
    if (machine == PeFile::kMachineX86) return "32-bit";
    if (machine == PeFile::kMachineX64) return "64-bit";
    char text[32];
    std::snprintf(text, sizeof text, "machine type 0x%04X", static_cast<unsigned>(machine));
    return text;
}

}  // namespace seat
