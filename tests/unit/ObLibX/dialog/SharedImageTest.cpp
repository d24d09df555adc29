// Pictures that are loaded once for all who show them.
#include "ObLibX/src/dialog/SharedImage.h"

#include <functional>
#include <vector>

#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/ObCustCtrl.h"
#include "tests/support/ProcessResources.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;

// What a picture of 4 by 1 pixels looks like on grey.
std::vector<COLORREF> Drawn(const std::function<void(HDC dc)>& draw) {
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 4, -1, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const ObLib::UniqueBitmap bitmap(
        CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, nullptr, nullptr, 0));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    for (int x = 0; x < 4; ++x) SetPixel(dc.Get(), x, 0, RGB(64, 64, 64));
    draw(dc.Get());
    std::vector<COLORREF> pixels;
    for (int x = 0; x < 4; ++x) pixels.push_back(GetPixel(dc.Get(), x, 0));
    SelectObject(dc.Get(), old);
    return pixels;
}

class SharedImages : public DialogTest {};

TEST_F(SharedImages, AreOneObjectForAllWhoHaveThem) {
    const SharedImagePtr one = LoadSharedImage(5001);
    ASSERT_NE(nullptr, one);
    EXPECT_EQ(one, LoadSharedImage(5001));
    EXPECT_EQ(one, LoadSharedImage(5001, GetModuleHandleW(nullptr))) << "the program's";
    EXPECT_NE(one, LoadSharedImage(5002));
    EXPECT_EQ(2, one->Size().cx);
    EXPECT_EQ(1, one->Size().cy);
    EXPECT_EQ(nullptr, LoadSharedImage(4242));
    EXPECT_EQ(nullptr, LoadSharedImage(5001, GetModuleHandleW(L"kernel32.dll")));
}

TEST_F(SharedImages, AreKnownByTheirBitmapWhileSomebodyHasThem) {
    const ObLib::UniqueBitmap other = LoadImage(5001);
    EXPECT_EQ(nullptr, FindSharedImage(other.Get()));
    SharedImagePtr image = LoadSharedImage(5001);
    const HBITMAP bitmap = image->Bitmap();
    EXPECT_EQ(image.get(), FindSharedImage(bitmap));
    EXPECT_EQ(nullptr, FindSharedImage(other.Get()));
    EXPECT_EQ(nullptr, FindSharedImage(nullptr));
    image.reset();
    EXPECT_EQ(nullptr, FindSharedImage(bitmap));
}

TEST_F(SharedImages, LeaveNothingWhenNobodyHasThemAnyMore) {
    static_cast<void>(Drawn([](HDC dc) { LoadSharedImage(5001)->Draw(dc, 0, 0); }));
    const DWORD before = obtest::CountGdiObjects();
    std::vector<SharedImagePtr> images;
    for (int at = 0; at < 5; ++at) {
        for (const int id : {5001, 5002}) images.push_back(LoadSharedImage(id));
    }
    EXPECT_LT(before, obtest::CountGdiObjects());
    EXPECT_GE(before + 4, obtest::CountGdiObjects()) << "two bitmaps a picture";
    images.clear();
    EXPECT_EQ(before, obtest::CountGdiObjects());
}

TEST_F(SharedImages, AreDrawnAsAnyPicture) {
    for (const int id : {5001, 5002}) {
        const SharedImagePtr image = LoadSharedImage(id);
        const auto plain = Drawn([&](HDC dc) { DrawImageAt(dc, LoadImage(id).Get(), 1, 0); });
        EXPECT_NE(plain[0], plain[1]) << "something is drawn";
        EXPECT_EQ(plain, Drawn([&](HDC dc) { image->Draw(dc, 1, 0); })) << id;
        EXPECT_EQ(plain, Drawn([&](HDC dc) { image->Draw(dc, 1, 0); })) << id << " again";
        EXPECT_EQ(plain, Drawn([&](HDC dc) { DrawImageAt(dc, image->Bitmap(), 1, 0); })) << id;
    }
}

TEST_F(SharedImages, OfControlsAreDrawnAsAnyPicture) {
    class PlainControl : public ObCustomControl {
    public:
        PlainControl() : ObCustomControl(1003, nullptr, L"", 0) {}
    };
    PlainControl control;
    const SharedImagePtr image = LoadSharedImage(5001);
    EXPECT_EQ(Drawn([&](HDC dc) { control.DrawImage(dc, LoadImage(5001).Get(), 1, 0); }),
              Drawn([&](HDC dc) { control.DrawImage(dc, image->Bitmap(), 1, 0); }));
}

} // namespace
