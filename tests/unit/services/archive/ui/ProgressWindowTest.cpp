#include "services/archive/ui/ProgressWindow.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "services/archive/ui/ProgressWindowIds.h"
#include "tests/support/ProgressUiDriver.h"

namespace {

using obarchive::ProgressView;
using obarchive::ProgressWindow;
using obtest::FindProgressWindow;
using obtest::ItemText;

ObLib::UniqueWindow MakeOwner() {
    return ObLib::UniqueWindow(CreateWindowW(L"Static", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                             0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr));
}

LRESULT BarAt(HWND window) {
    return SendDlgItemMessageW(window, OB_PROGRESS_BAR, PBM_GETPOS, 0, 0);
}

bool IsMarquee(HWND window) {
    return GetWindowLongW(GetDlgItem(window, OB_PROGRESS_BAR), GWL_STYLE) & PBS_MARQUEE;
}

TEST(ProgressWindowTest, TheOwnerIsDisabledMeanwhileAndEnabledAfterwards) {
    const ObLib::UniqueWindow owner = MakeOwner();
    {
        const ProgressWindow window(owner.Get());
        const HWND shown = FindProgressWindow();
        ASSERT_TRUE(shown);
        EXPECT_EQ(GetWindow(shown, GW_OWNER), owner.Get());
        EXPECT_FALSE(IsWindowEnabled(owner.Get()));
    }
    EXPECT_FALSE(FindProgressWindow());
    EXPECT_TRUE(IsWindowEnabled(owner.Get()));
}

TEST(ProgressWindowTest, AnOwnerThatWasDisabledBeforeStaysSo) {
    const ObLib::UniqueWindow owner = MakeOwner();
    EnableWindow(owner.Get(), FALSE);
    { const ProgressWindow window(owner.Get()); }
    EXPECT_FALSE(IsWindowEnabled(owner.Get()));
}

TEST(ProgressWindowTest, TheWindowOpensWhenTheOwnerNoLongerExists) {
    for (const HWND owner : {HWND{}, reinterpret_cast<HWND>(0xDEAD)}) {
        const ProgressWindow window(owner);
        EXPECT_TRUE(FindProgressWindow());
    }
}

TEST(ProgressWindowTest, ShowsFileBarAndTime) {
    ProgressWindow window(nullptr);
    const HWND shown = FindProgressWindow();
    window.Show({L"\\\\?\\C:\\folder\\notes.txt", 250, 1000, L"About 10 seconds left"});
    EXPECT_EQ(ItemText(shown, OB_PROGRESS_FILE), L"C:\\folder\\notes.txt");
    EXPECT_EQ(ItemText(shown, OB_PROGRESS_TIME_LEFT), L"About 10 seconds left");
    EXPECT_EQ(BarAt(shown), 250);
    window.Show({L"\\\\?\\UNC\\server\\share\\a & b.txt", 1001, 1000, L""});
    EXPECT_EQ(ItemText(shown, OB_PROGRESS_FILE), L"\\\\server\\share\\a & b.txt");
    EXPECT_EQ(ItemText(shown, OB_PROGRESS_TIME_LEFT), L"");
    EXPECT_EQ(BarAt(shown), 1000);
}

TEST(ProgressWindowTest, TheBarNeverMovesBack) {
    ProgressWindow window(nullptr);
    const HWND shown = FindProgressWindow();
    window.Show({L"a", 600, 1000, L""});
    window.Show({L"a", 600, 2000, L""});
    EXPECT_EQ(BarAt(shown), 600);
    window.Show({L"a", 1'900, 2'000, L""});
    EXPECT_EQ(BarAt(shown), 950);
}

TEST(ProgressWindowTest, SizesAboveFourGibibytesFit) {
    ProgressWindow window(nullptr);
    window.Show({L"a", 3ULL << 40, 4ULL << 40, L""});
    EXPECT_EQ(BarAt(FindProgressWindow()), 750);
}

TEST(ProgressWindowTest, WithoutATotalTheBarMovesWithoutAMeasure) {
    ProgressWindow window(nullptr);
    const HWND shown = FindProgressWindow();
    window.Show({L"a", 600, 0, L""});
    EXPECT_TRUE(IsMarquee(shown));
    window.Show({L"a", 600, 1000, L""});
    EXPECT_FALSE(IsMarquee(shown));
    EXPECT_EQ(BarAt(shown), 600);
}

TEST(ProgressWindowTest, CancelCanBePressedOnceAndStays) {
    ProgressWindow window(nullptr);
    const HWND shown = FindProgressWindow();
    EXPECT_FALSE(window.IsCancelAsked());
    SendDlgItemMessageW(shown, IDCANCEL, BM_CLICK, 0, 0);
    EXPECT_TRUE(window.IsCancelAsked());
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(shown, IDCANCEL)));
    EXPECT_TRUE(IsWindowVisible(shown)); // until the work has ended
}

TEST(ProgressWindowTest, OkIsIgnored) {
    ProgressWindow window(nullptr);
    SendMessageW(FindProgressWindow(), WM_COMMAND, IDOK, 0);
    EXPECT_FALSE(window.IsCancelAsked());
}

TEST(ProgressWindowTest, DestroyingTheOwnerCancels) {
    ObLib::UniqueWindow owner = MakeOwner();
    ProgressWindow window(owner.Get());
    owner.Reset();
    EXPECT_TRUE(window.IsCancelAsked());
    EXPECT_FALSE(FindProgressWindow());
    window.Show({L"a", 1, 2, L"b"});
    MSG message{};
    EXPECT_FALSE(window.Takes(message));
}

TEST(ProgressWindowTest, NothingIsCutOffAndNothingOverlaps) {
    ProgressWindow window(nullptr);
    const HWND shown = FindProgressWindow();
    RECT all;
    GetClientRect(shown, &all);
    RECT last{};
    for (const int id :
         {OB_PROGRESS_INTRO, OB_PROGRESS_FILE, OB_PROGRESS_BAR, OB_PROGRESS_TIME_LEFT, IDCANCEL}) {
        RECT place;
        GetWindowRect(GetDlgItem(shown, id), &place);
        MapWindowPoints(nullptr, shown, reinterpret_cast<POINT*>(&place), 2);
        EXPECT_TRUE(place.top >= last.bottom || place.left >= last.right) << id;
        EXPECT_LT(place.right, all.right) << id;
        EXPECT_LT(place.bottom, all.bottom) << id;
        EXPECT_GT(place.left, 0) << id;
        last = place;
    }
}

} // namespace
