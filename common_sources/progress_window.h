#pragma once
#include <atomic>
#include <string>
class ProgressWindow {
  public:
    bool isRunning() const { return false; }
    void start() {}
    void update(double) {}
    void stop() {}
};
