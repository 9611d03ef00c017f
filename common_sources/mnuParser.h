#pragma once
#include <atomic>
#include <string>
class MNUParser {
  public:
    bool CreateMNU(std::atomic<double>*, const std::string&, const std::string&, const std::string&,
                   const std::atomic<bool>*) {
        return false;
    }
};
