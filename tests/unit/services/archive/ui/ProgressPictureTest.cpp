// The progress window isn't blank and grows with the display's scale. In the folder OB_PICTURES,
// where that is set, the test leaves its picture to be judged by eye.
#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "services/archive/ui/ProgressWindow.h"
#include "services/archive/ui/ProgressWindowIds.h"
#include "services/archive/ui/TimeLeft.h"
#include "services/archive/zip/ZipForUser.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/ProgressUiDriver.h"

namespace {

using obarchive::ProgressCallback;
using obarchive::ZipResult;

// The clock of a run; it stops after some seconds, so that the window no longer changes.
constexpr std::uint64_t kStandstill = 12'500;
std::atomic<std::uint64_t> runTime;
std::uint64_t RunClock() { return runTime = std::min(runTime + 500, kStandstill); }

class ProgressPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }
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
        obtest::LookAt(window, L"progress", 300, 110);
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
