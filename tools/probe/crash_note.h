// Writes down what ends Creo inside a probed call. Windows has no way to go on behind such a call that would leave Creo
// sound, so Creo's own handling follows; the next start reads the note.
#pragma once

#include <filesystem>
#include <string_view>

namespace probe {

// To be called once; the file is that of Findings.
void noteCrashesIn(const std::filesystem::path& inDoubtFile);
void stopNotingCrashes();

// The time of a call that a row is about, on the calling thread. They do not nest.
class CrashNote {
  public:
    explicit CrashNote(std::string_view row);
    ~CrashNote();
    CrashNote(const CrashNote&) = delete;
    CrashNote& operator=(const CrashNote&) = delete;
};

}  // namespace probe
