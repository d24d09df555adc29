// PDFs that become one in the stages of the manager's module, with a work process that does what
// the test asks.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/unit/services/providers/transforms/ManagerFixture.h"

namespace {

using namespace stagetest;
using Counted = std::vector<std::int32_t>;

constexpr std::uint32_t kCombine = 65;

class CombineStages : public ManagerFixture {
protected:
    void SetUp() override {
        ManagerFixture::SetUp();
        SelectOnly(kCombine);
    }
    std::wstring Pdf(const std::wstring& name, const std::string& content = "pages") {
        return folder_.File(name, "%PDF-" + content);
    }
    void ExpectStopped(const Names& paths, const std::wstring& text) {
        ExpectListStopped(paths, 1, text);
    }
    void ExpectStopped(const char* word, const std::wstring& text) {
        Script(word);
        ExpectStopped(Names{Pdf(L"a.pdf"), Pdf(L"b.pdf")}, text);
    }
    // Runs the stage on three PDFs, about the second of which a question is asked; gives it.
    std::wstring Asked(const char* content, int answer, bool& goesOn) {
        obtest::MessageBoxWatcher boxes;
        boxes.AnswerWith(answer);
        paths_ = {Pdf(L"a.pdf", "A"), Pdf(L"b.pdf", content), Pdf(L"c.pdf", "C")};
        goesOn = List(paths_, 1);
        const auto seen = boxes.Seen();
        EXPECT_EQ(seen.size(), 1u);
        if (seen.empty()) return {};
        EXPECT_EQ(seen[0].defaultButton, IDNO);
        return seen[0].text;
    }

    Names paths_;
};

TEST_F(CombineStages, AreAfterTheList) {
    EXPECT_TRUE(Entries().IsProviderSupport(manager_, kCombine, kTransform));
    EXPECT_TRUE(Entries().GetReadyForConvert(nullptr, manager_, kCombine, kTransform));
    EXPECT_EQ(Counts(), (Counted{0, 1, 0, 0}));
}

TEST_F(CombineStages, NeedNoSettings) {
    const obtest::MessageBoxWatcher boxes;
    EXPECT_TRUE(Entries().ShowProviderOptionsWhenNoOptionsSet(manager_, kCombine, kTransform,
                                                              nullptr, nullptr));
    Entries().ShowProviderOptions(manager_, kCombine, kTransform, nullptr, nullptr);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(CombineStages, PutThePdfsInPickedOrderInThePlaceOfTheFirst) {
    const Names paths{folder_.File(L"1.txt", "text"), Pdf(L"z.pdf", "first"),
                      folder_.File(L"2.txt", "text"), Pdf(L"A.PDF", "second"),
                      Pdf(L"scan", "third"),          folder_.File(L"3.pdf", "no PDF")};
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Results(6), (Names{paths[0], paths[1], paths[2], paths[5]}));
    EXPECT_EQ(Content(paths[1]), "%PDF-z=first;A=second;scan=third;");
    EXPECT_EQ(Files(), (Names{L"1.txt", L"2.txt", L"3.pdf", L"z.pdf"}));
    EXPECT_EQ(Content(paths[5]), "no PDF");
}

TEST_F(CombineStages, KnowAPdfByItsFirstBytes) {
    const Names paths{folder_.File(L"a", "\xEF\xBB\xBF%PDF-x"), folder_.File(L"b", " \r\n%PDF-y"),
                      folder_.File(L"c.pdf", "%PD"), folder_.File(L"d.pdf", "")};
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Results(4), (Names{paths[0], paths[2], paths[3]}));
}

