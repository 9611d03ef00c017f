// Any two names of resources: each is of one kind, and menu keys of panes are apart, in the names' order, and readable
// in a menu file. The input is the two names; as panes they get the ending.
#include "common_sources/mnu/mnu_text.h"
#include "fuzz/check.h"
#include "fuzz/texts.h"

namespace {

constexpr std::string_view kPaneEnd = "_pane.res";

void checkKind(const std::string& name) {
    const std::string upper = asciiUpper(name);
    const ResourceKind kind = resourceKind(name);
    check(kind == resourceKind(upper));
    if (kind == ResourceKind::kPane) check(upper.ends_with(asciiUpper(kPaneEnd)));
    if (kind == ResourceKind::kCommandText) check(resourceCommandName(name) + ".TXT" == upper);
}

std::string keyOf(const std::string& name) {
    const std::string pane = name + std::string(kPaneEnd);
    check(resourceKind(pane) == ResourceKind::kPane);
    const std::string key = menuKeyOfPane(pane);
    check(key.starts_with('0') && key.find_first_of("=#") == std::string::npos && !key.ends_with(' '));
    for (const char c : key) check(static_cast<unsigned char>(c) >= ' ');
    return key;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = textOf(data, size);
    const std::string one = takeText(rest), other = takeText(rest);
    checkKind(one);
    checkKind(other);
    const std::string oneUpper = asciiUpper(one), otherUpper = asciiUpper(other);
    check((oneUpper < otherUpper) == (keyOf(one) < keyOf(other)));
    check((oneUpper == otherUpper) == (keyOf(one) == keyOf(other)));
    return 0;
}
