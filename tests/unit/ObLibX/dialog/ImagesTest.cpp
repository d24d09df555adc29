// Pictures of resources, and how they are drawn.
#include "ObLibX/src/dialog/Images.h"

#include <algorithm>

// The headers of GDI+ use these two without their namespace.
using std::max;
using std::min;
#include <gdiplus.h>

#include "ObLibX/src/dialog/ObCustCtrl.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/support/ContrastFake.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;
using ObLib::UniqueBitmap;

using obtest::isContrastOn;
using obtest::ParametersWithContrast;

// A memory device context with a ground of one colour.
class Canvas {
public:
    explicit Canvas(COLORREF ground) : dc_(CreateCompatibleDC(nullptr)) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, 4, -4, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        bitmap_.Reset(CreateDIBSection(dc_.Get(), &info, DIB_RGB_COLORS, nullptr, nullptr, 0));
        SelectObject(dc_.Get(), bitmap_.Get());
        const ObLib::UniqueBrush brush(CreateSolidBrush(ground));
        const RECT all{0, 0, 4, 4};
        FillRect(dc_.Get(), &all, brush.Get());
    }
    HDC Dc() const { return dc_.Get(); }
    COLORREF At(int x, int y) const { return GetPixel(dc_.Get(), x, y); }

private:
    UniqueBitmap bitmap_;
    ObLib::UniqueMemoryDc dc_;
};

class Images : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(patch_.Ok());
        isContrastOn = false;
    }
    static COLORREF PixelOf(HBITMAP bitmap, int x) {
        const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
        const HGDIOBJ old = SelectObject(dc.Get(), bitmap);
        const COLORREF color = GetPixel(dc.Get(), x, 0);
        SelectObject(dc.Get(), old);
        return color;
    }

private:
    obtest::ImportPatch<decltype(&SystemParametersInfoW)> patch_{
        "user32.dll", "SystemParametersInfoW", &ParametersWithContrast};
};

TEST_F(Images, AreLoadedAsBitmapsAndElseAsCompressedPictures) {
    for (const int id : {5001, 5002, 5003, 5004, 5005, 5006}) {
        const UniqueBitmap bitmap = LoadImage(id);
        ASSERT_TRUE(bitmap) << id;
        EXPECT_EQ(2, ImageSize(bitmap.Get()).cx) << id;
        EXPECT_EQ(1, ImageSize(bitmap.Get()).cy) << id;
    }
    constexpr COLORREF kBlue = 0xFF0000;
    constexpr COLORREF kRed = 0x0000FF;
    EXPECT_EQ(kBlue, PixelOf(LoadImage(5005).Get(), 0)) << "the bitmap comes first";
    EXPECT_EQ(kRed, PixelOf(LoadImage(5002).Get(), 0));
    EXPECT_EQ(0u, PixelOf(LoadImage(5002).Get(), 1)) << "transparent over black";
}

TEST_F(Images, AreLookedForInTheOrderOfTheirTypes) {
    constexpr COLORREF kRed = 0x0000FF;
    EXPECT_EQ(kRed, PixelOf(LoadImage(5008).Get(), 0)) << "RCDATA before IMAGE";
    EXPECT_EQ(kRed, PixelOf(LoadImage(5009).Get(), 0)) << "IMAGE before PNG";
    EXPECT_EQ(0x00FF00u, PixelOf(LoadImage(5010).Get(), 0));
}

TEST_F(Images, ComeFromTheGivenModuleOrTheProgram) {
    EXPECT_TRUE(LoadImage(5001, GetModuleHandleW(nullptr)));
    EXPECT_FALSE(LoadImage(5001, GetModuleHandleW(L"kernel32.dll")));
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    EXPECT_FALSE(LoadImage(5001));
}

TEST_F(Images, AreEmptyWhereThereIsNone) {
    EXPECT_FALSE(LoadImage(4242));
    EXPECT_FALSE(LoadImage(5007)) << "no picture under that id";
    EXPECT_EQ(0, ImageSize(nullptr).cx);
}

TEST_F(Images, AreObjectsThatKeepTheirTransparency) {
    for (const int id : {5002, 5003, 5004, 5006}) {
        const auto image = LoadGraphicsImage(id);
        ASSERT_NE(nullptr, image) << id;
        EXPECT_EQ(2u, image->Object()->GetWidth()) << id;
        EXPECT_EQ(1u, image->Object()->GetHeight()) << id;
        Gdiplus::Color color;
        ASSERT_EQ(Gdiplus::Ok, image->Object()->GetPixel(1, 0, &color));
        EXPECT_EQ(0, color.GetAlpha()) << id;
    }
    EXPECT_EQ(nullptr, LoadGraphicsImage(5001)) << "a bitmap resource isn't compressed";
    EXPECT_EQ(nullptr, LoadGraphicsImage(5007)) << "no picture under that id";
    EXPECT_EQ(nullptr, LoadGraphicsImage(5002, GetModuleHandleW(L"kernel32.dll")));
}

