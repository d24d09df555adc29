// The manager's own module beyond what every manager has to return: state that outlives a manager,
// the hive and key that Init gives, and refusals that promise nothing.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>

#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ProductRegistry.h"

namespace {

using namespace obcontract;
using namespace obcore;

constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
constexpr auto kLocalMachine = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000002));
constexpr auto kTransform = ProviderKind::Transform;

// A manager for a scope.
class OwnManager {
public:
    OwnManager(std::int64_t hive, const wchar_t* key)
        : handle_(ProviderManager().CreateObExtensionsManager()) {
        ProviderManager().Init(handle_, hive, key);
    }
    OwnManager(const OwnManager&) = delete;
    OwnManager& operator=(const OwnManager&) = delete;
    ~OwnManager() { ProviderManager().DeleteObExtensionsManager(handle_); }

    ProviderManagerHandle Get() const { return handle_; }
    bool Save(std::uint32_t providerId) const {
        ProviderProfile profile{};
        profile.providerId = providerId;
        return ProviderManager().SetDefaultStorageProvider(handle_, &profile);
    }
    std::uint32_t Default() const {
        ProviderProfile profile{};
        ProviderManager().GetDefaultStorageProvider(handle_, &profile);
        return profile.providerId;
    }

private:
    ProviderManagerHandle handle_;
};

class ManagerModule : public testing::Test {
protected:
    void SetUp() override {
        obtest::ClearProductRegistry();
        ASSERT_TRUE(LoadProviderManager());
    }
};

TEST_F(ManagerModule, KeepsTheDefaultForTheNextManager) {
    { ASSERT_TRUE(OwnManager(kCurrentUser, kProviderManagerKey).Save(7)); }
    EXPECT_EQ(OwnManager(kCurrentUser, kProviderManagerKey).Default(), 7u);
    EXPECT_TRUE(obtest::KeyExists(HKEY_CURRENT_USER, kProviderManagerKey));
}

TEST_F(ManagerModule, KeepsItsStateUnderTheHiveAndKeyOfInit) {
    ASSERT_TRUE(OwnManager(kLocalMachine, kProviderManagerKey).Save(9));
    EXPECT_TRUE(obtest::KeyExists(HKEY_LOCAL_MACHINE, kProviderManagerKey));
    EXPECT_FALSE(obtest::KeyExists(HKEY_CURRENT_USER, kProviderManagerKey));
    EXPECT_EQ(OwnManager(kCurrentUser, kProviderManagerKey).Default(), 0u);
    EXPECT_EQ(OwnManager(kLocalMachine, kProviderManagerKey).Default(), 9u);
}

TEST_F(ManagerModule, HasNoSessionWithoutAHiveOrAKey) {
    EXPECT_FALSE(OwnManager(0, kProviderManagerKey).Save(7));
    EXPECT_FALSE(OwnManager(0x12345, kProviderManagerKey).Save(7));
    EXPECT_FALSE(OwnManager(kCurrentUser, nullptr).Save(7));
    EXPECT_FALSE(OwnManager(kCurrentUser, L"").Save(7));
}

TEST_F(ManagerModule, BeginsAnewAtASecondInit) {
    const OwnManager manager(kCurrentUser, kProviderManagerKey);
    ProviderManager().SetProviderTarget(manager.Get(), L"C:\\a.docx");
    ProviderManager().Init(manager.Get(), kCurrentUser, kProviderManagerKey);
    EXPECT_STREQ(ProviderManager().GetProviderTarget(manager.Get()), L"");
    ProviderManager().Init(manager.Get(), 0, kProviderManagerKey);
    EXPECT_FALSE(manager.Save(7));
}

TEST_F(ManagerModule, RefusesAProfileThatItCouldNotReadBack) {
    const OwnManager manager(kCurrentUser, kProviderManagerKey);
    ProviderProfile profile;
    std::memset(&profile, 0xCC, sizeof(profile));
    EXPECT_FALSE(ProviderManager().SetDefaultStorageProvider(manager.Get(), &profile));
    EXPECT_EQ(manager.Default(), 0u);
}

