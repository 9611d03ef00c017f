#pragma once

#include <utility>

#include "OB_Daemon/src/logging.h"

// Runs the body of a function that Creo or Windows calls. Nothing leaves it: whatever is thrown is logged as
// "Error <name>()" and answered by `onError`.
template <typename Result, typename Body>
Result atEdge(const char* name, Result onError, Body&& body) noexcept {
    static constexpr char kLogClass[] = "CreoProxy";
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        OB_LOG_IN(LogLevel::ERR, name) << "Error " << name << "()";
        return onError;
    }
}

template <typename Body>
void atEdge(const char* name, Body&& body) noexcept {
    atEdge(name, 0, [&] {
        std::forward<Body>(body)();
        return 0;
    });
}
