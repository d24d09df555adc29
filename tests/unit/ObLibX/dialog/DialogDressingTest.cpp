// Which windows of a flat dialog get an object, with what, and in which order.
#include "ObLibX/src/dialog/ObXFlatDlg.h"

#include <commctrl.h>

#include <algorithm>

#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using namespace ObLibX;

// What happens to the objects, in order.
std::vector<std::wstring>& Happened() {
    static std::vector<std::wstring> happened;
    return happened;
}

int leftStock = 0; // id of the window that the maker leaves stock

class RecordingControl : public ObCustomControl {
public:
    RecordingControl(std::int32_t controlId, const ControlDescription* description)
        : ObCustomControl(controlId, nullptr, L"", 0) {
        Note(L"made", description != nullptr ? description->subclass.CStr() : L"-");
    }
    ~RecordingControl() override { Note(L"gone"); }
    void OnCreated() override { Note(L"created"); }
    void Attach(HWND attached) override {
        Note(L"attached");
        ObCustomControl::Attach(attached);
    }
    HBRUSH OnCtlColor(HDC, HWND) override {
        return static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    }
    bool OnMeasureItem(MEASUREITEMSTRUCT*) override { return true; }
    bool OnDrawItem(DRAWITEMSTRUCT*) override { return true; }
    void OnUpdateUIState(WORD action, WORD state) override {
        Note(L"ui", std::to_wstring(action * 10 + state));
    }
    void Refresh() override { Note(L"refreshed"); }

private:
    void Note(const std::wstring& what, const std::wstring& more = L"") {
        Happened().push_back(what + L" " + std::to_wstring(id) + (more.empty() ? L"" : L" ") +
                             more);
    }
};

std::unique_ptr<ObCustomControl> MakeRecording(HWND window, const ControlDescription* description) {
    if (GetDlgCtrlID(window) == leftStock) return nullptr;
    return std::make_unique<RecordingControl>(GetDlgCtrlID(window), description);
}

std::unique_ptr<ObCustomControl> MakeRecordingHeading(std::int32_t id, std::int32_t size,
                                                      std::int32_t weight) {
    EXPECT_EQ(11, size);
    EXPECT_EQ(700, weight);
    return std::make_unique<RecordingControl>(id, nullptr);
}

class FlatDialog : public RecordingDialog {
public:
    explicit FlatDialog(std::int32_t dialogTemplate) : RecordingDialog(dialogTemplate) {
        isFlat = true;
    }
};

class DialogDressing : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        SetControlMaker({&MakeRecording, &MakeRecordingHeading});
        Happened().clear();
        leftStock = 0;
    }
};

using Texts = std::vector<std::wstring>;

TEST_F(DialogDressing, MakesObjectsInZOrderAndAttachesThemInTheOrderOfIds) {
    UseDescription();
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.Open();
    const Texts expected{L"made 1003 blue", L"made 1002 -",   L"made 1004",
                         L"created 1003",   L"created 1002",  L"created 1004",
                         L"attached 1002",  L"attached 1003", L"attached 1004"};
    EXPECT_EQ(expected, Happened());
}

