#include "obwmv/HostLaunch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/fakes/Recording.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::BesideProgram;
using obtest::HostScript;
using obwmv::kHostNotStarted;
using obwmv::LaunchHost;

const HWND kOwner = reinterpret_cast<HWND>(0x12345678);

struct CreateCall {
    std::wstring application;
    std::wstring commandLine;
    bool plainSecurity = false;
    BOOL inherit = FALSE;
    DWORD flags = 1;
    bool plainPlace = false;
    STARTUPINFOW startup = {};
};
CreateCall createCall;
PROCESS_INFORMATION created = {};
bool createFails = false;
decltype(&CreateProcessW) realCreateProcess = nullptr;
std::vector<HANDLE> closed;
decltype(&CloseHandle) realCloseHandle = nullptr;

BOOL WINAPI NoteCreateProcess(LPCWSTR application, LPWSTR line, LPSECURITY_ATTRIBUTES process,
                              LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags,
                              LPVOID environment, LPCWSTR folder, LPSTARTUPINFOW startup,
                              LPPROCESS_INFORMATION info) {
    createCall = {application, line, !process && !thread, inherit, flags, !environment && !folder,
                  *startup};
    if (createFails) return FALSE;
    const BOOL made = realCreateProcess(application, line, process, thread, inherit, flags,
                                        environment, folder, startup, info);
    created = *info;
    return made;
}

bool threadClosedAtTheWait = false;
bool processOpenAtTheWait = false;
decltype(&MsgWaitForMultipleObjectsEx) realWait = nullptr;

DWORD WINAPI NoteWait(DWORD count, const HANDLE* handles, DWORD milliseconds, DWORD mask,
                      DWORD flags) {
    threadClosedAtTheWait = std::count(closed.begin(), closed.end(), created.hThread) == 1;
    processOpenAtTheWait = std::count(closed.begin(), closed.end(), created.hProcess) == 0;
    return realWait(count, handles, milliseconds, mask, flags);
}

BOOL WINAPI NoteCloseHandle(HANDLE handle) {
    closed.push_back(handle);
    return realCloseHandle(handle);
}

class HostLaunch : public testing::Test {
protected:
    void SetUp() override {
        createCall = {};
        createFails = false;
        closed.clear();
        HostScript::Play(L"exit 0");
    }
};

TEST_F(HostLaunch, HandsTheHostItsPathTheIdAndTheOwner) {
    EXPECT_EQ(LaunchHost(42, kOwner), 0u);
    const std::vector<std::wstring> expected = {L"start \"" + BesideProgram(L"obwmvapp.exe") +
                                                L"\" 42 305419896"};
    EXPECT_EQ(HostScript::Record(), expected);
}

TEST_F(HostLaunch, FormatsIdAndOwnerAsSignedNumbers) {
    LaunchHost(0xFFFFFFFE, reinterpret_cast<HWND>(0xFFFFFFFF80000001));
    const std::vector<std::wstring> expected = {L"\"" + BesideProgram(L"obwmvapp.exe") +
                                                L"\" -2 -2147483647"};
    EXPECT_EQ(HostScript::RecordOf(L"start"), expected);
}

TEST_F(HostLaunch, KeepsAll64BitsOfTheOwner) {
    LaunchHost(1, reinterpret_cast<HWND>(0x7FFFFFFFFFFFFFFF));
    ASSERT_EQ(HostScript::RecordOf(L"start").size(), 1u);
    EXPECT_TRUE(HostScript::RecordOf(L"start")[0].ends_with(L" 1 9223372036854775807"));
}

TEST_F(HostLaunch, StartsTheHostWithInheritedHandlesAndNothingElse) {
    obtest::ImportPatch patch("kernel32.dll", "CreateProcessW", &NoteCreateProcess);
    ASSERT_TRUE(patch.Ok());
    createFails = true;
    EXPECT_EQ(LaunchHost(7, kOwner), kHostNotStarted);
    EXPECT_EQ(createCall.application, BesideProgram(L"obwmvapp.exe"));
    EXPECT_EQ(createCall.commandLine, L"\"" + BesideProgram(L"obwmvapp.exe") + L"\" 7 305419896");
    EXPECT_TRUE(createCall.plainSecurity);
    EXPECT_EQ(createCall.inherit, TRUE);
    EXPECT_EQ(createCall.flags, 0u);
    EXPECT_TRUE(createCall.plainPlace);
    STARTUPINFOW zeroed = {};
    zeroed.cb = 104;
    EXPECT_EQ(std::memcmp(&createCall.startup, &zeroed, sizeof(zeroed)), 0);
}

