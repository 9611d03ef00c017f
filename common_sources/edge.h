#pragma once

#include <utility>

#include "OB_Daemon/src/logging.h"

// Where an edge is: class and method of a function that Creo or Windows calls; file and line are the place that names
// it.
struct Edge {
    // NOLINTNEXTLINE(google-explicit-constructor): written as {kLogClass, "method"}
    constexpr Edge(const char* logClass, const char* edgeMethod, const char* edgeFile = __builtin_FILE(),
                   int edgeLine = __builtin_LINE())
        : className(logClass), method(edgeMethod), file(edgeFile), line(edgeLine) {}

    const char* className;
    const char* method;
    const char* file;
    int line;
};

// Logs "Error <method>()", unless not even that can be done.
inline void logErrorAt(const Edge& edge) noexcept {
    try {
        OB_LOG_AT(LogLevel::ERR, LogSource(edge.file), edge.line, edge.className, edge.method)
            << "Error " << edge.method << "()";
    } catch (...) {  // the line is lost, the edge holds
    }
}

// Runs the body of a function that Creo or Windows calls. Nothing leaves it: whatever is thrown is logged and answered
// by `onError`.
template <typename Result, typename Body>
Result atEdge(const Edge& edge, Result onError, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        logErrorAt(edge);
        return onError;
    }
}

template <typename Body>
void atEdge(const Edge& edge, Body&& body) noexcept {
    atEdge(edge, 0, [&] {
        std::forward<Body>(body)();
        return 0;
    });
}
