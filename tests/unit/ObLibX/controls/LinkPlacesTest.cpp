// Links: their windows fit their texts, and the focus is shown around them.
#include <algorithm>

#include "ObLibX/src/controls/LinkFit.h"
#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/LinkFixture.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

// The size of a text in one line, in the font of a window.
SIZE LineOf(HWND window, const std::wstring& text) {
    const ClientDc dc(window);
    const HGDIOBJ old =
        SelectObject(dc.Get(), reinterpret_cast<HGDIOBJ>(SendMessageW(window, WM_GETFONT, 0, 0)));
    SIZE size{};
    GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
    SelectObject(dc.Get(), old);
    return size;
}

// ---- The window fits the text

class LinkPlaces : public LinkFixture {};

TEST_F(LinkPlaces, AreAsWideAsTheTextAtItsSide) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1001, 1002, 1003});
    const LinkAlignment alignments[] = {LinkAlignment::Left, LinkAlignment::Centre,
                                        LinkAlignment::Right};
    for (const int at : {0, 1, 2}) {
        const HWND window = Child(1001 + at);
        const SIZE line = LineOf(window, TextOfWindow(window));
        const PixelRect room = FromTemplate(20, 20 + 20 * at, 120, 10);
        EXPECT_EQ(FitLink(room, {line.cx, line.cy}, alignments[at]), PlaceOf(1001 + at));
        EXPECT_EQ(line.cx, PlaceOf(1001 + at).Width());
        EXPECT_LT(line.cx, room.Width());
    }
}

TEST_F(LinkPlaces, GrowInHeightForATextThatIsTooWide) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1004});
    const PixelRect room = FromTemplate(20, 80, 50, 10);
    const SIZE line = LineOf(Child(1004), TextOfWindow(Child(1004)));
    const PixelRect place = PlaceOf(1004);
    EXPECT_EQ(room.left, place.left);
    EXPECT_EQ(room.right, place.right);
    EXPECT_EQ((line.cx / room.Width() + 1) * line.cy, place.Height());
    EXPECT_LT(3 * room.Height(), place.Height());
}

TEST_F(LinkPlaces, AreEmptyWithoutATextUntilThereIsOne) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1005});
    EXPECT_EQ(0, PlaceOf(1005).Width());
    SetWindowTextW(Child(1005), L"Not empty any more");
    EXPECT_EQ(LineOf(Child(1005), L"Not empty any more").cx, PlaceOf(1005).Width());
    SetWindowTextW(Child(1005), L"");
    EXPECT_EQ(0, PlaceOf(1005).Width());
}

TEST_F(LinkPlaces, FitATextThatChanges) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1002});
    const PixelRect room = FromTemplate(20, 40, 120, 10);
    for (const wchar_t* const text : {L"i", L"A text that is longer", L"In the middle"}) {
        SetWindowTextW(Child(1002), text);
        EXPECT_EQ(text, TextOfWindow(Child(1002)));
        const SIZE line = LineOf(Child(1002), text);
        EXPECT_EQ(FitLink(room, {line.cx, line.cy}, LinkAlignment::Centre), PlaceOf(1002));
    }
}

TEST_F(LinkPlaces, StartFromWhereTheDialogMovedThem) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1003});
    MoveChild(Child(1003), {10, 10, 210, 40});
    Link().FitToText();
    const SIZE line = LineOf(Child(1003), TextOfWindow(Child(1003)));
    EXPECT_EQ((PixelRect{210 - static_cast<int>(line.cx), 10, 210, 40}), PlaceOf(1003));
    Link().FitToText();
    EXPECT_EQ(210, PlaceOf(1003).right);
}

