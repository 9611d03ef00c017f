#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

// Reader of INI-style text files: section headers "[name]", key lines "key = value  # comment" and comment lines.
// The parameters of a section end at the first line that is no key line, so also at an empty one. Failures are kept
// as an error code and never thrown; the caller asks for the text. What only lack of memory keeps from being answered
// is thrown. One thread at a time.
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

    // Opens the file for reading. When that fails every call answers kFileNotFound.
    explicit Cnfg(const std::string& fileName);

    bool isOpen() const { return mStream.is_open(); }

    // Looks a key up in a section; an empty section name goes on from the current place instead. Names and keys are
    // compared exactly. Result kOk, or the error with `value` empty.
    std::int32_t readParameter(const std::string& section, const std::string& key, std::string& value);

    // Rewinds and finds a section's header; nextParameter() then starts with the line behind it.
    std::int32_t positionOnSection(const std::string& section);

    // Reads the next key line of the current section. Result kOk, or kNoFurtherParameter with both texts empty.
    std::int32_t nextParameter(std::string& key, std::string& value);

    // Text of the last call's error.
    std::string errorText() const;

    // How a single line is read; the texts point into it.
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
    std::int32_t failAtEnd(Error error) { return fail(mStream.bad() ? kReadFailed : error); }

    std::string mFileName;
    std::string mSection;    // last asked for
    std::string mParameter;  // last asked for
    std::string mLine;       // last read; what split() answers points into it
    std::ifstream mStream;
    std::int32_t mError = kOk;
};
