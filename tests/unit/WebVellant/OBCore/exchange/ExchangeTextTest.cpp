#include "OBCore/exchange/ExchangeText.h"

#include <gtest/gtest.h>

#include <climits>

#include "tests/unit/WebVellant/OBCore/exchange/GuardedBlock.h"

namespace {

using namespace obcore;
using obtest::GuardedBlock;
using obtest::Raw;

class ExchangeText : public testing::Test {
protected:
    GuardedBlock block;
};

TEST_F(ExchangeText, CountsTheRoomInWideCharactersUpToTheEnd) {
    EXPECT_EQ(RoomFrom(76), 32730u);
    EXPECT_EQ(RoomFrom(65532), 2u);
    EXPECT_EQ(RoomFrom(65534), 1u);
    EXPECT_EQ(RoomFrom(65536), 0u);
}

TEST_F(ExchangeText, HasNoRoomWhereNoTextCanBe) {
    for (const std::int32_t offset :
         {0, 2, 74, 75, 77, 65535, 65537, 65538, INT_MAX, -1, -76, INT_MIN})
        EXPECT_EQ(RoomFrom(offset), 0u) << offset;
}

TEST_F(ExchangeText, ReadsAbsentTextsAsEmpty) {
    block.PutUnits(76, L"text");
    for (const std::int32_t offset : {0, 74, 77, 65536, INT_MAX, -1, INT_MIN}) {
        EXPECT_EQ(ReadText(*block, offset), L"") << offset;
        EXPECT_TRUE(TextAt(*block, offset).empty()) << offset;
        EXPECT_TRUE(ListAt(*block, offset).empty()) << offset;
        EXPECT_TRUE(AreaFrom(*block, offset).empty()) << offset;
        EXPECT_EQ(PlaceAt(*block, offset), nullptr) << offset;
        EXPECT_EQ(EndOfText(*block, offset), 0) << offset;
        EXPECT_EQ(EndOfList(*block, offset), 0) << offset;
    }
}

TEST_F(ExchangeText, ReadsATextUpToItsNul) {
    block.PutUnits(100, Raw(L"a\x00e4\xd83d\xde00\0behind"));
    EXPECT_EQ(ReadText(*block, 100), L"a\x00e4\xd83d\xde00");
    EXPECT_EQ(EndOfText(*block, 100), 110);
}

TEST_F(ExchangeText, CutsATextThatRunsToTheEndOfTheBlock) {
    block.PutUnits(65530, L"xyz");
    EXPECT_EQ(ReadText(*block, 65530), L"xyz");
    EXPECT_EQ(EndOfText(*block, 65530), 65536);
}

TEST_F(ExchangeText, ReadsAListThroughItsClosingEmptyString) {
    block.PutUnits(76, Raw(L"one\0two\0\0behind"));
    EXPECT_EQ(ListAt(*block, 76), Raw(L"one\0two\0\0"));
    EXPECT_EQ(EndOfList(*block, 76), 76 + 18);
}

TEST_F(ExchangeText, SkipsAnEmptyFirstStringOfAList) {
    block.PutUnits(76, Raw(L"\0\0behind"));
    EXPECT_EQ(ListAt(*block, 76), Raw(L"\0\0"));
    EXPECT_EQ(EndOfList(*block, 76), 80);
    block.PutUnits(76, Raw(L"\0second\0\0"));
    EXPECT_EQ(ListAt(*block, 76), Raw(L"\0second\0\0"));
}

TEST_F(ExchangeText, CutsAListThatRunsToTheEndOfTheBlock) {
    block.PutUnits(65526, Raw(L"ab\0cd"));
    EXPECT_EQ(ListAt(*block, 65526), Raw(L"ab\0cd"));
    EXPECT_EQ(EndOfList(*block, 65526), 65536);
    block.PutUnits(65534, Raw(L"\0"));
    EXPECT_EQ(ListAt(*block, 65534), Raw(L"\0"));
}

TEST_F(ExchangeText, WritesATextWithItsNulAndReturnsTheOffsetPastIt) {
    GuardedBlock filled(0xCC);
    EXPECT_EQ(PutText(*filled, 200, L"abc"), 208);
    EXPECT_EQ(filled.Units(198, 6), Raw(L"\xcccc"
                                        L"abc\0\xcccc"));
    EXPECT_EQ(PutText(*filled, 300, L""), 302);
    EXPECT_EQ(filled.Units(300, 2), Raw(L"\0\xcccc"));
}

TEST_F(ExchangeText, CutsWhatItWritesToTheRoomLeft) {
    EXPECT_EQ(PutText(*block, 65530, L"abc"), 65536);
    EXPECT_EQ(block.Units(65530, 3), Raw(L"ab\0"));
    EXPECT_EQ(PutText(*block, 65534, L"z"), 65536);
    EXPECT_EQ(block.U16(65534), 0);
}

TEST_F(ExchangeText, WritesNothingWithoutRoom) {
    const auto before = block.Copy();
    for (const std::int32_t offset : {0, 75, 77, 65536, -2}) {
        EXPECT_EQ(PutText(*block, offset, L"abc"), offset);
        EXPECT_EQ(PutNuls(*block, offset, 2), offset);
    }
    EXPECT_EQ(block.Copy(), before);
}

TEST_F(ExchangeText, WritesAsManyNulsAsThereIsRoomFor) {
    GuardedBlock filled(0xCC);
    EXPECT_EQ(PutNuls(*filled, 65530, 2), 65534);
    EXPECT_EQ(filled.Units(65530, 3), Raw(L"\0\0\xcccc"));
    EXPECT_EQ(PutNuls(*filled, 65534, 2), 65536);
    EXPECT_EQ(filled.U16(65534), 0);
}

} // namespace
