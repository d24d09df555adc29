// The dressing of a dialog: which objects its windows get, and with what of the description.
#include "ObLibX/src/controls/FlatControls.h"

#include <commctrl.h>

#include <string>
#include <typeinfo>

#include "ObLibX/src/controls/DefaultButton.h"
#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/ObCustCombo.h"
#include "ObLibX/src/controls/ObCustDate.h"
#include "ObLibX/src/controls/ObCustList.h"
#include "ObLibX/src/controls/ObCustPassword.h"
#include "ObLibX/src/controls/ObCustProgress.h"
#include "ObLibX/src/controls/ObCustSlider.h"
#include "ObLibX/src/controls/ObCustSpin.h"
#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/controls/ObCustSwitch.h"
#include "ObLibX/src/controls/ObCustToggle.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/Palette.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/EditFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace fieldtest;

class FlatControlsTest : public FieldsTest {};

TEST_F(FlatControlsTest, DressEditsAndPasswords) {
    Open(OB_TEST_FIELDS, false);
    EXPECT_TRUE(Is<ObFlatEdit>(1001) && !Is<ObFlatPassword>(1001));
    EXPECT_TRUE(Is<ObFlatEdit>(1002));
    EXPECT_TRUE(Is<ObFlatPassword>(1003));
    EXPECT_STREQ(L"Your name", Object<ObFlatEdit>(1001).cueText.CStr());
    EXPECT_STREQ(L"Your password", Object<ObFlatEdit>(1003).cueText.CStr());
    EXPECT_FALSE(Object<ObFlatEdit>(1002).cueText.HasText());
    EXPECT_EQ(nullptr, dialog_->GetControl(7777)) << "described, but there is no such window";
}

TEST_F(FlatControlsTest, GiveAnEditTheBaseFontWhateverItsDescription) {
    Open(OB_TEST_FIELDS, false);
    EXPECT_STREQ(L"Segoe UI", Object<ObFlatEdit>(1001).fontName.CStr());
    EXPECT_EQ(9, Object<ObFlatEdit>(1001).fontSize);
}

TEST_F(FlatControlsTest, GiveATextItsFont) {
    Open(OB_TEST_TEXTS, false);
    const auto& plain = Object<ObFlatStaticText>(1001);
    EXPECT_EQ(GetFont(9, L"Segoe UI", 400, 0), plain.GetControlFont());
    EXPECT_EQ(GetFont(8, L"Arial", 700, 1), Object<ObFlatStaticText>(1002).GetControlFont());
    EXPECT_EQ(GetFont(9, L"Segoe UI", 600, 0), Object<ObFlatStaticText>(1006).GetControlFont());
}

TEST_F(FlatControlsTest, GiveATextItsColour) {
    Open(OB_TEST_TEXTS, false);
    EXPECT_EQ(0u, Object<ObFlatStaticText>(1001).textColor);
    EXPECT_EQ(GetPaletteColor(14), Object<ObFlatStaticText>(1003).textColor);
    EXPECT_EQ(GetPaletteColor(14), Object<ObFlatStaticText>(1004).textColor);
    EXPECT_EQ(255u, Object<ObFlatStaticText>(1005).textColor);
    EXPECT_EQ(0u, Object<ObFlatStaticText>(1007).textColor);
    for (const int id : {1001, 1002, 1003, 1005}) {
        EXPECT_EQ(0xFFFFFFu, Object<ObFlatStaticText>(id).GetRawFillColor());
    }
}

TEST_F(FlatControlsTest, TakeTheSystemsHotColourForAHeading) {
    isContrast = true; // palette 14 is a colour of the system then
    const SystemColor heading(COLOR_BTNTEXT, 0x00FFFF);
    {
        const SystemColor hot(COLOR_HOTLIGHT, 255);
        Open(OB_TEST_TEXTS, false);
        EXPECT_EQ(0x00FFFFu, Object<ObFlatStaticText>(1005).textColor) << "equals the hot colour";
        EXPECT_EQ(0x00FFFFu, Object<ObFlatStaticText>(1003).textColor) << "HOTLIGHT";
        EXPECT_EQ(0u, Object<ObFlatStaticText>(1001).textColor);
    }
    const SystemColor hot(COLOR_HOTLIGHT, 0);
    Open(OB_TEST_TEXTS, false);
    EXPECT_EQ(0x00FFFFu, Object<ObFlatStaticText>(1001).textColor) << "no description, hot is 0";
    EXPECT_EQ(0x00FFFFu, Object<ObFlatStaticText>(1007).textColor) << "its colour is 0";
}

