// The ten operations of the driver library (obk_ctrlr_32, in 64-bit hosts obk_ctrlr_64) that the plug-in uses: C
// linkage, cdecl, exported by ordinal only. The plug-in's definitions (binding.cpp) find them in the library at run
// time; a test links a substitute that defines the same functions; the workbench's library exports its own.
//
// Common to all operations:
//  - Result: signed 32-bit status, 0 = success, anything else = failure. None throws.
//  - Concurrency: any thread may call any of them at any time, also while another thread is inside obReadDeviceData.
//  - Texts are zero-terminated and only read during the call; outputs are written only on success unless said
//    otherwise.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef _WIN64
inline constexpr char kDriverLibrary[] = "obk_ctrlr_64.dll";  // with the same ordinals and records
#else
inline constexpr char kDriverLibrary[] = "obk_ctrlr_32.dll";
#endif

// Event codes of obReadDeviceData.
inline constexpr std::int32_t kEventSettingsChanged1 = 0x20001;
inline constexpr std::int32_t kEventSettingsChanged2 = 0x20002;
inline constexpr std::int32_t kEventSpecialFirst1 = 0x20009;
inline constexpr std::int32_t kEventSpecialLast1 = 0x2000C;
inline constexpr std::int32_t kEventResendMode = 0x20013;
inline constexpr std::int32_t kEventSpecialFirst2 = 0x20016;
inline constexpr std::int32_t kEventSpecialLast2 = 0x20018;
inline constexpr std::int32_t APPL_FUNC_START = 0x20020;  // a button bound to function (code - APPL_FUNC_START)

inline constexpr int kOptionLegacyCom1 = 12;  // 1 = the daemon feeds Creo's own device support, 0 = it does not

// The plug-in reads the device's name only; the rest is the library's, whose record is never larger than this.
struct ObDevInfo {
    char reserved1[20];
    char name[2028];
};

// Advanced settings: 148 bytes, zeroed by the caller.
struct ObAdvancedSettings {
    std::uint8_t reserved1[132];
    std::int32_t rotationMode;  // decimal-coded: units = mode, tens and hundreds = flags
    std::uint8_t reserved2[2];
    std::uint8_t contextFlag;
    std::uint8_t reserved3[9];
};
static_assert(offsetof(ObDevInfo, name) == 20);
static_assert(sizeof(ObAdvancedSettings) == 148 && offsetof(ObAdvancedSettings, rotationMode) == 132 &&
              offsetof(ObAdvancedSettings, contextFlag) == 138);

// Ordinals in the library.
enum class ObOrdinal : std::uint16_t {
    connect = 206,
    disconnect = 208,
    readDeviceData = 210,
    getAdvancedSettings = 212,
    getOption = 216,
    getDevInfo = 218,
    getDevNum = 219,
    setOption = 266,
    setDllLogFlags = 269,
    setAppMode = 282,
};

extern "C" {

// Connects to the daemon under an application name.
int obConnect(int device, const char* application);

// Ends the connection. A read that blocks in another thread returns.
int obDisconnect(void);

// Waits until data arrives or a short time has passed. On success the six axes and the two extras are valid; *event
// is valid either way (-1 or less = no event).
int obReadDeviceData(int device, std::int16_t* tx, std::int16_t* ty, std::int16_t* tz, std::int16_t* rx,
                     std::int16_t* ry, std::int16_t* rz, std::int32_t* unused1, std::int32_t* unused2,
                     std::int32_t* event, std::int32_t* extra1, std::int32_t* extra2);

// Fills the record.
int obGetAdvancedSettings(int device, ObAdvancedSettings* settings);

// Reads or sets a driver option (kOptionLegacyCom1).
int obGetOption(int option, std::int32_t* value);
int obSetOption(int option, std::int32_t* value);

// Number of attached devices, and what one of them is called. A daemon answered when obGetDevNum succeeds.
int obGetDevNum(std::int32_t* count, std::int32_t* unused1, std::int32_t* unused2);
int obGetDevInfo(int device, ObDevInfo* info);

// Configures the library's own log; the ten switches are 0 or 1.
int obSetDllLogFlags(const char* logFile, int maxSizeKb, int toFile, int toConsole, int warning, int creation,
                     int trace, int devcom, int intcom, int info, int debug, int tmp, const char* exclusiveFile);

// Tells the daemon which mode an application is in.
int obSetAppMode(const char* application, const char* mode);
}
