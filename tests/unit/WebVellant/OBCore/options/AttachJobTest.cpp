#include <windows.h>

#include <psapi.h>

#include <cstring>

#include "OBCore/options/OBAttachJob.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFields.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::OBAttachJob;
using obcore::OBOptions;
using obtest::FakeModules;

using Calls = std::vector<std::wstring>;

ObLib::UniqueWindow MakeWindow(HWND owner = nullptr) {
    return ObLib::UniqueWindow(CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, owner,
                                               nullptr, nullptr, nullptr));
}

class AttachJob : public OptionsFixture {};

TEST_F(AttachJob, BeginsWithItsInitialValues) {
    const ObLib::UniqueWindow window = MakeWindow();
    const OBAttachJob job(OBOptions{}, window.Get());
    EXPECT_NE(nullptr, job.OwnedProviderManager);
    EXPECT_EQ(job.OwnedProviderManager, job.ProviderManager);
    EXPECT_EQ(0u, job.SelectedStorageProvider.providerId);
    EXPECT_TRUE(job.Files.empty());
    EXPECT_EQ(L"", job.ResultName);
    EXPECT_EQ(L"", job.ResultPath);
    EXPECT_EQ(L"", job.ResultFolder);
    EXPECT_EQ(L"", job.CleanupFolder);
    EXPECT_EQ(L"", job.CleanupFile);
    EXPECT_TRUE(job.NameWithoutArchive);
    EXPECT_FALSE(job.ResultIsArchive);
    EXPECT_FALSE(job.UploadBlocked);
    EXPECT_EQ(window.Get(), job.ParentWindow);
    EXPECT_FALSE(job.TransformsBeforeArchive);
    EXPECT_FALSE(job.Usage.UsageZipped);
    EXPECT_FALSE(job.Usage.UsageZipx);
    EXPECT_FALSE(job.Usage.UsageExpiry);
    EXPECT_FALSE(job.Usage.UsageEncrypted);
    EXPECT_FALSE(job.Usage.UsageLink);
}

TEST_F(AttachJob, BeginsWithAnEmptyProfileByteByByte) {
    const OBAttachJob job(OBOptions{}, nullptr);
    const obcontract::ProviderProfile empty{};
    EXPECT_EQ(0, std::memcmp(&empty, &job.SelectedStorageProvider, sizeof(empty)));
}

TEST_F(AttachJob, KeepsItsFiveUsageFlagsInARow) {
    EXPECT_EQ(0u, offsetof(obcore::UsageFlags, UsageZipped));
    EXPECT_EQ(1u, offsetof(obcore::UsageFlags, UsageZipx));
    EXPECT_EQ(2u, offsetof(obcore::UsageFlags, UsageExpiry));
    EXPECT_EQ(3u, offsetof(obcore::UsageFlags, UsageEncrypted));
    EXPECT_EQ(4u, offsetof(obcore::UsageFlags, UsageLink));
}

TEST_F(AttachJob, CopiesTheOptionsButForTheManager) {
    const OBOptions options = OptionsFarFromDefaults();
    const OBAttachJob job(options, nullptr);
    OBOptions expected = options;
    expected.ProviderManager = job.OwnedProviderManager;
    const OBOptions& held = job;
    EXPECT_NE(options.ProviderManager, held.ProviderManager);
    EXPECT_TRUE(FieldsOf(std::as_const(expected)) == FieldsOf(held));
}

TEST_F(AttachJob, TakesOverOptionsAndLeavesItsOwnFieldsAlone) {
    OBAttachJob job(OBOptions{}, nullptr);
    const obcontract::ProviderManagerHandle owned = job.OwnedProviderManager;
    job.Files = {L"a", L"b"};
    job.ResultPath = L"c";
    job.SelectedStorageProvider.providerId = 7;
    job.UploadBlocked = true;
    job.Usage.UsageLink = true;
    const OBOptions options = OptionsFarFromDefaults();
    job = options;
    const OBOptions& held = job;
    EXPECT_TRUE(FieldsOf(options) == FieldsOf(held));
    EXPECT_EQ(owned, job.OwnedProviderManager);
    EXPECT_EQ(std::vector<std::wstring>({L"a", L"b"}), job.Files);
    EXPECT_EQ(L"c", job.ResultPath);
    EXPECT_EQ(7u, job.SelectedStorageProvider.providerId);
    EXPECT_TRUE(job.UploadBlocked);
    EXPECT_TRUE(job.Usage.UsageLink);
}

TEST_F(AttachJob, CreatesItsManagerAndDeletesItOnce) {
    {
        OBAttachJob job(OBOptions{}, nullptr);
        EXPECT_EQ(Calls({L"CreateObExtensionsManager()"}), FakeModules::Calls());
        // The handle in the base record isn't the owned one.
        job.ProviderManager = nullptr;
    }
    EXPECT_EQ(Calls({L"CreateObExtensionsManager()", L"DeleteObExtensionsManager(manager)"}),
              FakeModules::Calls());
}

