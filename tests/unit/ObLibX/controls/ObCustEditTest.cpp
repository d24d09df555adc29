// Text fields in the flat look: the frame around the edit, and how it follows.
#include "ObLibX/src/controls/ObCustEdit.h"

#include <commctrl.h>

#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/controls/TextMeasure.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

constexpr COLORREF kRing = 0xDFDFDF;
constexpr COLORREF kWhite = 0xFFFFFF;

class RecordingFollower : public EditFollower {
public:
    void FollowEdit(HWND frame, std::int32_t width) override {
        frames.push_back(frame);
        frameWidth = width;
    }
    void OnEditShown(bool isShown) override { shown.push_back(isShown); }
    void OnEditGone() override { isGone = true; }

    std::vector<HWND> frames;
    std::int32_t frameWidth = 0;
    std::vector<bool> shown;
    bool isGone = false;
};

class ObFlatEditTest : public FieldsTest {
protected:
    void SetUp() override {
        FieldsTest::SetUp();
        Open(OB_TEST_FIELDS);
    }
    ObFlatEdit& Edit(std::int32_t id) const { return Object<ObFlatEdit>(id); }
    HWND Frame(std::int32_t id) const { return Edit(id).frameWindow; }
    static std::int32_t LineHeight() {
        return MeasureTextIn(GetFont(0, L"", 400, 0), L"Aq", 0, DT_SINGLELINE).height;
    }
    // What is drawn from the outside of a frame's left edge inwards.
    std::vector<COLORREF> LeftEdge(std::int32_t id) const {
        PaintNow(Frame(id));
        std::vector<COLORREF> colors;
        for (int x = 0; x < 4; ++x) colors.push_back(PixelOf(Frame(id), x, 4));
        return colors;
    }
};

TEST_F(ObFlatEditTest, TakesTheBorderOff) {
    for (const int id : {1001, 1002, 1003}) {
        EXPECT_EQ(0, GetWindowLongPtrW(Item(id), GWL_STYLE) & WS_BORDER) << id;
        EXPECT_EQ(0, GetWindowLongPtrW(Item(id), GWL_EXSTYLE) & WS_EX_CLIENTEDGE) << id;
        RECT client{};
        GetClientRect(Item(id), &client);
        EXPECT_EQ(RectOf(id).Width(), client.right) << id;
    }
}

TEST_F(ObFlatEditTest, IsAsTallAsItsTextInTheMiddleOfAFrame) {
    const PixelRect placed = FromUnits(10, 10, 100, 14);
    const PixelRect frame = RectInParent(Frame(1001));
    EXPECT_EQ((PixelRect{placed.left - 2, placed.top - 2, placed.right + 2, placed.bottom + 2}),
              frame);
    const PixelRect edit = RectOf(1001);
    EXPECT_EQ(LineHeight() + 1, edit.Height());
    EXPECT_EQ(placed.left, edit.left);
    EXPECT_EQ(placed.right, edit.right);
    EXPECT_LE(std::abs((edit.top - frame.top) - (frame.bottom - edit.bottom)), 1);
    EXPECT_EQ(frame.Height() + 1, Edit(1001).minimumHeight);
}

TEST_F(ObFlatEditTest, KeepsItsHeightWithSeveralLines) {
    EXPECT_EQ(FromUnits(10, 40, 100, 40), RectOf(1002));
}

TEST_F(ObFlatEditTest, HasRoomForItsTextInAWindowThatIsTooLow) {
    EXPECT_EQ(LineHeight() + 1, RectOf(1009).Height());
    const PixelRect frame = RectInParent(Frame(1009));
    EXPECT_EQ(LineHeight() + 5, frame.Height());
    EXPECT_EQ(frame.top + 2, RectOf(1009).top);
}

TEST_F(ObFlatEditTest, HasAFrameThatTakesNoPartInTheDialog) {
    const HWND frame = Frame(1001);
    EXPECT_TRUE(IsWindowVisible(frame));
    EXPECT_FALSE(IsWindowEnabled(frame));
    EXPECT_EQ(dialog_->window, GetParent(frame));
    EXPECT_EQ(0, GetDlgCtrlID(frame));
    EXPECT_EQ(reinterpret_cast<HANDLE>(1), GetPropW(frame, L"OB_EDIT_FRAME"));
    EXPECT_EQ(nullptr, dialog_->GetControl(0)) << "and isn't dressed";
}

