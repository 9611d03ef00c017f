// What the plug-in knows of an installation of Creo by its own looking: where its texts lie, and which language holds.
#pragma once

#include <filesystem>
#include <string>

// A path of any script. Not std::filesystem's own class, whose conversions would bring half a megabyte of locales into
// the plug-in; it converts to and from this one.
using NativePath = std::filesystem::path::string_type;

// Folder of the compiled resource libraries below a load point.
NativePath compiledResources(const NativePath& loadPoint);

// The nearest folder above Creo's executable that has compiled resources; empty when there is none.
NativePath findLoadPoint(const NativePath& executable);

struct CreoLanguage {
    std::string name;     // lower case, as in the libraries' names; empty when nothing names one
    const char* decider;  // what named it: a setting, a variable, the system
};

// The setting mnuLanguage when it is not empty, then the variables PRO_LANG and LANG, then the system's language.
CreoLanguage creoLanguage(const std::string& mnuLanguage);
