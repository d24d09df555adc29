// Flat push buttons: their classes, states, colours, texts and pictures.
#include "ObLibX/src/controls/ObCustBtn.h"

#include <algorithm>

#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/ButtonFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace buttontest;

TEST_F(FlatButton, HasItsDefaults) {
    const ObFlatBtn button(7);
    EXPECT_FALSE(button.sizeToImage || button.isDown || button.isHot || button.noMouseStates ||
                 button.accentRing || button.frameFocus || button.imageOnly);
    EXPECT_TRUE(button.imageGap);
    EXPECT_EQ(1, static_cast<int>(button.defaultHorizontal));
    EXPECT_EQ(4, static_cast<int>(button.defaultVertical));
    EXPECT_EQ(kFill, button.fillColor);
    EXPECT_EQ(0u, button.focusFrameColor);
    EXPECT_EQ(1, button.hasFrame);
    EXPECT_EQ(8, button.padding);
    EXPECT_EQ(0u, button.images.rows);
    EXPECT_FALSE(button.fade.IsRunning());
}

TEST_F(FlatButton, DiffersByItsClass) {
    const ObFlatBlueBtn blue(1);
    EXPECT_EQ(kWhite, blue.textColor);
    for (const COLORREF color : {blue.fillColor, blue.hoverColor, blue.pressedColor}) {
        EXPECT_EQ(kAccent, color);
    }
    EXPECT_TRUE(blue.accentRing);
    const ObFlatSettingsBtn settings(2);
    EXPECT_EQ(kNoColor, settings.fillColor);
    EXPECT_TRUE(settings.sizeToImage && settings.imageOnly && !settings.imageGap);
    EXPECT_EQ(2, settings.imageSide);
    EXPECT_EQ(0, settings.hasFrame);
    EXPECT_EQ(62088, settings.images.ids[0]);
    const ObFlatBrowserBtn browser(3);
    EXPECT_TRUE(browser.imageOnly && !browser.imageGap && !browser.sizeToImage);
    EXPECT_EQ(2, browser.imageSide);
    EXPECT_EQ(62224, browser.images.ids[0]);
    EXPECT_EQ(kFill, browser.fillColor);
    for (const ObFlatBtn* const split :
         {static_cast<const ObFlatBtn*>(&Button(kSplit)), &std::as_const(Button(kDrop))}) {
        EXPECT_EQ(2, split->imageSide);
        EXPECT_EQ(62096, split->images.ids[0]);
        EXPECT_EQ(kFill, split->fillColor);
        EXPECT_FALSE(split->imageOnly);
    }
}

TEST_F(FlatButton, PaintsFillAndFrame) {
    const SIZE size = SizeOf(kPlain);
    EXPECT_EQ(kFrame, PixelOf(kPlain, 0, 0));
    EXPECT_EQ(kFrame, PixelOf(kPlain, size.cx - 1, size.cy - 1));
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    EXPECT_EQ(kFill, PixelOf(kPlain, size.cx - 2, size.cy - 2));
    Button(kPlain).hasFrame = 0;
    Button(kPlain).Repaint();
    EXPECT_EQ(kFill, PixelOf(kPlain, 0, 0));
}

TEST_F(FlatButton, FadesToItsHoverColourUnderTheMouse) {
    Hover(kPlain);
    EXPECT_TRUE(Button(kPlain).isHot);
    ASSERT_EQ(1u, Fakes().tracked.size());
    EXPECT_EQ(Item(kPlain), Fakes().tracked[0].hwndTrack);
    EXPECT_EQ(static_cast<DWORD>(TME_LEAVE), Fakes().tracked[0].dwFlags);
    EXPECT_EQ(kHotFrame, PixelOf(kPlain, 0, 0));
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    Hover(kPlain);
    EXPECT_EQ(1u, Fakes().tracked.size()) << "once for each time that the mouse comes";
    for (int step = 0; step < 5; ++step) EXPECT_TRUE(Tick());
    EXPECT_EQ(0xF8F5EEu, PixelOf(kPlain, 1, 1));
    for (int step = 5; step < 10; ++step) EXPECT_TRUE(Tick());
    EXPECT_FALSE(Tick());
    EXPECT_EQ(kHover, PixelOf(kPlain, 1, 1));
    Leave(kPlain);
    EXPECT_EQ(kFrame, PixelOf(kPlain, 0, 0));
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    EXPECT_FALSE(Button(kPlain).isHot);
}

