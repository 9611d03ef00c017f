#include "config/file_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace {

#ifdef _WIN32
constexpr int kTextFlag = O_TEXT, kBinaryFlag = O_BINARY;
#else
constexpr int kTextFlag = 0, kBinaryFlag = 0;
#endif

// Not filled with zeros first: all of it is read into.
std::unique_ptr<char[]> memory(std::size_t size) { return std::make_unique_for_overwrite<char[]>(size); }

}  // namespace

FileText::FileText(const std::string& path, Mode mode) {
    const int descriptor = open(path.c_str(), O_RDONLY | (mode == Mode::text ? kTextFlag : kBinaryFlag));
    if (descriptor < 0) return;
    mIsOpen = true;
    try {
        read(descriptor);
    } catch (const std::bad_alloc&) {  // the rest is not read
    }
    close(descriptor);
}

void FileText::read(int descriptor) {
    constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
    // One byte more, which tells the end; a file may also grow, or be one without a size.
    struct stat facts {};
    const bool hasSize = fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
    std::size_t capacity = (hasSize ? static_cast<std::size_t>(facts.st_size) : 0) + 1;
    mBytes = memory(capacity);
    for (;;) {
        if (mSize == capacity) {
            auto larger = memory(capacity *= 2);
            std::memcpy(larger.get(), mBytes.get(), mSize);
            mBytes = std::move(larger);
        }
        const auto count = static_cast<unsigned>(std::min(capacity - mSize, kMostAtOnce));
        const auto got = ::read(descriptor, mBytes.get() + mSize, count);
        if (got < 0 && mSize == 0) mIsOpen = false;  // some systems open a folder like a file
        mIsWhole = got == 0;
        if (got <= 0) return;
        mSize += static_cast<std::size_t>(got);
    }
}
