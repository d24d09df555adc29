// What every provider manager has to return, the real one and the fake alike: this program runs
// once with each beside it. The provider of most cases removes personal data (51): the real manager
// has it, and the fake's script names it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "tests/support/FakeModules.h"
#include "tests/support/ProductRegistry.h"

namespace {

using namespace obcontract;
using namespace obcore;

constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
constexpr TransformId kTransformIds[] = {TransformId::ResizeImages, TransformId::ConvertPdf,
                                         TransformId::Watermark,    TransformId::ConvertPhotos,
                                         TransformId::RemoveInfo,   TransformId::CombinePdfs,
                                         TransformId::SignPdfs,     TransformId::ConvertFromPdf};
constexpr std::uint32_t kStorageId = 7;
constexpr std::uint32_t kRemoveInfo = 51;
constexpr std::uint32_t kLacked = 66; // no manager has it
// The transforms that this build's manager has; the fake gets the same list.
constexpr TransformId kSupported[] = {TransformId::ResizeImages,  TransformId::ConvertPdf,
                                      TransformId::ConvertPhotos, TransformId::RemoveInfo,
                                      TransformId::Watermark,     TransformId::CombinePdfs};

ProviderProfile FilledProfile() {
    ProviderProfile profile{};
    profile.providerId = 0x89ABCDEF;
    std::fill_n(profile.accountLabel, 50, L'\u00e9');
    std::fill_n(profile.accountKey, 999, L'\u4e2d');
    return profile;
}

// Every byte set, so that a place that isn't filled shows.
ProviderProfile DirtyProfile() {
    ProviderProfile profile;
    std::memset(&profile, 0xCC, sizeof(profile));
    return profile;
}

bool SameBytes(const ProviderProfile& one, const ProviderProfile& other) {
    return std::memcmp(&one, &other, sizeof(one)) == 0;
}

// Each result of a manager that isn't in a session, and of one that lacks the provider, has to be
// no.
void ExpectOnlyNo(ProviderManagerHandle manager) {
    const auto& entries = ProviderManager();
    EXPECT_EQ(entries.GetProviderInstance(manager, kStorageId, ProviderKind::Storage), nullptr);
    EXPECT_EQ(entries.GetProviderInstance(manager, kLacked, ProviderKind::Transform), nullptr);
    EXPECT_FALSE(entries.IsProviderSupport(manager, kStorageId, ProviderKind::Storage));
    EXPECT_FALSE(entries.IsProviderSupport(manager, kLacked, ProviderKind::Transform));
    wchar_t key[1000] = L"";
    wchar_t label[51] = L"";
    EXPECT_FALSE(entries.Login2(manager, nullptr, key, label, nullptr));
    entries.Logout2(manager, nullptr, L"key", nullptr);
    EXPECT_FALSE(entries.IsAuthorized2(manager, nullptr, L"key", nullptr));
    EXPECT_FALSE(entries.GetSharedListFromOpenPicker(manager, nullptr, nullptr, nullptr));
    entries.DeleteDownloadList(nullptr, nullptr);
    EXPECT_FALSE(entries.ShowProviderOptionsWhenNoOptionsSet(
        manager, kLacked, ProviderKind::Transform, nullptr, nullptr));
    EXPECT_FALSE(entries.GetReadyForConvert(nullptr, manager, kLacked, ProviderKind::Transform));
    EXPECT_FALSE(entries.SelectProviders(manager, kSelectUse, kLacked, ProviderKind::Transform));
    EXPECT_FALSE(entries.SelectProviders(manager, kSelectLeaveOut, 70, ProviderKind::Transform));
    EXPECT_FALSE(entries.IsProviderTypeSelected(manager, ProviderKind::Transform));
}

// The providers of a walk from its start to its end.
std::vector<CloudProvider*> Walk(ProviderManagerHandle manager) {
    std::vector<CloudProvider*> providers;
    ProviderManager().EnumProvidersReset(manager);
    while (CloudProvider* provider = ProviderManager().EnumStorageProviders(manager)) {
        providers.push_back(provider);
    }
    return providers;
}

class ProviderManagerContract : public testing::Test {
protected:
    void SetUp() override {
        obtest::FakeModules::Reset();
        for (TransformId id : kSupported) {
            const auto number = std::to_wstring(static_cast<std::uint32_t>(id));
            obtest::FakeModules::Answer(L"IsProviderSupport." + number + L".4", L"1");
        }
        obtest::ClearProductRegistry();
        ASSERT_TRUE(LoadProviderManager());
        manager_ = Entries().CreateObExtensionsManager();
        ASSERT_NE(manager_, nullptr);
    }
    void TearDown() override {
        if (manager_) Entries().DeleteObExtensionsManager(manager_);
    }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }
    void Init() { Entries().Init(manager_, kCurrentUser, kProviderManagerKey); }

