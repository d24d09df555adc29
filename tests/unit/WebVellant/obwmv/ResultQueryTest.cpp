#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OBCore/exchange/PickedFiles.h"
#include "ObLib/Src/Win32/ComResources.h"
#include "contracts/ExchangeBlock.h"
#include "obwmv/Exports.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/WebVellant/obwmv/RequestFakes.h"

namespace {

using ObLib::ComPtr;
using obtest::BrowserCall;
using obtest::Fakes;
using testing::ElementsAre;
using testing::UnorderedElementsAreArray;

IFileDialog* const kDialog = reinterpret_cast<IFileDialog*>(0x5550);
IFileDialog* const kOther = reinterpret_cast<IFileDialog*>(0x6660);

std::wstring PathOf(IShellItem* item) {
    ObLib::UniqueCoTaskMemory<wchar_t> name;
    if (FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, name.Put()))) return {};
    return name.Get();
}

std::vector<std::wstring> PathsOf(IShellItemArray& items) {
    DWORD count = 0;
    EXPECT_EQ(items.GetCount(&count), S_OK);
    std::vector<std::wstring> paths;
    for (DWORD index = 0; index < count; ++index) {
        ComPtr<IShellItem> item;
        EXPECT_EQ(items.GetItemAt(index, item.Put()), S_OK);
        paths.push_back(item ? PathOf(item.Get()) : L"no item");
    }
    return paths;
}

class ResultQueryTest : public testing::Test {
protected:
    void SetUp() override {
        obtest::ResetFakes();
        obtest::NoteCallsOf(context_);
        obcore::Results().clear();
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    }
    void TearDown() override { CoUninitialize(); }

    static void Pick(std::vector<std::wstring> paths) {
        obcore::Results()[obcore::ResultKey(kDialog)] = {.paths = std::move(paths)};
    }

    obtest::FakeBrowserContext context_;
    obtest::TestFolder folder_;
    const std::wstring first_ = folder_.File(L"first.txt");
    const std::wstring second_ = folder_.File(L"second.txt");
    const std::wstring third_ = folder_.File(L"third.txt");
};

TEST_F(ResultQueryTest, GivesTheOnePathAsAnItem) {
    Pick({second_});
    ComPtr<IShellItem> item;
    ASSERT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, item.Put(), &context_), S_OK);
    ASSERT_TRUE(item);
    EXPECT_EQ(PathOf(item.Get()), second_);
    EXPECT_TRUE(Fakes().steps.empty());
}

TEST_F(ResultQueryTest, AnswersAgainAndAgain) {
    Pick({second_});
    for (int round = 0; round < 3; ++round) {
        ComPtr<IShellItem> item;
        EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, item.Put(), &context_), S_OK);
        EXPECT_TRUE(item);
    }
}

TEST_F(ResultQueryTest, GivesNoFirstOneOfSeveralPaths) {
    Pick({first_, second_, third_});
    auto* out = reinterpret_cast<IShellItem*>(0xABC);
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, &out, &context_), 1);
    EXPECT_EQ(out, reinterpret_cast<IShellItem*>(0xABC));
}

TEST_F(ResultQueryTest, AnswersOneWithoutAnyPath) {
    Pick({});
    auto* item = reinterpret_cast<IShellItem*>(0xABC);
    auto* items = reinterpret_cast<IShellItemArray*>(0xABC);
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, &item, &context_), 1);
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, &items, &context_), 1);
    EXPECT_EQ(item, reinterpret_cast<IShellItem*>(0xABC));
    EXPECT_EQ(items, reinterpret_cast<IShellItemArray*>(0xABC));
}

TEST_F(ResultQueryTest, GivesAllPathsInTheirOrder) {
    Pick({third_, first_, second_});
    ComPtr<IShellItemArray> items;
    ASSERT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, items.Put(), &context_), S_OK);
    ASSERT_TRUE(items);
    EXPECT_THAT(PathsOf(*items.Get()), ElementsAre(third_, first_, second_));
}

struct {
    std::vector<void*> made;
    std::vector<void*> freed;
    decltype(&ILCreateFromPathW) realMake = nullptr;
    decltype(&ILFree) realFree = nullptr;
} lists;

// A run on the way of the query: it empties the map, as each run does at its start.
PIDLIST_ABSOLUTE WINAPI MakeListAndEmptyTheMap(LPCWSTR path) {
    obcore::Results().clear();
    const PIDLIST_ABSOLUTE list = lists.realMake(path);
    lists.made.push_back(list);
    return list;
}

