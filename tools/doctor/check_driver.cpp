// The driver library, and the daemon behind it. Windows only.
#include <windows.h>
// after windows.h
#include <string>

#include "common_sources/mnu/mnu_encoding.h"
#include "driver/obk_ctrlr.h"
#include "driver/search.h"
#include "tools/doctor/seat.h"
#include "tools/seat/file.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::PeFile;
using seat::textOf;

namespace {

constexpr int kDevice = 0;
constexpr char kApplication[] = "orbikon_doctor";
constexpr std::int32_t kMostDevices = 16;  // that are asked for their names

constexpr std::uint16_t kOwnMachine = sizeof(void*) == 8 ? PeFile::kMachineX64 : PeFile::kMachineX86;

std::optional<PeFile> peFileAt(const std::wstring& file) {
    const auto content = seat::readFile(fs::path(file));
    return content.isRead() ? seat::readPeFile(content.bytes) : std::nullopt;
}

// What was tried before, with the system's reasons.
std::string triedPlaces(const DriverSearch& search) {
    std::string text;
    for (const auto& failure : search.failures) {
        text += (text.empty() ? "" : "; ") + textOf(fs::path(failure.file)) + ": " + loadingProblem(failure.code);
    }
    return text;
}

// A library for another machine type is there, which Creo passes over like the doctor.
void checkMachine(const DriverSearch& search, Findings& findings) {
    for (const auto& failure : search.failures) {
        const auto library = peFileAt(failure.file);
        if (!library || library->machine == kOwnMachine) continue;
        findings.fail("driver.machine", textOf(fs::path(failure.file)) + " is " + seat::machineName(library->machine) +
                                            ", the plug-in is " + seat::machineName(kOwnMachine));
    }
    if (search.library != nullptr) findings.ok("driver.machine", seat::machineName(kOwnMachine));
}

void checkOrdinals(HMODULE library, Findings& findings) {
    std::string missing;
    for (const auto ordinal : missingOrdinals(library))
        missing += (missing.empty() ? "" : ", ") + std::to_string(ordinal);
    findings.tell("driver.ordinals", missing.empty(),
                  missing.empty() ? "all ten ordinals are there" : "ordinals missing: " + missing);
}

std::string nameOf(std::int32_t device) {
    ObDevInfo info{};
    if (obGetDevInfo(device, &info) != 0) return "without a name";
    info.name[sizeof info.name - 1] = '\0';
    return utf8FromCodePage(info.name);
}

void checkDevices(std::int32_t count, Findings& findings) {
    std::string names;
    for (std::int32_t device = 0; device < std::min(count, kMostDevices); ++device) names += ", " + nameOf(device);
    findings.tell("daemon.devices", count > 0, std::to_string(count) + (count == 1 ? " device" : " devices") + names);
}

void checkDaemon(Findings& findings) {
    obSetDllLogFlags("", 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "");  // as the plug-in: the library writes no log of its own
    std::int32_t count = 0, unused1 = 0, unused2 = 0;
    const bool isConnected = obConnect(kDevice, kApplication) == 0;
    const bool isAnswered = isConnected && obGetDevNum(&count, &unused1, &unused2) == 0;
    findings.tell("daemon.answer", isAnswered, isAnswered ? "the daemon answers" : "no daemon answers");
    if (isAnswered) {
        checkDevices(count, findings);
        std::int32_t value = 0;
        const bool isKnown = obGetOption(kOptionLegacyCom1, &value) == 0;
        findings.tell("daemon.legacy-com1", isKnown && value != 0,
                      isKnown ? "LegacyCOM1 = " + std::to_string(value) : "LegacyCOM1 cannot be asked for");
    }
    if (isConnected) obDisconnect();
}

}  // namespace

void checkDriver(Seat& seat, Findings& findings) {
    const std::uint16_t machine = seat.pluginFile ? seat.pluginFile->machine : kOwnMachine;
    if (machine != kOwnMachine) {
        findings.fail("driver.library", "not looked at: the plug-in is " + seat::machineName(machine) +
                                            ", this doctor is " + seat::machineName(kOwnMachine));
        return;
    }
    const DriverSearch search = loadDriver(driverPlaces(seat.plugin.wstring(), seat.host.file.wstring()));
    findings.tell("driver.library", search.library != nullptr,
                  search.library != nullptr ? textOf(fs::path(search.file)) : triedPlaces(search));
    checkMachine(search, findings);
    if (search.library == nullptr) return;
    checkOrdinals(search.library, findings);
    if (!seat.isOffline) {
        useDriver(search.library);
        checkDaemon(findings);
    }
    // Not freed: what the library has started may still run.
}

}  // namespace doctor
