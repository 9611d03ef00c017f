#pragma once

#include <cstdint>

// The operating system's id of the calling thread.
std::uint32_t currentThreadId();
