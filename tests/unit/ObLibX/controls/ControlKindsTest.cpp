// Which flat control dresses which window: each row of the table of classes, styles and words.
#include "ObLibX/src/controls/ControlKinds.h"

#include <gtest/gtest.h>

#include <optional>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using namespace ObLibX;

struct KindCase {
    const wchar_t* className;
    std::uint32_t style;
    std::optional<const wchar_t*> word; // nothing: no description
    ControlKind kind;
};

ControlKind KindOf(const KindCase& row) {
    ControlDescription description;
    if (row.word) description.subclass = *row.word;
    return KindOfControl({row.className, row.style, false}, row.word ? &description : nullptr);
}

constexpr KindCase kCases[] = {
    {L"Edit", 0, {}, ControlKind::Edit},
    {L"EDIT", 0x20, {}, ControlKind::Password},
    {L"edit", 0x24, L"", ControlKind::Password},
    {L"Edit", 0x24 & ~0x20u, L"unknown", ControlKind::Edit},
    {L"EditBox", 0, {}, ControlKind::Stock},
    {L"RICHEDIT50W", 0, {}, ControlKind::Edit},
    {L"RichEdit20W", 0x20, {}, ControlKind::Edit},
    {L"msftedit_class", 0, {}, ControlKind::Edit},
    {L"rich", 0, {}, ControlKind::Stock},
    {L"Static", 0, {}, ControlKind::StaticText},
    {L"Static", 0, L"hscroll", ControlKind::HorizontalScrollbar},
    {L"Static", 0, L"VScroll", ControlKind::VerticalScrollbar},
    {L"Static", 0, L"hslider", ControlKind::HorizontalSlider},
    {L"Static", 0, L"vslider", ControlKind::VerticalSlider},
    {L"Static", 0, L"blue", ControlKind::StaticText},
    {L"msctls_progress32", 0, {}, ControlKind::ProgressBar},
    {L"SysListView32", 0, {}, ControlKind::ListView},
    {L"Button", 0, {}, ControlKind::Button},
    {L"Button", 1, L"", ControlKind::Button},
    {L"Button", 0, L"blue", ControlKind::BlueButton},
    {L"Button", 1, L"Settings", ControlKind::SettingsButton},
    {L"Button", 0, L"browser", ControlKind::BrowserButton},
    {L"Button", 2, {}, ControlKind::Checkbox},
    {L"Button", 3, {}, ControlKind::Checkbox},
    {L"Button", 5, L"other", ControlKind::Checkbox},
    {L"Button", 6, {}, ControlKind::Checkbox},
    {L"Button", 2, L"toggle", ControlKind::ToggleButton},
    {L"Button", 3, L"TOGGLE", ControlKind::ToggleButton},
    {L"Button", 5, L"toggle", ControlKind::ToggleButton},
    {L"Button", 6, L"toggle", ControlKind::ToggleButton},
    {L"Button", 4, {}, ControlKind::Radio},
    {L"Button", 9, L"toggle", ControlKind::Radio},
    {L"Button", 12, {}, ControlKind::SplitButton},
    {L"Button", 13, L"other", ControlKind::SplitButton},
    {L"Button", 12, L"drop", ControlKind::DropButton},
    {L"Button", 13, L"Drop", ControlKind::DropButton},
    {L"Button", 14, {}, ControlKind::Stock},
    {L"Button", 14, L"blue", ControlKind::Stock}, // without a tooltip
    {L"Button", 7, {}, ControlKind::Stock},
    {L"Button", 8, {}, ControlKind::Stock},
    {L"Button", 10, {}, ControlKind::Stock},
    {L"Button", 11, {}, ControlKind::Stock},
    {L"Button", 15, L"blue", ControlKind::Stock},
    {L"Button", 0x50010003, {}, ControlKind::Checkbox}, // the other bits don't count
    {L"ComboBox", 0, {}, ControlKind::Stock},
    {L"ComboBox", 1, {}, ControlKind::ComboBoxSimple},
    {L"ComboBox", 2, {}, ControlKind::ComboBoxDropdown},
    {L"ComboBox", 3, {}, ControlKind::ComboBoxDropdownList},
    {L"combobox", 0x50210303, {}, ControlKind::ComboBoxDropdownList},
    {L"ComboBoxEx32", 3, {}, ControlKind::Stock},
    {L"msctls_updown32", 0, {}, ControlKind::SpinControl},
    {L"SysDateTimePick32", 0, {}, ControlKind::DatePicker},
    {L"ListBox", 0, {}, ControlKind::Stock},
    {L"", 0, {}, ControlKind::Stock},
};

TEST(ControlKindsTest, DependOnClassStyleAndWord) {
    for (const KindCase& row : kCases) {
        EXPECT_EQ(row.kind, KindOf(row)) << "row " << &row - kCases;
    }
}

TEST(ControlKindsTest, IncludeAButtonThatIsBlueByItsColour) {
    ControlDescription description;
    description.color = 0x1B76C0;
    EXPECT_EQ(ControlKind::BlueButton, KindOfControl({L"Button", 0, false}, &description));
    description.color = 0xC0761B; // the accent, its bytes in the other order
    EXPECT_EQ(ControlKind::Button, KindOfControl({L"Button", 0, false}, &description));
    EXPECT_EQ(ControlKind::Checkbox, KindOfControl({L"Button", 3, false}, &description));
}

TEST(ControlKindsTest, IncludeADropButtonByTheWindowsOwnStyle) {
    EXPECT_EQ(ControlKind::DropButton, KindOfControl({L"Button", 12, true}, nullptr));
    EXPECT_EQ(ControlKind::DropButton, KindOfControl({L"Button", 13, true}, nullptr));
}

TEST(ControlKindsTest, DressACommandLinkOnlyWithATooltip) {
    ControlDescription description;
    description.tooltip = L"A tooltip";
    EXPECT_EQ(ControlKind::Button, KindOfControl({L"Button", 14, false}, &description));
    description.subclass = L"blue";
    EXPECT_EQ(ControlKind::BlueButton, KindOfControl({L"Button", 14, false}, &description));
    EXPECT_EQ(ControlKind::Stock, KindOfControl({L"Button", 15, false}, &description));
}

TEST(ControlKindsTest, EndTheProcessForAPushButtonWithAnUnknownWord) {
    ControlDescription description;
    description.subclass = L"toggle";
    EXPECT_FATAL(KindOfControl({L"Button", 0, false}, &description),
                 "ObLibX\\src\\ControlKinds.cpp");
    description.subclass = L"drop";
    EXPECT_FATAL(KindOfControl({L"Button", 1, false}, &description),
                 "ObLibX\\src\\ControlKinds.cpp");
}

} // namespace
