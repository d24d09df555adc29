// Links: how they are attached and end, how they are clicked, their colours and font, and what
// screen readers get of them.
#include "ObLibX/src/controls/ObHyperlink.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <vector>

#include "ObLibX/src/controls/ObCustStatic.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/BarFixture.h"
#include "tests/unit/ObLibX/controls/LinkFixture.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;
using linktest::Command;
using Commands = std::vector<Command>;

constexpr int kLink = 1006;
constexpr int kOther = 1007;

// ---- Attaching

class LinkAttaching : public LinkFixture {};

TEST_F(LinkAttaching, MarksTheWindowByItsProperties) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const HWND window = Child(kLink);
    EXPECT_EQ(&Link(), GetPropW(window, L"_HYPERLINK_OBJECT_PTR_"));
    EXPECT_EQ(reinterpret_cast<HANDLE>(INT_PTR{1}), GetPropW(window, L"_HYPERLINK_"));
    EXPECT_NE(nullptr, GetPropW(window, L"_HYPERLINK_OLD_WNDPROC"));
    EXPECT_NE(nullptr, GetPropW(links_->window, L"_HYPERLINK_OLD_WNDPROC"));
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(&Link()), GetWindowLongPtrW(window, GWLP_USERDATA));
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
    EXPECT_EQ(SS_NOTIFY | WS_TABSTOP, style & (SS_NOTIFY | WS_TABSTOP));
    EXPECT_TRUE(Link().attached);
    EXPECT_EQ(window, Link().window);
    EXPECT_EQ(links_->window, Link().dialogWindow);
}

TEST_F(LinkAttaching, ASecondTimeDoesNothing) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const WNDPROC procedure = ProcedureOf(Child(kLink));
    const HFONT font = FontOf(Child(kLink));
    Link().Attach(links_->window);
    EXPECT_EQ(procedure, ProcedureOf(Child(kLink)));
    EXPECT_EQ(font, FontOf(Child(kLink)));
    EXPECT_NE(procedure,
              reinterpret_cast<WNDPROC>(GetPropW(Child(kLink), L"_HYPERLINK_OLD_WNDPROC")));
}

TEST_F(LinkAttaching, ReplacesTheDialogsProcedureOnce) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const WNDPROC procedure = ProcedureOf(links_->window);
    const HANDLE old = GetPropW(links_->window, L"_HYPERLINK_OLD_WNDPROC");
    ObCmdLinkCtrl other(kOther);
    other.Attach(links_->window);
    EXPECT_EQ(procedure, ProcedureOf(links_->window));
    EXPECT_EQ(old, GetPropW(links_->window, L"_HYPERLINK_OLD_WNDPROC"));
}

TEST_F(LinkAttaching, EndsTheProcessOnAnotherObjectsLink) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    ObCmdLinkCtrl other(kLink);
    EXPECT_FATAL(other.Attach(links_->window), "ObLibX\\src\\ObHyperlink.cpp");
}

TEST_F(LinkAttaching, EndsTheProcessWithoutItsWindows) {
    OpenLinks(OB_TEST_LINKS, {});
    ObCmdLinkCtrl missing(7777);
    EXPECT_FATAL(missing.Attach(links_->window), "ObLibX\\src\\ObHyperlink.cpp");
    ObCmdLinkCtrl noDialog(kLink);
    EXPECT_FATAL(noDialog.Attach(nullptr), "ObLibX\\src\\ObHyperlink.cpp");
}

TEST_F(LinkAttaching, LeavesALabelDressedAndIsOutermost) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    auto* const label = dynamic_cast<ObFlatStaticText*>(links_->GetControl(kLink));
    ASSERT_NE(nullptr, label);
    EXPECT_EQ(Child(kLink), label->window);
    const auto inner = reinterpret_cast<WNDPROC>(GetPropW(Child(kLink), L"_HYPERLINK_OLD_WNDPROC"));
    EXPECT_NE(inner, ProcedureOf(Child(kLink)));
    EXPECT_EQ(inner, ProcedureOf(Child(1008))) << "the one that dressed labels have";
}

