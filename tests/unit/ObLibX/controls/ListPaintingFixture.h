// What the tests of a list view's looks share: a list with rows, and how they are shown.
#pragma once

#include <algorithm>
#include <utility>

#include "tests/unit/ObLibX/controls/ListFixture.h"

namespace listtest {

inline constexpr COLORREF kWhite = 0xFFFFFF;
inline constexpr COLORREF kSelectedFrame = 0xE6A869;
inline constexpr COLORREF kHotFrame = 0xE6C37A;
inline constexpr COLORREF kRed = 0x0000FF;

} // namespace listtest

// A list of three rows without a selection.
class ListPainting : public ListsTest {
protected:
    void SetUp() override {
        ListsTest::SetUp();
        for (const wchar_t* const text : {L"One", L"Two", L"Three"}) Insert(text);
        SetCell(0, 1, L"111");
        SetCell(0, 2, L"ooo");
        SetState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    }
    void HideFocusCues() const {
        SetWindowSubclass(
            Window(),
            [](HWND hidden, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
               DWORD_PTR) -> LRESULT {
                if (message == WM_QUERYUISTATE) return UISF_HIDEFOCUS;
                return DefSubclassProc(hidden, message, wParam, lParam);
            },
            1, 0);
    }
    // Fill and frame of a row, as they are shown.
    std::pair<COLORREF, COLORREF> Look(int row) const {
        const listtest::ShownPixels shown(Window());
        const ObLibX::PixelRect area = RowArea(row);
        const COLORREF frame = shown.At(area.left, area.top);
        EXPECT_TRUE(shown.IsFramed(area, frame)) << row;
        return {shown.At(area.right - 3, area.top + 3), frame};
    }
    using Colours = std::pair<COLORREF, COLORREF>;
    // Inside a row, where the mouse counts.
    ObLibX::PixelPoint On(int row) const {
        const ObLibX::PixelRect area = RowArea(row);
        return {area.left + 5, std::max(area.top + 1, ObLibX::Scale(24))};
    }
};
