// The cloud button and the logo in the shell's real dialog; the pick from the cloud and the
// pipeline are fakes.
#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

#include "OBCore/exchange/ExchangeAnswer.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "contracts/ExchangeBlock.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/picker/RealPickerFixture.h"
#include "tests/unit/WebVellant/OBCore/picker/FakeCloudPick.h"

namespace obtest {
namespace {

using obcontract::ExchangeStatus;
using namespace obcore;

using obcontract::kCancelled;

bool ShowsABitmap(HWND window) {
    return ClassOf(window) == L"Static" &&
           (GetWindowLongW(window, GWL_STYLE) & SS_TYPEMASK) == SS_BITMAP;
}

// The windows of one open picker.
struct Parts {
    explicit Parts(HWND picker)
        : dialog(picker), button(GetDlgItem(picker, 3011)), ok(GetDlgItem(picker, IDOK)),
          box(FindWindowExW(picker, nullptr, L"ComboBoxEx32", nullptr)),
          view(FindWindowExW(picker, nullptr, L"DUIViewWndClassName", nullptr)),
          logo(FindDescendant(view, &ShowsABitmap)) {}

    HWND dialog, button, ok, box, view, logo;
};

RECT PlaceOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

void SetSize(HWND dialog, int width, int height) {
    SetWindowPos(dialog, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

// Where the button and the logo are, whatever the dialog's size.
void ExpectInPlace(const Parts& parts) {
    const RECT button = PlaceOf(parts.button);
    EXPECT_EQ(button.left, PlaceOf(parts.box).left);
    EXPECT_EQ(button.top, PlaceOf(parts.ok).top);
    EXPECT_EQ(button.bottom, PlaceOf(parts.ok).bottom);
    EXPECT_GE(button.top, PlaceOf(parts.box).bottom);
    RECT area{};
    GetClientRect(parts.dialog, &area);
    RECT logo = PlaceOf(parts.logo);
    MapWindowPoints(HWND_DESKTOP, parts.dialog, reinterpret_cast<POINT*>(&logo), 2);
    EXPECT_EQ(logo.left, 10);
    EXPECT_EQ(logo.bottom, area.bottom);
    EXPECT_GT(logo.right - logo.left, 0);
}

class CloudButtonInPicker : public RealPickerFixture {
protected:
    static void SetUpTestSuite() {
        BeAwareOfTheScale();
        std::puts(
            "[   NOTE   ] Wine's dialog has no file name box and no view of Windows' classes: "
            "the tests' own are in their place");
    }

    void SetUp() override {
        FakeCloudPick::Reset();
        ObLib::AppGlobals().SetModule(GetModuleHandleW(nullptr), L"", L"");
        RealPickerFixture::SetUp();
        FakeCloudPick::hasProvider = [](auto) { return true; };
    }
    void TearDown() override {
        ObLib::AppGlobals().Clear();
        RealPickerFixture::TearDown();
    }

    HRESULT RunDialog(std::function<void(OpenPicker&)> use) {
        return RealPickerFixture::RunDialog(FOS_FORCEFILESYSTEM, std::move(use));
    }

    BOOL RunOpenFileName(std::function<void(OpenPicker&)> use) {
        return RealPickerFixture::RunOpenFileName(0, std::move(use));
    }

    void ExpectLink(const std::wstring& text) {
        EXPECT_EQ(block->Status, ExchangeStatus::LinkAnswer);
        EXPECT_EQ(ReadText(*block, 76), text);
    }

    static void GiveLink(const std::wstring& text) {
        FakeCloudPick::pick = [text](CloudButtonHook& record, HWND) {
            record.linkText = text;
            return true;
        };
    }
};

TEST_F(CloudButtonInPicker, IsOnTheLineOfOkBelowTheFileNameWithoutAnAssertion) {
    MessageBoxWatcher boxes;
    RunDialog([](OpenPicker& picker) {
        const Parts parts(picker.Window());
        EXPECT_TRUE(IsWindowVisible(parts.button));
        EXPECT_TRUE(IsWindowEnabled(parts.button));
        EXPECT_EQ(TextOf(parts.button), L"&Cloud...");
        EXPECT_EQ(SendMessageW(parts.button, WM_GETFONT, 0, 0),
                  SendMessageW(parts.ok, WM_GETFONT, 0, 0));
        // By the visual style of this program's manifest the button knows what its text needs.
        EXPECT_GT(PlaceOf(parts.button).right - PlaceOf(parts.button).left, AtScale(30));
        ExpectWholeText(parts.button);
        EXPECT_LT(PlaceOf(parts.button).right, PlaceOf(parts.ok).left);
        ExpectInPlace(parts);
        picker.PressCancel();
    });
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(CloudButtonInPicker, IsDisabledWithoutAProvider) {
    FakeCloudPick::hasProvider = nullptr;
    RunDialog([](OpenPicker& picker) {
        const Parts parts(picker.Window());
        EXPECT_TRUE(IsWindowVisible(parts.button));
        EXPECT_FALSE(IsWindowEnabled(parts.button));
        picker.PressCancel();
    });
}

TEST_F(CloudButtonInPicker, FollowsTheDialogAndHasALogoBelow) {
    RunDialog([](OpenPicker& picker) {
        const Parts parts(picker.Window());
        EXPECT_TRUE(IsWindowVisible(parts.logo));
        const RECT before = PlaceOf(parts.dialog);
        for (const int more : {150, 40, 300}) {
            SetSize(parts.dialog, before.right - before.left + more,
                    before.bottom - before.top + more / 2);
            ExpectInPlace(parts);
        }
        picker.PressCancel();
    });
}

TEST_F(CloudButtonInPicker, KeepsTheDialogFromGettingTooNarrow) {
    RunDialog([](OpenPicker& picker) {
        const Parts parts(picker.Window());
        const RECT dialog = PlaceOf(parts.dialog);
        const int minimum =
            PlaceOf(parts.button).right - PlaceOf(parts.box).right + dialog.right - dialog.left;
        SetSize(parts.dialog, 20, dialog.bottom - dialog.top);
        const RECT narrow = PlaceOf(parts.dialog);
        EXPECT_GE(narrow.right - narrow.left, minimum);
        EXPECT_LE(PlaceOf(parts.button).right, PlaceOf(parts.box).right);
        ExpectInPlace(parts);
        picker.PressCancel();
    });
}

TEST_F(CloudButtonInPicker, StaysWithTheDialogWhenNothingWasPicked) {
    bool stayed = false;
    const HRESULT result = RunDialog([&](OpenPicker& picker) {
        Click(Parts(picker.Window()).button);
        EXPECT_TRUE(WaitUntil([] { return !FakeCloudPick::picks.empty(); }));
        stayed = picker.IsOpen();
        picker.PressCancel();
    });
    EXPECT_TRUE(stayed);
    EXPECT_EQ(result, kCancelled);
    EXPECT_EQ(block->Status, ExchangeStatus::DialogRequest);
}

TEST_F(CloudButtonInPicker, GivesThePageALinkOnTheDialogPath) {
    GiveLink(L"https://cloud/1");
    HWND window = nullptr;
    const HRESULT result = RunDialog([&](OpenPicker& picker) {
        window = picker.Window();
        Click(Parts(picker.Window()).button);
        picker.WaitUntilClosed();
    });
    EXPECT_EQ(result, kCancelled);
    ExpectLink(L"https://cloud/1");
    ASSERT_EQ(FakeCloudPick::picks.size(), 1U);
    EXPECT_EQ(FakeCloudPick::picks[0].dialog, window);
}

TEST_F(CloudButtonInPicker, GivesThePageALinkOnTheOpenFileNamePath) {
    GiveLink(L"https://cloud/2");
    EXPECT_EQ(RunOpenFileName([](OpenPicker& picker) {
                  Click(Parts(picker.Window()).button);
                  picker.WaitUntilClosed();
              }),
              0);
    ExpectLink(L"https://cloud/2");
}

TEST_F(CloudButtonInPicker, LeavesTheChoiceOfFilesAsItWas) {
    TestFolder folder;
    const std::wstring file = folder.File(L"one.txt");
    std::vector<std::wstring> picked;
    FakePlanning::process = [&](OBOpenFileNameDlg& dialog, const std::vector<std::wstring>& paths) {
        picked = paths;
        dialog.AttachRecord->Files = paths;
        return 1;
    };
    EXPECT_EQ(RunOpenFileName([&](OpenPicker& picker) {
                  picker.TypeNames(file);
                  picker.PressOk();
              }),
              1);
    EXPECT_EQ(picked, std::vector<std::wstring>{file});
}

} // namespace
} // namespace obtest
