// The bar of the progress dialog: what the display does to the control's style.
#include "OBCore/transforms/TransformDisplay.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include "OBCore/modules/DialogIds.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace {

TEST(TransformDisplay, AddsAndRemovesTheMarqueeStyleAndLeavesTheOtherStyles) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_PROGRESS_CLASS};
    ASSERT_TRUE(InitCommonControlsEx(&controls));
    const ObLib::UniqueWindow dialog(CreateWindowExW(0, L"Static", L"", WS_OVERLAPPEDWINDOW, 0, 0,
                                                     100, 100, nullptr, nullptr, nullptr, nullptr));
    const HWND bar = CreateWindowExW(
        0, PROGRESS_CLASSW, L"", WS_CHILD | WS_BORDER | WS_TABSTOP | PBS_SMOOTH, 0, 0, 50, 10,
        dialog.Get(), reinterpret_cast<HMENU>(INT_PTR{OB_TRANSFORM_BAR}), nullptr, nullptr);
    ASSERT_NE(bar, nullptr);
    const LONG_PTR before = GetWindowLongPtrW(bar, GWL_STYLE);
    ASSERT_EQ(before & PBS_MARQUEE, 0);
    const obcore::TransformDisplay display(dialog.Get());
    display.StartMarquee();
    EXPECT_EQ(GetWindowLongPtrW(bar, GWL_STYLE), before | PBS_MARQUEE);
    display.LeaveMarquee(3);
    EXPECT_EQ(GetWindowLongPtrW(bar, GWL_STYLE), before);
    display.ReturnToMarquee();
    EXPECT_EQ(GetWindowLongPtrW(bar, GWL_STYLE), before | PBS_MARQUEE);
}

} // namespace
