// The fake itself: what it writes down of a call and how its script is answered. The tests of
// the product rely on both.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/FakeModules.h"

namespace {

using namespace obcontract;
using namespace obcore;
using Lines = std::vector<std::wstring>;
constexpr auto kTransform = ProviderKind::Transform;

class FakeProviders : public testing::Test {
protected:
    void SetUp() override {
        obtest::FakeModules::Reset();
        ASSERT_TRUE(LoadProviderManager());
        manager_ = Entries().CreateObExtensionsManager();
        Entries().Init(manager_, -2147483647, kProviderManagerKey);
    }
    void TearDown() override { Entries().DeleteObExtensionsManager(manager_); }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }
    static void Answer(const wchar_t* key, const wchar_t* answer) {
        obtest::FakeModules::Answer(key, answer);
    }
    static Lines Calls() { return obtest::FakeModules::Calls(); }

    ProviderManagerHandle manager_ = nullptr;
};

TEST_F(FakeProviders, WritesDownTheLifeOfAManager) {
    ProviderManagerHandle second = Entries().CreateObExtensionsManager();
    Entries().Deinit(second);
    Entries().DeleteObExtensionsManager(second);
    Entries().DeleteObExtensionsManager(second);
    EXPECT_EQ(Calls(),
              (Lines{L"CreateObExtensionsManager()",
                     L"Init(manager, -2147483647, \"Software\\Tavi Ren Computing\\Ombrix\\PVX\")",
                     L"CreateObExtensionsManager()", L"Deinit(manager)",
                     L"DeleteObExtensionsManager(manager)",
                     L"DeleteObExtensionsManager(stale manager)"}));
}

TEST_F(FakeProviders, CanRefuseToMakeAManager) {
    Answer(L"CreateObExtensionsManager", L"0");
    EXPECT_EQ(Entries().CreateObExtensionsManager(), nullptr);
}

TEST_F(FakeProviders, WalksTheProvidersOfTheScriptInOrder) {
    Answer(L"Providers", L"30,7,21");
    Entries().EnumProvidersReset(manager_);
    std::vector<std::uint32_t> ids;
    while (CloudProvider* provider = Entries().EnumStorageProviders(manager_)) {
        ids.push_back(slots::OnCloudProvider::GetProviderId::Call(provider));
    }
    EXPECT_EQ(ids, (std::vector<std::uint32_t>{30, 7, 21}));
    EXPECT_EQ(Entries().EnumStorageProviders(manager_), nullptr);
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, 21, ProviderKind::Storage));
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 22, ProviderKind::Storage));
}

TEST_F(FakeProviders, GivesTheSameInstanceEachTime) {
    Answer(L"Providers", L"7");
    CloudProvider* walked = Entries().EnumStorageProviders(manager_);
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 7, ProviderKind::Storage), walked);
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 7, kTransform), nullptr);
}

TEST_F(FakeProviders, CanRefuseTheInstanceOfAWalkedProvider) {
    Answer(L"Providers", L"7");
    EXPECT_NE(Entries().GetProviderInstance(manager_, 7, ProviderKind::Storage), nullptr);
    Answer(L"GetProviderInstance.7", L"0");
    EXPECT_EQ(Entries().GetProviderInstance(manager_, 7, ProviderKind::Storage), nullptr);
    EXPECT_NE(Entries().EnumStorageProviders(manager_), nullptr);
}

TEST_F(FakeProviders, AnswersLoginAndSpaceByTheAccountsKey) {
    Answer(L"Providers", L"7");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    Answer(L"provider7.IsAccountLoggedIn.ann", L"1");
    Answer(L"provider7.GetAccountSpace", L"5,6");
    Answer(L"provider7.GetAccountSpace.ann", L"7,8");
    using OnProvider = slots::OnCloudProvider;
    EXPECT_TRUE(OnProvider::IsAccountLoggedIn::Call(provider, L"ann"));
    EXPECT_FALSE(OnProvider::IsAccountLoggedIn::Call(provider, L"bob"));
    std::int64_t freeBytes = 0;
    std::int64_t totalBytes = 0;
    EXPECT_TRUE(OnProvider::GetAccountSpace::Call(provider, L"ann", &freeBytes, &totalBytes));
    EXPECT_EQ(freeBytes, 7);
    EXPECT_TRUE(OnProvider::GetAccountSpace::Call(provider, L"bob", &freeBytes, &totalBytes));
    EXPECT_EQ(freeBytes, 5);
}

