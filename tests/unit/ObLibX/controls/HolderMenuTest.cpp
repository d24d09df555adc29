// The context menu of a hosted bar: its items by bar and mode, and what each does.
#include "ObLibX/src/controls/HolderMenu.h"

#include "tests/unit/ObLibX/controls/HostFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

class HostMenu : public HostTest {
protected:
    static HostMessage Sent(UINT message, int code, int value = 0) {
        return {message, MAKEWPARAM(code, value), 0};
    }
    static std::vector<MenuItem> Items(const std::vector<const wchar_t*>& texts, UINT mode,
                                       const wchar_t* modeText) {
        return {{63000, texts[0]}, {0, L""},          {63001, texts[1]}, {63002, texts[2]},
                {0, L""},          {63003, texts[3]}, {63004, texts[4]}, {0, L""},
                {63005, texts[5]}, {63006, texts[6]}, {0, L""},          {mode, modeText}};
    }
    static std::vector<MenuItem> OfVertical(UINT mode, const wchar_t* text) {
        return Items({L"Scroll Here", L"Top", L"Bottom", L"Page Up", L"Page Down", L"Scroll Up",
                      L"Scroll Down"},
                     mode, text);
    }
    static std::vector<MenuItem> OfHorizontal(UINT mode, const wchar_t* text) {
        return Items({L"Scroll Here", L"Left Edge", L"Right Edge", L"Page Left", L"Page Right",
                      L"Scroll Left", L"Scroll Right"},
                     mode, text);
    }
};

TEST_F(HostMenu, HasTheTextsOfItsBarAndMode) {
    ChooseFromMenu(HolderKind::Vertical, 0);
    EXPECT_TRUE(OfVertical(63008, L"Hide Scrollbars") == hostFakes.menu);
    ChooseFromMenu(HolderKind::Horizontal, 0);
    EXPECT_TRUE(OfHorizontal(63008, L"Hide Scrollbars") == hostFakes.menu);
    bars_.SetAutoHide(true);
    ChooseFromMenu(HolderKind::Vertical, 0);
    EXPECT_TRUE(OfVertical(63007, L"Show Scrollbars") == hostFakes.menu);
    ChooseFromMenu(HolderKind::Horizontal, 0);
    EXPECT_TRUE(OfHorizontal(63007, L"Show Scrollbars") == hostFakes.menu);
    EXPECT_TRUE(sent_.empty()) << "nothing was chosen";
}

TEST_F(HostMenu, DoesWhatItsItemsSay) {
    const struct {
        UINT command;
        int code;
    } rows[] = {{63001, SB_TOP},      {63002, SB_BOTTOM}, {63003, SB_PAGEUP},
                {63004, SB_PAGEDOWN}, {63005, SB_LINEUP}, {63006, SB_LINEDOWN}};
    for (const auto& row : rows) {
        sent_.clear();
        ChooseFromMenu(HolderKind::Vertical, row.command);
        EXPECT_EQ((std::vector<HostMessage>{Sent(WM_VSCROLL, row.code)}), sent_);
        sent_.clear();
        ChooseFromMenu(HolderKind::Horizontal, row.command);
        EXPECT_EQ((std::vector<HostMessage>{Sent(WM_HSCROLL, row.code)}), sent_);
    }
}

TEST_F(HostMenu, ScrollsToTheClickByItsFirstItem) {
    LetItScroll();
    const ScrollLayout layout = VerticalBar().Layout();
    ChooseFromMenu(HolderKind::Vertical, 63000, 5, layout.track.top);
    EXPECT_EQ((std::vector<HostMessage>{Sent(WM_VSCROLL, SB_THUMBTRACK, 0)}), sent_);
    EXPECT_EQ(0, VerticalBar().Position());
    sent_.clear();
    ChooseFromMenu(HolderKind::Vertical, 63000, 5, layout.track.top);
    EXPECT_TRUE(sent_.empty()) << "it is there already";
    ChooseFromMenu(HolderKind::Vertical, 63000, 5, 5000);
    EXPECT_EQ(80, VerticalBar().Position()) << "past the end is the end";
}

TEST_F(HostMenu, ChangesTheModeAfterAMessageToTheHost) {
    onHost_ = [this](const HostMessage&) { EXPECT_EQ(bars_.IsAutoHide(), sent_.size() == 2); };
    ChooseFromMenu(HolderKind::Vertical, 63008);
    EXPECT_TRUE(bars_.IsAutoHide());
    EXPECT_EQ((std::vector<HostMessage>{{12089, 0, 0}}), sent_);
    EXPECT_EQ(None(), Shown());
    ChooseFromMenu(HolderKind::Horizontal, 63007);
    EXPECT_FALSE(bars_.IsAutoHide());
    EXPECT_EQ((std::vector<HostMessage>{{12089, 0, 0}, {12089, 0, 1}}), sent_);
    EXPECT_EQ(All(), Shown());
}

