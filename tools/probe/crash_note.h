// Writes down what ends Creo inside a probed call. Windows has no way to go on behind such a call that would leave Creo
// sound, so Creo's own handling follows; the next start reads the note.
#pragma once

#include <filesystem>
#include <string_view>

namespace probe {

// To be called once; the file is that of Findings.
void noteCrashesIn(const std::filesystem::path& inDoubtFile);
void stopNotingCrashes();

// The time of a call that a row is about, on the calling thread; the innermost counts.
class CrashNote {
  public:
    explicit CrashNote(std::string_view row);  // the row's text must outlive the object
    ~CrashNote();
    CrashNote(const CrashNote&) = delete;
    CrashNote& operator=(const CrashNote&) = delete;

    std::string_view row() const { return mRow; }

  private:
    std::string_view mRow;
    CrashNote* mOuter;
};

}  // namespace probe
