// A pick from the cloud: its calls, what it leaves in the record, what is reported.
#include <psapi.h>

#include "tests/support/Allocations.h"
#include "tests/unit/WebVellant/OBCore/cloud/PickFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;

constexpr wchar_t kBrowserImage[] = L"\\Device\\HarddiskVolume2\\Browser\\chrome.exe";
DWORD imageCapacity = 0;

DWORD WINAPI ImageOfTheBrowser(HANDLE, LPWSTR path, DWORD capacity) {
    imageCapacity = capacity;
    wcscpy(path, kBrowserImage);
    return static_cast<DWORD>(wcslen(kBrowserImage));
}

HWND windowOfTheProcess = nullptr;
decltype(&GetWindowThreadProcessId) realProcessOf = nullptr;
DWORD WINAPI NotedProcessOf(HWND window, LPDWORD process) {
    windowOfTheProcess = window;
    return realProcessOf(window, process);
}

class CloudPick : public obtest::PickFixture {
protected:
    static Lines Defaults() { return CallsOf({L"SetDefaultStorageProvider"}); }
    void ExpectNothingPicked() {
        EXPECT_EQ(record_.linkText, L"");
        EXPECT_TRUE(CallsOf({L"LogAppletFeature", L"SetDefaultStorageProvider"}).empty());
    }
    static std::wstring SourceEvent() {
        return std::wstring(L"LogAppletFeature(\"feature.email-share\", \"email-share.source=") +
               kBrowserImage + L"\")";
    }

    // Wine's own answer depends on services that a prefix starts without.
    const obtest::ImportPatch<decltype(&K32GetProcessImageFileNameW)> image_{
        "kernel32.dll", "K32GetProcessImageFileNameW", &ImageOfTheBrowser};
};

TEST_F(CloudPick, MakesItsCallsInOrder) {
    Answer(L"GetSharedListFromOpenPicker", L"a.pdf|https://a");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(FakeModules::Calls(),
              (Lines{L"GetDefaultStorageProvider(manager)", L"GetProviderInstance(manager, 7, 1)",
                     L"HasCapability(provider7, 1, 1)", L"CreateDownloadList(provider7)",
                     L"GetSharedListFromOpenPicker(manager, provider7, list, " + Dialog() + L")",
                     L"GetDefaultStorageProvider(manager)", L"IsProviderSupport(manager, 7, 1)",
                     L"GetItem(list, 0)", L"GetProviderInstance(manager, 7, 1)",
                     L"GetDisplayName(provider7, 1, 128)", L"GetItem(list, 1)", L"GetItem(list, 0)",
                     L"GetProviderInstance(manager, 7, 1)", L"GetDisplayName(provider7, 1, 128)",
                     L"LogAppletFeature(\"feature.cloud\", \"cloud.name=provider7\")",
                     L"LogAppletFeature(\"feature.file-send\", "
                     L"\"file-send.type=link|file-send.expiry=no\")",
                     SourceEvent(), L"DeleteDownloadList(provider7, list)"}));
    EXPECT_EQ(record_.linkText, L"||a.pdf|||" + Sentence() + L" *: |||provider7||");
}

TEST_F(CloudPick, GivesNothingWithoutAProvider) {
    Answer(L"Providers", L"");
    EXPECT_FALSE(Pick());
    EXPECT_TRUE(CallsOf({L"CreateDownloadList", L"GetSharedListFromOpenPicker"}).empty());
    ExpectNothingPicked();
}

TEST_F(CloudPick, GivesNothingWithoutAListAndShowsNothing) {
    Answer(L"provider7.CreateDownloadList", L"0");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(Pick());
    EXPECT_TRUE(CallsOf({L"GetSharedListFromOpenPicker", L"DeleteDownloadList"}).empty());
    EXPECT_TRUE(boxes.Seen().empty());
    ExpectNothingPicked();
}

