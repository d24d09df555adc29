#include "services/archive/ui/HelpAndUpdate.h"

#include <gtest/gtest.h>
#include <shellapi.h>

#include "services/archive/ThisModule.h"
#include "services/archive/policy/MachinePolicy.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

namespace {

using obarchive::ShowHelp;
using obarchive::ShowInstalledVersion;
using obtest::SetMachinePolicy;

constexpr wchar_t kAddress[] = L"https://help.example.org/mail?a=b#c";

// The addresses and paths given to the shell, in order. The fake shell opens nothing.
std::vector<std::wstring> opened;
INT_PTR shellAnswer = 42;
HINSTANCE WINAPI NoteOpened(HWND, const wchar_t* verb, const wchar_t* file,
                            const wchar_t* arguments, const wchar_t* folder, int) {
    EXPECT_STREQ(verb, L"open");
    EXPECT_EQ(arguments, nullptr);
    EXPECT_EQ(folder, nullptr);
    opened.push_back(file);
    return reinterpret_cast<HINSTANCE>(shellAnswer);
}

class HelpAndUpdateTest : public testing::Test {
protected:
    HelpAndUpdateTest() : shell_("shell32.dll", "ShellExecuteW", &NoteOpened) {
        obtest::ClearProductRegistry();
        obtest::RemoveTree(HelpFolder());
        opened.clear();
        shellAnswer = 42;
    }
    ~HelpAndUpdateTest() override {
        obtest::ClearProductRegistry();
        obtest::RemoveTree(HelpFolder());
    }
    void SetUp() override { ASSERT_TRUE(shell_.Ok()); }

    static std::wstring HelpFolder() { return obarchive::PathBesideModule(L"help"); }
    static std::wstring MakePage() {
        CreateDirectoryW(HelpFolder().c_str(), nullptr);
        obtest::WriteFileContent(HelpFolder() + L"\\index.html", "<p>");
        return HelpFolder() + L"\\index.html";
    }
    std::wstring OnlyBox() const {
        const auto seen = boxes_.Seen();
        EXPECT_EQ(seen.size(), 1U);
        if (seen.empty()) return {};
        EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
        return seen[0].text;
    }

    using Pages = std::vector<std::wstring>;
    obtest::ImportPatch<decltype(&ShellExecuteW)> shell_;
    obtest::MessageBoxWatcher boxes_;
};

TEST_F(HelpAndUpdateTest, HelpIsThePageBesideTheModule) {
    const std::wstring page = MakePage();
    ShowHelp(nullptr);
    EXPECT_EQ(opened, Pages{page});
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(HelpAndUpdateTest, TheAddressOfThePolicyComesFirst) {
    MakePage();
    for (const int view : {64, 32}) {
        obtest::ClearProductRegistry();
        opened.clear();
        SetMachinePolicy(obarchive::kHelpAddressPolicy, kAddress, view);
        ShowHelp(nullptr);
        EXPECT_EQ(opened, Pages{kAddress}) << view;
    }
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(HelpAndUpdateTest, AnAddressThatCannotBeOpenedFallsBackToThePage) {
    const std::wstring page = MakePage();
    SetMachinePolicy(obarchive::kHelpAddressPolicy, kAddress);
    shellAnswer = SE_ERR_NOASSOC;
    ShowHelp(nullptr);
    EXPECT_EQ(opened, (Pages{kAddress, page}));
    EXPECT_EQ(OnlyBox(),
              std::wstring(L"The help page could not be opened. It should be here:\n\n") +
                  kAddress);
}

TEST_F(HelpAndUpdateTest, WithoutAPageAMessageNamesThePlaceOfTheHelp) {
    ShowHelp(reinterpret_cast<HWND>(0xDEAD)); // an owner that has gone
    EXPECT_EQ(opened, Pages{});
    EXPECT_EQ(OnlyBox(), L"The help page could not be opened. It should be here:\n\n" +
                             HelpFolder() + L"\\index.html");
}

TEST_F(HelpAndUpdateTest, OnlyPlainSecureAddressesAreOpened) {
    for (const wchar_t* bad :
         {L"", L"http://example.org", L"https://", L"file:///C:/x.exe", L"C:\\windows\\notepad.exe",
          L"https://example.org/ x", L"https://example.org/\"x", L"https://ex\u00E4mple.org",
          L"https://example.org/\n", L"javascript:alert(1)", L" https://example.org"}) {
        SetMachinePolicy(L"Address", bad);
        EXPECT_EQ(obarchive::PolicyAddress(L"Address"), L"") << bad;
    }
    for (const wchar_t* good : {L"https://e", L"HTTPS://example.org/a?b=c&d=%20#e", kAddress}) {
        SetMachinePolicy(L"Address", good);
        EXPECT_EQ(obarchive::PolicyAddress(L"Address"), good);
    }
}

TEST_F(HelpAndUpdateTest, TheUpdateEntryShowsTheInstalledVersion) {
    ShowInstalledVersion(nullptr);
    EXPECT_EQ(opened, Pages{});
    EXPECT_EQ(OnlyBox(), L"Version 1.0.0.0 is installed.\n\nNew versions come from whoever "
                         L"installed this one.");
}

TEST_F(HelpAndUpdateTest, TheVersionIsThatOfTheWholeProduct) {
    const std::string version = OB_VERSION_TEXT;
    EXPECT_EQ(obarchive::ServiceVersion(), std::wstring(version.begin(), version.end()));
}

TEST_F(HelpAndUpdateTest, WithAnAddressItAsksBeforeOpening) {
    SetMachinePolicy(obarchive::kUpdateAddressPolicy, kAddress);
    boxes_.AnswerWith(IDNO);
    ShowInstalledVersion(nullptr);
    EXPECT_EQ(opened, Pages{});
    EXPECT_EQ(OnlyBox(), std::wstring(L"Version 1.0.0.0 is installed.\n\nDo you want to open this "
                                      L"page to see whether there is a newer one?\n\n") +
                             kAddress);
    boxes_.AnswerWith(IDYES);
    ShowInstalledVersion(nullptr);
    EXPECT_EQ(opened, Pages{kAddress});
    EXPECT_EQ(boxes_.Seen().size(), 2U);
}

} // namespace
