// How pictures are made smaller (id 2).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "services/providers/settings/TransformSettings.h"

namespace providers {

enum class ResizeAim : std::uint8_t {
    LongestEdge, // in pixels
    Percent,     // of width and height
    BytesEach,   // in KB
    FitMail,     // the mail with all its files, in MB
};

// The units of the numbers, so that a file is within its aim however KB and MB are counted.
inline constexpr std::uint64_t kBytesOfKilobyte = 1'000;
inline constexpr std::uint64_t kBytesOfMegabyte = 1'000'000;

// What the dialog and the registry know of an aim.
struct ResizeAimRow {
    ResizeAim aim;
    const wchar_t* word;  // as it is stored
    const wchar_t* value; // the name of the value with its number
    std::uint32_t least;
    std::uint32_t most;
    std::uint32_t usual;
};

// In the order of the enumeration.
inline constexpr ResizeAimRow kResizeAims[] = {
    {ResizeAim::LongestEdge, L"LongestEdge", L"Pixels", 50, 50'000, 2048},
    {ResizeAim::Percent, L"Percent", L"Percent", 1, 99, 50},
    {ResizeAim::BytesEach, L"KilobytesEach", L"Kilobytes", 10, 999'999, 500},
    {ResizeAim::FitMail, L"FitMail", L"Megabytes", 1, 9'999, 20},
};
inline constexpr std::size_t kResizeAimCount = std::size(kResizeAims);

struct ResizeSettings {
    ResizeAim aim = ResizeAim::LongestEdge;
    // One number for each aim, so that an aim that is chosen again has its number.
    std::array<std::uint32_t, kResizeAimCount> numbers = {
        kResizeAims[0].usual, kResizeAims[1].usual, kResizeAims[2].usual, kResizeAims[3].usual};
    bool operator==(const ResizeSettings&) const = default;

    std::uint32_t Number() const { return numbers[static_cast<std::size_t>(aim)]; }
    // All pictures of a mail are then worked on together, after the list of files is known.
    bool FitsMail() const noexcept { return aim == ResizeAim::FitMail; }

    // As for PersonalDataSettings.
    static bool AreStored(const TransformSettings& stored);
    static ResizeSettings Load(const TransformSettings& stored);
    bool Save(const TransformSettings& stored) const;
};

} // namespace providers
