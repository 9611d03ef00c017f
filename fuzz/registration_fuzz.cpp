// Any bytes as a registration file: our entry goes in and out again, and all else stays to the byte and in order.
#include "tools/seat/registration_file.h"

#include <cstddef>
#include <cstdint>

#include "fuzz/check.h"

using namespace seat;

namespace {

bool isSame(const RegistrationEntry& a, const RegistrationEntry& b) {
    if (a.isClosed != b.isClosed || a.fields.size() != b.fields.size()) return false;
    for (std::size_t i = 0; i < a.fields.size(); ++i) {
        if (a.fields[i].keyword != b.fields[i].keyword || a.fields[i].value != b.fields[i].value) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const RegistrationFields fields = registrationOf(kPluginId, "C:\\a\\orbikon_creo.dll", "C:\\a");
    RegistrationFile file(std::string(reinterpret_cast<const char*>(data), size));
    check(file.bytes().size() == size);
    file.remove(kPluginId);
    check(file.entriesOf(kPluginId).empty());
    const RegistrationFile without = file;

    file.set(kPluginId, fields);
    const auto own = file.entriesOf(kPluginId);
    check(own.size() == 1 && own[0]->fields.size() == fields.size());
    std::size_t next = 0;
    for (const auto& entry : file.entries()) {
        if (&entry != own[0]) check(isSame(entry, without.entries()[next++]));
    }
    check(next == without.entries().size());

    const std::string once = file.bytes();
    file.set(kPluginId, fields);
    check(file.bytes() == once);
    check(file.remove(kPluginId));
    check(file.bytes() == without.bytes());
    return 0;
}