TEST_F(FlatButton, StopsItsFadeWhenTheMouseLeaves) {
    Hover(kPlain);
    Tick();
    Leave(kPlain);
    EXPECT_FALSE(Tick());
    EXPECT_EQ(kNoColor, Button(kPlain).animatedColor);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
}

TEST_F(FlatButton, HasItsPressedColourWhileTheButtonIsDown) {
    Down(kPlain);
    EXPECT_TRUE(Button(kPlain).isDown && Button(kPlain).isPressed);
    EXPECT_EQ(kPressed, PixelOf(kPlain, 1, 1));
    Up(kPlain);
    EXPECT_FALSE(Button(kPlain).isDown || Button(kPlain).isPressed);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    Send(kPlain, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(kPressed, PixelOf(kPlain, 1, 1));
    Up(kPlain);
}

TEST_F(FlatButton, ClicksOnceLikeAStockButton) {
    Down(kPlain);
    Up(kPlain);
    const std::vector<std::pair<int, int>> once{{kPlain, BN_CLICKED}};
    EXPECT_EQ(once, dialog_->commands);
    Send(kPlain, BM_CLICK);
    EXPECT_EQ(2u, dialog_->commands.size());
}

TEST_F(FlatButton, IsHotAgainAfterAClickWhenTheMouseMoves) {
    Hover(kPlain);
    for (int step = 0; step < 3; ++step) Tick();
    Down(kPlain);
    Up(kPlain);
    EXPECT_FALSE(Button(kPlain).isHot);
    Hover(kPlain);
    EXPECT_TRUE(Button(kPlain).isHot);
    while (Tick()) continue;
    EXPECT_EQ(kHover, PixelOf(kPlain, 1, 1));
    Down(kPlain);
    Up(kPlain);
    EXPECT_EQ(kHover, PixelOf(kPlain, 1, 1)) << "no flicker before the next movement";
    Hover(kPlain);
    Tick();
    EXPECT_EQ(kHover, PixelOf(kPlain, 1, 1)) << "a fade begins at the present colour";
    Leave(kPlain);
}

TEST_F(FlatButton, IgnoresTheMouseWithoutMouseStates) {
    Button(kPlain).noMouseStates = true;
    Hover(kPlain);
    EXPECT_FALSE(Button(kPlain).isHot);
    EXPECT_TRUE(Fakes().timers.empty() && Fakes().tracked.empty());
    Down(kPlain);
    EXPECT_FALSE(Button(kPlain).isDown);
    Up(kPlain);
    EXPECT_EQ(1u, dialog_->commands.size());
}

TEST_F(FlatButton, OfTheAccentColourDoesNotFadeButHasARing) {
    EXPECT_EQ(kAccent, PixelOf(kBlue, 1, 1));
    EXPECT_EQ(kWhite, TextOf(kBlue).color);
    EXPECT_EQ(kWhite, BesideOf(kBlue, 2));
    Hover(kBlue);
    EXPECT_TRUE(Fakes().timers.empty());
    EXPECT_EQ(kFrame, PixelOf(kBlue, 0, 0)) << "its frame stays, too";
    EXPECT_EQ(kAccent, BesideOf(kBlue, 2));
    EXPECT_EQ(kWhite, BesideOf(kBlue, 1)) << "the pixel between";
    EXPECT_EQ(kWhite, BesideOf(kBlue, 3));
    Leave(kBlue);
    EXPECT_EQ(kWhite, BesideOf(kBlue, 2));
    Down(kBlue);
    EXPECT_EQ(kAccent, BesideOf(kBlue, 2));
    EXPECT_EQ(kAccent, PixelOf(kBlue, 1, 1));
    Up(kBlue);
    EXPECT_EQ(kWhite, BesideOf(kBlue, 2));
    Hover(kPlain);
    EXPECT_EQ(kWhite, BesideOf(kPlain, 2)) << "no other button has one";
    Leave(kPlain);
}

TEST_F(FlatButton, TakesTheDialogsOwnBackgroundForTheRing) {
    dialog_->backgroundColor = 0x336699;
    Hover(kBlue);
    Leave(kBlue);
    EXPECT_EQ(0x336699u, BesideOf(kBlue, 2));
}

TEST_F(FlatButton, IsDimmedWhileDisabled) {
    EnableWindow(Item(kBlue), FALSE);
    EXPECT_EQ(0xF0F0F0u, PixelOf(kBlue, 1, 1));
    EXPECT_EQ(0xC0C0C0u, TextOf(kBlue).color);
    EnableWindow(Item(kPlain), FALSE);
    EXPECT_EQ(0x808080u, TextOf(kPlain).color);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    EnableWindow(Item(kPlain), TRUE);
    EXPECT_EQ(0u, TextOf(kPlain).color);
}

TEST_F(FlatButton, ForgetsTheMouseWhenItIsDisabled) {
    Hover(kPlain);
    Down(kPlain);
    EnableWindow(Item(kPlain), FALSE);
    EXPECT_FALSE(Button(kPlain).isHot || Button(kPlain).isDown || Button(kPlain).isPressed);
    EXPECT_TRUE(Fakes().timers.empty());
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
}

TEST_F(FlatButton, IsNotPressedAnyMoreWhenAnotherWindowTakesTheCapture) {
    Down(kPlain);
    EXPECT_EQ(Item(kPlain), GetCapture());
    SetCapture(dialog_->window);
    EXPECT_FALSE(Button(kPlain).isDown || Button(kPlain).isPressed);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1));
    ReleaseCapture();
}