TEST_F(ManagerModule, FailsEachStageRatherThanPassFilesAsChanged) {
    const OwnManager manager(kCurrentUser, kProviderManagerKey);
    ProviderManager().SetProviderTarget(manager.Get(), L"C:\\a.pdf");
    EXPECT_FALSE(ProviderManager().ExecuteTransforms(manager.Get(), nullptr, nullptr, L"C:\\t\\", 1,
                                                     3, nullptr, nullptr));
    const wchar_t* const paths[] = {L"C:\\a.pdf"};
    std::uint32_t count = 1;
    EXPECT_FALSE(ProviderManager().ExecutePostTransforms(manager.Get(), nullptr, paths, &count, 3,
                                                         nullptr, nullptr));
    EXPECT_EQ(count, 1u);
    EXPECT_FALSE(ProviderManager().ExecuteFinalTransforms(manager.Get(), nullptr, paths, 1, 3,
                                                          nullptr, nullptr));
}

// A process that uses no cloud account never has the system's HTTP client.
TEST_F(ManagerModule, DescribesItsStorageProvidersWithoutTheHttpClient) {
    using On = slots::OnCloudProvider;
    const OwnManager manager(kCurrentUser, kProviderManagerKey);
    const std::pair<std::uint32_t, const wchar_t*> kProviders[] = {{101, L"Network folder"},
                                                                   {102, L"WebDAV server"}};
    for (const auto& [id, name] : kProviders) {
        CloudProvider* const provider = ProviderManager().EnumStorageProviders(manager.Get());
        ASSERT_NE(provider, nullptr);
        EXPECT_EQ(On::GetProviderId::Call(provider), id);
        wchar_t text[128] = L"";
        std::uint32_t capacity = 128;
        On::GetDisplayName::Call(provider, ProviderKind::Storage, text, &capacity);
        EXPECT_STREQ(text, name);
        for (std::uint32_t index = 0; index < 4; ++index) {
            EXPECT_TRUE(ObLib::UniqueBitmap(ProviderManager().GetBitmap(provider, 1, index)));
        }
        for (const auto mask : {ProviderCapability::OpenPicker, ProviderCapability::FreeSpace,
                                ProviderCapability::Folders}) {
            EXPECT_TRUE(On::HasCapability::Call(provider, ProviderKind::Storage, mask));
        }
        EXPECT_FALSE(On::IsAccountLoggedIn::Call(provider, L"none"));
    }
    EXPECT_EQ(ProviderManager().EnumStorageProviders(manager.Get()), nullptr);
    EXPECT_EQ(GetModuleHandleW(L"winhttp.dll"), nullptr);
}

TEST_F(ManagerModule, SchedulesNoDeletion) {
    const CloudItem item{};
    EXPECT_FALSE(ProviderManager().AddFileToDeletionSchedule(&item, 30));
}

TEST_F(ManagerModule, TakesNullInPlaceOfEachCount) {
    const OwnManager manager(kCurrentUser, kProviderManagerKey);
    std::int32_t perFile = 9;
    ProviderManager().GetSelectedTransformSummary(manager.Get(), nullptr, nullptr, &perFile,
                                                  nullptr);
    EXPECT_EQ(perFile, 0);
    ProviderManager().GetTargetFile(manager.Get(), nullptr, nullptr, 514);
    EXPECT_FALSE(ProviderManager().IsProviderTypeSelected(manager.Get(), kTransform));
}

TEST_F(ManagerModule, LeavesATextAloneThatHasNoRoom) {
    wchar_t text[] = L"left";
    std::uint64_t none = 0;
    ProviderManager().GetLastErrorOfProvider(nullptr, L"", L"", text, &none);
    ProviderManager().GetLastErrorOfProvider(nullptr, L"", L"", text, nullptr);
    EXPECT_STREQ(text, L"left");
}

} // namespace
