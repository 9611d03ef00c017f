#include "workbench/host/toolkit/selection_arrays.h"

#include <algorithm>

namespace workbench {

SelectionArrays& selectionArrays() {
    static SelectionArrays arrays;
    return arrays;
}

ProSelection* SelectionArrays::make(const std::vector<SelectionItem>& items) {
    auto array = std::make_unique<Array>();
    array->items = items;
    for (SelectionItem& item : array->items) array->handles.push_back(&item);
    mArrays.push_back(std::move(array));
    return mArrays.back()->handles.data();
}

bool SelectionArrays::free(const void* array) {
    return std::erase_if(mArrays, [&](const auto& known) { return known->handles.data() == array; }) > 0;
}

int SelectionArrays::sizeOf(const void* array) const {
    const Array* known = findArray(array);
    return known == nullptr ? -1 : static_cast<int>(known->handles.size());
}

const SelectionItem* SelectionArrays::find(const void* selection) const {
    for (const auto& array : mArrays) {
        for (const SelectionItem& item : array->items) {
            if (&item == selection) return &item;
        }
    }
    return nullptr;
}

const SelectionArrays::Array* SelectionArrays::findArray(const void* array) const {
    const auto found =
        std::find_if(mArrays.begin(), mArrays.end(), [&](const auto& known) { return known->handles.data() == array; });
    return found == mArrays.end() ? nullptr : found->get();
}

}  // namespace workbench
