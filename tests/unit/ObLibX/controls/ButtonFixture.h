// What the tests of push buttons share: a dialog with a button of each class, and the mouse on
// them.
#pragma once

#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "tests/unit/ObLibX/controls/ControlFixture.h"
#include "tests/unit/ObLibX/controls/ControlTestIds.h"

namespace buttontest {

using namespace ObLibX;

inline constexpr int kPlain = 1001;
inline constexpr int kBlue = 1002;
inline constexpr int kSettings = 1003;
inline constexpr int kBrowser = 1004;
inline constexpr int kSplit = 1005;
inline constexpr int kDrop = 1006;
inline constexpr int kWithoutText = 1007;
inline constexpr int kTwoLines = 1008;
inline constexpr int kTopLeft = 1009;
inline constexpr int kBottomRight = 1010;
inline constexpr int kStock = 1099;

inline constexpr COLORREF kFill = 0xF6F6F6;
inline constexpr COLORREF kHover = 0xFBF3E5;
inline constexpr COLORREF kPressed = 0xFCE8D4;
inline constexpr COLORREF kFrame = 0xC0C0C0;
inline constexpr COLORREF kHotFrame = 0xEAB47E;
inline constexpr COLORREF kAccent = 0xC0761B;
inline constexpr COLORREF kWhite = 0xFFFFFF;

class FlatButton : public ControlsTest {
protected:
    void SetUp() override {
        ControlsTest::SetUp();
        Dress({{kPlain, &Make<ObFlatBtn>},
               {kBlue, &Make<ObFlatBlueBtn>},
               {kSettings, &Make<ObFlatSettingsBtn>},
               {kBrowser, &Make<ObFlatBrowserBtn>},
               {kSplit, &Make<ObFlatSplitBtn>},
               {kDrop, &Make<ObFlatDropBtn>},
               {kWithoutText, &Make<ObFlatBtn>},
               {kTwoLines, &Make<ObFlatBtn>},
               {kTopLeft, &Make<ObFlatBtn>},
               {kBottomRight, &Make<ObFlatBtn>}});
        Open(OB_TEST_PUSH_BUTTONS);
        SetFocus(Item(kStock));
    }
    void Hover(int id) { Send(id, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5)); }
    void Leave(int id) { Send(id, WM_MOUSELEAVE); }
    void Down(int id) { Send(id, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5)); }
    void Up(int id) { Send(id, WM_LBUTTONUP, 0, MAKELPARAM(5, 5)); }
    // Closes the dialog and opens it again: the same objects get new windows.
    void Reopen() {
        DestroyWindow(dialog_->window);
        dialog_->Create(nullptr);
        ShowWindow(dialog_->window, SW_SHOW);
        UpdateWindow(dialog_->window);
        SetFocus(Item(kStock));
    }
    ObFlatBtn& Button(int id) { return Object<ObFlatBtn>(id); }
    // A pixel of the parent, as far left and up of a point in it, or of a window's corner.
    COLORREF BesideOf(POINT corner, int distance) {
        const ClientDc dc(dialog_->window);
        return GetPixel(dc.Get(), corner.x - distance, corner.y - distance);
    }
    COLORREF BesideOf(int id, int distance) { return BesideOf(CornerOf(id), distance); }
    POINT CornerOf(int id) {
        POINT corner{};
        MapWindowPoints(Item(id), dialog_->window, &corner, 1);
        return corner;
    }
};

} // namespace buttontest
