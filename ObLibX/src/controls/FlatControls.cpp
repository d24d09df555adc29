#include "ObLibX/src/controls/FlatControls.h"

#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "ObLibX/src/controls/ControlKinds.h"
#include "ObLibX/src/controls/DefaultButton.h"
#include "ObLibX/src/controls/ObCustBtn.h"
#include "ObLibX/src/controls/ObCustCombo.h"
#include "ObLibX/src/controls/ObCustDate.h"
#include "ObLibX/src/controls/ObCustEdit.h"
#include "ObLibX/src/controls/ObCustList.h"
#include "ObLibX/src/controls/ObCustPassword.h"
#include "ObLibX/src/controls/ObCustProgress.h"
#include "ObLibX/src/controls/ObCustSlider.h"
#include "ObLibX/src/controls/ObCustSpin.h"
#include "ObLibX/src/controls/ObCustStatic.h"
#include "ObLibX/src/controls/ObCustSwitch.h"
#include "ObLibX/src/controls/ObCustToggle.h"
#include "ObLibX/src/dialog/ControlMaker.h"
#include "ObLibX/src/dialog/ObXDlg.h"
#include "ObLibX/src/dialog/Palette.h"

namespace ObLibX {
namespace {

using ObLib::ObString;
using Control = std::unique_ptr<ObCustomControl>;

constexpr int kClassCapacity = 61; // of a class's name, with its NUL
constexpr DWORD kButtonKindBits = 0xF;

bool IsSplitButton(const WindowTraits& traits) {
    const DWORD kind = traits.style & kButtonKindBits;
    return ObString(traits.className.c_str()).CompareNoCase(L"Button") == 0 &&
           (kind == BS_SPLITBUTTON || kind == BS_DEFSPLITBUTTON);
}

bool HasNoSplit(HWND button) {
    BUTTON_SPLITINFO info{};
    info.mask = BCSIF_STYLE;
    return SendMessageW(button, BCM_GETSPLITINFO, 0, reinterpret_cast<LPARAM>(&info)) != FALSE &&
           (info.uSplitStyle & BCSS_NOSPLIT) != 0;
}

WindowTraits TraitsOf(HWND window) {
    wchar_t name[kClassCapacity] = {};
    GetClassNameW(window, name, kClassCapacity);
    WindowTraits traits{name, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), false};
    traits.hasNoSplit = IsSplitButton(traits) && HasNoSplit(window);
    return traits;
}

// What a control is made from. `description` null: there is none.
struct Wanted {
    HWND window;
    std::int32_t id;
    const ControlDescription* description;
};

bool HasHeadingColor(const ControlDescription* description) {
    const COLORREF hot = GetSysColor(COLOR_HOTLIGHT);
    return description != nullptr ? description->color == hot || description->color == kAccentColor
                                  : hot == 0;
}

std::unique_ptr<ObFlatStaticText> TextOf(std::int32_t id, const ControlDescription* description) {
    if (description == nullptr) {
        return std::make_unique<ObFlatStaticText>(id, ObString(), 0, kNormalFontWeight, 0, 0);
    }
    return std::make_unique<ObFlatStaticText>(id, description->fontName, description->fontSize,
                                              description->fontWeight, description->fontStyle,
                                              description->color);
}

Control MakeStaticText(const Wanted& wanted) {
    auto text = TextOf(wanted.id, wanted.description);
    if (HasHeadingColor(wanted.description)) {
        text->UsePalette(&ObCustomControl::textColor, kPaletteHeading);
    }
    return text;
}

template <class Edit>
Control MakeEdit(const Wanted& wanted) {
    return std::make_unique<Edit>(wanted.id, wanted.description != nullptr ? wanted.description->cue
                                                                           : ObString());
}

Control MakeListView(const Wanted& wanted) {
    auto columns = wanted.description != nullptr ? wanted.description->columns
                                                 : std::vector<ColumnDescription>();
    return std::make_unique<ObFlatListView>(wanted.id, std::move(columns),
                                            ObXDlg::FromWindow(GetParent(wanted.window)));
}

template <class Class>
Control MakePlain(const Wanted& wanted) {
    return std::make_unique<Class>(wanted.id);
}

template <class Bar, ScrollOrientation Orientation>
Control MakeBar(const Wanted& wanted) {
    return std::make_unique<Bar>(wanted.id, Orientation);
}

struct KindRow {
    ControlKind kind;
    Control (*make)(const Wanted& wanted);
};

// What isn't here stays stock.
constexpr KindRow kKinds[] = {
    {ControlKind::Edit, &MakeEdit<ObFlatEdit>},
    {ControlKind::Password, &MakeEdit<ObFlatPassword>},
    {ControlKind::StaticText, &MakeStaticText},
    {ControlKind::HorizontalScrollbar, &MakeBar<ObFlatScrollbar, ScrollOrientation::Horizontal>},
    {ControlKind::VerticalScrollbar, &MakeBar<ObFlatScrollbar, ScrollOrientation::Vertical>},
    {ControlKind::HorizontalSlider, &MakeBar<ObFlatSlider, ScrollOrientation::Horizontal>},
    {ControlKind::VerticalSlider, &MakeBar<ObFlatSlider, ScrollOrientation::Vertical>},
    {ControlKind::ProgressBar, &MakePlain<ObFlatProgressBar>},
    {ControlKind::ListView, &MakeListView},
    {ControlKind::ComboBoxSimple, &MakePlain<ObFlatComboBoxSimple>},
    {ControlKind::ComboBoxDropdown, &MakePlain<ObFlatComboBoxDropdown>},
    {ControlKind::ComboBoxDropdownList, &MakePlain<ObFlatComboBoxDropdownList>},
    {ControlKind::SpinControl, &MakePlain<ObFlatSpinCtrl>},
    {ControlKind::DatePicker, &MakePlain<ObFlatDatePicker>},
    {ControlKind::Button, &MakePlain<ObFlatBtn>},
    {ControlKind::BlueButton, &MakePlain<ObFlatBlueBtn>},
    {ControlKind::SettingsButton, &MakePlain<ObFlatSettingsBtn>},
    {ControlKind::BrowserButton, &MakePlain<ObFlatBrowserBtn>},
    {ControlKind::SplitButton, &MakePlain<ObFlatSplitBtn>},
    {ControlKind::DropButton, &MakePlain<ObFlatDropBtn>},
    {ControlKind::Checkbox, &MakePlain<ObFlatCheckbox>},
    {ControlKind::Radio, &MakePlain<ObFlatRadio>},
    {ControlKind::ToggleButton, &MakePlain<ObFlatToggleBtn>},
};

Control MakeFlatControl(HWND window, const ControlDescription* description) {
    const ControlKind kind = KindOfControl(TraitsOf(window), description);
    const auto row = std::ranges::find(kKinds, kind, &KindRow::kind);
    return row == std::end(kKinds) ? nullptr
                                   : row->make({window, GetDlgCtrlID(window), description});
}

Control MakeFlatHeading(std::int32_t id, std::int32_t size, std::int32_t weight) {
    auto heading = std::make_unique<ObFlatStaticText>(id, ObString(), size, weight, 0, 0);
    heading->UsePalette(&ObCustomControl::textColor, kPaletteHeading);
    return heading;
}

} // namespace

void UseFlatControls() {
    SetControlMaker({&MakeFlatControl, &MakeFlatHeading, &SettleDefaultButton});
}

} // namespace ObLibX
