// A control's colour that changes gradually: its timer, its steps, its ends.
#include "ObLibX/src/controls/ColorFade.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLib/FatalExit.h"

namespace {

using namespace ObLibX;

struct Timer {
    HWND window;
    UINT_PTR id;
    UINT milliseconds;
    TIMERPROC call;
};

// The timers that are set; the test makes them due.
std::vector<Timer> timers;

UINT_PTR WINAPI RecordTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC call) {
    timers.push_back({window, id, milliseconds, call});
    return id;
}

BOOL WINAPI ForgetTimer(HWND window, UINT_PTR id) {
    return std::erase_if(timers, [&](const Timer& timer) {
               return timer.window == window && timer.id == id;
           }) != 0;
}

class FadingControl : public ObCustomControl {
public:
    FadingControl() : ObCustomControl(1, nullptr, L"", 0) {}
    std::uint32_t SetAnimatedColor(COLORREF color) override {
        colors.push_back(color);
        return onColor ? onColor() : 1;
    }
    std::vector<COLORREF> colors;
    std::function<std::uint32_t()> onColor;
    ColorFade fade;
};

class ColorFadeTest : public testing::Test {
protected:
    void SetUp() override {
        timers.clear();
        ASSERT_TRUE(set_.Ok() && kill_.Ok());
        control_->window = window_.Get();
    }
    static void Tick() {
        ASSERT_FALSE(timers.empty());
        const Timer due = timers.front();
        due.call(due.window, WM_TIMER, due.id, 0);
    }

    obtest::ImportPatch<decltype(&SetTimer)> set_{"user32.dll", "SetTimer", &RecordTimer};
    obtest::ImportPatch<decltype(&KillTimer)> kill_{"user32.dll", "KillTimer", &ForgetTimer};
    ObLib::UniqueWindow window_{CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 10, 10, nullptr,
                                                nullptr, nullptr, nullptr)};
    std::unique_ptr<FadingControl> control_ = std::make_unique<FadingControl>();
};

TEST_F(ColorFadeTest, TakesTenStepsOfTenMilliseconds) {
    control_->fade.Start(*control_, 0x000000, 0x64C80A);
    ASSERT_EQ(1u, timers.size());
    EXPECT_EQ(window_.Get(), timers[0].window);
    EXPECT_EQ(10u, timers[0].milliseconds);
    EXPECT_TRUE(control_->fade.IsRunning());
    for (int step = 0; step < 10; ++step) Tick();
    EXPECT_EQ((std::vector<COLORREF>{0x0A1401, 0x142802, 0x1E3C03, 0x285004, 0x326405, 0x3C7806,
                                     0x468C07, 0x50A008, 0x5AB409, 0x64C80A}),
              control_->colors);
    EXPECT_FALSE(control_->fade.IsRunning());
    EXPECT_TRUE(timers.empty());
}

TEST_F(ColorFadeTest, EndsWhenItsControlReturns0) {
    control_->onColor = [&] { return control_->colors.size() == 3 ? 0u : 1u; };
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    for (int step = 0; step < 3; ++step) Tick();
    EXPECT_FALSE(control_->fade.IsRunning());
    EXPECT_TRUE(timers.empty());
    EXPECT_EQ(3u, control_->colors.size());
}

TEST_F(ColorFadeTest, StopsWithoutACallAndStartsAgain) {
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    const UINT_PTR first = timers[0].id;
    const Timer late = timers[0];
    control_->fade.Stop();
    control_->fade.Stop();
    EXPECT_TRUE(timers.empty());
    late.call(late.window, WM_TIMER, late.id, 0);
    EXPECT_TRUE(control_->colors.empty()) << "a message of a timer that has ended";
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    EXPECT_EQ(first + 1, timers[0].id) << "each fade has a timer id of its own";
    Tick();
    EXPECT_EQ(std::vector<COLORREF>{0x191919}, control_->colors);
}

TEST_F(ColorFadeTest, MayEndWithItsControlWhileItGivesAColour) {
    control_->onColor = [&] {
        control_.reset();
        return 0u;
    };
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    Tick();
    EXPECT_EQ(nullptr, control_);
    EXPECT_TRUE(timers.empty());
}

TEST_F(ColorFadeTest, LeavesTheThreadsTimersAloneWhenItsWindowHasGone) {
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    timers[0].window = nullptr; // a timer of the thread that has this id by chance
    control_->window = nullptr;
    control_->fade.Stop();
    EXPECT_EQ(1u, timers.size());
    EXPECT_FALSE(control_->fade.IsRunning());
}

TEST_F(ColorFadeTest, EndsTheProcessWhenItRunsAlready) {
    control_->fade.Start(*control_, 0, 0xFFFFFF);
    EXPECT_FATAL(control_->fade.Start(*control_, 0, 0xFFFFFF), "ObLibX\\src\\ColorFade.cpp");
}

} // namespace
