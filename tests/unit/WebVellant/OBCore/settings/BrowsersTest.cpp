// Which browsers are there: App Paths in both views, programs of both kinds, versions of Firefox.
#include "OBCore/settings/Browsers.h"

#include "ObLib/Src/Win32/ModulePath.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obcore::FindBrowsers;
using obcore::FirefoxInfo;
using obcore::GetFirefoxInfo;
using obcore::InstalledBrowsers;
using obcore::IsBrowserInstalled;
using ObLib::RegistryView;
using obtest::AddBrowser;
using obtest::ProgramVersion;

constexpr auto k32 = RegistryView::Bits32;
constexpr auto k64 = RegistryView::Bits64;
constexpr wchar_t kEdge[] = L"msedge.exe";

// Files whose names begin with "x86" are programs of 32 bits, as no program of that kind with a
// version can be made here.
BOOL WINAPI TypeByName(const wchar_t* path, DWORD* type) {
    const std::wstring text(path);
    if (!obtest::FileExists(text)) return FALSE;
    const std::size_t name = text.find_last_of(L'\\') + 1;
    *type = text.compare(name, 3, L"x86") == 0 ? SCS_32BIT_BINARY : SCS_64BIT_BINARY;
    return TRUE;
}

class Browsers : public testing::Test {
protected:
    void SetUp() override { obtest::ClearBrowsers(); }
    void TearDown() override { obtest::ClearBrowsers(); }

    obtest::TestFolder folder_;
};

TEST_F(Browsers, AreThereInTheViewAndOfTheBitsAskedFor) {
    AddBrowser(kEdge, MakeProgram(folder_, L"64.exe"), 64);
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k32));
    EXPECT_FALSE(IsBrowserInstalled(L"chrome.exe", k64));
    obtest::ClearBrowsers();
    AddBrowser(kEdge, MakeProgramOf32Bits(folder_, L"32.exe"), 32);
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k32));
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    EXPECT_FALSE(IsBrowserInstalled(L"chrome.exe", k32));
}

TEST_F(Browsers, AreNotThereForAPathThatLeadsToNoProgram) {
    const std::wstring program = MakeProgram(folder_, L"program.exe");
    const std::wstring paths[] = {L"",
                                  folder_ / L"missing.exe",
                                  folder_.Path(),
                                  folder_.File(L"text.exe", "no program"),
                                  folder_.File(L"empty.exe", ""),
                                  L"\"" + program + L"\"",
                                  program + L" --start"};
    for (const std::wstring& path : paths) {
        AddBrowser(kEdge, path, 64);
        EXPECT_FALSE(IsBrowserInstalled(kEdge, k64)) << testing::PrintToString(path);
    }
    AddBrowser(kEdge, program, 64);
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
}

