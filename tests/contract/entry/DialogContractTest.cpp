#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ObLib/Src/Win32/ComResources.h"
#include "tests/contract/entry/LoadedLibrary.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/support/TestFolder.h"

namespace {

using ObLib::ComPtr;
using obtest::HostScript;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT kCancel = static_cast<HRESULT>(0x800704C7);

ComPtr<IFileDialog> MakeDialog() {
    ComPtr<IFileDialog> dialog;
    CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, IID_IFileDialog,
                     reinterpret_cast<void**>(dialog.Put()));
    return dialog;
}

std::wstring AnswerWith(const std::vector<std::wstring>& paths) {
    std::wstring script = L"poke32 28 76\npoke32 32 78\nlist 78";
    for (const auto& path : paths) script += L" \"" + path + L"\"";
    return script + L"\nstatus 4\nresult 0";
}

class DialogContract : public testing::Test {
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    void SetUp() override {
        ASSERT_TRUE(library_.module);
        ASSERT_TRUE(dialog_);
        HostScript::Play(L"result 0x800704C7");
    }

    HRESULT Show(const ComPtr<IFileDialog>& dialog) {
        return library_.show(dialog.Get(), nullptr, &context_);
    }
    HRESULT GetResult(const ComPtr<IFileDialog>& dialog) {
        ComPtr<IShellItem> item;
        return library_.getResult(dialog.Get(), item.Put(), &context_);
    }
    HRESULT GetResults(const ComPtr<IFileDialog>& dialog, DWORD* count = nullptr) {
        ComPtr<IShellItemArray> items;
        const HRESULT result = library_.getResults(dialog.Get(), items.Put(), &context_);
        if (count && items) items->GetCount(count);
        return result;
    }

    const obtest::LoadedLibrary library_;
    obtest::FakeBrowserContext context_;
    obtest::TestFolder folder_;
    const ComPtr<IFileDialog> dialog_ = MakeDialog();
};

TEST_F(DialogContract, GivesThreePickedFilesAsAnArrayAndNotAsOne) {
    HostScript::Play(
        AnswerWith({folder_.File(L"a.txt"), folder_.File(L"b.txt"), folder_.File(L"c.txt")}));
    EXPECT_EQ(Show(dialog_), S_OK);
    auto* out = reinterpret_cast<IShellItem*>(0xABC);
    EXPECT_EQ(library_.getResult(dialog_.Get(), &out, &context_), 1);
    EXPECT_EQ(out, reinterpret_cast<IShellItem*>(0xABC));
    DWORD count = 0;
    EXPECT_EQ(GetResults(dialog_, &count), 0);
    EXPECT_EQ(count, 3u);
    EXPECT_THAT(context_.OwnDialogs(), IsEmpty());
}

TEST_F(DialogContract, GivesOnePickedFileBothWays) {
    HostScript::Play(AnswerWith({folder_.File(L"a.txt")}));
    EXPECT_EQ(Show(dialog_), S_OK);
    EXPECT_EQ(GetResult(dialog_), S_OK);
    DWORD count = 0;
    EXPECT_EQ(GetResults(dialog_, &count), S_OK);
    EXPECT_EQ(count, 1u);
}

TEST_F(DialogContract, KeepsNothingOfACancelledRun) {
    EXPECT_EQ(Show(dialog_), kCancel);
    EXPECT_EQ(GetResult(dialog_), context_.getResultAnswer);
    EXPECT_EQ(GetResults(dialog_), context_.getResultsAnswer);
    EXPECT_THAT(context_.OwnDialogs(), ElementsAre("CallGetResult", "CallGetResults"));
}

TEST_F(DialogContract, DropsTheResultOfTheDialogBefore) {
    HostScript::Play(AnswerWith({folder_.File(L"a.txt")}));
    EXPECT_EQ(Show(dialog_), S_OK);
    const auto second = MakeDialog();
    ASSERT_TRUE(second);
    HostScript::Play(L"result 0x800704C7");
    EXPECT_EQ(Show(second), kCancel);
    EXPECT_EQ(GetResult(dialog_), context_.getResultAnswer);
    EXPECT_EQ(GetResults(dialog_), context_.getResultsAnswer);
}

TEST_F(DialogContract, DropsTheResultAlsoWhenTheNextRunFails) {
    HostScript::Play(AnswerWith({folder_.File(L"a.txt")}));
    EXPECT_EQ(Show(dialog_), S_OK);
    HostScript::Play(L"exit 4");
    EXPECT_EQ(Show(dialog_), kCancel);
    EXPECT_EQ(GetResult(dialog_), context_.getResultAnswer);
}

TEST_F(DialogContract, GivesAVetoedRequestToTheBrowser) {
    context_.pickerWanted = 0;
    EXPECT_EQ(Show(dialog_), context_.showAnswer);
    EXPECT_THAT(context_.OwnDialogs(), ElementsAre("CallShow"));
    EXPECT_THAT(HostScript::Record(), IsEmpty());
}

} // namespace