TEST_F(FlatControlsTest, MakeHeadingsOfGroupBoxes) {
    Open(OB_TEST_TEXTS, false);
    const auto& heading = Object<ObFlatStaticText>(1008);
    EXPECT_EQ(700, heading.fontWeight);
    EXPECT_EQ(GetPaletteColor(14), heading.textColor);
    EXPECT_EQ(9, heading.fontSize) << "from 11, as it is too narrow";
    EXPECT_GT(RectOf(1008).Height(), FromUnits(0, 0, 0, 8).Height());
}

TEST_F(FlatControlsTest, LeaveOtherWindowsAlone) {
    Open(OB_TEST_TEXTS, false);
    EXPECT_EQ(nullptr, dialog_->GetControl(1009));
    EXPECT_EQ(nullptr, dialog_->GetControl(0));
    EXPECT_STREQ(L"data", dialog_->GetControl(1007)->itemData.CStr());
}

TEST_F(FlatControlsTest, DressADialogThatIsOpenedAgain) {
    Open(OB_TEST_FIELDS);
    ObCustomControl* const first = dialog_->GetControl(1003);
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    EXPECT_EQ(first, dialog_->GetControl(1003));
    EXPECT_EQ(Item(1003), first->window);
    EXPECT_EQ(dialog_->window, GetParent(Object<ObFlatPassword>(1003).eyeButton));
}

TEST_F(FlatControlsTest, EndTheProcessForTwoLabelsWithOneId) {
    EXPECT_FATAL(Open(OB_TEST_SAME_IDS, false), "ObLibX\\src\\ObXDlg.cpp");
}

TEST_F(FlatControlsTest, DressBars) {
    Open(OB_TEST_CLASSES, false);
    EXPECT_EQ(typeid(ObFlatScrollbar), typeid(*dialog_->GetControl(1001)));
    EXPECT_EQ(ScrollOrientation::Horizontal, Object<ObFlatScrollbar>(1001).Orientation());
    EXPECT_EQ(typeid(ObFlatScrollbar), typeid(*dialog_->GetControl(1002)));
    EXPECT_EQ(ScrollOrientation::Vertical, Object<ObFlatScrollbar>(1002).Orientation());
    EXPECT_EQ(typeid(ObFlatSlider), typeid(*dialog_->GetControl(1003)));
    EXPECT_EQ(ScrollOrientation::Horizontal, Object<ObFlatScrollbar>(1003).Orientation());
    EXPECT_EQ(typeid(ObFlatSlider), typeid(*dialog_->GetControl(1004)));
    EXPECT_EQ(ScrollOrientation::Vertical, Object<ObFlatScrollbar>(1004).Orientation());
}

TEST_F(FlatControlsTest, DressPushButtons) {
    Open(OB_TEST_CLASSES, false);
    EXPECT_EQ(typeid(ObFlatBtn), typeid(*dialog_->GetControl(1011)));
    EXPECT_EQ(typeid(ObFlatBlueBtn), typeid(*dialog_->GetControl(1012)));
    EXPECT_EQ(typeid(ObFlatBlueBtn), typeid(*dialog_->GetControl(1013)));
    EXPECT_EQ(typeid(ObFlatSettingsBtn), typeid(*dialog_->GetControl(1014)));
    EXPECT_EQ(typeid(ObFlatBrowserBtn), typeid(*dialog_->GetControl(1015)));
    EXPECT_EQ(typeid(ObFlatSplitBtn), typeid(*dialog_->GetControl(1016)));
    EXPECT_EQ(typeid(ObFlatDropBtn), typeid(*dialog_->GetControl(1017)));
    EXPECT_EQ(nullptr, dialog_->GetControl(1018));
    EXPECT_EQ(typeid(ObFlatBtn), typeid(*dialog_->GetControl(1019)));
    EXPECT_EQ(nullptr, dialog_->GetControl(1020));
}