    ProviderManagerHandle manager_ = nullptr;
};

TEST_F(ProviderManagerContract, ProfilesAndItemsHaveTheirFixedSizes) {
    EXPECT_EQ(sizeof(ProviderProfile), 2108u);
    EXPECT_EQ(sizeof(CloudItem), 10064u);
    EXPECT_EQ(sizeof(ProviderProfile::accountLabel), 102u);
    EXPECT_EQ(sizeof(ProviderProfile::accountKey), 2000u);
    EXPECT_EQ(sizeof(CloudItem::link), 4818u);
    EXPECT_EQ(sizeof(CloudItem::name), 3138u);
}

TEST_F(ProviderManagerContract, BindsEachOfThe32Entries) {
    void* pointers[32];
    std::memcpy(pointers, &Entries(), sizeof(pointers));
    for (void* pointer : pointers) EXPECT_NE(pointer, nullptr);
}

TEST_F(ProviderManagerContract, LivesFromCreateToDelete) {
    Init();
    Entries().Deinit(manager_);
    Entries().DeleteObExtensionsManager(manager_);
    manager_ = Entries().CreateObExtensionsManager();
    EXPECT_NE(manager_, nullptr);
}

TEST_F(ProviderManagerContract, CanBeDeletedInsideItsSession) {
    Init();
    Entries().DeleteObExtensionsManager(manager_);
    manager_ = Entries().CreateObExtensionsManager();
    ASSERT_NE(manager_, nullptr);
    ExpectOnlyNo(manager_); // nothing of the ended session is left
    EXPECT_TRUE(Walk(manager_).empty());
}

TEST_F(ProviderManagerContract, AnswersNoToANullManager) {
    Entries().Init(nullptr, kCurrentUser, kProviderManagerKey);
    ExpectOnlyNo(nullptr);
    EXPECT_TRUE(Walk(nullptr).empty());
    Entries().Deinit(nullptr);
    Entries().DeleteObExtensionsManager(nullptr);
}

TEST_F(ProviderManagerContract, AnswersNoBeforeInit) {
    ExpectOnlyNo(manager_);
    EXPECT_TRUE(Walk(manager_).empty());
}

TEST_F(ProviderManagerContract, AnswersNoAfterDeinit) {
    Init();
    Entries().Deinit(manager_);
    ExpectOnlyNo(manager_);
    EXPECT_TRUE(Walk(manager_).empty());
}

TEST_F(ProviderManagerContract, KeepsNothingOfTheSessionAfterDeinit) {
    Init();
    const ProviderProfile profile = FilledProfile();
    ASSERT_TRUE(Entries().SetDefaultStorageProvider(manager_, &profile));
    Entries().SetProviderTarget(manager_, L"C:\\a.docx");
    Entries().Deinit(manager_);
    ProviderProfile read = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &read);
    EXPECT_TRUE(SameBytes(read, ProviderProfile{}));
    EXPECT_FALSE(Entries().SetDefaultStorageProvider(manager_, &profile));
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"");
}

TEST_F(ProviderManagerContract, AnswersNoForAProviderThatItLacks) {
    Init();
    ExpectOnlyNo(manager_);
}

TEST_F(ProviderManagerContract, SupportsTheTransformsThatItHas) {
    Init();
    for (TransformId id : kTransformIds) {
        EXPECT_EQ(Entries().IsProviderSupport(manager_, static_cast<std::uint32_t>(id),
                                              ProviderKind::Transform),
                  std::ranges::find(kSupported, id) != std::end(kSupported));
    }
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, kRemoveInfo, ProviderKind::Storage));
}

