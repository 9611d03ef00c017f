#include "OB_Daemon/src/without_log.h"

#include <cstdio>

#ifdef _WIN32
#include <direct.h>
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace {

// Not std::filesystem: its narrow paths are UTF-8, a user profile's are in the process code page.
void makeDirectory(const std::string& path) {
#ifdef _WIN32
    _mkdir(path.c_str());
#else
    mkdir(path.c_str(), 0777);
#endif
}

}  // namespace

void makeDirectories(const std::string& path) {
    for (auto end = path.find(kPathSeparator, 1); end != std::string::npos; end = path.find(kPathSeparator, end + 1)) {
        makeDirectory(path.substr(0, end));
    }
    makeDirectory(path);
}

void tellWithoutLog(const std::string& text) {
    const std::string line = "Orbikon Creo plug-in: " + text + "\n";
#ifdef _WIN32
    OutputDebugStringA(line.c_str());
#endif
    std::fputs(line.c_str(), stderr);
}