TEST_F(ObFlatEditTest, HasItsFrameBelowAllWindowsOfTheTemplate) {
    for (HWND above = GetWindow(Frame(1001), GW_HWNDNEXT); above != nullptr;
         above = GetWindow(above, GW_HWNDNEXT)) {
        EXPECT_EQ(0, GetDlgCtrlID(above)) << "only frames and eyes are further down";
    }
}

TEST_F(ObFlatEditTest, IsFoundByItsWindow) {
    EXPECT_EQ(&Edit(1001), GetPropW(Item(1001), L"PROP_EDIT_OBJECT"));
    EXPECT_EQ(nullptr, GetPropW(Item(1001), L"PROP_PASSWORD_OBJECT"));
}

TEST_F(ObFlatEditTest, ShowsACueWhileItIsEmpty) {
    wchar_t cue[40] = {};
    SendMessageW(Item(1001), EM_GETCUEBANNER, reinterpret_cast<WPARAM>(cue), 40);
    EXPECT_STREQ(L"Your name", cue);
}

TEST_F(ObFlatEditTest, HasTheFrameOfAnEdit) {
    EXPECT_EQ((std::vector<COLORREF>{kRing, kRing, kWhite, kWhite}), LeftEdge(1001));
    EXPECT_EQ((std::vector<COLORREF>{kRing, kRing, kWhite, kWhite}), LeftEdge(1006)) << "disabled";
    EXPECT_EQ((std::vector<COLORREF>{kRing, kRing, kWhite, kWhite}), LeftEdge(1003));
    const PixelRect frame = RectInParent(Frame(1001));
    EXPECT_EQ(kRing, PixelOf(Frame(1001), frame.Width() - 2, frame.Height() / 2));
    EXPECT_EQ(kRing, PixelOf(Frame(1001), frame.Width() / 2, 1));
    EXPECT_EQ(kRing, PixelOf(Frame(1001), frame.Width() / 2, frame.Height() - 1));
}

TEST_F(ObFlatEditTest, HasItsFrameInAPictureOfItToo) {
    const ClientDc screen(Frame(1001));
    const OffscreenPaint picture(Frame(1001), screen.Get());
    SendMessageW(Frame(1001), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture.Dc()), PRF_CLIENT);
    EXPECT_EQ(kRing, GetPixel(picture.Dc(), 1, 4));
    EXPECT_EQ(kWhite, GetPixel(picture.Dc(), 3, 4));
}

TEST_F(ObFlatEditTest, LooksLikeALabelWhenItIsReadOnly) {
    EXPECT_EQ((std::vector<COLORREF>(4, GetParentBackground(Item(1004)))), LeftEdge(1004));
    Edit(1004).keepFrameWhenReadOnly = true;
    EXPECT_EQ(kRing, LeftEdge(1004)[1]);
}

TEST_F(ObFlatEditTest, BecomesALabelAndAnEditAgain) {
    UpdateWindow(Frame(1001));
    SendMessageW(Item(1001), EM_SETREADONLY, TRUE, 0);
    EXPECT_TRUE(GetUpdateRect(Frame(1001), nullptr, FALSE));
    UpdateWindow(Frame(1001));
    EXPECT_EQ(kWhite, PixelOf(Frame(1001), 0, 4));
    SendMessageW(Item(1001), EM_SETREADONLY, FALSE, 0);
    UpdateWindow(Frame(1001));
    EXPECT_EQ(kRing, PixelOf(Frame(1001), 0, 4));
}