TEST_F(CloudPick, IsSilentAfterACancel) {
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(Pick());
    EXPECT_EQ(CallsOf({L"GetLastErrorCodeOfProvider", L"DeleteDownloadList"}),
              (Lines{L"GetLastErrorCodeOfProvider(manager, list, \"\", 2048)",
                     L"DeleteDownloadList(provider7, list)"}));
    EXPECT_TRUE(boxes.Seen().empty());
    ExpectNothingPicked();
}

TEST_F(CloudPick, ShowsTheManagersTextAfterAFailure) {
    Answer(L"GetLastErrorCodeOfProvider.text", L"No connection.");
    for (const wchar_t* code : {L"5", L"-5"}) {
        Answer(L"GetLastErrorCodeOfProvider", code);
        FakeModules::ForgetCalls();
        const MessageBoxWatcher boxes;
        EXPECT_FALSE(Pick());
        ASSERT_EQ(boxes.Seen().size(), 1u);
        EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
        EXPECT_EQ(boxes.Seen()[0].text, L"No connection.");
        EXPECT_FALSE(boxes.Seen()[0].hasIcon);
        EXPECT_EQ(boxes.Seen()[0].owner, dialog_.Get());
        EXPECT_EQ(CallsOf({L"DeleteDownloadList"}).size(), 1u);
        ExpectNothingPicked();
    }
}

TEST_F(CloudPick, ShowsATextThatFillsItsBuffer) {
    const std::wstring text(2048, L't');
    Answer(L"GetLastErrorCodeOfProvider", L"5");
    Answer(L"GetLastErrorCodeOfProvider.text", text.c_str());
    Answer(L"GetLastErrorCodeOfProvider.noNul", L"1");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(Pick());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(boxes.Seen()[0].text, text);
}

TEST_F(CloudPick, KeepsAUsableDefaultAlsoWhenAnotherAccountWasPickedFrom) {
    Answer(L"GetSharedListFromOpenPicker", L"a|x|8|bob");
    EXPECT_TRUE(Pick());
    EXPECT_TRUE(Defaults().empty());
}

TEST_F(CloudPick, MakesTheFirstItemsAccountTheDefaultWhereThereIsNone) {
    Answer(L"GetDefaultStorageProvider", L"0||");
    Answer(L"GetSharedListFromOpenPicker", L"a|x|8|bob;b|y|7|ann");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(Defaults(), Lines{L"SetDefaultStorageProvider(manager, profile(8, \"\", \"bob\"))"});
    EXPECT_TRUE(CallsOf({L"IsProviderSupport"}).empty());
}

// The walk still finds a provider, and the pick mends the default.
TEST_F(CloudPick, MakesTheFirstItemsAccountTheDefaultWhereTheDefaultLostItsSupport) {
    Answer(L"IsProviderSupport.7.1", L"0");
    Answer(L"GetProviderInstance.7", L"0");
    Answer(L"provider8.HasCapability", L"1");
    Answer(L"provider8.GetAccountProfiles", L"Bob|bob");
    Answer(L"GetSharedListFromOpenPicker", L"a|x|8|bob");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(CallsOf({L"EnumProvidersReset", L"GetSharedListFromOpenPicker"}),
              (Lines{L"EnumProvidersReset(manager)",
                     L"GetSharedListFromOpenPicker(manager, provider8, list, " + Dialog() + L")"}));
    EXPECT_EQ(Defaults(), Lines{L"SetDefaultStorageProvider(manager, profile(8, \"\", \"bob\"))"});
}

TEST_F(CloudPick, ReportsTheProviderOfTheFirstItem) {
    Answer(L"provider8.GetDisplayName", L"Other Cloud");
    Answer(L"GetSharedListFromOpenPicker", L"z|x|8|bob;a|y");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(CallsOf({L"LogAppletFeature"})[0],
              L"LogAppletFeature(\"feature.cloud\", \"cloud.name=Other Cloud\")");
}

TEST_F(CloudPick, NeverSchedulesADeletion) {
    Answer(L"GetSharedListFromOpenPicker", L"a|x;b|y");
    EXPECT_TRUE(Pick());
    EXPECT_TRUE(CallsOf({L"AddFileToDeletionSchedule"}).empty());
}

