// One suite for each first result: what the first enumeration found is kept for the whole process.
#include <windows.h>

#include <cstdio>
#include <cstring>

#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/WebVellant/OBCore/options/OptionsFixture.h"

namespace {

using obcore::OBOptions;
using obtest::FakeModules;

using Calls = std::vector<std::wstring>;

OBOptions WithManager(const TestManager& manager) {
    OBOptions options;
    options.ProviderManager = manager.Get();
    return options;
}

Calls Enumerations() {
    return FakeModules::CallsOf({L"EnumProvidersReset", L"EnumStorageProviders"});
}

class CloudServicesWithProviders : public OptionsFixture {};
class CloudServicesWithoutProviders : public OptionsFixture {};
class CloudServicesWithoutManager : public OptionsFixture {};

TEST_F(CloudServicesWithProviders, AreEnumeratedOnceAndOnlyWhenPolicyLeavesThem) {
    FakeModules::Answer(L"Providers", L"7,21");
    const TestManager manager;
    OBOptions disabled = WithManager(manager);
    disabled.DisableCloudServices = true;
    EXPECT_TRUE(disabled.CloudServicesUnavailable());
    EXPECT_TRUE(Enumerations().empty());

    OBOptions first = WithManager(manager);
    EXPECT_FALSE(first.CloudServicesUnavailable());
    EXPECT_FALSE(first.DisableCloudServices);
    EXPECT_EQ(Calls({L"EnumProvidersReset(manager)", L"EnumStorageProviders(manager)"}),
              Enumerations());

    OBOptions later = WithManager(manager);
    EXPECT_FALSE(later.CloudServicesUnavailable());
    EXPECT_EQ(2u, Enumerations().size());
    EXPECT_TRUE(disabled.CloudServicesUnavailable());
}

TEST_F(CloudServicesWithoutProviders, AreUnavailableForTheFirstRecordOnly) {
    const TestManager manager;
    OBOptions first = WithManager(manager);
    EXPECT_TRUE(first.CloudServicesUnavailable());
    EXPECT_TRUE(first.DisableCloudServices);
    EXPECT_TRUE(first.CloudServicesUnavailable());
    EXPECT_EQ(2u, Enumerations().size());

    OBOptions later = WithManager(manager);
    EXPECT_FALSE(later.CloudServicesUnavailable());
    EXPECT_FALSE(later.DisableCloudServices);
    // Without a manager too: the process keeps the first result.
    OBOptions bare;
    EXPECT_FALSE(bare.CloudServicesUnavailable());
    EXPECT_EQ(2u, Enumerations().size());
}

TEST_F(CloudServicesWithoutManager, AreAssertedAndAskedForAllTheSame) {
    char text[256];
    std::snprintf(text, sizeof(text),
                  "Pid: %d Tid: %d\nExpr: pvx_manager_ptr != NULL\nFile: OBCore\\OBOptions\nLine: "
                  "731",
                  static_cast<int>(GetCurrentProcessId()), static_cast<int>(GetCurrentThreadId()));
    obtest::MessageBoxWatcher boxes;
    OBOptions options;
    EXPECT_TRUE(options.CloudServicesUnavailable());
    EXPECT_TRUE(options.DisableCloudServices);
    const auto seen = boxes.Seen();
    ASSERT_EQ(1u, seen.size());
    EXPECT_EQ(L"Assert Error", seen[0].caption);
    EXPECT_EQ(std::wstring(text, text + std::strlen(text)), seen[0].text);
    EXPECT_TRUE(seen[0].hasIcon);
    EXPECT_EQ(nullptr, seen[0].owner);
    EXPECT_EQ(Calls({L"EnumProvidersReset(null)", L"EnumStorageProviders(null)"}), Enumerations());
}

} // namespace
