// A document's way through a suite that does what the test asks.
#include "services/providers/suite/DocumentToPdf.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/services/providers/suite/ConversionFixture.h"

using namespace providers;
using namespace suitetest;

namespace {

class DocumentToPdf : public ConversionFixture {
protected:
    void SetUp() override {
        ConversionFixture::SetUp();
        Install(kProgramFolder);
        Register(kProgramFolder);
    }
    void TearDown() override { BeginAnew(); }

    static std::wstring InSuite(const wchar_t* name) {
        return std::wstring(kProgramFolder) + L'\\' + name;
    }
    SuiteOutcome Convert(const char* mode, const SuiteLimits& limits = {}) {
        EXPECT_TRUE(obtest::WriteFileContent(InSuite(L"suite.txt"), mode));
        return ConvertAs(name_, limits,
                         hasRealWorkProcess_ ? L"real\\PVXTransform64.exe"
                                             : obcontract::kTransformWorkFileName);
    }
    // Lines of the suite's record that begin with the word, without it.
    static Lines Calls(const std::wstring& word) {
        Lines lines;
        for (const std::wstring& line : LinesOf(InSuite(L"suite-calls.txt"))) {
            if (line.starts_with(word + L' ')) lines.push_back(line.substr(word.size() + 1));
        }
        return lines;
    }
    static bool AwaitProcesses(std::size_t count) {
        for (DWORD waited = 0; waited < kLimit; waited += 10, Sleep(10)) {
            if (Calls(L"process").size() >= count) return true;
        }
        return false;
    }
    // Expects that no process of the suite runs and nothing but the target is left.
    void ExpectNothingLeft(const char* mode) { ExpectNothingLeftOf(Calls(L"process"), mode); }
    void ExpectFailed(const char* mode, SuiteOutcome outcome, const SuiteLimits& limits = {}) {
        EXPECT_EQ(Convert(mode, limits), outcome) << mode;
        EXPECT_EQ(Target(), "") << mode;
        ExpectNothingLeft(mode);
    }
    // The same for a limit within which so many processes of the suite have started, which takes
    // its time on a busy machine.
    void ExpectHung(const char* mode, std::size_t processes) {
        std::size_t started = 0;
        for (DWORD limit = 1000; started < processes && limit < 60000; limit *= 2) {
            DeleteFileW(InSuite(L"suite-calls.txt").c_str());
            ExpectFailed(mode, SuiteOutcome::NoAnswer, {limit, 100000});
            started = Calls(L"process").size();
        }
        EXPECT_EQ(started, processes) << mode;
    }
    // Ends the call once so many processes of the suite run.
    void ExpectCancelled(const char* mode, std::size_t processes) {
        std::thread ender([&] {
            EXPECT_TRUE(AwaitProcesses(processes));
            SetEvent(ended_.Get());
        });
        ExpectFailed(mode, SuiteOutcome::Cancelled);
        ender.join();
    }

