#include "config/new_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace {

#ifdef _WIN32
constexpr int kTextFlag = O_TEXT;
#else
constexpr int kTextFlag = 0;
#endif

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
    // In here, so that the file goes again whatever comes.
    mDescriptor = open(mTemporaryPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC | kTextFlag, 0666);
    mIsGood = mDescriptor >= 0;
}

NewFile::NewFile(const std::string& finalPath, std::string temporaryPath)
    : mFinalPath(finalPath), mTemporaryPath(std::move(temporaryPath)) {}

NewFile::~NewFile() {
    close();
    std::remove(mTemporaryPath.c_str());  // a second name by now, or none any more
}

void NewFile::write(std::string_view text) {
    constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
    while (mIsGood && !text.empty()) {
        const auto written =
            ::write(mDescriptor, text.data(), static_cast<unsigned>(std::min(text.size(), kMostAtOnce)));
        mIsGood = written > 0;
        if (mIsGood) text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void NewFile::close() {
    if (mDescriptor >= 0 && ::close(mDescriptor) != 0) mIsGood = false;
    mDescriptor = -1;
}

std::optional<std::string> NewFile::publish() {
    close();
    if (!mIsGood) return "cannot be written: " + mTemporaryPath;
    if (!giveName(mTemporaryPath, mFinalPath))
        return "cannot be created (" + std::string(std::strerror(errno)) + "): " + mFinalPath;
    return std::nullopt;
}