TEST_F(DialogDressing, GivesObjectsWhatTheDescriptionHas) {
    UseDescription();
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.Open();
    ObCustomControl* const described = dialog.GetControl(1003);
    ASSERT_NE(nullptr, described);
    EXPECT_EQ(dialog.GetItem(1003, true), described->window);
    EXPECT_STREQ(L"A tooltip from the string table", described->tooltipText.CStr());
    EXPECT_STREQ(L"data", described->itemData.CStr());
    EXPECT_STREQ(L"A1", dialog.GetControl(1004)->tooltipText.CStr());
    EXPECT_FALSE(dialog.GetControl(1002)->tooltipText.HasText());
    const HWND tips = FindWindowExW(nullptr, nullptr, L"tooltips_class32", nullptr);
    EXPECT_EQ(2, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
}

TEST_F(DialogDressing, LeavesOutTheId0AndWhatTheMakerLeavesStock) {
    leftStock = 1002;
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.Open();
    EXPECT_EQ(2u, dialog.Controls().size());
    EXPECT_EQ(nullptr, dialog.GetControl(0));
    EXPECT_EQ(nullptr, dialog.GetControl(1002));
}

TEST_F(DialogDressing, LeavesAloneWhatHasAnObject) {
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.AddControl(std::make_unique<RecordingControl>(1003, nullptr));
    Happened().clear();
    dialog.Open();
    const Texts expected{L"made 1002 -",   L"made 1004 -",   L"created 1002", L"created 1004",
                         L"attached 1002", L"attached 1003", L"attached 1004"};
    EXPECT_EQ(expected, Happened());
}

TEST_F(DialogDressing, HappensInNoOtherDialog) {
    RecordingDialog dialog(OB_TEST_DRESSED);
    dialog.Open();
    EXPECT_TRUE(Happened().empty());
}

TEST_F(DialogDressing, GivesNoMessagesToObjectsOfADialogThatIsNotFlat) {
    RecordingDialog dialog(OB_TEST_DRESSED);
    dialog.AddControl(std::make_unique<RecordingControl>(1002, nullptr));
    dialog.Open();
    Happened().clear();
    const HWND label = dialog.GetItem(1002, true);
    EXPECT_EQ(nullptr, dialog.OnCtlColorStatic(label, nullptr));
    EXPECT_EQ(nullptr, dialog.OnCtlColorBtn(label, nullptr));
    EXPECT_FALSE(dialog.OnDrawItem(1002, nullptr));
    EXPECT_FALSE(dialog.OnMeasureItem(1002, nullptr));
    dialog.OnUpdateUIState(1, 3);
    EXPECT_TRUE(Happened().empty());
}

TEST_F(DialogDressing, EndsTheProcessForTwoLabelsWithoutAnIdOfTheirOwn) {
    EXPECT_FATAL(FlatDialog(OB_TEST_LABELS).Open(), "ObLibX\\src\\ObXDlg.cpp");
}

TEST_F(DialogDressing, TakesOneLabelWithoutAnIdOfItsOwn) {
    for (const std::int32_t id : {OB_TEST_ONE_LABEL, OB_TEST_ONE_LABEL_EXTENDED}) {
        FlatDialog dialog(id);
        dialog.Open();
        ASSERT_EQ(1u, dialog.Controls().size()) << id;
        EXPECT_EQ(GetWindow(dialog.window, GW_CHILD), dialog.Controls().begin()->second->window);
    }
}

TEST_F(DialogDressing, TakesTheFirstOfTwoDescriptionsOfAControl) {
    UseDescription();
    FlatDialog dialog(OB_TEST_BUTTONS);
    dialog.Open();
    const auto isMade = [](const wchar_t* what) {
        return std::ranges::find(Happened(), what) != Happened().end();
    };
    EXPECT_TRUE(isMade(L"made 3000 first"));
    EXPECT_FALSE(isMade(L"made 3000 second"));
}

TEST_F(DialogDressing, EndsTheProcessForAnIdTwiceAndForAnObjectWithoutAWindow) {
    EXPECT_FATAL(
        {
            FlatDialog dialog(OB_TEST_DRESSED);
            dialog.AddControl(std::make_unique<RecordingControl>(5, nullptr));
            dialog.AddControl(std::make_unique<RecordingControl>(5, nullptr));
        },
        "ObLibX\\src\\ObXDlg.cpp");
    EXPECT_FATAL(
        {
            FlatDialog dialog(OB_TEST_DRESSED);
            dialog.AddControl(std::make_unique<RecordingControl>(5, nullptr));
            dialog.Open();
        },
        "ObLibX\\src\\ObXDlg.cpp");
}

TEST_F(DialogDressing, EndsWithTheDialogsObject) {
    {
        FlatDialog dialog(OB_TEST_DRESSED);
        dialog.Open();
        DestroyWindow(dialog.window);
        Happened().clear();
    }
    EXPECT_EQ(3u, Happened().size());
}

TEST_F(DialogDressing, GivesObjectsTheirMessages) {
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.Open();
    Happened().clear();
    dialog.OnColorChange();
    EXPECT_EQ((Texts{L"refreshed 1002", L"refreshed 1003", L"refreshed 1004"}), Happened());
    Happened().clear();
    dialog.OnUpdateUIState(1, 3);
    EXPECT_EQ((Texts{L"ui 1002 13", L"ui 1003 13", L"ui 1004 13"}), Happened());
    const HWND label = dialog.GetItem(1002, true);
    EXPECT_EQ(GetStockObject(BLACK_BRUSH), dialog.OnCtlColorStatic(label, nullptr));
    EXPECT_EQ(GetStockObject(BLACK_BRUSH), dialog.OnCtlColorBtn(label, nullptr));
    EXPECT_TRUE(dialog.OnDrawItem(1003, nullptr));
    EXPECT_TRUE(dialog.OnMeasureItem(1003, nullptr));
    EXPECT_FALSE(dialog.OnDrawItem(4242, nullptr));
    EXPECT_FALSE(dialog.OnMeasureItem(4242, nullptr));
}

// A sheet of three pages.
class Sheet : public ObPropSheet {
public:
    std::int32_t PageCount() const override { return count; }
    std::int32_t CurrentPage() const override { return page; }
    void SelectPage(std::int32_t selected) override { page = selected; }
    std::int32_t count = 3;
    std::int32_t page = 0;
};

TEST(PageSwitch, GoesRoundInBothDirections) {
    Sheet sheet;
    sheet.SelectPreviousPage();
    EXPECT_EQ(2, sheet.page);
    sheet.SelectNextPage();
    EXPECT_EQ(0, sheet.page);
    sheet.SelectNextPage();
    EXPECT_EQ(1, sheet.page);
    sheet.count = 0;
    sheet.SelectNextPage();
    EXPECT_EQ(1, sheet.page);
    EXPECT_EQ(&sheet, &ObPropPage(sheet).Sheet());
}

class SheetDialog : public FlatDialog, public Sheet {
public:
    SheetDialog() : FlatDialog(OB_TEST_DRESSED) {}
};

class PageDialog : public FlatDialog, public ObPropPage {
public:
    explicit PageDialog(ObPropSheet& sheet) : FlatDialog(OB_TEST_DRESSED), ObPropPage(sheet) {}
};

TEST_F(DialogDressing, FindsTheSheetThatTheDialogIsOrIsAPageOf) {
    SheetDialog sheet;
    sheet.Open();
    EXPECT_EQ(static_cast<ObPropSheet*>(&sheet), sheet.GetControl(1003)->ownerPage);
    PageDialog page(sheet);
    page.Open();
    EXPECT_EQ(static_cast<ObPropSheet*>(&sheet), page.GetControl(1003)->ownerPage);
    Sheet other;
    PageDialog elsewhere(sheet);
    elsewhere.ownerSheet = &other;
    elsewhere.Open();
    EXPECT_EQ(&other, elsewhere.GetControl(1003)->ownerPage) << "what the dialog has set counts";
    FlatDialog neither(OB_TEST_DRESSED);
    neither.Open();
    EXPECT_EQ(nullptr, neither.GetControl(1003)->ownerPage);
}

TEST_F(DialogDressing, TurnsThePageOnCtrlWithPageKeys) {
    Sheet sheet;
    FlatDialog dialog(OB_TEST_DRESSED);
    dialog.ownerSheet = &sheet;
    dialog.Open();
    const HWND button = dialog.GetItem(1003, true);
    SendMessageW(button, WM_KEYUP, VK_NEXT, 0);
    EXPECT_EQ(0, sheet.page) << "without Ctrl";
    BYTE keys[256] = {};
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    SendMessageW(button, WM_KEYDOWN, VK_NEXT, 0);
    EXPECT_EQ(0, sheet.page) << "on the key's way down";
    SendMessageW(button, WM_KEYUP, VK_NEXT, 0);
    EXPECT_EQ(1, sheet.page);
    SendMessageW(button, WM_KEYUP, VK_PRIOR, 0);
    EXPECT_EQ(0, sheet.page);
    keys[VK_CONTROL] = 0;
    SetKeyboardState(keys);
}

class GroupHeadings : public DialogDressing {
protected:
    static RECT PlaceOf(const ObXDlg& dialog, HWND window) {
        RECT rect{};
        GetWindowRect(window, &rect);
        MapWindowPoints(nullptr, dialog.window, reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }
    static std::wstring TextOf(HWND window) {
        wchar_t text[100] = {};
        GetWindowTextW(window, text, 100);
        return text;
    }
    static std::wstring ClassOf(HWND window) {
        wchar_t text[100] = {};
        GetClassNameW(window, text, 100);
        for (wchar_t& unit : text) unit = static_cast<wchar_t>(towlower(unit));
        return text;
    }
};

TEST_F(GroupHeadings, TakeThePlaceOfTheGroupsInAFlatDialog) {
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    RECT units{5, 20, 155, 28};
    MapDialogRect(dialog.window, &units);
    const HWND first = dialog.GetItem(1002, true);
    EXPECT_EQ(L"First group", TextOf(first)) << "1000 and 1001 are taken";
    EXPECT_EQ(L"Second group", TextOf(dialog.GetItem(1003, true)));
    EXPECT_EQ(L"Third group", TextOf(dialog.GetItem(1005, true)));
    EXPECT_EQ(L"static", ClassOf(first));
    const RECT place = PlaceOf(dialog, first);
    EXPECT_EQ(units.left, place.left);
    EXPECT_EQ(units.top, place.top);
    EXPECT_NEAR(units.right, place.right, 1) << "the system rounds position and size";
    EXPECT_EQ(units.bottom, place.bottom);
    EXPECT_TRUE(IsWindowVisible(first) || (GetWindowLongPtrW(first, GWL_STYLE) & WS_VISIBLE) != 0);
    EXPECT_NE(nullptr, dialog.GetControl(1002));
    EXPECT_EQ(first, dialog.GetControl(1002)->window);
}

TEST_F(GroupHeadings, KeepThePlaceInTheZOrderAndTheReadingDirection) {
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    const HWND first = dialog.GetItem(1002, true);
    EXPECT_EQ(dialog.GetItem(1001, true), GetWindow(first, GW_HWNDPREV));
    EXPECT_EQ(dialog.GetItem(1000, true), GetWindow(first, GW_HWNDNEXT));
    EXPECT_EQ(0, GetWindowLongPtrW(first, GWL_EXSTYLE) & WS_EX_RTLREADING);
    EXPECT_NE(0, GetWindowLongPtrW(dialog.GetItem(1003, true), GWL_EXSTYLE) & WS_EX_RTLREADING);
}

TEST_F(GroupHeadings, StillEndAGroupOfRadioButtons) {
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    const LONG_PTR kept = GetWindowLongPtrW(dialog.GetItem(1005, true), GWL_STYLE);
    EXPECT_EQ(static_cast<LONG_PTR>(WS_GROUP | WS_DISABLED), kept & (WS_GROUP | WS_DISABLED));
    EXPECT_EQ(0, GetWindowLongPtrW(dialog.GetItem(1002, true), GWL_STYLE) & WS_DISABLED);
}

TEST_F(GroupHeadings, KeepTheirObjectsWhenTheDialogIsOpenedAgain) {
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    ObCustomControl* const heading = dialog.GetControl(1002);
    DestroyWindow(dialog.window);
    dialog.Open();
    EXPECT_EQ(heading, dialog.GetControl(1002));
    EXPECT_EQ(dialog.GetItem(1002, true), heading->window);
}

TEST_F(GroupHeadings, AreBoldWithoutAMakerToo) {
    SetControlMaker({});
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog.GetItem(1002, true), WM_GETFONT, 0, 0)),
               sizeof font, &font);
    EXPECT_EQ(700, font.lfWeight);
}

