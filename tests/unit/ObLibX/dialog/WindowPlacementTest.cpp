// Where a dialog opens.
#include "ObLibX/src/dialog/WindowPlacement.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace ObLibX;

// Two monitors beside each other, each with a taskbar of 40 pixels.
constexpr PixelRect kFirst{0, 0, 1000, 760};
constexpr PixelRect kSecond{1000, 0, 3000, 960};

PlacementScreen Screen() {
    return {[](PixelPoint point) -> std::optional<PixelRect> {
                if (point.y < 0 || point.y >= 1000) return {};
                if (point.x >= 0 && point.x < 1000) return kFirst;
                if (point.x >= 1000 && point.x < 3000) return kSecond;
                return {};
            },
            kFirst};
}

PlacementScreen NoMonitors() {
    return {[](PixelPoint) { return std::optional<PixelRect>(); }, kFirst};
}

PlacementRequest Request(std::optional<PixelRect> reference, PixelPoint cursor) {
    PlacementRequest request;
    request.width = 200;
    request.height = 100;
    request.reference = reference;
    request.cursor = cursor;
    return request;
}

TEST(WindowPlacementTest, CentresOnTheReferenceWhileTheCursorIsElsewhere) {
    EXPECT_EQ((PixelPoint{200, 250}),
              PlaceWindow(Request(PixelRect{100, 100, 500, 500}, {900, 700}), Screen()));
}

TEST(WindowPlacementTest, CentresOnTheCursorInTheReference) {
    EXPECT_EQ((PixelPoint{300, 350}),
              PlaceWindow(Request(PixelRect{100, 100, 500, 500}, {400, 400}), Screen()));
}

TEST(WindowPlacementTest, CentresOnTheReferenceWhenASizeWasGiven) {
    PlacementRequest request = Request(PixelRect{100, 100, 500, 500}, {400, 400});
    request.isSizeGiven = true;
    EXPECT_EQ((PixelPoint{200, 250}), PlaceWindow(request, Screen()));
}

TEST(WindowPlacementTest, TakesTheMonitorOfTheCursorForAReferenceOnBoth) {
    EXPECT_EQ((PixelPoint{1100, 350}),
              PlaceWindow(Request(PixelRect{500, 100, 2000, 700}, {1200, 400}), Screen()));
}

TEST(WindowPlacementTest, CentresOnTheWorkAreaRatherThanBeOutsideInPart) {
    EXPECT_EQ((PixelPoint{400, 330}),
              PlaceWindow(Request(PixelRect{0, 0, 500, 500}, {50, 400}), Screen()));
    EXPECT_EQ((PixelPoint{400, 330}),
              PlaceWindow(Request(PixelRect{900, 600, 1000, 900}, {0, 0}), Screen()));
}

TEST(WindowPlacementTest, StartsAtTheCornerOfAReferenceWhoseCentreIsOnNoMonitor) {
    EXPECT_EQ((PixelPoint{701, 501}),
              PlaceWindow(Request(PixelRect{700, 500, 1000, 1700}, {0, 0}), Screen()));
    EXPECT_EQ((PixelPoint{400, 330}),
              PlaceWindow(Request(PixelRect{900, 700, 1000, 1700}, {0, 0}), Screen()))
        << "it would be outside in part";
}

TEST(WindowPlacementTest, CentresAWindowThatIsLargerThanTheWorkArea) {
    PlacementRequest request = Request(PixelRect{100, 100, 500, 500}, {900, 700});
    request.width = 1200;
    EXPECT_EQ((PixelPoint{-100, 330}), PlaceWindow(request, Screen()));
}

TEST(WindowPlacementTest, CentresOnTheWorkAreaWithoutAReference) {
    EXPECT_EQ((PixelPoint{400, 330}), PlaceWindow(Request({}, {1200, 400}), Screen()));
}

TEST(WindowPlacementTest, FallsBackToTheReferenceMovedIntoTheWorkArea) {
    EXPECT_EQ((PixelPoint{200, 250}),
              PlaceWindow(Request(PixelRect{100, 100, 500, 500}, {900, 700}), NoMonitors()));
    EXPECT_EQ((PixelPoint{800, 660}),
              PlaceWindow(Request(PixelRect{900, 700, 1900, 1700}, {0, 0}), NoMonitors()));
    EXPECT_EQ((PixelPoint{0, 0}),
              PlaceWindow(Request(PixelRect{-900, -900, -100, -100}, {0, 0}), NoMonitors()));
    EXPECT_EQ((PixelPoint{800, 0}),
              PlaceWindow(Request(PixelRect{5000, -900, 6000, -100}, {0, 0}), Screen()));
}

struct CursorRow {
    PixelPoint cursor;
    PixelPoint place;
};

TEST(WindowPlacementTest, StaysTenPixelsInsideTheWorkAreaAtTheCursor) {
    const CursorRow rows[] = {{{300, 300}, {300, 300}},
                              {{0, 0}, {10, 10}},
                              {{999, 759}, {790, 650}},
                              {{1000, 990}, {1010, 850}}};
    for (const CursorRow& row : rows) {
        PlacementRequest request = Request(PixelRect{100, 100, 500, 500}, row.cursor);
        request.isAtCursor = true;
        EXPECT_EQ(row.place, PlaceWindow(request, Screen()));
    }
    PlacementRequest wide = Request({}, {500, 300});
    wide.isAtCursor = true;
    wide.width = 1200;
    EXPECT_EQ((PixelPoint{10, 300}), PlaceWindow(wide, Screen()));
}

} // namespace
