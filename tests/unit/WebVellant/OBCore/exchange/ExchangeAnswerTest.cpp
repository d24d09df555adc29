#include "OBCore/exchange/ExchangeAnswer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "tests/unit/WebVellant/OBCore/exchange/GuardedBlock.h"

namespace {

using namespace obcore;
using obtest::GuardedBlock;
using obtest::kBlockBytes;
using obtest::LongText;
using obtest::Raw;

// Every byte of a block that isn't named by a test must be as it was.
class LinkAnswer : public testing::Test {
protected:
    GuardedBlock block{0xCC};
    GuardedBlock expected{0xCC};
};

TEST_F(LinkAnswer, IsAtTheFirstTextOffsetWithStatus2) {
    WriteLinkAnswer(*block, L"https://cloud/x");
    expected.Poke32(0, 2);
    expected.Poke32(24, 76);
    expected.PutUnits(76, Raw(L"https://cloud/x\0"));
    EXPECT_EQ(block.Copy(), expected.Copy());
}

TEST_F(LinkAnswer, IsCutTo32730WideCharactersWithItsNul) {
    WriteLinkAnswer(*block, LongText(40000));
    EXPECT_EQ(ReadText(*block, 76), LongText(32729));
    EXPECT_EQ(block.U16(65534), 0);
}

TEST_F(LinkAnswer, KeepsALongestTextWhole) {
    WriteLinkAnswer(*block, LongText(32729));
    EXPECT_EQ(ReadText(*block, 76), LongText(32729));
    EXPECT_EQ(block.I32(24), 76);
}

class DialogAnswer : public testing::Test {
protected:
    std::vector<std::wstring> PathsRead() {
        PickedFiles picked;
        ReadDialogResult(*block, picked);
        return picked.paths;
    }
    GuardedBlock block;
    GuardedBlock expected;
};

TEST_F(DialogAnswer, ContainsAnEmptyFolderAndTheListOfFullPaths) {
    WriteDialogAnswer(*block, {L"C:\\a.txt", L"D:\\b"});
    expected.Poke32(0, 4);
    expected.Poke32(28, 76);
    expected.Poke32(32, 78);
    expected.PutUnits(76, Raw(L"\0C:\\a.txt\0D:\\b\0\0"));
    EXPECT_EQ(block.Copy(), expected.Copy());
}

TEST_F(DialogAnswer, LeavesTheBytesAfterTheFlagByte) {
    GuardedBlock used(0xCC);
    WriteDialogAnswer(*used, {L"x"});
    EXPECT_EQ(used.U8(25), 0xCC);
    EXPECT_EQ(used.U8(26), 0xCC);
    EXPECT_EQ(used.U8(27), 0xCC);
    EXPECT_EQ(used.I32(36), static_cast<std::int32_t>(0xCCCCCCCC));
    EXPECT_EQ(used.Units(76, 5), Raw(L"\0x\0\0\xcccc"));
}

TEST_F(DialogAnswer, IsReadBackInOrder) {
    const std::vector<std::wstring> paths = {L"C:\\1", L"C:\\\x4e2d\x6587", L"C:\\1"};
    WriteDialogAnswer(*block, paths);
    block.Poke8(24, 0x7F);
    PickedFiles picked = {1, L"old", {L"old"}};
    ReadDialogResult(*block, picked);
    EXPECT_EQ(picked.flag, 0x7F);
    EXPECT_EQ(picked.folder, L"");
    EXPECT_EQ(picked.paths, paths);
}

TEST_F(DialogAnswer, WithoutPathsIsAnEmptyList) {
    WriteDialogAnswer(*block, {});
    EXPECT_EQ(block.I32(0), 4);
    EXPECT_EQ(block.U16(78), 0);
    EXPECT_TRUE(PathsRead().empty());
    block.PutUnits(78, Raw(L"\0behind\0\0"));
    EXPECT_TRUE(PathsRead().empty());
}

TEST_F(DialogAnswer, CutsEachPathToTheRoomLeft) {
    // From 78 there is room for 32729 wide characters.
    WriteDialogAnswer(*block, {LongText(32700), LongText(100), LongText(100)});
    const std::vector<std::wstring> expectedPaths = {LongText(32700), LongText(27)};
    EXPECT_EQ(PathsRead(), expectedPaths);
    EXPECT_EQ(block.U16(65534), 0);
}

TEST_F(DialogAnswer, ThatFillsTheBlockExactlyNeedsNoClosingNul) {
    WriteDialogAnswer(*block, {LongText(32728)});
    EXPECT_EQ(PathsRead(), std::vector<std::wstring>{LongText(32728)});
}

TEST_F(DialogAnswer, WithTheFolderOfAnotherWriterIsReadWithIt) {
    block.Poke32(28, 100);
    block.Poke32(32, 200);
    block.PutUnits(100, Raw(L"C:\\folder\0"));
    block.PutUnits(200, Raw(L"C:\\folder\\a\0\0"));
    PickedFiles picked;
    ReadDialogResult(*block, picked);
    EXPECT_EQ(picked.folder, L"C:\\folder");
    EXPECT_EQ(picked.paths, std::vector<std::wstring>{L"C:\\folder\\a"});
}

TEST_F(DialogAnswer, WithAListThatIsNowhereGivesNoPaths) {
    block.PutUnits(76, L"no list");
    for (const std::int32_t offset : {0, 24, 77, 65536, INT_MAX, -78, INT_MIN}) {
        block.Poke32(32, offset);
        block.Poke32(28, offset);
        EXPECT_TRUE(PathsRead().empty()) << offset;
    }
}

TEST_F(DialogAnswer, ThatIsNeverClosedEndsWithTheBlock) {
    block.Poke32(32, 65522);
    block.PutUnits(65522, Raw(L"ab\0cdef"));
    EXPECT_EQ(PathsRead(), (std::vector<std::wstring>{L"ab", L"cdef"}));
}

class FileList : public testing::Test {
protected:
    GuardedBlock block;
};

TEST_F(FileList, IsReadWithAllItsNuls) {
    block.Poke32(72, 90);
    block.PutUnits(90, Raw(L"C:\\f\\\0a\0b\0\0behind"));
    EXPECT_EQ(ReadFileList(*block), Raw(L"C:\\f\\\0a\0b\0\0"));
}

TEST_F(FileList, OfOneFileEndsWithTwoNuls) {
    block.Poke32(72, 76);
    block.PutUnits(76, Raw(L"C:\\f.zip\0\0"));
    EXPECT_EQ(ReadFileList(*block), Raw(L"C:\\f.zip\0\0"));
}

TEST_F(FileList, ThatIsNowhereIsEmpty) {
    for (const std::int32_t offset : {0, 75, 77, 65536, -2, INT_MIN}) {
        block.Poke32(72, offset);
        EXPECT_TRUE(ReadFileList(*block).empty()) << offset;
    }
}

TEST_F(FileList, ThatIsNeverClosedIsCutAndClosed) {
    block.Poke32(72, 65526);
    block.PutUnits(65526, Raw(L"ab\0cd"));
    EXPECT_EQ(ReadFileList(*block), Raw(L"ab\0\0\0"));
    block.Poke32(72, 65534);
    EXPECT_EQ(ReadFileList(*block), Raw(L"\0"));
}

class CleanupNames : public testing::Test {
protected:
    void Expect(std::int32_t folder, std::int32_t file) {
        EXPECT_EQ(block.I32(16), folder);
        EXPECT_EQ(block.I32(20), file);
    }
    GuardedBlock block;
};

TEST_F(CleanupNames, ComeAfterTheLinkText) {
    WriteLinkAnswer(*block, L"link");
    WriteCleanupNames(*block, L"C:\\t", L"C:\\t\\f");
    Expect(86, 96);
    EXPECT_EQ(block.Units(76, 18), Raw(L"link\0C:\\t\0C:\\t\\f\0\0"));
}

TEST_F(CleanupNames, ComeAfterTheListInTheFileSlot) {
    block.Poke32(0, 3);
    block.Poke32(72, 100);
    block.PutUnits(100, Raw(L"C:\\a\\\0b\0\0"));
    WriteCleanupNames(*block, L"T", L"F");
    Expect(118, 122);
    EXPECT_EQ(block.Units(118, 4), Raw(L"T\0F\0"));
}

TEST_F(CleanupNames, ComeAfterTheTwoNulsOfACancelledRun) {
    block.Poke32(0, 3);
    block.Poke32(72, 100);
    WriteCleanupNames(*block, L"T", L"F");
    Expect(104, 108);
}

TEST_F(CleanupNames, ComeAfterTheListOfTheDialogPath) {
    WriteDialogAnswer(*block, {L"C:\\a", L"b"});
    WriteCleanupNames(*block, L"T", L"F");
    Expect(94, 98);
    EXPECT_EQ(block.Units(76, 13), Raw(L"\0C:\\a\0b\0\0T\0F\0"));
}

TEST_F(CleanupNames, ComeAfterAnEmptyListOfTheDialogPath) {
    WriteDialogAnswer(*block, {});
    WriteCleanupNames(*block, L"T", L"F");
    Expect(82, 86);
}

TEST_F(CleanupNames, AreClearedOnAStatusThatIsNoAnswer) {
    for (const std::int32_t status : {0, 1, 5, -1}) {
        GuardedBlock filled(0xCC);
        filled.Poke32(0, status);
        auto expected = filled.Copy();
        std::fill(expected.begin() + 16, expected.begin() + 24, std::uint8_t{0});
        WriteCleanupNames(*filled, L"T", L"F");
        EXPECT_EQ(filled.Copy(), expected) << status;
    }
}

TEST_F(CleanupNames, MayBeEmptyTexts) {
    WriteLinkAnswer(*block, L"x");
    WriteCleanupNames(*block, L"", L"");
    Expect(80, 82);
    EXPECT_EQ(block.Units(76, 4), Raw(L"x\0\0\0"));
}

TEST_F(CleanupNames, TakeNoRoomWhenTheyAreNull) {
    WriteLinkAnswer(*block, L"x");
    WriteCleanupNames(*block, L"T", nullptr);
    Expect(80, 0);
    WriteCleanupNames(*block, nullptr, L"F");
    Expect(0, 80);
    EXPECT_EQ(block.Units(80, 2), Raw(L"F\0"));
    WriteCleanupNames(*block, nullptr, nullptr);
    Expect(0, 0);
}

TEST_F(CleanupNames, AreCutToTheRoomLeft) {
    block.Poke32(0, 3);
    block.Poke32(72, 65520);
    block.PutUnits(65520, Raw(L"x\0\0"));
    WriteCleanupNames(*block, L"abcdefgh", L"file");
    Expect(65526, 65536);
    EXPECT_EQ(block.Units(65526, 5), Raw(L"abcd\0"));
    EXPECT_EQ(ReadText(*block, block.I32(20)), L"");
}

TEST_F(CleanupNames, HaveTheBlocksEndAsTheirOffsetWhenItIsFull) {
    WriteLinkAnswer(*block, LongText(40000));
    const auto texts = block.Copy();
    WriteCleanupNames(*block, L"T", L"F");
    Expect(65536, 65536);
    EXPECT_TRUE(std::equal(texts.begin() + 24, texts.end(), block.Bytes() + 24));
    EXPECT_EQ(ReadText(*block, 65536), L"");
}

TEST_F(CleanupNames, ArentWrittenAfterAnAnswerThatIsNowhere) {
    for (const std::int32_t status : {2, 3, 4}) {
        for (const std::int32_t offset : {0, 33, 75, 77, 70000, -4}) {
            GuardedBlock broken;
            broken.Poke32(0, status);
            broken.Poke32(status == 2 ? 24 : status == 3 ? 72 : 32, offset);
            const auto before = broken.Copy();
            WriteCleanupNames(*broken, L"T", L"F");
            EXPECT_EQ(broken.Copy(), before) << status << " " << offset;
        }
    }
}

} // namespace
