#include "OBCore/usage/UsageEvents.h"

#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "tests/support/FakeModules.h"
#include "tests/support/TestFolder.h"

namespace {

using obcore::OBAttachJob;
using obcore::ReportFileSend;
using obcore::UsageFlags;
using obtest::FakeModules;

using Calls = std::vector<std::wstring>;

std::wstring Event(const std::wstring& feature, const std::wstring& text) {
    return L"LogAppletFeature(\"" + feature + L"\", \"" + text + L"\")";
}

bool IsFailFast(int code) { return static_cast<DWORD>(code) == 0xC0000409; }

class UsageEvents : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        ASSERT_TRUE(obcore::LoadProviderManager());
    }

    // The events of a job whose browser has this image.
    static Calls EventsOfJob(const std::wstring& image) {
        OBAttachJob job(obcore::OBOptions{}, nullptr);
        job.BrowserImagePath = image;
        FakeModules::ForgetCalls();
        obcore::ReportUsage(job);
        return FakeModules::Calls();
    }
};

TEST_F(UsageEvents, ReportEverySendByItsFlags) {
    struct Row {
        UsageFlags flags;
        const wchar_t* text;
    };
    const Row rows[] = {
        {{}, L"file-send.type=attachment|file-send.expiry=no"},
        {{.UsageLink = true}, L"file-send.type=link|file-send.expiry=no"},
        {{.UsageExpiry = true, .UsageLink = true}, L"file-send.type=link|file-send.expiry=yes"},
        {{.UsageZipped = true},
         L"file-send.type=attachment|file-send.encryption=no|file-send.compression=zip|"
         L"file-send.expiry=no"},
        {{.UsageZipped = true, .UsageEncrypted = true},
         L"file-send.type=attachment|file-send.encryption=yes|file-send.compression=zip|"
         L"file-send.expiry=no"},
        {{.UsageZipped = true, .UsageZipx = true},
         L"file-send.type=attachment|file-send.encryption=no|file-send.compression=zipx|"
         L"file-send.expiry=no"},
        {{.UsageZipped = true,
          .UsageZipx = true,
          .UsageExpiry = true,
          .UsageEncrypted = true,
          .UsageLink = true},
         L"file-send.type=link|file-send.encryption=yes|file-send.compression=zipx|"
         L"file-send.expiry=yes"},
        // Without a zip its kind isn't reported.
        {{.UsageZipx = true, .UsageEncrypted = true},
         L"file-send.type=attachment|file-send.expiry=no"},
    };
    for (const Row& row : rows) {
        FakeModules::ForgetCalls();
        ReportFileSend(row.flags, L"");
        EXPECT_EQ(Calls({Event(L"feature.file-send", row.text)}), FakeModules::Calls());
    }
}

TEST_F(UsageEvents, ReportTheSourceAfterTheSend) {
    ReportFileSend({}, L"\\Device\\HarddiskVolume1\\b\\chrome.exe");
    EXPECT_EQ(Calls({Event(L"feature.file-send", L"file-send.type=attachment|file-send.expiry=no"),
                     Event(L"feature.email-share",
                           L"email-share.source=\\Device\\HarddiskVolume1\\b\\chrome.exe")}),
              FakeModules::Calls());
}

TEST_F(UsageEvents, ReportTheShortNameOfAJobsBrowser) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"\\Device\\HarddiskVolume1\\b\\chrome.exe", L"chrome"},
        {L"C:\\a.b\\my.browser.exe", L"my.browser"},
        {L"\\x.", L"x"},
    };
    for (const auto& [image, source] : rows) {
        const Calls calls = EventsOfJob(image);
        ASSERT_EQ(2u, calls.size());
        EXPECT_EQ(Event(L"feature.email-share", std::wstring(L"email-share.source=") + source),
                  calls[1]);
    }
}