TEST_F(ProviderManagerContract, SupportsNothingOutsideASession) {
    EXPECT_FALSE(Entries().IsProviderSupport(nullptr, kRemoveInfo, ProviderKind::Transform));
    EXPECT_FALSE(
        Entries().SelectProviders(nullptr, kSelectUse, kRemoveInfo, ProviderKind::Transform));
}

TEST_F(ProviderManagerContract, SelectsATransformUntilItIsLeftOut) {
    Init();
    const auto select = [&](std::uint32_t mode) {
        return Entries().SelectProviders(manager_, mode, kRemoveInfo, ProviderKind::Transform);
    };
    EXPECT_FALSE(Entries().IsProviderTypeSelected(manager_, ProviderKind::Transform));
    EXPECT_TRUE(select(kSelectUse));
    EXPECT_TRUE(select(kSelectUse));
    EXPECT_TRUE(Entries().IsProviderTypeSelected(manager_, ProviderKind::Transform));
    EXPECT_FALSE(Entries().IsProviderTypeSelected(manager_, ProviderKind::Storage));
    EXPECT_TRUE(select(kSelectLeaveOut));
    EXPECT_FALSE(Entries().IsProviderTypeSelected(manager_, ProviderKind::Transform));
    EXPECT_TRUE(select(kSelectLeaveOut)); // one that isn't selected
}

TEST_F(ProviderManagerContract, IsReadyForTheTransformThatItHas) {
    Init();
    EXPECT_TRUE(
        Entries().GetReadyForConvert(nullptr, manager_, kRemoveInfo, ProviderKind::Transform));
}

TEST_F(ProviderManagerContract, HasNoInstanceForATransform) {
    Init();
    EXPECT_EQ(Entries().GetProviderInstance(manager_, kRemoveInfo, ProviderKind::Transform),
              nullptr);
}

// Whatever providers the manager has.
TEST_F(ProviderManagerContract, EndsTheWalkAgainAfterAReset) {
    Init();
    const auto providers = Walk(manager_);
    EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
    EXPECT_EQ(Walk(manager_), providers);
    EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
}

TEST_F(ProviderManagerContract, HasNoInstanceForTheEmptyProfilesProvider) {
    Init();
    EXPECT_EQ(Entries().GetProviderInstance(manager_, kNoProvider, ProviderKind::Storage), nullptr);
}

TEST_F(ProviderManagerContract, FillsAnEmptyProfileWhenThereIsNoDefault) {
    Init();
    ProviderProfile profile = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &profile);
    EXPECT_TRUE(SameBytes(profile, ProviderProfile{}));
}

TEST_F(ProviderManagerContract, FillsAnEmptyProfileOutsideASession) {
    ProviderProfile profile = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &profile);
    EXPECT_TRUE(SameBytes(profile, ProviderProfile{}));
    profile = DirtyProfile();
    Entries().GetDefaultStorageProvider(nullptr, &profile);
    EXPECT_TRUE(SameBytes(profile, ProviderProfile{}));
}

TEST_F(ProviderManagerContract, ReturnsTheDefaultProfileByteByByte) {
    Init();
    const ProviderProfile saved = FilledProfile();
    ASSERT_TRUE(Entries().SetDefaultStorageProvider(manager_, &saved));
    ProviderProfile read = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &read);
    EXPECT_TRUE(SameBytes(read, saved));
}

TEST_F(ProviderManagerContract, ReplacesTheDefaultProfile) {
    Init();
    const ProviderProfile first = FilledProfile();
    ProviderProfile second{};
    second.providerId = kStorageId;
    ASSERT_TRUE(Entries().SetDefaultStorageProvider(manager_, &first));
    ASSERT_TRUE(Entries().SetDefaultStorageProvider(manager_, &second));
    ProviderProfile read = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &read);
    EXPECT_TRUE(SameBytes(read, second));
}

