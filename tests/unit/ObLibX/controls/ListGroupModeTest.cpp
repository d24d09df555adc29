// The flat list view: its group mode.
#include <algorithm>

#include "ObLibX/src/dialog/WindowSubclass.h"
#include "tests/support/Allocations.h"
#include "tests/unit/ObLibX/controls/ListFixture.h"

namespace {

using namespace ObLibX;
using namespace listtest;

// Bits of group mode.
constexpr DWORD kModeStyles = 0x410060;

class GroupMode : public ListsTest {};

TEST_F(GroupMode, IsOnInADetailsViewFromTheBeginning) {
    EXPECT_TRUE(List(1001).IsGroupViewOn());
    EXPECT_TRUE(List(1002).IsGroupViewOn());
    EXPECT_FALSE(List(1003).IsGroupViewOn()) << "icons";
    EXPECT_EQ(kModeStyles, StockStyle());
    EXPECT_EQ(0u, StockStyle(1003));
    EXPECT_EQ(4u, themes.size());
    EXPECT_EQ(L"none", themes[0]);
}

TEST_F(GroupMode, IsTurnedOffAndOnByItsMessage) {
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_EQ(4u, themes.size()) << "it is on already";
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_FALSE(List().IsGroupViewOn());
    EXPECT_EQ(0u, StockStyle());
    EXPECT_EQ(0, RowImages());
    EXPECT_EQ(L"Explorer", themes.back());
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_EQ(5u, themes.size());
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_TRUE(List().IsGroupViewOn());
    EXPECT_EQ(kModeStyles, StockStyle());
    EXPECT_EQ(L"none", themes.back());
    printf("The grouping itself is the system's, which the system of this run doesn't have.\n");
}

TEST_F(GroupMode, SetsTheHeightOfRowsByEmptyImages) {
    EXPECT_EQ(Scale(18), RowImages());
    GiveChecks();
    EXPECT_EQ(Scale(24), RowImages());
    Send(1001, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_GRIDLINES, LVS_EX_GRIDLINES);
    EXPECT_EQ(Scale(24), RowImages()) << "another style";
    Send(1001, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
    EXPECT_EQ(Scale(18), RowImages());
    const auto rows = reinterpret_cast<HIMAGELIST>(Stock(1001, LVM_GETIMAGELIST, LVSIL_SMALL));
    EXPECT_EQ(0, ImageList_GetImageCount(rows));
    int width = 0;
    int height = 0;
    ImageList_GetIconSize(rows, &width, &height);
    EXPECT_EQ(1, width);
    Insert(L"One");
    EXPECT_LE(Scale(18), RowArea(0).Height());
    EXPECT_GT(Scale(24), RowArea(0).Height());
}

TEST_F(GroupMode, KeepsTheClientsSmallImages) {
    const ObLib::UniqueImageList first = ColouredImages(16, 1, 0);
    const ObLib::UniqueImageList second = ColouredImages(16, 1, 0);
    const auto set = [&](HIMAGELIST images) {
        return reinterpret_cast<HIMAGELIST>(
            Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images)));
    };
    const auto get = [&] {
        return reinterpret_cast<HIMAGELIST>(Send(1001, LVM_GETIMAGELIST, LVSIL_SMALL));
    };
    EXPECT_EQ(nullptr, get());
    EXPECT_EQ(nullptr, set(first.Get()));
    EXPECT_EQ(first.Get(), get());
    EXPECT_EQ(Scale(18), RowImages());
    EXPECT_EQ(first.Get(), set(second.Get()));
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_EQ(second.Get(), get()) << "the control's own again";
    EXPECT_EQ(16, RowImages());
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_EQ(second.Get(), get()) << "those from before stay the client's";
    EXPECT_EQ(Scale(18), RowImages());
    EXPECT_EQ(second.Get(), set(nullptr));
    EXPECT_EQ(nullptr, get());
}

TEST_F(GroupMode, LeavesOtherImagesToTheControl) {
    const ObLib::UniqueImageList images = ColouredImages(32, 1, 0);
    Send(1001, LVM_SETIMAGELIST, LVSIL_NORMAL, reinterpret_cast<LPARAM>(images.Get()));
    EXPECT_EQ(reinterpret_cast<LRESULT>(images.Get()), Stock(1001, LVM_GETIMAGELIST, LVSIL_NORMAL));
    EXPECT_EQ(reinterpret_cast<LRESULT>(images.Get()), Send(1001, LVM_GETIMAGELIST, LVSIL_NORMAL));
    Send(1001, LVM_SETIMAGELIST, LVSIL_NORMAL, 0);
}