// The work process isn't even started.
TEST_F(CombineStages, ChangeNothingWithFewerThanTwoPdfs) {
    Script("crash-at-start");
    const obtest::MessageBoxWatcher boxes;
    const Names one{folder_.File(L"1.txt", "text"), Pdf(L"a.pdf"), folder_.File(L"2.txt", "text")};
    EXPECT_TRUE(List(one, 1));
    EXPECT_EQ(Results(3), one);
    const Names none{one[0], one[2]};
    EXPECT_TRUE(List(none, 1));
    EXPECT_EQ(Results(2), none);
    EXPECT_EQ(Content(one[1]), "%PDF-pages");
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(CombineStages, TakeAFileThatIsTwiceInTheListOnce) {
    const std::wstring first = Pdf(L"a.pdf", "A"), second = Pdf(L"b.pdf", "B");
    const std::wstring sameAsFirst = folder_ / L"A.pdf";
    EXPECT_TRUE(List({first, first}, 1));
    EXPECT_EQ(Results(2), (Names{first, first}));
    EXPECT_EQ(Content(first), "%PDF-A");
    EXPECT_TRUE(List({first, second, sameAsFirst, second}, 1));
    EXPECT_EQ(Results(4), (Names{first}));
    EXPECT_EQ(Content(first), "%PDF-a=A;b=B;");
}

TEST_F(CombineStages, LeaveAPdfWhoseContentIsElsewhereInItsPlace) {
    const Names paths{Pdf(L"a.pdf", "cover"), Pdf(L"b.pdf", "B"), Pdf(L"c.pdf", "C")};
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Results(3), (Names{paths[0], paths[1]}));
    EXPECT_EQ(Content(paths[0]), "%PDF-cover");
    EXPECT_EQ(Content(paths[1]), "%PDF-b=B;c=C;");
}

TEST_F(CombineStages, AskBeforeASignatureIsRemoved) {
    bool goesOn = false;
    EXPECT_EQ(Asked("signed", IDYES, goesOn),
              L"\u201Cb.pdf\u201D is signed, and combining it with your other PDFs removes its "
              L"signature. Combine it all the same? If you choose No, it is attached as a file of "
              L"its own.");
    EXPECT_TRUE(goesOn);
    EXPECT_EQ(Content(paths_[0]), "%PDF-a=A;b=signed;c=C;");
    EXPECT_EQ(Results(3), (Names{paths_[0]}));
}

TEST_F(CombineStages, LeaveASignedPdfInItsPlaceWhenAskedTo) {
    bool goesOn = false;
    Asked("signed", IDNO, goesOn);
    EXPECT_TRUE(goesOn);
    EXPECT_EQ(Content(paths_[0]), "%PDF-a=A;c=C;");
    EXPECT_EQ(Content(paths_[1]), "%PDF-signed");
    EXPECT_EQ(Results(3), (Names{paths_[0], paths_[1]}));
}

TEST_F(CombineStages, ChangeNothingWhenOnlyOnePdfCanBeCombined) {
    obtest::MessageBoxWatcher boxes;
    boxes.AnswerWith(IDNO);
    const Names paths{Pdf(L"a.pdf", "signed"), Pdf(L"b.pdf", "B")};
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Results(2), paths);
    EXPECT_EQ(Content(paths[1]), "%PDF-B");
}

TEST_F(CombineStages, AskWhetherAPdfForWhichNoPasswordIsTakenGoesOutSeparately) {
    bool goesOn = false;
    EXPECT_NE(Asked("cipher", IDYES, goesOn).find(L"is encrypted in a way"), std::wstring::npos);
    EXPECT_TRUE(goesOn);
    EXPECT_EQ(Content(paths_[0]), "%PDF-a=A;c=C;");
    EXPECT_EQ(Results(3), (Names{paths_[0], paths_[1]}));
    SetUp();
    Asked("cipher", IDNO, goesOn);
    EXPECT_FALSE(goesOn);
    EXPECT_EQ(Content(paths_[0]), "%PDF-A");
}

