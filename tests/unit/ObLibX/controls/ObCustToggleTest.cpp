// Flat check boxes and radio buttons: images by state, focus box, and high contrast.
#include "ObLibX/src/controls/ObCustToggle.h"

#include <algorithm>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/ControlFixture.h"
#include "tests/unit/ObLibX/controls/ControlTestIds.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;

constexpr int kCheck = 1101;
constexpr int kThird = 1102;
constexpr int kOne = 1103;
constexpr int kTwo = 1104;
constexpr int kCheckAlone = 1105;
constexpr int kRadioAlone = 1106;
constexpr int kStock = 1199;

constexpr COLORREF kAccent = 0xC0761B;
constexpr COLORREF kWhite = 0xFFFFFF;

class FlatToggle : public ControlsTest {
protected:
    void SetUp() override {
        ControlsTest::SetUp();
        Dress({{kCheck, &Make<ObFlatCheckbox>},
               {kThird, &Make<ObFlatCheckbox>},
               {kOne, &Make<ObFlatRadio>},
               {kTwo, &Make<ObFlatRadio>},
               {kCheckAlone, &Make<ObFlatCheckbox>},
               {kRadioAlone, &Make<ObFlatRadio>}});
        Open(OB_TEST_TOGGLES);
        SetFocus(Item(kStock));
        box_ = ScaleBox();
    }
    // The first image of the set that is shown, after painting.
    std::int32_t ImageOf(int id) {
        PixelsOf(id);
        return Object<ObFlatBtn>(id).images.ids[0];
    }
    void Check(int id, UINT state) { CheckDlgButton(dialog_->window, id, state); }
    // The box or circle of a toggle, in its window.
    PixelRect Box(int id) {
        PixelsOf(id);
        const PixelRect area = Object<ObFlatBtn>(id).imageRectangle;
        const int top = area.top + (area.Height() - box_) / 2;
        return {0, top, box_, top + box_};
    }
    static int ScaleBox() {
        const ObFlatCheckbox box(1);
        return box.images.rows == 1 ? Scale(13) : 0;
    }
    int box_ = 0;
};

TEST_F(FlatToggle, DiffersFromAPushButton) {
    for (const int id : {kCheck, kOne}) {
        const auto& toggle = Object<ObFlatBmpToggleBase>(id);
        EXPECT_EQ(2, toggle.padding);
        EXPECT_EQ(0, toggle.hasFrame);
        EXPECT_FALSE(toggle.imageGap);
        EXPECT_TRUE(toggle.clipFocusToText);
        EXPECT_EQ(0, toggle.imageBesideText);
        EXPECT_EQ(0, toggle.imageSide);
        EXPECT_EQ(kNoColor, toggle.fillColor);
        EXPECT_EQ(kNoColor, toggle.pressedColor);
        EXPECT_EQ(0, static_cast<int>(toggle.defaultHorizontal));
    }
}

struct ImageRow {
    int id;
    UINT state;
    bool isEnabled;
    std::int32_t image;
};

TEST_F(FlatToggle, ShowsTheImageOfItsState) {
    constexpr ImageRow kRows[] = {
        {kCheck, BST_CHECKED, true, 62024},       {kCheck, BST_CHECKED, false, 62032},
        {kCheck, BST_UNCHECKED, false, 62040},    {kCheck, BST_UNCHECKED, true, 62048},
        {kThird, BST_INDETERMINATE, true, 62232}, {kThird, BST_INDETERMINATE, false, 62240},
        {kOne, BST_CHECKED, true, 62056},         {kOne, BST_CHECKED, false, 62064},
        {kOne, BST_UNCHECKED, false, 62072},      {kOne, BST_UNCHECKED, true, 62080}};
    for (const ImageRow& row : kRows) {
        Check(row.id, row.state);
        EnableWindow(Item(row.id), row.isEnabled);
        EXPECT_EQ(row.image, ImageOf(row.id));
    }
}

TEST_F(FlatToggle, PaintsAtOnceWhenItIsChecked) {
    EXPECT_EQ(0, CountOf(kCheck, kAccent));
    Check(kCheck, BST_CHECKED);
    const auto shown = ShownPixels(kCheck);
    EXPECT_LT(20, std::ranges::count(shown, kAccent));
    EXPECT_EQ(shown, PixelsOf(kCheck));
    Check(kCheck, BST_UNCHECKED);
    EXPECT_EQ(0, std::ranges::count(ShownPixels(kCheck), kAccent));
}

