// The about box.
#include "OBCore/settings/AboutDialog.h"

#include <algorithm>

#include "OBCore/modules/DialogIds.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/AboutDialogIds.h"
#include "OBCore/settings/LibraryVersion.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/SettingsFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::OpenDialog;

// The numbers are fixed, whatever their names.
static_assert(OB_ABOUT == 107 && OB_ABOUT_HELP == 1000 && OB_ABOUT_VERSION == 1001);
static_assert(OB_RECOVERY_ICON == 112 && OB_PRODUCT_ICON == 111);

std::vector<WORD> iconsAsked; // by id, in order

HANDLE WINAPI LoadRecorded(HINSTANCE module, LPCWSTR name, UINT type, int width, int height,
                           UINT flags) {
    static const auto real = reinterpret_cast<decltype(&LoadImageW)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "LoadImageW")));
    if (type == IMAGE_ICON) iconsAsked.push_back(LOWORD(reinterpret_cast<ULONG_PTR>(name)));
    return real(module, name, type, width, height, flags);
}

using Languages = std::vector<WORD>;

BOOL CALLBACK CollectLanguage(HMODULE, LPCWSTR, LPCWSTR, WORD language, LONG_PTR languages) {
    reinterpret_cast<Languages*>(languages)->push_back(language);
    return TRUE;
}

Languages LanguagesOfTheBox() {
    Languages languages;
    EnumResourceLanguagesW(GetModuleHandleW(nullptr), RT_DIALOG, MAKEINTRESOURCEW(OB_ABOUT),
                           &CollectLanguage, reinterpret_cast<LONG_PTR>(&languages));
    return languages;
}

