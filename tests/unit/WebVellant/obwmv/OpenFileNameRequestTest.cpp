#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "obwmv/BrowserRequest.h"
#include "obwmv/SiteHosts.h"
#include "tests/fakes/host/HostScript.h"
#include "tests/support/FakeBrowserContext.h"
#include "tests/unit/WebVellant/obwmv/BrowserWindow.h"
#include "tests/unit/WebVellant/obwmv/RequestSupport.h"

namespace {

using obtest::BrowserCall;
using obtest::HostScript;
using Lines = std::vector<std::wstring>;

template <std::size_t Size>
std::wstring Raw(const wchar_t (&literal)[Size]) {
    return std::wstring(literal, Size - 1);
}

class OpenFileNameRequest : public testing::Test {
protected:
    void SetUp() override {
        std::wmemset(file, L'#', kCapacity);
        request.lStructSize = sizeof(request);
        request.hwndOwner = browser.Page();
        request.lpstrFile = file;
        request.nMaxFile = kCapacity;
    }

    void TearDown() override { EXPECT_TRUE(context.OnlyDelivered()); }

    BOOL Run(const std::wstring& script) {
        HostScript::Play(script);
        return obwmv::RunOpenFileNameRequest(&request, &context);
    }

    std::wstring File(std::size_t units) const { return std::wstring(file, units); }
    bool FileUntouched() const { return File(kCapacity) == std::wstring(kCapacity, L'#'); }

    static std::wstring BlockName() {
        return L"WEBVELLANT_SM_" + std::to_wstring(static_cast<int>(GetCurrentThreadId()));
    }

    static constexpr std::size_t kCapacity = 400;
    wchar_t file[kCapacity];
    OPENFILENAMEW request = {};
    obtest::BrowserWindow browser;
    obtest::FakeBrowserContext context;
};

TEST_F(OpenFileNameRequest, HandsTheHostTheRequestByteForByte) {
    request.nFileExtension = 0x0102;
    request.nFileOffset = 0x0304;
    request.nFilterIndex = 2;
    request.nMaxCustFilter = 40;
    request.nMaxFileTitle = 50;
    request.Flags = 0x00881824;
    request.FlagsEx = 1;
    request.lpstrInitialDir = L"C:\\";
    request.lpstrTitle = L"Open";
    request.lpstrDefExt = L"a";
    request.lpTemplateName = L"b";
    request.lpstrFilter = L"All\0*.*\0";
    EXPECT_EQ(Run(L"dump request.bin"), 0);
    obtest::BlockImage expected;
    expected.Put16(24, 0x0102).Put16(26, 0x0304).Put32(28, 2).Put32(32, 40).Put32(36, kCapacity);
    expected.Put32(40, 50).Put32(44, 0x00881824).Put32(48, 1);
    expected.Put32(52, 76).Put32(56, 84).Put32(60, 94).Put32(64, 98).Put32(68, 102).Put32(72, 120);
    expected.PutUnits(76, Raw(L"C:\\\0Open\0a\0b\0All\0*.*\0\0\0\0"));
    EXPECT_EQ(obtest::DumpedBlock(L"request.bin"), expected.Bytes());
}

TEST_F(OpenFileNameRequest, NamesTheBlockByTheCallingThread) {
    Run(L"exit 0");
    EXPECT_EQ(obtest::LastHostId(), static_cast<long long>(GetCurrentThreadId()));
}

TEST_F(OpenFileNameRequest, MarksARequestThatMayNotBeAnsweredWithALink) {
    request.lpstrFilter = L"YouSendIt Supported Files\0*.*\0";
    Run(L"dump filter.bin");
    EXPECT_EQ(obtest::DumpedBlock(L"filter.bin")[8], 1);
    request.lpstrFilter = nullptr;
    context.pageUrl = std::wstring(L"https://") + obwmv::kGmailHost + L"/h?view=amf";
    Run(L"dump page.bin");
    EXPECT_EQ(obtest::DumpedBlock(L"page.bin")[8], 1);
    context.pageUrl = std::wstring(L"https://") + obwmv::kGmailHost + L"/";
    Run(L"dump neither.bin");
    EXPECT_EQ(obtest::DumpedBlock(L"neither.bin")[8], 0);
}

TEST_F(OpenFileNameRequest, KeepsTheBytesOfAnExistingSectionOutsideItsFields) {
    const ObLib::UniqueKernelHandle section(CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 65536, BlockName().c_str()));
    const ObLib::UniqueMappedView<std::uint8_t> view(
        static_cast<std::uint8_t*>(MapViewOfFile(section.Get(), FILE_MAP_WRITE, 0, 0, 0)));
    ASSERT_TRUE(view);
    std::memset(view.Get(), 0xA5, 65536);
    Run(L"dump used.bin\nexit 1");
    const std::string block = obtest::DumpedBlock(L"used.bin");
    ASSERT_EQ(block.size(), 65536u);
    EXPECT_EQ(block.substr(0, 4), std::string(4, '\0'));
    EXPECT_EQ(block.substr(4, 4), "\xA5\xA5\xA5\xA5");
    EXPECT_EQ(block[8], 0);
    EXPECT_EQ(block.substr(9, 15), std::string(15, '\xA5'));
    EXPECT_EQ(block.substr(76, 4), std::string(4, '\0'));
    EXPECT_EQ(block.substr(80), std::string(65536 - 80, '\xA5'));
}

