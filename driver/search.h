// The search for the driver library: which places are tried, and why each of them did not do. Windows only, any thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

// The places for a plug-in and a host with these files: the folder of the one, of the other, the system's; empty ones
// are left out. Never the current directory, never along PATH.
std::vector<std::wstring> driverPlaces(const std::wstring& pluginFile, const std::wstring& hostFile);

struct DriverSearch {
    struct Failure {
        std::wstring file;
        DWORD code;  // the system's
    };
    HMODULE library = nullptr;      // the caller frees it; null when no place had one that can be loaded
    std::wstring file;              // of the library
    std::vector<Failure> failures;  // of the places tried before, in order
};

// Loads the library from the first place that has one. What it needs itself comes from its own folder or the system's.
DriverSearch loadDriver(const std::vector<std::wstring>& places);

// Why a file could not be loaded, in words: not there, wrong machine type, something it needs is missing.
std::string loadingProblem(DWORD code);

// Those of the ten operations' ordinals that a library does not have.
std::vector<std::uint16_t> missingOrdinals(HMODULE library);

// Makes the operations of obk_ctrlr.h those of this library instead of the one that their own search finds; null: of
// none, until the next connection attempt.
void useDriver(HMODULE library);
