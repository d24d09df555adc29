#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include "tests/contract/entry/LoadedLibrary.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/support/ImportPatch.h"

namespace {

using obtest::AbsentModule;
using obtest::BrowserCall;
using obtest::HostScript;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kMainClass[] = L"BrowsersMainWindow";

ObLib::UniqueWindow MakeMainWindow() {
    WNDCLASSEXW description{.cbSize = sizeof(WNDCLASSEXW)};
    description.lpfnWndProc = DefWindowProcW;
    description.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    description.lpszClassName = kMainClass;
    RegisterClassExW(&description);
    return ObLib::UniqueWindow(CreateWindowExW(0, kMainClass, L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                               0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr));
}

class OpenFileNameContract : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(library_.module);
        HostScript::Play(L"exit 0");
        request_.lpstrFile = files_;
        request_.nMaxFile = 1000;
    }

    BOOL Ask() { return library_.getOpenFileName(&request_, &context_); }

    static bool BlockExists() {
        wchar_t name[32];
        _snwprintf(name, 32, L"WEBVELLANT_SM_%d", static_cast<int>(GetCurrentThreadId()));
        return static_cast<bool>(
            ObLib::UniqueKernelHandle(OpenFileMappingW(FILE_MAP_READ, FALSE, name)));
    }

    const obtest::LoadedLibrary library_;
    obtest::FakeBrowserContext context_;
    wchar_t files_[1000] = L"untouched";
    OPENFILENAMEW request_{.lStructSize = sizeof(OPENFILENAMEW)};
};

TEST_F(OpenFileNameContract, GivesThePageThePathThatTheHostAnswered) {
    HostScript::Play(L"status 3\nslot \"C:\\temp\\mail.zip\"\nresult 1");
    EXPECT_EQ(Ask(), 1);
    EXPECT_STREQ(files_, L"C:\\temp\\mail.zip");
    EXPECT_THAT(context_.OwnDialogs(), IsEmpty());
    EXPECT_FALSE(BlockExists());
    EXPECT_EQ(request_.hwndOwner, nullptr);
}

TEST_F(OpenFileNameContract, GivesThePageALinkText) {
    HostScript::Play(L"text 76 \"https://cloud.example/1\"\npoke32 24 76\nstatus 2\nresult 0");
    EXPECT_EQ(Ask(), 0);
    EXPECT_THAT(context_.delivered, ElementsAre(L"link https://cloud.example/1"));
    EXPECT_STREQ(files_, L"untouched");
}

TEST_F(OpenFileNameContract, RestoresTheOwnerAfterAHostFailure) {
    HostScript::Play(L"exit 3");
    EXPECT_EQ(Ask(), 0);
    EXPECT_EQ(request_.hwndOwner, nullptr);
    EXPECT_STREQ(files_, L"untouched");
    EXPECT_THAT(context_.OwnDialogs(), IsEmpty());
}

TEST_F(OpenFileNameContract, GivesTheCallersOwnerBackAfterEveryEndOfTheHost) {
    const ObLib::UniqueWindow asking(CreateWindowExW(0, L"Static", L"",
                                                     WS_OVERLAPPEDWINDOW | WS_VISIBLE, 5, 5, 300,
                                                     200, nullptr, nullptr, nullptr, nullptr));
    const ObLib::UniqueWindow main = MakeMainWindow();
    ASSERT_TRUE(asking && main);
    context_.windowClasses = {kMainClass};
    request_.hwndOwner = asking.Get();
    for (const wchar_t* script : {L"status 3\nslot \"C:\\a.txt\"\nresult 1", L"status 3\nresult 0",
                                  L"exit 3", L"exit -1"}) {
        HostScript::Play(script);
        Ask();
        EXPECT_EQ(request_.hwndOwner, asking.Get());
        EXPECT_TRUE(IsWindowEnabled(main.Get()));
    }
    EXPECT_THAT(context_.OwnDialogs(), IsEmpty());
}

