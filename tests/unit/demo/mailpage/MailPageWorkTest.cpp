#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/mailpage/Attach.h"
#include "demo/mailpage/Files.h"
#include "demo/mailpage/Options.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace mailpage;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(MailPageOptions, ReadsEveryOption) {
    std::wstring problem;
    const auto options = ParseOptions({L"--url", L"https://mail.yahoo.com/", L"--entry", L"dialog",
                                       L"--single", L"--no-fallback-dialog", L"--auto",
                                       L"--keep-open", L"--filter", L"Text|*.txt", L"--result",
                                       L"r.txt", L"--picture", L"p.png", L"--outbox", L"out"},
                                      problem);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->url, L"https://mail.yahoo.com/");
    EXPECT_EQ(options->entry, Entry::Dialog);
    EXPECT_TRUE(options->single && options->automatic && options->keepOpen);
    EXPECT_FALSE(options->fallbackDialog);
    EXPECT_EQ(options->filter, L"Text|*.txt");
    EXPECT_EQ(options->resultFile, L"r.txt");
    EXPECT_EQ(options->pictureFile, L"p.png");
    EXPECT_EQ(options->outbox, L"out");
}

TEST(MailPageOptions, BeginsOnAMailPageThatAsksByOpenFileName) {
    std::wstring problem;
    const auto options = ParseOptions({}, problem);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->url.rfind(L"https://mail.google.com/", 0), 0u);
    EXPECT_EQ(options->entry, Entry::OpenFileName);
    EXPECT_TRUE(options->fallbackDialog);
}

TEST(MailPageOptions, NamesTheOptionThatItDoesNotKnow) {
    for (const std::vector<std::wstring>& arguments : std::vector<std::vector<std::wstring>>{
             {L"--auto", L"--wrong"}, {L"--wrong", L"1"}, {L"--url"}, {L"--entry", L"other"}}) {
        std::wstring problem;
        EXPECT_FALSE(ParseOptions(arguments, problem));
        EXPECT_FALSE(problem.empty());
    }
}

TEST(MailPageFileList, ReadsOnePathOrAFolderWithNames) {
    EXPECT_THAT(SplitFileList(L"C:\\a\\b.zip\0"), ElementsAre(L"C:\\a\\b.zip"));
    EXPECT_THAT(SplitFileList(L"C:\\a\\\0one.txt\0two.txt\0"),
                ElementsAre(L"C:\\a\\one.txt", L"C:\\a\\two.txt"));
    EXPECT_THAT(SplitFileList(L"C:\\a\0one.txt\0"), ElementsAre(L"C:\\a\\one.txt"));
    EXPECT_THAT(SplitFileList(L"\0"), IsEmpty());
}

TEST(MailPageFileList, MakesAFilterOfPairs) {
    EXPECT_EQ(FilterList(L""), std::wstring(L"All files\0*.*\0", 14));
    EXPECT_EQ(FilterList(L"A|*.a|B|*.b"), std::wstring(L"A\0*.a\0B\0*.b\0", 12));
}

TEST(MailPageFiles, ReportsEverythingThatThePageWasGiven) {
    const obtest::TestFolder folder;
    AttachAnswer answer;
    answer.answer = L"1";
    answer.paths = {L"C:\\\u00FCber.zip"};
    answer.links = {L"first\r\nsecond"};
    answer.cleanup = {{L"C:\\t", L""}, {L"C:\\u", L"C:\\u\\f"}};
    answer.browserDialog = true;
    ASSERT_TRUE(WriteAnswer(folder / L"r.txt", answer));
    EXPECT_EQ(obtest::ReadFileContent(folder / L"r.txt"),
              "answer=1\npath=C:\\\xC3\xBC"
              "ber.zip\nlink=first\\nsecond\ncleanup-folder=C:\\t\n"
              "cleanup-folder=C:\\u\ncleanup-file=C:\\u\\f\nbrowser-dialog=yes\n");
    EXPECT_THAT(obtest::ListTree(folder.Path()), ElementsAre(L"r.txt"));
}

TEST(MailPageFiles, RemovesTemporaryOutputWithEverythingInIt) {
    const obtest::TestFolder folder; // below the temporary folder
    const std::wstring run = folder.Folder(L"run");
    folder.Folder(L"run\\inner");
    folder.File(L"run\\inner\\a.txt");
    folder.File(L"run\\b.zip");
    const std::wstring kept = folder.File(L"kept.txt");
    RemoveTemporary({run + L"\\", run + L"\\b.zip"});
    EXPECT_THAT(obtest::ListTree(folder.Path()), ElementsAre(L"kept.txt"));
}

TEST(MailPageFiles, KeepsFilesOutsideTheTemporaryFolder) {
    const std::wstring folder = L"C:\\app\\mine";
    CreateDirectoryW(folder.c_str(), nullptr);
    ASSERT_TRUE(obtest::WriteFileContent(folder + L"\\a.txt", "mine"));
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    RemoveTemporary({folder, folder + L"\\a.txt"});
    RemoveTemporary({std::wstring(temporary) + L"..\\..\\..\\app\\mine", L""});
    RemoveTemporary({temporary, L""});
    EXPECT_TRUE(obtest::FileExists(folder + L"\\a.txt"));
    EXPECT_NE(GetFileAttributesW(temporary), INVALID_FILE_ATTRIBUTES);
    obtest::RemoveTree(folder);
}

TEST(MailPageFiles, SendsCopies) {
    const obtest::TestFolder folder;
    const std::wstring a = folder.File(L"a.txt", "first");
    EXPECT_TRUE(CopyToOutbox(folder / L"out", {a}));
    EXPECT_EQ(obtest::ReadFileContent(folder / L"out\\a.txt"), "first");
    EXPECT_FALSE(CopyToOutbox(folder / L"out", {folder / L"gone.txt"}));
}

} // namespace
