// What the tests of the flat scroll bar share: a bar whose timers are recorded and whose cursor is
// where the test puts it.
#pragma once

#include "ObLibX/src/controls/ObCustScroll.h"

#include <utility>
#include <vector>

#include "ObLibX/src/controls/ScrollRepeat.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace obtest {

inline std::vector<std::pair<UINT_PTR, UINT>> timersSet;
inline int timersKilled = 0;

inline UINT_PTR WINAPI RecordTimer(HWND, UINT_PTR id, UINT period, TIMERPROC) {
    timersSet.emplace_back(id, period);
    return id;
}
inline BOOL WINAPI RecordKill(HWND, UINT_PTR) {
    ++timersKilled;
    return TRUE;
}

inline POINT fakeCursor{}; // on the screen
inline BOOL WINAPI FakeCursor(POINT* point) {
    *point = fakeCursor;
    return TRUE;
}

// A vertical bar with a range of 0 to 99 and pages of 20, on a label that was too wide. Its timers
// are recorded.
class ScrollBarTest : public BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        timersSet.clear();
        timersKilled = 0;
        ASSERT_TRUE(set_.Ok() && kill_.Ok() && cursor_.Ok());
        thickness_ = GetSystemMetrics(SM_CXVSCROLL);
        arrow_ = GetSystemMetrics(SM_CYVSCROLL);
        window_ = Child(L"Static", 0, {100, 50, 160, 50 + 2 * arrow_ + 200});
        bar_.Attach(window_);
        SetInfo(SIF_ALL, 0, 99, 20, 40);
    }
    void TearDown() override {
        BarTest::TearDown();
        EXPECT_FALSE(ObLibX::TheScrollRepeat().IsRunning(window_))
            << "the repeat ends with the window";
    }

    LRESULT SetInfo(UINT mask, int minimum, int maximum, UINT page, int position) {
        SCROLLINFO info{sizeof info, mask, minimum, maximum, page, position, 0};
        return SendMessageW(window_, SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
    }
    SCROLLINFO Info(UINT mask = SIF_ALL) const {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = mask;
        SendMessageW(window_, SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info));
        return info;
    }
    // The place of a pixel of the track, at the middle of the bar.
    int Track(int pixel) const { return arrow_ + pixel; }
    int Middle() const { return thickness_ / 2; }
    int Bottom() const { return 2 * arrow_ + 199; }
    void Tick() const { SendMessageW(window_, WM_TIMER, ObLibX::kScrollRepeatTimer, 0); }
    // Delivers the press that was posted; false without one.
    bool DeliverPress() const {
        MSG message{};
        if (!PeekMessageW(&message, window_, WM_LBUTTONDOWN, WM_LBUTTONDOWN, PM_REMOVE)) {
            return false;
        }
        DispatchMessageW(&message);
        return true;
    }
    void PutCursor(int x, int y) const {
        fakeCursor = {x, y};
        ClientToScreen(window_, &fakeCursor);
    }
    Scrolled Vertical(int code, int value = 0) const { return {WM_VSCROLL, code, value, window_}; }

    ObLibX::ObFlatScrollbar bar_{1001, ObLibX::ScrollOrientation::Vertical};
    HWND window_ = nullptr;
    int thickness_ = 0;
    int arrow_ = 0;

private:
    ImportPatch<decltype(&SetTimer)> set_{"user32.dll", "SetTimer", &RecordTimer};
    ImportPatch<decltype(&KillTimer)> kill_{"user32.dll", "KillTimer", &RecordKill};
    ImportPatch<decltype(&GetCursorPos)> cursor_{"user32.dll", "GetCursorPos", &FakeCursor};
};

} // namespace obtest