TEST_F(FlatToggle, InvalidatesItselfWhenItIsChecked) {
    PixelsOf(kCheck);
    Object<ObFlatCheckbox>(kCheck).OnSetCheck(true);
    EXPECT_TRUE(GetUpdateRect(Item(kCheck), nullptr, FALSE));
}

TEST_F(FlatToggle, IsClickedLikeAStockOne) {
    Send(kOne, BM_CLICK);
    EXPECT_EQ(62056, ImageOf(kOne));
    Send(kTwo, BM_CLICK);
    EXPECT_EQ(62080, ImageOf(kOne)) << "the group has one";
    EXPECT_EQ(62056, ImageOf(kTwo));
    Send(kThird, BM_CLICK);
    Send(kThird, BM_CLICK);
    EXPECT_EQ(62232, ImageOf(kThird));
}

TEST_F(FlatToggle, HasItsBoxAtTheLeftAndItsTextAfterIt) {
    const PixelRect box = Box(kCheck);
    EXPECT_EQ(kWhite, PixelOf(kCheck, box.right, box.top));
    EXPECT_NE(kWhite, PixelOf(kCheck, box.left, box.top + box_ / 2)) << "its line";
    const DrawnText text = TextOf(kCheck);
    EXPECT_EQ(L"&Check", text.text);
    EXPECT_EQ(box_ + 2 * Scale(2), text.rect.left);
    EXPECT_EQ(box_ + Scale(2), Object<ObFlatCheckbox>(kCheck).GetImageWidth());
}

TEST_F(FlatToggle, HasItsFocusBoxAroundItsText) {
    HideCues(kCheck, 0);
    SetFocus(Item(kCheck));
    const auto focused = PixelsOf(kCheck);
    const auto& check = Object<ObFlatCheckbox>(kCheck);
    const int grown = Scale(2);
    EXPECT_EQ(check.textRectangle.left - grown, check.focusRectangle.left);
    EXPECT_EQ(check.textRectangle.right + grown, check.focusRectangle.right);
    EXPECT_EQ(box_ + Scale(2), check.focusRectangle.left) << "a gap to the box";
    EXPECT_LE(0, check.focusRectangle.top);
    SetFocus(Item(kStock));
    EXPECT_NE(focused, PixelsOf(kCheck));
}

TEST_F(FlatToggle, WithoutATextHasItsFocusBoxAtItsEdges) {
    PixelsOf(kCheckAlone);
    PixelsOf(kRadioAlone);
    const SIZE size = SizeOf(kCheckAlone);
    EXPECT_EQ((PixelRect{0, 0, size.cx, size.cy}),
              Object<ObFlatCheckbox>(kCheckAlone).focusRectangle);
    const int inset = Scale(2);
    EXPECT_EQ((PixelRect{inset, inset, size.cx - inset, size.cy - inset}),
              Object<ObFlatRadio>(kRadioAlone).focusRectangle);
}

TEST_F(FlatToggle, KeepsItsFillWhileItIsPressed) {
    const auto before = PixelOf(kCheck, SizeOf(kCheck).cx - 1, 0);
    Send(kCheck, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    EXPECT_EQ(before, PixelOf(kCheck, SizeOf(kCheck).cx - 1, 0));
    Send(kCheck, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
    EXPECT_EQ(before, PixelOf(kCheck, SizeOf(kCheck).cx - 1, 0));
}

TEST_F(FlatToggle, HasTheParentsBackground) {
    EXPECT_EQ(kWhite, PixelOf(kCheck, SizeOf(kCheck).cx - 1, 0));
    const ClientDc dc(Item(kCheck));
    LOGBRUSH brush{};
    const HBRUSH given = Object<ObFlatCheckbox>(kCheck).OnCtlColor(dc.Get(), Item(kCheck));
    ASSERT_NE(0, GetObjectW(given, sizeof brush, &brush));
    EXPECT_EQ(kWhite, brush.lbColor);
    EXPECT_EQ(TRANSPARENT, GetBkMode(dc.Get()));
    EXPECT_EQ(given, Object<ObFlatCheckbox>(kThird).OnCtlColor(dc.Get(), Item(kThird)));
    Fakes().isContrast = true;
    EXPECT_EQ(nullptr, Object<ObFlatCheckbox>(kCheck).OnCtlColor(dc.Get(), Item(kCheck)));
    Fakes().isContrast = false;
    EXPECT_EQ(nullptr, Object<ObFlatRadio>(kOne).OnCtlColor(dc.Get(), Item(kOne)));
}

TEST_F(FlatToggle, EndsTheProcessWithoutItsImages) {
    ObLib::AppGlobals().SetModule(GetModuleHandleW(L"kernel32.dll"), L"", L"");
    EXPECT_FATAL(ObFlatCheckbox(1), "ObLibX\\src\\ObCustToggle.cpp");
    EXPECT_FATAL(ObFlatRadio(1), "ObLibX\\src\\ObCustToggle.cpp");
}

// The first id of eight pictures that the program doesn't have.
std::int32_t missingSet = 0;
HRSRC WINAPI FindAllButOneSet(HMODULE module, LPCWSTR name, LPCWSTR type) {
    static const auto real = reinterpret_cast<decltype(&FindResourceW)>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "FindResourceW")));
    const auto id = static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(name));
    return id >= missingSet && id < missingSet + 8 ? nullptr : real(module, name, type);
}