TEST_F(Browsers, AreNotThereForAKeyWithoutADefaultValue) {
    const std::wstring program = MakeProgram(folder_, L"program.exe");
    for (const wchar_t* const name : {L"msedge.exe", L"firefox.exe"}) {
        obtest::SetValue(
            HKEY_LOCAL_MACHINE,
            std::wstring(L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\") + name,
            L"Path", program);
    }
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    EXPECT_FALSE(GetFirefoxInfo(k64).found);
    AddBrowser(kEdge, program, 64);
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
}

void SetAppPath(DWORD type, const void* data, std::size_t bytes) {
    obtest::SetRawValue(HKEY_LOCAL_MACHINE,
                        L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\msedge.exe", L"",
                        type, data, static_cast<DWORD>(bytes));
}

TEST_F(Browsers, AreReadWhateverTheTypeAndWithoutATerminator) {
    const std::wstring path = MakeProgram(folder_, L"program.exe");
    SetAppPath(REG_SZ, path.data(), path.size() * sizeof(wchar_t));
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
    SetAppPath(REG_BINARY, path.data(), path.size() * sizeof(wchar_t));
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
    const DWORD number = 0x610063;
    SetAppPath(REG_DWORD, &number, sizeof number);
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    SetAppPath(REG_SZ, path.data(), (path.size() - 1) * sizeof(wchar_t));
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    SetAppPath(REG_SZ, path.data(), 0);
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
}

TEST_F(Browsers, HaveAPathOf2080BytesAtMost) {
    std::wstring path = MakeProgram(folder_, L"program.exe");
    path += std::wstring(1040 - path.size(), L'\0');
    SetAppPath(REG_SZ, path.data(), 2080);
    EXPECT_TRUE(IsBrowserInstalled(kEdge, k64));
    path += L'\0';
    SetAppPath(REG_SZ, path.data(), 2081);
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    const std::wstring full(1040, L'a'); // without any terminator
    SetAppPath(REG_SZ, full.data(), 2080);
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
}

TEST_F(Browsers, ExpandTheirPathForFirefoxAlone) {
    MakeProgram(folder_, L"program.exe");
    ASSERT_TRUE(SetEnvironmentVariableW(L"OB_BROWSERS", folder_.Path().c_str()));
    for (const wchar_t* const name : {L"firefox.exe", L"msedge.exe"}) {
        AddBrowser(name, L"%OB_BROWSERS%\\program.exe", 64, REG_EXPAND_SZ);
    }
    EXPECT_TRUE(GetFirefoxInfo(k64).found);
    EXPECT_FALSE(IsBrowserInstalled(kEdge, k64));
    AddBrowser(L"firefox.exe", L"%OB_BROWSERS%\\program.exe", 64, REG_SZ);
    EXPECT_FALSE(GetFirefoxInfo(k64).found);
    SetEnvironmentVariableW(L"OB_BROWSERS", nullptr);
}

TEST_F(Browsers, HaveTheProductVersionOfFirefox) {
    const ProgramVersion version{120, 34, 5678};
    AddBrowser(L"firefox.exe", MakeProgram(folder_, L"program.exe", &version), 64);
    const FirefoxInfo info = GetFirefoxInfo(k64);
    EXPECT_TRUE(info.found);
    EXPECT_EQ(120u, info.major);
    EXPECT_EQ(34u, info.minor);
    EXPECT_EQ(5678u, info.build);
}

TEST_F(Browsers, HaveZerosForFirefoxWithoutAVersionAndWithoutFirefox) {
    AddBrowser(L"firefox.exe", MakeProgramOf32Bits(folder_, L"program.exe"), 32);
    const FirefoxInfo found = GetFirefoxInfo(k32);
    EXPECT_TRUE(found.found);
    EXPECT_EQ(0u, found.major + found.minor + found.build);
    const FirefoxInfo missing = GetFirefoxInfo(k64);
    EXPECT_FALSE(missing.found);
    EXPECT_EQ(0u, missing.major + missing.minor + missing.build);
}

WORD architecture = PROCESSOR_ARCHITECTURE_AMD64;
WORD otherArchitecture = PROCESSOR_ARCHITECTURE_INTEL; // from the older call
bool hasNativeInfo = true;
decltype(&GetProcAddress) realFind = nullptr;

void WINAPI ReportArchitecture(SYSTEM_INFO* info) {
    *info = {};
    info->wProcessorArchitecture = architecture;
}

void WINAPI ReportOtherArchitecture(SYSTEM_INFO* info) {
    *info = {};
    info->wProcessorArchitecture = otherArchitecture;
}

FARPROC WINAPI FindEntry(HMODULE module, const char* name) {
    if (std::string_view(name) != "GetNativeSystemInfo") return realFind(module, name);
    return hasNativeInfo ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&ReportArchitecture))
                         : nullptr;
}

// What is found on a system of `found` architecture.
class BrowsersOfASystem : public Browsers {
protected:
    BrowsersOfASystem()
        : find_("kernel32.dll", "GetProcAddress", &FindEntry),
          info_("kernel32.dll", "GetSystemInfo", &ReportOtherArchitecture),
          type_("kernel32.dll", "GetBinaryTypeW", &TypeByName) {
        realFind = find_.Real();
        architecture = PROCESSOR_ARCHITECTURE_AMD64;
        otherArchitecture = PROCESSOR_ARCHITECTURE_INTEL;
        hasNativeInfo = true;
    }
    void SetUp() override {
        Browsers::SetUp();
        ASSERT_TRUE(find_.Ok() && info_.Ok() && type_.Ok() && views_.Ok());
    }
    std::wstring Firefox(WORD major, int bits) const {
        const ProgramVersion version{major, 0, 0};
        const std::wstring name = (bits == 32 ? L"x86-" : L"x64-") + std::to_wstring(major);
        return MakeProgram(folder_, name + L".exe", &version);
    }

    obtest::SeparateViews views_;
    obtest::ImportPatch<decltype(&GetProcAddress)> find_;
    obtest::ImportPatch<decltype(&GetSystemInfo)> info_;
    obtest::ImportPatch<decltype(&GetBinaryTypeW)> type_;
};

