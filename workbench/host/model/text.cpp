#include "workbench/host/model/text.h"

#include <windows.h>

#include <fstream>
#include <iterator>

namespace workbench {
namespace {

std::wstring toWide(std::string_view text, UINT codePage) {
    const int size = static_cast<int>(text.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(codePage, 0, text.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

}  // namespace

std::optional<std::string> readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string wideToUtf8(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string out(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, out.data(), static_cast<int>(out.size()), nullptr, nullptr);
    return out;
}

std::wstring utf8ToWide(std::string_view text) { return toWide(text, CP_UTF8); }
std::wstring ansiToWide(std::string_view text) { return toWide(text, CP_ACP); }

std::string fileTextToUtf8(std::string_view bytes) {
    constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    if (bytes.starts_with(BYTE_ORDER_MARK)) return std::string(bytes.substr(BYTE_ORDER_MARK.size()));
    return wideToUtf8(ansiToWide(bytes));
}

}  // namespace workbench
