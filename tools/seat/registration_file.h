// A registration file of Creo (protk.dat, creotk.dat): entries of "keyword value" lines, each closed by "end".
//
// The file is kept to the byte. What is added or removed is exactly one application's entry; everything else, with its
// line ends, encoding, order, comments and unfinished entries, stays as it is. Texts are the file's bytes; the caller
// knows their encoding. Keywords and names compare in any letter case. One thread at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace seat {

struct RegistrationField {
    std::string keyword;  // in lower case
    std::string value;    // without blanks at its ends
};
using RegistrationFields = std::vector<RegistrationField>;

struct RegistrationEntry {
    RegistrationFields fields;  // without "end"
    bool isClosed = false;      // by "end"; Creo takes what follows an open entry for a part of it
    std::size_t line = 0;       // of its first field, from 1

    // Value of a field, empty when there is none; of several the last counts.
    std::string_view value(std::string_view keyword) const;
};

// Which entries are an application's: those of this name, and those whose exec_file is a file of this name.
struct ApplicationId {
    std::string name;
    std::string library;
};
inline const ApplicationId kPluginId{"orbikon_creo", "orbikon_creo.dll"};
inline const ApplicationId kProbeId{"orbikon_probe", "orbikon_probe.dll"};

class RegistrationFile {
  public:
    explicit RegistrationFile(std::string bytes = {});

    const std::string& bytes() const { return mBytes; }

    // False for what no reader of these files understands, as UTF-16. set() and remove() are not for such a file.
    bool isText() const { return mBytes.find('\0') == std::string::npos; }
    bool isBlank() const;  // nothing but blanks and line ends

    const std::vector<RegistrationEntry>& entries() const { return mEntries; }
    // An application's closed entries. Open ones belong to nobody: where they end is not known.
    std::vector<const RegistrationEntry*> entriesOf(const ApplicationId& id) const;

    // Makes the application's entry the only one with these fields: in the place of its first one, otherwise behind all
    // others, but never behind an open one. Values hold no line ends.
    void set(const ApplicationId& id, const RegistrationFields& fields);

    // Removes the application's entries; false when there were none. After a set() that added one, the bytes are those
    // before it.
    bool remove(const ApplicationId& id);

  private:
    static constexpr std::size_t kNoEntry = static_cast<std::size_t>(-1);
    struct Line {
        std::size_t begin;
        std::size_t end;  // behind its line end
        std::size_t entry;
    };

    void parse();
    void take(const Line& line, std::string_view text);
    bool isOf(const RegistrationEntry& entry, const ApplicationId& id) const;
    bool isUnterminated() const;
    std::size_t firstByteOf(std::size_t entry) const;
    std::size_t placeForAnother() const;
    std::size_t placeInFrontOfOpenOnes(std::size_t entry) const;
    std::string textOf(const RegistrationFields& fields) const;
    bool removeOnce(const ApplicationId& id);

    std::string mBytes;
    std::vector<Line> mLines;                 // all of them, in order
    std::vector<RegistrationEntry> mEntries;  // as the lines' indices name them
    bool mIsEntryOpen = false;                // while parsing: the last entry awaits further fields
};

// The entry of an application of ours. `execFile` is the DLL, `textDir` the folder that holds "text".
RegistrationFields registrationOf(const ApplicationId& id, const std::string& execFile, const std::string& textDir);

}  // namespace seat
