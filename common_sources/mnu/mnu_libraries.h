// Names of Creo's compiled resource libraries. Languages are in lower case; paths of any script.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace mnu_libraries {

inline constexpr char kEnglish[] = "english";
inline constexpr char kGerman[] = "german";

std::string mainLibrary();                                 // that of the panes
std::string languageLibrary(const std::string& language);  // of the commands; English texts lie in the German one

// Languages whose menu file can be made from the libraries in a folder, sorted; empty without any.
std::vector<std::string> languagesIn(const std::filesystem::path& folder);

}  // namespace mnu_libraries