// A label grows for a text that just doesn't fit, and for one that needs many lines; the link
// shrinks again with the text.
TEST_F(LinkPlaces, KeepTheirRoomWhenALabelGrowsForAText) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1001, 1002, 1003, 1007});
    const struct {
        int id;
        PixelRect room;
        LinkAlignment alignment;
    } rows[] = {{1001, FromTemplate(20, 20, 120, 10), LinkAlignment::Left},
                {1002, FromTemplate(20, 40, 120, 10), LinkAlignment::Centre},
                {1003, FromTemplate(20, 60, 120, 10), LinkAlignment::Right},
                {1007, FromTemplate(20, 180, 120, 18), LinkAlignment::Left}};
    for (const auto& row : rows) {
        const HWND window = Child(row.id);
        const auto textOver = [&](int pixels) {
            std::wstring text = L"i";
            while (LineOf(window, text).cx <= row.room.Width() + pixels)
                text += text.size() % 9 == 8 ? L' ' : L'i';
            return text;
        };
        for (const std::wstring& longer :
             {textOver(0), textOver(Scale(2)), textOver(7 * row.room.Width())}) {
            SetWindowTextW(window, longer.c_str());
            EXPECT_EQ(row.room.left, PlaceOf(row.id).left);
            EXPECT_EQ(row.room.right, PlaceOf(row.id).right) << longer.size() << " letters";
            SetWindowTextW(window, L"Short");
            const SIZE line = LineOf(window, L"Short");
            EXPECT_EQ(FitLink(row.room, {line.cx, line.cy}, row.alignment), PlaceOf(row.id))
                << row.id << " after " << longer.size() << " letters";
        }
    }
}

// The label makes its font smaller for the longer text; the link's font stays.
TEST_F(LinkPlaces, KeepTheFontWhenALabelFitsItsText) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1007});
    const auto& label = dynamic_cast<ObFlatStaticText&>(*links_->GetControl(1007));
    const HFONT underlined = FontOf(Child(1007));
    ASSERT_EQ(14, label.fontSize);
    SetWindowTextW(Child(1007), L"Larger, but there is room for all of it");
    SetWindowTextW(Child(1007), L"Now a text that needs so much room that the label, which has a "
                                L"large font, makes it smaller until it has nine points");
    EXPECT_EQ(9, label.fontSize);
    EXPECT_EQ(underlined, FontOf(Child(1007)));
    EXPECT_EQ(Link().underlineFont.Get(), underlined);
    Link().Detach();
    EXPECT_EQ(GetFont(9, L"", 400, 0), FontOf(Child(1007))) << "the label's, when the link ends";
}

TEST_F(LinkPlaces, LeaveNothingOfALongerTextBelow) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1004});
    const PixelRect before = PlaceOf(1004);
    ValidateRect(links_->window, nullptr);
    SetWindowTextW(Child(1004), L"Short");
    const PixelRect now = PlaceOf(1004);
    ASSERT_LT(now.bottom, before.bottom - 1);
    RECT invalid{};
    ASSERT_TRUE(GetUpdateRect(links_->window, &invalid, FALSE));
    EXPECT_LE(invalid.top, now.bottom);
    EXPECT_LE(before.bottom, invalid.bottom) << "the dialog paints where the old lines were";
    EXPECT_LE(before.right, invalid.right);
}

TEST_F(LinkPlaces, SurviveATextOf65536Characters) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1001});
    const PixelRect room = FromTemplate(20, 20, 120, 10);
    SetWindowTextW(Child(1001), std::wstring(65536, L'w').c_str());
    EXPECT_EQ(65536, GetWindowTextLengthW(Child(1001)));
    EXPECT_EQ(room.Width(), PlaceOf(1001).Width());
    SetFocus(Child(1001));
    PaintNow(links_->window);
    SetWindowTextW(Child(1001), L"short");
    EXPECT_EQ(LineOf(Child(1001), L"short").cx, PlaceOf(1001).Width());
}

// ---- The focus is shown

