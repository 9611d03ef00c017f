#include "common_sources/mnu/mnu_encoding.h"

#ifdef _WIN32
#include <windows.h>

namespace {

std::string recode(std::string_view text, UINT from, UINT to) {
    if (text.empty()) return {};
    const int size = static_cast<int>(text.size());
    std::wstring wide(MultiByteToWideChar(from, 0, text.data(), size, nullptr, 0), L'\0');
    const int wideSize = static_cast<int>(wide.size());
    MultiByteToWideChar(from, 0, text.data(), size, wide.data(), wideSize);
    std::string result(WideCharToMultiByte(to, 0, wide.data(), wideSize, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(to, 0, wide.data(), wideSize, result.data(), static_cast<int>(result.size()), nullptr, nullptr);
    return result;
}

}  // namespace

std::string codePageFromUtf8(std::string_view utf8) { return recode(utf8, CP_UTF8, CP_ACP); }
std::string utf8FromCodePage(std::string_view text) { return recode(text, CP_ACP, CP_UTF8); }
#else
std::string codePageFromUtf8(std::string_view utf8) { return std::string(utf8); }
std::string utf8FromCodePage(std::string_view text) { return std::string(text); }
#endif