TEST_F(Images, OfMoreThan32BitsEndTheProcess) {
    struct Wide {
        static int WINAPI Describe(HANDLE, int size, LPVOID into) {
            static_cast<BITMAP*>(into)->bmBitsPixel = 64;
            return size;
        }
    };
    const obtest::ImportPatch<decltype(&GetObjectW)> patch("gdi32.dll", "GetObjectW",
                                                           &Wide::Describe);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FATAL(DrawImageAt(nullptr, nullptr, 0, 0), "ObLibX\\src\\Images.cpp");
}

TEST_F(Images, AreBlendedByTheirAlphaAndStayAsTheyAre) {
    const UniqueBitmap bitmap = LoadImage(5001);
    for (int turn = 0; turn < 2; ++turn) {
        const Canvas canvas(RGB(0, 0, 0));
        DrawImageAt(canvas.Dc(), bitmap.Get(), 1, 2);
        EXPECT_EQ(RGB(0, 0, 255), canvas.At(1, 2)) << turn;
        EXPECT_EQ(RGB(128, 128, 128), canvas.At(2, 2)) << turn;
        EXPECT_EQ(RGB(0, 0, 0), canvas.At(0, 2)) << turn;
        EXPECT_EQ(RGB(0, 0, 0), canvas.At(3, 2)) << turn;
    }
}

TEST_F(Images, OfFewerBitsAreCopied) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 2, -1, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const UniqueBitmap bitmap(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    ASSERT_TRUE(bitmap);
    const unsigned char pixels[] = {3, 2, 1, 6, 5, 4, 0, 0};
    memcpy(bits, pixels, sizeof pixels);
    const Canvas canvas(RGB(255, 255, 255));
    DrawImageAt(canvas.Dc(), bitmap.Get(), 0, 0);
    EXPECT_EQ(RGB(1, 2, 3), canvas.At(0, 0));
    EXPECT_EQ(RGB(4, 5, 6), canvas.At(1, 0));
}

TEST_F(Images, TakeOneColourInHighContrast) {
    const UniqueBitmap bitmap = LoadImage(5001);
    EXPECT_FALSE(RecolorForHighContrast(bitmap.Get(), true)) << "not in high contrast";
    isContrastOn = true;
    const COLORREF inverse = ~GetSysColor(COLOR_WINDOW) & 0xFFFFFF;
    EXPECT_EQ(inverse, PixelOf(RecolorForHighContrast(bitmap.Get(), true).Get(), 0));
    EXPECT_EQ(0x808080u, PixelOf(RecolorForHighContrast(bitmap.Get(), false).Get(), 0));
}

class ImageControl : public ObCustomControl {
public:
    ImageControl() : ObCustomControl(1003, nullptr, L"", 0) {}
};

TEST_F(Images, OfControlsAreRecoloredUnlessTheControlForbidsIt) {
    isContrastOn = true;
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    ImageControl control;
    control.Attach(dialog.GetItem(1003, true));
    const UniqueBitmap bitmap = LoadImage(5001);
    const COLORREF inverse = ~GetSysColor(COLOR_WINDOW) & 0xFFFFFF;
    Canvas canvas(RGB(0, 255, 0));
    control.DrawImage(canvas.Dc(), bitmap.Get(), 0, 0);
    EXPECT_EQ(inverse, canvas.At(0, 0));
    control.noHighContrastRecolor = true;
    control.DrawImage(canvas.Dc(), bitmap.Get(), 0, 1);
    EXPECT_EQ(RGB(0, 0, 255), canvas.At(0, 1));
}

TEST_F(Images, HaveAFocusBoxOnlyWithTheFocusAndARectangle) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    ShowWindow(dialog.window, SW_SHOW);
    ImageControl control;
    control.Attach(dialog.GetItem(1003, true));
    Canvas canvas(RGB(255, 255, 255));
    const auto isUntouched = [&] {
        for (int at = 0; at < 4; ++at) {
            if (canvas.At(at, 0) != RGB(255, 255, 255)) return false;
        }
        return true;
    };
    SetFocus(control.window);
    control.DrawFocus(canvas.Dc());
    EXPECT_TRUE(isUntouched()) << "no rectangle";
    control.focusRectangle = {0, 0, 4, 4};
    SetFocus(dialog.GetItem(1002, true));
    control.DrawFocus(canvas.Dc());
    EXPECT_TRUE(isUntouched()) << "no focus";
    SetFocus(control.window);
    control.DrawFocus(canvas.Dc());
    EXPECT_FALSE(isUntouched());
}

} // namespace
