#include "ObLibX/src/controls/ControlKinds.h"

#include <cstddef>
#include <string_view>

#include "ObLib/Src/ObFatal.h"

namespace ObLibX {
namespace {

using ObLib::ObString;

constexpr wchar_t kModule[] = L"ObLibX\\src\\ControlKinds.cpp";

constexpr std::uint32_t kPasswordStyle = 0x20; // ES_PASSWORD
constexpr std::uint32_t kButtonKindBits = 0xF;
constexpr std::uint32_t kComboKindBits = 3;
constexpr std::uint32_t kBlue = 0x1B76C0; // a push button's colour for the word blue

bool AreSameText(const ObString& text, const wchar_t* other) {
    return text.CompareNoCase(ObString(other)) == 0;
}

ObString WordOf(const ControlDescription* description) {
    return description != nullptr ? description->subclass : ObString();
}

struct WordRow {
    const wchar_t* word;
    ControlKind kind;
};

// Stock for a word that isn't in the table.
template <std::size_t Count>
ControlKind KindOfWord(const WordRow (&rows)[Count], const ObString& word) {
    for (const WordRow& row : rows) {
        if (AreSameText(word, row.word)) return row.kind;
    }
    return ControlKind::Stock;
}

ControlKind EditKind(const WindowTraits& window, const ControlDescription*) {
    return (window.style & kPasswordStyle) != 0 ? ControlKind::Password : ControlKind::Edit;
}

ControlKind RichEditKind(const WindowTraits&, const ControlDescription*) {
    return ControlKind::Edit;
}

constexpr WordRow kStaticWords[] = {{L"hscroll", ControlKind::HorizontalScrollbar},
                                    {L"vscroll", ControlKind::VerticalScrollbar},
                                    {L"hslider", ControlKind::HorizontalSlider},
                                    {L"vslider", ControlKind::VerticalSlider}};

ControlKind StaticKind(const WindowTraits&, const ControlDescription* description) {
    const ControlKind kind = KindOfWord(kStaticWords, WordOf(description));
    return kind != ControlKind::Stock ? kind : ControlKind::StaticText;
}

constexpr WordRow kPushWords[] = {{L"", ControlKind::Button},
                                  {L"blue", ControlKind::BlueButton},
                                  {L"settings", ControlKind::SettingsButton},
                                  {L"browser", ControlKind::BrowserButton}};

ControlKind PushKind(const WindowTraits&, const ControlDescription* description) {
    if (description != nullptr && description->color == kBlue) return ControlKind::BlueButton;
    const ControlKind kind = KindOfWord(kPushWords, WordOf(description));
    ObAssert(kind != ControlKind::Stock);
    return kind;
}

ControlKind CheckKind(const WindowTraits&, const ControlDescription* description) {
    return AreSameText(WordOf(description), L"toggle") ? ControlKind::ToggleButton
                                                       : ControlKind::Checkbox;
}

ControlKind RadioKind(const WindowTraits&, const ControlDescription*) { return ControlKind::Radio; }

ControlKind SplitKind(const WindowTraits& window, const ControlDescription* description) {
    const bool isDrop = window.hasNoSplit || AreSameText(WordOf(description), L"drop");
    return isDrop ? ControlKind::DropButton : ControlKind::SplitButton;
}

ControlKind CommandLinkKind(const WindowTraits& window, const ControlDescription* description) {
    const bool isDressed = description != nullptr && description->tooltip.HasText();
    return isDressed ? PushKind(window, description) : ControlKind::Stock;
}

ControlKind StockKind(const WindowTraits&, const ControlDescription*) { return ControlKind::Stock; }

using KindOf = ControlKind (*)(const WindowTraits& window, const ControlDescription* description);

// By the low four bits of a button's style.
constexpr KindOf kButtonKinds[kButtonKindBits + 1] = {
    &PushKind,        // 0: push
    &PushKind,        // 1: default push
    &CheckKind,       // 2: check box
    &CheckKind,       // 3: automatic check box
    &RadioKind,       // 4: radio
    &CheckKind,       // 5: three states
    &CheckKind,       // 6: automatic, three states
    &StockKind,       // 7: group box
    &StockKind,       // 8: user
    &RadioKind,       // 9: automatic radio
    &StockKind,       // 10: push box
    &StockKind,       // 11: owner-drawn
    &SplitKind,       // 12: split
    &SplitKind,       // 13: default split
    &CommandLinkKind, // 14: command link
    &StockKind,       // 15: default command link
};

ControlKind ButtonKind(const WindowTraits& window, const ControlDescription* description) {
    return kButtonKinds[window.style & kButtonKindBits](window, description);
}

ControlKind ComboKind(const WindowTraits& window, const ControlDescription*) {
    constexpr ControlKind kKinds[kComboKindBits + 1] = {
        ControlKind::Stock, ControlKind::ComboBoxSimple, ControlKind::ComboBoxDropdown,
        ControlKind::ComboBoxDropdownList};
    return kKinds[window.style & kComboKindBits];
}

template <ControlKind Kind>
ControlKind Always(const WindowTraits&, const ControlDescription*) {
    return Kind;
}

struct ClassRow {
    const wchar_t* name;
    bool isBeginning; // the class's name only begins with `name`
    KindOf kindOf;
};

constexpr ClassRow kClasses[] = {
    {L"Edit", false, &EditKind},
    {L"richedit", true, &RichEditKind},
    {L"msftedit", true, &RichEditKind},
    {L"static", false, &StaticKind},
    {L"msctls_progress32", false, &Always<ControlKind::ProgressBar>},
    {L"SysListView32", false, &Always<ControlKind::ListView>},
    {L"Button", false, &ButtonKind},
    {L"ComboBox", false, &ComboKind},
    {L"msctls_updown32", false, &Always<ControlKind::SpinControl>},
    {L"SysDateTimePick32", false, &Always<ControlKind::DatePicker>},
};

bool Fits(const ClassRow& row, const std::wstring& className) {
    const std::wstring beginning = className.substr(0, std::wstring_view(row.name).size());
    return AreSameText(row.isBeginning ? beginning.c_str() : className.c_str(), row.name);
}

} // namespace

ControlKind KindOfControl(const WindowTraits& window, const ControlDescription* description) {
    for (const ClassRow& row : kClasses) {
        if (Fits(row, window.className)) return row.kindOf(window, description);
    }
    return ControlKind::Stock;
}

} // namespace ObLibX
