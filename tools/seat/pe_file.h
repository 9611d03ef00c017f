// What a Windows program or library says of itself. Reads any bytes: what lies outside the file, or cannot be, is left
// out. No code of the file runs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

struct PeFile {
    static constexpr std::uint16_t kMachineX86 = 0x014C;
    static constexpr std::uint16_t kMachineX64 = 0x8664;

    struct Export {
        std::uint32_t ordinal = 0;
        std::string name;  // empty: by ordinal only
    };

    std::uint16_t machine = 0;
    bool isLibrary = false;
    std::vector<Export> exports;
    std::vector<std::string> resourceNames;                   // upper case or not, as they stand; numbers are left out
    std::vector<std::string> imports;                         // names of libraries, as they stand
    std::optional<std::array<std::uint16_t, 4>> fileVersion;  // of the VERSIONINFO resource

    bool hasExport(std::string_view name) const;
    bool hasExport(std::uint32_t ordinal) const;
};

// Nothing when these are not the bytes of such a file.
std::optional<PeFile> readPeFile(std::string_view bytes);

std::string machineName(std::uint16_t machine);  // "32-bit", "64-bit", or the number

}  // namespace seat