// ---- Its end

class LinkEnding : public LinkFixture {};

TEST_F(LinkEnding, WithTheDialogEmptiesTheObjects) {
    OpenLinks(OB_TEST_LINKS, {kLink, kOther});
    const HFONT underlined = Link().underlineFont.Get();
    ASSERT_EQ(static_cast<DWORD>(OBJ_FONT), GetObjectType(underlined));
    DestroyWindow(links_->window);
    for (const std::size_t at : {0, 1}) {
        EXPECT_FALSE(Link(at).attached);
        EXPECT_EQ(nullptr, Link(at).window);
        EXPECT_EQ(nullptr, Link(at).dialogWindow);
        EXPECT_FALSE(Link(at).underlineFont);
    }
    EXPECT_EQ(0u, GetObjectType(underlined));
}

TEST_F(LinkEnding, LetsItBeAttachedAtTheNextOpening) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    DestroyWindow(links_->window);
    links_->Create(nullptr);
    EXPECT_EQ(Child(kLink), Link().window);
    Send(Child(kLink), WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ(1u, links_->commands.size());
}

// What a link changes of a window, a dialog's too; the system hides a window before its end.
struct WindowState {
    WNDPROC procedure = nullptr;
    HFONT font = nullptr;
    LONG_PTR style = 0;
    LONG_PTR userData = 0;
    int properties = 0; // how many of a link's
    bool operator==(const WindowState&) const = default;
};
std::ostream& operator<<(std::ostream& out, const WindowState& state) {
    return out << reinterpret_cast<void*>(state.procedure) << " font " << state.font << " style "
               << std::hex << state.style << std::dec << " data " << state.userData << ", "
               << state.properties << " properties";
}

WindowState StateOf(HWND window) {
    int properties = 0;
    for (const wchar_t* const name :
         {L"_HYPERLINK_", L"_HYPERLINK_OBJECT_PTR_", L"_HYPERLINK_OLD_WNDPROC"}) {
        properties += GetPropW(window, name) != nullptr;
    }
    return {reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC)),
            reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)),
            GetWindowLongPtrW(window, GWL_STYLE) & ~LONG_PTR{WS_VISIBLE},
            GetWindowLongPtrW(window, GWLP_USERDATA), properties};
}

TEST_F(LinkEnding, OfTheObjectLeavesALabel) {
    OpenLinks(OB_TEST_LINKS, {});
    const HWND window = Child(kLink);
    SetWindowLongPtrW(window, GWLP_USERDATA, 77);
    const WindowState before = StateOf(window);
    const WindowState ofDialog = StateOf(links_->window);
    auto link = std::make_unique<ObCmdLinkCtrl>(kLink, links_.get());
    link->Attach(links_->window);
    EXPECT_EQ(3, StateOf(window).properties);
    EXPECT_NE(before, StateOf(window));
    EXPECT_NE(ofDialog, StateOf(links_->window));
    link.reset();
    EXPECT_EQ(before, StateOf(window));
    EXPECT_EQ(ofDialog, StateOf(links_->window));
    Send(window, WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ(Commands(), links_->commands);
}

// A procedure below the link's, and what its window has when it hears of its end.
WNDPROC belowNote = nullptr;
std::optional<WindowState> stateAtEnd;
LRESULT CALLBACK NoteEnd(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) stateAtEnd = StateOf(window);
    return CallWindowProcW(belowNote, window, message, wParam, lParam);
}
void NoteTheEndOf(HWND window) {
    stateAtEnd.reset();
    belowNote = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NoteEnd)));
}

TEST_F(LinkEnding, WithTheDialogPutsAllBackBeforeTheWindowHearsOfIt) {
    for (const bool isWholeDialog : {true, false}) {
        OpenLinks(OB_TEST_LINKS, {}, false);
        const HWND window = Child(kLink);
        SetWindowLongPtrW(window, GWLP_USERDATA, 77);
        NoteTheEndOf(window);
        const WindowState before = StateOf(window);
        ObCmdLinkCtrl link(kLink);
        link.Attach(links_->window);
        ASSERT_NE(before, StateOf(window));
        DestroyWindow(isWholeDialog ? links_->window : window);
        ASSERT_TRUE(stateAtEnd);
        EXPECT_EQ(before, *stateAtEnd) << isWholeDialog;
    }
}

