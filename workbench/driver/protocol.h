// What the driver library and the daemon say to each other over the pipe of role "obk_daemon". A request is the name
// of an operation and its arguments, all separated by tabs; the closing line of the answer is the operation's status.
//
//   operation             arguments                                     answer line
//   obConnect             process id, device, application               session
//   obDisconnect          session
//   obReadDeviceData      session, device                               reading (see below), or "held"
//   obGetAdvancedSettings session, device                               rotation mode, context flag
//   obGetOption           session, option                               value
//   obGetDevInfo          session, device                               name
//   obGetDevNum           session                                       number of devices
//   obSetOption           session, option, value
//   obSetDllLogFlags      file, kB, ten switches, exclusive file
//   obSetAppMode          session, application, mode
//
// Before its own line an answer may hold "!hang MS" and "!pump": the library stands still or dispatches messages before
// it returns, so that the operation hangs or pumps whatever becomes of the daemon.
//
// A reading is the fields "status tx ty tz rx ry rz event extra1 extra2", separated by tabs. "held" is what a read
// answers from time to time while the daemon makes it hang; the library then asks again.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

inline constexpr std::string_view kDataRole = "obk_daemon";
inline constexpr std::string_view kControlRole = "obk_control";
inline constexpr char kFieldSeparator = '\t';
inline constexpr std::string_view kHeld = "held";
inline constexpr std::string_view kHang = "!hang ";
inline constexpr std::string_view kPump = "!pump";
inline constexpr std::size_t kAxisCount = 6;
inline constexpr int kReadWaitMs = 100;  // the longest that a read waits for data

enum class Operation : std::size_t {
    connect,
    disconnect,
    readDeviceData,
    getAdvancedSettings,
    getOption,
    getDevInfo,
    getDevNum,
    setOption,
    setDllLogFlags,
    setAppMode,
};
inline constexpr std::array<std::string_view, 10> kOperationNames = {
    "obConnect",    "obDisconnect", "obReadDeviceData", "obGetAdvancedSettings", "obGetOption",
    "obGetDevInfo", "obGetDevNum",  "obSetOption",      "obSetDllLogFlags",      "obSetAppMode",
};

// Position of each field in a reading.
namespace reading {
inline constexpr std::size_t kStatus = 0, kAxes = 1, kEvent = kAxes + kAxisCount, kExtras = kEvent + 1,
                             kCount = kExtras + 2;
}

using Fields = std::vector<std::string>;

inline std::string joinFields(const Fields& fields, char separator = kFieldSeparator) {
    std::string text;
    for (const std::string& field : fields) {
        if (&field != &fields.front()) text += separator;
        text += field;
    }
    return text;
}

inline Fields splitFields(std::string_view text) {
    Fields fields;
    for (;;) {
        const std::size_t end = text.find(kFieldSeparator);
        fields.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos) return fields;
        text.remove_prefix(end + 1);
    }
}

}  // namespace workbench