TEST_F(CombineStages, StopWithTheNameOfADamagedPdf) {
    ExpectStopped(
        Names{Pdf(L"a.pdf"), Pdf(L"b.pdf", "damaged"), Pdf(L"c.pdf")},
        L"\u201cb.pdf\u201d can't be combined with your other PDFs, because it is damaged");
}
TEST_F(CombineStages, StopWithTheNameOfAPdfThatIsTooLarge) {
    ExpectStopped(Names{Pdf(L"a.pdf"), Pdf(L"b.pdf", "huge")}, L"\u201cb.pdf\u201d");
}
TEST_F(CombineStages, StopWithTheNameOfAPdfThatIsDamagedInside) {
    ExpectStopped("combine-damaged", L"\u201cb.pdf\u201d can't be combined");
}
TEST_F(CombineStages, StopWithASentenceOnAFullDisk) {
    ExpectStopped("combine-full", L"can't be written");
}
TEST_F(CombineStages, StopWithASentenceWhenTheProcessDiesAtAPdf) {
    ExpectStopped("combine-crash-in-add", L"\u201ca.pdf\u201d");
}
TEST_F(CombineStages, StopWithASentenceWhenTheProcessDiesWhileItWrites) {
    ExpectStopped("combine-crash-in-write", L"\u201cb.pdf\u201d");
}
TEST_F(CombineStages, StopWithASentenceWhenTheResultIsNoPdf) {
    ExpectStopped("combine-odd", L"can't be combined");
}
TEST_F(CombineStages, StopWithoutTheFile) {
    ExpectStopped(Names{Pdf(L"a.pdf"), folder_ / L"gone.pdf"}, L"\u201cgone.pdf\u201d");
}
TEST_F(CombineStages, ChangeNothingOutsideTheTemporaryPath) {
    const std::wstring path = L"C:\\theirs.pdf";
    ASSERT_TRUE(obtest::WriteFileContent(path, "%PDF-theirs"));
    ExpectStopped(Names{Pdf(L"a.pdf"), path}, L"\u201ctheirs.pdf\u201d");
    DeleteFileW(path.c_str());
}

// 513 units are what a result's buffer takes, and the result has the name of the first PDF.
TEST_F(CombineStages, RefuseAPathThatNoResultMayHave) {
    std::wstring folder = folder_.Path();
    while (folder.size() < 480) {
        folder += L"\\" + std::wstring(std::min<std::size_t>(100, 490 - folder.size()), L'd');
        ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + folder).c_str(), nullptr));
    }
    const auto make = [&](std::size_t length) {
        std::wstring path = folder + L"\\";
        path += std::wstring(length - path.size() - 4, L'n') + L".pdf";
        EXPECT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, "%PDF-long"));
        return path;
    };
    const std::wstring fits = make(513), tooLong = make(514), other = Pdf(L"b.pdf");
    EXPECT_TRUE(List({fits, other}, 1));
    EXPECT_EQ(Results(2), (Names{fits}));
    Pdf(L"b.pdf");
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(List({tooLong, other}, 1));
    EXPECT_EQ(boxes.Seen().size(), 1u);
    EXPECT_EQ(Content(other), "%PDF-pages");
}

TEST_F(CombineStages, StopBeforeTheWorkForMorePdfsThanOneProcessTakes) {
    Script("crash-at-start");
    Names paths;
    for (int number = 0; number < 700; ++number) {
        paths.push_back(Pdf(std::wstring(100, L'n') + std::to_wstring(number) + L".pdf"));
    }
    const obtest::MessageBoxWatcher boxes;
    EXPECT_FALSE(List(paths, 1));
    ASSERT_EQ(boxes.Seen().size(), 1u);
    EXPECT_NE(boxes.Seen()[0].text.find(L"So many PDFs"), std::wstring::npos);
}