TEST_F(BrowsersOfASystem, AreLookedForInTheViewAskedFor) {
    const std::wstring path64 = MakeProgram(folder_, L"x64.exe");
    const std::wstring path32 = MakeProgram(folder_, L"x86.exe");
    const struct {
        const std::wstring& path;
        int view;
        bool is32;
        bool is64;
    } cases[] = {{path32, 32, true, false},
                 {path64, 32, false, false},
                 {path32, 64, false, false},
                 {path64, 64, false, true}};
    for (const auto& one : cases) {
        obtest::SeparateViews::Clear();
        obtest::SeparateViews::Add(kEdge, one.path, one.view);
        EXPECT_EQ(one.is32, IsBrowserInstalled(kEdge, k32)) << one.view;
        EXPECT_EQ(one.is64, IsBrowserInstalled(kEdge, k64)) << one.view;
    }
}

TEST_F(BrowsersOfASystem, CountFor64BitsOnlyWhereTheSystemHasThem) {
    const std::wstring path = MakeProgram(folder_, L"x64.exe");
    for (const wchar_t* const name : {L"chrome.exe", L"msedge.exe", L"firefox.exe"}) {
        obtest::SeparateViews::Add(name, path, 64);
    }
    const struct {
        WORD architecture;
        WORD otherArchitecture;
        bool hasNativeInfo;
        bool isFound;
    } cases[] = {{9, 0, true, true},   {6, 0, true, true},  {0, 0, true, false},
                 {12, 0, true, false}, {0, 9, true, false}, {9, 0, false, false},
                 {0, 9, false, true},  {0, 6, false, true}};
    for (const auto& one : cases) {
        architecture = one.architecture;
        otherArchitecture = one.otherArchitecture;
        hasNativeInfo = one.hasNativeInfo;
        const InstalledBrowsers found = FindBrowsers();
        EXPECT_EQ(one.isFound, found.chrome) << one.architecture;
        EXPECT_EQ(one.isFound, found.edge) << one.architecture;
        EXPECT_EQ(one.isFound, found.firefox) << one.architecture;
    }
}

TEST_F(BrowsersOfASystem, CountFor32BitsOnEverySystem) {
    const std::wstring path = MakeProgram(folder_, L"x86.exe");
    for (const wchar_t* const name : {L"chrome.exe", L"msedge.exe", L"firefox.exe"}) {
        obtest::SeparateViews::Add(name, path, 32);
    }
    for (const WORD each : {WORD{9}, WORD{0}}) {
        architecture = each;
        const InstalledBrowsers found = FindBrowsers();
        EXPECT_TRUE(found.chrome && found.edge && found.firefox && found.firefoxTakesExtension);
    }
}

struct FirefoxCase {
    int of32; // major version; 0: there is none
    int of64;
    bool has64Bits;
    bool isFound;
    bool takesExtension;
};

constexpr FirefoxCase kFirefox[] = {
    {0, 0, true, false, false},    {120, 0, true, true, true},
    {120, 121, true, true, true}, // the second one isn't looked at
    {0, 120, true, true, true},    {0, 121, true, true, false},
    {121, 0, true, false, false}, // the second look begins anew
    {121, 120, true, true, true},  {121, 122, true, true, false},
    {121, 0, false, false, false}, {121, 120, false, false, false},
    {120, 0, false, true, true},   {0, 120, false, false, false},
};

TEST_F(BrowsersOfASystem, ChooseTheFirefoxThatCounts) {
    for (const FirefoxCase& one : kFirefox) {
        obtest::SeparateViews::Clear();
        if (one.of32)
            obtest::SeparateViews::Add(L"firefox.exe", Firefox(static_cast<WORD>(one.of32), 32),
                                       32);
        if (one.of64)
            obtest::SeparateViews::Add(L"firefox.exe", Firefox(static_cast<WORD>(one.of64), 64),
                                       64);
        architecture = one.has64Bits ? 9 : 0;
        const InstalledBrowsers found = FindBrowsers();
        const auto which = testing::PrintToString(std::vector{one.of32, one.of64, +one.has64Bits});
        EXPECT_EQ(one.isFound, found.firefox) << which;
        EXPECT_EQ(one.takesExtension, found.firefoxTakesExtension) << which;
    }
}

} // namespace