TEST_F(HostMenu, OpensAtTheClick) {
    ChooseFromMenu(HolderKind::Vertical, 0, 3, 70);
    POINT clicked{3, 70};
    ClientToScreen(VerticalBar().window, &clicked);
    EXPECT_EQ(clicked.x, hostFakes.menuPoint.x);
    EXPECT_EQ(clicked.y, hostFakes.menuPoint.y);
}

TEST_F(HostMenu, OpensByTheKeyboardOnTheHost) {
    for (const bool isAutoHide : {false, true}) {
        bars_.SetAutoHide(isAutoHide);
        hostFakes.menu.clear();
        AskForMenu(host_);
        EXPECT_TRUE((isAutoHide ? OfVertical(63007, L"Show Scrollbars")
                                : OfVertical(63008, L"Hide Scrollbars")) == hostFakes.menu);
        RECT bar{};
        GetWindowRect(VerticalBar().window, &bar);
        EXPECT_TRUE(PtInRect(&bar, hostFakes.menuPoint)) << "in the middle of the bar";
    }
    hostFakes.chosen = 63007;
    AskForMenu(host_);
    EXPECT_FALSE(bars_.IsAutoHide());
    EXPECT_EQ(All(), Shown());
    EXPECT_EQ((std::vector<HostMessage>{{12089, 0, 1}}), sent_);
}

TEST_F(HostMenu, OpensByTheKeyboardForTheBarThatTheHostHas) {
    ShowScrollBar(host_, SB_VERT, FALSE);
    AskForMenu(host_);
    EXPECT_TRUE(OfHorizontal(63008, L"Hide Scrollbars") == hostFakes.menu);
    ShowScrollBar(host_, SB_HORZ, FALSE);
    AskForMenu(host_);
    EXPECT_EQ(1, hostFakes.menusShown) << "no bar";
}

// Of the host's own, or of its dialog: menus that one of the two windows is told of.
TEST_F(HostMenu, LeavesTheKeyboardToAMenuThatTheHostHasAlready) {
    const ObLib::UniqueMenu own(CreatePopupMenu());
    for (const HWND owner : {host_, parent_.Get()}) {
        hostFakes.menusShown = 0;
        onContextMenu_ = [&] { TrackPopupMenu(own.Get(), 0, 0, 0, 0, owner, nullptr); };
        AskForMenu(host_);
        EXPECT_EQ(1, hostFakes.menusShown);
    }
    onContextMenu_ = [] {};
    AskForMenu(host_);
    EXPECT_EQ(2, hostFakes.menusShown) << "it opened none";
}

TEST_F(HostMenu, OpensForNoClickOnTheHostAndForNoOtherWindow) {
    POINT point{20, 20};
    ClientToScreen(host_, &point);
    SendMessageW(host_, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(host_),
                 MAKELPARAM(point.x, point.y));
    SendMessageW(host_, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(parent_.Get()), -1);
    EXPECT_EQ(0, hostFakes.menusShown);
}

TEST_F(HostMenu, OpensNotForAHostThatGoesWhenItIsAsked) {
    onContextMenu_ = [this] { DestroyWindow(host_); };
    AskForMenu(host_);
    EXPECT_EQ(0, hostFakes.menusShown);
    host_ = MakeHost(0, 0);
    bars_.Attach(host_);
    onContextMenu_ = [this] { parent_.Reset(); };
    AskForMenu(host_);
    EXPECT_EQ(0, hostFakes.menusShown);
}

TEST_F(HostMenu, ChangesTheModeOfAHostThatGoesAtTheMessage) {
    onHost_ = [this](const HostMessage&) { DestroyWindow(host_); };
    ChooseFromMenu(HolderKind::Vertical, 63008);
    EXPECT_EQ(nullptr, bars_.Host());
    EXPECT_TRUE(bars_.IsAutoHide()) << "for the next host";
    EXPECT_TRUE(hostFakes.animations.empty());
    EXPECT_EQ(0, CountHolders());
}

TEST_F(HostMenu, DoesNothingForABarThatHasGoneMeanwhile) {
    hostFakes.onMenu = [this] { DestroyWindow(host_); };
    ChooseFromMenu(HolderKind::Vertical, 63008);
    EXPECT_FALSE(bars_.IsAutoHide());
    EXPECT_TRUE(sent_.empty());
}

TEST_F(HostMenu, DoesNothingForAnotherHostThatCameMeanwhile) {
    hostFakes.onMenu = [this] {
        DestroyWindow(host_);
        host_ = MakeHost(0, 0);
        bars_.Attach(host_);
    };
    ChooseFromMenu(HolderKind::Vertical, 63001);
    EXPECT_TRUE(sent_.empty());
}

TEST(RunBarCommand, IsFalseForWhatIsNotOfTheBar) {
    ObFlatScrollbar bar(1, ScrollOrientation::Vertical);
    for (const std::uint32_t command : {0u, 62999u, 63007u, 63008u, 63009u}) {
        EXPECT_FALSE(RunBarCommand(bar, command)) << command;
    }
}

} // namespace