TEST_F(FakeProviders, TakesSupportFromTheScriptByIdAndKind) {
    Answer(L"IsProviderSupport.3", L"1");
    Answer(L"IsProviderSupport.5.4", L"1");
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, 3, kTransform));
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, 5, kTransform));
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 5, ProviderKind::Storage));
    EXPECT_FALSE(Entries().IsProviderSupport(manager_, 2, kTransform));
}

TEST_F(FakeProviders, SelectsTheTransformsThatItSupports) {
    Answer(L"IsProviderSupport.3", L"1");
    Answer(L"SelectProviders.65", L"1");
    EXPECT_FALSE(Entries().SelectProviders(manager_, kSelectUse, 2, kTransform));
    EXPECT_FALSE(Entries().IsProviderTypeSelected(manager_, kTransform));
    EXPECT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 3, kTransform));
    EXPECT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 65, kTransform));
    EXPECT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, 3, kTransform));
    EXPECT_TRUE(Entries().IsProviderTypeSelected(manager_, kTransform));
    EXPECT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, 65, kTransform));
    EXPECT_FALSE(Entries().IsProviderTypeSelected(manager_, kTransform));
}

TEST_F(FakeProviders, AnswersTheSettingsOfATransformByItsId) {
    Answer(L"IsProviderSupport.3", L"1");
    Answer(L"GetReadyForConvert.5", L"1");
    Answer(L"ShowProviderOptionsWhenNoOptionsSet.3", L"0");
    obtest::FakeModules::ForgetCalls();
    EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, 3, kTransform));
    EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, 5, kTransform));
    EXPECT_FALSE(
        Entries().ShowProviderOptionsWhenNoOptionsSet(manager_, 3, kTransform, nullptr, nullptr));
    Entries().ShowProviderOptions(manager_, 3, kTransform, nullptr, reinterpret_cast<HWND>(12));
    EXPECT_EQ(Calls(), (Lines{L"GetReadyForConvert(0, manager, 3, 4)",
                              L"GetReadyForConvert(0, manager, 5, 4)",
                              L"ShowProviderOptionsWhenNoOptionsSet(manager, 3, 4, null, 0)",
                              L"ShowProviderOptions(manager, 3, 4, null, 12)"}));
}

TEST_F(FakeProviders, LogsInWithTheScriptedAccount) {
    Answer(L"Providers", L"7");
    Answer(L"Login2.accountKey", L"ann@x");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    wchar_t key[1000] = L"";
    wchar_t label[51] = L"label";
    EXPECT_FALSE(Entries().Login2(manager_, provider, key, label, nullptr));
    Answer(L"Login2", L"1");
    EXPECT_TRUE(Entries().Login2(manager_, provider, key, label, nullptr));
    EXPECT_STREQ(key, L"ann@x");
    EXPECT_STREQ(label, L"label");
    EXPECT_EQ(obtest::FakeModules::CallsOf({L"Login2"})[1],
              L"Login2(manager, provider7, \"\", \"label\", 0)");
}

TEST_F(FakeProviders, TakesTheDefaultProfileFromTheScript) {
    Answer(L"GetDefaultStorageProvider", L"7|Ann|ann@x");
    ProviderProfile profile{};
    Entries().GetDefaultStorageProvider(manager_, &profile);
    EXPECT_EQ(profile.providerId, 7u);
    EXPECT_STREQ(profile.accountLabel, L"Ann");
    EXPECT_STREQ(profile.accountKey, L"ann@x");
    Answer(L"SetDefaultStorageProvider", L"0");
    EXPECT_FALSE(Entries().SetDefaultStorageProvider(manager_, &profile));
    EXPECT_EQ(Calls().back(),
              L"SetDefaultStorageProvider(manager, profile(7, \"Ann\", \"ann@x\"))");
}

