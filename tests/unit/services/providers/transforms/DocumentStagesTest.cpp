// Documents that become PDFs in the stages of the manager's module, by a suite that does what the
// test asks and the real work process.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "tests/support/ImportPatch.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/suite/InstalledOffice.h"
#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;

constexpr std::uint32_t kPdf = 3;
const std::string kDocument = "PK\x03\x04 the document";

class DocumentStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(kPdf);
        suitetest::BeginAnew();
        suitetest::Install(suitetest::kProgramFolder);
        suitetest::Register(suitetest::kProgramFolder);
        Suite("good");
    }
    void TearDown() override {
        ManagerFixture::TearDown();
        suitetest::BeginAnew();
    }
    static std::wstring InSuite(const wchar_t* name) {
        return std::wstring(suitetest::kProgramFolder) + L'\\' + name;
    }
    static void Suite(const char* mode) {
        ASSERT_TRUE(obtest::WriteFileContent(InSuite(L"suite.txt"), mode));
    }
    static bool AwaitSuite() {
        for (int waited = 0; waited < kLimit; waited += 10, Sleep(10)) {
            if (obtest::FileExists(InSuite(L"suite-calls.txt"))) return true;
        }
        return false;
    }
    // The text of one box, with the copy unchanged; `goesOn` whether the run does.
    void ExpectSentence(const std::string& content, bool goesOn, const wchar_t* part) {
        const std::wstring path = folder_.File(L"Letter.docx", content);
        const obtest::MessageBoxWatcher boxes;
        EXPECT_EQ(Execute(path), goesOn) << part;
        ASSERT_EQ(boxes.Seen().size(), 1u) << part;
        EXPECT_NE(boxes.Seen()[0].text.find(L"\u201CLetter.docx\u201D"), std::wstring::npos);
        EXPECT_NE(boxes.Seen()[0].text.find(part), std::wstring::npos) << boxes.Seen()[0].text;
        EXPECT_EQ(obtest::ReadFileContent(path), content);
        EXPECT_EQ(Files(), Names{L"Letter.docx"});
    }
};

TEST_F(DocumentStages, PutThePdfBesideAndDeleteTheCopy) {
    ASSERT_TRUE(Execute(folder_.File(L"Letter.docx", kDocument)));
    EXPECT_EQ(Entries().GetProviderTarget(manager_), folder_ / L"Letter.pdf");
    EXPECT_EQ(Files(), Names{L"Letter.pdf"});
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"Letter.pdf"),
              "%PDF-1.6\n% " + kDocument + "\n%%EOF\n");
}

TEST_F(DocumentStages, StopWithASentenceWhenTheSuiteMakesNoPdf) {
    for (const char* mode : {"fail", "nothing", "empty", "half", "crash"}) {
        SetUp();
        Suite(mode);
        ExpectSentence(kDocument, false, L"made no PDF of it. Nothing was attached");
    }
}

TEST_F(DocumentStages, StopWithASentenceWhenTheSuitesFolderCannotBeMade) {
    const std::wstring path = folder_.File(L"Letter.docx", kDocument);
    for (int number = 1; number <= 100; ++number) {
        ASSERT_TRUE(obtest::WriteFileContent(
            folder_.Folder(L"~suite" + std::to_wstring(number)) + L"\\theirs.txt", "theirs"));
    }
    const Names before = Files();
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(Execute(path));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"copy of \u201CLetter.docx\u201D can't be written"),
              std::wstring::npos)
        << testing::PrintToString(boxes.Seen()[0].text);
    EXPECT_EQ(obtest::ReadFileContent(path), kDocument);
    EXPECT_EQ(Files(), before);
    EXPECT_FALSE(obtest::FileExists(InSuite(L"suite-calls.txt")));
}

// The module's clock goes on by more than a minute at each look once the suite works.
ULONGLONG WINAPI FastClock() {
    static ULONGLONG ahead = 0;
    if (obtest::FileExists(std::wstring(suitetest::kProgramFolder) + L"\\suite-calls.txt")) {
        ahead += 70000;
    }
    return GetTickCount64() + ahead;
}

TEST_F(DocumentStages, StopWithASentenceWhenTheSuiteDoesNotAnswer) {
    Suite("hang");
    const obtest::ImportPatch clock("kernel32.dll", "GetTickCount64", &FastClock,
                                    GetModuleHandleW(L"PVXManager64.dll"));
    ASSERT_TRUE(clock.Ok());
    ExpectSentence(kDocument, false,
                   L"can't be converted to PDF, because the office program doesn't answer. Nothing "
                   L"was attached, and your files are unchanged. Please leave the file out and try "
                   L"again.");
}

TEST_F(DocumentStages, StopWithASentenceWhileTheUserHasTheProgramOpen) {
    suitetest::BeginAnew();
    suitetest::InstallOffice();
    const ObLib::UniqueKernelHandle users = suitetest::StartAsUser(suitetest::kText);
    ASSERT_TRUE(users);
    EXPECT_TRUE(obtest::WaitUntil([] {
        return obtest::ReadUtf8File(suitetest::InOffice(L"office-calls.txt")).find(L"ready") !=
               std::wstring::npos;
    }));
    ExpectSentence(kDocument, false,
                   L"can't be converted to PDF while the office program is open. Nothing was "
                   L"attached, and your files are unchanged. Please close the program and try "
                   L"again.");
    EXPECT_EQ(WaitForSingleObject(users.Get(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
    TerminateProcess(users.Get(), 0);
    WaitForSingleObject(users.Get(), kLimit);
    suitetest::ForgetOffice();
}

TEST_F(DocumentStages, PassADocumentWithAPassword) {
    std::string content("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    for (const char sign : std::string("EncryptedPackage")) content += {sign, '\0'};
    ExpectSentence(content, true, L"goes out as it is, because it needs a password");
}

TEST_F(DocumentStages, PassWithOneSentenceARunWithoutASuite) {
    suitetest::BeginAnew();
    ExpectSentence(kDocument, true, L"no office program that makes PDFs is installed");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Execute(folder_ / L"Letter.docx"));
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(DocumentStages, EndWithTheSessionAndLeaveOnlyTheCopy) {
    Suite("hang-in-a-child");
    const std::wstring path = folder_.File(L"Letter.docx", kDocument);
    const obtest::MessageBoxWatcher boxes;
    bool result = true;
    std::thread call([&] { result = Execute(path); });
    EXPECT_TRUE(AwaitSuite());
    Entries().Deinit(manager_);
    call.join();
    EXPECT_FALSE(result);
    EXPECT_TRUE(boxes.Seen().empty());
    EXPECT_EQ(Files(), Names{L"Letter.docx"});
}

// After a cancel the run's folder is cleaned while the suite still works in it.
TEST_F(DocumentStages, EndWithTheSessionAndLeaveNothingAfterACleanUp) {
    Suite("hang");
    const std::wstring path = folder_.File(L"Letter.docx", kDocument);
    bool result = true;
    std::thread call([&] { result = Execute(path); });
    EXPECT_TRUE(AwaitSuite());
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    Entries().Deinit(manager_);
    call.join();
    EXPECT_FALSE(result);
    EXPECT_EQ(GetFileAttributesW(folder_.Path().c_str()), INVALID_FILE_ATTRIBUTES);
}

} // namespace
