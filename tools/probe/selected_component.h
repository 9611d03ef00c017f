// The first selected component, read call by call as the plug-in reads it. Creo's thread.
#pragma once

#include "tools/probe/checker.h"

namespace probe {

// The selection buffer's content, given back when it goes out of scope.
class Selections {
  public:
    Selections() : mResult(ProSelbufferSelectionsGet(&mArray)) {}
    ~Selections() { free(); }
    Selections(const Selections&) = delete;
    Selections& operator=(const Selections&) = delete;

    ProError result() const { return mResult; }
    ProSelection* array() const { return mArray; }
    bool isThere() const { return mResult == PRO_TK_NO_ERROR && mArray != nullptr; }
    ProError free() {
        ProSelection* const array = mArray;
        mArray = nullptr;
        return array != nullptr && mResult == PRO_TK_NO_ERROR ? ProSelectionarrayFree(array) : PRO_TK_NO_ERROR;
    }

  private:
    ProSelection* mArray = nullptr;
    ProError mResult;
};

inline constexpr std::initializer_list<const char*> kSelectionFunctions = {
    "ProSelbufferSelectionsGet",  "ProSelectionarrayFree", "ProArraySizeGet",
    "ProSelectionAsmcomppathGet", "ProFeatureInit",        "ProAsmcompPositionGet",
    "ProModeCurrentGet",          "ProMdlCurrentGet"};

}  // namespace probe
