// The progress window of an upload at one scale of the display: in proportion, and no text cut off.
// In the folder OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "services/providers/storage/UploadDialog.h"
#include "services/providers/storage/UploadDialogIds.h"
#include "services/providers/storage/UploadTimes.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "tests/support/PictureSuite.h"

using namespace providers;

namespace {

class UploadPicture : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    static void Look(const UploadWindow& window, const std::wstring& name) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        RedrawWindow(window.Get(), nullptr, nullptr,
                     RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        for (const int id :
             {OB_UPLOAD_BODY, OB_UPLOAD_SPEED, OB_UPLOAD_TIME_LEFT, static_cast<int>(IDCANCEL)}) {
            obtest::ExpectWholeText(GetDlgItem(window.Get(), id));
            ExpectInside(GetDlgItem(window.Get(), id));
        }
        obtest::LookAt(window.Get(), name, 380);
    }

    static void ExpectInside(HWND control) {
        RECT room;
        RECT window;
        GetClientRect(control, &room);
        GetClientRect(GetParent(control), &window);
        MapWindowPoints(control, GetParent(control), reinterpret_cast<POINT*>(&room), 2);
        EXPECT_LT(room.bottom, window.bottom) << GetDlgCtrlID(control);
        EXPECT_LT(room.right, window.right) << GetDlgCtrlID(control);
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

// The same window while a server makes a link, of which nobody knows how long it takes.
TEST_F(UploadPicture, OfTheWaitForALink) {
    UploadWindow window({OwnText(OB_TEXT_SHARE_TITLE), OwnText(OB_TEXT_SHARE_BODY)},
                        L"Photos of the summer.zip", nullptr);
    Look(window, L"upload-link");
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
