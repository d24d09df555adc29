#include "obwmvapp/ProcessHardening.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/fakes/Recording.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

namespace {

using obtest::BesideProgram;
using obtest::ImportPatch;
using obtest::TestFolder;
using obwmvapp::HardenProcess;
using testing::ElementsAre;

std::vector<std::wstring> calls;

BOOL WINAPI NoteHeap(HANDLE heap, HEAP_INFORMATION_CLASS kind, PVOID value, SIZE_T size) {
    calls.push_back(L"HeapSetInformation " + std::to_wstring(reinterpret_cast<INT_PTR>(heap)) +
                    L" " + std::to_wstring(kind) + L" " + (value ? L"value" : L"null") + L" " +
                    std::to_wstring(size));
    return FALSE;
}

BOOL WINAPI NoteDefaultFolders(DWORD flags) {
    calls.push_back(L"SetDefaultDllDirectories " + std::to_wstring(flags));
    return FALSE;
}

BOOL WINAPI NoteFolder(LPCWSTR folder) {
    calls.push_back(std::wstring(L"SetDllDirectoryW [") + folder + L"]");
    return FALSE;
}

BOOL WINAPI NotePolicy(PROCESS_MITIGATION_POLICY policy, PVOID value, SIZE_T size) {
    DWORD flags = 0;
    std::memcpy(&flags, value, sizeof(flags));
    calls.push_back(L"SetProcessMitigationPolicy " + std::to_wstring(policy) + L" " +
                    std::to_wstring(flags) + L" " + std::to_wstring(size));
    return FALSE;
}

// Each step is tried, also after one that the system refuses. The end on a damaged heap itself
// can't be shown under Wine, which accepts the call and doesn't check its heap.
TEST(ProcessHardening, AsksForTheEndOnADamagedHeapAndForSafeSearches) {
    const ImportPatch<decltype(&HeapSetInformation)> heap("kernel32.dll", "HeapSetInformation",
                                                          &NoteHeap);
    const ImportPatch<decltype(&SetDefaultDllDirectories)> folders(
        "kernel32.dll", "SetDefaultDllDirectories", &NoteDefaultFolders);
    const ImportPatch<decltype(&SetDllDirectoryW)> folder("kernel32.dll", "SetDllDirectoryW",
                                                          &NoteFolder);
    const ImportPatch<decltype(&SetProcessMitigationPolicy)> policy(
        "kernel32.dll", "SetProcessMitigationPolicy", &NotePolicy);
    ASSERT_TRUE(heap.Ok() && folders.Ok() && folder.Ok() && policy.Ok());
    calls.clear();
    HardenProcess();
    // 1 is HeapEnableTerminationOnCorruption, 0x1000 LOAD_LIBRARY_SEARCH_DEFAULT_DIRS, 10 the
    // policy for loading images and 4 its PreferSystem32Images.
    EXPECT_THAT(calls,
                ElementsAre(L"HeapSetInformation 0 1 null 0", L"SetDefaultDllDirectories 4096",
                            L"SetDllDirectoryW []", L"SetProcessMitigationPolicy 10 4 4"));
}

TEST(ProcessHardening, LeavesTheCurrentFolderAndTheSearchPathOutOfSearches) {
    const TestFolder folder;
    const std::wstring planted = folder / L"planted.dll";
    ASSERT_TRUE(CopyFileW(BesideProgram(L"obofcsvc64.dll").c_str(), planted.c_str(), TRUE));
    ASSERT_TRUE(SetCurrentDirectoryW(folder.Path().c_str()));
    ASSERT_TRUE(SetEnvironmentVariableW(L"PATH", folder.Path().c_str()));
    ASSERT_TRUE(ObLib::UniqueModule(LoadLibraryW(L"planted.dll"))) << "the search is wide at first";
    HardenProcess();
    EXPECT_FALSE(ObLib::UniqueModule(LoadLibraryW(L"planted.dll")));
    EXPECT_TRUE(ObLib::UniqueModule(LoadLibraryW(planted.c_str())));
    EXPECT_TRUE(ObLib::UniqueModule(
        LoadLibraryExW(planted.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)));
    EXPECT_TRUE(ObLib::UniqueModule(LoadLibraryW(L"obofcsvc64.dll"))) << "beside the program";
    EXPECT_TRUE(ObLib::UniqueModule(LoadLibraryW(L"version.dll"))) << "of the system";
    SetCurrentDirectoryW(L"C:\\");
}

} // namespace
