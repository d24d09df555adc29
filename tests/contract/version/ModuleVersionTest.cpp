// The version resources of the modules that ship, as the system's properties window reads them.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/fakes/Recording.h"

namespace {

struct Module {
    const wchar_t* file;
    const wchar_t* name;
    DWORD type;
};

class ModuleVersion : public testing::TestWithParam<Module> {
protected:
    void SetUp() override {
        const std::wstring path = obtest::BesideProgram(GetParam().file);
        DWORD unused = 0;
        block_.resize(GetFileVersionInfoSizeW(path.c_str(), &unused));
        ASSERT_FALSE(block_.empty()) << "no version resource";
        const auto size = static_cast<DWORD>(block_.size());
        ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, size, block_.data()));
    }

    const VS_FIXEDFILEINFO& Numbers() {
        void* numbers = nullptr;
        UINT size = 0;
        EXPECT_TRUE(VerQueryValueW(block_.data(), L"\\", &numbers, &size));
        return *static_cast<const VS_FIXEDFILEINFO*>(numbers);
    }

    std::wstring Text(const std::wstring& name) {
        void* text = nullptr;
        UINT units = 0;
        const std::wstring path = L"\\StringFileInfo\\040904B0\\" + name;
        if (!VerQueryValueW(block_.data(), path.c_str(), &text, &units)) return L"none";
        return static_cast<const wchar_t*>(text);
    }

private:
    std::vector<BYTE> block_;
};

std::string Numbered(DWORD high, DWORD low) {
    char text[64];
    std::snprintf(text, sizeof(text), "%u.%u.%u.%u", HIWORD(high), LOWORD(high), HIWORD(low),
                  LOWORD(low));
    return text;
}

TEST_P(ModuleVersion, IsThatOfTheProjectInNumbers) {
    const VS_FIXEDFILEINFO& numbers = Numbers();
    EXPECT_EQ(OB_VERSION_TEXT, Numbered(numbers.dwFileVersionMS, numbers.dwFileVersionLS));
    EXPECT_EQ(OB_VERSION_TEXT, Numbered(numbers.dwProductVersionMS, numbers.dwProductVersionLS));
    EXPECT_EQ(GetParam().type, numbers.dwFileType);
}

TEST_P(ModuleVersion, NamesTheProductTheFileAndTheVersion) {
    const std::string version = OB_VERSION_TEXT;
    const std::wstring wide(version.begin(), version.end());
    EXPECT_EQ(wide, Text(L"FileVersion"));
    EXPECT_EQ(wide, Text(L"ProductVersion"));
    EXPECT_EQ(L"Ombrix Vellant", Text(L"ProductName"));
    EXPECT_EQ(L"Ombrix", Text(L"CompanyName"));
    EXPECT_EQ(GetParam().file, Text(L"OriginalFilename"));
    EXPECT_EQ(GetParam().name, Text(L"InternalName"));
    EXPECT_TRUE(Text(L"FileDescription").starts_with(L"Ombrix Vellant "));
}

constexpr Module kModules[] = {
    {L"obwmcore64.dll", L"obwmcore64", VFT_DLL},
    {L"obwmvapp.exe", L"obwmvapp", VFT_APP},
    {L"obofcsvc64.dll", L"obofcsvc64", VFT_DLL},
    {L"PVXManager64.dll", L"PVXManager64", VFT_DLL},
    {L"PVXTransform64.exe", L"PVXTransform64", VFT_APP},
    {L"GroupDocs.Metadata.dll", L"GroupDocs.Metadata", VFT_DLL},
    {L"Aspose.Imaging.dll", L"Aspose.Imaging", VFT_DLL},
};

INSTANTIATE_TEST_SUITE_P(Shipped, ModuleVersion, testing::ValuesIn(kModules),
                         [](const testing::TestParamInfo<Module>& module) {
                             std::wstring name = module.param.name;
                             std::erase(name, L'.');
                             return std::string(name.begin(), name.end());
                         });

} // namespace
