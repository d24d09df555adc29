// Rows that are taken out of a dialog: the arithmetic, and real windows.
#include "OBCore/settings/CollapseRows.h"

#include <gtest/gtest.h>

#include <vector>

#include "OBCore/settings/CollapseLayout.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

using obcore::CollapsePlan;
using obcore::PlanCollapse;
using obcore::StayingChild;

using Tops = std::vector<std::int32_t>;
using Numbers = std::vector<std::size_t>;

constexpr std::int32_t kBottom = 500;

CollapsePlan PlanOf(const Tops& removed, const std::vector<StayingChild>& children) {
    return PlanCollapse(removed, children, kBottom);
}

TEST(CollapseLayout, BringsWhatIsBelowUpToTheHighestRowTakenAway) {
    const CollapsePlan plan =
        PlanOf({140, 100}, {{40, true}, {180, true}, {200, true}, {99, true}});
    EXPECT_EQ((Numbers{1, 2}), plan.moved);
    EXPECT_EQ(100 - 180, plan.shift);
}

TEST(CollapseLayout, LeavesWhatIsInTheSameRow) {
    const CollapsePlan plan = PlanOf({100}, {{100, true}, {101, true}});
    EXPECT_EQ(Numbers{1}, plan.moved);
    EXPECT_EQ(-1, plan.shift);
}

TEST(CollapseLayout, LeavesHiddenControlsAndTheFramesOfEditsWhereTheyAre) {
    const CollapsePlan plan =
        PlanOf({100}, {{120, false}, {130, true, true}, {150, true}, {140, false, true}});
    EXPECT_EQ(Numbers{2}, plan.moved);
    EXPECT_EQ(-50, plan.shift);
}

TEST(CollapseLayout, EndsTheDialogAtTheLastRow) {
    const CollapsePlan plan = PlanOf({100, 130}, {{40, true}, {200, false}});
    EXPECT_EQ(Numbers(), plan.moved);
    EXPECT_EQ(100 - kBottom, plan.shift);
}

TEST(CollapseLayout, LetsControlsBelowTheClientAreaCountToo) {
    EXPECT_EQ(100 - 700, PlanOf({100}, {{700, true}}).shift);
}

TEST(CollapseLayout, ChangesNothingWithoutARow) {
    const CollapsePlan plan = PlanOf({}, {{40, true}});
    EXPECT_EQ(Numbers(), plan.moved);
    EXPECT_EQ(0, plan.shift);
}

// A window of 300 by 400 with rows of labels, which may be hidden as a dialog is while it opens.
class CollapseRows : public testing::TestWithParam<DWORD> {
protected:
    CollapseRows()
        : window_(CreateWindowExW(0, L"Static", L"", WS_OVERLAPPEDWINDOW | GetParam(), 20, 30, 300,
                                  400, nullptr, nullptr, nullptr, nullptr)) {
        for (int row = 0; row < 4; ++row) Add(1 + row, 10 + 40 * row);
    }
    HWND Add(int id, int top, DWORD style = WS_VISIBLE) {
        return CreateWindowExW(0, L"Static", L"", WS_CHILD | style, 10, top, 80, 20, window_.Get(),
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    }
    HWND Item(int id) const { return GetDlgItem(window_.Get(), id); }
    RECT Place(int id) const {
        RECT place{};
        GetWindowRect(Item(id), &place);
        MapWindowPoints(nullptr, window_.Get(), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    LONG Top(int id) const { return Place(id).top; }
    LONG Height() const {
        RECT place{};
        GetWindowRect(window_.Get(), &place);
        return place.bottom - place.top;
    }

    ObLib::UniqueWindow window_;
};

INSTANTIATE_TEST_SUITE_P(HiddenAndShown, CollapseRows, testing::Values(DWORD{0}, WS_VISIBLE));

TEST_P(CollapseRows, HidesARowAndMovesTheOnesBelowUp) {
    const LONG height = Height();
    constexpr int kSecond[] = {2, 0};
    obcore::CollapseRows(window_.Get(), kSecond);
    EXPECT_EQ(0, GetWindowLongW(Item(2), GWL_STYLE) & WS_VISIBLE);
    EXPECT_EQ(10, Top(1));
    EXPECT_EQ(50, Top(3));
    EXPECT_EQ(90, Top(4));
    EXPECT_EQ(height - 40, Height());
    EXPECT_EQ(10, Place(3).left);
    EXPECT_EQ(80, Place(3).right - Place(3).left);
    EXPECT_EQ(20, Place(3).bottom - Place(3).top);
    EXPECT_EQ(Item(4), GetWindow(Item(3), GW_HWNDNEXT)) << "the order stays";
}

TEST_P(CollapseRows, MovesNeitherHiddenWindowsNorFramesOfEdits) {
    Add(10, 170, 0);
    SetPropW(Add(11, 180), L"OB_EDIT_FRAME", reinterpret_cast<HANDLE>(INT_PTR{1}));
    constexpr int kFirst[] = {1, 2, 0};
    obcore::CollapseRows(window_.Get(), kFirst);
    EXPECT_EQ(10, Top(3));
    EXPECT_EQ(170, Top(10));
    EXPECT_EQ(180, Top(11));
    RemovePropW(Item(11), L"OB_EDIT_FRAME");
}

TEST_P(CollapseRows, CutsTheWindowOffAtItsLastRow) {
    constexpr int kLast[] = {4, 0};
    obcore::CollapseRows(window_.Get(), kLast);
    RECT client{};
    GetClientRect(window_.Get(), &client);
    EXPECT_EQ(130, client.bottom);
    EXPECT_EQ(90, Top(3));
}

TEST_P(CollapseRows, ChangesNothingForIdsThatAreNotThere) {
    const LONG height = Height();
    constexpr int kNone[] = {99, 0};
    obcore::CollapseRows(window_.Get(), kNone);
    obcore::CollapseRows(window_.Get(), kNone + 1);
    EXPECT_EQ(height, Height());
    EXPECT_EQ(130, Top(4));
}

} // namespace
