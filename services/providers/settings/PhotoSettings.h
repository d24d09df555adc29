// How photos are converted (id 50).
#pragma once

#include <cstddef>
#include <cstdint>

#include "contracts/TransformWork.h"
#include "services/providers/settings/TransformSettings.h"

namespace providers {

enum class PhotoQuality : std::uint8_t { High, Medium, Low };

// What the dialog and the registry know of a quality.
struct PhotoQualityRow {
    PhotoQuality quality;
    const wchar_t* word; // as it is stored
    std::uint32_t jpeg;  // 1 to 100
};

// In the order of the enumeration.
inline constexpr PhotoQualityRow kPhotoQualities[] = {
    {PhotoQuality::High, L"High", 92},
    {PhotoQuality::Medium, L"Medium", 82},
    {PhotoQuality::Low, L"Low", 70},
};
inline constexpr std::size_t kPhotoQualityCount = std::size(kPhotoQualities);

struct PhotoSettings {
    PhotoQuality quality = PhotoQuality::High;
    // Photos of phones and cameras are always converted; these, which many recipients can open,
    // only where the user wants it.
    bool webp = true;
    bool tiff = true;
    bool bmp = true;
    bool operator==(const PhotoSettings&) const = default;

    obcontract::WorkPhoto Order() const noexcept;

    // As for PersonalDataSettings.
    static bool AreStored(const TransformSettings& stored);
    static PhotoSettings Load(const TransformSettings& stored);
    bool Save(const TransformSettings& stored) const;
};

} // namespace providers
