#include <gtest/gtest.h>

#include <cstring>
#include <optional>

#include "OBCore/cloud/CloudSend.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "tests/support/FakeModules.h"

namespace {

using obcontract::kNoProvider;
using obcontract::ProviderProfile;
using namespace obcore;

class CloudSend : public testing::Test {
protected:
    void SetUp() override {
        obtest::FakeModules::Reset();
        obtest::FakeModules::Answer(L"Providers", L"7");
        ASSERT_TRUE(LoadProviderManager());
        job_.emplace(OBOptions(), nullptr);
        profile_.providerId = 7;
        obtest::FakeModules::ForgetCalls();
    }

    std::optional<OBAttachJob> job_;
    ProviderProfile profile_{};
    std::wstring linkText_ = L"left over";
};

TEST_F(CloudSend, IsRefusedWhenLinksAreForbidden) {
    job_->UploadBlocked = true;
    EXPECT_FALSE(RunCloudSend(*job_, linkText_, 5, profile_));
    EXPECT_EQ(linkText_, L"left over");
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

TEST_F(CloudSend, SendsNothingAndGivesNoLink) {
    const ProviderProfile before = profile_;
    EXPECT_TRUE(RunCloudSend(*job_, linkText_, 5, profile_));
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
    EXPECT_EQ(std::memcmp(&before, &profile_, sizeof(before)), 0);
}

TEST_F(CloudSend, GivesNoLinkWithoutAProvider) {
    profile_.providerId = kNoProvider;
    EXPECT_TRUE(RunCloudSend(*job_, linkText_, 5, profile_));
    EXPECT_EQ(linkText_, L"");
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

} // namespace
