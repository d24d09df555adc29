// Texts and items that a module outside of this product writes, read within their bounds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string>

#include "contracts/ProviderManager.h"

namespace obcore {

// The text in a buffer that another module has filled: up to its NUL, or the whole buffer when the
// module left no room for one.
template <std::size_t Capacity>
std::wstring TextIn(const wchar_t (&buffer)[Capacity]) {
    return std::wstring(buffer, wcsnlen(buffer, Capacity));
}

// Calls `use` with each item of `list`, from the first to the one that `GetItem`, the slot of that
// kind of list, refuses. What a provider doesn't fill is zero, also after an item that has it.
template <class GetItem, class List, class Use>
void ForEachItem(List* list, Use use) {
    for (std::uint32_t index = 0;; ++index) {
        obcontract::CloudItem item{};
        if (!GetItem::Call(list, index, &item)) return;
        use(item);
    }
}

} // namespace obcore
