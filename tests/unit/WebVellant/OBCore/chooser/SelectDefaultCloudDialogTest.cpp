#include <gtest/gtest.h>

#include <cstring>

#include "OBCore/chooser/SelectDefaultCloudDialog.h"
#include "OBCore/modules/ProviderLibrary.h"
#include "tests/support/FakeModules.h"

namespace {

using obcontract::ProviderProfile;
using namespace obcore;

TEST(SelectDefaultCloudDialog, AnswersLikeACancelAndKeepsTheJobsProvider) {
    obtest::FakeModules::Reset();
    obtest::FakeModules::Answer(L"Providers", L"7");
    ASSERT_TRUE(LoadProviderManager());
    OBAttachJob job(OBOptions(), nullptr);
    std::memset(&job.SelectedStorageProvider, 0x11, sizeof(job.SelectedStorageProvider));
    const ProviderProfile before = job.SelectedStorageProvider;
    obtest::FakeModules::ForgetCalls();

    EXPECT_FALSE(ShowSelectDefaultCloudDialog(nullptr, job));

    EXPECT_EQ(std::memcmp(&before, &job.SelectedStorageProvider, sizeof(before)), 0);
    EXPECT_TRUE(obtest::FakeModules::Calls().empty());
}

} // namespace
