// What is read of the description: the defaults, and the controls of a dialog.
#include "ObLibX/src/dialog/DialogDescription.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/ObLib/FatalExit.h"

namespace {

using namespace ObLibX;
using ObLib::ObString;

constexpr std::uint32_t kAccent = 0xC0761B;

ObXML Loaded(const std::wstring& text) {
    ObXML tree;
    tree.LoadText(ObString(text.c_str()));
    return tree;
}

std::vector<ControlDescription> ControlsIn(const std::wstring& text, std::int32_t id = 7) {
    std::vector<ControlDescription> controls;
    const DescriptionContext context{{L"Base", 10}, kAccent};
    ReadDialogControls(Loaded(text), id, context, controls);
    return controls;
}

std::vector<ControlDescription> ControlsOf(const std::wstring& dialogs, std::int32_t id = 7) {
    return ControlsIn(L"<r>" + dialogs + L"</r>", id);
}

ControlDescription TheControl(const std::wstring& content) {
    const auto controls =
        ControlsOf(L"<dialog id='7'><control id='3'>" + content + L"</control></dialog>");
    EXPECT_EQ(1u, controls.size());
    return controls.empty() ? ControlDescription() : controls[0];
}

struct Defaults {
    BaseFont font;
    FontSubstitution substitution;
};

Defaults DefaultsOf(const std::wstring& text) {
    Defaults defaults;
    ReadDialogDefaults(Loaded(text), defaults.font, defaults.substitution);
    return defaults;
}

void ReadFonts(const wchar_t* fonts) {
    DefaultsOf(std::wstring(L"<r><defaults><fonts>") + fonts + L"</fonts></defaults></r>");
}

TEST(DialogDefaults, AreTheBaseFontAndTheSubstitutions) {
    const Defaults defaults = DefaultsOf(
        L"<dialogs><defaults><fonts><default name='Segoe UI' size='9'/>"
        L"<font><orig name='MS Shell Dlg' size='8'/><subst name='Segoe UI' size='9'/></font>"
        L"<FONT><orig name='Tahoma'/><subst name='Arial'/></FONT></fonts></defaults></dialogs>");
    EXPECT_STREQ(L"Segoe UI", defaults.font.name.CStr());
    EXPECT_EQ(9, defaults.font.size);
    EXPECT_STREQ(L"Segoe UI", defaults.substitution.Apply({L"ms shell dlg", 8}).name.CStr());
    EXPECT_STREQ(L"Arial", defaults.substitution.Apply({L"Tahoma", 30}).name.CStr());
}

TEST(DialogDefaults, HaveSize9WithoutASize) {
    EXPECT_EQ(
        9, DefaultsOf(L"<r><defaults><fonts><default name='A'/></fonts></defaults></r>").font.size);
}

TEST(DialogDefaults, HaveSize9ForASizeThatNoFontHas) {
    for (const wchar_t* const size : {L"0", L"-9", L"1639", L"2000000", L"x"}) {
        EXPECT_EQ(9, DefaultsOf(std::wstring(L"<r><defaults><fonts><default name='A' size='") +
                                size + L"'/></fonts></defaults></r>")
                         .font.size)
            << size;
    }
    EXPECT_EQ(
        1638,
        DefaultsOf(L"<r><defaults><fonts><default name='A' size='1638'/></fonts></defaults></r>")
            .font.size);
}

// No cut leaves half a pair, which would end the process.
TEST(DialogDefaults, AreReadOfATextThatEndsAnywhere) {
    const std::wstring whole = L"<r><defaults><fonts><default name='A'/><font><orig name='B'/>"
                               L"<subst name='C'/></font></fonts></defaults></r>";
    std::size_t named = 0;
    std::size_t paired = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const Defaults defaults = DefaultsOf(whole.substr(0, length));
        const std::wstring name = defaults.font.name.CStr();
        EXPECT_TRUE(name.empty() || name == L"A") << length;
        named += name == L"A";
        paired += std::wstring(defaults.substitution.Apply({L"B", 8}).name.CStr()) == L"C";
    }
    EXPECT_LT(0u, paired);
    EXPECT_LE(paired, named) << "the base font comes first";
}

TEST(DialogDefaults, StayWhereTheDescriptionHasNone) {
    for (const wchar_t* const text :
         {L"", L"<r/>", L"<r><defaults/></r>", L"<r><fonts><default name='A'/></fonts></r>",
          L"<r><defaults><fonts/></defaults></r>"}) {
        const Defaults defaults = DefaultsOf(text);
        EXPECT_FALSE(defaults.font.name.HasText()) << text;
        EXPECT_EQ(9, defaults.font.size) << text;
    }
}

