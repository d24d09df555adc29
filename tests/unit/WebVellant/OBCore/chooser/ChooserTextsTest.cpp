// The chooser's texts in every language that the resources have.
#include <windows.h>

#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ResourceModule.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/WindowKit.h"

namespace {

// The numbers are fixed, whatever their names.
static_assert(OB_CHOOSER == 114 && OB_PRODUCT_ICON == 111);
static_assert(OB_CHOOSER_CONTINUE == 1208 && OB_CHOOSER_HEADLINE == 1211);
static_assert(OB_CHOOSER_LIST == 1212 && OB_CHOOSER_DEFAULT == 1214);

using Languages = std::vector<WORD>;

constexpr int kTextsOfABlock = 16;

BOOL CALLBACK CollectLanguage(HMODULE, LPCWSTR, LPCWSTR, WORD language, LONG_PTR languages) {
    reinterpret_cast<Languages*>(languages)->push_back(language);
    return TRUE;
}

LPCWSTR BlockOf(UINT text) { return MAKEINTRESOURCEW(text / kTextsOfABlock + 1); }

Languages LanguagesOf(LPCWSTR type, LPCWSTR name) {
    Languages languages;
    EnumResourceLanguagesW(GetModuleHandleW(nullptr), type, name, &CollectLanguage,
                           reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}

template <class Data>
const Data* ResourceIn(LPCWSTR type, LPCWSTR name, WORD language) {
    const HMODULE module = GetModuleHandleW(nullptr);
    const HRSRC found = FindResourceExW(module, type, name, language);
    return found ? static_cast<const Data*>(LockResource(LoadResource(module, found))) : nullptr;
}

// Texts of a block come one after the other, each after its length.
std::wstring TextIn(WORD language, obcore::TextId id) {
    const UINT number = static_cast<UINT>(id);
    const auto* text = ResourceIn<wchar_t>(RT_STRING, BlockOf(number), language);
    if (!text) return {};
    for (UINT skipped = 0; skipped < number % kTextsOfABlock; ++skipped) text += 1 + *text;
    return std::wstring(text + 1, *text);
}

INT_PTR CALLBACK NoProcedure(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

std::size_t CountOf(const std::wstring& text, const std::wstring& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::wstring::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

class ChooserTexts : public testing::Test {
protected:
    void SetUp() override {
        languages_ = LanguagesOf(RT_STRING, BlockOf(138));
        ASSERT_NE(std::find(languages_.begin(), languages_.end(), 0x0409), languages_.end());
    }

    Languages languages_;
};

// The button's text is the state of the login.
TEST_F(ChooserTexts, OfTheButtonDifferInEveryLanguage) {
    for (const WORD language : languages_) {
        const std::wstring login = TextIn(language, obcore::TextId::ContinueByLogin);
        const std::wstring loggedIn = TextIn(language, obcore::TextId::ContinueLoggedIn);
        EXPECT_FALSE(login.empty()) << language;
        EXPECT_FALSE(loggedIn.empty()) << language;
        EXPECT_NE(login, loggedIn) << language;
        EXPECT_LT(login.size(), 64u) << language; // both are read whole, so they differ there too
        EXPECT_LT(loggedIn.size(), 64u) << language;
    }
}

TEST_F(ChooserTexts, OfTheSpaceHaveTwoPlacesAndTheirLength) {
    for (const WORD language : languages_) {
        const std::wstring space = TextIn(language, obcore::TextId::FreeOfTotal);
        EXPECT_EQ(CountOf(space, L"%ls"), 2u) << language;
        EXPECT_EQ(CountOf(space, L"%"), 2u) << language;
        const std::wstring unknown = TextIn(language, obcore::TextId::SpaceUnknown);
        EXPECT_FALSE(unknown.empty()) << language;
        EXPECT_LT(unknown.size(), 51u) << language;
    }
}

TEST_F(ChooserTexts, OfTheButtonAreInTheTemplateOfEveryLanguageFromTheStart) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    const Languages dialogs = LanguagesOf(RT_DIALOG, MAKEINTRESOURCEW(OB_CHOOSER));
    EXPECT_EQ(dialogs.size(), languages_.size());
    for (const WORD language : dialogs) {
        const auto* const form =
            ResourceIn<DLGTEMPLATE>(RT_DIALOG, MAKEINTRESOURCEW(OB_CHOOSER), language);
        ASSERT_NE(form, nullptr) << language;
        const ObLib::UniqueWindow dialog(
            CreateDialogIndirectParamW(nullptr, form, nullptr, &NoProcedure, 0));
        ASSERT_TRUE(dialog) << language;
        EXPECT_EQ(obtest::ItemText(dialog.Get(), OB_CHOOSER_CONTINUE),
                  TextIn(language, obcore::TextId::ContinueByLogin))
            << language;
    }
}

} // namespace
