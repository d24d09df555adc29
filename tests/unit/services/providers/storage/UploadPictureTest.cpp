// The progress window of an upload at one scale of the display: in proportion, and no text cut off.
// In the folder OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/storage/UploadDialogIds.h"
#include "services/providers/storage/UploadTimes.h"
#include "tests/support/WindowKit.h"
#include "tests/support/WindowPicture.h"

using namespace providers;

namespace {

int ExpectedDpi() {
    const char* const text = std::getenv("OB_EXPECTED_DPI");
    return text ? std::atoi(text) : 0;
}

class UploadPicture : public testing::Test {
protected:
    static void SetUpTestSuite() {
        SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    }

    static void Look(const UploadWindow& window, const std::wstring& name) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        RedrawWindow(window.Get(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        for (const int id :
             {OB_UPLOAD_BODY, OB_UPLOAD_SPEED, OB_UPLOAD_TIME_LEFT, static_cast<int>(IDCANCEL)}) {
            ExpectWholeText(GetDlgItem(window.Get(), id), id);
        }
        const auto picture = obtest::TakeSettledPicture(window.Get());
        ASSERT_TRUE(picture) << "the window stays blank or never comes to rest";
        EXPECT_GE(picture->width, MulDiv(380, ExpectedDpi(), 96));
        const wchar_t* const folder = _wgetenv(L"OB_PICTURES");
        if (!folder) return;
        const std::wstring file =
            std::wstring(folder) + L"\\" + name + L"-" + std::to_wstring(ExpectedDpi()) + L".png";
        EXPECT_TRUE(obtest::WritePng(*picture, file));
    }

    // The text, broken into lines as its control breaks it, fits into the control, and the control
    // into its window.
    static void ExpectWholeText(HWND control, int id) {
        RECT room;
        GetClientRect(control, &room);
        RECT needed{0, 0, room.right, 0};
        const HDC dc = GetDC(control);
        const HGDIOBJ old =
            SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        DrawTextW(dc, obtest::TextOf(control).c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
        SelectObject(dc, old);
        ReleaseDC(control, dc);
        EXPECT_LE(needed.bottom, room.bottom) << id;
        EXPECT_LE(needed.right, room.right) << id;
        RECT window;
        GetClientRect(GetParent(control), &window);
        MapWindowPoints(control, GetParent(control), reinterpret_cast<POINT*>(&room), 2);
        EXPECT_LT(room.bottom, window.bottom) << id;
        EXPECT_LT(room.right, window.right) << id;
    }
};

TEST_F(UploadPicture, OfAnUploadHalfDone) {
    UploadWindow window({L"Uploading to the cloud",
                         L"When the upload is done, your mail gets a link instead of the "
                         L"attachment."},
                        L"Photos of the summer.zip", nullptr);
    constexpr std::uint64_t kTotal = 734'003'200;
    window.Show(
        {kTotal / 2, kTotal, UploadSpeedText(kTotal / 2, kTotal, 12'582'912), UploadTimeText(28)});
    Look(window, L"upload");
}

// The longest texts, as other languages may have them.
TEST_F(UploadPicture, OfAnUploadWithLongTexts) {
    std::wstring body;
    while (body.size() < 450) body += L"When the upload is done, your mail gets a link. ";
    UploadWindow window({L"Uploading to the cloud", body},
                        L"Statement of account, third quarter of 2026, for Ann Example and Bob "
                        L"Example.zip",
                        nullptr);
    constexpr std::uint64_t kTotal = 1ULL << 60;
    window.Show({kTotal - 1, kTotal, UploadSpeedText(kTotal - 1, kTotal, 1ULL << 40),
                 UploadTimeText(86'400 * 3)});
    Look(window, L"upload-long");
}

} // namespace
