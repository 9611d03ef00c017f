// Any bytes as each of the files that the doctor looks into: libraries, message files, configurations.
#include <cstddef>
#include <cstdint>

#include "fuzz/check.h"
#include "tools/seat/message_file.h"
#include "tools/seat/pe_file.h"
#include "tools/seat/registration_search.h"
#include "tools/seat/text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto library = seat::readPeFile(bytes)) check(library->exports.size() <= size);
    const auto messages = seat::checkMessageFile(bytes);
    check(messages.messages <= size);
    for (const auto& file : seat::namedRegistrationFiles(bytes)) check(seat::trimmed(file) == file && !file.empty());
    return 0;
}
