// Makes the menu file from Creo's compiled resource libraries.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "common_sources/mnu/mnu_menus.h"

// One generation at a time; all members are for the thread that generates. Only the progress value and the cancel
// flag may be touched by others meanwhile. Failures are answered and logged (level ERR), never thrown, by CreateMNU,
// ExtractResources and EnumNamesFunc; the other members may throw on lack of memory.
//
// Paths, names of resources and menu texts are in the process code page.
class MNUParser {
  public:
    MNUParser();
    ~MNUParser();
    MNUParser(const MNUParser&) = delete;
    MNUParser& operator=(const MNUParser&) = delete;

    // Writes the menu file `mnuPath` with the commands of the libraries in the folder `resourceDir`, in `language`
    // (lower case, as in the libraries' names). `progress` (may be null) moves from 0 to 0.999999 and never leaves
    // [0, 1]. Once `cancel` is set (may be null), it fails within milliseconds. An existing file is not replaced, and
    // no part of a file is left behind. Windows only.
    bool CreateMNU(std::atomic<double>* progress, const std::string& mnuPath, const std::string& resourceDir,
                   const std::string& language, const std::atomic<bool>* cancel = nullptr);

    // The first thing that CreateMNU does: forgets what was gathered and takes over what AddResource and WriteMNUFile
    // go by.
    void start(std::atomic<double>* progress, const std::string& language, const std::atomic<bool>* cancel = nullptr);

    // Takes the command texts and panes over from one library, of which no code runs. Windows only.
    bool ExtractResources(const std::string& dllPath);

    // Called back for each resource of a library: `module` is an HMODULE, `type` and `name` are as Windows hands them
    // out. Answers whether the enumeration is to go on. Windows only.
    bool EnumNamesFunc(void* module, const char* type, char* name);

    // Takes a resource over by its name: a command text, a pane, or anything else, which is skipped. `text` is UTF-8.
    void AddResource(std::string_view name, std::string_view text);

    // Puts a command into the menus of all panes taken over so far that hold its name (see MenuTables).
    void AddCommand(CommandRecord record);

    // Writes the menus gathered so far. Fails, and writes nothing, when the file exists.
    bool WriteMNUFile(const std::string& mnuPath);

    // Text of the failure that ended the last CreateMNU, ExtractResources or WriteMNUFile; empty after success.
    const std::string& failure() const { return mFailure; }

  private:
    bool createMNU(const std::string& mnuPath, std::string resourceDir, const std::string& language);
    bool enumName(void* module, const char* type, const char* name);
    bool fail(std::string text);
    bool isCancelled() const;
    void setProgress(double value);
    void advanceProgress(double step, double limit);

    const std::atomic<bool>* mCancel = nullptr;
    std::atomic<double>* mProgress = nullptr;
    bool mIsMainLanguage = false;  // English: the first text line counts instead of the second
    bool mIsGermanOutput = false;
    bool mIsEnumerationBroken = false;  // a resource of the library being read raised an exception
    MenuTables mTables;
    std::string mFailure;
};
