// How much work goes into each piece of a run, so that the zip is done soon and hardly larger than
// with all the work.
#pragma once

#include <cstdint>
#include <vector>

#include "services/archive/compress/BlockCompressor.h"

namespace obarchive {

// Thorough packing takes about four times as long as quick packing, which loses a few per cent of
// what comes out. As much is packed quickly as makes the whole zip less than two per cent larger.
// What can only be stored is as small as it gets and makes room for more, so that time isn't spent
// on what hardly shows. The same files in the same order always get the same work. One thread.
class EffortPlan {
public:
    // The sizes of all files of the run.
    explicit EffortPlan(const std::vector<std::uint64_t>& sizes);

    // A piece of a file that is only stored.
    void AddStored(std::uint64_t size);

    // For the next piece that is to shrink.
    Effort Next(std::uint64_t size);

private:
    Effort NextSmall(std::uint64_t size);

    std::uint64_t allowed_ = 0; // loss in thousandths of bytes
    std::uint64_t lost_ = 0;
    std::uint64_t small_ = 0; // bytes of small pieces, and of the quick ones of them
    std::uint64_t smallQuick_ = 0;
};

} // namespace obarchive
