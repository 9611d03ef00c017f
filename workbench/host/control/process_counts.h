// What this process holds, to find out whether something leaks.
#pragma once

namespace workbench {

int handleCount();
int threadCount();

}  // namespace workbench
