#include "ObLib/Src/Win32/LoadModule.h"

#include <gtest/gtest.h>

#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

namespace {

decltype(&LoadLibraryW) g_realLoad = nullptr;
DWORD g_modeDuringLoad = 0;

HMODULE WINAPI NoteErrorMode(LPCWSTR path) {
    g_modeDuringLoad = GetThreadErrorMode();
    return g_realLoad(path);
}

TEST(LoadModule, LoadsAModuleByItsPath) {
    wchar_t path[MAX_PATH];
    ASSERT_NE(0U, GetModuleFileNameW(GetModuleHandleW(L"kernel32.dll"), path, MAX_PATH));
    const ObLib::UniqueModule module = ObLib::LoadModule(path);
    EXPECT_EQ(GetModuleHandleW(L"kernel32.dll"), module.Get());
}

TEST(LoadModule, ReportsAFailureByTheLastError) {
    EXPECT_FALSE(ObLib::LoadModule(L"C:\\no such folder\\none.dll"));
    EXPECT_EQ(static_cast<DWORD>(ERROR_MOD_NOT_FOUND), GetLastError());

    obtest::TestFolder folder;
    const std::wstring damaged = folder.File(L"damaged.dll", "MZ, and then no module");
    EXPECT_FALSE(ObLib::LoadModule(damaged.c_str()));
    EXPECT_EQ(static_cast<DWORD>(ERROR_BAD_EXE_FORMAT), GetLastError());
}

// Without the mode the system would report the damaged file in a box of its own and wait.
TEST(LoadModule, SwitchesTheBoxesOfTheSystemOffForTheLoadOnly) {
    DWORD before = 0;
    ASSERT_TRUE(SetThreadErrorMode(0, &before));
    const obtest::ImportPatch<decltype(LoadLibraryW)> patch("kernel32.dll", "LoadLibraryW",
                                                            &NoteErrorMode);
    g_realLoad = patch.Real();
    EXPECT_FALSE(ObLib::LoadModule(L"C:\\no such folder\\none.dll"));
    EXPECT_EQ(static_cast<DWORD>(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX),
              g_modeDuringLoad);
    EXPECT_EQ(0U, GetThreadErrorMode());
    SetThreadErrorMode(before, nullptr);
}

DWORD g_flags = 0;

BOOL WINAPI RefuseHandle(DWORD flags, LPCWSTR, HMODULE* module) {
    g_flags = flags;
    *module = GetModuleHandleW(nullptr); // not to be released by anybody
    return FALSE;
}

TEST(KeepThisModule, RefersToTheModuleThatLinksIt) {
    EXPECT_EQ(GetModuleHandleW(nullptr), ObLib::KeepThisModule().Get());
}

// Without a reference of its own the system could unload the module under the thread.
TEST(KeepThisModule, IsEmptyWhenTheSystemGivesNoReference) {
    const obtest::ImportPatch<decltype(GetModuleHandleExW)> patch(
        "kernel32.dll", "GetModuleHandleExW", &RefuseHandle);
    ASSERT_TRUE(patch.Ok());
    EXPECT_FALSE(ObLib::KeepThisModule());
    EXPECT_EQ(static_cast<DWORD>(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS), g_flags);
}

} // namespace
