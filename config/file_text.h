// The whole of a file, read at once.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

// Opened and read to its end when it is constructed, and closed again. Nothing is thrown.
class FileText {
  public:
    enum class Mode { text, binary };  // Windows has other line ends in a text
    FileText(const std::string& path, Mode mode);

    // False for what is not there or cannot be read at all, a folder for instance.
    bool isOpen() const { return mIsOpen; }
    // False when the system could not read on, or memory was short; the text is what came before.
    bool isWhole() const { return mIsWhole; }
    std::string_view text() const { return {mBytes.get(), mSize}; }

  private:
    void read(int descriptor);

    std::unique_ptr<char[]> mBytes;
    std::size_t mSize = 0;
    bool mIsOpen = false;
    bool mIsWhole = false;
};
