// The settings window at one scale of the display: no text is cut off, and the bottom frames its
// buttons. In the folder OB_PICTURES, where that is set, the tests leave pictures to be judged by
// eye.
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::OpenDialog;

constexpr int kTransforms[] = {3, 2, 5, 50, 51, 65, 66, 70};
constexpr int kTexts[] = {OB_OPTIONS_HEADLINE_1,    OB_OPTIONS_HEADLINE_2,
                          OB_OPTIONS_HEADLINE_3,    OB_OPTIONS_BROWSERS,
                          OB_OPTIONS_EXPLANATION_1, OB_OPTIONS_EXPLANATION_2,
                          OB_OPTIONS_EXPLANATION_3, OB_OPTIONS_EXPLANATION_4};
constexpr int kButtons[] = {
    OB_OPTIONS_CLOUD,   OB_OPTIONS_ATTACHMENT, OB_OPTIONS_CHROME, OB_OPTIONS_EDGE,
    OB_OPTIONS_FIREFOX, OB_OPTIONS_UPDATE,     OB_OPTIONS_OK,     IDCANCEL};
constexpr int kBoxes[] = {OB_OPTIONS_CONVERT_PDF, OB_OPTIONS_RESIZE_IMAGES,
                          OB_OPTIONS_WATERMARK,   OB_OPTIONS_CONVERT_PHOTOS,
                          OB_OPTIONS_REMOVE_INFO, OB_OPTIONS_COMBINE_PDFS,
                          OB_OPTIONS_SIGN_PDFS,   OB_OPTIONS_CONVERT_FROM_PDF};
constexpr int kLargeScreen = 144;

RECT PlaceOf(const OpenDialog& dialog, int id) {
    RECT place{};
    GetWindowRect(dialog.Item(id), &place);
    MapWindowPoints(nullptr, dialog.window, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

class OptionsPictures : public obtest::OptionsFixture {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_EQ(obtest::ExpectedDpi(), ObLibX::GetDpi());
    }
    // The browsers of a 64-bit system; Firefox has this version.
    void InstallBrowsers(WORD firefox) {
        const std::wstring program = obtest::MakeProgram(folder_, L"browser.exe");
        const obtest::ProgramVersion version{firefox, 0, 0};
        views_.Add(L"chrome.exe", program, 64);
        views_.Add(L"msedge.exe", program, 64);
        views_.Add(L"firefox.exe", obtest::MakeProgram(folder_, L"firefox.exe", &version), 64);
    }
    void Look(const std::wstring& name, const std::function<void(const OpenDialog&)>& use = {}) {
        const bool isLarge = obtest::ExpectedDpi() >= kLargeScreen;
        Operate(
            OB_OPTIONS_CONVERT_FROM_PDF,
            [&]() -> INT_PTR {
                const int layout = isLarge ? OB_OPTIONS_LARGE : OB_OPTIONS;
                return obcore::OBOptionsDialogImp(layout, nullptr, options_).DoModal();
            },
            [&](const OpenDialog& dialog) {
                ExpectWholeTexts(dialog);
                if (use) use(dialog);
                obtest::LookAt(dialog.window, L"settings-options-" + name, 500, 380);
            });
    }

private:
    // `margin` pixels of the control's width are taken by something else.
    static void ExpectOneLine(HWND control, int margin) {
        const std::wstring text = obtest::TextOf(control);
        RECT needed{};
        const HDC dc = GetDC(control);
        const HGDIOBJ old =
            SelectObject(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
        DrawTextW(dc, text.c_str(), -1, &needed, DT_CALCRECT | DT_SINGLELINE);
        SelectObject(dc, old);
        ReleaseDC(control, dc);
        RECT room{};
        GetClientRect(control, &room);
        EXPECT_LE(needed.right, room.right - margin) << testing::PrintToString(text);
    }
    static void ExpectWholeTexts(const OpenDialog& dialog) {
        for (const int id : kTexts) obtest::ExpectWholeText(dialog.Item(id));
        for (const int id : kButtons) ExpectOneLine(dialog.Item(id), obtest::AtScale(8));
        for (const int id : kBoxes) ExpectOneLine(dialog.Item(id), obtest::AtScale(18));
    }

    obtest::TestFolder folder_;
};

TEST_F(OptionsPictures, OfEverythingThatThereIs) {
    InstallBrowsers(115);
    options_.AutoConvertPDF = true;
    options_.AutoRemoveInfo = true;
    Look(L"open");
}

TEST_F(OptionsPictures, WithoutTheRowOfFirefox) {
    InstallBrowsers(130);
    Look(L"new-firefox", [](const OpenDialog& dialog) {
        EXPECT_FALSE(IsWindowVisible(dialog.Item(OB_OPTIONS_FIREFOX)));
        const RECT above = PlaceOf(dialog, OB_OPTIONS_EXPLANATION_4);
        EXPECT_LE(above.bottom, PlaceOf(dialog, OB_OPTIONS_UPDATE).top);
    });
}

TEST_F(OptionsPictures, OfNoTransformAndNoBrowser) {
    for (const int id : kTransforms) Support(id, false);
    Look(L"nothing");
}

TEST_F(OptionsPictures, OfAPolicyWithoutThePicker) {
    InstallBrowsers(115);
    options_.DisableWebVellant = true;
    Look(L"policy");
}

// The bottom is 56 or 60 pixels high at every scale.
TEST_F(OptionsPictures, FramesItsButtonsAtTheScalesItWasMadeFor) {
    Look(L"frame", [](const OpenDialog& dialog) {
        RECT client{};
        GetClientRect(dialog.window, &client);
        const LONG top = client.bottom - (obtest::ExpectedDpi() < kLargeScreen ? 56 : 60);
        const RECT ok = PlaceOf(dialog, OB_OPTIONS_OK);
        EXPECT_LE(PlaceOf(dialog, OB_OPTIONS_UPDATE).bottom, top);
        EXPECT_LE(PlaceOf(dialog, OB_OPTIONS_ABOUT).bottom, top);
        if (obtest::ExpectedDpi() <= kLargeScreen) {
            EXPECT_LT(top, ok.top);
        } else {
            printf("%d dpi: the bottom is lower than its buttons\n", obtest::ExpectedDpi());
            EXPECT_LT(top, (ok.top + ok.bottom) / 2 - obtest::AtScale(6));
        }
    });
}

} // namespace
