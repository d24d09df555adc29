// To which account an archive goes, and what happens where there is none.
#include "tests/unit/WebVellant/OBCore/planning/PlanningFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;
using obtest::TheFakePipeline;

constexpr wchar_t kDefaultAsked[] = L"GetDefaultStorageProvider(manager)";

class ProviderChoice : public obtest::PlanningFixture {
protected:
    void SetUp() override {
        PlanningFixture::SetUp();
        job_.SendSetting = obcore::SendSettingKind::Always;
        FakeModules::Answer(L"Providers", L"7,21");
    }

    // The calls of the choice, without the walk over the providers, which comes once a process.
    static Lines Calls() {
        return FakeModules::CallsOf({L"GetDefaultStorageProvider", L"IsProviderSupport",
                                     L"ShowSelectDefaultCloudDialog", L"RunCloudSend",
                                     L"LogAppletFeature"});
    }
    std::wstring Sent(const std::wstring& profile) const {
        return L"RunCloudSend(" + Quote(archive_) + L", 7, " + profile + L")";
    }
    std::wstring DialogShown() const { return L"ShowSelectDefaultCloudDialog(" + Owner() + L")"; }
    static std::wstring SupportAsked(const std::wstring& id) {
        return L"IsProviderSupport(manager, " + id + L", 1)";
    }
    static std::wstring LinkReport() { return Report(L"type=link|file-send.expiry=no").front(); }
    static void Choose(obcore::OBAttachJob& job, std::uint32_t id) {
        job.SelectedStorageProvider = {};
        job.SelectedStorageProvider.providerId = id;
        wcscpy(job.SelectedStorageProvider.accountKey, L"chosen");
    }

    std::wstring archive_ = sources_.File(L"picked.zip", "content");
};

TEST_F(ProviderChoice, TakesTheDefaultAccount) {
    FakeModules::Answer(L"GetDefaultStorageProvider", L"7|label|account");
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(FakeModules::Calls(), (Lines{kDefaultAsked, SupportAsked(L"7"), kDefaultAsked,
                                           Sent(L"7, \"account\""), LinkReport()}));
    EXPECT_EQ(picker_.LinkText, L"link");
}

TEST_F(ProviderChoice, PrefersTheAccountThatIsChosenAlready) {
    FakeModules::Answer(L"GetDefaultStorageProvider", L"7|label|account");
    Choose(job_, 21);
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(Calls(),
              (Lines{kDefaultAsked, SupportAsked(L"7"), Sent(L"21, \"chosen\""), LinkReport()}));
}

TEST_F(ProviderChoice, AsksTheUserWithoutADefaultAccount) {
    TheFakePipeline().chooseProvider = [](auto& job) {
        Choose(job, 21);
        return true;
    };
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(Calls(), (Lines{kDefaultAsked, DialogShown(), SupportAsked(L"21"),
                              Sent(L"21, \"chosen\""), LinkReport()}));
}

TEST_F(ProviderChoice, AsksTheUserWhenTheDefaultIsNotSupported) {
    FakeModules::Answer(L"GetDefaultStorageProvider", L"99|label|account");
    TheFakePipeline().chooseProvider = [](auto& job) {
        Choose(job, 7);
        return true;
    };
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(Calls(), (Lines{kDefaultAsked, SupportAsked(L"99"), DialogShown(), SupportAsked(L"7"),
                              Sent(L"7, \"chosen\""), LinkReport()}));
}

TEST_F(ProviderChoice, StopsWhenTheUserChoosesNothing) {
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(Calls(), (Lines{kDefaultAsked, DialogShown()}));
    EXPECT_EQ(picker_.LinkText, L"");
    EXPECT_FALSE(job_.Usage.UsageLink);
}

TEST_F(ProviderChoice, StopsWhenTheChosenProviderIsNotSupported) {
    TheFakePipeline().chooseProvider = [](auto& job) {
        Choose(job, 98);
        return true;
    };
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(Calls(), (Lines{kDefaultAsked, DialogShown(), SupportAsked(L"98")}));
    EXPECT_EQ(picker_.LinkText, L"");
}

TEST_F(ProviderChoice, GoesByTheRecordAndNotByTheAnswerOfTheDialog) {
    TheFakePipeline().chooseProvider = [](auto& job) {
        Choose(job, 7);
        return false;
    };
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(FakeModules::CallsOf({L"RunCloudSend"}), Lines{Sent(L"7, \"chosen\"")});
}

TEST_F(ProviderChoice, LeavesTheZipWhenTheUserChoosesNothing) {
    EXPECT_EQ(Process({sources_.File(L"one.txt")}), 0);
    EXPECT_EQ(Left(), (Lines{L"1001\\", L"1001\\one.zip"}));
    EXPECT_TRUE(UsageReports().empty());
    EXPECT_EQ(job_.CleanupFolder, RunFolder(1));
}

TEST_F(ProviderChoice, AttachesWithoutADialogWhenCloudServicesAreForbidden) {
    job_.DisableCloudServices = true;
    EXPECT_EQ(Process({archive_}), 1);
    EXPECT_EQ(FakeModules::Calls(), (Lines{kDefaultAsked, PlainReport().front()}));
    EXPECT_EQ(job_.ResultPath, archive_);
}

// With the answer that a send gives when links are forbidden.
TEST_F(ProviderChoice, AttachesWithoutADialogOrAReportWhenLinksAreForbidden) {
    job_.UploadBlocked = true;
    TheFakePipeline().send = [](auto& job, auto&) { return !job.UploadBlocked; };
    EXPECT_EQ(Process({archive_}), 1);
    EXPECT_EQ(Calls(), (Lines{kDefaultAsked, kDefaultAsked,
                              L"RunCloudSend(" + Quote(archive_) + L", 7, 0, \"\")"}));
    EXPECT_EQ(job_.ResultPath, archive_);
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_EQ(picker_.LinkText, L"");
}

TEST_F(ProviderChoice, UsesTheDefaultAccountAlsoWhenCloudServicesAreForbidden) {
    FakeModules::Answer(L"GetDefaultStorageProvider", L"7|label|account");
    job_.DisableCloudServices = true;
    EXPECT_EQ(Process({archive_}), 0);
    EXPECT_EQ(FakeModules::CallsOf({L"RunCloudSend"}), Lines{Sent(L"7, \"account\"")});
}

// Whether there is any provider is asked once a process, so this test has a process of its own.
class NoProviderAtAll : public ProviderChoice {};

TEST_F(NoProviderAtAll, AttachesWithoutADialog) {
    FakeModules::Answer(L"Providers", L"");
    EXPECT_EQ(Process({archive_}), 1);
    EXPECT_EQ(FakeModules::Calls(),
              (Lines{kDefaultAsked, L"EnumProvidersReset(manager)",
                     L"EnumStorageProviders(manager)", PlainReport().front()}));
}

} // namespace