TEST_F(CloudPick, ReportsTheWholeImagePathOfTheOwnersProcess) {
    const obtest::ImportPatch<decltype(&GetWindowThreadProcessId)> process(
        "user32.dll", "GetWindowThreadProcessId", &NotedProcessOf);
    ASSERT_TRUE(process.Ok() && image_.Ok());
    realProcessOf = process.Real();
    Answer(L"GetSharedListFromOpenPicker", L"a|x");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(CallsOf({L"LogAppletFeature"}).back(), SourceEvent());
    EXPECT_EQ(windowOfTheProcess, owner_.Get());
    EXPECT_EQ(imageCapacity, 260u);
    // A dialog that no window owns counts for itself.
    dialog_.Reset(CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                  nullptr, nullptr));
    EXPECT_TRUE(Pick());
    EXPECT_EQ(windowOfTheProcess, dialog_.Get());
}

HANDLE WINAPI NoProcess(DWORD, BOOL, DWORD) { return nullptr; }

TEST_F(CloudPick, SendsNoBrowserWhereItsProcessCannotBeOpened) {
    const obtest::ImportPatch<decltype(&OpenProcess)> open("kernel32.dll", "OpenProcess",
                                                           &NoProcess);
    ASSERT_TRUE(open.Ok());
    Answer(L"GetSharedListFromOpenPicker", L"a|x");
    EXPECT_TRUE(Pick());
    EXPECT_EQ(CallsOf({L"LogAppletFeature"}).size(), 2u);
}

// A manager whose picker succeeds with nothing in its list.
TEST_F(CloudPick, GivesNoTextForAnEmptyListAndShowsNothing) {
    Answer(L"GetDefaultStorageProvider", L"0||");
    Answer(L"GetSharedListFromOpenPicker", L"");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(Pick());
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_EQ(CallsOf({L"DeleteDownloadList"}).size(), 1u);
    ExpectNothingPicked();
}

TEST_F(CloudPick, ReportsAMissingInstanceOfTheFirstItemOnce) {
    Answer(L"GetSharedListFromOpenPicker", L"a|x|99|zed");
    const MessageBoxWatcher boxes;
    EXPECT_TRUE(Pick());
    ASSERT_EQ(boxes.Seen().size(), 1u);
    ExpectAssertion(boxes.Seen()[0], L"cloud_svc != NULL");
    EXPECT_EQ(CallsOf({L"LogAppletFeature"})[0],
              L"LogAppletFeature(\"feature.cloud\", \"cloud.name=\")");
}

// The caller inserts the text of the record also when the dialog is closed by a cancel later on.
TEST_F(CloudPick, LeavesATextOnlyWhenItSucceedsAlsoWithoutMemory) {
    Answer(L"GetSharedListFromOpenPicker", L"a|x");
    std::size_t thrown = 0;
    std::size_t swallowed = 0;
    for (std::size_t which = 0;; ++which) {
        record_.linkText.clear();
        bool picked = false;
        const obtest::FailingAllocations failing({.succeeding = which, .once = true});
        try {
            picked = Pick();
        } catch (const std::bad_alloc&) {
            ++thrown;
        }
        EXPECT_EQ(picked, !record_.linkText.empty()) << which;
        if (!failing.Failed()) break;
        if (picked) ++swallowed;
    }
    EXPECT_GT(thrown, 0u);
    EXPECT_GT(swallowed, 0u); // the report's own
}

TEST_F(CloudPick, AdoptsNoAccountFromAnEmptyList) {
    Answer(L"GetDefaultStorageProvider", L"0||");
    auto* list = obcore::slots::OnCloudProvider::CreateDownloadList::Call(Provider(7));
    obcore::AdoptPickedProfile(job_.OwnedProviderManager, list);
    EXPECT_TRUE(Defaults().empty());
    obcore::ProviderManager().DeleteDownloadList(Provider(7), list);
}

} // namespace