TEST_F(FlatToggle, EndsTheProcessWithoutAnyOfItsSets) {
    const obtest::ImportPatch<decltype(FindResourceW)> patch("kernel32.dll", "FindResourceW",
                                                             &FindAllButOneSet);
    ASSERT_TRUE(patch.Ok());
    for (const std::int32_t first : {62024, 62032, 62040, 62048, 62232, 62240}) {
        EXPECT_FATAL(missingSet = first; ObFlatCheckbox(1), "ObLibX\\src\\ObCustToggle.cpp");
    }
    for (const std::int32_t first : {62056, 62064, 62072, 62080}) {
        EXPECT_FATAL(missingSet = first; ObFlatRadio(1), "ObLibX\\src\\ObCustToggle.cpp");
    }
    missingSet = 62056;
    EXPECT_EQ(1u, ObFlatCheckbox(1).images.rows) << "those of the other class don't count";
}

class FlatToggleInContrast : public FlatToggle {
protected:
    void SetUp() override {
        FlatToggle::SetUp();
        Fakes().isContrast = true;
        for (const int id : {kCheck, kThird, kOne, kTwo}) {
            SetWindowTextW(Item(id), L"");
            Object<ObFlatBtn>(id).Refresh();
        }
        // Without a text the image is in the middle of its window.
        const SIZE size = SizeOf(kCheck);
        left_ = (size.cx - box_) / 2;
        top_ = (size.cy - box_) / 2;
    }
    COLORREF At(int id, int x, int y) {
        PixelsOf(id);
        return PixelOf(id, left_ + x, top_ + y);
    }
    static COLORREF Inverse() { return ~GetSysColor(COLOR_WINDOW) & 0xFFFFFF; }
    static COLORREF Face() { return GetSysColor(COLOR_BTNFACE); }
    int left_ = 0;
    int top_ = 0;
};

TEST_F(FlatToggleInContrast, ACheckBoxIsAFrameWithASquare) {
    const int line = std::max(2, box_ >= 32 ? box_ / 16 : 2);
    EXPECT_EQ(Inverse(), At(kCheck, 0, 0));
    EXPECT_EQ(Inverse(), At(kCheck, line - 1, box_ / 2));
    EXPECT_EQ(Face(), At(kCheck, line, box_ / 2));
    EXPECT_EQ(Face(), At(kCheck, box_ / 2, box_ / 2));
    EXPECT_EQ(Inverse(), At(kCheck, box_ - 1, box_ - 1));
    EXPECT_EQ(Face(), At(kCheck, box_, box_ / 2));
    Check(kCheck, BST_CHECKED);
    EXPECT_EQ(Inverse(), At(kCheck, box_ / 2, box_ / 2));
    EXPECT_EQ(Inverse(), At(kCheck, box_ / 4 + 1, box_ / 4 + 1)) << "the corner of the square";
    EXPECT_EQ(Face(), At(kCheck, box_ / 4 - 1, box_ / 4 - 1));
}

TEST_F(FlatToggleInContrast, AThirdStateIsATriangle) {
    Check(kThird, BST_INDETERMINATE);
    EXPECT_EQ(Inverse(), At(kThird, box_ / 2, box_ / 2 + 1));
    EXPECT_EQ(Face(), At(kThird, box_ / 4 + 1, box_ / 4 + 1)) << "no square";
    EXPECT_EQ(Inverse(), At(kThird, box_ / 2, box_ - box_ / 4 - 2)) << "its lower edge";
}