TEST(DialogDefaults, EndTheProcessWhereTheyContradictThemselves) {
    for (const wchar_t* const fonts :
         {L"<default/>", L"<default name=''/>", L"<font><orig name='A'/></font>",
          L"<font><subst name='A'/></font>", L"<font><orig/><subst name='A'/></font>",
          L"<font><orig name='A'/><subst name=''/></font>",
          L"<font><orig name='A' size='8'/><subst name='B'/></font>",
          L"<font><orig name='A' size='8'/><subst name='B' size='-5'/></font>"}) {
        EXPECT_FATAL(ReadFonts(fonts), "ObLibX\\src\\DialogDescription.cpp") << fonts;
    }
}

TEST(DialogDefaults, TakeASizeOfTheSubstituteAlone) {
    const Defaults defaults =
        DefaultsOf(L"<r><defaults><fonts><font><orig name='A'/><subst name='B' size='12'/></font>"
                   L"</fonts></defaults></r>");
    EXPECT_EQ(8, defaults.substitution.Apply({L"A", 8}).size) << "an entry for any size keeps it";
}

TEST(DialogControls, AreThoseOfTheFirstDialogWithTheId) {
    const auto controls = ControlsOf(L"<dialog id='6'><control id='1'/></dialog>"
                                     L"<Dialog id='7'><control id='2'/><Control id='3'/></Dialog>"
                                     L"<dialog id='7'><control id='4'/></dialog>");
    ASSERT_EQ(2u, controls.size());
    EXPECT_EQ(2, controls[0].id);
    EXPECT_EQ(3, controls[1].id);
}

// Texts that don't fit are tried in each smaller size.
TEST(DialogControls, HaveTheBaseSizeForASizeThatNoFontHas) {
    for (const wchar_t* const size : {L"0", L"-9", L"1639", L"2000000"}) {
        EXPECT_EQ(10, TheControl(std::wstring(L"<font size='") + size + L"'/>").fontSize) << size;
    }
    EXPECT_EQ(1638, TheControl(L"<font size='1638'/>").fontSize);
}

TEST(DialogControls, HaveTheBaseFontInASizeOfTheirOwn) {
    const ControlDescription control = TheControl(L"<font size='14'/>");
    EXPECT_STREQ(L"Base", control.fontName.CStr());
    EXPECT_EQ(14, control.fontSize);
    EXPECT_EQ(400, control.fontWeight);
}

TEST(DialogControls, AreNotThereWithoutTheDialog) {
    std::vector<ControlDescription> controls(3);
    const DescriptionContext context;
    EXPECT_FALSE(ReadDialogControls(Loaded(L"<r><dialog id='6'/></r>"), 7, context, controls));
    EXPECT_TRUE(controls.empty());
    EXPECT_FALSE(ReadDialogControls(ObXML(), 7, context, controls));
    EXPECT_TRUE(ReadDialogControls(Loaded(L"<r><dialog id='7'/></r>"), 7, context, controls));
    EXPECT_TRUE(controls.empty());
}

TEST(DialogControls, HaveADialogIdOfMinus1WithoutAnIdAnd0ForNoNumber) {
    const std::wstring without = L"<dialog><control id='1'/></dialog>";
    const std::wstring noNumber = L"<dialog id='x'><control id='2'/></dialog>";
    ASSERT_EQ(1u, ControlsOf(without + noNumber, -1).size());
    EXPECT_EQ(1, ControlsOf(without + noNumber, -1)[0].id);
    ASSERT_EQ(1u, ControlsOf(without + noNumber, 0).size());
    EXPECT_EQ(2, ControlsOf(without + noNumber, 0)[0].id);
}

TEST(DialogControls, AreFoundWithAutogenToo) {
    EXPECT_EQ(1u, ControlsOf(L"<dialog id='7' autogen='yes'><control id='1'/></dialog>").size());
}

TEST(DialogControls, HaveTheirDefaults) {
    const ControlDescription control = TheControl(L"<unknown>text</unknown>");
    EXPECT_EQ(3, control.id);
    EXPECT_STREQ(L"Segoe UI", control.fontName.CStr());
    EXPECT_EQ(9, control.fontSize);
    EXPECT_EQ(400, control.fontWeight);
    EXPECT_EQ(0, control.fontStyle);
    EXPECT_EQ(0u, control.color);
    for (const ObString* const text :
         {&control.subclass, &control.cue, &control.tooltip, &control.itemData}) {
        EXPECT_FALSE(text->HasText());
    }
    EXPECT_TRUE(control.columns.empty());
    EXPECT_EQ(0, ControlsOf(L"<dialog id='7'><control/></dialog>").at(0).id);
}

TEST(DialogControls, HaveTheirTexts) {
    const ControlDescription control =
        TheControl(L"<subclass> blue\n</subclass><cue>Type here</cue><itemdata>free text</itemdata>"
                   L"<tooltip>A1</tooltip>");
    EXPECT_STREQ(L"blue", control.subclass.CStr());
    EXPECT_STREQ(L"Type here", control.cue.CStr());
    EXPECT_STREQ(L"free text", control.itemData.CStr());
    EXPECT_STREQ(L"A1", control.tooltip.CStr());
}