// A list destroys its images with itself, unless they are shared; those of the rows aren't its own.
TEST_F(GroupMode, LetsTheListDestroyTheClientsImagesAlone) {
    const HIMAGELIST own = ColouredImages(16, 1, 0).Release();
    const ObLib::UniqueImageList shared = ColouredImages(16, 1, 0);
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(own));
    Send(1004, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(shared.Get()));
    const auto rows = reinterpret_cast<HIMAGELIST>(Stock(1001, LVM_GETIMAGELIST, LVSIL_SMALL));
    DestroyWindow(dialog_->window);
    EXPECT_FALSE(List().IsGroupViewOn());
    EXPECT_FALSE(IsAlive(own));
    EXPECT_TRUE(IsAlive(shared.Get()));
    EXPECT_TRUE(IsAlive(rows));
    dialog_->Create(nullptr);
    EXPECT_EQ(reinterpret_cast<LRESULT>(rows), Stock(1001, LVM_GETIMAGELIST, LVSIL_SMALL));
}

// A client that sees nothing of the mode: what it sets, gets and is answered is as on a stock list.
TEST_F(GroupMode, AnswersAboutStylesAsAStockListDoes) {
    const ObLib::UniqueWindow stock(CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP | LVS_REPORT, 0,
                                                    0, 90, 90, nullptr, nullptr, nullptr, nullptr));
    const struct {
        WPARAM mask;
        LPARAM style;
    } rows[] = {{LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES},
                {LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT},
                {LVS_EX_FULLROWSELECT, 0},
                {0, LVS_EX_GRIDLINES | LVS_EX_LABELTIP},
                {LVS_EX_GRIDLINES, LVS_EX_CHECKBOXES},
                {0, 0}};
    for (const auto& row : rows) {
        const auto ask = [&](HWND window) {
            const LRESULT before =
                SendMessageW(window, LVM_SETEXTENDEDLISTVIEWSTYLE, row.mask, row.style);
            return std::pair(before, SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
        };
        EXPECT_EQ(ask(stock.Get()), ask(Window())) << row.mask << " " << row.style;
        EXPECT_EQ(kModeStyles, StockStyle() & kModeStyles) << "the mode needs them";
        EXPECT_EQ(0u, StockStyle() & LVS_EX_CHECKBOXES);
    }
}

TEST_F(GroupMode, GivesTheClientsStylesBack) {
    Send(1001, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES);
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_EQ(DWORD{LVS_EX_CHECKBOXES | LVS_EX_GRIDLINES}, StockStyle());
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_EQ(kModeStyles | LVS_EX_GRIDLINES, StockStyle());
    EXPECT_EQ(Scale(24), RowImages()) << "the client's check boxes are taken over";
}

