// What is laid over pictures and pages (id 5).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "services/providers/settings/TransformSettings.h"

namespace providers {

enum class WatermarkPlace : std::uint8_t { TopLeft, TopRight, BottomLeft, BottomRight, Centre };

// In the order of the enumeration; the words are as they are stored.
inline constexpr const wchar_t* kWatermarkPlaces[] = {L"TopLeft", L"TopRight", L"BottomLeft",
                                                      L"BottomRight", L"Centre"};
inline constexpr std::size_t kWatermarkPlaceCount = std::size(kWatermarkPlaces);

inline constexpr std::size_t kLongestWatermark = 100; // characters
inline constexpr std::size_t kLongestPicturePath = kLongestSetting;
inline constexpr std::uint32_t kLeastOpacity = 5; // percent; less can't be seen
inline constexpr std::uint32_t kMostOpacity = 100;

struct WatermarkSettings {
    // One line, never empty. An option may be on although nobody has entered a text yet.
    std::wstring text = L"Draft";
    WatermarkPlace place = WatermarkPlace::BottomRight;
    std::uint32_t opacity = 60; // percent
    // A picture instead of the text: the full path of its file, of which no copy is made.
    bool usesPicture = false;
    std::wstring picture; // empty, although it is used, when no path can be read
    bool operator==(const WatermarkSettings&) const = default;

    // As for PersonalDataSettings: whether there is a text, or a path where a picture is used.
    static bool AreStored(const TransformSettings& stored);
    static WatermarkSettings Load(const TransformSettings& stored);
    bool Save(const TransformSettings& stored) const;
};

} // namespace providers
