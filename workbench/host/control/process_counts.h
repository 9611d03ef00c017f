// What this process holds, to find out whether something leaks.
#pragma once

#include <cstddef>

namespace workbench {

int handleCount();
int threadCount();
int gdiObjectCount();
int userObjectCount();  // windows alone where the system does not count
std::size_t privateBytes();

}  // namespace workbench