class LinkFocusLook : public LinkFixture {
protected:
    void SetUp() override {
        LinkFixture::SetUp();
        OpenLinks(OB_TEST_LINKS, {1006, 1007});
        SetFocus(Child(1010));
        Settle();
    }
    void Settle() const {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        UpdateWindow(links_->window);
    }
    // Whether the lines of a rectangle are dotted: each second pixel of them, corners aside, where
    // two lines meet, and between the dots what the ground is.
    void ExpectDotted(const PixelRect& rect, COLORREF ground = 0xFFFFFF) const {
        const auto isMark = [&](int x, int y) { return PixelOf(links_->window, x, y) != ground; };
        int unevenDots = 0;
        for (int x = rect.left + 1; x + 2 < rect.right; ++x) {
            unevenDots += isMark(x, rect.top) == isMark(x + 1, rect.top);
            unevenDots += isMark(x, rect.bottom - 1) == isMark(x + 1, rect.bottom - 1);
        }
        for (int y = rect.top + 1; y + 2 < rect.bottom; ++y) {
            unevenDots += isMark(rect.left, y) == isMark(rect.left, y + 1);
            unevenDots += isMark(rect.right - 1, y) == isMark(rect.right - 1, y + 1);
        }
        EXPECT_EQ(0, unevenDots) << "solid, doubled or missing";
        for (const int distance : {-1, 1}) { // and there is one line only
            const PixelRect beside{rect.left + distance, rect.top + distance, rect.right - distance,
                                   rect.bottom - distance};
            EXPECT_EQ(0, MarksOn(beside, ground)) << distance;
        }
    }
    // Where the focus of a link is shown.
    PixelRect FocusOf(int id) const { return LinkFocus(PlaceOf(id), 0); }
    // How many pixels of the lines of a rectangle aren't the ground's.
    int MarksOn(const PixelRect& rect, COLORREF ground = 0xFFFFFF) const {
        int marks = 0;
        for (const PixelRect& edge : EdgesOf(rect)) {
            for (int y = edge.top; y < edge.bottom; ++y) {
                for (int x = edge.left; x < edge.right; ++x) {
                    marks += PixelOf(links_->window, x, y) != ground;
                }
            }
        }
        return marks;
    }
};

TEST_F(LinkFocusLook, IsADottedRectangleTwoPixelsAround) {
    EXPECT_EQ(0, MarksOn(FocusOf(1006)));
    SetFocus(Child(1006));
    ExpectDotted(FocusOf(1006));
    EXPECT_EQ(0, MarksOn(FocusOf(1007)));
    SetFocus(Child(1007));
    EXPECT_EQ(0, MarksOn(FocusOf(1006)));
    ExpectDotted(FocusOf(1007));
    SetFocus(Child(1010));
    EXPECT_EQ(0, MarksOn(FocusOf(1007)));
}

TEST_F(LinkFocusLook, IsThereAfterAnyPaint) {
    SetFocus(Child(1006));
    const PixelRect focus = FocusOf(1006);
    const int marks = MarksOn(focus);
    const RECT half{focus.left, focus.top, focus.Centre().x, focus.bottom};
    for (const RECT* const area : {&half, static_cast<const RECT*>(nullptr)}) {
        for (const UINT flags : {RDW_ERASE, RDW_ALLCHILDREN, RDW_ERASE | RDW_ALLCHILDREN}) {
            RedrawWindow(links_->window, area, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | flags);
            EXPECT_EQ(marks, MarksOn(focus)) << flags;
        }
    }
    PaintNow(Child(1006));
    EXPECT_EQ(marks, MarksOn(focus));
    SetFocus(Child(1010));
    EXPECT_EQ(0, MarksOn(focus)) << "nothing of it is left";
}

TEST_F(LinkFocusLook, GoesWhereTheWindowGoes) {
    SetFocus(Child(1006));
    const PixelRect before = FocusOf(1006);
    SetWindowTextW(Child(1006), L"About something else");
    Settle();
    const PixelRect longer = FocusOf(1006);
    ASSERT_NE(before, longer);
    ExpectDotted(longer);
    MoveChild(Child(1006), FromTemplate(20, 104, 90, 10));
    Settle();
    EXPECT_EQ(0, MarksOn(longer));
    ExpectDotted(FocusOf(1006));
    ShowWindow(Child(1006), SW_HIDE);
    Settle();
    EXPECT_EQ(0, MarksOn(FocusOf(1006)));
}