TEST_F(CombineStages, DeleteReadOnlyCopiesAndKeepTheFirstOnesAttributes) {
    const Names paths{Pdf(L"a.pdf", "A"), Pdf(L"b.pdf", "B")};
    for (const std::wstring& path : paths)
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Files(), (Names{L"a.pdf"}));
    EXPECT_TRUE(GetFileAttributesW(paths[0].c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_F(CombineStages, EndWithTheSessionAndLeaveOnlyTheCopies) {
    const std::pair<const char*, std::size_t> rows[] = {{"combine-hang-in-add", 2},
                                                        {"combine-hang-in-write", 3}};
    for (const auto& [word, filesThen] : rows) {
        SetUp();
        ExpectListEndedBySession(word, {Pdf(L"a.pdf"), Pdf(L"b.pdf")}, 1, filesThen);
    }
}

// The clean-up after a cancel comes while the stage still has the copies open.
TEST_F(CombineStages, LeaveNothingAfterACancelAndItsCleanUp) {
    for (const char* word : {"combine-hang-in-add", "combine-hang-in-write"}) {
        SetUp();
        Script(word);
        const std::wstring run = folder_.Folder(L"run");
        const Names paths{run + L"\\a.pdf", run + L"\\b.pdf"};
        for (const std::wstring& path : paths) {
            ASSERT_TRUE(obtest::WriteFileContent(path, "%PDF-x"));
        }
        const std::wstring sign = obtest::BesideProgram(L"kinds.txt"); // that the process hangs
        DeleteFileW(sign.c_str());
        Owner owner;
        std::thread worker([&] { EXPECT_FALSE(List(paths, 1, owner.Get())); });
        const auto isAtWork = [&] { return obtest::ReadFileContent(sign) == "hangs"; };
        for (int waited = 0; waited < kLimit && !isAtWork(); waited += 5) Sleep(5);
        EXPECT_TRUE(isAtWork());
        for (const std::wstring& path : paths) EXPECT_TRUE(DeleteFileW(path.c_str()));
        RemoveDirectoryW(run.c_str());
        Entries().Deinit(manager_);
        worker.join();
        EXPECT_EQ(GetFileAttributesW(run.c_str()), INVALID_FILE_ATTRIBUTES) << word;
    }
}

// What is cleaned at the end is the new file, and what went from its parts is in the receipt.
TEST_F(CombineStages, RemovePersonalDataAgainFromTheResult) {
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, kRemoveInfo, kTransform));
    EXPECT_EQ(Counts(), (Counted{0, 1, 1, 1}));
    const Names paths{Pdf(L"a.pdf"), Pdf(L"b.pdf")};
    for (const std::wstring& path : paths) ASSERT_TRUE(Execute(path));
    Pdf(L"a.pdf", "A"); // as if the cleaned copies were PDFs
    Pdf(L"b.pdf", "B");
    EXPECT_TRUE(List(paths, 1));
    EXPECT_EQ(Results(2), (Names{paths[0]}));
    EXPECT_EQ(Content(paths[0]), "clean");
    EXPECT_TRUE(Final({paths[0]}));
    EXPECT_EQ(Results(1), (Names{paths[0]}));
}

// 65 comes before the pictures are made to fit.
TEST_F(CombineStages, ComeBeforeTheFilesAreMadeToFit) {
    const std::wstring resize = std::wstring(kProviderManagerKey) + L"\\Transforms\\2";
    obtest::SetValue(HKEY_CURRENT_USER, resize, L"Aim", L"FitMail");
    obtest::SetValue(HKEY_CURRENT_USER, resize, L"Megabytes", L"1");
    ASSERT_TRUE(Entries().SelectProviders(manager_, kSelectUse, 2, kTransform));
    const Names paths{Pdf(L"a.pdf", std::string(600'000, 'x')), Pdf(L"b.pdf"),
                      folder_.File(L"c.jpg", "pic" + std::string(100'000, 'p'))};
    EXPECT_TRUE(List(paths, 3));
    // The picture stays as it was, as the one file is small.
    EXPECT_EQ(Results(3), (Names{paths[0], paths[2]}));
    EXPECT_EQ(Content(paths[2]).size(), 100'003u);
}

} // namespace