TEST(DialogControls, HaveANumberThatIsNoIdAsATooltipOfItsOwn) {
    EXPECT_STREQ(L"-5", TheControl(L"<tooltip> -5 </tooltip>").tooltip.CStr());
    EXPECT_STREQ(L"106548", TheControl(L"<tooltip>106548</tooltip>").tooltip.CStr())
        << "its low 16 bits are another text's id";
}

TEST(DialogControls, TakeTheBaseFontForWhatTheirFontLeavesOut) {
    const ControlDescription control = TheControl(L"<font weight='700' italic='TRUE'/>");
    EXPECT_STREQ(L"Base", control.fontName.CStr());
    EXPECT_EQ(10, control.fontSize);
    EXPECT_EQ(700, control.fontWeight);
    EXPECT_EQ(kFontItalic, control.fontStyle);
}

TEST(DialogControls, HaveTheirFont) {
    const ControlDescription control = TheControl(
        L"<font name='Arial' size='14' underline='true' strikeout='true' italic='yes'/>");
    EXPECT_STREQ(L"Arial", control.fontName.CStr());
    EXPECT_EQ(14, control.fontSize);
    EXPECT_EQ(400, control.fontWeight);
    EXPECT_EQ(kFontUnderline | kFontStrikeout, control.fontStyle);
}

struct ColorRow {
    const wchar_t* text;
    std::uint32_t color;
};

TEST(DialogControls, HaveTheirColor) {
    constexpr ColorRow kRows[] = {{L"HOTLIGHT", kAccent},
                                  {L"hotlight", kAccent},
                                  {L" 12613147 ", 0xC0761B},
                                  {L"0", 0},
                                  {L"1799872", 0x1B76C0},
                                  {L"red", 0},
                                  {L"0xFF", 0},
                                  {L"16777215", 0xFFFFFF},
                                  {L"16777216", 0},
                                  {L"-1", 0},
                                  {L"", 0}};
    for (const ColorRow& row : kRows) {
        const std::wstring element = std::wstring(L"<color>") + row.text + L"</color>";
        EXPECT_EQ(row.color, TheControl(element).color) << row.text;
    }
}

TEST(DialogControls, HaveTheirColumns) {
    const ControlDescription control = TheControl(
        L"<columns><column title='41' width='30'/><column width='70' align='RIGHT'/>"
        L"<column title='42' width='x' align='center'/><other/><column align='left'/></columns>");
    ASSERT_EQ(4u, control.columns.size());
    EXPECT_EQ(41, control.columns[0].titleId);
    EXPECT_EQ(30, control.columns[0].widthPercent);
    EXPECT_EQ(ColumnAlignment::Left, control.columns[0].alignment);
    EXPECT_EQ(0, control.columns[1].titleId);
    EXPECT_EQ(ColumnAlignment::Right, control.columns[1].alignment);
    EXPECT_EQ(0, control.columns[2].widthPercent);
    EXPECT_EQ(ColumnAlignment::Centre, control.columns[2].alignment);
    EXPECT_EQ(ColumnAlignment::Left, control.columns[3].alignment);
}

TEST(DialogControls, HaveNoTitleForANumberThatIsNoId) {
    const ControlDescription control =
        TheControl(L"<columns><column title='65535'/><column title='65536'/><column title='-1'/>"
                   L"</columns>");
    ASSERT_EQ(3u, control.columns.size());
    EXPECT_EQ(65535, control.columns[0].titleId);
    EXPECT_EQ(0, control.columns[1].titleId);
    EXPECT_EQ(0, control.columns[2].titleId);
}

TEST(DialogControls, MayHaveOneIdTwice) {
    EXPECT_EQ(2u, ControlsOf(L"<dialog id='7'><control id='1'/><control id='1'/></dialog>").size());
}

TEST(DialogControls, AreReadOfATextThatEndsAnywhere) {
    const std::wstring whole = L"<r><dialog id='7'><control id='3'><font name='A'/><columns>"
                               L"<column title='1'/></columns><color>5</color></control></dialog>"
                               L"</r>";
    std::size_t described = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        for (const wchar_t* const end : {L"", L"</r>", L"</control></dialog></r>"}) {
            const auto controls = ControlsIn(whole.substr(0, length) + end);
            EXPECT_LE(controls.size(), 1u) << length;
            if (controls.empty()) continue;
            ++described;
            EXPECT_TRUE(controls[0].id == 3 || controls[0].id == 0) << length;
            EXPECT_TRUE(controls[0].color == 5 || controls[0].color == 0) << length;
            EXPECT_LE(controls[0].columns.size(), 1u) << length;
        }
    }
    EXPECT_LT(3u, described) << "parts of it, too";
    const auto controls = ControlsIn(whole);
    ASSERT_EQ(1u, controls.size());
    EXPECT_EQ(5u, controls[0].color);
}

} // namespace
