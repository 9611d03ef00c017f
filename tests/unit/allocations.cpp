// In a file of its own, so that the compiler does not see through the operators.
#include "tests/unit/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> count{0};
std::atomic<long> failing{-1};

}  // namespace

long allocations() { return count; }

void failAllocation(long n) { failing = n < 0 ? -1 : count + n; }

bool hasAllocationFailed() { return failing >= 0 && count > failing; }

void* operator new(std::size_t size) {
    if (count++ == failing) throw std::bad_alloc();
    if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