TEST_F(LinkEnding, WithTheDialogPutsTheDialogBackBeforeItHearsOfIt) {
    OpenLinks(OB_TEST_LINKS, {});
    const HWND dialog = links_->window;
    NoteTheEndOf(dialog);
    const WindowState before = StateOf(dialog);
    ObCmdLinkCtrl link(kLink);
    link.Attach(dialog);
    ASSERT_NE(before, StateOf(dialog));
    DestroyWindow(dialog);
    ASSERT_TRUE(stateAtEnd);
    EXPECT_EQ(before, *stateAtEnd);
}

TEST_F(LinkEnding, OfItsWindowAloneLeavesTheDialogAndTheOthers) {
    OpenLinks(OB_TEST_LINKS, {});
    const WindowState ofDialog = StateOf(links_->window);
    ObCmdLinkCtrl link(kLink, links_.get());
    ObCmdLinkCtrl other(kOther, links_.get());
    link.Attach(links_->window);
    other.Attach(links_->window);
    SetFocus(Child(kLink));
    DestroyWindow(Child(kLink));
    EXPECT_FALSE(link.attached);
    EXPECT_EQ(nullptr, link.window);
    EXPECT_FALSE(link.underlineFont);
    Send(Child(kOther), WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ((Commands{{kOther, 0, Child(kOther)}}), links_->commands);
    PaintNow(links_->window);
    EXPECT_NE(ofDialog, StateOf(links_->window)) << "there is a link still";
    DestroyWindow(Child(kOther));
    EXPECT_EQ(ofDialog, StateOf(links_->window)) << "that was the last";
}

TEST_F(LinkEnding, OfOneLeavesTheOthers) {
    OpenLinks(OB_TEST_LINKS, {kLink, kOther});
    links_->links.erase(links_->links.begin());
    Send(Child(kOther), WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ((Commands{{kOther, 0, Child(kOther)}}), links_->commands);
}

WNDPROC below = nullptr;
LRESULT CALLBACK PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return CallWindowProcW(below, window, message, wParam, lParam);
}

// A procedure that somebody put above the link's calls it for as long as the window is there.
TEST_F(LinkEnding, BelowAnotherProcedurePassesMessagesOn) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const HWND window = Child(kLink);
    below = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&PassOn)));
    links_->links.clear();
    SetWindowTextW(window, L"Still here");
    EXPECT_EQ(L"Still here", TextOfWindow(window));
    ObCmdLinkCtrl again(kLink, links_.get());
    again.Attach(links_->window);
    Send(window, WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ(1u, links_->commands.size());
    DestroyWindow(links_->window);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_FALSE(again.attached);
}

// ---- Clicks

class LinkClick : public LinkFixture {
protected:
    void SetUp() override {
        LinkFixture::SetUp();
        OpenLinks(OB_TEST_LINKS, {kLink, kOther});
    }
    Commands Clicked(int id) const { return {{id, 0, Child(id)}}; }
    // As the dialog's message loop does.
    void PressInLoop(WPARAM key) const {
        MSG message{GetFocus(), WM_KEYDOWN, key, 1, 0, {}};
        if (!IsDialogMessageW(links_->window, &message)) DispatchMessageW(&message);
    }
};