INT_PTR CALLBACK NoProcedure(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// The text of the box in one language, with its places.
std::wstring TemplateIn(WORD language) {
    const HMODULE module = GetModuleHandleW(nullptr);
    const HRSRC found = FindResourceExW(module, RT_DIALOG, MAKEINTRESOURCEW(OB_ABOUT), language);
    const auto* const form =
        static_cast<const DLGTEMPLATE*>(LockResource(LoadResource(module, found)));
    const ObLib::UniqueWindow box(
        CreateDialogIndirectParamW(module, form, nullptr, &NoProcedure, 0));
    return obtest::ItemText(box.Get(), OB_ABOUT_VERSION);
}

// The numbers of the places of a message, in order.
std::wstring PlacesIn(const std::wstring& text) {
    std::wstring places;
    for (std::size_t at = text.find(L'%'); at != std::wstring::npos; at = text.find(L'%', at + 2)) {
        places += text.substr(at + 1, 1);
    }
    std::ranges::sort(places);
    return places;
}

class AboutDialog : public obtest::SettingsFixture {
protected:
    INT_PTR Show(const std::function<void(const OpenDialog&)>& use) {
        return Operate(
            OB_ABOUT_VERSION, [this] { return obcore::ShowAboutDialog(nullptr, options_); }, use);
    }
    static std::wstring About() { return obcore::LoadText(obcore::TextId::AboutCopyright); }

    obcore::OBOptions options_ = obtest::PlainOptions();
};

TEST_F(AboutDialog, HasTheVersionsOfTheLibrary) {
    const obcore::LibraryVersion version = obcore::ReadLibraryVersion();
    EXPECT_EQ(L"1.2.3 of the file", version.file);
    EXPECT_EQ(L"5.6.7 of the product", version.product);
}

TEST_F(AboutDialog, FillsTheThreePlacesOfItsText) {
    EXPECT_EQ(L"5.6.7 of the product, 1.2.3 of the file: " + About(),
              obcore::AboutText(L"%2, %1: %3"));
    EXPECT_EQ(L"a\r\nb 100%", obcore::AboutText(L"a%nb 100%%"));
}

TEST_F(AboutDialog, LeavesOtherPlacesEmpty) { EXPECT_EQ(L"<><>", obcore::AboutText(L"<%4><%99>")); }

TEST_F(AboutDialog, ShowsTheTemplateItselfWhereItIsNoMessage) {
    EXPECT_EQ(L"", obcore::AboutText(L""));
    const std::wstring tooLong(3000, L'x');
    EXPECT_EQ(tooLong, obcore::AboutText(tooLong));
}

TEST_F(AboutDialog, HasTheThreePlacesInEveryLanguage) {
    const Languages languages = LanguagesOfTheBox();
    EXPECT_NE(languages.end(), std::ranges::find(languages, WORD{0x0409}));
    for (const WORD language : languages) {
        EXPECT_EQ(L"123", PlacesIn(TemplateIn(language))) << language;
    }
}

TEST_F(AboutDialog, ShowsItsTextFilled) {
    Show([](const OpenDialog& dialog) {
        const std::wstring text = dialog.Text(OB_ABOUT_VERSION);
        for (const std::wstring& part :
             {std::wstring(L"1.2.3 of the file"), std::wstring(L"5.6.7 of the product"), About()}) {
            EXPECT_NE(std::wstring::npos, text.find(part)) << text;
        }
        EXPECT_EQ(std::wstring::npos, text.find(L'%'));
    });
}

TEST_F(AboutDialog, HasTheIconOfRecoveryOnlyWithAUsableKey) {
    const obtest::ImportPatch<decltype(&LoadImageW)> load("user32.dll", "LoadImageW",
                                                          &LoadRecorded);
    ASSERT_TRUE(load.Ok());
    const struct {
        bool hasCertificate;
        std::uint32_t result;
        WORD icon;
    } rows[] = {{true, 1, 112}, {true, 0, 111}, {true, 2, 111}, {false, 1, 111}};
    for (const auto& row : rows) {
        options_.HasEntCertificate = row.hasCertificate;
        options_.PublicKeyResult = row.result;
        iconsAsked.clear();
        Show([](const OpenDialog&) {});
        ASSERT_LE(2u, iconsAsked.size());
        EXPECT_EQ(row.icon, iconsAsked[0]);
        EXPECT_EQ(111, iconsAsked[1]); // the large one
    }
}

TEST_F(AboutDialog, AsksForHelpWithItsTopicTwice) {
    Show([](const OpenDialog& dialog) {
        FakeModules::ForgetCalls();
        dialog.Press(OB_ABOUT_HELP);
        const auto owner = reinterpret_cast<std::uint64_t>(dialog.window);
        EXPECT_EQ(Lines{L"WebHelpW(" + std::to_wstring(owner) +
                        L", \"Help About Topic\", \"Help About Topic\")"},
                  FakeModules::Calls());
        EXPECT_TRUE(obtest::IsOpen(dialog.window));
    });
}

TEST_F(AboutDialog, EndsWithOkOrCancel) {
    EXPECT_EQ(1, Show([](const OpenDialog& dialog) { dialog.Ok(); }));
    EXPECT_EQ(2, Show([](const OpenDialog&) {}));
}

TEST_F(AboutDialog, IsWhiteAndItsLabelsHaveTheColoursOfWindows) {
    Show([](const OpenDialog& dialog) {
        const HDC context = GetDC(dialog.window);
        const auto dc = reinterpret_cast<WPARAM>(context);
        const auto label = reinterpret_cast<LPARAM>(dialog.Item(OB_ABOUT_VERSION));
        EXPECT_EQ(reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH)),
                  SendMessageW(dialog.window, WM_CTLCOLORDLG, dc,
                               reinterpret_cast<LPARAM>(dialog.window)));
        EXPECT_EQ(reinterpret_cast<LRESULT>(GetSysColorBrush(5)),
                  SendMessageW(dialog.window, WM_CTLCOLORSTATIC, dc, label));
        ReleaseDC(dialog.window, context);
    });
}

} // namespace
