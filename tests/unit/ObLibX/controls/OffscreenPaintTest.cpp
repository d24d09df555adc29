// Painting into a bitmap that is then shown at once.
#include "ObLibX/src/controls/OffscreenPaint.h"

#include <gtest/gtest.h>

#include "tests/support/ImportPatch.h"

namespace {

using namespace ObLibX;

class OffscreenPaintTest : public testing::Test {
protected:
    static ObLib::UniqueWindow WindowOf(int width, int height) {
        return ObLib::UniqueWindow(CreateWindowExW(0, L"Static", L"", WS_POPUP | WS_VISIBLE, 0, 0,
                                                   width, height, nullptr, nullptr, nullptr,
                                                   nullptr));
    }
};

TEST_F(OffscreenPaintTest, ShowsNothingBeforeShowIsCalled) {
    const auto window = WindowOf(20, 10);
    const ClientDc dc(window.Get());
    FillArea(dc.Get(), {0, 0, 20, 10}, 0x010203);
    const OffscreenPaint paint(window.Get(), dc.Get());
    ASSERT_TRUE(paint);
    EXPECT_EQ((PixelRect{0, 0, 20, 10}), paint.Area());
    FillArea(paint.Dc(), paint.Area(), 0x00AA00);
    EXPECT_EQ(0x010203u, GetPixel(dc.Get(), 5, 5));
    paint.Show();
    EXPECT_EQ(0x00AA00u, GetPixel(dc.Get(), 0, 0));
    EXPECT_EQ(0x00AA00u, GetPixel(dc.Get(), 19, 9));
}

int bitsGiven = 0;
HBITMAP WINAPI GiveAnother(int width, int height, UINT planes, UINT, const void*) {
    static const auto real = reinterpret_cast<decltype(&CreateBitmap)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"gdi32.dll"), "CreateBitmap")));
    return bitsGiven != 0 ? real(width, height, planes, static_cast<UINT>(bitsGiven), nullptr)
                          : nullptr;
}

// As on a screen that hasn't 32 bits.
TEST_F(OffscreenPaintTest, TakesTheScreensKindOfBitmapWhereItsOwnIsRefused) {
    const auto window = WindowOf(20, 10);
    const ClientDc dc(window.Get());
    for (const int bits : {0, 16}) {
        bitsGiven = bits;
        const obtest::ImportPatch<decltype(&CreateBitmap)> patch("gdi32.dll", "CreateBitmap",
                                                                 &GiveAnother);
        ASSERT_TRUE(patch.Ok());
        const OffscreenPaint paint(window.Get(), dc.Get());
        ASSERT_TRUE(paint) << bits;
        FillArea(paint.Dc(), paint.Area(), 0x0102A0);
        paint.Show();
        EXPECT_EQ(0x0102A0u, GetPixel(dc.Get(), 5, 5)) << bits;
        FillArea(dc.Get(), {0, 0, 20, 10}, 0);
    }
}

TEST_F(OffscreenPaintTest, IsEmptyWithoutAnArea) {
    const auto window = WindowOf(0, 0);
    const ClientDc dc(window.Get());
    const OffscreenPaint paint(window.Get(), dc.Get());
    EXPECT_FALSE(paint);
    paint.Show();
    EXPECT_FALSE(OffscreenPaint(window.Get(), nullptr));
    EXPECT_TRUE(ClientArea(nullptr).IsEmpty());
}

TEST_F(OffscreenPaintTest, DrawsFramesInsideTheirRectangle) {
    const auto window = WindowOf(20, 10);
    const ClientDc dc(window.Get());
    const OffscreenPaint paint(window.Get(), dc.Get());
    FillArea(paint.Dc(), paint.Area(), 0xFFFFFF);
    FrameArea(paint.Dc(), {1, 1, 19, 9}, 0x0000FF, 2);
    const auto at = [&](int x, int y) { return GetPixel(paint.Dc(), x, y); };
    EXPECT_EQ(0xFFFFFFu, at(0, 5));
    EXPECT_EQ(0x0000FFu, at(1, 5));
    EXPECT_EQ(0x0000FFu, at(2, 5));
    EXPECT_EQ(0xFFFFFFu, at(3, 5));
    EXPECT_EQ(0x0000FFu, at(18, 8));
    EXPECT_EQ(0x0000FFu, at(17, 7));
    EXPECT_EQ(0xFFFFFFu, at(16, 6));
    EXPECT_EQ(0xFFFFFFu, at(19, 9));
    FrameArea(paint.Dc(), {5, 4, 8, 6}, 0x00FF00, 2);
    EXPECT_EQ(0x00FF00u, at(6, 5)) << "a rectangle that is all frame";
}

TEST_F(OffscreenPaintTest, ValidatesWhatIsPainted) {
    const auto window = WindowOf(20, 10);
    InvalidateRect(window.Get(), nullptr, FALSE);
    {
        const PaintDc dc(window.Get());
        EXPECT_NE(nullptr, dc.Get());
    }
    EXPECT_FALSE(GetUpdateRect(window.Get(), nullptr, FALSE));
}

} // namespace
