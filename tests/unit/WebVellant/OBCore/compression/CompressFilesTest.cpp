#include "OBCore/compression/CompressFiles.h"

#include "OBCore/modules/TextIds.h"
#include "tests/support/RecordedTrace.h"
#include "tests/unit/WebVellant/OBCore/compression/RunFixture.h"

namespace {

using obcore::CompressUtils::CompressFiles;
using obtest::FakeModules;
using obtest::Lines;
using obtest::MessageBoxWatcher;

constexpr wchar_t kZipName[] = L"Ombrix Compressed Attachments.zip";

class Compression : public obtest::RunFixture {
protected:
    void SetUp() override {
        RunFixture::SetUp();
        job_.Files = {first_, second_};
        job_.SendItem = true;
    }

    // The calls of the service before the engine, for these files.
    Lines CallsBeforeEngine(const std::wstring& zipPath, const std::wstring& folder) const {
        return {L"CreateZipContext()",
                L"AddFileW(context5, " + Quote(first_) + L")",
                L"AddFileW(context5, " + Quote(second_) + L")",
                L"SetZipNameW(context5, " + Quote(zipPath) + L")",
                L"SetTempFolderW(context5, " + Quote(folder) + L")",
                L"SetEncrypt(context5, 0)"};
    }
    Lines WholeRun(const std::wstring& zipPath, const std::wstring& folder,
                   const std::wstring& method, const std::wstring& references) const {
        Lines calls = CallsBeforeEngine(zipPath, folder);
        calls.push_back(L"SetCompression(context5, " + method + L")");
        calls.push_back(L"SetDuplicateReferences(context5, " + references + L")");
        calls.push_back(L"Zip(" + Owner() + L", context5)");
        calls.push_back(L"DestroyZipContext(context5)");
        return calls;
    }
    void ExpectNoResult() const {
        EXPECT_FALSE(job_.ResultIsArchive);
        EXPECT_EQ(job_.ResultPath, L"");
        EXPECT_EQ(job_.ResultName, L"");
        EXPECT_EQ(job_.ResultFolder, L"");
        EXPECT_EQ(job_.CleanupFile, L"");
        EXPECT_EQ(job_.CleanupFolder, L"");
    }

    std::wstring first_ = sources_.File(L"first.txt");
    std::wstring second_ = sources_.File(L"second.txt");
};

TEST_F(Compression, DrivesTheServiceInOrder) {
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::Calls(), WholeRun(RunFolder() + kZipName, RunFolder(), L"8", L"0"));
}

TEST_F(Compression, NamesTheZipAsResultAndForCleanUp) {
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_TRUE(job_.ResultIsArchive);
    EXPECT_EQ(job_.ResultPath, RunFolder() + kZipName);
    EXPECT_EQ(job_.ResultName, kZipName);
    EXPECT_EQ(job_.ResultFolder, RunFolder());
    EXPECT_EQ(job_.CleanupFile, RunFolder() + kZipName);
    EXPECT_EQ(job_.CleanupFolder, RunFolder());
    EXPECT_EQ(Left(), (Lines{L"1000\\", std::wstring(L"1000\\") + kZipName}));
    EXPECT_EQ(job_.Files, (Lines{first_, second_}));
}

std::string Narrow(const std::wstring& ascii) {
    std::string text;
    for (const wchar_t character : ascii) text += static_cast<char>(character);
    return text;
}

TEST_F(Compression, TracesTheZipsPath) {
    obtest::ForgetTrace();
    EXPECT_TRUE(CompressFiles(job_));
    const std::string folder = Narrow(RunFolder());
    const std::string zip = folder + Narrow(kZipName);
    EXPECT_EQ(obtest::TraceLines(),
              (std::vector<std::string>{"SetZipName: " + zip, "SetTempFolder: " + folder,
                                        "ZipResult: " + zip}));
}

TEST_F(Compression, NotesAPlainZipForTheUsageReport) {
    job_.Usage.UsageZipx = true;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_TRUE(job_.Usage.UsageZipped);
    EXPECT_FALSE(job_.Usage.UsageZipx);
    EXPECT_FALSE(job_.Usage.UsageEncrypted);
    EXPECT_FALSE(job_.Usage.UsageExpiry);
    EXPECT_FALSE(job_.Usage.UsageLink);
}

TEST_F(Compression, WritesAZipxForThatMethod) {
    job_.CompressionMethod = obcontract::kCompressionZipx;
    EXPECT_TRUE(CompressFiles(job_));
    const std::wstring path = RunFolder() + L"Ombrix Compressed Attachments.zipx";
    EXPECT_EQ(FakeModules::Calls(), WholeRun(path, RunFolder(), L"4294967295", L"0"));
    EXPECT_EQ(job_.ResultPath, path);
    EXPECT_TRUE(job_.Usage.UsageZipx);
}

TEST_F(Compression, HandsDuplicateReferencesOver) {
    job_.DuplicateReferences = true;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::CallsOf({L"SetDuplicateReferences"}),
              Lines{L"SetDuplicateReferences(context5, 1)"});
}

TEST_F(Compression, KeepsTheNameOfASingleFile) {
    job_.Files = {first_};
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(job_.ResultName, L"first.zip");
    EXPECT_EQ(job_.ResultPath, RunFolder() + L"first.zip");
}

