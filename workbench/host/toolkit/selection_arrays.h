// The arrays that the toolkit hands out. They are real allocations that stay until they are given back, so what a
// caller forgets can be counted.
#pragma once

#include <cstddef>
#include <vector>

#include "toolkit/pro_toolkit.h"
#include "workbench/host/model/model.h"

namespace workbench {

struct SelectionItem {
    Model* model;
    ComponentPath path;
};

class SelectionArrays {
  public:
    ProSelection* make(const std::vector<SelectionItem>& items);
    bool free(const void* array);                            // false when it is none of ours, or was given back already
    int sizeOf(const void* array) const;                     // -1 when it is none of ours
    const SelectionItem* find(const void* selection) const;  // null when no live array holds it
    std::size_t outstanding() const { return mArrays.size(); }

  private:
    struct Array {
        std::vector<SelectionItem> items;
        std::vector<ProSelection> handles;  // what the caller sees: pointers to the items
    };
    const Array* findArray(const void* array) const;

    std::vector<std::unique_ptr<Array>> mArrays;
};

SelectionArrays& selectionArrays();

}  // namespace workbench
