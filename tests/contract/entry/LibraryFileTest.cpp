#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/contract/entry/LoadedLibrary.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"

namespace {

using testing::UnorderedElementsAre;

template <class Type>
const Type* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<const Type*>(reinterpret_cast<const BYTE*>(module) + offset);
}

std::vector<std::string> ExportedNames(HMODULE module) {
    const auto* headers = At<IMAGE_NT_HEADERS64>(module, At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* exports = At<IMAGE_EXPORT_DIRECTORY>(module, directory.VirtualAddress);
    const auto* names = At<DWORD>(module, exports->AddressOfNames);
    std::vector<std::string> result;
    for (DWORD index = 0; index < exports->NumberOfNames; ++index) {
        result.emplace_back(At<char>(module, names[index]));
    }
    return result;
}

TEST(LibraryFile, ExportsItsEntryPointsByNameAndNothingElse) {
    const obtest::LoadedLibrary library;
    ASSERT_TRUE(library.module);
    EXPECT_THAT(ExportedNames(library.module.Get()),
                UnorderedElementsAre("GetOpenFileNameInBrowser", "FileOpenDialog_ShowInBrowser",
                                     "FileOpenDialog_GetResultInBrowser",
                                     "FileOpenDialog_GetResultsInBrowser",
                                     "ShowFileOpenDialogInProcess", "WebHelpApp", "OBConfig"));
}

TEST(LibraryFile, CarriesItsManifestItsVersionAndTheTexts) {
    const obtest::LoadedLibrary library;
    ASSERT_TRUE(library.module);
    const HMODULE module = library.module.Get();
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(2), RT_MANIFEST));
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(1), RT_VERSION));
    wchar_t text[200] = {};
    EXPECT_GT(LoadStringW(module, 101, text, 200), 0);
}

TEST(LibraryFile, BindsNothingWhileItLoads) {
    const obtest::LoadedLibrary library;
    ASSERT_TRUE(library.module);
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"PVXManager64.dll"), nullptr);
}

TEST(LibraryFile, FreesTheArchiveServiceWhenItIsUnloaded) {
    {
        const obtest::LoadedLibrary library;
        ASSERT_TRUE(library.module);
        obtest::HostScript::Play(L"exit 1");
        obtest::FakeBrowserContext context;
        OPENFILENAMEW request{.lStructSize = sizeof(OPENFILENAMEW)};
        EXPECT_EQ(library.getOpenFileName(&request, &context), 0);
        EXPECT_NE(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(L"obwmcore64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
}

TEST(LibraryFile, ReturnsTrueForTheHelpPage) {
    const obtest::LoadedLibrary library;
    ASSERT_TRUE(library.module);
    EXPECT_TRUE(library.Entry<decltype(WebHelpApp)>("WebHelpApp")(nullptr));
}

} // namespace