TEST_F(FlatControlsTest, DressCheckBoxesRadiosAndSwitches) {
    Open(OB_TEST_CLASSES, false);
    EXPECT_EQ(typeid(ObFlatCheckbox), typeid(*dialog_->GetControl(1021)));
    EXPECT_EQ(typeid(ObFlatCheckbox), typeid(*dialog_->GetControl(1022)));
    EXPECT_EQ(typeid(ObFlatRadio), typeid(*dialog_->GetControl(1023)));
    EXPECT_EQ(typeid(ObFlatToggleBtn), typeid(*dialog_->GetControl(1024)));
}

TEST_F(FlatControlsTest, TakeTheWindowsOwnSplitStyleForADropButton) {
    Open(OB_TEST_CLASSES, false);
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    info.uSplitStyle = BCSS_NOSPLIT;
    SendMessageW(Item(1016), BCM_SETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info));
    const auto made = TheControlMaker().control(Item(1016), nullptr);
    EXPECT_EQ(typeid(ObFlatDropBtn), typeid(*made));
}

TEST_F(FlatControlsTest, GiveThePlainDefaultButtonTheAccent) {
    Open(OB_TEST_DEFAULT, false);
    EXPECT_EQ(kAccentColor, dialog_->GetControl(1)->GetFillColor());
    EXPECT_EQ(0xFFFFFFu, dialog_->GetControl(1)->GetTextColor());
    EXPECT_EQ(0xF6F6F6u, dialog_->GetControl(2)->GetFillColor());
}

TEST_F(FlatControlsTest, MakeTheBlueButtonTheDefault) {
    Open(OB_TEST_ACCENT, false);
    EXPECT_EQ(BS_DEFPUSHBUTTON, GetWindowLongPtrW(Item(1001), GWL_STYLE) & 0xF);
    EXPECT_EQ(BS_PUSHBUTTON, GetWindowLongPtrW(Item(2), GWL_STYLE) & 0xF);
}

// ---- every row of the table of classes

constexpr wchar_t kRichEdit[] = L"RichEditOfTheTest";
constexpr wchar_t kMsftEdit[] = L"MsftEditOfTheTest";

// A window of a class, style and word; `tooltip`: its description has one.
struct ClassCase {
    const wchar_t* className;
    DWORD style;
    const wchar_t* word;        // null: no description
    const std::type_info* made; // null: the window stays stock
    bool tooltip = false;
};

