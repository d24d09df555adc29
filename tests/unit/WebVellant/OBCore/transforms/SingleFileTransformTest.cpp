// A single file that isn't zipped: the converted copy that the page gets.
#include "tests/unit/WebVellant/OBCore/transforms/TransformsFixture.h"

namespace {

using obtest::FakeModules;
using obtest::Lines;

constexpr wchar_t kConversionReport[] =
    L"LogAppletFeature(\"feature.file-conversion\", \"file-conversion.type=IMAGERESIZE\")";
constexpr wchar_t kSendReport[] = L"LogAppletFeature(\"feature.file-send\", "
                                  L"\"file-send.type=attachment|file-send.expiry=no\")";

class SingleFileTransform : public obtest::TransformsFixture {
protected:
    void SetUp() override {
        TransformsFixture::SetUp();
        WantResize();
        Stages(L"0,0,1,0");
        job_.TransformsBeforeArchive = true; // of an earlier run
        job_.ResultPath = L"before";
        job_.ResultIsArchive = true;
    }

    bool Transform() { return obcore::CompressUtils::TransformSingleFile(job_, {source_}); }
    std::wstring Copy() const { return RunFolder() + L"one.jpg"; }
    void ExpectNoResult() {
        EXPECT_EQ(job_.ResultPath, L"before");
        EXPECT_TRUE(job_.Files.empty());
        EXPECT_TRUE(job_.CleanupFolder.empty());
        EXPECT_TRUE(job_.CleanupFile.empty());
        EXPECT_EQ(obtest::ReadFileContent(source_), "one");
    }

    // Nothing is called, and one box names the file.
    void ExpectStopWithTheFilesName() {
        const obtest::MessageBoxWatcher boxes;
        EXPECT_FALSE(Transform());
        EXPECT_TRUE(Written().empty()); // no call of the manager, no dialog, no report
        EXPECT_EQ(LastDialog(), nullptr);
        EXPECT_EQ(Left(), Lines{L"1000\\"});
        const auto seen = boxes.Seen();
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_EQ(seen[0].caption, L"Ombrix Vellant");
        EXPECT_TRUE(seen[0].text.starts_with(L"“one.jpg” can't be copied to the temporary folder."))
            << testing::PrintToString(seen[0].text);
        EXPECT_EQ(seen[0].owner, owner_.Get());
    }

    const std::wstring source_ = sources_.File(L"one.jpg", "one");
};

TEST_F(SingleFileTransform, TransformsACopyInAFolderOfItsOwn) {
    EXPECT_TRUE(Transform());
    EXPECT_EQ(Written({L"SetProviderTarget", L"ExecuteTransforms"}),
              (Lines{L"SetProviderTarget(manager, " + Quote(Copy()) + L") [worker]",
                     L"ExecuteTransforms(manager, null, dialog, " + Quote(RunFolder()) +
                         L", 1, 3, null, null) [worker]"}));
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\one.jpg"}));
    EXPECT_EQ(obtest::ReadFileContent(Copy()), "one");
    EXPECT_EQ(obtest::ReadFileContent(source_), "one");
}

TEST_F(SingleFileTransform, MakesTheCopyTheResult) {
    const std::wstring result = RunFolder() + L"one.pdf";
    Answer(L"GetProviderTarget.one.jpg", result.c_str());
    EXPECT_TRUE(Transform());
    EXPECT_FALSE(job_.TransformsBeforeArchive);
    EXPECT_EQ(job_.Files, Lines{result});
    EXPECT_EQ(job_.ResultFolder, RunFolder());
    EXPECT_EQ(job_.CleanupFolder, RunFolder());
    EXPECT_EQ(job_.ResultPath, result);
    EXPECT_EQ(job_.CleanupFile, result);
    EXPECT_EQ(job_.ResultName, L"one.pdf");
    EXPECT_FALSE(job_.ResultIsArchive);
}

TEST_F(SingleFileTransform, ReportsTheConversionTwiceAndThenTheSend) {
    EXPECT_TRUE(Transform());
    EXPECT_EQ(Written({L"LogAppletFeature"}),
              (Lines{kConversionReport, kConversionReport, kSendReport}));
}

TEST_F(SingleFileTransform, GivesThePageAllFilesThatAStageMade) {
    Stages(L"0,1,0,0");
    const std::wstring first = RunFolder() + L"1.jpg";
    const std::wstring second = RunFolder() + L"2.jpg";
    Answer(L"ExecutePostTransforms.paths", (first + L"|" + second).c_str());
    EXPECT_TRUE(Transform());
    EXPECT_EQ(job_.Files, (Lines{first, second}));
    EXPECT_EQ(job_.ResultPath, first);
}

TEST_F(SingleFileTransform, LeavesTheCopyAfterAFailure) {
    Answer(L"ExecuteTransforms", L"0");
    EXPECT_FALSE(Transform());
    EXPECT_EQ(Left(), (Lines{L"1000\\", L"1000\\one.jpg"}));
    EXPECT_TRUE(Written({L"LogAppletFeature"}).empty());
    ExpectNoResult();
}

TEST_F(SingleFileTransform, StopsWhenTheProviderDropsTheFile) {
    Answer(L"GetProviderTarget.one.jpg", L"");
    EXPECT_FALSE(Transform());
    EXPECT_EQ(Written({L"EndDialog"}), Lines{L"EndDialog(dialog, 1) [worker]"});
    ExpectNoResult();
}

TEST_F(SingleFileTransform, NamesAMissingFileAndStopsBeforeAnyCall) {
    ASSERT_TRUE(DeleteFileW(source_.c_str()));
    ExpectStopWithTheFilesName();
    ASSERT_TRUE(obtest::WriteFileContent(source_, "one"));
    ExpectNoResult();
}

TEST_F(SingleFileTransform, NamesAFileThatAnotherProgramUsesAlone) {
    {
        const ObLib::UniqueKernelHandle alone(
            CreateFileW(source_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(alone);
        ExpectStopWithTheFilesName();
    }
    ExpectNoResult();
}

BOOL WINAPI CopyToFullDisk(LPCWSTR, LPCWSTR, BOOL) {
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(SingleFileTransform, NamesTheFileWhenTheDiskIsFull) {
    const obtest::ImportPatch<decltype(&CopyFileW)> full("kernel32.dll", "CopyFileW",
                                                         &CopyToFullDisk);
    ASSERT_TRUE(full.Ok());
    ExpectStopWithTheFilesName();
    ExpectNoResult();
}

TEST_F(SingleFileTransform, StopsBeforeAnyCallWithoutATemporaryFolder) {
    UseTemporaryFolder(temp_ / L"missing");
    EXPECT_FALSE(Transform());
    EXPECT_TRUE(Written().empty());
    EXPECT_TRUE(Left().empty());
    ExpectNoResult();
}

DWORD WINAPI NoTempPath(DWORD, LPWSTR) { return 0; }

TEST_F(SingleFileTransform, StopsBeforeAnyCallWhenTheTemporaryPathCantBeHad) {
    obtest::ImportPatch<decltype(&GetTempPathW)> noFolder("kernel32.dll", "GetTempPathW",
                                                          &NoTempPath);
    ASSERT_TRUE(noFolder.Ok());
    EXPECT_FALSE(Transform());
    EXPECT_TRUE(Written().empty());
    ExpectNoResult();
}

} // namespace
