#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

#include <cstring>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/settings/TransformRows.h"
#include "ObLib/Src/Win32/ModulePath.h"
#include "ObLibX/src/utilities/ObUtil.h"

namespace obtest {
namespace {

constexpr wchar_t kAppPaths[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";

constexpr wchar_t kViews[] = L"Software\\ObTestViews\\";

decltype(&RegOpenKeyExW) realOpen = nullptr;

std::wstring KeyOfView(bool is32, std::wstring_view executable) {
    return kViews + std::wstring(is32 ? L"32\\" : L"64\\") + std::wstring(executable);
}

// The version resource: its own header, and the block of numbers.
struct VersionResource {
    WORD length = sizeof(VersionResource);
    WORD valueLength = sizeof(VS_FIXEDFILEINFO);
    WORD isText = 0;
    wchar_t key[16] = L"VS_VERSION_INFO";
    WORD padding = 0;
    VS_FIXEDFILEINFO value{};
};
static_assert(offsetof(VersionResource, value) % 4 == 0);

void AddVersion(const std::wstring& path, const ProgramVersion& version) {
    VersionResource resource;
    resource.value.dwSignature = 0xFEEF04BD;
    resource.value.dwStrucVersion = 0x10000;
    resource.value.dwFileVersionMS = MAKELONG(7, 7); // another one than the product's
    resource.value.dwProductVersionMS = MAKELONG(version.minor, version.major);
    resource.value.dwProductVersionLS = MAKELONG(9, version.build);
    const HANDLE update = BeginUpdateResourceW(path.c_str(), TRUE);
    ASSERT_NE(update, nullptr);
    EXPECT_TRUE(UpdateResourceW(update, RT_VERSION, MAKEINTRESOURCEW(1), 0x409, &resource,
                                sizeof resource));
    ASSERT_TRUE(EndUpdateResourceW(update, FALSE));
}

} // namespace

void AddBrowser(const std::wstring& executable, const std::wstring& path, int view, DWORD type) {
    SetRawValue(HKEY_LOCAL_MACHINE, kAppPaths + executable, L"", type, path.c_str(),
                static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)), view);
}

void ClearBrowsers() {
    for (const wchar_t* const executable : {L"chrome.exe", L"msedge.exe", L"firefox.exe"}) {
        for (const REGSAM view : {KEY_WOW64_32KEY, KEY_WOW64_64KEY}) {
            RegDeleteKeyExW(HKEY_LOCAL_MACHINE, (kAppPaths + std::wstring(executable)).c_str(),
                            view, 0);
        }
    }
}

SeparateViews::SeparateViews() : open_("advapi32.dll", "RegOpenKeyExW", &Open) {
    realOpen = open_.Real();
    Clear();
}

SeparateViews::~SeparateViews() { Clear(); }

void SeparateViews::Clear() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, kViews); }

void SeparateViews::Add(const std::wstring& executable, const std::wstring& path, int view) {
    SetValue(HKEY_LOCAL_MACHINE, KeyOfView(view == 32, executable), L"", path);
}

// One view, and no other right than to read values.
LSTATUS WINAPI SeparateViews::Open(HKEY root, const wchar_t* path, DWORD options, REGSAM access,
                                   HKEY* key) {
    const std::wstring_view text(path ? path : L"");
    if (root != HKEY_LOCAL_MACHINE || !text.starts_with(kAppPaths)) {
        return realOpen(root, path, options, access, key);
    }
    const bool is32 = access == (KEY_QUERY_VALUE | KEY_WOW64_32KEY);
    EXPECT_TRUE(is32 || access == (KEY_QUERY_VALUE | KEY_WOW64_64KEY)) << access;
    const std::wstring own = KeyOfView(is32, text.substr(std::size(kAppPaths) - 1));
    return realOpen(root, own.c_str(), options, KEY_QUERY_VALUE, key);
}

std::wstring MakeProgram(const TestFolder& folder, const std::wstring& name,
                         const ProgramVersion* version) {
    const std::wstring path = folder / name;
    const auto own = ObLib::PathBesideModule(nullptr, L"obwmvapp.exe");
    EXPECT_TRUE(own && CopyFileW(own->c_str(), path.c_str(), FALSE));
    if (version) AddVersion(path, *version);
    return path;
}

