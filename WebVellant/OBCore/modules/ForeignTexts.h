// Texts and items that a module outside of this product writes, read within their bounds.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "contracts/ProviderManager.h"

namespace obcore {

// The text in a buffer that another module has filled: up to its NUL, or the whole buffer when the
// module left no room for one.
std::wstring TextIn(std::span<const wchar_t> buffer);

// The name of a storage provider as shown, of up to 128 characters. `provider` isn't null.
std::wstring DisplayNameOf(obcontract::CloudProvider* provider);

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
