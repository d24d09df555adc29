// Adding the extension: who is started with what, and who is warned.
#include "OBCore/settings/BrowserExtension.h"

#include <shellapi.h>

#include "OBCore/modules/Messages.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/settings/StoreAddress.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obcore::OnBrowserCommand;
using obcore::TextId;
using obtest::Lines;

constexpr int kEdge = 1042;
constexpr int kFirefox = 1043;
constexpr int kChrome = 1046;

Lines starts;

HINSTANCE WINAPI RecordStart(HWND window, const wchar_t* verb, const wchar_t* file,
                             const wchar_t* parameters, const wchar_t* folder, INT state) {
    starts.push_back(std::to_wstring(reinterpret_cast<INT_PTR>(window)) + L" " + verb + L" " +
                     file + L" " + parameters + L" " + (folder ? folder : L"null") + L" " +
                     std::to_wstring(state));
    return nullptr; // a failed start
}

class BrowserExtension : public obtest::SettingsFixture {
protected:
    BrowserExtension() : start_("shell32.dll", "ShellExecuteW", &RecordStart) { starts.clear(); }
    void SetUp() override {
        SettingsFixture::SetUp();
        ASSERT_TRUE(start_.Ok() && views_.Ok());
    }
    // The text and caption of the box that the command shows.
    static std::wstring WarningOf(int id) {
        const obtest::MessageBoxWatcher watcher;
        EXPECT_TRUE(OnBrowserCommand(nullptr, id));
        const auto seen = watcher.Seen();
        if (seen.size() != 1) return L"";
        EXPECT_TRUE(seen[0].hasIcon);
        EXPECT_EQ(obcore::kMessageCaption, seen[0].caption);
        return seen[0].text;
    }

    obtest::ImportPatch<decltype(&ShellExecuteW)> start_;
    obtest::SeparateViews views_;
    obtest::TestFolder folder_;
};

std::wstring FolderOfProgram() { return *ObLib::ModuleFolder(nullptr); }

TEST_F(BrowserExtension, OpensTheStoresPageInChromeAndInEdge) {
    EXPECT_TRUE(OnBrowserCommand(nullptr, kChrome));
    EXPECT_TRUE(OnBrowserCommand(nullptr, kEdge));
    const std::wstring page = obcore::kExtensionPage;
    EXPECT_EQ((Lines{L"0 open chrome.exe " + page + L" null 5",
                     L"0 open msedge.exe " + page + L" null 5"}),
              starts);
}

TEST_F(BrowserExtension, HasAStorePageWithASlugAndTheExtensionsId) {
    const std::wstring page = obcore::kExtensionPage;
    EXPECT_EQ(0u, page.find(L"https://"));
    const std::size_t path = page.find(L"/webstore/detail/");
    ASSERT_NE(std::wstring::npos, path);
    const std::wstring rest = page.substr(path + 17);
    const std::size_t slash = rest.find(L'/');
    EXPECT_GT(slash, 0u);
    EXPECT_EQ(L"kembcdlbgbcnnchcnbdhbmbhbejnedjf", rest.substr(slash + 1));
}

TEST_F(BrowserExtension, OpensTheFileBesideTheProgramInFirefox) {
    EXPECT_TRUE(OnBrowserCommand(nullptr, kFirefox));
    EXPECT_EQ((Lines{L"0 open firefox.exe \"" + FolderOfProgram() + L"FFExt.xpi\" null 5"}),
              starts);
}

TEST_F(BrowserExtension, WarnsWhereABrowserOf32BitsIsInstalledAndStartsNothing) {
    const std::wstring path = MakeProgramOf32Bits(folder_, L"32.exe");
    const struct {
        int id;
        const wchar_t* executable;
        TextId warning;
    } cases[] = {{kChrome, L"chrome.exe", TextId{164}},
                 {kEdge, L"msedge.exe", TextId{163}},
                 {kFirefox, L"firefox.exe", TextId{162}}};
    for (const auto& one : cases) {
        obtest::SeparateViews::Add(one.executable, path, 32);
        obtest::SeparateViews::Add(one.executable, MakeProgram(folder_, L"64.exe"),
                                   64); // doesn't count
        EXPECT_EQ(obcore::LoadText(one.warning), WarningOf(one.id)) << one.id;
    }
    EXPECT_EQ(Lines(), starts);
}

TEST_F(BrowserExtension, StartsABrowserOf64BitsWithoutAWarning) {
    const std::wstring path = MakeProgram(folder_, L"64.exe");
    for (const wchar_t* const name : {L"chrome.exe", L"msedge.exe", L"firefox.exe"}) {
        obtest::SeparateViews::Add(name, path, 64);
    }
    for (const int id : {kChrome, kEdge, kFirefox}) EXPECT_TRUE(OnBrowserCommand(nullptr, id));
    EXPECT_EQ(3u, starts.size());
}

// A path that fills the room of 260 characters is cut.
DWORD WINAPI LongPath(HMODULE, wchar_t* path, DWORD capacity) {
    for (DWORD at = 0; at < capacity; ++at) path[at] = at % 10 == 0 ? L'\\' : L'a';
    path[capacity - 1] = L'\0';
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return capacity;
}
DWORD WINAPI NoPath(HMODULE, wchar_t*, DWORD) { return 0; }

TEST_F(BrowserExtension, StartsNoFirefoxWithoutTheProgramsFolder) {
    for (auto* const fake : {&LongPath, &NoPath}) {
        const obtest::ImportPatch<decltype(&GetModuleFileNameW)> patch("kernel32.dll",
                                                                       "GetModuleFileNameW", fake);
        ASSERT_TRUE(patch.Ok());
        EXPECT_TRUE(OnBrowserCommand(nullptr, kFirefox));
    }
    EXPECT_EQ(Lines(), starts);
}

TEST_F(BrowserExtension, CountsNoOtherIdAsABrowser) {
    for (const int id : {0, 8, 1041, 1044, 1053}) EXPECT_FALSE(OnBrowserCommand(nullptr, id)) << id;
    EXPECT_EQ(Lines(), starts);
}

} // namespace
