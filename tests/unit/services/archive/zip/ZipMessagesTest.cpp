#include "services/archive/zip/ZipMessages.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <set>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/texts/FormatMessageText.h"
#include "services/archive/texts/ServiceTextIds.h"
#include "services/archive/zip/ZipRun.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/TestFolder.h"

namespace {

using obarchive::FailureSentence;
using obarchive::ZipResult;
using obtest::TestFolder;

constexpr UINT kHighestResult = 98; // what the ids leave room for

// The compiler stops here when a result is added, and the texts are then due too.
bool IsResult(ZipResult result) {
    switch (result) {
    case ZipResult::Ok:
    case ZipResult::BadContext:
    case ZipResult::NoFiles:
    case ZipResult::NoTarget:
    case ZipResult::UnknownMethod:
    case ZipResult::PasswordMissing:
    case ZipResult::RecoveryNotThere:
    case ZipResult::TargetExists:
    case ZipResult::PathTooLong:
    case ZipResult::EncryptionMissing:
    case ZipResult::SourceMissing:
    case ZipResult::SourceLocked:
    case ZipResult::SourceUnreadable:
    case ZipResult::SourceChanged:
    case ZipResult::DiskFull:
    case ZipResult::TargetUnwritable:
    case ZipResult::OutOfMemory:
    case ZipResult::EngineFailed:
    case ZipResult::Cancelled:
    case ZipResult::Unexpected:
        return true;
    }
    return false;
}

TEST(ZipMessagesTest, EveryFailureHasASentenceOfItsOwnAndNothingElseHas) {
    std::set<std::wstring> sentences;
    std::size_t failures = 0;
    for (UINT number = 0; number <= kHighestResult; ++number) {
        const auto result = static_cast<ZipResult>(number);
        const std::wstring sentence = FailureSentence(result, L"C:\\folder\\notes.txt");
        const bool isFailure =
            IsResult(result) && result != ZipResult::Ok && result != ZipResult::Cancelled;
        EXPECT_EQ(!sentence.empty(), isFailure) << number;
        failures += isFailure;
        if (!isFailure) continue;
        sentences.insert(sentence);
        EXPECT_EQ(sentence.find(L'%'), std::wstring::npos) << number;
        EXPECT_TRUE(sentence.ends_with(L".")) << number;
        EXPECT_EQ(sentence.find(L"folder\\"), std::wstring::npos) << number;
        const std::wstring unnamed = FailureSentence(result, L"");
        EXPECT_EQ(unnamed.find_first_of(L"%\u201C\u201D"), std::wstring::npos) << number;
        EXPECT_FALSE(unnamed.empty()) << number;
    }
    EXPECT_EQ(sentences.size(), failures);
}

TEST(ZipMessagesTest, TheSentencesOfASourceNameIt) {
    EXPECT_EQ(FailureSentence(ZipResult::SourceLocked, L"\\\\?\\C:\\long\\notes.txt"),
              L"\u201Cnotes.txt\u201D is open in another program that doesn't let it be read. "
              L"Close it there and try again.");
    EXPECT_EQ(FailureSentence(ZipResult::SourceLocked, L""),
              L"One of the files is open in another program that doesn't let it be read. Close it "
              L"there and try again.");
    for (const ZipResult result :
         {ZipResult::SourceMissing, ZipResult::SourceLocked, ZipResult::SourceUnreadable,
          ZipResult::SourceChanged, ZipResult::PathTooLong}) {
        EXPECT_TRUE(
            FailureSentence(result, L"C:\\a%1b%%.txt").starts_with(L"\u201Ca%1b%%.txt\u201D"));
    }
}

TEST(ZipMessagesTest, LongNamesLoseTheirMiddle) {
    const std::wstring name = std::wstring(200, L'a') + std::wstring(40, L'b') + L".docx";
    EXPECT_TRUE(FailureSentence(ZipResult::SourceMissing, L"C:\\" + name)
                    .starts_with(L"\u201C" + std::wstring(50, L'a') + L'\u2026' +
                                 std::wstring(24, L'b') + L".docx\u201D"));
}

TEST(ZipMessagesTest, PlacesAreFilledOnce) {
    EXPECT_EQ(obarchive::FormatMessageText(OB_TEXT_VERSION_AND_ADDRESS, {L"%2", L"%%"}),
              L"Version %2 is installed.\n\nDo you want to open this page to see whether there is "
              L"a newer one?\n\n%%");
    EXPECT_EQ(obarchive::FormatMessageText(9999, {L"x"}), L"");
}

TEST(ZipMessagesTest, AFailureIsShownInOneBoxWithTheProductsCaption) {
    const ObLib::UniqueWindow owner(CreateWindowW(L"Static", L"", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10,
                                                  nullptr, nullptr, nullptr, nullptr));
    const obtest::MessageBoxWatcher boxes;
    obarchive::TellFailure(owner.Get(), ZipResult::DiskFull, L"");
    obarchive::TellFailure(reinterpret_cast<HWND>(0xDEAD), ZipResult::DiskFull, L"");
    ASSERT_EQ(boxes.Seen().size(), 2U);
    EXPECT_EQ(boxes.Seen()[0].caption, L"Ombrix Vellant");
    EXPECT_EQ(boxes.Seen()[0].text, L"There is not enough free space on the drive for temporary "
                                    L"files to make the zip.");
    EXPECT_EQ(boxes.Seen()[0].owner, owner.Get());
    EXPECT_TRUE(boxes.Seen()[0].hasIcon);
    EXPECT_EQ(boxes.Seen()[1].owner, nullptr);
}

TEST(ZipMessagesTest, SuccessAndTheUsersOwnCancelShowNoMessage) {
    const obtest::MessageBoxWatcher boxes;
    obarchive::TellFailure(nullptr, ZipResult::Ok, L"C:\\a");
    obarchive::TellFailure(nullptr, ZipResult::Cancelled, L"C:\\a");
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST(FailedFileTest, TheRunReportsWhichSourceItFailedOn) {
    const TestFolder in;
    const TestFolder out;
    obarchive::ZipJob job;
    job.target = out / L"result.zip";
    for (const wchar_t* name : {L"a.txt", L"b.txt", L"c.txt"}) job.files.push_back(in.File(name));
    obarchive::RunPaths paths{L"before", L"before"};
    const std::wstring& failed = paths.failed;
    EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::Ok);
    EXPECT_EQ(failed, L"");
    EXPECT_EQ(paths.target, job.target);
    EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::TargetExists);
    EXPECT_EQ(failed, L"");
    DeleteFileW(job.target.c_str());
    {
        const ObLib::UniqueKernelHandle lock(
            CreateFileW(job.files[1].c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::SourceLocked);
        EXPECT_EQ(failed, job.files[1]);
    }
    DeleteFileW(job.files[2].c_str());
    EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::SourceMissing);
    EXPECT_EQ(failed, job.files[2]);
    job.files[0] = in.Path() + L"\\" + std::wstring(300, L'n');
    EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::PathTooLong);
    EXPECT_EQ(failed, job.files[0]);
    EXPECT_EQ(obtest::ListTree(out.Path()), std::vector<std::wstring>{});
    job.target = out.Path() + L"\\" + std::wstring(300, L'z');
    EXPECT_EQ(obarchive::RunZip(job, {}, &paths), ZipResult::PathTooLong);
    EXPECT_EQ(failed, job.target);
    EXPECT_EQ(paths.target, L"");
}

} // namespace
