// Any bytes as the panel's bindings: they are refused with their place, or the same when they are written and read
// again.
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>

#include "fuzz/check.h"
#include "workbench/bindings/bind_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace workbench;
    BindFile file;
    try {
        file = parseBindFile({reinterpret_cast<const char*>(data), size}, "any");
    } catch (const std::runtime_error& refusal) {
        check(std::string(refusal.what()).starts_with("any:"));
        return 0;
    }
    std::erase_if(file.modes, [](const auto& mode) { return mode.second.empty(); });
    check(parseBindFile(bindFileText(file), "again") == file);
    return 0;
}