TEST_F(Compression, AddsAFileThatIsListedTwiceTwice) {
    job_.Files = {first_, first_};
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::CallsOf({L"AddFileW"}),
              (Lines{L"AddFileW(context5, " + Quote(first_) + L")",
                     L"AddFileW(context5, " + Quote(first_) + L")"}));
}

TEST_F(Compression, MakesAnotherFolderForASecondRunWithinTheSameTick) {
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(job_.ResultFolder, RunFolder(1));
    EXPECT_EQ(Left().size(), 4u);
}

TEST_F(Compression, PutsATooLongPathTogetherAsItIs) {
    job_.DefaultZipName = std::wstring(245, L'z');
    const std::wstring path = RunFolder() + job_.DefaultZipName + L".zip";
    ASSERT_GT(path.size(), static_cast<std::size_t>(MAX_PATH));
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::CallsOf({L"SetZipNameW"}),
              Lines{L"SetZipNameW(context5, " + Quote(path) + L")"});
    EXPECT_EQ(job_.ResultPath, path);
    EXPECT_EQ(job_.CleanupFile, path);
}

TEST_F(Compression, ReportsAFailureOfTheEngineWithoutAnIcon) {
    FakeModules::Answer(L"Zip", L"1");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    ExpectOneBox(boxes, obcore::TextId::ZipFailed, false);
}

TEST_F(Compression, EndsTheContextAndLeavesTheFolderAfterAFailureOfTheEngine) {
    FakeModules::Answer(L"Zip", L"1");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::Calls(), WholeRun(RunFolder() + kZipName, RunFolder(), L"8", L"0"));
    EXPECT_EQ(Left(), Lines{L"1000\\"});
    ExpectNoResult();
}

// Written down among the calls of the service, so that the order shows.
int WINAPI NotedBox(HWND, LPCWSTR, LPCWSTR, UINT) {
    obtest::RecordCall(L"MessageBoxW");
    return IDOK;
}

TEST_F(Compression, EndsTheContextBeforeItReportsAFailureOfTheEngine) {
    FakeModules::Answer(L"Zip", L"1");
    const obtest::ImportPatch<decltype(&MessageBoxW)> box("user32.dll", "MessageBoxW", &NotedBox);
    ASSERT_TRUE(box.Ok());
    EXPECT_FALSE(CompressFiles(job_));
    Lines expected = WholeRun(RunFolder() + kZipName, RunFolder(), L"8", L"0");
    expected.push_back(L"MessageBoxW");
    EXPECT_EQ(FakeModules::Calls(), expected);
    EXPECT_TRUE(job_.Usage.UsageZipped);
}

TEST_F(Compression, TakesEveryOtherAnswerOfTheEngineForAFailure) {
    for (const wchar_t* answer : {L"2", L"256", L"65536", L"2147483648", L"4294967295"}) {
        FakeModules::Answer(L"Zip", answer);
        const MessageBoxWatcher boxes;
        EXPECT_FALSE(CompressFiles(job_)) << "answer " << _wtoi64(answer);
        EXPECT_EQ(boxes.Seen().size(), 1u);
    }
    ExpectNoResult();
}

TEST_F(Compression, HasNothingToNameWithoutFiles) {
    job_.Files.clear();
    EXPECT_FALSE(CompressFiles(job_));
    EXPECT_TRUE(FakeModules::Calls().empty());
    EXPECT_TRUE(Left().empty());
    EXPECT_FALSE(job_.Usage.UsageZipped);
}

DWORD WINAPI NoTempPath(DWORD, LPWSTR) { return 300; }

TEST_F(Compression, FailsSilentlyWithoutATemporaryFolder) {
    obtest::ImportPatch<decltype(&GetTempPathW)> noFolder("kernel32.dll", "GetTempPathW",
                                                          &NoTempPath);
    ASSERT_TRUE(noFolder.Ok());
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    EXPECT_TRUE(FakeModules::Calls().empty());
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_FALSE(job_.Usage.UsageZipped);
    ExpectNoResult();
}

TEST_F(Compression, DoesNothingWhenNothingIsToBeZipped) {
    job_.SendItem = false;
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_TRUE(FakeModules::Calls().empty());
    EXPECT_TRUE(Left().empty());
    EXPECT_FALSE(job_.Usage.UsageZipped);
    ExpectNoResult();
}

TEST_F(Compression, RunsOnWhereNoFolderCanBeMade) {
    const std::wstring missing = temp_ / L"missing";
    UseTemporaryFolder(missing);
    FakeModules::Answer(L"Zip", L"1");
    const MessageBoxWatcher boxes;
    EXPECT_FALSE(CompressFiles(job_));
    EXPECT_EQ(FakeModules::Calls(),
              WholeRun(missing + L"\\" + kZipName, missing + L"\\", L"8", L"0"));
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_TRUE(Left().empty());
}

// The temporary folder was missing for a moment: the zip is in it and in no folder of its own.
TEST_F(Compression, NeverNamesTheTemporaryFolderForTheCleanUp) {
    const std::wstring missing = temp_ / L"missing";
    UseTemporaryFolder(missing);
    EXPECT_TRUE(CompressFiles(job_));
    EXPECT_EQ(job_.ResultPath, missing + L"\\" + kZipName);
    EXPECT_EQ(job_.CleanupFile, job_.ResultPath);
    EXPECT_EQ(job_.CleanupFolder, L"");
    EXPECT_EQ(job_.ResultFolder, L"");
}

} // namespace