TEST_F(FlatButton, HasTheSystemsColoursInHighContrast) {
    const SystemColor text(COLOR_BTNTEXT, 0x00FFFF);
    const SystemColor face(COLOR_BTNFACE, 0x400000);
    Fakes().isContrast = true;
    EXPECT_EQ(0x00FFFFu, TextOf(kPlain).color);
    EXPECT_EQ(0x400000u, PixelOf(kPlain, 1, 1));
    EXPECT_EQ(0x00FFFFu, TextOf(kBlue).color);
    EXPECT_EQ(0x400000u, PixelOf(kBlue, 1, 1));
    EnableWindow(Item(kPlain), FALSE);
    EXPECT_EQ(0x808080u, TextOf(kPlain).color);
    EnableWindow(Item(kBlue), FALSE);
    EXPECT_EQ(0xC0C0C0u, TextOf(kBlue).color);
    EXPECT_EQ(0xF0F0F0u, PixelOf(kBlue, 1, 1));
    const ObFlatBlueBtn made(1);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), made.fillColor);
}

TEST_F(FlatButton, AlignsItsTextByTheWindowsStyle) {
    const auto place = [&](int id) { return AsPixels(TextOf(id).rect); };
    const auto area = [&](int id) {
        const SIZE size = SizeOf(id);
        const int padding = Scale(8);
        return PixelRect{padding, padding, size.cx - padding, size.cy - padding};
    };
    const PixelRect topLeft = area(kTopLeft);
    EXPECT_EQ(topLeft.left, place(kTopLeft).left);
    EXPECT_EQ(topLeft.top, place(kTopLeft).top);
    EXPECT_EQ(static_cast<UINT>(DT_LEFT), TextOf(kTopLeft).flags & (DT_CENTER | DT_RIGHT));
    const PixelRect bottomRight = area(kBottomRight);
    EXPECT_EQ(bottomRight.right, place(kBottomRight).right);
    EXPECT_EQ(bottomRight.bottom, place(kBottomRight).bottom);
    EXPECT_EQ(static_cast<UINT>(DT_RIGHT), TextOf(kBottomRight).flags & (DT_CENTER | DT_RIGHT));
    const PixelRect centred = place(kPlain);
    const SIZE size = SizeOf(kPlain);
    EXPECT_NEAR(centred.left, size.cx - centred.right, 1);
    EXPECT_NEAR(centred.top, size.cy - centred.bottom, 1);
}

