// The settings window in a high contrast scheme, and the pictures that it shows at this scale. With
// OB_PICTURES, a folder, its picture is stored there.
#include "tests/support/ContrastFake.h"
#include "tests/support/PictureSuite.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obtest::OpenDialog;

constexpr int kPictures[] = {101, 104, 110, 113};
constexpr int kElements[] = {COLOR_WINDOW,  COLOR_WINDOWTEXT, COLOR_BTNFACE,
                             COLOR_BTNTEXT, COLOR_HOTLIGHT,   COLOR_GRAYTEXT};
constexpr COLORREF kDark[] = {0, 0xFFFFFF, 0, 0xFFFFFF, 0x00FFFF, 0x3FF23F};

// A scheme with a dark ground.
class OptionsContrast : public obtest::OptionsFixture {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(parameters_.Ok());
        for (const int element : kElements) old_.push_back(GetSysColor(element));
        SetSysColors(std::size(kElements), kElements, kDark);
        obtest::isContrastOn = true;
        printf("high contrast: a fake of the question, and the colours of a dark scheme\n");
    }
    void TearDown() override {
        obtest::isContrastOn = false;
        SetSysColors(std::size(kElements), kElements, old_.data());
        OptionsFixture::TearDown();
    }

    std::vector<COLORREF> old_;
    obtest::ImportPatch<decltype(&SystemParametersInfoW)> parameters_{
        "user32.dll", "SystemParametersInfoW", &obtest::ParametersWithContrast};
};

TEST_F(OptionsContrast, KeepsItsGroundAndPutsTextsOnTheSchemesColour) {
    SetCursorPos(0, 0);
    Show([](const OpenDialog& dialog) {
        obtest::LookAt(dialog.window, L"settings-options-contrast", 500, 380);
        const HDC dc = GetDC(dialog.window);
        EXPECT_EQ(0xF6F6F6u, GetPixel(dc, 1, 1));
        ReleaseDC(dialog.window, dc);
        const HWND headline = dialog.Item(OB_OPTIONS_HEADLINE_1);
        RECT room{};
        GetClientRect(headline, &room);
        const HDC text = GetDC(headline);
        EXPECT_EQ(0u, GetPixel(text, room.right - 1, room.bottom - 1));
        ReleaseDC(headline, text);
    });
}

class OptionsImages : public obtest::OptionsFixture {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }
};

TEST_F(OptionsImages, AreAsWideAsTheirLabelsAndWithoutAlpha) {
    Show([](const OpenDialog& dialog) {
        for (const int id : kPictures) {
            const auto bitmap = reinterpret_cast<HBITMAP>(
                SendMessageW(dialog.Item(id), STM_GETIMAGE, IMAGE_BITMAP, 0));
            BITMAP picture{};
            ASSERT_NE(0, GetObjectW(bitmap, sizeof picture, &picture)) << id;
            EXPECT_EQ(24, picture.bmBitsPixel) << id << ": nobody copies it";
            RECT room{};
            GetClientRect(dialog.Item(id), &room);
            EXPECT_EQ(picture.bmWidth, room.right) << id;
        }
    });
}

} // namespace
