#pragma once

#include <optional>
#include <string>
#include <string_view>

// Whether something stands under that name: a file that can be opened or not, a folder.
bool isNameTaken(const std::string& path);

// A text file that was not there before and that appears whole or not at all. What is written goes to a temporary file
// beside it; that one takes the final name when all of it has arrived, and never replaces what has the name already.
// One thread at a time. Throws nothing but lack of memory, and leaves no file behind then.
class NewFile {
  public:
    explicit NewFile(const std::string& finalPath);
    ~NewFile();  // without publish() no file is left
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // Adds text, whose lines end as those of a text file of the system. A failure shows in publish().
    void write(std::string_view text);

    // Gives the file its final name. Called once. Result: empty when it is there, otherwise the reason, as
    // "cannot be written: <path>".
    std::optional<std::string> publish();

  private:
    void close();
    NewFile(const std::string& finalPath, std::string temporaryPath);

    std::string mFinalPath;
    std::string mTemporaryPath;
    int mDescriptor = -1;  // negative once it is closed, or could not be opened
    bool mIsGood = false;
};
