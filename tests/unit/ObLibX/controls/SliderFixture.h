// What the tests of sliders share: a slider of 0 to 100 at 50, and how its thumb is found.
#pragma once

#include "ObLibX/src/controls/ObCustSlider.h"

#include <commctrl.h>

#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace obtest {

// A horizontal slider of 210 pixels with the range 0 to 100, at 50.
class SliderTest : public BarTest {
protected:
    void SetUp() override {
        BarTest::SetUp();
        window_ = Child(L"Static", 0, {100, 50, 100 + 200 + ObLibX::Scale(10), 150});
        slider_.Attach(window_);
        SendMessageW(window_, TBM_SETPOS, TRUE, 50);
    }
    Scrolled Horizontal(int code, int value = 0) const {
        return {WM_HSCROLL, code, value, window_};
    }
    std::int32_t Position() const {
        return static_cast<std::int32_t>(SendMessageW(window_, TBM_GETPOS, 0, 0));
    }
    // The middle of the thumb.
    int ThumbX() const { return slider_.Layout().thumb.Centre().x; }

    ObLibX::ObFlatSlider slider_{1001, ObLibX::ScrollOrientation::Horizontal};
    HWND window_ = nullptr;
};

} // namespace obtest
