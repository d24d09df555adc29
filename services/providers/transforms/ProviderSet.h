// Which providers of one kind are selected.
#pragma once

#include <bitset>
#include <cstdint>

#include "contracts/ProviderManager.h"

namespace providers {

// A set of providers of one kind, by their ids. It needs no memory of its own, so that no question
// about it can fail: a transform that goes missing would let a file out unchanged.
class ProviderSet {
public:
    static constexpr std::uint32_t kIds = 128; // greater ids are never in it

    bool Contains(obcontract::TransformId id) const noexcept {
        return static_cast<std::uint32_t>(id) < kIds && ids_[static_cast<std::uint32_t>(id)];
    }
    bool IsEmpty() const noexcept { return ids_.none(); }
    // False when the id can't be in it.
    bool Set(std::uint32_t id, bool in) noexcept {
        if (id < kIds) ids_[id] = in;
        return id < kIds;
    }

private:
    std::bitset<kIds> ids_;
};

} // namespace providers
