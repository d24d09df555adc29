#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "OBCore/exchange/PickedFiles.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/BrowserRequest.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::HostScript;
using obwmv::kCancelled;
using Lines = std::vector<std::wstring>;

const wchar_t kAnswer[] = L"status 4\npoke8 24 9\npoke32 28 76\npoke32 32 78\nunits 76 0\n"
                          L"list 78 \"C:\\a.txt\" \"D:\\b\"\n";

class DialogRequest : public testing::Test {
protected:
    void SetUp() override { obcore::Results().clear(); }
    void TearDown() override {
        EXPECT_EQ(dialog.unexpectedCalls, 0);
        EXPECT_TRUE(context.OnlyDelivered());
    }

    HRESULT Run(const std::wstring& script) { return RunFor(dialog, script); }
    HRESULT RunFor(obtest::CallersDialog& caller, const std::wstring& script) {
        HostScript::Play(script);
        return obwmv::RunDialogRequest(&caller, browser.Page(), &context);
    }
    const obcore::PickedFiles* Picked(const obtest::CallersDialog& caller) {
        const auto found = obcore::Results().find(obcore::ResultKey(&caller));
        return found == obcore::Results().end() ? nullptr : &found->second;
    }

    obtest::BrowserWindow browser;
    obtest::FakeBrowserContext context;
    obtest::CallersDialog dialog;
};

TEST_F(DialogRequest, HandsTheHostTheOptionsByteForByte) {
    dialog.options = 0x00001268;
    EXPECT_EQ(Run(L"dump request.bin"), S_OK);
    obtest::BlockImage expected;
    expected.Put32(0, 1).Put32(12, 0x00001268);
    EXPECT_EQ(obtest::DumpedBlock(L"request.bin"), expected.Bytes());
    EXPECT_EQ(dialog.optionsReads, 1);
}

TEST_F(DialogRequest, DoesntLookAtWhetherTheOptionsCouldBeHad) {
    dialog.options = 0x42;
    dialog.optionsResult = E_FAIL;
    EXPECT_EQ(Run(L"dump request.bin"), S_OK);
    EXPECT_EQ(obtest::DumpedBlock(L"request.bin")[12], 0x42);
}

TEST_F(DialogRequest, DoesNotCheckWhetherThePageForbidsLinks) {
    context.pageUrl = L"https://mail.google.com/h?view=amf";
    Run(L"dump request.bin");
    EXPECT_EQ(obtest::DumpedBlock(L"request.bin")[8], 0);
    EXPECT_EQ(context.Count(obtest::BrowserCall::GetPageUrl), 0u);
}

