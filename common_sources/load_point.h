// What the plug-in knows of an installation of Creo by its own looking: where its texts lie, and which language holds.
#pragma once

#include <filesystem>
#include <string>

// Folder of the compiled resource libraries below a load point.
std::filesystem::path compiledResources(const std::filesystem::path& loadPoint);

// The nearest folder above Creo's executable that has compiled resources; empty when there is none.
std::filesystem::path findLoadPoint(const std::filesystem::path& executable);

struct CreoLanguage {
    std::string name;     // lower case, as in the libraries' names; empty when nothing names one
    const char* decider;  // what named it: a setting, a variable, the system
};

// The setting mnuLanguage when it is not empty, then the variables PRO_LANG and LANG, then the system's language.
CreoLanguage creoLanguage(const std::string& mnuLanguage);