TEST_F(OpenFileNameRequest, DropsThePresetFileName) {
    std::wmemcpy(file, L"preset", 7);
    Run(L"dump preset.bin");
    EXPECT_EQ(obtest::DumpedBlock(L"preset.bin").substr(76), std::string(65536 - 76, '\0'));
    EXPECT_EQ(File(7), Raw(L"preset\0"));
}

TEST_F(OpenFileNameRequest, GivesThePageOneFile) {
    EXPECT_EQ(Run(L"status 3\nslot \"C:\\tmp\\a b.zip\"\nresult 1"), 1);
    EXPECT_EQ(File(17), Raw(L"C:\\tmp\\a b.zip\0\0#"));
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(OpenFileNameRequest, GivesThePageSeveralFilesInTheFormOfTheirFolderAndNames) {
    EXPECT_EQ(Run(L"status 3\nslot \"C:\\tmp\\\" \"a.txt\" \"\x00fc.txt\"\nresult 1"), 1);
    EXPECT_EQ(File(22), Raw(L"C:\\tmp\\\0a.txt\0\x00fc.txt\0\0#"));
}

TEST_F(OpenFileNameRequest, ReturnsTheResultUnchanged) {
    EXPECT_EQ(Run(L"status 3\nslot \"f\"\nresult -5"), -5);
    EXPECT_EQ(File(4), Raw(L"f\0\0#"));
}

TEST_F(OpenFileNameRequest, CopiesTheListWhateverTheCallersRoom) {
    request.nMaxFile = 2;
    EXPECT_EQ(Run(L"status 3\nslot \"C:\\long.txt\"\nresult 1"), 1);
    EXPECT_EQ(File(14), Raw(L"C:\\long.txt\0\0#"));
}

TEST_F(OpenFileNameRequest, UpdatesNothingBesideTheFile) {
    request.nFileOffset = 11;
    request.nFileExtension = 12;
    request.nFilterIndex = 13;
    const OPENFILENAMEW before = request;
    Run(L"status 3\nslot \"f\"\nresult 1\npoke32 24 0\npoke32 28 7\npoke32 36 7");
    EXPECT_EQ(std::memcmp(&before, &request, sizeof(request)), 0);
}

TEST_F(OpenFileNameRequest, LeavesTheFileAloneWhenTheUserCancels) {
    EXPECT_EQ(Run(L"status 3\nslot \"C:\\f\"\nresult 0"), 0);
    EXPECT_TRUE(FileUntouched());
}

TEST_F(OpenFileNameRequest, DeliversNothingFromABlockThatTheHostDidntTake) {
    EXPECT_EQ(Run(L"exit 0"), 0);
    EXPECT_TRUE(FileUntouched());
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(OpenFileNameRequest, GivesNoFileOnAStatusOfTheOtherPath) {
    for (const wchar_t* status : {L"0", L"1", L"4", L"77"}) {
        EXPECT_EQ(Run(std::wstring(L"slot \"f\"\nresult 1\nstatus ") + status), 1) << status;
        EXPECT_TRUE(FileUntouched()) << status;
        EXPECT_TRUE(context.delivered.empty()) << status;
    }
}

TEST_F(OpenFileNameRequest, BearsACallerWithoutRoomForAFile) {
    request.lpstrFile = nullptr;
    EXPECT_EQ(Run(L"status 3\nslot \"f\"\nresult 1"), 1);
}

TEST_F(OpenFileNameRequest, HandsThePageALink) {
    request.lpstrInitialDir = L"overwritten by the link";
    EXPECT_EQ(Run(L"status 2\ntext 76 \"https://cloud/x?y=1\"\npoke32 24 76\nresult 0"), 0);
    EXPECT_EQ(context.delivered, Lines{L"link https://cloud/x?y=1"});
    EXPECT_TRUE(FileUntouched());
}

TEST_F(OpenFileNameRequest, AnswersTheDriversResultWithALink) {
    EXPECT_EQ(Run(L"slot \"f\"\nstatus 2\ntext 76 \"l\"\npoke32 24 76\nresult 1"), 1);
    EXPECT_EQ(context.delivered, Lines{L"link l"});
    EXPECT_TRUE(FileUntouched());
}

TEST_F(OpenFileNameRequest, HandsOnNoEmptyLink) {
    EXPECT_EQ(Run(L"status 2\ntext 76 \"\"\npoke32 24 76\nresult 1"), 1);
    EXPECT_EQ(Run(L"status 2\ntext 76 \"l\"\npoke32 24 0\nresult 1"), 1);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(OpenFileNameRequest, ReportsFolderAndFileToCleanUpToTheHook) {
    Run(L"status 3\nslot \"f\"\nresult 1\ntext 1000 \"C:\\t\"\npoke32 16 1000\n"
        L"text 1100 \"C:\\t\\f.zip\"\npoke32 20 1100");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] [C:\\t\\f.zip]"});
}

TEST_F(OpenFileNameRequest, ReportsAFolderAloneToTheHook) {
    Run(L"status 3\ntext 1000 \"C:\\t\"\npoke32 16 1000\npoke32 20 0");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] null"});
}

TEST_F(OpenFileNameRequest, HandsOnAnEmptyFileThatIsPresent) {
    Run(L"status 3\ntext 1000 \"C:\\t\"\npoke32 16 1000\ntext 1100 \"\"\npoke32 20 1100");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] []"});
}