TEST_F(AttachJob, DeletesNothingWhenNoManagerCouldBeCreated) {
    FakeModules::Answer(L"CreateObExtensionsManager", L"0");
    { const OBAttachJob job(OBOptions{}, nullptr); }
    EXPECT_EQ(Calls({L"CreateObExtensionsManager()"}), FakeModules::Calls());
}

HWND windowAskedFor;
DWORD processOfWindow; // 0: the result of the system
DWORD processOpened;
DWORD accessAskedFor;
DWORD capacityAskedFor;
bool refusesProcess;
decltype(&GetWindowThreadProcessId) realThreadOf;
decltype(&OpenProcess) realOpenProcess;
decltype(&K32GetProcessImageFileNameW) realImageName;

DWORD WINAPI RecordThreadOf(HWND window, LPDWORD process) {
    windowAskedFor = window;
    const DWORD thread = realThreadOf(window, process);
    if (processOfWindow != 0) *process = processOfWindow;
    return thread;
}

HANDLE WINAPI RecordOpenProcess(DWORD access, BOOL inherit, DWORD process) {
    accessAskedFor = access;
    processOpened = process;
    if (refusesProcess) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return realOpenProcess(access, inherit, process);
}

DWORD WINAPI RecordImageName(HANDLE process, LPWSTR path, DWORD capacity) {
    capacityAskedFor = capacity;
    return realImageName(process, path, capacity);
}

class AttachJobBrowser : public OptionsFixture {
protected:
    void SetUp() override {
        OptionsFixture::SetUp();
        ASSERT_TRUE(thread_.Ok() && open_.Ok() && image_.Ok());
        realThreadOf = thread_.Real();
        realOpenProcess = open_.Real();
        realImageName = image_.Real();
        windowAskedFor = nullptr;
        accessAskedFor = capacityAskedFor = 0;
        processOfWindow = processOpened = 0;
        refusesProcess = false;
    }

private:
    obtest::ImportPatch<decltype(GetWindowThreadProcessId)> thread_{
        "user32.dll", "GetWindowThreadProcessId", &RecordThreadOf};
    obtest::ImportPatch<decltype(OpenProcess)> open_{"kernel32.dll", "OpenProcess",
                                                     &RecordOpenProcess};
    obtest::ImportPatch<decltype(K32GetProcessImageFileNameW)> image_{
        "kernel32.dll", "K32GetProcessImageFileNameW", &RecordImageName};
};

TEST_F(AttachJobBrowser, IsTheProcessOfTheOwnerOfTheParent) {
    const ObLib::UniqueWindow owner = MakeWindow();
    const ObLib::UniqueWindow parent = MakeWindow(owner.Get());
    const OBAttachJob job(OBOptions{}, parent.Get());
    EXPECT_EQ(owner.Get(), windowAskedFor);
    EXPECT_EQ(DWORD{PROCESS_QUERY_INFORMATION | PROCESS_VM_READ}, accessAskedFor);
    EXPECT_EQ(260u, capacityAskedFor);
    wchar_t own[260] = {};
    ASSERT_NE(0u, realImageName(GetCurrentProcess(), own, 260));
    EXPECT_EQ(own, job.BrowserImagePath);
}

TEST_F(AttachJobBrowser, IsTheProcessThatTheWindowBelongsTo) {
    refusesProcess = true; // there is no process of this number
    processOfWindow = 424242;
    const ObLib::UniqueWindow parent = MakeWindow();
    const OBAttachJob job(OBOptions{}, parent.Get());
    EXPECT_EQ(424242u, processOpened);
}

TEST_F(AttachJobBrowser, IsTheProcessOfAParentWithoutOwner) {
    const ObLib::UniqueWindow parent = MakeWindow();
    const OBAttachJob job(OBOptions{}, parent.Get());
    EXPECT_EQ(parent.Get(), windowAskedFor);
    EXPECT_FALSE(job.BrowserImagePath.empty());
}

TEST_F(AttachJobBrowser, IsUnknownWhenItsProcessDoesntOpen) {
    refusesProcess = true;
    const ObLib::UniqueWindow parent = MakeWindow();
    const OBAttachJob job(OBOptions{}, parent.Get());
    EXPECT_EQ(L"", job.BrowserImagePath);
}

TEST_F(AttachJobBrowser, IsUnknownWithoutAParent) {
    const OBAttachJob job(OBOptions{}, nullptr);
    EXPECT_EQ(L"", job.BrowserImagePath);
}

} // namespace