TEST_F(OpenFileNameContract, ReadsAsACancelWhenTheHostIsMissing) {
    const AbsentModule host(L"obwmvapp.exe");
    ASSERT_TRUE(host.Ok());
    EXPECT_EQ(Ask(), 0);
    EXPECT_THAT(context_.OwnDialogs(), IsEmpty());
    EXPECT_EQ(request_.hwndOwner, nullptr);
}

TEST_F(OpenFileNameContract, MakesNoBlockAndNoHostForAVetoedRequest) {
    context_.pickerWanted = 0;
    bool block = true;
    context_.onCall = [&](BrowserCall call) {
        if (call == BrowserCall::CallGetOpenFileName) block = BlockExists();
    };
    EXPECT_EQ(Ask(), context_.openFileNameAnswer);
    EXPECT_FALSE(block);
    EXPECT_THAT(HostScript::Record(), IsEmpty());
}

TEST_F(OpenFileNameContract, LeavesOtherPagesToTheBrowser) {
    context_.pageUrl = L"https://www.example.com/upload";
    EXPECT_EQ(Ask(), context_.openFileNameAnswer);
    EXPECT_THAT(context_.OwnDialogs(), ElementsAre("CallGetOpenFileName"));
    EXPECT_EQ(GetModuleHandleW(L"obofcsvc64.dll"), nullptr);
}

TEST_F(OpenFileNameContract, LeavesMailPagesToTheBrowserWithoutTheArchiveService) {
    const AbsentModule service(L"obofcsvc64.dll");
    ASSERT_TRUE(service.Ok());
    EXPECT_EQ(Ask(), context_.openFileNameAnswer);
    EXPECT_THAT(context_.OwnDialogs(), ElementsAre("CallGetOpenFileName"));
}

TEST_F(OpenFileNameContract, NeverLoadsTheProviderManagerInTheBrowser) {
    HostScript::Play(L"status 3\nslot \"C:\\a.txt\"\nresult 1");
    EXPECT_EQ(Ask(), 1);
    EXPECT_EQ(GetModuleHandleW(L"PVXManager64.dll"), nullptr);
    const AbsentModule manager(L"PVXManager64.dll");
    ASSERT_TRUE(manager.Ok());
    EXPECT_EQ(Ask(), 1);
}

DWORD WINAPI FillTheBuffer(HMODULE, LPWSTR path, DWORD capacity) {
    for (DWORD index = 0; index < capacity; ++index) path[index] = L'x';
    return capacity;
}

TEST_F(OpenFileNameContract, AsksTheBrowserWhenItsOwnPathFillsTheBuffer) {
    const obtest::ImportPatch<decltype(&GetModuleFileNameW)> name(
        "kernel32.dll", "GetModuleFileNameW", &FillTheBuffer, library_.module.Get());
    ASSERT_TRUE(name.Ok());
    EXPECT_EQ(Ask(), context_.openFileNameAnswer);
    EXPECT_THAT(HostScript::Record(), IsEmpty());
}

// Whether a push button that is made now is one of version 6 of the common controls.
bool ButtonIsThemed() {
    const ObLib::UniqueWindow button(CreateWindowExW(0, L"Button", L"Attach", WS_POPUP, 0, 0, 90,
                                                     30, nullptr, nullptr, nullptr, nullptr));
    SIZE ideal{};
    return SendMessageW(button.Get(), BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal)) != 0;
}

TEST_F(OpenFileNameContract, RunsInTheContextOfItsOwnManifest) {
    context_.pickerWanted = 0;
    bool themed = false;
    context_.onCall = [&](BrowserCall call) {
        if (call == BrowserCall::CallGetOpenFileName) themed = ButtonIsThemed();
    };
    ASSERT_FALSE(ButtonIsThemed());
    Ask();
    EXPECT_TRUE(themed);
    EXPECT_FALSE(ButtonIsThemed());
}

} // namespace
