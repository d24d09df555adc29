#include "tests/faults/ProcessResources.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include "tests/support/TestFolder.h"

namespace obtest {
namespace {

constexpr SIZE_T kMemoryOfNoLeak = SIZE_T{4} << 20; // bytes: heaps grow in steps

std::wstring TemporaryFolder() {
    wchar_t folder[MAX_PATH + 1];
    GetTempPathW(MAX_PATH + 1, folder);
    return std::wstring(folder, wcslen(folder) - 1);
}

} // namespace

ProcessResources ProcessResources::Now() {
    ProcessResources now;
    GetProcessHandleCount(GetCurrentProcess(), &now.handles);
    now.gdiObjects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    now.userObjects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    now.files = ListTree(TemporaryFolder());
    PROCESS_MEMORY_COUNTERS counters = {};
    counters.cb = sizeof(counters);
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    now.committed = counters.PagefileUsage;
    return now;
}

void ExpectNoMoreThan(const ProcessResources& before) {
    const ProcessResources after = ProcessResources::Now();
    EXPECT_LE(after.handles, before.handles);
    EXPECT_LE(after.gdiObjects, before.gdiObjects);
    EXPECT_LE(after.userObjects, before.userObjects);
    EXPECT_EQ(after.files, before.files);
    EXPECT_LE(after.committed, before.committed + kMemoryOfNoLeak);
}

} // namespace obtest
