// Two ways of doing the same thing side by side: slices of both take turns, so that whatever else the machine does
// concerns both alike, and the median of the neighbours' ratios counts. What is measured is the process's CPU time, of
// all its threads.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Figure {
    std::string what;
    std::string peer;
    int calls;  // in a slice; what is printed is the time of one
    int slices = 21;
};

// Runs both and prints a row of the table: figure, peer, time of ours and of the peer's, their ratio.
void compare(const Figure& figure, const std::function<void()>& ours, const std::function<void()>& theirs);

// Ends the program with an error unless both have found the same.
void expectSame(bool isSame, const std::string& what);

// A file in the temporary folder, removed at the end of its scope.
class ScratchFile {
  public:
    explicit ScratchFile(const std::string& name);
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& path() const { return mPath; }
    std::vector<std::string> lines() const;

  private:
    std::string mPath;
};

// Keeps the compiler from leaving the work for a value out.
template <typename T>
void keep(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace bench
