// What the stages of every provider manager have to return, of the real one and the fake alike:
// this program runs once with each beside it. The work process of the real one does what the test
// asks, and what the fake returns is scripted.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "OBCore/modules/ProviderLibrary.h"
#include "tests/fakes/Recording.h"
#include "tests/support/FakeModules.h"
#include "tests/support/HeldCall.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"
#include "tests/support/WindowKit.h"

namespace {

using namespace obcontract;
using namespace obcore;
using obtest::FakeModules;
using Names = std::vector<std::wstring>;

constexpr auto kCurrentUser = static_cast<std::int64_t>(static_cast<std::int32_t>(0x80000001));
constexpr std::uint32_t kConvertPhotos = 50;
constexpr std::uint32_t kRemoveInfo = 51;
constexpr std::uint32_t kCombinePdfs = 65;
constexpr std::uint32_t kResultWidth = 514; // units of a result's buffer, with its NUL

std::vector<const wchar_t*> Pointers(const Names& paths) {
    std::vector<const wchar_t*> pointers;
    for (const std::wstring& path : paths) pointers.push_back(path.c_str());
    return pointers;
}

// A session in which the provider of personal data is selected, and two copies in a subfolder of
// the temporary path.
class StageContract : public testing::Test {
protected:
    void SetUp() override {
        FakeModules::Reset();
        obtest::ClearProductRegistry();
        const std::wstring key = std::wstring(kProviderManagerKey) + L"\\Transforms\\51";
        for (const wchar_t* question : {L"ShowReceipt", L"AskAboutOtherFiles"}) {
            obtest::SetValue(HKEY_CURRENT_USER, key, question, L"0");
        }
        ASSERT_TRUE(LoadProviderManager());
        manager_ = Entries().CreateObExtensionsManager();
        ASSERT_NE(manager_, nullptr);
        Entries().Init(manager_, kCurrentUser, kProviderManagerKey);
        Use(kRemoveInfo, L"0,0,1,1");
        WorkProcess("good");
    }
    void TearDown() override {
        if (manager_) Entries().DeleteObExtensionsManager(manager_);
    }

    static const ProviderManagerEntries& Entries() { return ProviderManager(); }
    void Use(std::uint32_t provider, const wchar_t* stages) {
        FakeModules::Answer(L"IsProviderSupport." + std::to_wstring(provider) + L".4", L"1");
        FakeModules::Answer(L"GetSelectedTransformSummary", stages);
        ASSERT_TRUE(
            Entries().SelectProviders(manager_, kSelectUse, provider, ProviderKind::Transform));
    }
    void UseOnly(std::uint32_t provider, const wchar_t* stages) {
        ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectLeaveOut, kRemoveInfo,
                                              ProviderKind::Transform));
        Use(provider, stages);
    }
    // What the work process of the real manager does with a request.
    static void WorkProcess(const char* word) {
        ASSERT_TRUE(obtest::WriteFileContent(obtest::BesideProgram(L"worker.txt"), word));
    }
    Names Counts() {
        std::int32_t counts[] = {9, 9, 9, 9}; // before the list, after it, per file, at the end
        Entries().GetSelectedTransformSummary(manager_, &counts[0], &counts[1], &counts[2],
                                              &counts[3]);
        Names texts;
        for (const std::int32_t count : counts) texts.push_back(std::to_wstring(count));
        return texts;
    }
    bool Execute(const std::wstring& path) {
        Entries().SetProviderTarget(manager_, path.c_str());
        return Entries().ExecuteTransforms(
            manager_, nullptr, nullptr, (folder_.Path() + L"\\").c_str(), 1, 3, nullptr, nullptr);
    }
    bool Post(const Names& paths, std::uint32_t& count) {
        return Entries().ExecutePostTransforms(manager_, nullptr, Pointers(paths).data(), &count, 1,
                                               nullptr, nullptr);
    }
    bool Final(const Names& paths) {
        return Entries().ExecuteFinalTransforms(manager_, nullptr, Pointers(paths).data(),
                                                static_cast<std::uint32_t>(paths.size()), 1,
                                                nullptr, nullptr);
    }
    // What GetTargetFile gives for so many buffers.
    Names Results(std::size_t capacity) {
        std::vector<std::wstring> texts(capacity, std::wstring(kResultWidth, L'x'));
        std::vector<wchar_t*> buffers;
        for (std::wstring& text : texts) buffers.push_back(text.data());
        std::uint32_t count = 99;
        Entries().GetTargetFile(manager_, buffers.data(), &count, kResultWidth);
        EXPECT_LE(count, capacity);
        texts.resize(std::min<std::size_t>(count, capacity));
        for (std::wstring& text : texts) text.resize(std::wcslen(text.c_str()));
        return texts;
    }
    // The fake keeps the call that its script names; the real manager has begun to write a file.
    bool AwaitBegunCall() const {
        return obtest::WaitUntil([this] {
            return obtest::FileExists(obtest::BesideProgram(obtest::kHeldFileName)) ||
                   obtest::ListTree(folder_.Path()).size() > 2;
        });
    }

    const obtest::TestFolder folder_;
    const std::wstring copy_ = folder_.File(L"copy.txt", "text");
    const std::wstring other_ = folder_.File(L"other.txt", "text");
    ProviderManagerHandle manager_ = nullptr;
};