TEST_F(OpenFileNameRequest, ReportsNothingToTheHookWithoutAFolder) {
    const std::wstring file =
        L"text 1100 \"C:\\f\"\npoke32 20 1100\nslot \"f\"\nresult 1\nstatus 3\n";
    EXPECT_EQ(Run(file + L"poke32 16 0"), 1);
    EXPECT_EQ(Run(file + L"text 1000 \"\"\npoke32 16 1000"), 1);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(OpenFileNameRequest, CleansUpAlsoAfterALinkOrACancel) {
    Run(L"status 2\ntext 76 \"l\"\npoke32 24 76\ntext 1000 \"C:\\t\"\npoke32 16 1000");
    EXPECT_EQ(context.delivered, (Lines{L"link l", L"cleanup [C:\\t] null"}));
    context.delivered.clear();
    Run(L"status 3\nresult 0\ntext 1000 \"C:\\t\"\npoke32 16 1000");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] null"});
}

const wchar_t kFullAnswer[] = L"status 3\nslot \"C:\\f\"\nresult 1\ntext 1000 \"C:\\t\"\n"
                              L"poke32 16 1000\n";

TEST_F(OpenFileNameRequest, CleansUpAfterTheFileAndBeforeTheBlockIsReleased) {
    std::wstring fileThen;
    bool blockExistedThen = false;
    context.onCall = [&](BrowserCall call) {
        if (call != BrowserCall::NoteCleanupFiles) return;
        fileThen = file;
        blockExistedThen = static_cast<bool>(
            ObLib::UniqueKernelHandle(OpenFileMappingW(FILE_MAP_READ, FALSE, BlockName().c_str())));
    };
    EXPECT_EQ(Run(kFullAnswer), 1);
    EXPECT_EQ(fileThen, L"C:\\f");
    EXPECT_TRUE(blockExistedThen);
}

