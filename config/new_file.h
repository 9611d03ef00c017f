#pragma once

#include <fstream>
#include <optional>
#include <string>

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

    std::ostream& stream() { return mStream; }

    // Gives the file its final name. Called once. Result: empty when it is there, otherwise the reason, as
    // "cannot be written: <path>".
    std::optional<std::string> publish();

  private:
    NewFile(const std::string& finalPath, std::string temporaryPath);

    std::string mFinalPath;
    std::string mTemporaryPath;
    std::ofstream mStream;
};
