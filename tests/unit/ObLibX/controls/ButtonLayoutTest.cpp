// Where a button's text and image are.
#include "ObLibX/src/controls/ButtonLayout.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace ObLibX;

constexpr PixelRect kClient{0, 0, 100, 40};

struct HorizontalRow {
    std::uint32_t style;
    HorizontalPlace place;
};

TEST(ButtonLayoutTest, IsAlignedByTheWindowsStyle) {
    constexpr HorizontalRow kHorizontal[] = {{0, HorizontalPlace::Right},
                                             {0x100, HorizontalPlace::Left},
                                             {0x200, HorizontalPlace::Right},
                                             {0x300, HorizontalPlace::Centre}};
    for (const auto& row : kHorizontal) {
        EXPECT_EQ(row.place, HorizontalOf(row.style | 0x50010C0F, HorizontalPlace::Right));
    }
    EXPECT_EQ(VerticalPlace::Bottom, VerticalOf(0x300, VerticalPlace::Bottom));
    EXPECT_EQ(VerticalPlace::Top, VerticalOf(0x400, VerticalPlace::Bottom));
    EXPECT_EQ(VerticalPlace::Bottom, VerticalOf(0x800, VerticalPlace::Top));
    EXPECT_EQ(VerticalPlace::Centre, VerticalOf(0xC00, VerticalPlace::Top));
}

TEST(ButtonLayoutTest, GivesTextOrImageAloneTheWholeArea) {
    const ButtonArrangement arrangement;
    const ButtonContents textAlone{{}, 0, 8, true};
    const ButtonContents imageAlone{{16, 16}, 0, 8, false};
    const ButtonContents both{{16, 16}, 0, 8, true};
    EXPECT_EQ(kClient, AreasOf(kClient, arrangement, textAlone).layout);
    EXPECT_EQ(kClient, AreasOf(kClient, arrangement, imageAlone).image);
    EXPECT_EQ(kClient, AreasOf(kClient, {.imageOnly = true}, both).layout);
    EXPECT_EQ(kClient, AreasOf(kClient, {.imageOnly = true}, both).image);
}

TEST(ButtonLayoutTest, TakesTheImagesWidthOffTheTextsSide) {
    const ButtonContents contents{{16, 12}, 0, 8, true};
    const auto noGapLeft = AreasOf(kClient, {.imageGap = false}, contents);
    EXPECT_EQ((PixelRect{16, 0, 100, 40}), noGapLeft.layout);
    EXPECT_EQ((PixelRect{0, 0, 16, 40}), noGapLeft.image);
    EXPECT_EQ(24, AreasOf(kClient, {}, contents).layout.left);
    for (const std::int32_t side : {1, 2}) {
        const auto gap = AreasOf(kClient, {.imageSide = side}, contents);
        EXPECT_EQ((PixelRect{0, 0, 75, 40}), gap.layout) << side;
        EXPECT_EQ((PixelRect{75, 0, 100, 40}), gap.image) << side;
        const auto noGap = AreasOf(kClient, {.imageSide = side, .imageGap = false}, contents);
        EXPECT_EQ(83, noGap.layout.right) << side;
    }
    const ButtonContents spared{{13, 13}, 2, 2, true};
    EXPECT_EQ(15, AreasOf(kClient, {.imageGap = false}, spared).layout.left);
}

TEST(ButtonLayoutTest, PutsTheTextBelowAnImageWithTextBeneath) {
    const ButtonContents contents{{16, 12}, 0, 8, true};
    const auto areas = AreasOf(kClient, {.imageBesideText = 1, .imageSide = 1}, contents);
    EXPECT_EQ((PixelRect{0, 29, 100, 40}), areas.layout);
    EXPECT_EQ((PixelRect{0, 0, 100, 29}), areas.image);
}

TEST(ButtonLayoutTest, PlacesTheTextByItsAlignment) {
    const PixelRect area = Inset(kClient, 8);
    EXPECT_EQ((PixelRect{8, 8, 92, 32}), area);
    const auto place = [&](HorizontalPlace horizontal, VerticalPlace vertical) {
        return PlaceText(area, {20, 10}, horizontal, vertical);
    };
    EXPECT_EQ((PixelRect{8, 8, 28, 18}), place(HorizontalPlace::Left, VerticalPlace::Top));
    EXPECT_EQ((PixelRect{40, 15, 60, 25}), place(HorizontalPlace::Centre, VerticalPlace::Centre));
    EXPECT_EQ((PixelRect{72, 22, 92, 32}), place(HorizontalPlace::Right, VerticalPlace::Bottom));
}

