#include "workbench/host/model/creo_variant.h"

#include <algorithm>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace workbench {
namespace {

struct Deviation {
    const char* name;
    bool CreoVariant::*field;
};
constexpr Deviation DEVIATIONS[] = {
    {"modes", &CreoVariant::hasOtherModes},          {"module", &CreoVariant::hasOtherModule},
    {"matrix", &CreoVariant::hasColumnMatrices},     {"macros", &CreoVariant::runsMacrosAtOnce},
    {"no-menu-bar", &CreoVariant::isWithoutMenuBar}, {"windows", &CreoVariant::hasOtherClasses},
};

}  // namespace

CreoVariant& creoVariant() {
    static CreoVariant variant;
    return variant;
}

CreoVariant parseCreoVariant(const std::string& names) {
    CreoVariant variant;
    std::istringstream in(names);
    for (std::string name; std::getline(in, name, ',');) {
        const auto* known =
            std::find_if(std::begin(DEVIATIONS), std::end(DEVIATIONS), [&](const auto& d) { return name == d.name; });
        if (known == std::end(DEVIATIONS)) throw std::runtime_error("there is no Creo of the variant \"" + name + "\"");
        variant.*known->field = true;
    }
    return variant;
}

}  // namespace workbench
