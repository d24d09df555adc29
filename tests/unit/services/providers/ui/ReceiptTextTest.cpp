#include "services/providers/ui/ReceiptText.h"

#include <gtest/gtest.h>

#include <iterator>

#include "services/transforms/personal/Findings.h"

using namespace providers;

namespace {

ReceiptFile Cleaned(const wchar_t* name, std::vector<WorkFound> removed) {
    return {name, WorkResult::Changed, std::move(removed)};
}
ReceiptFile Rest(const wchar_t* name, WorkResult result) { return {name, result, {}}; }
ReceiptFile Clean(const wchar_t* name) { return {name, WorkResult::Unchanged, {}}; }

TEST(ReceiptText, ReportsFirstWhichFilesCannotBeCleaned) {
    const auto one = Rest(L"a.doc", WorkResult::NotSupported);
    EXPECT_EQ(ReceiptHeadline({Cleaned(L"b.jpg", {{"position", 1}}), one}),
              L"One file can't be cleaned. What it contains will be sent as it is.");
    EXPECT_EQ(ReceiptHeadline({one, one}),
              L"2 files can't be cleaned. What they contain will be sent as it is.");
}

TEST(ReceiptText, CountsTheFilesThatWereCleaned) {
    const auto cleaned = Cleaned(L"b.jpg", {{"position", 1}});
    EXPECT_EQ(ReceiptHeadline({cleaned}), L"Personal data was removed from your file.");
    EXPECT_EQ(ReceiptHeadline({cleaned, Clean(L"c.jpg")}),
              L"Personal data was removed from one of your 2 files.");
    EXPECT_EQ(ReceiptHeadline({cleaned, Clean(L"c.jpg"), cleaned}),
              L"Personal data was removed from 2 of your 3 files.");
    EXPECT_EQ(ReceiptHeadline({Clean(L"c.jpg")}), L"No personal data was found in your files.");
}

TEST(ReceiptText, ListsFileByFileWhatWasRemoved) {
    EXPECT_EQ(ReceiptList({Cleaned(L"b.jpg", {{"position", 1}, {"camera", 3}}), Clean(L"c.jpg"),
                           Rest(L"a.doc", WorkResult::Damaged)},
                          false),
              L"a.doc: can't be cleaned, the file is damaged\r\n"
              L"b.jpg: removed\r\n"
              L"      where it was taken\r\n"
              L"      camera, lens and serial numbers (3 times)\r\n"
              L"c.jpg: nothing found\r\n");
}

TEST(ReceiptText, ListsWhatADocumentStillContains) {
    const ReceiptFile clean{
        L"c.pdf", WorkResult::Unchanged, {{"stays.comments", 2}, {"stays.macros", 1}}};
    EXPECT_EQ(ReceiptList({Cleaned(L"b.docx", {{"authors", 1}, {"stays.deleted-text", 1}}), clean},
                          false),
              L"b.docx: removed\r\n"
              L"      who wrote its comments and changes, and when\r\n"
              L"b.docx: still contains\r\n"
              L"      deleted text that its record of changes keeps\r\n"
              L"c.pdf: nothing found\r\n"
              L"c.pdf: still contains\r\n"
              L"      comments (2 times)\r\n"
              L"      macros\r\n");
}

TEST(ReceiptText, ListsTheRestAloneWhenNoReceiptIsWanted) {
    EXPECT_EQ(
        ReceiptList(
            {Cleaned(L"b.jpg", {{"position", 1}}), Rest(L"a.doc", WorkResult::NotSupported)}, true),
        L"a.doc: can't be cleaned, this kind of file isn't supported\r\n");
}

TEST(ReceiptText, HasAReasonForEachResult) {
    EXPECT_EQ(RestReason(WorkResult::TooLarge), L"the file is too large");
    EXPECT_EQ(RestReason(WorkResult::ProcessFailed), L"reading the file failed");
    EXPECT_EQ(RestReason(WorkResult::Unreadable), L"reading the file failed");
    EXPECT_EQ(RestReason(WorkResult::Encrypted), L"it needs a password");
    EXPECT_EQ(RestReason(WorkResult::OtherCipher), L"it needs a password");
    EXPECT_EQ(RestReason(WorkResult::Locked), L"changing it needs its owner's password");
    EXPECT_EQ(RestReason(WorkResult::Signed),
              L"it is signed, and any change would break the signature");
}

// A kind that the work process learns needs a text here.
TEST(ReceiptText, KnowsEveryKindThatTheWorkProcessReports) {
    const std::wstring other = FoundText({"something-new", 1});
    EXPECT_EQ(other, L"other data");
    for (int kind = 0; kind < static_cast<int>(transforms::kFindingKinds); ++kind) {
        if (kind == static_cast<int>(transforms::FindingKind::Unreadable)) continue;
        const auto name = transforms::FindingName(static_cast<transforms::FindingKind>(kind));
        EXPECT_NE(FoundText({std::string(name), 1}), other) << name;
    }
}

} // namespace
