// Names of Creo's compiled resource libraries. Languages are in lower case; paths of any script.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace mnu_libraries {

// Of a library's file name, around the language.
inline constexpr std::string_view kPrefix = "pro_default_";
inline constexpr std::string_view kSuffix = "resources.dll";

inline constexpr char kEnglish[] = "english";
inline constexpr char kGerman[] = "german";

std::string mainLibrary();                                 // that of the panes
std::string languageLibrary(const std::string& language);  // of the commands; English texts lie in the German one

// Languages whose menu file can be made from the libraries in a folder, sorted; empty without any.
std::vector<std::string> languagesIn(const std::filesystem::path& folder);

}  // namespace mnu_libraries