TEST(ButtonLayoutTest, LimitsALongTextAtBothSides) {
    const PixelRect area = Inset(kClient, 8);
    for (const auto horizontal :
         {HorizontalPlace::Left, HorizontalPlace::Centre, HorizontalPlace::Right}) {
        EXPECT_EQ((PixelRect{8, 0, 92, 40}),
                  PlaceText(area, {500, 40}, horizontal, VerticalPlace::Centre));
    }
}

TEST(ButtonLayoutTest, PlacesTheImageBySideAndStyle) {
    const ButtonContents contents{{16, 12}, 0, 8, true};
    const ButtonContents withoutText{{16, 12}, 0, 8, false};
    const auto place = [&](const ButtonArrangement& arrangement, VerticalPlace vertical) {
        return PlaceImage(kClient, arrangement, contents, vertical);
    };
    constexpr auto kMiddle = VerticalPlace::Centre;
    EXPECT_EQ((PixelPoint{8, 14}), place({}, kMiddle));
    EXPECT_EQ((PixelPoint{0, 14}), place({.imageGap = false}, kMiddle));
    EXPECT_EQ((PixelPoint{76, 14}), place({.imageSide = 1}, kMiddle));
    EXPECT_EQ((PixelPoint{42, 14}), place({.imageSide = 2}, kMiddle));
    EXPECT_EQ((PixelPoint{42, 14}), place({.imageBesideText = 1}, kMiddle));
    EXPECT_EQ((PixelPoint{42, 14}), PlaceImage(kClient, {}, withoutText, kMiddle));
    EXPECT_EQ((PixelPoint{8, 0}), place({}, VerticalPlace::Top));
    EXPECT_EQ((PixelPoint{8, 28}), place({}, VerticalPlace::Bottom));
}

TEST(ButtonLayoutTest, DrawsLinesThatGrowWithABoxInHighContrast) {
    EXPECT_EQ(2, ContrastLine(13));
    EXPECT_EQ(2, ContrastLine(31));
    EXPECT_EQ(2, ContrastLine(32));
    EXPECT_EQ(2, ContrastLine(47));
    EXPECT_EQ(3, ContrastLine(48));
    EXPECT_EQ(4, ContrastLine(65));
}

TEST(ButtonLayoutTest, HasTheSignInTheMiddleOfABoxInHighContrast) {
    for (const std::int32_t size : {13, 16, 20, 26, 33, 39, 52, 65}) {
        const PixelRect box{3, 5, 3 + size, 5 + size};
        const PixelRect sign = ContrastSign(box);
        EXPECT_EQ(sign.left - box.left, box.right - sign.right) << size;
        EXPECT_EQ(sign.top - box.top, box.bottom - sign.bottom) << size;
        EXPECT_LE(size / 2, sign.Width()) << size;
        EXPECT_GE(size / 2 + 1, sign.Width()) << size;
    }
}

// Whatever the sizes are: a text never leaves its area to the left or right, and text and image
// that share an area side by side don't overlap.
TEST(ButtonLayoutTest, KeepsTextAndImageApartAtAnySize) {
    std::mt19937 random(20261123);
    const auto upTo = [&](int most) { return static_cast<std::int32_t>(random() % most); };
    for (int turn = 0; turn < 100'000; ++turn) {
        const PixelRect client{0, 0, upTo(400), upTo(200)};
        const ButtonArrangement arrangement{upTo(2), upTo(3), upTo(2) == 1, upTo(2) == 1};
        const ButtonContents contents{{1 + upTo(80), 1 + upTo(80)}, upTo(5), upTo(30), true};
        const ButtonAreas areas = AreasOf(client, arrangement, contents);
        if (!arrangement.imageOnly) {
            ASSERT_TRUE(areas.layout.right <= areas.image.left ||
                        areas.image.right <= areas.layout.left ||
                        areas.image.bottom <= areas.layout.top);
        }
        const PixelRect area = Inset(areas.layout, contents.padding);
        const PixelRect text =
            PlaceText(area, {upTo(500), upTo(100)}, HorizontalOf(random(), HorizontalPlace::Centre),
                      VerticalOf(random(), VerticalPlace::Centre));
        ASSERT_GE(text.left, area.left);
        ASSERT_LE(text.right, std::max(area.right, area.left));
    }
}

} // namespace