TEST_F(StageContract, CountsTheStagesOfTheSelectedTransform) {
    EXPECT_EQ(Counts(), (Names{L"0", L"0", L"1", L"1"}));
}

TEST_F(StageContract, KeepsThePathOfAFileThatNothingReplaces) {
    WorkProcess("record"); // finds nothing to remove
    ASSERT_TRUE(Execute(copy_));
    EXPECT_EQ(Entries().GetProviderTarget(manager_), copy_);
    EXPECT_EQ(obtest::ReadFileContent(copy_), "text");
}

TEST_F(StageContract, ReturnsThePathThatATransformChanges) {
    UseOnly(kConvertPhotos, L"0,0,1,0");
    WorkProcess("jpeg");
    const std::wstring photo = folder_.File(L"photo.heic", "photo");
    FakeModules::Answer(L"GetProviderTarget.photo.heic", folder_ / L"photo.jpg");
    ASSERT_TRUE(Execute(photo));
    EXPECT_EQ(Entries().GetProviderTarget(manager_), folder_ / L"photo.jpg");
}

TEST_F(StageContract, ReturnsTheCountOfAListStageAndItsResults) {
    std::uint32_t count = 2;
    ASSERT_TRUE(Post({copy_, other_}, count));
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(Results(2), (Names{copy_, other_}));
}

TEST_F(StageContract, ReturnsASmallerCountWhenAListStageMergesFiles) {
    UseOnly(kCombinePdfs, L"0,1,0,0");
    EXPECT_EQ(Counts(), (Names{L"0", L"1", L"0", L"0"}));
    const Names parts{folder_.File(L"a.pdf", "%PDF-one"), folder_.File(L"b.pdf", "%PDF-two")};
    FakeModules::Answer(L"ExecutePostTransforms.paths", parts[0]);
    std::uint32_t count = 2;
    ASSERT_TRUE(Post(parts, count));
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(Results(1), Names{parts[0]});
}

// A result that no buffer takes: the real manager refuses it by itself, and the fake by its script.
TEST_F(StageContract, LeavesTheCountWhenAListStageFails) {
    FakeModules::Answer(L"ExecutePostTransforms", L"0");
    const obtest::MessageBoxWatcher boxes; // the real manager's sentence
    std::uint32_t count = 2;
    EXPECT_FALSE(Post({copy_, std::wstring(kResultWidth, L'p')}, count));
    EXPECT_EQ(count, 2u);
}

TEST_F(StageContract, ReturnsOneResultForEachFileOfTheFinalStage) {
    ASSERT_TRUE(Execute(copy_));
    ASSERT_TRUE(Execute(other_));
    ASSERT_TRUE(Final({copy_, other_}));
    EXPECT_EQ(Results(2), (Names{copy_, other_}));
}

TEST_F(StageContract, FailsInACallThatTheEndOfTheSessionMeets) {
    WorkProcess("hang-after-writing");
    FakeModules::Answer(L"Hold", L"ExecuteTransforms");
    std::atomic<bool> result = true;
    std::thread worker([&] { result = Execute(copy_); });
    EXPECT_TRUE(AwaitBegunCall());
    Entries().Deinit(manager_);
    obtest::HeldCall::Release();
    worker.join();
    EXPECT_FALSE(result);
    EXPECT_STREQ(Entries().GetProviderTarget(manager_), L"");
    EXPECT_EQ(obtest::ReadFileContent(copy_), "text");
    EXPECT_EQ(obtest::ListTree(folder_.Path()), (Names{L"copy.txt", L"other.txt"}));
}

} // namespace