TEST_F(ObFlatEditTest, IsFilledAsItsFrame) {
    const HDC dc = GetDC(Item(1006));
    const HBRUSH brush = Edit(1006).OnCtlColor(dc, Item(1006));
    EXPECT_EQ(GetParentBackground(Item(1006)), ColorOfBrush(brush));
    EXPECT_EQ(brush, Edit(1004).OnCtlColor(dc, Item(1004))) << "one brush for all edits";
    EXPECT_EQ(brush, dialog_->OnCtlColorStatic(Item(1006), dc)) << "what the system asks for";
    Edit(1006).SetFillColor(0x00FF00);
    EXPECT_EQ(0x00FF00u, ColorOfBrush(Edit(1006).OnCtlColor(dc, Item(1006))));
    EXPECT_EQ(0x00FF00u, GetBkColor(dc));
    EXPECT_EQ(0x808080u, GetTextColor(dc)) << "disabled";
    Edit(1004).SetTextColor(0x123456);
    Edit(1004).OnCtlColor(dc, Item(1004));
    EXPECT_EQ(0x123456u, GetTextColor(dc)) << "read-only";
    isContrast = true;
    EXPECT_EQ(nullptr, Edit(1006).OnCtlColor(dc, Item(1006)));
    ReleaseDC(Item(1006), dc);
}

TEST_F(ObFlatEditTest, HasTheColoursThatItIsGiven) {
    Edit(1001).SetFillColor(0x00FF00);
    Edit(1001).SetTextColor(0x0000FF);
    SetWindowTextW(Item(1001), L"Text");
    PaintNow(Item(1001));
    const PixelRect size = ClientArea(Item(1001));
    long filled = 0, written = 0, white = 0;
    for (int y = 0; y < size.bottom; ++y) {
        for (int x = 0; x < size.right; ++x) {
            const COLORREF color = PixelOf(Item(1001), x, y);
            filled += color == 0x00FF00;
            written += color == 0x0000FF;
            white += color == kWhite;
        }
    }
    EXPECT_LT(size.right * size.bottom / 2, filled);
    EXPECT_LT(0, written);
    EXPECT_EQ(0, white);
    EXPECT_EQ((std::vector<COLORREF>{kRing, kRing, 0x00FF00, 0x00FF00}), LeftEdge(1001));
}

TEST_F(ObFlatEditTest, IsBlackOnWhiteUnlessItIsGivenColours) {
    const HDC dc = GetDC(Item(1001));
    const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(dialog_->window, WM_CTLCOLOREDIT,
                                                             reinterpret_cast<WPARAM>(dc),
                                                             reinterpret_cast<LPARAM>(Item(1001))));
    EXPECT_EQ(Edit(1001).OnCtlColor(dc, Item(1001)), brush) << "the control is asked";
    EXPECT_EQ(kWhite, ColorOfBrush(brush));
    EXPECT_EQ(kWhite, GetBkColor(dc));
    EXPECT_EQ(0u, GetTextColor(dc));
    ReleaseDC(Item(1001), dc);
}

TEST_F(ObFlatEditTest, HasTheColoursOfWindowsInHighContrast) {
    const SystemColor window(COLOR_WINDOW, 0x400000);
    const SystemColor text(COLOR_WINDOWTEXT, 0x00FFFF);
    isContrast = true;
    Edit(1001).SetFillColor(0x00FF00);
    const HDC dc = GetDC(Item(1001));
    const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(dialog_->window, WM_CTLCOLOREDIT,
                                                             reinterpret_cast<WPARAM>(dc),
                                                             reinterpret_cast<LPARAM>(Item(1001))));
    EXPECT_EQ(0x400000u, ColorOfBrush(brush));
    EXPECT_EQ(0x00FFFFu, GetTextColor(dc));
    ReleaseDC(Item(1001), dc);
}