TEST_F(GroupHeadings, AreBoldStaticsWithTheirOwnIdsElsewhere) {
    RecordingDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    const HWND third = dialog.GetItem(1005, true);
    EXPECT_EQ(L"static", ClassOf(third));
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(third, WM_GETFONT, 0, 0)), sizeof font, &font);
    EXPECT_EQ(700, font.lfWeight);
    EXPECT_EQ(nullptr, dialog.GetItem(1002, false)) << "no new ids";
    EXPECT_TRUE(dialog.Controls().empty());
    const RECT place = PlaceOf(dialog, third);
    EXPECT_EQ(TextHeightOf(third) + 2, place.bottom - place.top) << "no text is cut off";
}

TEST_F(GroupHeadings, AreFatalWithTheIdOfAnotherOneOrOfAControl) {
    EXPECT_FATAL(FlatDialog(OB_TEST_SAME_GROUPS).Open(), "ObLibX\\src\\ObXDlg.cpp");
    EXPECT_FATAL(FlatDialog(OB_TEST_GROUP_AND_EDIT).Open(), "ObLibX\\src\\ObXDlg.cpp");
}

TEST_F(GroupHeadings, HaveTheirOwnWindowAmongTextsThatNobodyNames) {
    FlatDialog dialog(OB_TEST_GROUP_0);
    for (int opening = 0; opening < 2; ++opening) {
        dialog.Open();
        const ObCustomControl* const heading = dialog.GetControl(0);
        ASSERT_NE(nullptr, heading);
        EXPECT_EQ(L"Group", TextOf(heading->window)) << opening;
        DestroyWindow(dialog.window);
    }
}

