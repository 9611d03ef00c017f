#include "common_sources/mnu/mnu_libraries.h"

namespace mnu_libraries {

std::string mainLibrary() { return std::string(kPrefix).append(kSuffix); }

std::string languageLibrary(const std::string& language) {
    return std::string(kPrefix).append(language == kEnglish ? kGerman : language).append("_").append(kSuffix);
}

}  // namespace mnu_libraries
