// Which drawing of a picture fits a length, and the arrows of bars that are chosen by it.
#include "ObLibX/src/controls/FittingImage.h"

#include "ObLibX/src/controls/ObCustScroll.h"
#include "ObLibX/src/dialog/Images.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

constexpr int kScales = 8;

SIZE SizeOf(ControlImage image, int scale) { return ImageSize(ImageOfScale(image, scale).Get()); }

class FittingImage : public BarTest {};

TEST_F(FittingImage, IsTheLargestThatIsNeitherWiderNorHigher) {
    for (const ControlImage image : {ControlImage::UpArrow, ControlImage::LeftArrow}) {
        for (int most = 0; most < 80; ++most) {
            int expected = 0;
            for (int scale = 1; scale < kScales; ++scale) {
                const SIZE size = SizeOf(image, scale);
                if (size.cx <= most && size.cy <= most) expected = scale;
            }
            EXPECT_EQ(expected, LargestFittingScale(image, most)) << most;
        }
        EXPECT_EQ(kScales - 1, LargestFittingScale(image, 10000));
    }
}

TEST_F(FittingImage, IsTheSmallestWithoutPictures) {
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    EXPECT_EQ(0, LargestFittingScale(ControlImage::UpArrow, 10000));
    EXPECT_EQ(0, SizeOf(ControlImage::UpArrow, 3).cx);
}

// By its pixels: as wide as the largest drawing that the thickness of the bar has room for.
TEST_F(FittingImage, IsTheArrowOfABar) {
    const HWND window = Child(L"Static", 0, {100, 50, 160, 300});
    ObFlatScrollbar bar(1001, ScrollOrientation::Vertical);
    bar.Attach(window);
    const int thickness = GetSystemMetrics(SM_CXVSCROLL);
    const int scale = LargestFittingScale(ControlImage::UpArrow, thickness);
    const SIZE size = SizeOf(ControlImage::UpArrow, scale);
    ASSERT_LT(0, size.cx);
    const PixelRect& area = bar.Layout().upArrow;
    const PaintedPixels pixels(window);
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ObLib::UniqueBitmap bitmap(CreateBitmap(area.Width(), area.Height(), 1, 32, nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    FillArea(dc.Get(), {0, 0, area.Width(), area.Height()}, 0xF0F0F0);
    DrawImageAt(dc.Get(), ImageOfScale(ControlImage::UpArrow, scale).Get(),
                (area.Width() - size.cx) / 2, (area.Height() - size.cy) / 2);
    for (int y = 0; y < area.Height(); ++y) {
        for (int x = 0; x < area.Width(); ++x) {
            ASSERT_EQ(GetPixel(dc.Get(), x, y), pixels.At(area.left + x, area.top + y));
        }
    }
    SelectObject(dc.Get(), old);
    DestroyWindow(window);
}

} // namespace
