// Orientations, as the EXIF standard counts them.
#include "services/transforms/raster/Stamp.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace transforms {
namespace {

// How stored coordinates become those that are shown, in this order.
struct Turn {
    bool swapsAxes, mirrorsAcross, mirrorsDown; // the mirrors are those of the shown picture
};

constexpr Turn kTurns[] = {
    {false, false, false}, // 1: as it is stored
    {false, true, false},  // 2
    {false, true, true},   // 3
    {false, false, true},  // 4
    {true, false, false},  // 5
    {true, true, false},   // 6: turned to the right
    {true, true, true},    // 7
    {true, false, true},   // 8: turned to the left
};

PictureSize ShownSize(PictureSize stored, const Turn& turn) noexcept {
    if (turn.swapsAxes) std::swap(stored.width, stored.height);
    return stored;
}

void CutOff(PlacedStamp& stamp, PictureSize picture) {
    stamp.left = std::min(stamp.left, picture.width);
    stamp.top = std::min(stamp.top, picture.height);
    const PictureSize cut{std::min(stamp.size.width, picture.width - stamp.left),
                          std::min(stamp.size.height, picture.height - stamp.top)};
    if (cut == stamp.size) return;
    PictureBytes pixels(std::size_t{cut.width} * cut.height * 4);
    for (std::uint32_t y = 0; y < cut.height && cut.width; ++y) {
        std::memcpy(&pixels[std::size_t{y} * cut.width * 4], stamp.At(0, y),
                    std::size_t{cut.width} * 4);
    }
    stamp.pixels = std::move(pixels);
    stamp.size = cut;
}

PlacedStamp Turned(const PlacedStamp& shown, PictureSize picture, const Turn& turn) {
    PlacedStamp stored;
    stored.size = ShownSize(shown.size, turn); // the same swap in both directions
    stored.left = turn.mirrorsAcross ? picture.width - shown.left - shown.size.width : shown.left;
    stored.top = turn.mirrorsDown ? picture.height - shown.top - shown.size.height : shown.top;
    if (turn.swapsAxes) std::swap(stored.left, stored.top);
    stored.pixels.resize(shown.pixels.size());
    for (std::uint32_t y = 0; y < stored.size.height; ++y) {
        for (std::uint32_t x = 0; x < stored.size.width; ++x) {
            std::uint32_t fromX = turn.swapsAxes ? y : x, fromY = turn.swapsAxes ? x : y;
            if (turn.mirrorsAcross) fromX = shown.size.width - 1 - fromX;
            if (turn.mirrorsDown) fromY = shown.size.height - 1 - fromY;
            std::memcpy(&stored.pixels[(std::size_t{y} * stored.size.width + x) * 4],
                        shown.At(fromX, fromY), 4);
        }
    }
    return stored;
}

} // namespace

PlacedStamp StampAsStored(const Stamp& stamp, PictureSize stored, std::uint16_t orientation) {
    const Turn& turn = kTurns[std::clamp<int>(orientation, 1, 8) - 1];
    const PictureSize picture = ShownSize(stored, turn);
    PlacedStamp shown = stamp.For(picture);
    CutOff(shown, picture);
    return Turned(shown, picture, turn);
}

} // namespace transforms