const ClassCase kClassCases[] = {
    {L"Edit", 0, nullptr, &typeid(ObFlatEdit)},
    {L"Edit", ES_PASSWORD, nullptr, &typeid(ObFlatPassword)},
    {kRichEdit, 0, nullptr, &typeid(ObFlatEdit)},
    {kMsftEdit, 0, nullptr, &typeid(ObFlatEdit)},
    {L"Static", 0, L"hscroll", &typeid(ObFlatScrollbar)},
    {L"Static", 0, L"vscroll", &typeid(ObFlatScrollbar)},
    {L"Static", 0, L"hslider", &typeid(ObFlatSlider)},
    {L"Static", 0, L"vslider", &typeid(ObFlatSlider)},
    {L"Static", 0, L"other", &typeid(ObFlatStaticText)},
    {L"Static", 0, nullptr, &typeid(ObFlatStaticText)},
    {PROGRESS_CLASSW, 0, nullptr, &typeid(ObFlatProgressBar)},
    {WC_LISTVIEWW, LVS_REPORT, nullptr, &typeid(ObFlatListView)},
    {WC_LISTVIEWW, LVS_ICON, nullptr, &typeid(ObFlatListView)},
    {L"Button", BS_PUSHBUTTON, nullptr, &typeid(ObFlatBtn)},
    {L"Button", BS_DEFPUSHBUTTON, L"blue", &typeid(ObFlatBlueBtn)},
    {L"Button", BS_PUSHBUTTON, L"settings", &typeid(ObFlatSettingsBtn)},
    {L"Button", BS_PUSHBUTTON, L"browser", &typeid(ObFlatBrowserBtn)},
    {L"Button", BS_CHECKBOX, nullptr, &typeid(ObFlatCheckbox)},
    {L"Button", BS_AUTOCHECKBOX, nullptr, &typeid(ObFlatCheckbox)},
    {L"Button", BS_3STATE, nullptr, &typeid(ObFlatCheckbox)},
    {L"Button", BS_AUTO3STATE, nullptr, &typeid(ObFlatCheckbox)},
    {L"Button", BS_AUTOCHECKBOX, L"toggle", &typeid(ObFlatToggleBtn)},
    {L"Button", BS_RADIOBUTTON, nullptr, &typeid(ObFlatRadio)},
    {L"Button", BS_AUTORADIOBUTTON, L"toggle", &typeid(ObFlatRadio)},
    {L"Button", BS_SPLITBUTTON, nullptr, &typeid(ObFlatSplitBtn)},
    {L"Button", BS_DEFSPLITBUTTON, nullptr, &typeid(ObFlatSplitBtn)},
    {L"Button", BS_SPLITBUTTON, L"drop", &typeid(ObFlatDropBtn)},
    {L"Button", BS_COMMANDLINK, L"", nullptr},
    {L"Button", BS_COMMANDLINK, nullptr, nullptr},
    {L"Button", BS_COMMANDLINK, L"", &typeid(ObFlatBtn), true},
    {L"Button", BS_COMMANDLINK, L"blue", &typeid(ObFlatBlueBtn), true},
    {L"Button", BS_OWNERDRAW, nullptr, nullptr},
    {L"ComboBox", CBS_SIMPLE, nullptr, &typeid(ObFlatComboBoxSimple)},
    {L"ComboBox", CBS_DROPDOWN, nullptr, &typeid(ObFlatComboBoxDropdown)},
    {L"ComboBox", CBS_DROPDOWNLIST, nullptr, &typeid(ObFlatComboBoxDropdownList)},
    {UPDOWN_CLASSW, 0, nullptr, &typeid(ObFlatSpinCtrl)},
    {DATETIMEPICK_CLASSW, 0, nullptr, &typeid(ObFlatDatePicker)},
    {L"ListBox", 0, nullptr, nullptr},
};

class ClassTableTest : public FieldsTest {
protected:
    void SetUp() override {
        FieldsTest::SetUp();
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_WIN95_CLASSES | ICC_DATE_CLASSES};
        InitCommonControlsEx(&classes);
        for (const wchar_t* const name : {kRichEdit, kMsftEdit}) {
            WNDCLASSW row{};
            row.lpfnWndProc = &DefWindowProcW;
            row.hInstance = GetModuleHandleW(nullptr);
            row.lpszClassName = name;
            RegisterClassW(&row);
        }
        Open(OB_TEST_TWO_PUSHES, false);
    }
    ObLib::UniqueWindow WindowOf(const ClassCase& row) const {
        return ObLib::UniqueWindow(CreateWindowExW(
            0, row.className, L"", WS_CHILD | row.style, 0, 0, 100, 40, dialog_->window,
            reinterpret_cast<HMENU>(INT_PTR{1500}), GetModuleHandleW(nullptr), nullptr));
    }
};

TEST_F(ClassTableTest, MakesTheControlOfEachRow) {
    for (const ClassCase& row : kClassCases) {
        SCOPED_TRACE("row " + std::to_string(&row - kClassCases));
        const ObLib::UniqueWindow window = WindowOf(row);
        ASSERT_TRUE(window);
        ControlDescription description;
        if (row.word != nullptr) description.subclass = row.word;
        if (row.tooltip) description.tooltip = L"A tooltip";
        const auto made =
            TheControlMaker().control(window.Get(), row.word != nullptr ? &description : nullptr);
        ASSERT_EQ(row.made != nullptr, made != nullptr);
        if (made == nullptr) continue;
        const ObCustomControl& control = *made;
        EXPECT_STREQ(row.made->name(), typeid(control).name());
        EXPECT_EQ(1500, control.id);
    }
}

// ---- the default button