TEST_F(FakeProviders, FillsAListWithWhatTheUserPicks) {
    Answer(L"Providers", L"7");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    DownloadList* list = slots::OnCloudProvider::CreateDownloadList::Call(provider);
    EXPECT_FALSE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    Answer(L"GetSharedListFromOpenPicker", L"a.txt|https://a;b.txt|https://b");
    EXPECT_TRUE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    CloudItem item;
    ASSERT_TRUE(slots::OnDownloadList::GetItem::Call(list, 1, &item));
    EXPECT_STREQ(item.name, L"b.txt");
    EXPECT_STREQ(item.link, L"https://b");
    EXPECT_EQ(item.profile.providerId, 7u);
    EXPECT_TRUE(Entries().AddFileToDeletionSchedule(&item, 0));
    EXPECT_EQ(Calls().back(), L"AddFileToDeletionSchedule(item(\"b.txt\", \"https://b\"), 0)");
    Entries().DeleteDownloadList(provider, list);
    EXPECT_EQ(Calls().back(), L"DeleteDownloadList(provider7, list)");
}

TEST_F(FakeProviders, PicksItemsOfOtherProvidersAndAccounts) {
    Answer(L"Providers", L"7,8");
    Answer(L"GetSharedListFromOpenPicker", L"a|x|8|ann;b|y");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    DownloadList* list = slots::OnCloudProvider::CreateDownloadList::Call(provider);
    ASSERT_TRUE(Entries().GetSharedListFromOpenPicker(manager_, provider, list, nullptr));
    CloudItem item;
    ASSERT_TRUE(slots::OnDownloadList::GetItem::Call(list, 0, &item));
    EXPECT_EQ(item.profile.providerId, 8u);
    EXPECT_STREQ(item.profile.accountKey, L"ann");
    ASSERT_TRUE(slots::OnDownloadList::GetItem::Call(list, 1, &item));
    EXPECT_EQ(item.profile.providerId, 7u);
    Entries().DeleteDownloadList(provider, list);
}

TEST_F(FakeProviders, CanRefuseToScheduleTheDeletionOfOneItem) {
    Answer(L"AddFileToDeletionSchedule.b", L"0");
    CloudItem item{};
    item.name[0] = L'a';
    EXPECT_TRUE(Entries().AddFileToDeletionSchedule(&item, 1));
    item.name[0] = L'b';
    EXPECT_FALSE(Entries().AddFileToDeletionSchedule(&item, 1));
}

TEST_F(FakeProviders, CanFillInTheSpaceOfAFailedCall) {
    Answer(L"Providers", L"7");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    std::int64_t values[] = {1, 1};
    const auto ask = [&] {
        return slots::OnCloudProvider::GetAccountSpace::Call(provider, L"", &values[0], &values[1]);
    };
    EXPECT_FALSE(ask());
    EXPECT_EQ(values[0], 1);
    Answer(L"provider7.GetAccountSpace", L"-2,-2,0");
    EXPECT_FALSE(ask());
    EXPECT_EQ(values[0], -2);
    EXPECT_EQ(values[1], -2);
    Answer(L"provider7.GetAccountSpace", L"5,6");
    EXPECT_TRUE(ask());
    EXPECT_EQ(values[1], 6);
}

TEST_F(FakeProviders, MakesABitmapOfTheSizeThatTheIndexNames) {
    Answer(L"Providers", L"7");
    Answer(L"provider7.GetBitmap", L"1");
    CloudProvider* provider = Entries().EnumStorageProviders(manager_);
    const LONG sizes[] = {16, 20, 24, 32};
    for (std::uint32_t index = 0; index < 4; ++index) {
        const ObLib::UniqueBitmap bitmap(Entries().GetBitmap(provider, 1, index));
        BITMAP shape{};
        ASSERT_NE(GetObjectW(bitmap.Get(), sizeof(shape), &shape), 0);
        EXPECT_EQ(shape.bmWidth, sizes[index]);
        EXPECT_EQ(shape.bmHeight, sizes[index]);
    }
}

TEST_F(FakeProviders, RunsThePerFileStageByFileName) {
    Answer(L"GetSelectedTransformSummary", L"1,2,3,4");
    Answer(L"ExecuteTransforms.b.doc", L"0");
    Answer(L"GetProviderTarget.a.doc", L"C:\\t\\a.pdf");
    Answer(L"GetProviderTarget.c.doc", L"");
    std::int32_t counts[4];
    Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2], &counts[3]);
    EXPECT_EQ(counts[0] * 1000 + counts[1] * 100 + counts[2] * 10 + counts[3], 1234);
    const auto run = [&](const wchar_t* path) {
        Entries().SetProviderTarget(manager_, path);
        return Entries().ExecuteTransforms(manager_, nullptr, nullptr, L"C:\\t\\", 1, 3, nullptr,
                                           nullptr);
    };
    EXPECT_TRUE(run(L"C:\\t\\a.doc"));
    EXPECT_EQ(Calls().back(),
              L"ExecuteTransforms(manager, null, 0, \"C:\\t\\\", 1, 3, null, null)");
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"C:\\t\\a.pdf");
    EXPECT_FALSE(run(L"C:\\t\\b.doc"));
    EXPECT_TRUE(run(L"C:\\t\\c.doc"));
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"");
}

