#include "services/transforms/watermark/Watermark.h"

#include <algorithm>

namespace transforms {
namespace {

constexpr std::uint32_t kInCorner = 24;      // parts of the shorter side
constexpr std::uint32_t kInCentre = 9;       // the same
constexpr std::uint32_t kSmallPicture = 100; // pixels of the shorter side that still take letters

std::uint32_t ShorterSide(PictureSize size) noexcept { return std::min(size.width, size.height); }

// From the far side when `isFromEnd`; the stamp may take all there is.
std::uint32_t Offset(std::uint32_t whole, std::uint32_t part, std::uint32_t margin,
                     bool isFromEnd) {
    const std::uint32_t room = whole > part ? whole - part : 0;
    const std::uint32_t kept = std::min(margin, room);
    return isFromEnd ? room - kept : kept;
}

} // namespace

std::uint32_t LetterHeight(PictureSize shown, WatermarkPlace place) noexcept {
    const std::uint32_t side = ShorterSide(shown);
    if (side < kSmallPicture / 4) return 0;
    const std::uint32_t parts = place == WatermarkPlace::Centre ? kInCentre : kInCorner;
    return std::max(side / parts, side < kSmallPicture ? kLeastLetter : 2 * kLeastLetter);
}

PictureSize LargestWatermark(PictureSize shown) noexcept {
    return {shown.width - shown.width / 10, shown.height - shown.height / 10};
}

void Place(PlacedStamp& stamp, PictureSize shown, const WatermarkLook& look) {
    const bool right =
        look.place == WatermarkPlace::TopRight || look.place == WatermarkPlace::BottomRight;
    const bool bottom =
        look.place == WatermarkPlace::BottomLeft || look.place == WatermarkPlace::BottomRight;
    const std::uint32_t margin = LetterHeight(shown, look.place) / 2;
    if (look.place == WatermarkPlace::Centre) {
        stamp.left = (shown.width - std::min(stamp.size.width, shown.width)) / 2;
        stamp.top = (shown.height - std::min(stamp.size.height, shown.height)) / 2;
    } else {
        stamp.left = Offset(shown.width, stamp.size.width, margin, right);
        stamp.top = Offset(shown.height, stamp.size.height, margin, bottom);
    }
    for (std::size_t i = 3; i < stamp.pixels.size(); i += 4)
        stamp.pixels[i] = static_cast<std::uint8_t>((stamp.pixels[i] * look.opacity + 50) / 100);
}

} // namespace transforms
