// Links: their windows fit their texts, and the focus is shown around them.
#include <algorithm>

#include "ObLibX/src/controls/LinkFit.h"
#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/controls/OffscreenPaint.h"
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
    // Where the focus of a link is shown.
    PixelRect FocusOf(int id) const { return LinkFocus(PlaceOf(id), 0); }
    // How many pixels of the lines of a rectangle aren't white.
    int MarksOn(const PixelRect& rect) const {
        int marks = 0;
        for (const PixelRect& edge : EdgesOf(rect)) {
            for (int y = edge.top; y < edge.bottom; ++y) {
                for (int x = edge.left; x < edge.right; ++x) {
                    marks += PixelOf(links_->window, x, y) != 0xFFFFFF;
                }
            }
        }
        return marks;
    }
    // Each second pixel.
    static int Dots(const PixelRect& rect) { return rect.Width() + rect.Height() - 4; }
};

TEST_F(LinkFocusLook, IsADottedRectangleTwoPixelsAround) {
    EXPECT_EQ(0, MarksOn(FocusOf(1006)));
    SetFocus(Child(1006));
    EXPECT_LE(Dots(FocusOf(1006)), MarksOn(FocusOf(1006)));
    EXPECT_EQ(0, MarksOn(FocusOf(1007)));
    SetFocus(Child(1007));
    EXPECT_EQ(0, MarksOn(FocusOf(1006)));
    EXPECT_LE(Dots(FocusOf(1007)), MarksOn(FocusOf(1007)));
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
    EXPECT_LE(Dots(longer), MarksOn(longer));
    MoveChild(Child(1006), FromTemplate(20, 104, 90, 10));
    Settle();
    EXPECT_EQ(0, MarksOn(longer));
    EXPECT_LE(Dots(FocusOf(1006)), MarksOn(FocusOf(1006)));
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
    EXPECT_LE(Dots(focus), MarksOn(FocusOf(1006))) << "it still has the focus";
}

// The dialog may paint its ground by itself.
class PaintingDialog : public linktest::LinkDialog {
public:
    using LinkDialog::LinkDialog;
    bool OnPaint() override {
        const PaintDc dc(window);
        FillArea(dc.Get(), ClientArea(window), 0xFFFFFF);
        return true;
    }
};

TEST_F(LinkFocusLook, IsThereOnAGroundThatTheDialogPaints) {
    links_ = std::make_unique<PaintingDialog>(OB_TEST_LINKS, std::vector<int>{1006}, true);
    links_->Create(nullptr);
    SetFocus(Child(1006));
    ShowWindow(links_->window, SW_SHOW);
    UpdateWindow(links_->window);
    EXPECT_LE(Dots(FocusOf(1006)), MarksOn(FocusOf(1006)));
    const int marks = MarksOn(FocusOf(1006));
    PaintNow(links_->window);
    EXPECT_EQ(marks, MarksOn(FocusOf(1006)));
}

TEST_F(LinkFocusLook, IsAroundALinkOfSeveralLines) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1004});
    SetFocus(Child(1004));
    Settle();
    const PixelRect focus = FocusOf(1004);
    EXPECT_EQ(PlaceOf(1004).Height() + 4, focus.Height());
    EXPECT_LE(Dots(focus), MarksOn(focus));
}

} // namespace
