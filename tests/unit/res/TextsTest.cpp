#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/TextIds.h"

namespace {

using obcore::LoadText;

class Texts : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(obcore::BindResourceModule()); }
};

int CountOf(const std::wstring& text, wchar_t unit) {
    return static_cast<int>(std::count(text.begin(), text.end(), unit));
}

TEST_F(Texts, EveryIdThatTheCodeLoadsHasAText) {
    for (const obcore::TextId id : obcore::kAllTextIds) {
        EXPECT_FALSE(LoadText(id).empty()) << static_cast<UINT>(id);
    }
}

TEST_F(Texts, EveryLabelOfThePickerHasOneAccessKeyOfItsOwn) {
    std::wstring keys;
    for (const UINT id : {101u, 102u, 103u, 180u, 181u, 182u, 183u, 184u, 185u, 186u, 187u, 188u}) {
        const std::wstring text = LoadText(id);
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
        const std::wstring text = LoadText(41000 + mask);
        EXPECT_TRUE(text.starts_with(L"PASSWORD POLICY: Password must be at least %d characters "
                                     L"long"))
            << mask;
        for (UINT bit = 0; bit < 4; ++bit) {
            const bool named = text.find(parts[bit]) != std::wstring::npos;
            EXPECT_EQ((mask >> bit & 1) != 0, named) << mask << " " << bit;
        }
    }
}

TEST_F(Texts, SymbolsOfThePolicyStandDoubledWhereFormattingAndDrawingHalveThem) {
    for (UINT mask = 8; mask < 16; ++mask) {
        EXPECT_NE(std::wstring::npos, LoadText(41000 + mask).find(L"$, %%, ^, &&, *, ...")) << mask;
    }
}

TEST_F(Texts, FixedPolicyMessagesStandAsTheyAre) {
    EXPECT_EQ(L"Password Policy Error", LoadText(41016u));
    EXPECT_EQ(L"Please modify your password to comply with Password Policy settings.",
              LoadText(41017u));
    EXPECT_EQ(L"Your password does not meet the password policy requirements specified in "
              L"File\\Ombrix Settings\\Encryption.",
              LoadText(41018u));
    EXPECT_EQ(L"The Ombrix encryption feature has been disabled by your administrator.",
              LoadText(41019u));
}

TEST_F(Texts, WipeProgramHasItsTwelveTextsWithTheirPlaceholders) {
    const int placeholders[] = {1, 2, 1, 2, -1, 1, 1, 1, 2, 0, 0, 0};
    for (UINT index = 0; index < 12; ++index) {
        const std::wstring text = LoadText(62028 + index, 4096);
        ASSERT_FALSE(text.empty()) << index;
        if (placeholders[index] >= 0) {
            EXPECT_EQ(placeholders[index], CountOf(text, L'%')) << index;
        }
    }
    EXPECT_EQ(L"Try again\n%s will try to wipe the file or folder again.", LoadText(62033u));
    EXPECT_NE(std::wstring::npos, LoadText(62037u).find(L"\"sparse files\""));
}

TEST_F(Texts, ATextIsCutToTheCapacity) { EXPECT_EQ(L"All", LoadText(obcore::TextId::AllFiles, 4)); }

TEST_F(Texts, AnIdWithoutATextIsEmpty) { EXPECT_EQ(L"", LoadText(9999u)); }

}  // namespace
