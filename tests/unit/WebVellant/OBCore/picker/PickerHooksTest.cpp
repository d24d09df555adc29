#include "OBCore/picker/PickerHooks.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"

namespace {

using obcore::PickerHooks;
using obtest::ImportPatch;

struct Install {
    int kind;
    HINSTANCE module;
    DWORD thread;
};
std::vector<Install> installs;

HHOOK WINAPI RefuseHook(int kind, HOOKPROC, HINSTANCE module, DWORD thread) {
    installs.push_back({kind, module, thread});
    SetLastError(ERROR_ACCESS_DENIED);
    return nullptr;
}

TEST(PickerHookInstallation, IsOnlyTracedWhenItFailsTheLogoFirst) {
    const ImportPatch<decltype(&SetWindowsHookExW)> patch{"user32.dll", "SetWindowsHookExW",
                                                          &RefuseHook};
    ASSERT_TRUE(patch.Ok());
    installs.clear();
    obtest::ForgetTrace();
    PickerHooks hooks(nullptr);
    const auto& lines = obtest::TraceLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "SetWindowsHookEx for Logo failed 5"); // ERROR_ACCESS_DENIED
    EXPECT_EQ(lines[1], "SetWindowsHookEx failed 5");
    ASSERT_EQ(installs.size(), 2U);
    for (const Install& install : installs) {
        EXPECT_EQ(install.kind, 5); // WH_CBT
        EXPECT_EQ(install.module, nullptr);
        EXPECT_EQ(install.thread, GetCurrentThreadId());
    }
}

std::vector<HHOOK> installed;
std::vector<HHOOK> removed;
decltype(&SetWindowsHookExW) realInstall = nullptr;
decltype(&UnhookWindowsHookEx) realRemove = nullptr;

HHOOK WINAPI RecordHook(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
    installed.push_back(realInstall(kind, procedure, module, thread));
    return installed.back();
}

BOOL WINAPI RecordUnhook(HHOOK hook) {
    removed.push_back(hook);
    return realRemove(hook);
}

TEST(PickerHookInstallation, LastsUntilTheObjectEnds) {
    const ImportPatch<decltype(&SetWindowsHookExW)> install{"user32.dll", "SetWindowsHookExW",
                                                            &RecordHook};
    const ImportPatch<decltype(&UnhookWindowsHookEx)> remove{"user32.dll", "UnhookWindowsHookEx",
                                                             &RecordUnhook};
    ASSERT_TRUE(install.Ok() && remove.Ok());
    realInstall = install.Real();
    realRemove = remove.Real();
    obtest::ForgetTrace();
    {
        const PickerHooks hooks(nullptr);
        ASSERT_EQ(installed.size(), 2U);
        EXPECT_TRUE(installed[0] && installed[1]);
        EXPECT_TRUE(removed.empty());
    }
    EXPECT_EQ(removed, (std::vector<HHOOK>{installed[1], installed[0]}));
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST(PickerHookInstallation, GivesNoLinkTextWhereNoneWasProduced) {
    PickerHooks hooks(nullptr);
    std::wstring text = L"before";
    hooks.MoveLinkText(text);
    EXPECT_EQ(text, L"before");
}

} // namespace