TEST_F(HostLaunch, AnswersTheHostsExitCode) {
    for (const std::uint32_t code : {0u, 1u, 999u, 0x80000000u}) {
        HostScript::Play(L"exit " + std::to_wstring(code));
        EXPECT_EQ(LaunchHost(1, kOwner), code);
    }
    HostScript::Play(L"exit -1");
    EXPECT_EQ(LaunchHost(1, kOwner), 0xFFFFFFFFu);
}

TEST_F(HostLaunch, AnswersTheExitCodeOfAHostThatCrashed) {
    HostScript::Play(L"crash");
    EXPECT_EQ(LaunchHost(1, kOwner), 0xC0000005u);
}

TEST_F(HostLaunch, AnswersMinusOneWhenTheHostIsMissing) {
    const obtest::WithoutHost away;
    EXPECT_EQ(LaunchHost(1, kOwner), kHostNotStarted);
    EXPECT_TRUE(HostScript::Record().empty());
}

DWORD WINAPI CutPath(HMODULE, LPWSTR path, DWORD capacity) {
    std::fill_n(path, capacity - 1, L'p');
    path[capacity - 1] = L'\0';
    return capacity;
}

DWORD WINAPI NoPath(HMODULE, LPWSTR, DWORD) { return 0; }

DWORD WINAPI DeepPath(HMODULE, LPWSTR path, DWORD) {
    const std::wstring deep = L"C:\\" + std::wstring(244, L'd') + L"\\x.dll";
    deep.copy(path, deep.size());
    path[deep.size()] = L'\0';
    return static_cast<DWORD>(deep.size());
}

TEST_F(HostLaunch, AnswersMinusOneWhenItsFolderCantBeHad) {
    for (const auto double_ : {&CutPath, &NoPath, &DeepPath}) {
        obtest::ImportPatch patch("kernel32.dll", "GetModuleFileNameW", double_);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(LaunchHost(1, kOwner), kHostNotStarted);
    }
    EXPECT_TRUE(HostScript::Record().empty());
}

TEST_F(HostLaunch, ClosesTheThreadBeforeTheWaitAndTheProcessAfterIt) {
    obtest::ImportPatch create("kernel32.dll", "CreateProcessW", &NoteCreateProcess);
    obtest::ImportPatch close("kernel32.dll", "CloseHandle", &NoteCloseHandle);
    obtest::ImportPatch wait("user32.dll", "MsgWaitForMultipleObjectsEx", &NoteWait);
    ASSERT_TRUE(create.Ok() && close.Ok() && wait.Ok());
    realCreateProcess = create.Real();
    realCloseHandle = close.Real();
    realWait = wait.Real();
    EXPECT_EQ(LaunchHost(1, kOwner), 0u);
    EXPECT_TRUE(threadClosedAtTheWait);
    EXPECT_TRUE(processOpenAtTheWait);
    EXPECT_EQ(std::count(closed.begin(), closed.end(), created.hThread), 1);
    EXPECT_EQ(std::count(closed.begin(), closed.end(), created.hProcess), 1);
}

BOOL WINAPI NoExitCode(HANDLE, LPDWORD) { return FALSE; }

TEST_F(HostLaunch, AnswersMinusOneWhenTheExitCodeCantBeHad) {
    obtest::ImportPatch patch("kernel32.dll", "GetExitCodeProcess", &NoExitCode);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(LaunchHost(1, kOwner), kHostNotStarted);
}

TEST_F(HostLaunch, DispatchesTheBrowsersMessagesWhileTheHostRuns) {
    obtest::BrowserWindow browser;
    DeleteFileW(BesideProgram(L"go").c_str());
    browser.OnTick([] { obtest::WriteFileContent(BesideProgram(L"go"), ""); });
    HostScript::Play(L"wait-file go\nexit 3");
    EXPECT_EQ(LaunchHost(1, browser.Root()), 3u);
}

TEST_F(HostLaunch, OutlivesAQuitAndPostsItAgain) {
    obtest::BrowserWindow browser;
    for (const wchar_t* name : {L"posted", L"go-on"}) DeleteFileW(BesideProgram(name).c_str());
    int ticksAfterQuit = 0;
    browser.OnTick([&] {
        // The host has posted before it makes the file, and what is posted comes before timers.
        if (obtest::FileExists(BesideProgram(L"posted")) && ++ticksAfterQuit == 3)
            obtest::WriteFileContent(BesideProgram(L"go-on"), "");
    });
    HostScript::Play(L"post-quit 37\nmake-file posted\nwait-file go-on\nexit 5");
    EXPECT_EQ(LaunchHost(1, browser.Root()), 5u);
    EXPECT_GE(ticksAfterQuit, 3);
    EXPECT_EQ(obtest::QuitValueInQueue(), 37);
    EXPECT_EQ(obtest::QuitValueInQueue(), -1);
}

} // namespace
