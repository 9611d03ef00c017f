// The workbench's driver library, bound by ordinal as the plug-in does it.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "driver/obk_ctrlr.h"
#include "workbench/control/workbench.h"

namespace workbench {

struct DriverReading {
    int status = 0;
    std::array<std::int16_t, 6> axes{};
    std::int32_t event = 0;
    std::int32_t extra1 = 0, extra2 = 0;
};

class DriverLibrary {
  public:
    DriverLibrary() : mLibrary(LoadLibraryW(path().wstring().c_str())) {
        if (mLibrary == nullptr) throw std::runtime_error("cannot load " + path().string());
    }
    ~DriverLibrary() { FreeLibrary(mLibrary); }
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    static std::filesystem::path path() { return buildFolder() / "workbench" / "creo" / "bin" / kDriverLibrary; }
    HMODULE handle() const { return mLibrary; }

    using Connect = int(int, const char*);
    using Plain = int();
    using Read = int(int, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*, std::int16_t*,
                     std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*, std::int32_t*);
    using GetSettings = int(int, ObAdvancedSettings*);
    using Option = int(int, std::int32_t*);
    using GetInfo = int(int, ObDevInfo*);
    using GetNumber = int(std::int32_t*, std::int32_t*, std::int32_t*);
    using SetLog = int(const char*, int, int, int, int, int, int, int, int, int, int, int, const char*);
    using SetMode = int(const char*, const char*);

    template <typename Function>
    Function* bound(ObOrdinal ordinal) const {
        const FARPROC found = GetProcAddress(mLibrary, MAKEINTRESOURCEA(static_cast<WORD>(ordinal)));
        if (found == nullptr) throw std::runtime_error("an ordinal is missing");
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(found));
    }

    int connect(const char* application = "xtopCreo") const {
        return bound<Connect>(ObOrdinal::connect)(0, application);
    }
    int disconnect() const { return bound<Plain>(ObOrdinal::disconnect)(); }
    DriverReading read() const {
        DriverReading reading;
        auto& [tx, ty, tz, rx, ry, rz] = reading.axes;
        std::int32_t unused1 = 0;
        std::int32_t unused2 = 0;
        reading.status = bound<Read>(ObOrdinal::readDeviceData)(0, &tx, &ty, &tz, &rx, &ry, &rz, &unused1, &unused2,
                                                                &reading.event, &reading.extra1, &reading.extra2);
        return reading;
    }
    int getSettings(ObAdvancedSettings& settings) const {
        return bound<GetSettings>(ObOrdinal::getAdvancedSettings)(0, &settings);
    }
    int getOption(int option, std::int32_t& value) const { return bound<Option>(ObOrdinal::getOption)(option, &value); }
    int setOption(int option, std::int32_t value) const { return bound<Option>(ObOrdinal::setOption)(option, &value); }
    int getDevInfo(int device, ObDevInfo& info) const { return bound<GetInfo>(ObOrdinal::getDevInfo)(device, &info); }
    int getDevNum(std::int32_t& count) const {
        std::int32_t unused1 = 0;
        std::int32_t unused2 = 0;
        return bound<GetNumber>(ObOrdinal::getDevNum)(&count, &unused1, &unused2);
    }
    int setLog(const char* file, const char* exclusive) const {
        return bound<SetLog>(ObOrdinal::setDllLogFlags)(file, 500, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, exclusive);
    }
    int setMode(const char* application, const char* mode) const {
        return bound<SetMode>(ObOrdinal::setAppMode)(application, mode);
    }

  private:
    HMODULE mLibrary;
};

// A workbench whose daemon the library in this process talks to.
class DriverBench {
  public:
    DriverBench() { SetEnvironmentVariableA("ORBIKON_WORKBENCH", bench.instance().c_str()); }

    // Reads until a reading is as wanted; the last one otherwise.
    template <typename Condition>
    DriverReading readUntil(Condition isWanted) const {
        DriverReading reading;
        waitFor([&] {
            reading = library.read();
            return isWanted(reading);
        });
        return reading;
    }

    Workbench bench;
    DriverLibrary library;
};

}  // namespace workbench