// Its id is that of another control of the dialog, here of an edit with colours of its own.
TEST_F(ObFlatEditTest, GivesItsColoursToNoPartOfAnotherControl) {
    Edit(1001).SetFillColor(0x00FF00);
    Edit(1004).SetFillColor(0x00FF00);
    const HWND combo =
        CreateWindowExW(0, L"combobox", L"", WS_CHILD | CBS_DROPDOWN, 130, 60, 80, 60,
                        dialog_->window, reinterpret_cast<HMENU>(INT_PTR{500}), nullptr, nullptr);
    const HWND part = FindWindowExW(combo, nullptr, L"edit", nullptr);
    ASSERT_EQ(1001, GetDlgCtrlID(part));
    const HDC dc = GetDC(part);
    for (const UINT message : {WM_CTLCOLOREDIT, WM_CTLCOLORSTATIC, WM_CTLCOLORBTN}) {
        const auto brush = reinterpret_cast<HBRUSH>(SendMessageW(dialog_->window, message,
                                                                 reinterpret_cast<WPARAM>(dc),
                                                                 reinterpret_cast<LPARAM>(part)));
        EXPECT_NE(0x00FF00u, ColorOfBrush(brush)) << message;
    }
    ReleaseDC(part, dc);
    DestroyWindow(combo);
}

struct Invalidation {
    HWND window;
    BOOL erase;
};

std::vector<Invalidation> invalidations;

BOOL WINAPI RecordInvalidateRect(HWND window, const RECT* rect, BOOL erase) {
    invalidations.push_back({window, erase});
    return ValidateRect(window, rect);
}

// The edit fills what is beside its text only when it is erased.
TEST_F(ObFlatEditTest, IsErasedForAnotherColour) {
    const obtest::ImportPatch<decltype(&InvalidateRect)> patch("user32.dll", "InvalidateRect",
                                                               &RecordInvalidateRect);
    ASSERT_TRUE(patch.Ok());
    invalidations.clear();
    Edit(1006).SetFillColor(0x00FF00);
    ASSERT_EQ(2u, invalidations.size());
    EXPECT_EQ(Item(1006), invalidations[0].window);
    EXPECT_TRUE(invalidations[0].erase);
    EXPECT_EQ(Frame(1006), invalidations[1].window);
}

TEST_F(ObFlatEditTest, MovesItsFrameAlong) {
    const std::int32_t least = Edit(1001).minimumHeight;
    SetWindowPos(Item(1001), nullptr, 30, 100, 80, 12, SWP_NOZORDER);
    PixelRect frame = RectInParent(Frame(1001));
    EXPECT_EQ(28, frame.left);
    EXPECT_EQ(112, frame.right);
    EXPECT_EQ(least, frame.Height());
    EXPECT_LE(std::abs(OfHeight(frame, 12).top - 100), 1) << "centred on the edit";
    SetWindowPos(Item(1001), nullptr, 30, 100, 80, 90, SWP_NOZORDER);
    frame = RectInParent(Frame(1001));
    EXPECT_EQ((PixelRect{28, 98, 112, 192}), frame);
    EXPECT_EQ(frame, Edit(1001).frameRectangle);
    EXPECT_EQ((PixelRect{30, 100, 110, 190}), Edit(1001).editRectangle);
}

TEST_F(ObFlatEditTest, ShowsAndHidesItsFrame) {
    EXPECT_FALSE(IsWindowVisible(Frame(1005))) << "hidden in the template";
    ShowWindow(Item(1005), SW_SHOW);
    EXPECT_TRUE(IsWindowVisible(Frame(1005)));
    ShowWindow(Item(1001), SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(Frame(1001)));
}

TEST_F(ObFlatEditTest, ShowsAndHidesItsFrameByPosition) {
    constexpr UINT kInPlace = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;
    RecordingFollower spin;
    Edit(1001).spinControl = &spin;
    SetWindowPos(Item(1001), nullptr, 0, 0, 0, 0, kInPlace | SWP_HIDEWINDOW);
    EXPECT_FALSE(IsWindowVisible(Frame(1001)));
    SetWindowPos(Item(1001), nullptr, 0, 0, 0, 0, kInPlace | SWP_SHOWWINDOW);
    EXPECT_TRUE(IsWindowVisible(Frame(1001)));
    EXPECT_EQ((std::vector<bool>{false, true}), spin.shown);
    Edit(1001).spinControl = nullptr;
}