TEST_F(UsageEvents, ReportNoSourceWhenTheBrowserHasNoShortName) {
    for (const wchar_t* image :
         {L"", L"C:\\programs\\firefox", L"C:\\a.b\\firefox", L"chrome.exe", L"C:\\a\\.exe"}) {
        EXPECT_EQ(1u, EventsOfJob(image).size()) << image;
    }
}

TEST_F(UsageEvents, ReportAJobsOwnFlags) {
    OBAttachJob job(obcore::OBOptions{}, nullptr);
    job.Usage.UsageZipped = true;
    job.Usage.UsageZipx = true;
    FakeModules::ForgetCalls();
    obcore::ReportUsage(job);
    EXPECT_EQ(
        Calls({Event(L"feature.file-send", L"file-send.type=attachment|file-send.encryption=no|"
                                           L"file-send.compression=zipx|file-send.expiry=no")}),
        FakeModules::Calls());
}

TEST_F(UsageEvents, ReportTheCloudServiceByItsName) {
    obcore::ReportCloudUse(L"My Cloud");
    obcore::ReportCloudUse(L"");
    EXPECT_EQ(Calls({Event(L"feature.cloud", L"cloud.name=My Cloud"),
                     Event(L"feature.cloud", L"cloud.name=")}),
              FakeModules::Calls());
}

TEST_F(UsageEvents, ReportAPickFromTheCloudInTwoEvents) {
    obcore::ReportCloudUse(L"My Cloud");
    ReportFileSend({.UsageLink = true}, L"");
    EXPECT_EQ(Calls({Event(L"feature.cloud", L"cloud.name=My Cloud"),
                     Event(L"feature.file-send", L"file-send.type=link|file-send.expiry=no")}),
              FakeModules::Calls());
}

// A text has 259 characters at most; the key of a source takes 19, that of a service 11.
TEST_F(UsageEvents, ContainTextsThatJustFit) {
    const std::wstring source(240, L's');
    const std::wstring service(248, L'n');
    ReportFileSend({}, source);
    obcore::ReportCloudUse(service);
    EXPECT_EQ(Calls({Event(L"feature.file-send", L"file-send.type=attachment|file-send.expiry=no"),
                     Event(L"feature.email-share", L"email-share.source=" + source),
                     Event(L"feature.cloud", L"cloud.name=" + service)}),
              FakeModules::Calls());
}

TEST_F(UsageEvents, EndTheProcessAtASourceOfOneCharacterMore) {
    EXPECT_EXIT(ReportFileSend({}, std::wstring(241, L's')), IsFailFast, "");
    // The event before it had gone out.
    EXPECT_EQ(
        Calls({Event(L"feature.file-send", L"file-send.type=attachment|file-send.expiry=no")}),
        FakeModules::Calls());
}

TEST_F(UsageEvents, EndTheProcessAtAServiceNameOfOneCharacterMore) {
    EXPECT_EXIT(obcore::ReportCloudUse(std::wstring(249, L'n')), IsFailFast, "");
}

// The archive service is where no event finds it, as in a broken installation.
class UsageEventsWithoutService : public testing::Test {};

TEST_F(UsageEventsWithoutService, ArentSentAndComeBackWithTheService) {
    FakeModules::Reset();
    ASSERT_TRUE(MoveFileW(L"C:\\app\\obofcsvc64.dll", L"C:\\app\\away.dll"));
    ASSERT_TRUE(obcore::LoadProviderManager());
    OBAttachJob job(obcore::OBOptions{}, nullptr);
    FakeModules::ForgetCalls();
    ReportFileSend({}, L"source");
    obcore::ReportUsage(job);
    obcore::ReportCloudUse(L"My Cloud");
    EXPECT_TRUE(FakeModules::Calls().empty());

    ASSERT_TRUE(MoveFileW(L"C:\\app\\away.dll", L"C:\\app\\obofcsvc64.dll"));
    obcore::ReportCloudUse(L"My Cloud");
    EXPECT_EQ(Calls({Event(L"feature.cloud", L"cloud.name=My Cloud")}), FakeModules::Calls());
}

} // namespace