TEST_F(LinkClick, ArrivesAsACommandOfTheDialog) {
    Send(Child(kLink), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    Send(Child(kLink), WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
    EXPECT_EQ(Clicked(kLink), links_->commands);
    links_->commands.clear();
    Send(Child(kOther), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    EXPECT_EQ(Clicked(kOther), links_->commands);
}

TEST_F(LinkClick, IsMadeBySpaceAndEnter) {
    for (const WPARAM key : {VK_SPACE, VK_RETURN}) {
        links_->commands.clear();
        Send(Child(kLink), WM_KEYDOWN, key, 1);
        EXPECT_EQ(Clicked(kLink), links_->commands) << key;
        Send(Child(kLink), WM_KEYDOWN, key, 0x40000001);
        EXPECT_EQ(1u, links_->commands.size()) << "a key that is kept down clicks once";
    }
    links_->commands.clear();
    for (const WPARAM key : {WPARAM{VK_TAB}, WPARAM{VK_DOWN}, WPARAM{'A'}})
        Send(Child(kLink), WM_KEYDOWN, key, 1);
    EXPECT_EQ(Commands(), links_->commands);
}

TEST_F(LinkClick, TakesEnterFromTheDefaultButton) {
    SetFocus(Child(kLink));
    ASSERT_EQ(Child(kLink), GetFocus());
    PressInLoop(VK_RETURN);
    EXPECT_EQ(Clicked(kLink), links_->commands);
    ASSERT_NE(nullptr, links_->window) << "OK would have closed it";
    links_->commands.clear();
    PressInLoop(VK_SPACE);
    EXPECT_EQ(Clicked(kLink), links_->commands);
}

TEST_F(LinkClick, IsReachedByTab) {
    SetFocus(Child(1010));
    PressInLoop(VK_TAB);
    EXPECT_EQ(Child(kLink), GetFocus()) << "the first of the dialog again";
    PressInLoop(VK_TAB);
    EXPECT_EQ(Child(kOther), GetFocus());
    PressInLoop(VK_TAB);
    EXPECT_EQ(Child(1), GetFocus()) << "texts are passed over";
}

TEST_F(LinkClick, ReportsItsKeysToTheDialog) {
    EXPECT_EQ(DLGC_BUTTON, Send(Child(kLink), WM_GETDLGCODE, VK_RETURN) & ~DLGC_WANTMESSAGE);
    EXPECT_EQ(DLGC_WANTMESSAGE, Send(Child(kLink), WM_GETDLGCODE, VK_RETURN) & DLGC_WANTMESSAGE);
    for (const WPARAM key : {0, VK_SPACE, VK_TAB, VK_ESCAPE, VK_DOWN}) {
        EXPECT_EQ(128, Send(Child(kLink), WM_GETDLGCODE, key)) << key;
    }
}

TEST_F(LinkClick, IsOneForADoubleClick) {
    Send(Child(kLink), WM_LBUTTONDOWN, MK_LBUTTON);
    Send(Child(kLink), WM_LBUTTONUP);
    Send(Child(kLink), WM_LBUTTONDBLCLK, MK_LBUTTON);
    Send(Child(kLink), WM_LBUTTONUP);
    EXPECT_EQ(Clicked(kLink), links_->commands);
}

TEST_F(LinkClick, IsNoneWhenTheWindowIsEnabledOrDisabled) {
    EnableWindow(Child(kLink), FALSE);
    EnableWindow(Child(kLink), TRUE);
    for (const int code : {STN_ENABLE, STN_DISABLE}) {
        Send(links_->window, WM_COMMAND, MAKEWPARAM(kLink, code),
             reinterpret_cast<LPARAM>(Child(kLink)));
    }
    EXPECT_EQ(Commands(), links_->commands);
}

TEST_F(LinkClick, LeavesOtherCommandsToTheDialog) {
    Send(Child(1010), BM_CLICK);
    EXPECT_EQ((Commands{{1010, BN_CLICKED, Child(1010)}}), links_->commands);
    links_->commands.clear();
    Send(links_->window, WM_COMMAND, 4711, 0);
    Send(links_->window, WM_COMMAND, 4712, 12345);
    EXPECT_EQ(2u, links_->commands.size());
}

TEST_F(LinkClick, DoesNothingWithoutADialogThatItIsBoundTo) {
    Link().handler = nullptr;
    Send(Child(kLink), WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(Commands(), links_->commands);
}

class CountingLink : public ObHyperlinkCtrl {
public:
    using ObHyperlinkCtrl::ObHyperlinkCtrl;
    void OnClick() override { ++clicks; }
    int clicks = 0;
};

TEST_F(LinkClick, CanBeTakenByAClassOfItsOwn) {
    CountingLink link(1008, links_.get());
    link.Attach(links_->window);
    Send(Child(1008), WM_LBUTTONDOWN, MK_LBUTTON);
    Send(Child(1008), WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(2, link.clicks);
    EXPECT_EQ(Commands(), links_->commands);
}

TEST_F(LinkClick, MayEndTheDialogAndItsLinks) {
    for (const bool isByKey : {true, false}) {
        OpenLinks(OB_TEST_LINKS, {kLink});
        const HWND link = Child(kLink);
        links_->onCommand = [&] { links_.reset(); };
        if (isByKey) {
            Send(link, WM_KEYDOWN, VK_SPACE, 1);
        } else {
            Send(link, WM_LBUTTONDOWN, MK_LBUTTON);
        }
        EXPECT_EQ(nullptr, links_);
        EXPECT_FALSE(IsWindow(link));
    }
}

TEST_F(LinkClick, ShowsAHand) {
    SetCursor(nullptr);
    EXPECT_EQ(TRUE, Send(Child(kLink), WM_SETCURSOR, reinterpret_cast<WPARAM>(Child(kLink)),
                         MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)));
    EXPECT_EQ(LoadCursorW(nullptr, IDC_HAND), GetCursor());
    EXPECT_EQ(HTCLIENT, Send(Child(kLink), WM_NCHITTEST, 0,
                             MAKELPARAM(PlaceOf(kLink).left, PlaceOf(kLink).top)));
}

// A settings dialog whose link is bound before it runs and attached after its controls are dressed.
class ModalDialog : public ObXFlatDlg {
public:
    ModalDialog() : ObXFlatDlg(OB_TEST_LINKS, nullptr, 0, false) {}
    bool OnInitDialog() override {
        ObXFlatDlg::OnInitDialog();
        link.Attach(window);
        PostMessageW(link.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        return true;
    }
    bool OnCommandId(int id, int, HWND) override {
        EndDialog(window, id);
        return true;
    }
    ObCmdLinkCtrl link{kLink};
};

TEST_F(LinkClick, EndsAModalDialogThatWantsSo) {
    ModalDialog dialog;
    dialog.link.handler = &dialog;
    EXPECT_EQ(kLink, dialog.DoModal());
    EXPECT_EQ(kLink, dialog.DoModal()) << "and at the next opening";
    EXPECT_FALSE(dialog.link.attached);
}

TEST_F(LinkClick, ArrivesInADialogThatIsNotFlat) {
    OpenLinks(OB_TEST_LINKS, {kLink}, false);
    EXPECT_EQ(nullptr, links_->GetControl(kLink));
    Send(Child(kLink), WM_LBUTTONDOWN, MK_LBUTTON);
    EXPECT_EQ(Clicked(kLink), links_->commands);
}

// ---- Font and colours

class LinkLook : public LinkFixture {
protected:
    // What the dialog gets for the text of a window: its colour, and its ground; CLR_INVALID: the
    // brush has no colour.
    struct Colors {
        COLORREF text;
        COLORREF ground;
    };
    Colors ColorsOf(int id) const {
        const ClientDc dc(Child(id));
        const LRESULT brush =
            Send(links_->window, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.Get()),
                 reinterpret_cast<LPARAM>(Child(id)));
        return {GetTextColor(dc.Get()), ColorOfBrush(reinterpret_cast<HBRUSH>(brush))};
    }
    // How many pixels of each row of a window have a colour.
    std::vector<long> CountsOf(int id, COLORREF color) const {
        PaintNow(Child(id));
        const PixelRect area = ClientArea(Child(id));
        std::vector<long> counts;
        for (int y = 0; y < area.bottom; ++y) {
            counts.push_back(0);
            for (int x = 0; x < area.right; ++x) counts.back() += PixelOf(Child(id), x, y) == color;
        }
        return counts;
    }
    long CountOf(int id, COLORREF color) const {
        const std::vector<long> counts = CountsOf(id, color);
        return std::accumulate(counts.begin(), counts.end(), 0L);
    }
};

TEST_F(LinkLook, HasTheWindowsFontUnderlined) {
    OpenLinks(OB_TEST_LINKS, {});
    const HFONT before = FontOf(Child(kLink));
    ObCmdLinkCtrl link(kLink);
    link.Attach(links_->window);
    EXPECT_EQ(before, link.oldFont);
    EXPECT_EQ(link.underlineFont.Get(), FontOf(Child(kLink)));
    LOGFONTW expected = TraitsOf(before);
    EXPECT_EQ(FALSE, expected.lfUnderline);
    expected.lfUnderline = TRUE;
    const LOGFONTW traits = TraitsOf(FontOf(Child(kLink)));
    EXPECT_EQ(0, memcmp(&expected, &traits, sizeof traits));
}

TEST_F(LinkLook, UnderlinesAFontThatTheWindowGetsLater) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const PixelRect small = PlaceOf(kLink);
    const HFONT large = GetFont(14, L"", 700, 0);
    Send(Child(kLink), WM_SETFONT, reinterpret_cast<WPARAM>(large), TRUE);
    EXPECT_EQ(large, Link().oldFont);
    EXPECT_EQ(TRUE, TraitsOf(FontOf(Child(kLink))).lfUnderline);
    EXPECT_EQ(TraitsOf(large).lfHeight, TraitsOf(FontOf(Child(kLink))).lfHeight);
    EXPECT_LT(small.Width(), PlaceOf(kLink).Width());
}

HFONT WINAPI NoFont(const LOGFONTW*) { return nullptr; }

TEST_F(LinkLook, KeepsItsFontWhereNoneCanBeMade) {
    OpenLinks(OB_TEST_LINKS, {});
    const HFONT before = FontOf(Child(kLink));
    const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch("gdi32.dll",
                                                                    "CreateFontIndirectW", &NoFont);
    ASSERT_TRUE(patch.Ok());
    ObCmdLinkCtrl link(kLink);
    link.Attach(links_->window);
    EXPECT_EQ(before, FontOf(Child(kLink)));
}

TEST_F(LinkLook, HasAColourOfItsOwnOnTheDialogsGround) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    EXPECT_EQ(0xCC6600u, ColorsOf(kLink).text);
    EXPECT_EQ(0xFFFFFFu, ColorsOf(kLink).ground);
    EXPECT_EQ(0u, ColorsOf(1008).text) << "no link";
    Link().textColor = 0x336699;
    EXPECT_EQ(0x336699u, ColorsOf(kLink).text);
}

TEST_F(LinkLook, IsPaintedInItsColourAndUnderlined) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const std::vector<long> counts = CountsOf(kLink, kLinkColor);
    const long width = PlaceOf(kLink).Width();
    EXPECT_LT(width * 2 / 3, std::ranges::max(counts)) << "a line";
    EXPECT_LT(width, CountOf(kLink, kLinkColor)) << "and the letters";
    EXPECT_EQ(0, CountOf(kLink, 0));
}

TEST_F(LinkLook, HasAGroundThatItIsGiven) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    Link().SetBackgroundColor(0x80FFFF);
    EXPECT_EQ(0x80FFFFu, ColorsOf(kLink).ground);
    EXPECT_LT(PlaceOf(kLink).Width(), CountOf(kLink, 0x80FFFF));
    EXPECT_EQ(0, CountOf(kLink, 0xFFFFFF));
}

