// The progress window isn't blank and grows with the display's scale. In the folder OB_PICTURES,
// where that is set, the test leaves its picture to be judged by eye.
#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

#include "services/archive/ui/ProgressWindow.h"
#include "services/archive/ui/ProgressWindowIds.h"
#include "services/archive/ui/TimeLeft.h"
#include "services/archive/zip/ZipForUser.h"
#include "tests/support/ProgressUiDriver.h"
#include "tests/support/WindowPicture.h"

namespace {

using obarchive::ProgressCallback;
using obarchive::ZipResult;

int ExpectedDpi() {
    const char* const text = std::getenv("OB_EXPECTED_DPI");
    return text ? std::atoi(text) : 0;
}

// The clock of a run; it stops after some seconds, so that the window no longer changes.
constexpr std::uint64_t kStandstill = 12'500;
std::atomic<std::uint64_t> runTime;
std::uint64_t RunClock() { return runTime = std::min(runTime + 500, kStandstill); }

class ProgressPicture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    }

    static void Look(HWND window, const std::wstring& name) {
        const auto picture = obtest::TakeSettledPicture(window);
        ASSERT_TRUE(picture) << "the window stays blank or never comes to rest";
        EXPECT_GE(picture->width, MulDiv(300, ExpectedDpi(), 96));
        EXPECT_GE(picture->height, MulDiv(110, ExpectedDpi(), 96));
        const wchar_t* const folder = _wgetenv(L"OB_PICTURES");
        if (!folder) return;
        const std::wstring file =
            std::wstring(folder) + L"\\" + name + L"-" + std::to_wstring(ExpectedDpi()) + L".png";
        EXPECT_TRUE(obtest::WritePng(*picture, file));
    }
};

TEST_F(ProgressPicture, ShowsALongPathAndTheTimeLeft) {
    const std::wstring file = L"C:\\Users\\Someone\\Documents\\Projects\\Thursday\\Meetings\\"
                              L"Minutes and figures of the third quarter.docx";
    const auto work = [&](const ProgressCallback& progress) {
        constexpr std::uint64_t kSpeed = 4; // bytes a millisecond
        HWND window = nullptr;
        EXPECT_TRUE(obtest::WaitUntil([&] {
            window = obtest::FindProgressWindow();
            return progress({file, runTime * kSpeed, 30'000 * kSpeed}) && runTime == kStandstill &&
                   obtest::ItemText(window, OB_PROGRESS_TIME_LEFT) == L"About 20 seconds left";
        }));
        Look(window, L"progress");
        return ZipResult::Ok;
    };
    EXPECT_EQ(obarchive::RunWithProgress(nullptr, work, &RunClock), ZipResult::Ok);
}

// No text of the window is cut off at its right end.
TEST_F(ProgressPicture, EveryTextFits) {
    obarchive::ProgressWindow progress(nullptr);
    const HWND window = obtest::FindProgressWindow();
    const auto fits = [window](int id) {
        const HWND control = GetDlgItem(window, id);
        RECT place;
        GetClientRect(control, &place);
        const std::wstring text = obtest::ItemText(window, id);
        const HDC context = GetDC(control);
        SelectObject(context, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        SIZE size{};
        GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
        ReleaseDC(control, context);
        return !text.empty() && size.cx <= place.right && size.cy <= place.bottom;
    };
    EXPECT_TRUE(fits(OB_PROGRESS_INTRO));
    for (const std::uint64_t seconds : {1, 55, 60, 7199, 900'000}) {
        progress.Show({L"", 0, 1, obarchive::TimeLeftText(seconds)});
        EXPECT_TRUE(fits(OB_PROGRESS_TIME_LEFT)) << seconds;
    }
}

} // namespace
