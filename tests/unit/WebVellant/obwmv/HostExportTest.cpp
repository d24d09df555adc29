#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OBCore/modules/ProviderLibrary.h"
#include "OBCore/modules/ResourceModule.h"
#include "OBCore/modules/ServiceLibrary.h"
#include "obwmv/Exports.h"
#include "obwmv/Library.h"
#include "tests/support/AbsentModule.h"
#include "tests/support/FakeModules.h"
#include "tests/unit/WebVellant/obwmv/RequestFakes.h"

namespace {

using obtest::AbsentModule;
using obtest::FakeModules;
using obtest::Fakes;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kArchiveService[] = L"obofcsvc64.dll";
constexpr wchar_t kProviderManager[] = L"PVXManager64.dll";
const HWND kOwner = reinterpret_cast<HWND>(0x1234);

class HostExport : public testing::Test {
protected:
    void SetUp() override {
        obtest::ResetFakes();
        FakeModules::Reset();
    }
    void TearDown() override { obwmv::OnProcessDetach(); }

    // The calls that bracket a host process, without the archive service's other calls.
    static std::vector<std::wstring> Log() {
        return FakeModules::CallsOf({L"LogLaunch", L"LogExit"});
    }
};

TEST_F(HostExport, RunsOneRequestBetweenLaunchAndExit) {
    obtest::ActivationRecorder activations;
    ASSERT_TRUE(activations.Ok());
    Fakes().host = [](HWND owner, std::uint32_t id) {
        EXPECT_EQ(owner, kOwner);
        EXPECT_EQ(id, 17u);
        EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()"));
        EXPECT_NE(obcore::ResourceModule(), nullptr);
        return 0;
    };
    std::vector<std::wstring> atDeactivation;
    activations.onDeactivate = [&] { atDeactivation = Log(); };
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 17), 0);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "HostEntry", "deactivate"));
    EXPECT_THAT(atDeactivation, ElementsAre(L"LogLaunch()", L"LogExit()"));
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()", L"LogExit()"));
}

TEST_F(HostExport, HandsOnThatTheBlockWasNotServed) {
    Fakes().host = [](HWND, std::uint32_t id) {
        EXPECT_EQ(id, 0xFFFFFFFBu);
        return -1;
    };
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, -5), -1);
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()", L"LogExit()"));
}

TEST_F(HostExport, AnswersMinusOneWithoutTheArchiveService) {
    const AbsentModule absent(kArchiveService);
    ASSERT_TRUE(absent.Ok());
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, IsEmpty());
    EXPECT_EQ(obcore::ResourceModule(), nullptr);
}

HMODULE WINAPI LoadNothing(LPCWSTR, HANDLE, DWORD) { return nullptr; }

TEST_F(HostExport, AnswersMinusOneWithoutTheTexts) {
    const obtest::ImportPatch<decltype(&LoadLibraryExW)> load("kernel32.dll", "LoadLibraryExW",
                                                              &LoadNothing);
    ASSERT_TRUE(load.Ok());
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostExport, AnswersMinusOneWithoutTheProviderManager) {
    const AbsentModule absent(kProviderManager);
    ASSERT_TRUE(absent.Ok());
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(HostExport, LeavesOutLogExitWhenTheContextCantBeActivated) {
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate"));
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()"));
}

TEST_F(HostExport, LogsTheExitWhenARequestThrows) {
    const obtest::ActivationRecorder activations;
    ASSERT_TRUE(activations.Ok());
    Fakes().host = [](HWND, std::uint32_t) -> int { throw std::bad_alloc(); };
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, ElementsAre("activate", "HostEntry", "deactivate"));
    EXPECT_THAT(Log(), ElementsAre(L"LogLaunch()", L"LogExit()"));
}

TEST_F(HostExport, AsksForTheHelpPageWithOneTopicTwice) {
    EXPECT_TRUE(WebHelpApp(kOwner));
    EXPECT_THAT(FakeModules::Calls(),
                ElementsAre(L"WebHelpW(4660, \"Help About Topic\", \"Help About Topic\")"));
}

TEST_F(HostExport, AsksForNoHelpPageWithoutTheArchiveService) {
    const AbsentModule absent(kArchiveService);
    ASSERT_TRUE(absent.Ok());
    EXPECT_FALSE(WebHelpApp(kOwner));
    EXPECT_THAT(FakeModules::Calls(), IsEmpty());
}

// Entries of a sister module that throw, though none should: nothing may leave an export.
class HostExportExceptions : public HostExport {
protected:
    void SetUp() override {
        HostExport::SetUp();
        ASSERT_TRUE(obcore::LoadArchiveService());
        entries_ = const_cast<obcontract::ArchiveServiceEntries*>(&obcore::ArchiveService());
        saved_ = *entries_;
    }
    void TearDown() override {
        *entries_ = saved_;
        HostExport::TearDown();
    }

    obcontract::ArchiveServiceEntries* entries_ = nullptr;
    obcontract::ArchiveServiceEntries saved_{};
};

TEST_F(HostExportExceptions, AnswerMinusOneWhenTheLaunchCantBeLogged) {
    entries_->LogLaunch = [] { throw std::bad_alloc(); };
    EXPECT_EQ(ShowFileOpenDialogInProcess(kOwner, 1), -1);
    EXPECT_THAT(Fakes().steps, IsEmpty());
}

TEST_F(HostExportExceptions, AnswerFalseWhenTheHelpPageCantBeShown) {
    entries_->WebHelpW = [](HWND, const wchar_t*, const wchar_t*) { throw std::bad_alloc(); };
    EXPECT_FALSE(WebHelpApp(kOwner));
}

TEST_F(HostExport, TriesAgainWhenTheArchiveServiceCameLater) {
    {
        const AbsentModule absent(kArchiveService);
        EXPECT_FALSE(WebHelpApp(kOwner));
    }
    EXPECT_TRUE(WebHelpApp(kOwner));
}

} // namespace