// An edit of the test's own, with a frame as it wants it.
TEST_F(ObFlatEditTest, CanBeWithoutAFrameToBeSeen) {
    const HWND window = CreateWindowExW(WS_EX_CLIENTEDGE, L"edit", L"", WS_CHILD | WS_VISIBLE, 10,
                                        10, 80, 60, dialog_->window, nullptr, nullptr, nullptr);
    ObFlatEdit edit(78);
    edit.hideFrame = true;
    edit.frameWidth = 1;
    edit.Attach(window);
    EXPECT_EQ((PixelRect{9, 9, 91, 71}), RectInParent(edit.frameWindow));
    EXPECT_FALSE(IsWindowVisible(edit.frameWindow));
    ShowWindow(window, SW_HIDE);
    ShowWindow(window, SW_SHOW);
    EXPECT_FALSE(IsWindowVisible(edit.frameWindow));
    DestroyWindow(window);
    EXPECT_EQ(nullptr, edit.window);
    const obtest::ImportPatch<decltype(&InvalidateRect)> patch("user32.dll", "InvalidateRect",
                                                               &RecordInvalidateRect);
    ASSERT_TRUE(patch.Ok());
    invalidations.clear();
    edit.Refresh();
    edit.OnShow(true);
    EXPECT_EQ(nullptr, edit.frameWindow);
    EXPECT_TRUE(invalidations.empty()) << "without a window the system takes all windows";
}

TEST_F(ObFlatEditTest, ClosesItsFrameOnDemand) {
    const HWND frame = Frame(1001);
    SendMessageW(frame, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(frame));
    EXPECT_EQ(nullptr, Frame(1001));
    SetWindowPos(Item(1001), nullptr, 0, 0, 50, 50, SWP_NOZORDER);
    EXPECT_EQ((PixelRect{0, 0, 50, 50}), RectOf(1001)) << "still an edit";
    EXPECT_EQ(-2, Edit(1001).frameRectangle.left);
    EXPECT_EQ(52, Edit(1001).frameRectangle.right);
    ShowWindow(Item(1001), SW_HIDE);
    EXPECT_FALSE(IsWindowVisible(Item(1001)));
    EXPECT_EQ(nullptr, Frame(1001)) << "none is made again";
}

TEST_F(ObFlatEditTest, TakesLeaveOfItsSpinControl) {
    RecordingFollower spin;
    Edit(1001).spinControl = &spin;
    DestroyWindow(Item(1001));
    EXPECT_TRUE(spin.isGone);
}

TEST_F(ObFlatEditTest, ReportsMovesToItsSpinControl) {
    RecordingFollower spin;
    Edit(1001).spinControl = &spin;
    SetWindowPos(Item(1001), nullptr, 20, 20, 0, 0, SWP_NOZORDER | SWP_NOSIZE);
    EXPECT_EQ(std::vector<HWND>{Frame(1001)}, spin.frames);
    EXPECT_EQ(2, spin.frameWidth);
    ShowWindow(Item(1001), SW_HIDE);
    ShowWindow(Item(1001), SW_SHOW);
    EXPECT_EQ((std::vector<bool>{false, true}), spin.shown);
    Edit(1001).spinControl = nullptr;
}

TEST_F(ObFlatEditTest, IsAsTallAsAFontThatItIsGivenLater) {
    const PixelRect before = RectOf(1001);
    Edit(1001).SetControlFont(L"Arial", 30, 400, 0);
    const PixelRect now = RectOf(1001);
    EXPECT_GT(now.Height(), before.Height());
    EXPECT_LE(std::abs(before.Centre().y - now.Centre().y), 1);
    EXPECT_LE(now.Height() + 4, RectInParent(Frame(1001)).Height());
    const PixelRect lines = RectOf(1002);
    Edit(1002).SetControlFont(L"Arial", 30, 400, 0);
    EXPECT_EQ(lines, RectOf(1002)) << "of several lines";
}

TEST_F(ObFlatEditTest, KeepsTheFrameOfAnEditInHighContrast) {
    const SystemColor window(COLOR_WINDOW, 0x400000);
    isContrast = true;
    EXPECT_EQ((std::vector<COLORREF>{kRing, kRing, 0x400000, 0x400000}), LeftEdge(1001));
    EXPECT_EQ(0x400000u, LeftEdge(1004)[1]) << "read-only";
}

} // namespace