TEST_F(FlatToggleInContrast, ADisabledBoxIsPaler) {
    EnableWindow(Item(kCheck), FALSE);
    EXPECT_EQ(0xA8A8A8u, At(kCheck, 0, 0));
    EXPECT_EQ(0xA8A8A8u, At(kCheck, box_ - 1, box_ - 1));
    EXPECT_EQ(Face(), At(kCheck, box_ / 2, box_ / 2));
    Check(kCheck, BST_CHECKED);
    EXPECT_EQ(0xA8A8A8u, At(kCheck, box_ / 2, box_ / 2));
    for (const COLORREF color : PixelsOf(kCheck)) EXPECT_NE(Inverse(), color);
}

TEST_F(FlatToggleInContrast, ADisabledThirdStateIsAPalerTriangle) {
    Check(kThird, BST_INDETERMINATE);
    EnableWindow(Item(kThird), FALSE);
    EXPECT_EQ(0xA8A8A8u, At(kThird, 0, 0));
    EXPECT_EQ(0xA8A8A8u, At(kThird, box_ / 2, box_ / 2 + 1));
    EXPECT_EQ(Face(), At(kThird, box_ / 4 + 1, box_ / 4 + 1)) << "no square";
}

TEST_F(FlatToggleInContrast, IsAtTheLeftOfItsText) {
    const SystemColor text(COLOR_BTNTEXT, 0x00FFFF);
    SetWindowTextW(Item(kCheck), L"Check");
    SetWindowTextW(Item(kOne), L"One");
    Check(kOne, BST_CHECKED);
    for (const int id : {kCheck, kOne}) {
        const PixelRect box = Box(id);
        const int line = std::max(1, box_ / 16);
        EXPECT_EQ(Inverse(), PixelOf(id, box.left + line, box.top + box_ / 2)) << id;
        EXPECT_EQ(Face(), PixelOf(id, box.right, box.top + box_ / 2)) << id;
        const DrawnText drawn = TextOf(id);
        EXPECT_EQ(0x00FFFFu, drawn.color) << id;
        EXPECT_EQ(box_ + 2 * Scale(2), drawn.rect.left) << id;
        EXPECT_LT(0, CountOf(id, 0x00FFFF)) << id;
    }
    EnableWindow(Item(kCheck), FALSE);
    EXPECT_EQ(0x808080u, TextOf(kCheck).color);
}

// Frames of boxes that are larger than those of the screen that the test runs on.
TEST_F(FlatToggleInContrast, HasThickerLinesFrom32PixelsOn) {
    constexpr std::pair<int, int> kLines[] = {{31, 2}, {32, 2}, {47, 2}, {48, 3}, {65, 4}};
    for (const auto& [side, line] : kLines) {
        const ObLib::UniqueBitmap image(CreateBitmap(side, side, 1, 32, nullptr));
        const ClientDc screen(Item(kCheck));
        const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(screen.Get()));
        const ObLib::UniqueBitmap target(CreateCompatibleBitmap(screen.Get(), side, side));
        const HGDIOBJ old = SelectObject(dc.Get(), target.Get());
        FillArea(dc.Get(), {0, 0, side, side}, Face());
        Object<ObFlatCheckbox>(kCheck).DrawImage(dc.Get(), image.Get(), 0, 0);
        EXPECT_EQ(Inverse(), GetPixel(dc.Get(), line - 1, side / 2)) << side;
        EXPECT_EQ(Face(), GetPixel(dc.Get(), line, side / 2)) << side;
        EXPECT_EQ(Inverse(), GetPixel(dc.Get(), side / 2, side - line)) << side;
        EXPECT_EQ(Face(), GetPixel(dc.Get(), side / 2, side - line - 1)) << side;
        SelectObject(dc.Get(), old);
    }
}

TEST_F(FlatToggleInContrast, ARadioIsTwoCirclesAndAFilledOne) {
    const int line = std::max(1, box_ / 16);
    const int middle = box_ / 2;
    EXPECT_EQ(Face(), At(kOne, 0, 0));
    EXPECT_EQ(0xC0C0C0u, At(kOne, 0, middle));
    EXPECT_EQ(0xC0C0C0u, At(kOne, middle, box_ - 1));
    EXPECT_EQ(Inverse(), At(kOne, line, middle)) << "the inner circle";
    EXPECT_EQ(Inverse(), At(kOne, middle, box_ - 1 - line));
    EXPECT_EQ(Face(), At(kOne, middle, middle));
    Check(kOne, BST_CHECKED);
    EXPECT_EQ(Inverse(), At(kOne, middle, middle));
    EXPECT_EQ(Inverse(), At(kOne, 2 * line, middle));
    EnableWindow(Item(kOne), FALSE);
    EXPECT_EQ(0xA8A8A8u, At(kOne, middle, middle));
}

} // namespace