std::wstring MakeProgramOf32Bits(const TestFolder& folder, const std::wstring& name) {
    struct {
        IMAGE_DOS_HEADER dos{};
        DWORD signature = IMAGE_NT_SIGNATURE;
        IMAGE_FILE_HEADER file{};
        IMAGE_OPTIONAL_HEADER32 optional{};
        IMAGE_SECTION_HEADER section{};
    } headers;
    headers.dos.e_magic = IMAGE_DOS_SIGNATURE;
    headers.dos.e_lfanew = sizeof headers.dos;
    headers.file.Machine = IMAGE_FILE_MACHINE_I386;
    headers.file.NumberOfSections = 1;
    headers.file.SizeOfOptionalHeader = sizeof headers.optional;
    headers.file.Characteristics = IMAGE_FILE_EXECUTABLE_IMAGE | IMAGE_FILE_32BIT_MACHINE;
    headers.optional.Magic = IMAGE_NT_OPTIONAL_HDR32_MAGIC;
    headers.optional.ImageBase = 0x400000;
    headers.optional.SectionAlignment = 0x1000;
    headers.optional.FileAlignment = 0x200;
    headers.optional.MajorSubsystemVersion = 5;
    headers.optional.SizeOfImage = 0x2000;
    headers.optional.SizeOfHeaders = 0x200;
    headers.optional.Subsystem = IMAGE_SUBSYSTEM_WINDOWS_GUI;
    headers.optional.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
    std::memcpy(headers.section.Name, ".text", 5);
    headers.section.Misc.VirtualSize = 0x200;
    headers.section.VirtualAddress = 0x1000;
    headers.section.SizeOfRawData = 0x200;
    headers.section.PointerToRawData = 0x200;
    headers.section.Characteristics =
        IMAGE_SCN_CNT_CODE | IMAGE_SCN_MEM_EXECUTE | IMAGE_SCN_MEM_READ;
    std::string content(0x400, '\0');
    static_assert(sizeof headers <= 0x200);
    std::memcpy(content.data(), &headers, sizeof headers);
    return folder.File(name, content);
}

void OptionsFixture::SetUp() {
    SettingsFixture::SetUp();
    ASSERT_TRUE(views_.Ok());
    ASSERT_TRUE(obcore::LoadProviderManager());
    for (const obcore::TransformBoxRow& row : obcore::kTransformBoxes) {
        Support(static_cast<int>(row.id), true);
    }
    options_.ProviderManager = obcore::ProviderManager().CreateObExtensionsManager();
    obcore::ProviderManager().Init(options_.ProviderManager, 0, L"");
    FakeModules::ForgetCalls();
}

void OptionsFixture::TearDown() {
    obcore::ProviderManager().DeleteObExtensionsManager(options_.ProviderManager);
    SettingsFixture::TearDown();
}

void OptionsFixture::Support(int id, bool isSupported) {
    const std::wstring key = L"." + std::to_wstring(id);
    Answer(L"IsProviderSupport" + key, isSupported ? L"1" : L"0");
    Answer(L"GetReadyForConvert" + key, L"1");
    Answer(L"ShowProviderOptionsWhenNoOptionsSet" + key, L"1");
}

INT_PTR OptionsFixture::Show(const std::function<void(const OpenDialog&)>& use) {
    return Operate(
        OB_OPTIONS_CONVERT_FROM_PDF,
        [this]() -> INT_PTR {
            const int layout = ObLibX::GetDpi() < 144 ? OB_OPTIONS : OB_OPTIONS_LARGE;
            obcore::OBOptionsDialogImp dialog(layout, nullptr, options_);
            return dialog.DoModal();
        },
        use);
}

Lines OptionsFixture::SettingsCalls() {
    return FakeModules::CallsOf(
        {L"GetReadyForConvert", L"ShowProviderOptionsWhenNoOptionsSet", L"ShowProviderOptions"});
}

} // namespace obtest