TEST_F(LinkLook, IsGreyWhileDisabled) {
    OpenLinks(OB_TEST_LINKS_AND_TEXTS, {1006});
    EXPECT_EQ(0x808080u, ColorsOf(1006).text);
    EXPECT_EQ(0, CountOf(1006, kLinkColor));
}

TEST_F(LinkLook, HasTheSystemsColoursInHighContrast) {
    isContrast = true;
    OpenLinks(OB_TEST_LINKS, {kLink});
    Link().SetBackgroundColor(0x80FFFF);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), ColorsOf(kLink).text);
    EXPECT_EQ(GetSysColor(COLOR_WINDOW), ColorsOf(kLink).ground);
}

// As the dialog does when the system reports it.
TEST_F(LinkLook, TakesTheSystemsColoursWhenHighContrastComes) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    Link().SetBackgroundColor(0x80FFFF);
    ASSERT_LT(0, CountOf(kLink, kLinkColor));
    for (const bool isOn : {true, false}) {
        isContrast = isOn;
        Send(links_->window, WM_SYSCOLORCHANGE);
        EXPECT_TRUE(GetUpdateRect(Child(kLink), nullptr, FALSE)) << "painted anew by itself";
        EXPECT_EQ(isOn ? GetSysColor(COLOR_HOTLIGHT) : kLinkColor, ColorsOf(kLink).text);
        EXPECT_EQ(isOn ? GetSysColor(COLOR_WINDOW) : 0x80FFFFu, ColorsOf(kLink).ground);
        EXPECT_EQ(isOn, CountOf(kLink, 0x80FFFF) == 0);
        EXPECT_EQ(isOn, CountOf(kLink, kLinkColor) == 0);
    }
}

