// Where a panel is scrolled to, and which gesture may scroll it.
#include "ObLibX/src/dialog/ScrollAreas.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace ObLibX;

constexpr ScrollExtent kExtent{100, 30};

TEST(ScrollPositions, EndWhereTheLastPageBegins) {
    EXPECT_EQ(70, LastScrollPosition(kExtent));
    EXPECT_EQ(0, LastScrollPosition({30, 30}));
    EXPECT_EQ(0, LastScrollPosition({10, 30}));
    EXPECT_EQ(1, LastScrollPosition({31, 30}));
    EXPECT_EQ(0, ClampScrollPosition(kExtent, -1));
    EXPECT_EQ(70, ClampScrollPosition(kExtent, 71));
    EXPECT_EQ(35, ClampScrollPosition(kExtent, 35));
    EXPECT_EQ(0, ClampScrollPosition({10, 30}, 5));
}

TEST(ScrollPositions, MoveOneUnitForATurnOfTheWheelOfAnySize) {
    EXPECT_EQ(11, WheelScrollPosition(kExtent, 10, -120));
    EXPECT_EQ(11, WheelScrollPosition(kExtent, 10, -1200));
    EXPECT_EQ(9, WheelScrollPosition(kExtent, 10, 1));
    EXPECT_EQ(0, WheelScrollPosition(kExtent, 0, 120));
    EXPECT_EQ(70, WheelScrollPosition(kExtent, 70, -120));
}

struct CodeRow {
    std::uint16_t code;
    std::optional<std::int64_t> position;
};

TEST(ScrollPositions, FollowTheCodesOfAScrollBar) {
    const ScrollBarState bar{40, 25, 55};
    const CodeRow rows[] = {{0, 39}, {1, 41}, {2, 15}, {3, 65},           {4, 55},
                            {5, 55}, {6, 0},  {7, 70}, {8, std::nullopt}, {99, std::nullopt}};
    for (const CodeRow& row : rows) {
        EXPECT_EQ(row.position, BarScrollPosition(kExtent, row.code, bar)) << row.code;
    }
    EXPECT_EQ(70, BarScrollPosition(kExtent, 3, {60, 25, 0}));
    EXPECT_EQ(0, BarScrollPosition(kExtent, 2, {10, 25, 0}));
    EXPECT_EQ(70, BarScrollPosition(kExtent, 5, {0, 25, 5000}));
}

TEST(ScrollPositions, FollowAFingerByWholeUnits) {
    EXPECT_EQ(std::nullopt, PanScrollPosition(kExtent, 40, 100, 119, 20));
    EXPECT_EQ(std::nullopt, PanScrollPosition(kExtent, 40, 100, 81, 20));
    EXPECT_EQ(39, PanScrollPosition(kExtent, 40, 100, 120, 20));
    EXPECT_EQ(43, PanScrollPosition(kExtent, 40, 100, 35, 20));
    EXPECT_EQ(70, PanScrollPosition(kExtent, 40, 1000, 0, 20));
    EXPECT_EQ(0, PanScrollPosition(kExtent, 40, std::numeric_limits<std::int32_t>::min(),
                                   std::numeric_limits<std::int32_t>::max(), 1));
    EXPECT_EQ(std::nullopt, PanScrollPosition(kExtent, 40, 0, 100, 0)) << "no unit";
}

class ScrollGuardTest : public testing::Test {
protected:
    // What the targets are called with. `meanwhile` comes in while the first one runs.
    std::vector<PendingScroll> Scrolled(PendingScroll first, std::vector<PendingScroll> meanwhile) {
        std::vector<PendingScroll> given;
        if (!guard_.Begin(first)) return given;
        while (const auto next = guard_.TakePending()) {
            given.push_back(*next);
            for (const PendingScroll& scroll : meanwhile) EXPECT_FALSE(guard_.Begin(scroll));
            meanwhile.clear();
        }
        guard_.End();
        return given;
    }

    ScrollGuard guard_;
    const int area_ = 0;
    const int other_ = 0;
};

TEST_F(ScrollGuardTest, EndsAtTheLastPositionOfASlowTarget) {
    const std::vector<PendingScroll> expected{{&area_, 5}, {&area_, 9}};
    EXPECT_EQ(expected, Scrolled({&area_, 5}, {{&area_, 6}, {&area_, 7}, {&area_, 9}}));
    EXPECT_FALSE(guard_.IsUp());
}

TEST_F(ScrollGuardTest, CallsOnceForAPositionThatComesBack) {
    const std::vector<PendingScroll> expected{{&area_, 5}};
    EXPECT_EQ(expected, Scrolled({&area_, 5}, {{&area_, 6}, {&area_, 5}}));
}

TEST_F(ScrollGuardTest, CallsTheTargetOfTheAreaThatMoved) {
    const std::vector<PendingScroll> expected{{&area_, 5}, {&other_, 5}};
    EXPECT_EQ(expected, Scrolled({&area_, 5}, {{&other_, 5}}));
}

TEST_F(ScrollGuardTest, TakesTheSamePositionAgainLater) {
    EXPECT_EQ(1u, Scrolled({&area_, 5}, {}).size());
    EXPECT_EQ(1u, Scrolled({&area_, 5}, {}).size());
}

TEST_F(ScrollGuardTest, DropsTheWheelWhileATargetRuns) {
    EXPECT_TRUE(guard_.Begin({&area_, 1}));
    EXPECT_FALSE(guard_.BeginWheel());
    guard_.End();
    EXPECT_TRUE(guard_.BeginWheel());
    guard_.End();
}

TEST_F(ScrollGuardTest, DropsTheWheelAfterATurnWithCtrlUntilSomethingElseScrolls) {
    EXPECT_TRUE(guard_.BeginWheel());
    EXPECT_TRUE(guard_.IsUp());
    EXPECT_FALSE(guard_.BeginWheel());
    EXPECT_EQ(1u, Scrolled({&area_, 5}, {}).size());
    EXPECT_TRUE(guard_.BeginWheel());
}

TEST_F(ScrollGuardTest, KeepsThePositionOfAnotherAreaThanTheOneThatEnds) {
    EXPECT_TRUE(guard_.Begin({&area_, 1}));
    EXPECT_TRUE(guard_.TakePending());
    EXPECT_FALSE(guard_.Begin({&other_, 2}));
    guard_.Forget(&area_);
    EXPECT_EQ((PendingScroll{&other_, 2}), guard_.TakePending());
}

TEST_F(ScrollGuardTest, ForgetsAnAreaThatEnds) {
    EXPECT_TRUE(guard_.Begin({&area_, 1}));
    EXPECT_TRUE(guard_.TakePending());
    EXPECT_FALSE(guard_.Begin({&other_, 2}));
    guard_.Forget(&other_);
    EXPECT_EQ(std::nullopt, guard_.TakePending());
    EXPECT_FALSE(guard_.Begin({&area_, 3}));
    guard_.Forget(&area_);
    EXPECT_EQ(std::nullopt, guard_.TakePending());
}

} // namespace
