// Resource libraries with any content, made while a test runs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct DllResource {
    const char* type;  // text or MAKEINTRESOURCEA
    const char* name;  // text or MAKEINTRESOURCEA
    std::string bytes;
};

// Replaces the resources of a copy of `templateDll`. Answers whether the library could be made.
bool makeResourceDll(const std::filesystem::path& path, const std::filesystem::path& templateDll,
                     const std::vector<DllResource>& resources);

// The same library for the other bit width; `bytes` are those of one that has resources only.
std::string withOtherWidth(const std::string& bytes);
