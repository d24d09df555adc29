// What bounds the work on one picture: its limits and the flag that cancels it.
#pragma once

#include <atomic>
#include <cstdint>

#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {

// A picture beyond a limit is refused with TooLarge before its pixels are decoded, so that a small
// file can't ask for any amount of time or memory.
struct PictureLimits {
    std::uint64_t pixels = 400'000'000;
    // For forms that can't be decoded row by row: progressive JPEG, interlaced PNG, WebP.
    std::uint64_t memory = 768ull << 20;
    std::uint64_t metadata = 32ull << 20; // profiles, EXIF and texts of one file
    int scans = 200;                      // of a progressive JPEG; an encoder writes about ten
};

// Learns that the work goes on.
class PictureSteps {
public:
    virtual ~PictureSteps() = default;
    // A row, a band or a part of it is done. Called often, by any thread that works on the picture.
    virtual void Step() noexcept = 0;
};

struct PictureControl {
    PictureLimits limits;
    // Owned by the caller; another thread sets it. Null when nothing can cancel.
    const std::atomic<bool>* cancelled = nullptr;
    PictureSteps* steps = nullptr; // the caller's; null when nobody wants to know

    bool IsCancelled() const noexcept {
        if (steps) steps->Step();
        return cancelled && cancelled->load(std::memory_order_relaxed);
    }
    // Asked at least once in every row of the result and every band of the source.
    void ThrowIfCancelled() const {
        if (IsCancelled()) throw PictureFailure{PictureOutcome::Cancelled};
    }
    void ThrowIfTooLarge(std::uint64_t width, std::uint64_t height) const {
        if (height && width > limits.pixels / height)
            throw PictureFailure{PictureOutcome::TooLarge};
    }
    void ThrowIfTooMuch(std::uint64_t bytes) const {
        if (bytes > limits.memory) throw PictureFailure{PictureOutcome::TooLarge};
    }
};

} // namespace transforms