void WINAPI RecordFreeing(LPITEMIDLIST list) {
    lists.freed.push_back(list);
    lists.realFree(list);
}

TEST_F(ResultQueryTest, WorksOnACopyAndFreesEveryListThatItMade) {
    const obtest::ImportPatch<decltype(&ILCreateFromPathW)> make("shell32.dll", "ILCreateFromPathW",
                                                                 &MakeListAndEmptyTheMap);
    const obtest::ImportPatch<decltype(&ILFree)> free("shell32.dll", "ILFree", &RecordFreeing);
    ASSERT_TRUE(make.Ok() && free.Ok());
    lists = {.made = {}, .freed = {}, .realMake = make.Real(), .realFree = free.Real()};
    Pick({third_, first_, second_});
    ComPtr<IShellItemArray> items;
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, items.Put(), &context_), S_OK);
    DWORD count = 0;
    if (items) items->GetCount(&count);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(lists.made.size(), 3u);
    EXPECT_THAT(lists.freed, UnorderedElementsAreArray(lists.made));

    lists.made.clear();
    lists.freed.clear();
    Pick({second_});
    ComPtr<IShellItem> item;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, item.Put(), &context_), S_OK);
    EXPECT_TRUE(item);
    EXPECT_EQ(lists.made.size(), 1u);
    EXPECT_EQ(lists.freed, lists.made);
}

TEST_F(ResultQueryTest, AnswersZeroAlsoForAPathThatHasGone) {
    Pick({folder_ / L"gone.txt"});
    IShellItem* item = nullptr;
    IShellItemArray* items = nullptr;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, &item, &context_), S_OK);
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, &items, &context_), S_OK);
    if (item) item->Release();
    if (items) items->Release();
}

TEST_F(ResultQueryTest, GivesTheOtherFilesWhenOneHasGone) {
    Pick({first_, folder_ / L"gone.txt", third_});
    ComPtr<IShellItemArray> items;
    ASSERT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, items.Put(), &context_), S_OK);
    ASSERT_TRUE(items);
    EXPECT_THAT(PathsOf(*items.Get()), ElementsAre(first_, third_));
}

TEST_F(ResultQueryTest, GivesADialogWithoutAResultToTheBrowser) {
    Pick({first_});
    IShellItem* item = nullptr;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kOther, &item, &context_), 0x00041235);
    EXPECT_EQ(context_.askedDialog, kOther);
    EXPECT_EQ(context_.askedOut, &item);
    IShellItemArray* items = nullptr;
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kOther, &items, &context_), 0x00041236);
    EXPECT_EQ(context_.askedDialog, kOther);
    EXPECT_EQ(context_.askedOut, &items);
    EXPECT_THAT(Fakes().steps, ElementsAre("CallGetResult", "CallGetResults"));
}

TEST_F(ResultQueryTest, WorksOutsideTheActivationContext) {
    const obtest::ActivationRecorder activations(true);
    ASSERT_TRUE(activations.Ok());
    Pick({first_});
    ComPtr<IShellItem> item;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, item.Put(), &context_), S_OK);
    EXPECT_TRUE(Fakes().steps.empty());
}

using obcontract::kCancelled;

TEST_F(ResultQueryTest, ReadsAsACancelWhenTheContextThrows) {
    IShellItem* item = nullptr;
    context_.throwsIn = BrowserCall::CallGetResult;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kOther, &item, &context_), kCancelled);
    IShellItemArray* items = nullptr;
    context_.throwsIn = BrowserCall::CallGetResults;
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kOther, &items, &context_), kCancelled);
    EXPECT_THAT(Fakes().steps, ElementsAre("CallGetResult", "CallGetResults"));
}

PIDLIST_ABSOLUTE WINAPI ThrowInsteadOfAList(LPCWSTR) { throw std::bad_alloc(); }

TEST_F(ResultQueryTest, ReadsAsACancelWhenThereIsNoMemory) {
    const obtest::ImportPatch<decltype(&ILCreateFromPathW)> make("shell32.dll", "ILCreateFromPathW",
                                                                 &ThrowInsteadOfAList);
    ASSERT_TRUE(make.Ok());
    Pick({first_});
    IShellItem* item = nullptr;
    IShellItemArray* items = nullptr;
    EXPECT_EQ(FileOpenDialog_GetResultInBrowser(kDialog, &item, &context_), kCancelled);
    EXPECT_EQ(FileOpenDialog_GetResultsInBrowser(kDialog, &items, &context_), kCancelled);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(items, nullptr);
}

} // namespace