TEST_F(OpenFileNameRequest, DeliversNothingWhenTheHostFailed) {
    for (const wchar_t* end : {L"exit 1", L"exit -1", L"crash"}) {
        EXPECT_EQ(Run(std::wstring(kFullAnswer) + end), 0) << end;
        EXPECT_TRUE(FileUntouched()) << end;
        EXPECT_TRUE(context.delivered.empty()) << end;
    }
    EXPECT_EQ(Run(L"status 2\ntext 76 \"l\"\npoke32 24 76\nresult 1\nexit 2"), 0);
    EXPECT_TRUE(context.delivered.empty());
}

TEST_F(OpenFileNameRequest, AnswersACancelWhenTheHostIsMissing) {
    const obtest::WithoutHost away;
    EXPECT_EQ(Run(L"exit 0"), 0);
    EXPECT_TRUE(FileUntouched());
    EXPECT_TRUE(browser.Enabled());
}

TEST_F(OpenFileNameRequest, AnswersACancelWhenTheBlockCantBeMade) {
    const ObLib::UniqueKernelHandle other(CreateEventW(nullptr, TRUE, FALSE, BlockName().c_str()));
    ASSERT_TRUE(other);
    EXPECT_EQ(Run(L"exit 0"), 0);
    EXPECT_TRUE(HostScript::Record().empty());
}

TEST_F(OpenFileNameRequest, AnswersACancelWhenTheBlockCantBeMapped) {
    const ObLib::UniqueKernelHandle small(CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, BlockName().c_str()));
    ASSERT_TRUE(small);
    EXPECT_EQ(Run(L"exit 0"), 0);
    EXPECT_TRUE(HostScript::Record().empty());
}

TEST_F(OpenFileNameRequest, EndsTheBlockWithTheRequest) {
    Run(kFullAnswer);
    const ObLib::UniqueKernelHandle gone(
        OpenFileMappingW(FILE_MAP_READ, FALSE, BlockName().c_str()));
    EXPECT_FALSE(gone);
}

TEST_F(OpenFileNameRequest, KeepsTheBrowserDisabledWhileTheHostRuns) {
    Run(L"owner");
    const auto owners = HostScript::RecordOf(L"owner");
    ASSERT_EQ(owners.size(), 1u);
    EXPECT_TRUE(owners[0].starts_with(L"class=WebVellantLayer ")) << owners[0];
    EXPECT_TRUE(owners[0].ends_with(L" enabled=0")) << owners[0];
    EXPECT_TRUE(browser.Enabled());
    EXPECT_EQ(request.hwndOwner, browser.Page());
}

TEST_F(OpenFileNameRequest, ReadsNoListFromAnOffsetOutsideTheTextArea) {
    for (const std::int32_t offset : {0, 24, 75, 77, 65535, 65536, INT_MAX, -2, INT_MIN}) {
        const std::wstring text = std::to_wstring(offset);
        EXPECT_EQ(Run(L"status 3\nresult 1\npoke32 72 " + text + L"\npoke32 16 " + text), 1);
        EXPECT_TRUE(FileUntouched()) << offset;
        EXPECT_TRUE(context.delivered.empty()) << offset;
    }
}

TEST_F(OpenFileNameRequest, CutsAndClosesAListThatRunsOutOfTheBlock) {
    EXPECT_EQ(Run(L"status 3\nresult 1\nfill 65500 36 65\npoke32 72 65520"), 1);
    EXPECT_EQ(File(9), std::wstring(6, L'\x4141') + Raw(L"\0\0#"));
}

TEST_F(OpenFileNameRequest, CutsALinkThatRunsOutOfTheBlock) {
    EXPECT_EQ(Run(L"status 2\nfill 65500 36 65\npoke32 24 65530"), 0);
    EXPECT_EQ(context.delivered, Lines{L"link \x4141\x4141\x4141"});
}

TEST_F(OpenFileNameRequest, TakesAFileToClearUpThatIsNowhereAsAbsent) {
    Run(L"status 3\ntext 1000 \"C:\\t\"\npoke32 16 1000\npoke32 20 65536");
    EXPECT_EQ(context.delivered, Lines{L"cleanup [C:\\t] null"});
}

} // namespace
