#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/TextIds.h"
#include "ObLibX/src/dialog/ToolkitTexts.h"
#include "ObLibX/src/xml/scan/DocumentReport.h"

namespace {

using obcore::LoadText;

class Texts : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(obcore::BindResourceModule()); }
};

// A text by its number: also those that only the archive service and the wipe program load.
std::wstring TextOf(UINT id) {
    wchar_t text[4096];
    const int length = LoadStringW(obcore::ResourceModule(), id, text, 4096);
    return std::wstring(text, static_cast<std::size_t>(length));
}

int CountOf(const std::wstring& text, wchar_t unit) {
    return static_cast<int>(std::count(text.begin(), text.end(), unit));
}

TEST_F(Texts, EveryIdThatTheCodeLoadsHasAText) {
    for (const obcore::TextId id : obcore::kAllTextIds) {
        EXPECT_FALSE(LoadText(id).empty()) << static_cast<UINT>(id);
    }
}

TEST_F(Texts, EveryIdThatTheDialogToolkitNamesHasAText) {
    for (const std::int32_t id : ObLibX::kToolkitTexts) {
        EXPECT_FALSE(TextOf(static_cast<UINT>(id)).empty()) << id;
    }
}

TEST_F(Texts, ReportsOfXmlDocumentsReadAsInTheLibrary) {
    for (const ObLibX::ReportText& report : ObLibX::kReportTexts) {
        EXPECT_EQ(report.text, TextOf(report.id));
    }
    EXPECT_TRUE(TextOf(62006).empty()) << "no report has this id";
}

TEST_F(Texts, SwitchAndEyeOfThePasswordReadAsAgreed) {
    EXPECT_EQ(L"Off", TextOf(ObLibX::kTextSwitchOff));
    EXPECT_EQ(L"On", TextOf(ObLibX::kTextSwitchOn));
    EXPECT_EQ(L"Click to show or hide the password", TextOf(ObLibX::kTextEyeTip));
    EXPECT_EQ(L"Show or hide the password", TextOf(ObLibX::kTextEyeName));
}

TEST_F(Texts, MenusOfHostedBarsReadAsAgreedInTheOrderOfTheirIds) {
    UINT id = 62119;
    for (const wchar_t* const text :
         {L"Scroll Here", L"Top", L"Bottom", L"Left Edge", L"Right Edge", L"Page Up", L"Page Down",
          L"Page Left", L"Page Right", L"Scroll Up", L"Scroll Down", L"Scroll Left",
          L"Scroll Right", L"Show Scrollbars", L"Hide Scrollbars"}) {
        EXPECT_EQ(text, TextOf(id)) << id;
        ++id;
    }
    EXPECT_EQ(62134u, id);
}

TEST_F(Texts, EveryLabelOfThePickerHasOneAccessKeyOfItsOwn) {
    std::wstring keys;
    for (const UINT id : {101u, 102u, 103u, 180u, 181u, 182u, 183u, 184u, 185u, 186u, 187u, 188u}) {
        const std::wstring text = TextOf(id);
        ASSERT_EQ(1, CountOf(text, L'&')) << id;
        const wchar_t key = static_cast<wchar_t>(towlower(text[text.find(L'&') + 1]));
        EXPECT_EQ(std::wstring::npos, keys.find(key)) << id;
        keys += key;
    }
}

TEST_F(Texts, PasswordPolicyNamesWhatTheIdAsksFor) {
    const std::wstring parts[] = {L"lower case character (a-z)", L"upper case character (A-Z)",
                                  L"number character (0-9)", L"symbol character ("};
    for (UINT mask = 0; mask < 16; ++mask) {
        const std::wstring text = TextOf(41000 + mask);
        EXPECT_TRUE(text.starts_with(L"PASSWORD POLICY: Password must be at least %d characters "
                                     L"long"))
            << mask;
        for (UINT bit = 0; bit < 4; ++bit) {
            const bool named = text.find(parts[bit]) != std::wstring::npos;
            EXPECT_EQ((mask >> bit & 1) != 0, named) << mask << " " << bit;
        }
    }
}

// The characters that a mask asks for, each with its article.
std::vector<std::wstring> WantedCharacters(UINT mask, bool withArticle) {
    const std::pair<const wchar_t*, const wchar_t*> characters[] = {
        {L"a ", L"lower case character (a-z)"},
        {L"an ", L"upper case character (A-Z)"},
        {L"a ", L"number character (0-9)"},
        {L"a ", L"symbol character (!, @, #, $, %%, ^, &&, *, ...)"}};
    std::vector<std::wstring> wanted;
    for (UINT bit = 0; bit < 4; ++bit) {
        const std::wstring article = withArticle ? characters[bit].first : L"";
        if ((mask >> bit & 1) != 0) wanted.push_back(article + characters[bit].second);
    }
    return wanted;
}

// "a", "a and b", "a, b, and c".
std::wstring Listed(const std::vector<std::wstring>& parts) {
    if (parts.size() == 2) return parts[0] + L" and " + parts[1];
    std::wstring list;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        if (index > 0) list += L", ";
        if (index > 0 && index + 1 == parts.size()) list += L"and ";
        list += parts[index];
    }
    return list;
}

std::wstring PolicyText(UINT mask) {
    const std::wstring length = L"PASSWORD POLICY: Password must be at least %d characters long";
    const auto wanted = WantedCharacters(mask, true);
    if (wanted.empty()) return length + L".";
    if (wanted.size() == 1) {
        return length + L" and contain at least one " + WantedCharacters(mask, false)[0] + L".";
    }
    return length + L" and contain at least one each of the following: " + Listed(wanted) + L".";
}

