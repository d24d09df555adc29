// Colour profiles: which samples one is for, and conversions by the colour library. No function
// uses the time or the machine, so equal input gives equal output.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "services/transforms/raster/PictureFile.h"
#include "services/transforms/raster/PictureOutcome.h"

namespace transforms {

enum class ProfileSpace { None, Grey, Rgb, Cmyk };

// By the header; None for what is no profile, or one for other samples.
ProfileSpace SpaceOfProfile(std::span<const std::uint8_t> profile) noexcept;

// Whether the colour library can convert by the profile, which has to be for one of the three kinds
// of samples: one that is damaged, or of a later standard, isn't sound.
bool IsSoundProfile(std::span<const std::uint8_t> profile) noexcept;

// The profile for colours that a file names by the numbers of ISO/IEC 23091-2. Empty for those of
// sRGB and for numbers that have none. Throws PictureFailure.
PictureBytes ProfileOfNumbers(unsigned primaries, unsigned transfer);

// Converts rows to 8-bit sRGB: relative to the white point, with black at black.
class ToSrgb {
public:
    // From 16 bits a sample.
    static ToSrgb FromLab();
    // From `bits` a sample, with `extra` more samples after the four of each pixel. Throws
    // PictureFailure for a profile that is damaged.
    static ToSrgb FromCmyk(std::span<const std::uint8_t> profile, unsigned bits, unsigned extra);

    // From 8 bits a sample, one or three, with `extra` more samples after those of each pixel, by a
    // sound profile.
    static ToSrgb FromPlain(std::span<const std::uint8_t> profile, unsigned colours,
                            unsigned extra);

    void Convert(const void* from, std::uint8_t* to, std::size_t pixels) const noexcept;

private:
    struct Free {
        void operator()(void* transform) const noexcept;
    };
    ToSrgb(void* fromProfile, std::uint32_t fromForm);

    std::unique_ptr<void, Free> transform_;
};

} // namespace transforms