// ---- Screen readers

class LinkForScreenReaders : public LinkFixture {
protected:
    void SetUp() override {
        LinkFixture::SetUp();
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    void TearDown() override {
        LinkFixture::TearDown();
        CoUninitialize();
    }
};

TEST_F(LinkForScreenReaders, IsALinkWithItsTextForAName) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    const obtest::Accessible link = obtest::AccessibleOf(Child(kLink));
    EXPECT_EQ(ROLE_SYSTEM_LINK, link.role);
    EXPECT_EQ(STATE_SYSTEM_LINKED, link.state & STATE_SYSTEM_LINKED);
    EXPECT_EQ(L"About & more", link.name);
    EXPECT_NE(L"", link.action);
}

TEST_F(LinkForScreenReaders, HasItsWholeTextForANameWithoutAccessKeys) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    SetWindowLongPtrW(Child(kLink), GWL_STYLE,
                      GetWindowLongPtrW(Child(kLink), GWL_STYLE) | SS_NOPREFIX);
    EXPECT_EQ(L"About && &more", obtest::AccessibleOf(Child(kLink)).name);
}

TEST_F(LinkForScreenReaders, IsClickedByItsDefaultAction) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    ObLib::ComPtr<IAccessible> object;
    ASSERT_EQ(S_OK, AccessibleObjectFromWindow(Child(kLink), static_cast<DWORD>(OBJID_CLIENT),
                                               __uuidof(IAccessible),
                                               reinterpret_cast<void**>(object.Put())));
    VARIANT self{};
    self.vt = VT_I4;
    EXPECT_EQ(S_OK, object->accDoDefaultAction(self));
    EXPECT_EQ(Commands(), links_->commands) << "later";
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    EXPECT_EQ((Commands{{kLink, 0, Child(kLink)}}), links_->commands);
    links_->commands.clear();
    EXPECT_EQ(S_OK, object->accDoDefaultAction(self));
    EnableWindow(Child(kLink), FALSE);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    EXPECT_EQ(Commands(), links_->commands) << "disabled meanwhile";
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, object->accDoDefaultAction(self));
    DestroyWindow(links_->window);
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, object->accDoDefaultAction(self));
}

TEST_F(LinkForScreenReaders, IsNotClickedOnceItHasGone) {
    OpenLinks(OB_TEST_LINKS, {kLink});
    ObLib::ComPtr<IAccessible> object;
    ASSERT_EQ(S_OK, AccessibleObjectFromWindow(Child(kLink), static_cast<DWORD>(OBJID_CLIENT),
                                               __uuidof(IAccessible),
                                               reinterpret_cast<void**>(object.Put())));
    VARIANT self{};
    self.vt = VT_I4;
    EXPECT_EQ(S_OK, object->accDoDefaultAction(self));
    DestroyWindow(Child(kLink));
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    EXPECT_EQ(Commands(), links_->commands);
}

} // namespace