TEST_F(Texts, PasswordPolicyReadsAsAgreedByTheBitsOfItsId) {
    for (UINT mask = 0; mask < 16; ++mask) EXPECT_EQ(PolicyText(mask), TextOf(41000 + mask));
}

TEST_F(Texts, SymbolsOfThePolicyAreDoubledWhereFormattingAndDrawingHalveThem) {
    for (UINT mask = 8; mask < 16; ++mask) {
        EXPECT_NE(std::wstring::npos, TextOf(41000 + mask).find(L"$, %%, ^, &&, *, ...")) << mask;
    }
}

TEST_F(Texts, FixedPolicyMessagesAreUnformatted) {
    EXPECT_EQ(L"Password Policy Error", TextOf(41016));
    EXPECT_EQ(L"Please modify your password to comply with Password Policy settings.",
              TextOf(41017));
    EXPECT_EQ(L"Your password does not meet the password policy requirements specified in "
              L"File\\Ombrix Settings\\Encryption.",
              TextOf(41018));
    EXPECT_EQ(L"The Ombrix encryption feature has been disabled by your administrator.",
              TextOf(41019));
}

TEST_F(Texts, WipeProgramHasItsTwelveTextsWithTheirPlaceholders) {
    const int placeholders[] = {1, 2, 1, 2, -1, 1, 1, 1, 2, 0, 0, 0};
    for (UINT index = 0; index < 12; ++index) {
        const std::wstring text = TextOf(62028 + index);
        ASSERT_FALSE(text.empty()) << index;
        if (placeholders[index] >= 0) {
            EXPECT_EQ(placeholders[index], CountOf(text, L'%')) << index;
        }
    }
}

TEST_F(Texts, WipeProgramHasItsTextsAsTheyAre) {
    const struct {
        UINT id;
        const wchar_t* text;
    } texts[] = {
        {62028, L"%s was unable to wipe a file"},
        {62029, L"%s could not wipe the file or folder '%s' as requested because it appears to "
                L"have been already deleted. The file may therefore be subject to recovery."},
        {62030, L"%s was unable to wipe a temporary file or folder"},
        {62031, L"%s was unable to wipe the file or folder '%s'. The file may be in use by "
                L"another program."},
        {62033, L"Try again\n%s will try to wipe the file or folder again."},
        {62034, L"Delete anyway\n%s will delete the file or folder without wiping."},
        {62035, L"Leave it\n%s will leave the file or folder in its current state and open an "
                L"Explorer window with the item selected."},
        {62036, L"%s can't wipe '%s'"},
        {62037, L"Files that are encrypted, compressed, or stored as \"sparse files\" can't be "
                L"reliably wiped."},
        {62038, L"Do the same thing for any additional errors (does not apply to \"Try again\")"},
        {62039, L"Don't show this message again"},
    };
    for (const auto& row : texts) EXPECT_EQ(row.text, TextOf(row.id)) << row.id;
}

TEST_F(Texts, OfALinkHaveTheirPlaceholdersAndNoFieldSeparator) {
    for (const UINT id : {130u, 131u, 132u, 133u, 134u, 145u, 150u, 160u}) {
        const std::wstring text = TextOf(id);
        ASSERT_FALSE(text.empty()) << id;
        EXPECT_EQ(CountOf(text, L'|'), 0) << id;
        EXPECT_EQ(CountOf(text, L'%'), id == 130 || id == 145 ? 1 : 0) << id;
        EXPECT_EQ(text.find(L"POPUP_MESSAGE"), std::wstring::npos) << id;
    }
    EXPECT_NE(TextOf(130).find(L"%s"), std::wstring::npos);
    EXPECT_NE(TextOf(145).find(L"%d"), std::wstring::npos);
    EXPECT_TRUE(TextOf(145).ends_with(L" ")); // 134 follows in the same field
}

TEST_F(Texts, OfAnUploadWindowFitTheirBuffers) {
    for (const UINT id : {136u, 137u, 150u}) EXPECT_LT(TextOf(id).size(), 512u) << id;
}

// A mail's texts are fields with pipes between them, the last one between two markers.
TEST_F(Texts, TextsOfAMailHaveNoSeparatorAndNoMarker) {
    for (const UINT id : {130u, 131u, 132u, 133u, 134u, 145u, 150u, 160u}) {
        const std::wstring text = TextOf(id);
        ASSERT_FALSE(text.empty()) << id;
        EXPECT_EQ(0, CountOf(text, L'|')) << id;
        EXPECT_EQ(std::wstring::npos, text.find(L"#POPUP")) << id;
    }
}

TEST_F(Texts, TextsOfAMailHaveTheirPlaceholders) {
    for (const UINT id : {131u, 132u, 133u, 134u, 150u, 160u}) {
        EXPECT_EQ(0, CountOf(TextOf(id), L'%')) << id;
    }
    EXPECT_EQ(1, CountOf(TextOf(130), L'%'));
    EXPECT_NE(std::wstring::npos, TextOf(130).find(L"%s"));
    EXPECT_EQ(1, CountOf(TextOf(145), L'%'));
    EXPECT_NE(std::wstring::npos, TextOf(145).find(L"%d"));
    EXPECT_TRUE(TextOf(145).ends_with(L' ')); // 134 follows in the same field
}

TEST_F(Texts, ATextIsCutToTheCapacity) { EXPECT_EQ(L"All", LoadText(obcore::TextId::AllFiles, 4)); }

TEST_F(Texts, AnIdWithoutATextIsEmpty) { EXPECT_EQ(L"", LoadText(obcore::TextId{9999})); }

} // namespace
