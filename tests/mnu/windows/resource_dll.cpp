#include "tests/mnu/windows/resource_dll.h"

#include <windows.h>

#include <cstring>

bool makeResourceDll(const std::filesystem::path& path, const std::filesystem::path& templateDll,
                     const std::vector<DllResource>& resources) {
    constexpr WORD kNeutralLanguage = 0;
    if (!CopyFileW(templateDll.c_str(), path.c_str(), FALSE)) return false;
    const HANDLE update = BeginUpdateResourceW(path.c_str(), TRUE);
    if (!update) return false;
    bool isDone = true;
    for (const DllResource& resource : resources) {
        std::string bytes = resource.bytes;
        isDone &= UpdateResourceA(update, resource.type, resource.name, kNeutralLanguage, bytes.data(),
                                  static_cast<DWORD>(bytes.size())) != FALSE;
    }
    return EndUpdateResourceW(update, FALSE) != FALSE && isDone;
}

// The optional header differs in five places: its mark, the base, and four sizes that are 4 or 8 bytes each.
std::string withOtherWidth(const std::string& bytes) {
    constexpr std::size_t kBase = 24, kSizes = 72, kSizesCount = 4, kDifference = 16;
    IMAGE_DOS_HEADER dos;
    IMAGE_FILE_HEADER header;
    std::memcpy(&dos, bytes.data(), sizeof dos);
    const std::size_t headerAt = dos.e_lfanew + sizeof(DWORD);
    const std::size_t optionalAt = headerAt + sizeof header;
    std::memcpy(&header, bytes.data() + headerAt, sizeof header);
    const bool isWide = header.Machine == IMAGE_FILE_MACHINE_AMD64;
    const std::size_t from = isWide ? 8 : 4, to = isWide ? 4 : 8;

    std::string sizes;
    for (std::size_t i = 0; i < kSizesCount; ++i) {
        const std::size_t at = optionalAt + kSizes + i * from;
        sizes += bytes.substr(at, 4) + std::string(to - 4, '\0');
    }
    const WORD mark = isWide ? IMAGE_NT_OPTIONAL_HDR32_MAGIC : IMAGE_NT_OPTIONAL_HDR64_MAGIC;
    const std::uint64_t base = 0x10000000;
    std::string result = bytes;
    std::memcpy(&result[optionalAt], &mark, sizeof mark);
    std::memcpy(&result[optionalAt + kBase], isWide ? "\0\0\0\0\0\0\0\x10" : reinterpret_cast<const char*>(&base), 8);
    result.replace(optionalAt + kSizes, kSizesCount * from, sizes);

    // The section table moves; what is behind the headers stays where it is.
    const std::size_t endOfHeaders =
        headerAt + sizeof header + header.SizeOfOptionalHeader + header.NumberOfSections * sizeof(IMAGE_SECTION_HEADER);
    if (isWide) {
        result.insert(endOfHeaders - kDifference, kDifference, '\0');
    } else {
        result.erase(endOfHeaders + kDifference, kDifference);
    }
    header.Machine = isWide ? IMAGE_FILE_MACHINE_I386 : IMAGE_FILE_MACHINE_AMD64;
    header.SizeOfOptionalHeader = static_cast<WORD>(header.SizeOfOptionalHeader + (isWide ? -16 : 16));
    std::memcpy(&result[headerAt], &header, sizeof header);
    return result;
}
