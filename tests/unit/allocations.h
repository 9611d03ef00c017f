// Counts what operator new hands out, and makes it fail, in the test program that links allocations.cpp.
#pragma once

long allocations();

// The n-th allocation from now on (0 = the next) throws std::bad_alloc, once; negative: none does.
void failAllocation(long n);
bool hasAllocationFailed();  // since it was asked for