HFONT WINAPI MakeNoFont(const LOGFONTW*) { return nullptr; }

TEST_F(GroupHeadings, AreFatalWithoutAFontToMeasureTheirText) {
    EXPECT_FATAL(
        {
            const obtest::ImportPatch<decltype(&CreateFontIndirectW)> patch(
                "gdi32.dll", "CreateFontIndirectW", &MakeNoFont);
            RecordingDialog(OB_TEST_GROUPS).Open();
        },
        "ObLibX\\src\\GroupHeadings.cpp");
}

TEST_F(GroupHeadings, AreMadeOfGroupBoxesOnly) {
    for (const bool isFlat : {false, true}) {
        RecordingDialog dialog(OB_TEST_BUTTONS);
        dialog.isFlat = isFlat;
        dialog.Open();
        for (int kind = 0; kind < 16; ++kind) {
            const std::wstring expected = kind == BS_GROUPBOX ? L"static" : L"button";
            EXPECT_EQ(expected, ClassOf(dialog.GetItem(3000 + kind, true))) << kind;
        }
    }
}

TEST_F(GroupHeadings, OfHiddenGroupsAreHidden) {
    FlatDialog dialog(OB_TEST_BUTTONS);
    dialog.Open();
    EXPECT_EQ(0, GetWindowLongPtrW(dialog.GetItem(3020, true), GWL_STYLE) & WS_VISIBLE);
    EXPECT_NE(0, GetWindowLongPtrW(dialog.GetItem(3021, true), GWL_STYLE) & WS_VISIBLE);
}

TEST_F(GroupHeadings, GrowToTheirTextAndTwoPixelsWhereItNeedsMoreThanALine) {
    RecordingDialog dialog(OB_TEST_BUTTONS);
    dialog.Open();
    const HWND narrow = dialog.GetItem(3021, true);
    const RECT place = PlaceOf(dialog, narrow);
    EXPECT_EQ(TextHeightOf(narrow) + 2, place.bottom - place.top);
    RECT units{0, 0, 0, 8};
    MapDialogRect(dialog.window, &units);
    EXPECT_LT(units.bottom * 2, place.bottom - place.top);
}

TEST_F(GroupHeadings, LeaveOtherButtonsAsTheyAre) {
    FlatDialog dialog(OB_TEST_GROUPS);
    dialog.Open();
    EXPECT_EQ(L"button", ClassOf(dialog.GetItem(1000, true)));
    EXPECT_EQ(L"button", ClassOf(dialog.GetItem(1, true)));
}

} // namespace
