// Where the holders of a window's bars are, what the strips leave of its client area, and when a
// mouse has been moved.
#include "ObLibX/src/controls/HolderLayout.h"

#include <gtest/gtest.h>

namespace {

using namespace ObLibX;

// A window of 200 by 100 at 10, 20 with bars of 17 and 16 pixels.
HostFrame Frame(bool hasVertical, bool hasHorizontal, PixelPoint border = {}) {
    return {{10, 20, 210, 120}, border, hasVertical, hasHorizontal, false, 17, 16};
}

TEST(HolderPlaces, AreTheEdgesOfTheWindowWithACornerBetween) {
    const HolderPlaces places = PlaceHolders(Frame(true, true));
    EXPECT_EQ((PixelRect{193, 20, 210, 104}), places.vertical);
    EXPECT_EQ((PixelRect{10, 104, 193, 120}), places.horizontal);
    EXPECT_EQ((PixelRect{193, 104, 210, 120}), places.corner);
}

TEST(HolderPlaces, ReachToTheEndWhereTheOtherBarIsMissing) {
    const HolderPlaces vertical = PlaceHolders(Frame(true, false));
    EXPECT_EQ((PixelRect{193, 20, 210, 120}), vertical.vertical);
    EXPECT_TRUE(vertical.horizontal.IsEmpty() && vertical.corner.IsEmpty());
    const HolderPlaces horizontal = PlaceHolders(Frame(false, true));
    EXPECT_EQ((PixelRect{10, 104, 210, 120}), horizontal.horizontal);
    EXPECT_TRUE(horizontal.vertical.IsEmpty() && horizontal.corner.IsEmpty());
    const HolderPlaces none = PlaceHolders(Frame(false, false));
    EXPECT_TRUE(none.vertical.IsEmpty() && none.horizontal.IsEmpty() && none.corner.IsEmpty());
}

TEST(HolderPlaces, LeaveTheBorderOut) {
    const HolderPlaces places = PlaceHolders(Frame(true, true, {3, 2}));
    EXPECT_EQ((PixelRect{190, 22, 207, 102}), places.vertical);
    EXPECT_EQ((PixelRect{13, 102, 190, 118}), places.horizontal);
    EXPECT_EQ((PixelRect{190, 102, 207, 118}), places.corner);
}

TEST(HolderPlaces, BeginAtTheLeftWhereTheVerticalBarIsThere) {
    HostFrame frame = Frame(true, true);
    frame.isVerticalLeft = true;
    const HolderPlaces places = PlaceHolders(frame);
    EXPECT_EQ((PixelRect{10, 20, 27, 104}), places.vertical);
    EXPECT_EQ((PixelRect{27, 104, 210, 120}), places.horizontal);
    EXPECT_EQ((PixelRect{10, 104, 27, 120}), places.corner);
    EXPECT_EQ((PixelRect{14, 20, 210, 116}), ClientBesideStrips(frame, {27, 20, 210, 104}, 4));
}

TEST(HolderPlaces, StayInsideAWindowThatIsTooSmall) {
    for (const std::int32_t size : {0, 1, 5, 16, 17, 20}) {
        HostFrame frame = Frame(true, true, {2, 2});
        frame.window = {10, 20, 10 + size, 20 + size};
        const HolderPlaces places = PlaceHolders(frame);
        for (const PixelRect& place : {places.vertical, places.horizontal, places.corner}) {
            EXPECT_TRUE(place.IsEmpty() || frame.window.Contains(place)) << size;
        }
        const PixelRect client = ClientBesideStrips(frame, {12, 22, 12, 22}, 4);
        EXPECT_LE(client.left, client.right) << size;
        EXPECT_LE(client.top, client.bottom) << size;
    }
}

TEST(HolderStrips, AreFourPixelsAtTheScaleRounded) {
    EXPECT_EQ(4, StripThickness(96));
    EXPECT_EQ(5, StripThickness(120));
    EXPECT_EQ(6, StripThickness(144));
    EXPECT_EQ(8, StripThickness(192));
    EXPECT_EQ(4, StripThickness(100));
    EXPECT_EQ(5, StripThickness(108)) << "4.5";
    EXPECT_EQ(20, StripThickness(480));
}

TEST(HolderStrips, TakeThePlaceOfTheBarsThatAreThere) {
    const HolderPlaces strips = PlaceStrips(Frame(true, true, {1, 1}), 4);
    EXPECT_EQ((PixelRect{205, 21, 209, 115}), strips.vertical);
    EXPECT_EQ((PixelRect{11, 115, 205, 119}), strips.horizontal);
    EXPECT_EQ((PixelRect{205, 115, 209, 119}), strips.corner);
    EXPECT_TRUE(PlaceStrips(Frame(false, false), 4).vertical.IsEmpty());
}

TEST(HolderStrips, LeaveTheRestToTheClientArea) {
    const PixelRect beside{11, 21, 192, 103}; // as the system leaves it beside both bars
    EXPECT_EQ((PixelRect{11, 21, 205, 115}),
              ClientBesideStrips(Frame(true, true, {1, 1}), beside, 4));
    EXPECT_EQ((PixelRect{11, 21, 205, 119}),
              ClientBesideStrips(Frame(true, false, {1, 1}), {11, 21, 192, 119}, 4));
    EXPECT_EQ((PixelRect{11, 21, 209, 115}),
              ClientBesideStrips(Frame(false, true, {1, 1}), {11, 21, 209, 103}, 4));
    EXPECT_EQ((PixelRect{11, 21, 209, 119}),
              ClientBesideStrips(Frame(false, false, {1, 1}), {11, 21, 209, 119}, 4))
        << "no strip without a bar";
}

// Every place of a small window with any bars: parts that don't overlap and are inside the border.
TEST(HolderPlaces, NeverOverlap) {
    for (int bits = 0; bits < 8; ++bits) {
        for (std::int32_t width = 0; width < 40; ++width) {
            HostFrame frame = Frame((bits & 1) != 0, (bits & 2) != 0, {1, 1});
            frame.isVerticalLeft = (bits & 4) != 0;
            frame.window = {0, 0, width, 30};
            const HolderPlaces places = PlaceHolders(frame);
            const PixelRect inner{1, 1, width - 1, 29};
            std::int64_t area = 0;
            for (const PixelRect& place : {places.vertical, places.horizontal, places.corner}) {
                if (place.IsEmpty()) continue;
                EXPECT_TRUE(inner.Contains(place)) << width << " " << bits;
                area += std::int64_t{place.Width()} * place.Height();
            }
            for (std::int32_t y = 0; y < 30; ++y) {
                for (std::int32_t x = 0; x < width; ++x) {
                    area -= places.vertical.Contains(PixelPoint{x, y}) ||
                                    places.horizontal.Contains(PixelPoint{x, y}) ||
                                    places.corner.Contains(PixelPoint{x, y})
                                ? 1
                                : 0;
                }
            }
            EXPECT_EQ(0, area) << width << " " << bits;
        }
    }
}

TEST(HoverRectangle, IsAroundThePoint) {
    EXPECT_FALSE(HasLeftHover({50, 50}, {50, 50}, {4, 6}));
    EXPECT_FALSE(HasLeftHover({50, 50}, {52, 53}, {4, 6}));
    EXPECT_FALSE(HasLeftHover({50, 50}, {48, 47}, {4, 6}));
    EXPECT_TRUE(HasLeftHover({50, 50}, {53, 50}, {4, 6}));
    EXPECT_TRUE(HasLeftHover({50, 50}, {50, 54}, {4, 6}));
    EXPECT_TRUE(HasLeftHover({50, 50}, {47, 50}, {4, 6}));
    EXPECT_TRUE(HasLeftHover({-0x7FFFFFFF, 0}, {0x7FFFFFFF, 0}, {4, 6}));
}

} // namespace