TEST_F(DialogRequest, KeepsThePickedFilesUnderTheDialog) {
    EXPECT_EQ(Run(std::wstring(kAnswer) + L"result 0"), S_OK);
    ASSERT_EQ(obcore::Results().size(), 1u);
    const obcore::PickedFiles* picked = Picked(dialog);
    ASSERT_NE(picked, nullptr);
    EXPECT_EQ(picked->flag, 9);
    EXPECT_EQ(picked->folder, L"");
    EXPECT_EQ(picked->paths, (Lines{L"C:\\a.txt", L"D:\\b"}));
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(DialogRequest, TakesAnyResultThatIsntNegativeAsSuccess) {
    EXPECT_EQ(Run(std::wstring(kAnswer) + L"result 1"), S_FALSE);
    EXPECT_NE(Picked(dialog), nullptr);
}

TEST_F(DialogRequest, KeepsNothingOnANegativeResult) {
    EXPECT_EQ(Run(std::wstring(kAnswer) + L"result 0x80004005"), E_FAIL);
    EXPECT_TRUE(obcore::Results().empty());
}

TEST_F(DialogRequest, KeepsAnEmptyListOfPathsToo) {
    EXPECT_EQ(Run(L"status 4\npoke32 28 76\npoke32 32 78\nlist 78"), S_OK);
    ASSERT_NE(Picked(dialog), nullptr);
    EXPECT_TRUE(Picked(dialog)->paths.empty());
}

TEST_F(DialogRequest, ReplacesAnEarlierResultOfTheSameDialog) {
    Run(kAnswer);
    Run(L"status 4\npoke32 28 76\npoke32 32 78\nlist 78 \"E:\\new\"");
    ASSERT_EQ(obcore::Results().size(), 1u);
    EXPECT_EQ(Picked(dialog)->paths, Lines{L"E:\\new"});
}

TEST_F(DialogRequest, DropsTheResultOfAnotherDialogAtItsStart) {
    obtest::CallersDialog other;
    RunFor(other, kAnswer);
    EXPECT_NE(Picked(other), nullptr);
    Run(kAnswer);
    EXPECT_EQ(Picked(other), nullptr);
    EXPECT_NE(Picked(dialog), nullptr);
}

TEST_F(DialogRequest, DropsTheEarlierResultAlsoWhenItIsCancelled) {
    Run(kAnswer);
    EXPECT_EQ(Run(L"result 0x800704C7"), kCancelled);
    EXPECT_TRUE(obcore::Results().empty());
    Run(kAnswer);
    EXPECT_EQ(Run(L"exit -1"), kCancelled);
    EXPECT_TRUE(obcore::Results().empty());
}

TEST_F(DialogRequest, ReturnsTheResultOfACancelUnchanged) {
    EXPECT_EQ(Run(L"result 0x800704C7"), kCancelled);
    EXPECT_EQ(Run(L"result 0x80070005"), static_cast<HRESULT>(0x80070005));
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(DialogRequest, KeepsNothingOnAStatusOfTheOtherPath) {
    for (const wchar_t* status : {L"0", L"1", L"3", L"5"}) {
        EXPECT_EQ(Run(std::wstring(kAnswer) + L"status " + status), S_OK) << status;
        EXPECT_TRUE(obcore::Results().empty()) << status;
    }
}

TEST_F(DialogRequest, HandsThePageALink) {
    EXPECT_EQ(Run(L"status 2\npoke32 24 76\ntext 76 \"https://c/1\"\nresult 0x800704C7"),
              kCancelled);
    EXPECT_EQ(context.delivered, Lines{L"link https://c/1"});
    EXPECT_TRUE(obcore::Results().empty());
}

TEST_F(DialogRequest, HandsOnNoEmptyLink) {
    EXPECT_EQ(Run(L"status 2\npoke32 24 76\nresult 1"), S_FALSE);
    EXPECT_EQ(Run(L"status 2\npoke32 24 0\ntext 76 \"l\"\nresult 1"), S_FALSE);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(DialogRequest, ReportsTheNamesToCleanUpToTheHook) {
    Run(std::wstring(kAnswer) + L"text 500 \"C:\\t\"\npoke32 16 500\ntext 600 \"C:\\f\"\n"
                                L"poke32 20 600");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] [C:\\f]"});
    EXPECT_NE(Picked(dialog), nullptr);
}

TEST_F(DialogRequest, ReportsAFolderAloneToTheHookAndNoEmptyOne) {
    Run(L"result -1\ntext 500 \"C:\\t\"\npoke32 16 500");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] null"});
    context.delivered.clear();
    EXPECT_EQ(Run(L"text 500 \"\"\npoke32 16 500\ntext 600 \"C:\\f\"\npoke32 20 600\nresult 1"),
              S_FALSE);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(DialogRequest, DeliversNothingWhenTheHostFailed) {
    const std::wstring full = std::wstring(kAnswer) + L"text 500 \"C:\\t\"\npoke32 16 500\n";
    for (const wchar_t* end : {L"exit 1", L"exit -1", L"crash"}) {
        EXPECT_EQ(Run(full + end), kCancelled) << end;
        EXPECT_TRUE(obcore::Results().empty()) << end;
        EXPECT_TRUE(context.delivered.empty()) << end;
    }
    EXPECT_EQ(Run(L"status 2\npoke32 24 76\ntext 76 \"l\"\nresult 0\nexit 3"), kCancelled);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(DialogRequest, AnswersACancelWhenTheHostIsMissing) {
    const obtest::WithoutHost away;
    EXPECT_EQ(Run(L"exit 0"), kCancelled);
    EXPECT_TRUE(browser.Enabled());
}

TEST_F(DialogRequest, KeepsTheBrowserDisabledWhileTheHostRuns) {
    Run(L"owner");
    const auto owners = HostScript::RecordOf(L"owner");
    ASSERT_EQ(owners.size(), 1u);
    EXPECT_TRUE(owners[0].starts_with(L"class=WebVellantLayer ")) << owners[0];
    EXPECT_TRUE(owners[0].ends_with(L" enabled=0")) << owners[0];
    EXPECT_TRUE(browser.Enabled());
}

TEST_F(DialogRequest, ReadsNoPathsFromAnOffsetOutsideTheTextArea) {
    for (const std::int32_t offset : {0, 32, 77, 65535, 65536, INT_MAX, -2, INT_MIN}) {
        const std::wstring text = std::to_wstring(offset);
        EXPECT_EQ(Run(L"status 4\npoke32 28 " + text + L"\npoke32 32 " + text), S_OK);
        ASSERT_NE(Picked(dialog), nullptr) << offset;
        EXPECT_TRUE(Picked(dialog)->paths.empty()) << offset;
        EXPECT_EQ(Picked(dialog)->folder, L"") << offset;
    }
}

TEST_F(DialogRequest, CutsPathsThatRunOutOfTheBlock) {
    Run(L"status 4\npoke32 32 65526\nunits 65526 97 0 98 99 100");
    ASSERT_NE(Picked(dialog), nullptr);
    EXPECT_EQ(Picked(dialog)->paths, (Lines{L"a", L"bcd"}));
}

// The section that the next request of the dialog entry point will take, made by another program.
ObLib::UniqueKernelHandle SectionOfNextRequest(DWORD bytes) {
    const std::wstring name = L"WEBVELLANT_SM_" + std::to_wstring(obtest::LastHostId() + 1);
    return ObLib::UniqueKernelHandle(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, bytes, name.c_str()));
}

TEST_F(DialogRequest, AnswersACancelWhenTheBlockCantBeMapped) {
    Run(L"exit 0");
    const ObLib::UniqueKernelHandle small = SectionOfNextRequest(4096);
    ASSERT_TRUE(small);
    EXPECT_EQ(Run(L"exit 0"), kCancelled);
    EXPECT_TRUE(HostScript::Record().empty());
    EXPECT_EQ(dialog.optionsReads, 1);
}

TEST_F(DialogRequest, KeepsTheBytesOfAnExistingSectionOutsideItsFields) {
    Run(L"exit 0");
    const ObLib::UniqueKernelHandle section = SectionOfNextRequest(65536);
    const ObLib::UniqueMappedView<std::uint8_t> view(
        static_cast<std::uint8_t*>(MapViewOfFile(section.Get(), FILE_MAP_WRITE, 0, 0, 0)));
    ASSERT_TRUE(view);
    std::memset(view.Get(), 0xA5, 65536);
    dialog.options = 0x11223344;
    EXPECT_EQ(Run(L"dump used.bin\nexit 1"), kCancelled);
    std::string expected(65536, '\xA5');
    expected.replace(0, 4, "\x01\0\0\0", 4).replace(12, 4, "\x44\x33\x22\x11", 4);
    EXPECT_EQ(obtest::DumpedBlock(L"used.bin"), expected);
}

// A process of its own: the numbers begin with it.
class DialogRequestIds : public DialogRequest {};

TEST_F(DialogRequestIds, CountUpFromOneAlsoOverFailures) {
    Run(L"exit 0");
    EXPECT_EQ(obtest::LastHostId(), 1);
    Run(L"exit 1");
    EXPECT_EQ(obtest::LastHostId(), 2);
    {
        const ObLib::UniqueKernelHandle taken(
            CreateEventW(nullptr, TRUE, FALSE, L"WEBVELLANT_SM_3"));
        obcore::Results()[1].flag = 1;
        EXPECT_EQ(Run(L"exit 0"), kCancelled);
        EXPECT_TRUE(HostScript::Record().empty());
        EXPECT_TRUE(obcore::Results().empty());
    }
    Run(L"exit 0");
    EXPECT_EQ(obtest::LastHostId(), 4);
    const ObLib::UniqueKernelHandle gone(
        OpenFileMappingW(FILE_MAP_READ, FALSE, L"WEBVELLANT_SM_4"));
    EXPECT_FALSE(gone);
}

} // namespace
