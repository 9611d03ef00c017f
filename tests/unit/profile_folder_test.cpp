// A user profile whose name the process code page cannot hold.
#include "common_sources/profile_folder.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "common_sources/settings.h"
#include "tests/unit/scratch.h"

namespace {

TEST(ProfileFolder, MayHaveLettersThatTheCodePageLacks) {
    ASSERT_EQ(GetACP(), 1252u) << "the code page may hold the letters";
    const ScratchFolder scratch;
    const std::filesystem::path parent = std::filesystem::path(scratch.path());
    for (const wchar_t* name :
         {L"plain", L"M\u00FCller", L"\u0418\u0432\u0430\u043D \u0418\u0432\u0430\u043D\u043E\u0432"}) {
        const std::filesystem::path profile = parent / name;
        std::filesystem::create_directory(profile);
        SetEnvironmentVariableW(L"USERPROFILE", profile.c_str());
        const Settings settings;
        EXPECT_TRUE(exists(profile / "OrbikonController" / "Applications" / "Creo_plugin.ini")) << profile;
    }
    EXPECT_EQ(profileFolder().find('?'), std::string::npos) << profileFolder();
    SetEnvironmentVariableW(L"USERPROFILE", nullptr);
    EXPECT_EQ(profileFolder(), "");
}

}  // namespace