TEST_F(ProviderManagerContract, SavesNoDefaultProfileOutsideASession) {
    const ProviderProfile profile = FilledProfile();
    EXPECT_FALSE(Entries().SetDefaultStorageProvider(manager_, &profile));
    EXPECT_FALSE(Entries().SetDefaultStorageProvider(nullptr, &profile));
    Init();
    ProviderProfile read = DirtyProfile();
    Entries().GetDefaultStorageProvider(manager_, &read);
    EXPECT_EQ(read.providerId, kNoProvider);
}

TEST_F(ProviderManagerContract, TakesNullInPlaceOfAProfile) {
    Init();
    EXPECT_FALSE(Entries().SetDefaultStorageProvider(manager_, nullptr));
    Entries().GetDefaultStorageProvider(manager_, nullptr);
}

TEST_F(ProviderManagerContract, EmptiesTheTextsOfANullProvider) {
    wchar_t text[128] = L"left over";
    std::uint32_t capacity = 128;
    Entries().GetShortDescription(nullptr, 1, text, &capacity);
    EXPECT_STREQ(text, L"");

    wchar_t error[2048] = L"left over";
    std::uint64_t errorCapacity = 2048;
    Entries().GetLastErrorOfProvider(nullptr, L"key", L"a.zip", error, &errorCapacity);
    EXPECT_STREQ(error, L"");

    error[0] = L'x';
    EXPECT_EQ(Entries().GetLastErrorCodeOfProvider(manager_, nullptr, L"", error, &errorCapacity),
              0);
    EXPECT_STREQ(error, L"");
}

TEST_F(ProviderManagerContract, HasNoBitmapForANullProvider) {
    for (std::uint32_t size = 0; size < 4; ++size) {
        EXPECT_EQ(Entries().GetBitmap(nullptr, 1, size), nullptr);
    }
}

TEST_F(ProviderManagerContract, SchedulesNoDeletionOfANullItem) {
    EXPECT_FALSE(Entries().AddFileToDeletionSchedule(nullptr, 30));
}

TEST_F(ProviderManagerContract, CountsNoTransformsInAnyStage) {
    for (const bool initialised : {false, true}) {
        if (initialised) Init();
        std::int32_t counts[] = {-1, -1, -1, -1};
        Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2],
                                              &counts[3]);
        for (std::int32_t count : counts) EXPECT_EQ(count, 0);
    }
}

TEST_F(ProviderManagerContract, HandsOutNoTargetFilesWhenNoStageRan) {
    Init();
    std::uint32_t count = 99;
    Entries().GetTargetFile(manager_, nullptr, &count, 514);
    EXPECT_EQ(count, 0u);
}

TEST_F(ProviderManagerContract, ReturnsTheTargetThatNoTransformChanged) {
    Init();
    std::wstring path = L"C:\\folder\\report \u00e9.docx";
    Entries().SetProviderTarget(manager_, path.c_str());
    path.assign(path.size(), L'x'); // the manager keeps a copy
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"C:\\folder\\report \u00e9.docx");
}

TEST_F(ProviderManagerContract, HasAnEmptyTargetOutsideASession) {
    Entries().SetProviderTarget(manager_, L"C:\\a.docx");
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"");
    EXPECT_STREQ(Entries().GetProviderTarget(nullptr), L"");
}

TEST_F(ProviderManagerContract, FailsToTransformOutsideASession) {
    EXPECT_FALSE(Entries().ExecuteTransforms(manager_, nullptr, nullptr, L"C:\\t\\", 1, 3, nullptr,
                                             nullptr));
    const wchar_t* const paths[] = {L"C:\\a.pdf", L"C:\\b.pdf"};
    std::uint32_t count = 2;
    EXPECT_FALSE(
        Entries().ExecutePostTransforms(manager_, nullptr, paths, &count, 1, nullptr, nullptr));
    EXPECT_EQ(count, 2u);
    EXPECT_FALSE(
        Entries().ExecuteFinalTransforms(manager_, nullptr, paths, 2, 1, nullptr, nullptr));
}

TEST_F(ProviderManagerContract, ShowsNoSettingsOfAProviderThatItLacks) {
    Init();
    Entries().ShowProviderOptions(manager_, kLacked, ProviderKind::Transform, nullptr, nullptr);
    EXPECT_EQ(FindWindowW(L"#32770", nullptr), nullptr);
}

} // namespace