    std::wstring name_ = L"letter.docx";
    bool hasRealWorkProcess_ = false;
};

TEST_F(DocumentToPdf, IsWrittenIntoTheTarget) {
    EXPECT_EQ(Convert("good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    EXPECT_EQ(*obtest::ReadFileContent(folder_ / L"letter"), kDocument);
    ExpectNothingLeft("good");
}

TEST_F(DocumentToPdf, IsMadeOfACopyWithANameOfItsOwn) {
    name_ = L"--accept=x \u00FC.DOCX";
    ASSERT_EQ(Convert("good"), SuiteOutcome::Converted);
    const std::wstring folder = run_ + L"\\~suite1\\";
    std::wstring url = folder + L"profile";
    for (wchar_t& sign : url) sign = sign == L'\\' ? L'/' : sign;
    const std::vector<std::wstring> wanted = {L"--headless",
                                              L"--norestore",
                                              L"--nolockcheck",
                                              L"--nologo",
                                              L"--nodefault",
                                              L"-env:UserInstallation=file:///" + url,
                                              L"--convert-to",
                                              L"pdf",
                                              L"--outdir",
                                              folder + L"result",
                                              folder + L"document.docx"};
    EXPECT_EQ(Calls(L"argument"), wanted);
    EXPECT_EQ(Calls(L"temporary"), std::vector<std::wstring>{folder + L"temporary\\"});
}

TEST_F(DocumentToPdf, IsConvertedWithSettingsThatForbidMacrosAndLinks) {
    ASSERT_EQ(Convert("good"), SuiteOutcome::Converted);
    const std::wstring text = obtest::ReadUtf8File(InSuite(L"suite-calls.txt"));
    EXPECT_NE(text.find(L"DisableMacrosExecution"), std::wstring::npos);
    EXPECT_NE(text.find(L"BlockUntrustedRefererLinks"), std::wstring::npos);
}

TEST_F(DocumentToPdf, UsesAFolderOfItsOwnBesideFilesThatWereThere) {
    ASSERT_TRUE(CreateDirectoryW((run_ + L"\\~suite1").c_str(), nullptr));
    ASSERT_TRUE(obtest::WriteFileContent(run_ + L"\\~suite1\\mine.txt", "mine"));
    EXPECT_EQ(Convert("good"), SuiteOutcome::Converted);
    EXPECT_EQ(obtest::ListTree(run_),
              (std::vector<std::wstring>{L"~suite1\\", L"~suite1\\mine.txt"}));
}

TEST_F(DocumentToPdf, TakesAFolderWithThePrefixForLongPaths) {
    run_ = L"\\\\?\\" + run_;
    EXPECT_EQ(Convert("good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    ASSERT_FALSE(Calls(L"argument").empty());
    EXPECT_EQ(Calls(L"argument").back(), run_.substr(4) + L"\\~suite1\\document.docx");
}

// Programs of others can't open paths as long as those below such a folder would be.
TEST_F(DocumentToPdf, WorksInAShortFolderWhenThatOfTheCopyIsLong) {
    run_ += L'\\' + std::wstring(220 - run_.size(), L'd');
    ASSERT_TRUE(CreateDirectoryW(run_.c_str(), nullptr));
    EXPECT_EQ(Convert("good"), SuiteOutcome::Converted);
    EXPECT_EQ(Target(), kPdf);
    ASSERT_FALSE(Calls(L"argument").empty());
    EXPECT_EQ(Calls(L"argument").back(), folder_ / L"~suite1\\document.docx");
    EXPECT_FALSE(obtest::FileExists(folder_ / L"~suite1"));
    ExpectNothingLeft("good");
}

TEST_F(DocumentToPdf, WorksInTheTemporaryFolderWhenEachFolderOfTheRunIsLong) {
    const obtest::TestFolder beside;
    const std::wstring temporary = beside.Path().substr(0, beside.Path().rfind(L'\\'));
    run_ = temporary + L'\\' + std::wstring(150, L'd');
    ASSERT_TRUE(CreateDirectoryW(run_.c_str(), nullptr));
    EXPECT_EQ(Convert("good"), SuiteOutcome::Converted);
    ASSERT_FALSE(Calls(L"argument").empty());
    EXPECT_EQ(Calls(L"argument").back(), temporary + L"\\~suite1\\document.docx");
    EXPECT_FALSE(obtest::FileExists(temporary + L"\\~suite1"));
    EXPECT_TRUE(RemoveDirectoryW(run_.c_str()));
}

TEST_F(DocumentToPdf, FailsWithoutAWholeResult) {
    for (const char* mode : {"fail", "nothing", "empty", "half", "no-pdf", "crash"}) {
        ExpectFailed(mode, SuiteOutcome::Failed);
        EXPECT_FALSE(Calls(L"process").empty()) << mode;
    }
}

TEST_F(DocumentToPdf, EndsASuiteThatHangs) {
    ExpectHung("hang", 1);
    ExpectHung("hang-in-a-child", 2);
    ExpectFailed("hang", SuiteOutcome::NoAnswer, {100000, 500});
}

TEST_F(DocumentToPdf, EndsASuiteThatAsks) { ExpectHung("ask", 1); }

TEST_F(DocumentToPdf, EndsTheSuiteAtOnceWhenTheCallEnds) { ExpectCancelled("hang", 1); }

TEST_F(DocumentToPdf, EndsTheSuitesOwnProcessesWhenTheCallEnds) {
    ExpectCancelled("hang-in-a-child", 2);
}

TEST_F(DocumentToPdf, StartsNothingOnceTheCallHasEnded) {
    SetEvent(ended_.Get());
    EXPECT_EQ(Convert("good"), SuiteOutcome::Cancelled);
    EXPECT_TRUE(Calls(L"process").empty());
}

// A document with a password is a package in the older container.
TEST_F(DocumentToPdf, StartsNothingForADocumentWithAPassword) {
    hasRealWorkProcess_ = true;
    std::string content("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    for (const char sign : std::string("EncryptedPackage")) content += {sign, '\0'};
    source_ = Open(folder_.File(L"secret", content), GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(Convert("good"), SuiteOutcome::Protected);
    EXPECT_TRUE(Calls(L"process").empty());
    EXPECT_EQ(obtest::ListTree(run_), std::vector<std::wstring>());
}

// The suite may be able to open what the work process can't.
TEST_F(DocumentToPdf, LeavesADocumentThatTheWorkProcessCannotReadToTheSuite) {
    for (const char* word : {"crash", "damaged", "too-large"}) {
        WorkScript(word);
        target_.Reset();
        ASSERT_TRUE(DeleteFileW((folder_ / L"target").c_str()));
        target_ = Open(folder_ / L"target", GENERIC_READ | GENERIC_WRITE, CREATE_NEW);
        EXPECT_EQ(Convert("good"), SuiteOutcome::Converted) << word;
    }
}

TEST_F(DocumentToPdf, StartsNothingForAnotherKindOfFile) {
    name_ = L"letter.zip";
    EXPECT_EQ(Convert("good"), SuiteOutcome::NotADocument);
    EXPECT_FALSE(IsDocument(source_.Get(), name_));
    EXPECT_TRUE(IsDocument(source_.Get(), L"letter.xlsx"));
    EXPECT_TRUE(Calls(L"process").empty());
}

TEST_F(DocumentToPdf, NeedsASuite) {
    Unregister();
    EXPECT_EQ(Convert("good"), SuiteOutcome::NoSuite);
    EXPECT_TRUE(Calls(L"process").empty());
}

TEST_F(DocumentToPdf, FailsWhenTheSuiteIsNoProgram) {
    ASSERT_TRUE(obtest::WriteFileContent(InSuite(L"soffice.exe"), "no program"));
    EXPECT_EQ(Convert("good"), SuiteOutcome::Failed);
    EXPECT_EQ(obtest::ListTree(run_), std::vector<std::wstring>());
}

TEST_F(DocumentToPdf, ReportsATargetAndAFolderThatCannotBeWritten) {
    target_ = Open(folder_ / L"target", GENERIC_READ, OPEN_EXISTING);
    ExpectFailed("good", SuiteOutcome::Unwritable);
    run_ += L"\\missing";
    EXPECT_EQ(Convert("good"), SuiteOutcome::Unwritable);
}

} // namespace