TEST_F(FlatButton, CentresItsTextWhereTheStyleNamesBothSides) {
    const LONG_PTR style = GetWindowLongPtrW(Item(kTopLeft), GWL_STYLE);
    SetWindowLongPtrW(Item(kTopLeft), GWL_STYLE, style | BS_RIGHT | BS_BOTTOM);
    const RECT text = TextOf(kTopLeft).rect;
    const SIZE size = SizeOf(kTopLeft);
    EXPECT_NEAR(text.left, size.cx - text.right, 1);
    EXPECT_NEAR(text.top, size.cy - text.bottom, 1);
    EXPECT_LT(Scale(8), text.left) << "not at the edge, as with one of the two";
}

TEST_F(FlatButton, DrawsATextOfAnyLength) {
    for (const std::size_t length : {126u, 127u, 128u, 5000u}) {
        const std::wstring text(length, L'x');
        SetWindowTextW(Item(kPlain), text.c_str());
        EXPECT_EQ(text, TextOf(kPlain).text) << length;
    }
}

TEST_F(FlatButton, BreaksItsTextOnlyWithTheStyleForIt) {
    const DrawnText lines = TextOf(kTwoLines);
    const DrawnText line = TextOf(kPlain);
    EXPECT_EQ(static_cast<UINT>(DT_WORDBREAK), lines.flags & (DT_WORDBREAK | DT_SINGLELINE));
    EXPECT_EQ(static_cast<UINT>(DT_SINGLELINE), line.flags & (DT_WORDBREAK | DT_SINGLELINE));
    EXPECT_GE(lines.rect.bottom - lines.rect.top, 2 * (line.rect.bottom - line.rect.top));
}

TEST_F(FlatButton, KeepsALongTextInsideItsPadding) {
    SetWindowTextW(Item(kPlain), L"A text that is far too long for this button");
    const DrawnText cut = TextOf(kPlain);
    EXPECT_EQ(Scale(8), cut.rect.left);
    EXPECT_EQ(SizeOf(kPlain).cx - Scale(8), cut.rect.right);
    EXPECT_EQ(0u, cut.flags & DT_WORD_ELLIPSIS);
    EXPECT_EQ(0u, cut.flags & (DT_CENTER | DT_RIGHT)) << "its beginning is shown";
    Button(kPlain).endEllipsis = true;
    EXPECT_NE(0u, TextOf(kPlain).flags & DT_WORD_ELLIPSIS);
}

TEST_F(FlatButton, UnderlinesAccessKeysAsItsWindowShowsThem) {
    HideCues(kPlain, UISF_HIDEFOCUS);
    EXPECT_EQ(0u, TextOf(kPlain).flags & DT_HIDEPREFIX);
    HideCues(kPlain, UISF_HIDEACCEL);
    EXPECT_NE(0u, TextOf(kPlain).flags & DT_HIDEPREFIX);
    HideCues(kPlain, 0);
    Button(kPlain).useUIState = false;
    EXPECT_NE(0u, TextOf(kPlain).flags & DT_HIDEPREFIX);
}

TEST_F(FlatButton, ShowsItsFocusOnceKeysAreUsed) {
    SetFocus(Item(kWithoutText));
    HideCues(kWithoutText, UISF_HIDEFOCUS);
    const auto hidden = PixelsOf(kWithoutText);
    EXPECT_TRUE(Button(kWithoutText).focusRectangle.IsEmpty());
    HideCues(kWithoutText, 0);
    const auto shown = PixelsOf(kWithoutText);
    EXPECT_NE(hidden, shown);
    const SIZE size = SizeOf(kWithoutText);
    const int inset = Scale(2);
    EXPECT_EQ((PixelRect{inset, inset, size.cx - inset, size.cy - inset}),
              Button(kWithoutText).focusRectangle);
    SetFocus(Item(kStock));
    EXPECT_EQ(hidden, PixelsOf(kWithoutText));
}

