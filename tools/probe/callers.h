// Who calls the probe: threads, stacks and counts of everything that Creo calls. Any thread.
#pragma once

#include <cstdint>
#include <string>

#include "tools/probe/findings.h"

namespace probe {

enum class Caller { entry, action, value, access, notification, count };

// To be called first; the calling thread counts as Creo's.
void watchCallers(Findings& findings);
void stopWatchingCallers();

// Notes a call. `arguments` is the address of its arguments on the stack: __builtin_dwarf_cfa() of the function that
// Creo calls.
void noteCaller(Caller caller, const void* arguments);
int callsOf(Caller caller);

// The body of a function that Creo or Windows calls: nothing that is thrown leaves it.
template <typename Result, typename Body>
Result atEdge(Result otherwise, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return otherwise;
    }
}

}  // namespace probe