TEST_F(GroupMode, StartsInsertedRowsUnchecked) {
    GiveChecks();
    LVITEMW item{};
    wchar_t text[] = L"One";
    item.mask = LVIF_TEXT | LVIF_STATE | LVIF_PARAM;
    item.pszText = text;
    item.lParam = 77;
    item.state = INDEXTOSTATEIMAGEMASK(2) | LVIS_SELECTED;
    item.stateMask = LVIS_STATEIMAGEMASK | LVIS_SELECTED;
    const LVITEMW before = item;
    EXPECT_EQ(0, Send(1001, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_EQ(UINT{LVIS_SELECTED}, StateOf(0, LVIS_SELECTED)) << "the rest of its state";
    EXPECT_EQ(before.state, item.state);
    EXPECT_EQ(before.mask, item.mask);
    LVITEMA narrow{};
    char bytes[] = "Two";
    narrow.mask = LVIF_TEXT;
    narrow.iItem = 1;
    narrow.pszText = bytes;
    narrow.state = ~0u;
    EXPECT_EQ(1, Send(1001, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&narrow)));
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_EQ(0u, StateOf(1, LVIS_SELECTED | LVIS_CUT)) << "a state without its bit in the mask";
    EXPECT_EQ(-1, Send(1001, LVM_INSERTITEMW, 0, 0));
}

TEST_F(GroupMode, StartsRowsWithoutAStateUncheckedAndKeepsTheOthers) {
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    for (const wchar_t* const text : {L"None", L"Off", L"On"}) Insert(text);
    for (const int row : {0, 1, 2}) {
        SetState(row, INDEXTOSTATEIMAGEMASK(row), LVIS_STATEIMAGEMASK);
        ASSERT_EQ(static_cast<RowCheck>(row), Check(row));
    }
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_EQ(RowCheck::On, Check(2));
}

TEST_F(GroupMode, KeepsChecksThroughItsEnd) {
    GiveChecks();
    for (const wchar_t* const text : {L"Off", L"On"}) Insert(text);
    SetCheckOfRow(Window(), 1, RowCheck::On);
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_EQ(RowCheck::On, Check(1));
    Send(1001, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_EQ(RowCheck::On, Check(1));
}

TEST_F(GroupMode, StartsRowsUncheckedWhenCheckBoxesCome) {
    Insert(L"One");
    SetState(0, 0, LVIS_STATEIMAGEMASK);
    ASSERT_EQ(RowCheck::None, Check(0));
    GiveChecks();
    EXPECT_EQ(RowCheck::Off, Check(0));
}

// ---- Other views

class GroupModeInViews : public ListsTest {
protected:
    void SetUp() override {
        ListsTest::SetUp();
        GiveChecks(1004);
        Send(1004, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images_.Get()));
        for (const wchar_t* const text : {L"Off", L"On"}) Insert(text, 1004);
        SetCheckOfRow(Window(1004), 1, RowCheck::On);
    }
    void ExpectInUse() const {
        EXPECT_TRUE(List(1004).IsGroupViewOn());
        EXPECT_EQ(kModeStyles, StockStyle(1004));
        EXPECT_EQ(Scale(24), RowImages(1004));
        ExpectChecks();
    }
    void ExpectTheControlsOwn() const {
        EXPECT_EQ(DWORD{LVS_EX_CHECKBOXES}, StockStyle(1004));
        EXPECT_EQ(reinterpret_cast<LRESULT>(images_.Get()),
                  Stock(1004, LVM_GETIMAGELIST, LVSIL_SMALL));
        EXPECT_EQ(L"Explorer", themes.back());
        ExpectChecks();
    }
    void ExpectChecks() const {
        EXPECT_EQ(RowCheck::Off, Check(0, 1004));
        EXPECT_EQ(RowCheck::On, Check(1, 1004));
    }
    ObLib::UniqueImageList images_ = ColouredImages(16, 1, 0);
};

TEST_F(GroupModeInViews, GivesTheControlItsOwnInAViewWithoutRows) {
    ExpectInUse();
    for (const WPARAM view : {LV_VIEW_ICON, LV_VIEW_SMALLICON, LV_VIEW_LIST}) {
        SCOPED_TRACE(view);
        EXPECT_EQ(1, Send(1004, LVM_SETVIEW, view));
        EXPECT_TRUE(List(1004).IsGroupViewOn());
        ExpectTheControlsOwn();
        EXPECT_EQ(1, Send(1004, LVM_SETVIEW, LV_VIEW_DETAILS));
        ExpectInUse();
        EXPECT_EQ(L"none", themes.back());
    }
}

TEST_F(GroupModeInViews, FollowsAViewThatComesByStyle) {
    const LONG_PTR style = GetWindowLongPtrW(Window(1004), GWL_STYLE);
    SetWindowLongPtrW(Window(1004), GWL_STYLE, (style & ~LONG_PTR{LVS_TYPEMASK}) | LVS_LIST);
    ExpectTheControlsOwn();
    SetWindowLongPtrW(Window(1004), GWL_STYLE, style);
    ExpectInUse();
}

TEST_F(GroupModeInViews, StaysWhereAViewIsRefused) {
    EXPECT_EQ(-1, Send(1004, LVM_SETVIEW, 77));
    ExpectInUse();
}

TEST_F(GroupModeInViews, ComesWithTheDetailsWhereItWasTurnedOnBefore) {
    Send(1003, LVM_ENABLEGROUPVIEW, TRUE);
    EXPECT_TRUE(List(1003).IsGroupViewOn());
    EXPECT_EQ(0u, StockStyle(1003));
    EXPECT_EQ(0, RowImages(1003));
    Send(1003, LVM_SETVIEW, LV_VIEW_DETAILS);
    EXPECT_EQ(kModeStyles, StockStyle(1003));
    EXPECT_EQ(Scale(18), RowImages(1003));
}

TEST_F(GroupModeInViews, EndsInAnyView) {
    Send(1004, LVM_SETVIEW, LV_VIEW_LIST);
    Send(1004, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_FALSE(List(1004).IsGroupViewOn());
    Send(1004, LVM_SETVIEW, LV_VIEW_DETAILS);
    ExpectTheControlsOwn();
}

TEST_F(GroupModeInViews, LeavesTheSpaceBarToTheControl) {
    const auto heard = [&](WPARAM view) {
        Send(1004, LVM_SETVIEW, view);
        SetState(0, LVIS_FOCUSED, LVIS_FOCUSED, 1004);
        Heard().codes.clear();
        Send(1004, WM_KEYDOWN, VK_SPACE, 1);
        return std::ranges::count(Heard().codes, std::pair<int, int>(1004, LVN_KEYDOWN));
    };
    EXPECT_EQ(0, heard(LV_VIEW_DETAILS));
    EXPECT_EQ(1, heard(LV_VIEW_LIST));
}

// What the list's own procedure gets of it.
int charactersPassed = 0;
LRESULT CALLBACK CountCharacters(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                 DWORD_PTR object) {
    if (message == WM_CHAR) ++charactersPassed;
    if (message == WM_NCDESTROY) {
        RemoveSubclass(window, &CountCharacters, reinterpret_cast<void*>(object));
    }
    return CallNextSubclass(window, message, wParam, lParam);
}

TEST_F(GroupModeInViews, LeavesTheCharacterOfTheSpaceBarToTheControl) {
    const HWND window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | LVS_REPORT, 0, 0, 90, 90,
                                        dialog_->window, nullptr, nullptr, nullptr);
    AddSubclass(window, &CountCharacters, this);
    ObFlatListView list(1, {}, nullptr);
    list.Attach(window);
    SendMessageW(window, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
    charactersPassed = 0;
    SendMessageW(window, WM_CHAR, L' ', 1);
    EXPECT_EQ(0, charactersPassed) << "it has flipped a box";
    SendMessageW(window, LVM_SETVIEW, LV_VIEW_LIST, 0);
    SendMessageW(window, WM_CHAR, L' ', 1);
    EXPECT_EQ(1, charactersPassed);
    DestroyWindow(window);
}

// ---- Without memory

TEST_F(GroupMode, StaysAsItIsWithoutMemory) {
    GiveChecks();
    for (const wchar_t* const text : {L"Off", L"On"}) Insert(text);
    SetCheckOfRow(Window(), 1, RowCheck::On);
    const auto changed = [&](UINT message, WPARAM wParam, LPARAM lParam) {
        const obtest::FailingAllocations failing({});
        Send(1001, message, wParam, lParam);
        return failing.Failed();
    };
    const std::size_t before = themes.size();
    EXPECT_TRUE(changed(LVM_ENABLEGROUPVIEW, FALSE, 0));
    EXPECT_TRUE(List().IsGroupViewOn());
    EXPECT_EQ(kModeStyles, StockStyle());
    EXPECT_EQ(Scale(24), RowImages());
    EXPECT_EQ(before, themes.size());
    EXPECT_EQ(RowCheck::On, Check(1));
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_TRUE(changed(LVM_ENABLEGROUPVIEW, TRUE, 0));
    EXPECT_FALSE(List().IsGroupViewOn());
    EXPECT_EQ(DWORD{LVS_EX_CHECKBOXES}, StockStyle());
    EXPECT_EQ(0, RowImages());
    EXPECT_EQ(RowCheck::On, Check(1));
}

// ---- Many rows

// A control with so many rows of its own: to insert them takes the system minutes here.
class CrowdedList {
public:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR, DWORD_PTR object) {
        auto& list = *reinterpret_cast<CrowdedList*>(object);
        const auto& item = *reinterpret_cast<const LVITEMW*>(lParam);
        switch (message) {
        case LVM_GETITEMCOUNT:
            return static_cast<LRESULT>(list.states.size());
        case LVM_GETITEMSTATE:
            return list.states[wParam];
        case LVM_SETITEMSTATE:
            list.states[wParam] = item.state;
            return TRUE;
        case LVM_SETEXTENDEDLISTVIEWSTYLE:
            std::ranges::fill(list.states, 0); // as the control does with its check boxes
            break;
        case WM_NCDESTROY:
            RemoveSubclass(window, &CrowdedList::Procedure, &list);
            break;
        default:
            break;
        }
        return CallNextSubclass(window, message, wParam, lParam);
    }
    std::vector<UINT> states = std::vector<UINT>(100'000);
};

TEST_F(GroupMode, KeepsTheChecksOfAHundredThousandRows) {
    CrowdedList crowd;
    for (std::size_t row = 0; row < crowd.states.size(); ++row) {
        crowd.states[row] = INDEXTOSTATEIMAGEMASK(row % 3);
    }
    const HWND window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | LVS_REPORT, 0, 0, 90, 90,
                                        dialog_->window, nullptr, nullptr, nullptr);
    AddSubclass(window, &CrowdedList::Procedure, &crowd);
    const auto wrong = [&] {
        int found = 0;
        for (std::size_t row = 0; row < crowd.states.size(); ++row) {
            const UINT expected = INDEXTOSTATEIMAGEMASK(std::max<std::size_t>(row % 3, 1));
            found += crowd.states[row] != expected ? 1 : 0;
        }
        return found;
    };
    {
        ObFlatListView list(1, {}, nullptr);
        list.Attach(window);
        EXPECT_TRUE(list.IsGroupViewOn());
        EXPECT_EQ(0, wrong());
        list.TurnOffGroupView();
        EXPECT_EQ(0, wrong());
    }
    DestroyWindow(window);
}

} // namespace
