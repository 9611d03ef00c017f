// The driver library: the ten operations, each one request to the daemon.
#include <windows.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <initializer_list>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "driver/obk_ctrlr.h"
#include "workbench/driver/connection.h"

namespace {

using workbench::Connection;
using workbench::Fields;
using workbench::Operation;
namespace reading = workbench::reading;

constexpr int kSuccess = 0;
constexpr int kFailure = -1;
constexpr std::int32_t kNoEvent = -1;

// Lives from the library's loading to its unloading. When the process ends it is left alone: other threads were
// stopped wherever they were by then, and Windows closes the pipe.
Connection* gConnection = nullptr;

int statusOf(bool isDone) { return isDone ? kSuccess : kFailure; }

// No operation lets an exception out (allocation failure is the only one there is).
template <typename Body>
int guarded(Body body) {
    try {
        return gConnection != nullptr ? statusOf(body(*gConnection)) : kFailure;
    } catch (...) {
        return kFailure;
    }
}

// A text that can travel as one field of a request.
bool isField(const char* text) {
    return text != nullptr && std::string_view(text).find_first_of("\t\r\n") == std::string_view::npos;
}

template <typename Number>
bool parse(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

// Stores the first field of an answer as the value asked for.
bool storeNumber(const std::optional<Fields>& answer, std::int32_t* value) {
    std::int32_t number = 0;
    if (!answer || answer->empty() || !parse(answer->front(), number)) return false;
    *value = number;
    return true;
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID isProcessEnding) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(library);
        gConnection = new (std::nothrow) Connection;
    } else if (reason == DLL_PROCESS_DETACH && isProcessEnding == nullptr) {
        delete gConnection;
        gConnection = nullptr;
    }
    return TRUE;
}

int obConnect(int device, const char* application) {
    return guarded(
        [=](Connection& connection) { return isField(application) && connection.connect(device, application); });
}

int obDisconnect(void) {
    return guarded([](Connection& connection) { return connection.disconnect(); });
}

int obReadDeviceData(int device, std::int16_t* tx, std::int16_t* ty, std::int16_t* tz, std::int16_t* rx,
                     std::int16_t* ry, std::int16_t* rz, std::int32_t* unused1, std::int32_t* unused2,
                     std::int32_t* event, std::int32_t* extra1, std::int32_t* extra2) {
    std::int16_t* const axes[] = {tx, ty, tz, rx, ry, rz};
    std::int32_t* const extras[] = {extra1, extra2};
    const auto isNull = [](const auto* output) { return output == nullptr; };
    if (event == nullptr) return kFailure;
    *event = kNoEvent;
    if (std::ranges::any_of(axes, isNull) || std::ranges::any_of(extras, isNull)) return kFailure;

    return guarded([&](Connection& connection) {
        const std::optional<Fields> fields = connection.read(device);
        if (!fields || fields->size() != reading::kCount || !parse((*fields)[reading::kEvent], *event)) return false;
        if ((*fields)[reading::kStatus] != "0") return false;
        bool isValid = true;
        for (std::size_t i = 0; i < std::size(axes); ++i) isValid &= parse((*fields)[reading::kAxes + i], *axes[i]);
        for (std::size_t i = 0; i < std::size(extras); ++i) {
            isValid &= parse((*fields)[reading::kExtras + i], *extras[i]);
        }
        for (std::int32_t* unused : {unused1, unused2}) {
            if (unused != nullptr) *unused = 0;
        }
        return isValid;
    });
}

int obGetAdvancedSettings(int device, ObAdvancedSettings* settings) {
    return guarded([=](Connection& connection) {
        if (settings == nullptr) return false;
        const auto fields = connection.command(Operation::getAdvancedSettings, {std::to_string(device)});
        std::int32_t rotationMode = 0;
        std::uint8_t contextFlag = 0;
        if (!fields || fields->size() != 2 || !parse((*fields)[0], rotationMode) || !parse((*fields)[1], contextFlag)) {
            return false;
        }
        settings->rotationMode = rotationMode;
        settings->contextFlag = contextFlag;
        return true;
    });
}

int obGetOption(int option, std::int32_t* value) {
    return guarded([=](Connection& connection) {
        return value != nullptr &&
               storeNumber(connection.command(Operation::getOption, {std::to_string(option)}), value);
    });
}

int obSetOption(int option, std::int32_t* value) {
    return guarded([=](Connection& connection) {
        return value != nullptr &&
               connection.command(Operation::setOption, {std::to_string(option), std::to_string(*value)}).has_value();
    });
}

int obGetDevNum(std::int32_t* count, std::int32_t* unused1, std::int32_t* unused2) {
    return guarded([=](Connection& connection) {
        if (count == nullptr || !storeNumber(connection.command(Operation::getDevNum, {}), count)) return false;
        for (std::int32_t* unused : {unused1, unused2}) {
            if (unused != nullptr) *unused = 0;
        }
        return true;
    });
}

int obGetDevInfo(int device, ObDevInfo* info) {
    return guarded([=](Connection& connection) {
        const auto fields = connection.command(Operation::getDevInfo, {std::to_string(device)});
        if (info == nullptr || !fields || fields->empty()) return false;
        const std::string& name = fields->front();
        std::memset(info, 0, sizeof *info);
        std::memcpy(info->name, name.data(), std::min(name.size(), sizeof info->name - 1));
        return true;
    });
}

int obSetDllLogFlags(const char* logFile, int maxSizeKb, int toFile, int toConsole, int warning, int creation,
                     int trace, int devcom, int intcom, int info, int debug, int tmp, const char* exclusiveFile) {
    return guarded([=](Connection& connection) {
        if (!isField(logFile) || !isField(exclusiveFile)) return false;
        Fields fields{logFile};
        for (const int number :
             {maxSizeKb, toFile, toConsole, warning, creation, trace, devcom, intcom, info, debug, tmp}) {
            fields.push_back(std::to_string(number));
        }
        fields.emplace_back(exclusiveFile);
        return connection.setLogFlags(fields);
    });
}

int obSetAppMode(const char* application, const char* mode) {
    return guarded([=](Connection& connection) {
        return isField(application) && isField(mode) &&
               connection.command(Operation::setAppMode, {application, mode}).has_value();
    });
}
