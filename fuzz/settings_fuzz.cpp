// Any bytes as the settings file: the settings are what the plain reading of its two sections says.
#include "common_sources/settings.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>

#include "fuzz/check.h"
#include "tests/unit/plain_reader.h"

namespace {

std::int32_t plainNumber(const std::string& text) {
    if (text.empty() || text[0] == '\v' || text[0] == '\f') return 0;  // no blanks of a settings file
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<long long>(std::strtoll(text.c_str(), nullptr, 10), Limits::min(), Limits::max()));
}

bool plainSwitch(const std::string& text) { return text.find("on") != std::string::npos; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/tmp/orbikon_settings_fuzz." + std::to_string(getpid());
    setenv("USERPROFILE", "/dev/null", 1);  // no folder is made there
    static Settings settings;
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::ofstream(path, std::ios::binary) << text;
    check(settings.readSettingsFile(path) >= 0);
    std::remove(path.c_str());

    const auto program = plain::section(text, "PROGRAM");
    check(settings.mName == plain::valueOf(program, "name"));
    check(settings.mMapkeyDefinition == plain::valueOf(program, "mapkeyDefinition"));
    check(settings.mTraSensBase == plainNumber(plain::valueOf(program, "transSensBase")));
    check(settings.mMinThreshold == plainNumber(plain::valueOf(program, "minThreshold")));
    check(settings.mIsModeToRead == plainSwitch(plain::valueOf(program, "readMode")));
    const auto logging = plain::section(text, "LOGGING");
    check(settings.mLogPars.mLogFile == plain::valueOf(logging, "logFile"));
    check(settings.mLogPars.mMaxSize == plainNumber(plain::valueOf(logging, "maxSize")));
    check(settings.mLogPars.mIsLogToFile == plainSwitch(plain::valueOf(logging, "logToFile")));

    if (text.find('\r') != std::string::npos) return 0;  // a line of one alone counts on Windows only
    const SettingsReading reading = checkSettings(text, Settings::keys());
    if (reading.has(SettingsProblem::notText)) return 0;
    for (const auto& key : Settings::keys()) {
        const auto& entries = key.section == "PROGRAM" ? program : logging;
        check(reading.value(std::string(key.section), std::string(key.name)) ==
              plain::valueOf(entries, std::string(key.name)));
    }
    check(reading.has(SettingsProblem::capDead) == (settings.mMaxContMoveTime <= 0));
    return 0;
}
