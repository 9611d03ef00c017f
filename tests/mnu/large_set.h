// Resources like those of a real installation, in any amount; the same arguments always give the same ones.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct Resource {
    std::string name;
    std::string text;
};

struct LargeSet {
    std::vector<Resource> panes;     // "..._PANE.RES"
    std::vector<Resource> commands;  // "PROCMD...TXT"
};

// Each pane has about `paneSize` bytes and names some hundreds of the commands in mixed case, between other text.
LargeSet makeLargeSet(std::size_t commandCount, std::size_t paneCount, std::size_t paneSize);