class FakeButton : public ObCustomControl {
public:
    FakeButton(std::int32_t id, HWND button, COLORREF fill) : ObCustomControl(id, nullptr, L"", 0) {
        window = button;
        fillColor = fill;
    }
};

class DefaultButtonTest : public FieldsTest {
protected:
    void SetUp() override {
        FieldsTest::SetUp();
        SetControlMaker({});
        Open(OB_TEST_TWO_PUSHES, false);
    }
    void MakeDefault(std::int32_t id) const {
        SetWindowLongPtrW(Item(id), GWL_STYLE,
                          GetWindowLongPtrW(Item(id), GWL_STYLE) | BS_DEFPUSHBUTTON);
    }
    LONG_PTR Kind(std::int32_t id) const { return GetWindowLongPtrW(Item(id), GWL_STYLE) & 0xF; }
    // Objects with these fills for the two push buttons and the check box.
    void Settle(COLORREF first, COLORREF second, COLORREF check) {
        buttons_.clear();
        const COLORREF fills[] = {first, second, check};
        std::vector<ObCustomControl*> objects;
        for (int at = 0; at < 3; ++at) {
            buttons_.push_back(std::make_unique<FakeButton>(1001 + at, Item(1001 + at), fills[at]));
            objects.push_back(buttons_.back().get());
        }
        SettleDefaultButton(dialog_->window, objects);
    }

    std::vector<std::unique_ptr<FakeButton>> buttons_;
};

constexpr COLORREF kPlain = 0xF6F6F6;

TEST_F(DefaultButtonTest, GetsTheAccentWhereNoButtonHasIt) {
    MakeDefault(1002);
    Settle(kPlain, kPlain, kAccentColor);
    EXPECT_EQ(kAccentColor, buttons_[1]->fillColor);
    EXPECT_EQ(0xFFFFFFu, buttons_[1]->textColor);
    EXPECT_EQ(kAccentColor, buttons_[1]->GetHoverColor());
    EXPECT_EQ(kAccentColor, buttons_[1]->GetPressedColor());
    EXPECT_EQ(kPlain, buttons_[0]->fillColor);
    EXPECT_EQ(0u, buttons_[0]->textColor);
}

TEST_F(DefaultButtonTest, StaysPlainBesideAnAccentButton) {
    MakeDefault(1002);
    Settle(kAccentColor, kPlain, kPlain);
    EXPECT_EQ(kPlain, buttons_[1]->fillColor);
    EXPECT_EQ(BS_PUSHBUTTON, Kind(1001));
    EXPECT_EQ(BS_DEFPUSHBUTTON, Kind(1002));
}

TEST_F(DefaultButtonTest, IsTheAccentButtonWhereThereIsNone) {
    Settle(kPlain, kAccentColor, kAccentColor);
    EXPECT_EQ(BS_PUSHBUTTON, Kind(1001));
    EXPECT_EQ(BS_DEFPUSHBUTTON, Kind(1002));
    EXPECT_EQ(BS_AUTOCHECKBOX, Kind(1003)) << "only push buttons count";
    const auto reply = static_cast<DWORD>(SendMessageW(dialog_->window, DM_GETDEFID, 0, 0));
    EXPECT_EQ(MAKELONG(1002, DC_HASDEFID), static_cast<LONG>(reply)) << "Enter presses it";
    EXPECT_EQ(0u, buttons_[1]->textColor) << "its colours are its own";
}

TEST_F(DefaultButtonTest, IsNoneWithoutEither) {
    Settle(kPlain, kPlain, kAccentColor);
    EXPECT_EQ(BS_PUSHBUTTON, Kind(1001));
    EXPECT_EQ(BS_PUSHBUTTON, Kind(1002));
    EXPECT_EQ(kPlain, buttons_[0]->fillColor);
}

TEST_F(DefaultButtonTest, HasTheSystemsHotColourInHighContrast) {
    isContrast = true;
    MakeDefault(1001);
    Settle(kPlain, kPlain, kPlain);
    EXPECT_EQ(GetSysColor(COLOR_HOTLIGHT), buttons_[0]->fillColor);
}

} // namespace
