// Counts what operator new hands out in the test program that links allocations.cpp.
#pragma once

long allocations();