TEST_F(FakeProviders, ReplacesTheFilesOfAListStage) {
    Answer(L"ExecutePostTransforms.paths", L"C:\\t\\all.pdf");
    const wchar_t* const paths[] = {L"C:\\t\\a.pdf", L"C:\\t\\b.pdf"};
    std::uint32_t count = 2;
    ASSERT_TRUE(
        Entries().ExecutePostTransforms(manager_, nullptr, paths, &count, 1, nullptr, nullptr));
    EXPECT_EQ(Calls().back(), L"ExecutePostTransforms(manager, 0, paths(\"C:\\t\\a.pdf\", "
                              L"\"C:\\t\\b.pdf\"), 2, 1, null, null)");
    ASSERT_EQ(count, 1u);
    wchar_t buffer[514];
    wchar_t* buffers[] = {buffer};
    std::uint32_t produced = 0;
    Entries().GetTargetFile(manager_, buffers, &produced, 514);
    ASSERT_EQ(produced, 1u);
    EXPECT_STREQ(buffer, L"C:\\t\\all.pdf");
}

TEST_F(FakeProviders, AnswersTheCallsOfAManagerOneAfterTheOther) {
    Answer(L"ExecuteTransforms", L"1,0");
    Answer(L"GetSelectedTransformSummary", L"1,1,1,1;0,0,0,0");
    Answer(L"ExecutePostTransforms.paths", L"a|b;c");
    const auto runFile = [&] {
        return Entries().ExecuteTransforms(manager_, nullptr, nullptr, L"", 1, 3, nullptr, nullptr);
    };
    const auto finalCount = [&] {
        std::int32_t counts[4];
        Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2],
                                              &counts[3]);
        return counts[3];
    };
    const auto listCount = [&] {
        std::uint32_t count = 0;
        Entries().ExecutePostTransforms(manager_, nullptr, nullptr, &count, 3, nullptr, nullptr);
        return count;
    };
    EXPECT_TRUE(runFile());
    EXPECT_FALSE(runFile());
    EXPECT_FALSE(runFile());
    EXPECT_EQ(finalCount(), 1);
    EXPECT_EQ(finalCount(), 0);
    EXPECT_EQ(listCount(), 2u);
    EXPECT_EQ(listCount(), 1u);
}

TEST_F(FakeProviders, GivesBackCountsThatDifferFromItsResults) {
    Answer(L"ExecutePostTransforms.count", L"1");
    Answer(L"GetTargetFile.count", L"7");
    const wchar_t* const paths[] = {L"a", L"b"};
    std::uint32_t count = 2;
    EXPECT_TRUE(
        Entries().ExecutePostTransforms(manager_, nullptr, paths, &count, 3, nullptr, nullptr));
    EXPECT_EQ(count, 1u);
    wchar_t buffer[514];
    wchar_t* buffers[] = {buffer}; // as many as were promised, and no more are filled
    Entries().GetTargetFile(manager_, buffers, &count, 514);
    EXPECT_EQ(count, 7u);
    EXPECT_STREQ(buffer, L"a");
}

TEST_F(FakeProviders, WritesDownTheCallingThreadWhenAsked) {
    Answer(L"Threads", L"1");
    Entries().GetProviderTarget(manager_);
    EXPECT_EQ(Calls().back(),
              L"GetProviderTarget(manager) @" + std::to_wstring(GetCurrentThreadId()));
}

TEST_F(FakeProviders, CanFailTheFinalStage) {
    Answer(L"ExecuteFinalTransforms", L"0");
    const wchar_t* const paths[] = {L"C:\\t\\a.pdf"};
    EXPECT_FALSE(
        Entries().ExecuteFinalTransforms(manager_, nullptr, paths, 1, 1, nullptr, nullptr));
    EXPECT_EQ(Calls().back(),
              L"ExecuteFinalTransforms(manager, 0, paths(\"C:\\t\\a.pdf\"), 1, 1, null, null)");
}

} // namespace