TEST_F(LinkFocusLook, GoesWithTheLink) {
    SetFocus(Child(1006));
    const PixelRect focus = FocusOf(1006);
    Link().Detach();
    Settle();
    EXPECT_EQ(0, MarksOn(focus));
    Link().Attach(links_->window);
    Settle();
    ExpectDotted(focus); // it still has the focus
}

// The dialog may paint its ground by itself, in any colour.
class PaintingDialog : public linktest::LinkDialog {
public:
    explicit PaintingDialog(COLORREF itsGround)
        : LinkDialog(OB_TEST_LINKS, {1006}, true), ground(itsGround) {}
    bool OnPaint() override {
        const PaintDc dc(window);
        FillArea(dc.Get(), ClientArea(window), ground);
        return true;
    }
    COLORREF ground;
};

TEST_F(LinkFocusLook, IsThereOnAGroundThatTheDialogPaints) {
    for (const COLORREF ground : {0xFFFFFFu, 0xF0E8D8u, 0x000000u, 0x402010u}) {
        links_ = std::make_unique<PaintingDialog>(ground);
        links_->Create(nullptr);
        SetFocus(Child(1006));
        ShowWindow(links_->window, SW_SHOW);
        UpdateWindow(links_->window);
        ExpectDotted(FocusOf(1006), ground);
        const int marks = MarksOn(FocusOf(1006), ground);
        PaintNow(links_->window);
        EXPECT_EQ(marks, MarksOn(FocusOf(1006), ground));
    }
}

// A procedure below the link's, and the window for which it hears of the focus.
WNDPROC belowFocus = nullptr;
HWND focusHeardFor = nullptr;
int focusesHeard = 0;
LRESULT CALLBACK NoteFocus(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SETFOCUS) {
        focusHeardFor = window;
        ++focusesHeard;
    }
    return CallWindowProcW(belowFocus, window, message, wParam, lParam);
}

// Goes, or its link's window does, in the first paint after the focus has come to the link.
class VanishingDialog : public linktest::LinkDialog {
public:
    VanishingDialog(bool isDressed, int whatGoes)
        : LinkDialog(OB_TEST_LINKS, {1006}, isDressed), goes(whatGoes) {}
    bool OnInitDialog() override {
        ObXDlg::OnInitDialog();
        belowFocus = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            GetItem(1006, true), GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NoteFocus)));
        links[0]->Attach(window);
        return false;
    }
    bool OnPaint() override {
        if (!isArmed) return false;
        isArmed = false;
        DestroyWindow(goes != 0 ? GetItem(goes, true) : window);
        return true;
    }
    int goes; // 0: the dialog
    bool isArmed = false;
};

TEST_F(LinkFocusLook, MayEndTheDialogOrTheLinkInThePaintThatShowsIt) {
    for (const bool isDressed : {true, false}) {
        for (const int goes : {0, 1006}) {
            auto dialog = std::make_unique<VanishingDialog>(isDressed, goes);
            VanishingDialog& vanishing = *dialog;
            links_ = std::move(dialog);
            links_->Create(nullptr);
            ShowWindow(links_->window, SW_SHOW);
            SetFocus(Child(1010));
            Settle();
            const HWND link = Child(1006);
            focusesHeard = 0;
            vanishing.isArmed = true;
            SetFocus(link);
            EXPECT_FALSE(IsWindow(link)) << "painted at once";
            EXPECT_FALSE(Link().attached);
            EXPECT_EQ(1, focusesHeard);
            EXPECT_EQ(link, focusHeardFor) << "while there was a window";
        }
    }
}

TEST_F(LinkFocusLook, IsAroundALinkOfSeveralLines) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1004});
    SetFocus(Child(1004));
    Settle();
    const PixelRect focus = FocusOf(1004);
    EXPECT_EQ(PlaceOf(1004).Height() + 4, focus.Height());
    ExpectDotted(focus);
}

} // namespace
