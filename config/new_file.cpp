#include "config/new_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

// Windows' rename refuses to replace a file, and so does link().
bool giveName(const std::string& file, const std::string& name) {
#ifdef _WIN32
    return std::rename(file.c_str(), name.c_str()) == 0;
#else
    return link(file.c_str(), name.c_str()) == 0;
#endif
}

}  // namespace

bool isNameTaken(const std::string& path) {
    return access(path.c_str(), F_OK) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

// The process id keeps two Creos that start at the same time apart. What a crash has left is overwritten.
NewFile::NewFile(const std::string& finalPath)
    : NewFile(finalPath, finalPath + "." + std::to_string(getpid()) + ".tmp") {
    mStream.open(mTemporaryPath);  // in here, so that the file goes again when opening it runs out of memory
}

NewFile::NewFile(const std::string& finalPath, std::string temporaryPath)
    : mFinalPath(finalPath), mTemporaryPath(std::move(temporaryPath)) {}

NewFile::~NewFile() {
    mStream.close();
    std::remove(mTemporaryPath.c_str());  // a second name by now, or none any more
}

std::optional<std::string> NewFile::publish() {
    mStream.close();
    if (!mStream) return "cannot be written: " + mTemporaryPath;
    if (!giveName(mTemporaryPath, mFinalPath))
        return "cannot be created (" + std::string(std::strerror(errno)) + "): " + mFinalPath;
    return std::nullopt;
}
