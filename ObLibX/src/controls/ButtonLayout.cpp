#include "ObLibX/src/controls/ButtonLayout.h"

namespace ObLibX {
namespace {

constexpr std::int32_t kThinLine = 2;
constexpr std::int32_t kThickLineFrom = 32; // width of a box
constexpr std::int32_t kLineShare = 16;     // of such a width

bool IsCentred(const ButtonArrangement& arrangement, bool hasText) {
    return !hasText || arrangement.imageBesideText == 1 || arrangement.imageSide == 2;
}

std::int32_t GapOf(const ButtonArrangement& arrangement, const ButtonContents& contents) {
    return arrangement.imageGap ? contents.padding : 0;
}

ButtonAreas Stacked(const PixelRect& client, const ButtonContents& contents) {
    ButtonAreas areas{client, client};
    areas.layout.top += contents.image.height + 2 * contents.padding + 1;
    areas.image.bottom = areas.layout.top;
    return areas;
}

ButtonAreas SideBySide(const PixelRect& client, const ButtonArrangement& arrangement,
                       const ButtonContents& contents) {
    ButtonAreas areas{client, client};
    const std::int32_t taken = contents.image.width + contents.spare + GapOf(arrangement, contents);
    if (arrangement.imageSide == 0) {
        areas.layout.left += taken;
        areas.image.right = areas.layout.left;
    } else {
        areas.layout.right -= taken + 1;
        areas.image.left = areas.layout.right;
    }
    return areas;
}

} // namespace

HorizontalPlace HorizontalOf(std::uint32_t style, HorizontalPlace otherwise) {
    switch (style & (kButtonLeft | kButtonRight)) {
    case 0:
        return otherwise;
    case kButtonLeft:
        return HorizontalPlace::Left;
    case kButtonRight:
        return HorizontalPlace::Right;
    default:
        return HorizontalPlace::Centre;
    }
}

VerticalPlace VerticalOf(std::uint32_t style, VerticalPlace otherwise) {
    switch (style & (kButtonTop | kButtonBottom)) {
    case 0:
        return otherwise;
    case kButtonTop:
        return VerticalPlace::Top;
    case kButtonBottom:
        return VerticalPlace::Bottom;
    default:
        return VerticalPlace::Centre;
    }
}

ButtonAreas AreasOf(const PixelRect& client, const ButtonArrangement& arrangement,
                    const ButtonContents& contents) {
    if (contents.image.IsEmpty() || !contents.hasText || arrangement.imageOnly) {
        return {client, client};
    }
    return arrangement.imageBesideText == 1 ? Stacked(client, contents)
                                            : SideBySide(client, arrangement, contents);
}

PixelRect Inset(const PixelRect& area, std::int32_t by) {
    return {area.left + by, area.top + by, area.right - by, area.bottom - by};
}

PixelRect PlaceText(const PixelRect& area, PixelSize text, HorizontalPlace horizontal,
                    VerticalPlace vertical) {
    const PixelRect middle = Centred(area, text);
    std::int32_t left = middle.left;
    if (horizontal == HorizontalPlace::Left) left = area.left;
    if (horizontal == HorizontalPlace::Right) left = area.right - text.width;
    std::int32_t top = middle.top;
    if (vertical == VerticalPlace::Top) top = area.top;
    if (vertical == VerticalPlace::Bottom) top = area.bottom - text.height;
    left = std::max(left, area.left);
    return {left, top, std::min(left + text.width, area.right), top + text.height};
}

PixelPoint PlaceImage(const PixelRect& area, const ButtonArrangement& arrangement,
                      const ButtonContents& contents, VerticalPlace vertical) {
    const PixelRect middle = Centred(area, contents.image);
    PixelPoint place{middle.left, middle.top};
    if (!IsCentred(arrangement, contents.hasText)) {
        const std::int32_t gap = GapOf(arrangement, contents);
        place.x =
            arrangement.imageSide == 0 ? area.left + gap : area.right - gap - contents.image.width;
    }
    if (vertical == VerticalPlace::Top) place.y = area.top;
    if (vertical == VerticalPlace::Bottom) place.y = area.bottom - contents.image.height;
    return place;
}

PixelRect Centred(const PixelRect& area, PixelSize size) {
    const std::int32_t left = area.left + (area.Width() - size.width) / 2;
    const std::int32_t top = area.top + (area.Height() - size.height) / 2;
    return {left, top, left + size.width, top + size.height};
}

std::int32_t ContrastLine(std::int32_t width) {
    return width >= kThickLineFrom ? width / kLineShare : kThinLine;
}

// A pixel more where half the size would leave margins that differ.
PixelRect ContrastSign(const PixelRect& box) {
    const std::int32_t half = box.Width() / 2;
    const std::int32_t side = half + (box.Width() - half) % 2;
    return Centred(box, {side, side});
}

} // namespace ObLibX
