#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/file_text.h"

// Reader of INI-style text files: section headers "[name]", key lines "key = value  # comment" and comment lines.
// The parameters of a section end at the first line that is no key line, so also at an empty one. Failures are kept
// as an error code and never thrown; the caller asks for the text. What only lack of memory keeps from being answered
// is thrown. The file is read once, at the construction; keys and values are views into it, valid as long as this
// object. One thread at a time.
class Cnfg {
  public:
    enum Error : std::int32_t {
        kOk,
        kFileNotFound,
        kSectionNotFound,
        kParameterNotFound,
        kNoFurtherParameter,
        kReadFailed  // the system could not read on, or memory was short
    };

    // Reads the file. When it cannot be opened every call answers kFileNotFound.
    explicit Cnfg(const std::string& fileName);

    bool isOpen() const { return mFile.isOpen(); }
    std::size_t size() const { return mFile.text().size(); }  // of the text, in bytes

    // Looks a key up in a section; an empty section name goes on from the current place instead. Names and keys are
    // compared exactly. Result kOk, or the error with `value` empty.
    std::int32_t readParameter(std::string_view section, std::string_view key, std::string_view& value);

    // Rewinds and finds a section's header; nextParameter() then starts with the line behind it.
    std::int32_t positionOnSection(std::string_view section);

    // Reads the next key line of the current section. Result kOk, or kNoFurtherParameter with both texts empty.
    std::int32_t nextParameter(std::string_view& key, std::string_view& value);

    // Text of the last call's error.
    std::string errorText() const;

    // How a single line, without its line feed, is read; the texts point into it.
    struct Line {
        std::string_view section;  // name of a section header
        std::string_view key;      // empty when the line has no key
        std::string_view value;
        bool isSection = false;
    };
    static Line split(std::string_view line);

  private:
    std::int32_t fail(Error error) { return mError = error; }
    // Of a line that is not there: `error` at the end of the file, kReadFailed before it.
    std::int32_t failAtEnd(Error error) { return fail(mFile.isWhole() ? error : kReadFailed); }
    bool nextLine(std::string_view& line);
    std::int32_t listSection(std::string_view section);

    // The section that was looked into last. Its lines are split once, however many keys are asked for.
    struct Entry {
        std::string_view key, value;
        std::size_t end;  // of its line
    };
    struct Listed {
        bool isValid = false;
        std::string section;
        std::vector<Entry> entries;
        std::size_t end = 0;   // of the line that ended it
        Error endError = kOk;  // of that line
    };

    std::string mFileName;
    std::string mSection;    // last asked for
    std::string mParameter;  // last asked for
    FileText mFile;
    std::size_t mAt = 0;  // begin of the next line
    Listed mListed;
    Error mError = kOk;
};
