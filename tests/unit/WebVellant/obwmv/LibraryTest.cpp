#include "obwmv/Library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "ObLib/Src/Win32/ObXAppGlobals.h"
#include "tests/support/ImportPatch.h"

namespace {

using ObLib::AppGlobals;
using testing::ElementsAre;

const HMODULE kProgram = GetModuleHandleW(nullptr);
const HMODULE kLanguage = GetModuleHandleW(L"user32.dll");

class LibraryLife : public testing::Test {
protected:
    void SetUp() override { obwmv::OnProcessDetach(); }
    void TearDown() override { obwmv::OnProcessDetach(); }
};

TEST_F(LibraryLife, EntersItsModuleInBothFieldsOnAttach) {
    obwmv::OnProcessAttach(kProgram);
    EXPECT_EQ(AppGlobals().programModule, kProgram);
    EXPECT_EQ(AppGlobals().languageModule, kProgram);
}

TEST_F(LibraryLife, KeepsALanguageModuleThatIsSetAlready) {
    AppGlobals().languageModule = kLanguage;
    obwmv::OnProcessAttach(kProgram);
    EXPECT_EQ(AppGlobals().programModule, kProgram);
    EXPECT_EQ(AppGlobals().languageModule, kLanguage);
}

TEST_F(LibraryLife, BindsNothingOnAttach) {
    obwmv::OnProcessAttach(kProgram);
    EXPECT_EQ(obcore::ResourceModule(), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"PVXManager64.dll"), nullptr);
}

TEST_F(LibraryLife, ZeroesTheGlobalsOnDetach) {
    obwmv::OnProcessAttach(kProgram);
    obwmv::OnProcessDetach();
    EXPECT_EQ(AppGlobals().programModule, nullptr);
    EXPECT_EQ(AppGlobals().languageModule, nullptr);
}

BOOL WINAPI GivenContext(HANDLE* context) {
    *context = reinterpret_cast<HANDLE>(0x77);
    return TRUE;
}
std::vector<HANDLE> released;
void WINAPI RecordRelease(HANDLE context) { released.push_back(context); }

TEST_F(LibraryLife, KeepsTheCurrentContextOfTheAttachAndReleasesItOnDetach) {
    const obtest::ImportPatch<decltype(&GetCurrentActCtx)> current(
        "kernel32.dll", "GetCurrentActCtx", &GivenContext);
    const obtest::ImportPatch<decltype(&ReleaseActCtx)> release("kernel32.dll", "ReleaseActCtx",
                                                                &RecordRelease);
    ASSERT_TRUE(current.Ok() && release.Ok());
    released.clear();
    obwmv::OnProcessAttach(kProgram);
    EXPECT_EQ(obwmv::LibraryActivationContext(), reinterpret_cast<HANDLE>(0x77));
    EXPECT_TRUE(released.empty());
    obwmv::OnProcessDetach();
    EXPECT_EQ(obwmv::LibraryActivationContext(), nullptr);
    EXPECT_THAT(released, ElementsAre(reinterpret_cast<HANDLE>(0x77)));
}

BOOL WINAPI NoContext(HANDLE*) { return FALSE; }

TEST_F(LibraryLife, LoadsAlsoWithoutAContextToKeep) {
    const obtest::ImportPatch<decltype(&GetCurrentActCtx)> current("kernel32.dll",
                                                                   "GetCurrentActCtx", &NoContext);
    ASSERT_TRUE(current.Ok());
    obwmv::OnProcessAttach(kProgram);
    EXPECT_EQ(obwmv::LibraryActivationContext(), nullptr);
    EXPECT_EQ(AppGlobals().programModule, kProgram);
}

HANDLE activated = nullptr;
BOOL WINAPI RecordActivate(HANDLE context, ULONG_PTR* cookie) {
    activated = context;
    *cookie = 0x99;
    return TRUE;
}
std::vector<std::pair<DWORD, ULONG_PTR>> deactivated;
BOOL WINAPI RecordDeactivate(DWORD flags, ULONG_PTR cookie) {
    deactivated.emplace_back(flags, cookie);
    return TRUE;
}

TEST_F(LibraryLife, ActivatesTheContextThatItKeptAndGivesTheCookieBack) {
    const obtest::ImportPatch<decltype(&GetCurrentActCtx)> current(
        "kernel32.dll", "GetCurrentActCtx", &GivenContext);
    const obtest::ImportPatch<decltype(&ReleaseActCtx)> release("kernel32.dll", "ReleaseActCtx",
                                                                &RecordRelease);
    const obtest::ImportPatch<decltype(&ActivateActCtx)> activate("kernel32.dll", "ActivateActCtx",
                                                                  &RecordActivate);
    const obtest::ImportPatch<decltype(&DeactivateActCtx)> deactivate(
        "kernel32.dll", "DeactivateActCtx", &RecordDeactivate);
    ASSERT_TRUE(current.Ok() && release.Ok() && activate.Ok() && deactivate.Ok());
    deactivated.clear();
    obwmv::OnProcessAttach(kProgram);
    {
        const obwmv::ActivationScope scope;
        EXPECT_TRUE(scope);
        EXPECT_EQ(activated, reinterpret_cast<HANDLE>(0x77));
        EXPECT_TRUE(deactivated.empty());
    }
    EXPECT_THAT(deactivated, ElementsAre(std::pair<DWORD, ULONG_PTR>(0, 0x99)));
    obwmv::OnProcessDetach();
}

struct {
    std::vector<HMODULE> freed;
    decltype(&FreeLibrary) real = nullptr;
} freeing;

BOOL WINAPI RecordFree(HMODULE module) {
    freeing.freed.push_back(module);
    return freeing.real(module);
}

TEST_F(LibraryLife, FreesTheSisterModulesAndThenTheTextsOnDetach) {
    obwmv::OnProcessAttach(kProgram);
    ASSERT_TRUE(obcore::BindResourceModule());
    ASSERT_TRUE(obcore::LoadArchiveService());
    ASSERT_TRUE(obcore::LoadProviderManager());
    const HMODULE texts = obcore::ResourceModule();
    const HMODULE archive = GetModuleHandleW(L"obofcsvc64.dll");
    const HMODULE providers = GetModuleHandleW(L"PVXManager64.dll");
    const obtest::ImportPatch<decltype(&FreeLibrary)> free("kernel32.dll", "FreeLibrary",
                                                           &RecordFree);
    ASSERT_TRUE(free.Ok());
    freeing = {.freed = {}, .real = free.Real()};
    obwmv::OnProcessDetach();
    EXPECT_THAT(freeing.freed, ElementsAre(providers, archive, texts));
    EXPECT_EQ(obcore::ResourceModule(), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"PVXManager64.dll"), nullptr);
}

} // namespace
