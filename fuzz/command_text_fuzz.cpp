// Any text as a command text.
#include <cstddef>
#include <cstdint>

#include "common_sources/mnu/mnu_text.h"
#include "fuzz/check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const TextLine line : {TextLine::kFirst, TextLine::kSecond}) {
        const CommandText result = parseCommandText(text, line);
        check(result.label.find_first_of("&\n") == std::string::npos);
        check(result.helpText.find('\n') == std::string::npos);
        check(result.helpText.empty() || text.find(result.helpText) != text.npos);
        check(result.label.size() + result.helpText.size() <= size);
    }
    return 0;
}