TEST_F(FlatButton, MayShowItsFocusAsAFrame) {
    Button(kPlain).frameFocus = true;
    Button(kPlain).focusFrameColor = 0x00AA00;
    SetFocus(Item(kPlain));
    const SIZE size = SizeOf(kPlain);
    const int inset = Scale(2);
    EXPECT_EQ(0x00AA00u, PixelOf(kPlain, inset, inset));
    EXPECT_EQ(0x00AA00u, PixelOf(kPlain, inset, 2 * inset));
    EXPECT_EQ(0x00AA00u, PixelOf(kPlain, size.cx - inset - 1, size.cy - inset - 1));
    EXPECT_EQ(kFill, PixelOf(kPlain, inset - 1, inset)) << "one pixel thick";
    EXPECT_EQ(kFill, PixelOf(kPlain, inset + 1, inset + 1));
    SetFocus(Item(kStock));
    EXPECT_EQ(0, CountOf(kPlain, 0x00AA00));
}

// Messages at which the stock button paints without WM_PAINT.
TEST_F(FlatButton, PaintsOverWhatTheStockButtonPaints) {
    HideCues(kPlain, UISF_HIDEFOCUS);
    const auto before = PixelsOf(kPlain);
    const auto shown = [&] { return ShownPixels(kPlain); };
    Send(kPlain, BM_SETSTATE, TRUE);
    EXPECT_EQ(before, shown()) << "BM_SETSTATE";
    Send(kPlain, BM_SETSTATE, FALSE);
    EXPECT_EQ(before, shown()) << "BM_SETSTATE off";
    Send(kPlain, BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
    EXPECT_EQ(before, shown()) << "BM_SETSTYLE";
    Send(kPlain, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
    EXPECT_EQ(before, shown());
    SetFocus(Item(kPlain));
    EXPECT_EQ(before, shown()) << "WM_SETFOCUS";
    SetFocus(Item(kStock));
    EXPECT_EQ(before, shown()) << "WM_KILLFOCUS";
    SetWindowTextW(Item(kPlain), L"Other");
    EXPECT_NE(before, shown());
    SetWindowTextW(Item(kPlain), L"&Plain");
    EXPECT_EQ(before, shown()) << "WM_SETTEXT";
    EnableWindow(Item(kPlain), FALSE);
    EXPECT_EQ(kFill, PixelOf(kPlain, 1, 1)) << "WM_ENABLE";
    EnableWindow(Item(kPlain), TRUE);
    EXPECT_EQ(before, shown()) << "WM_ENABLE";
}

TEST_F(FlatButton, PaintsIntoAGivenDeviceContextAndErasesNothing) {
    const ClientDc target(dialog_->window);
    EXPECT_EQ(1, Send(kPlain, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(target.Get()), PRF_CLIENT));
    EXPECT_EQ(kFrame, GetPixel(target.Get(), 0, 0));
    EXPECT_EQ(kFill, GetPixel(target.Get(), 1, 1));
    EXPECT_EQ(1, Send(kPlain, WM_PAINT));
    const ClientDc own(Item(kPlain));
    FillArea(own.Get(), {0, 0, 5, 5}, 0x123456);
    EXPECT_EQ(1, Send(kPlain, WM_ERASEBKGND, reinterpret_cast<WPARAM>(own.Get())));
    EXPECT_EQ(0x123456u, PixelOf(kPlain, 1, 1));
    EXPECT_NE(0, Send(kPlain, WM_GETDLGCODE) & DLGC_BUTTON);
}

class KeyButton : public ObFlatBtn {
public:
    explicit KeyButton(std::int32_t id) : ObFlatBtn(id) {}
    LRESULT OnGetDlgCode(WPARAM key) override { return key == VK_UP ? DLGC_WANTARROWS : 0; }
    void OnSetFocus() override { calls += L"+"; }
    void OnKillFocus() override { calls += L"-"; }
    void OnSetCheck(bool isChecked) override { calls += isChecked ? L"1" : L"0"; }
    std::wstring calls;
};

TEST_F(FlatButton, CallsWhatAClassOverrides) {
    dialog_.reset();
    Dress({{kPlain, &Make<KeyButton>}});
    Open(OB_TEST_PUSH_BUTTONS);
    EXPECT_EQ(DLGC_WANTARROWS, Send(kPlain, WM_GETDLGCODE, VK_UP));
    EXPECT_NE(0, Send(kPlain, WM_GETDLGCODE, VK_TAB) & DLGC_BUTTON);
    auto& button = Object<KeyButton>(kPlain);
    SetFocus(Item(kStock));
    button.calls.clear();
    SetFocus(Item(kPlain));
    SetFocus(Item(kStock));
    Send(kPlain, BM_SETCHECK, BST_CHECKED);
    Send(kPlain, BM_SETCHECK, BST_UNCHECKED);
    EXPECT_EQ(L"+-10", button.calls);
}

TEST_F(FlatButton, OfSettingsIsAsLargeAsItsPictureAroundItsOldCentre) {
    const SIZE size = SizeOf(kSettings);
    EXPECT_EQ(Scale(20), size.cx);
    EXPECT_EQ(Scale(20), size.cy);
    RECT units{170, 10, 210, 50};
    MapDialogRect(dialog_->window, &units);
    RECT rect{};
    GetWindowRect(Item(kSettings), &rect);
    MapWindowPoints(nullptr, dialog_->window, reinterpret_cast<POINT*>(&rect), 2);
    EXPECT_NEAR(units.left + units.right, rect.left + rect.right, 1);
    EXPECT_NEAR(units.top + units.bottom, rect.top + rect.bottom, 1);
}

TEST_F(FlatButton, OfSettingsHasAFrameOnlyUnderTheMouse) {
    EXPECT_EQ(kWhite, PixelOf(kSettings, 0, 0));
    Hover(kSettings);
    EXPECT_EQ(kHotFrame, PixelOf(kSettings, 0, 0));
    EXPECT_EQ(1, Button(kSettings).hasFrame);
    Leave(kSettings);
    EXPECT_EQ(kWhite, PixelOf(kSettings, 0, 0));
    EXPECT_TRUE(TextOf(kSettings).text.empty()) << "only its picture";
    EXPECT_LT(10, static_cast<long>(PixelsOf(kSettings).size()) - CountOf(kSettings, kWhite));
    Button(kSettings).images = ImageSet();
    Button(kSettings).Refresh();
    EXPECT_EQ(62088, Button(kSettings).images.ids[0]);
}

// The darkest of the picture's pixels: all its edges are paler.
COLORREF DarkestOf(const std::vector<COLORREF>& pixels) {
    return *std::ranges::min_element(pixels, {}, [](COLORREF color) {
        return GetRValue(color) + GetGValue(color) + GetBValue(color);
    });
}

TEST_F(FlatButton, OfSettingsDimsItsPictureWhileDisabled) {
    const auto before = PixelsOf(kSettings);
    EXPECT_GT(0x60, GetRValue(DarkestOf(before)));
    EnableWindow(Item(kSettings), FALSE);
    const auto dimmed = PixelsOf(kSettings);
    EXPECT_EQ(0x808080u, DarkestOf(dimmed));
    ASSERT_EQ(before.size(), dimmed.size());
    for (std::size_t at = 0; at < before.size(); ++at) {
        EXPECT_EQ(before[at] == kWhite, dimmed[at] == kWhite) << at << ": the shape stays";
    }
    EnableWindow(Item(kSettings), TRUE);
    EXPECT_EQ(before, PixelsOf(kSettings));
}

TEST_F(FlatButton, OfABrowserShowsItsPictureInTheMiddle) {
    EXPECT_TRUE(TextOf(kBrowser).text.empty());
    const SIZE size = SizeOf(kBrowser);
    const int half = Scale(16) / 2;
    const ClientDc dc(Item(kBrowser));
    long inside = 0;
    for (int y = 1; y < size.cy - 1; ++y) {
        for (int x = 1; x < size.cx - 1; ++x) {
            if (GetPixel(dc.Get(), x, y) == kFill) continue;
            EXPECT_LE(abs(x - size.cx / 2), half);
            EXPECT_LE(abs(y - size.cy / 2), half);
            ++inside;
        }
    }
    EXPECT_LT(20, inside);
}

TEST_F(FlatButton, WithASplitHasALineAndAnArrowAtItsRight) {
    PixelsOf(kSplit);
    const SIZE size = SizeOf(kSplit);
    const int line = size.cx - (Scale(8) + Scale(8) + 1);
    EXPECT_EQ(line, Button(kSplit).imageRectangle.left);
    EXPECT_EQ(kFill, PixelOf(kSplit, line, Scale(3) - 1));
    EXPECT_EQ(0xA8A8A8u, PixelOf(kSplit, line, Scale(3)));
    EXPECT_EQ(0xA8A8A8u, PixelOf(kSplit, line, size.cy - Scale(3) - 1));
    EXPECT_EQ(kFill, PixelOf(kSplit, line, size.cy - Scale(3)));
    EXPECT_EQ(kFill, PixelOf(kSplit, line + 1, size.cy / 2));
    EXPECT_LE(TextOf(kSplit).rect.right, line - Scale(8));
    Hover(kSplit);
    EXPECT_EQ(0xA8A8A8u, PixelOf(kSplit, line, size.cy / 2)) << "also while it is hot";
    Leave(kSplit);
}

TEST_F(FlatButton, ThatDropsHasNoSplit) {
    PixelsOf(kDrop);
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    EXPECT_TRUE(Send(kDrop, BCM_GETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info)));
    EXPECT_NE(0u, info.uSplitStyle & BCSS_NOSPLIT);
    EXPECT_EQ(0, CountOf(kDrop, 0xA8A8A8));
    const int middle = Button(kDrop).imageRectangle.Centre().x;
    const SIZE size = SizeOf(kDrop);
    long arrow = 0;
    for (int y = 1; y < size.cy - 1; ++y) arrow += PixelOf(kDrop, middle, y) != kFill;
    EXPECT_LT(0, arrow);
}

TEST_F(FlatButton, WithASplitShowsAPalerArrowWhileDisabled) {
    const auto before = PixelsOf(kSplit);
    EnableWindow(Item(kSplit), FALSE);
    PixelsOf(kSplit);
    EXPECT_EQ(62104, Button(kSplit).images.ids[0]);
    EnableWindow(Item(kSplit), TRUE);
    EXPECT_EQ(before, PixelsOf(kSplit));
    EXPECT_EQ(62096, Button(kSplit).images.ids[0]);
}

TEST_F(FlatButton, WithASplitAndNoTextHasBothInTheMiddle) {
    SetWindowTextW(Item(kSplit), L"");
    PixelsOf(kSplit);
    const SIZE size = SizeOf(kSplit);
    const int arrow = (size.cx - Scale(8)) / 2;
    EXPECT_EQ(0xA8A8A8u, PixelOf(kSplit, arrow - Scale(8) / 2, size.cy / 2));
}

TEST_F(FlatButton, PaintsNoPictureThatIsMissing) {
    static constexpr std::int32_t kMissing[] = {1, 2, 3, 4, 5, 6, 7, 8, kImageListEnd};
    const auto before = PixelsOf(kWithoutText);
    Button(kWithoutText).images = ImageSet(kMissing);
    Button(kWithoutText).Repaint();
    EXPECT_EQ(before, PixelsOf(kWithoutText));
}

TEST_F(FlatButton, TakesThePictureOfItsState) {
    // Rows: a browser's window, a gear, nothing for a press.
    static constexpr std::int32_t kRows[] = {62224, 62225, 62226, 62227, 62228,        62229,
                                             62230, 62231, 62088, 62089, 62090,        62091,
                                             62092, 62093, 62094, 62095, kImageListEnd};
    ObFlatBtn& button = Button(kWithoutText);
    button.images = ImageSet(kRows);
    button.hoverColor = button.fillColor;
    button.pressedColor = button.fillColor;
    button.hotFrameColor = button.frameColor;
    HideCues(kWithoutText, UISF_HIDEFOCUS);
    const auto idle = PixelsOf(kWithoutText);
    Hover(kWithoutText);
    const auto hot = PixelsOf(kWithoutText);
    EXPECT_NE(idle, hot);
    Down(kWithoutText);
    const auto pressed = PixelsOf(kWithoutText);
    Up(kWithoutText);
    Leave(kWithoutText);
    EXPECT_EQ(idle, PixelsOf(kWithoutText));
    EXPECT_EQ(idle, pressed) << "the first row's where a state has none";
}

TEST_F(FlatButton, TakesTheFirstPictureWhereThatOfItsStateIsMissing) {
    // The second row names pictures that the program doesn't have.
    static constexpr std::int32_t kRows[] = {
        62224, 62225, 62226, 62227, 62228, 62229, 62230, 62231,        1,
        2,     3,     4,     5,     6,     7,     8,     kImageListEnd};
    ObFlatBtn& button = Button(kWithoutText);
    const long without = CountOf(kWithoutText, kFill);
    button.images = ImageSet(kRows);
    button.hoverColor = button.fillColor;
    button.hotFrameColor = button.frameColor;
    button.Repaint();
    const auto idle = PixelsOf(kWithoutText);
    EXPECT_GT(without, CountOf(kWithoutText, kFill)) << "it has a picture";
    Hover(kWithoutText);
    EXPECT_EQ(idle, PixelsOf(kWithoutText));
    Leave(kWithoutText);
}

// The dialog ends with its objects while a click is still under way.
TEST_F(FlatButton, MayEndWithItsDialogWhileItNotifies) {
    dialog_->onCommand = [&] { DestroyWindow(dialog_->window); };
    Hover(kPlain);
    const HWND window = Item(kPlain);
    Down(kPlain);
    SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_TRUE(Fakes().timers.empty());
}

LRESULT CALLBACK DestroyWhenAsked(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                  UINT_PTR id, DWORD_PTR asked) {
    if (message == static_cast<UINT>(asked)) {
        RemoveWindowSubclass(window, &DestroyWhenAsked, id);
        DestroyWindow(window);
        return 0;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

TEST_F(FlatButton, MayLoseItsWindowWhileItPaints) {
    int id = kPlain;
    for (const UINT message : {WM_GETTEXT, WM_QUERYUISTATE}) {
        const HWND window = Item(id);
        SetWindowSubclass(window, &DestroyWhenAsked, 1, message);
        InvalidateRect(window, nullptr, FALSE);
        UpdateWindow(window);
        EXPECT_FALSE(IsWindow(window)) << message;
        EXPECT_EQ(nullptr, dialog_->GetControl(id)->window);
        id = kSplit;
    }
}

HFONT WINAPI MakeNoFont(const LOGFONTW*) { return nullptr; }

TEST_F(FlatButton, EndsTheProcessWithoutAFontForItsText) {
    EXPECT_FATAL(
        {
            const obtest::ImportPatch<decltype(CreateFontIndirectW)> patch(
                "gdi32.dll", "CreateFontIndirectW", &MakeNoFont);
            Button(kPlain).fontName = L"Another";
            Button(kPlain).Repaint();
        },
        "ObLibX\\src\\ControlText.cpp");
}

// Called by DrawText: how the font differs that the text is drawn in.
std::int32_t drawnStyle = -1;
int WINAPI RecordFont(HDC dc, LPCWSTR, int, RECT*, UINT) {
    const FontEntry* const font = FindFontEntry(static_cast<HFONT>(GetCurrentObject(dc, OBJ_FONT)));
    drawnStyle = font != nullptr && font->weight == 700 ? font->style : -1;
    return 1;
}

TEST_F(FlatButton, TakesItsFontWithoutItsStyle) {
    Button(kPlain).fontStyle = 7; // italic, underlined, struck out
    Button(kPlain).fontWeight = 700;
    const obtest::ImportPatch<decltype(DrawTextW)> patch("user32.dll", "DrawTextW", &RecordFont);
    ASSERT_TRUE(patch.Ok());
    Button(kPlain).Repaint();
    EXPECT_EQ(0, drawnStyle);
}

TEST_F(FlatButton, EndsItsFadeWithItsWindow) {
    Hover(kPlain);
    const FakeTimer timer = Fakes().timers.at(0);
    DestroyWindow(Item(kPlain));
    EXPECT_TRUE(Fakes().timers.empty());
    timer.call(timer.window, WM_TIMER, timer.id, 0);
}

} // namespace
