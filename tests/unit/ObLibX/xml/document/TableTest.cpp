#include <gtest/gtest.h>

#include "ObLibX/src/xml/document/DocumentState.h"
#include "ObLibX/src/xml/document/ElementRecordTable.h"

namespace ObLibX {
namespace {

constexpr std::uint32_t kFull = ElementRecordTable::kSegmentRecords;

void Number(ElementRecordTable& table, std::uint32_t from, std::uint32_t to) {
    for (std::uint32_t i = from; i < to; ++i) {
        table[i].start = i;
        table[i].prev = ~i;
    }
}

std::uint32_t CountWrong(const ElementRecordTable& table, std::uint32_t to) {
    std::uint32_t wrong = 0;
    for (std::uint32_t i = 0; i < to; ++i) {
        wrong += table[i].start != i || table[i].prev != ~i;
    }
    return wrong;
}

TEST(TableGrowth, IsExactInTheFirstSegment) {
    ElementRecordTable table;
    EXPECT_EQ(table.Size(), 0u);
    EXPECT_EQ(table.SegmentCapacity(), 0u);
    table.Grow(8);
    EXPECT_EQ(table.Size(), 8u);
    EXPECT_EQ(table.SegmentCapacity(), 4u);
    Number(table, 0, 8);
    table.Grow(100);
    EXPECT_EQ(table.Size(), 100u);
    EXPECT_EQ(CountWrong(table, 8), 0u);
}

TEST(TableGrowth, NeverShrinks) {
    ElementRecordTable table;
    table.Grow(100);
    Number(table, 0, 100);
    table.Grow(50);
    table.Grow(100);
    table.Grow(0);
    EXPECT_EQ(table.Size(), 100u);
    EXPECT_EQ(CountWrong(table, 100), 0u);
}

TEST(TableGrowth, IsCutAtTheEndOfTheNextSegment) {
    ElementRecordTable table;
    table.Grow(10 * kFull);
    EXPECT_EQ(table.Size(), 2 * kFull);
    EXPECT_EQ(table.SegmentCapacity(), 6u);
    table.Grow(10 * kFull);
    EXPECT_EQ(table.Size(), 3 * kFull);
    EXPECT_EQ(table.SegmentCapacity(), 6u);
}

TEST(TableGrowth, MayEndExactlyAtASegmentsEnd) {
    ElementRecordTable table;
    table.Grow(kFull);
    EXPECT_EQ(table.Size(), kFull);
    Number(table, 0, kFull);
    ElementRecord* first = &table[0];
    table.Grow(kFull + 1);
    EXPECT_EQ(table.Size(), kFull + 1);
    EXPECT_EQ(&table[0], first) << "a full segment moved";
    Number(table, kFull, kFull + 1);
    EXPECT_EQ(CountWrong(table, kFull + 1), 0u);
}

TEST(TableGrowth, FillsTheShortSegmentBeforeItBeginsTheNext) {
    ElementRecordTable table;
    table.Grow(100);
    Number(table, 0, 100);
    table.Grow(kFull + 5);
    EXPECT_EQ(table.Size(), kFull + 5);
    EXPECT_EQ(CountWrong(table, 100), 0u);
    Number(table, 100, kFull + 5);
    EXPECT_EQ(CountWrong(table, kFull + 5), 0u);
}

TEST(TableGrowth, ReplacesThePointersWhenTheyRunOut) {
    ElementRecordTable table;
    std::uint32_t numbered = 0;
    std::vector<std::uint32_t> capacities;
    for (int i = 0; i < 9; ++i) {
        table.Grow(table.Size() + kFull);
        Number(table, numbered, table.Size());
        numbered = table.Size();
        if (capacities.empty() || capacities.back() != table.SegmentCapacity()) {
            capacities.push_back(table.SegmentCapacity());
        }
    }
    // At segments 0, 4 (4 * 2 + 4 = 12).
    EXPECT_EQ(capacities, (std::vector<std::uint32_t>{4, 12}));
    EXPECT_EQ(CountWrong(table, 9 * kFull), 0u);
}

TEST(TableGrowth, ClearReleasesAll) {
    ElementRecordTable table;
    table.Grow(2 * kFull);
    table.Clear();
    EXPECT_EQ(table.Size(), 0u);
    EXPECT_EQ(table.SegmentCapacity(), 0u);
    table.Grow(3);
    EXPECT_EQ(table.Size(), 3u);
}

// ---- Taking records

class TableTaking : public testing::Test {
protected:
    void SetUp() override { document_.records = std::make_unique<ElementRecordTable>(); }
    DocumentState document_;
};

TEST_F(TableTaking, GrowsByHalfWhenTheTableIsFull) {
    document_.records->Grow(8);
    for (std::int32_t i = 1; i < 8; ++i) {
        EXPECT_EQ(TakeRecord(document_), i);
        EXPECT_EQ(document_.records->Size(), 8u);
    }
    EXPECT_EQ(TakeRecord(document_), 8);
    EXPECT_EQ(document_.records->Size(), 12u);
    EXPECT_EQ(document_.nextFreePos, 9);
}

TEST_F(TableTaking, TakesAFreedRecordFirst) {
    document_.records->Grow(8);
    document_.nextFreePos = 6;
    document_.deletedPos = 3;
    (*document_.records)[3] = {9, 9, 9, kRecordFree, 9, 9, 5, 9};
    (*document_.records)[5] = {9, 9, 9, kRecordFree, 9, 9, 0, 9};
    EXPECT_EQ(TakeRecord(document_), 3);
    EXPECT_EQ(document_.deletedPos, 5);
    EXPECT_EQ((*document_.records)[3].flagsAndLevel, 0u);
    EXPECT_EQ((*document_.records)[3].next, 0u);
    EXPECT_EQ(TakeRecord(document_), 5);
    EXPECT_EQ(document_.deletedPos, 0);
    EXPECT_EQ(TakeRecord(document_), 6);
    EXPECT_EQ(document_.records->Size(), 8u);
}

TEST_F(TableTaking, FillsSeveralSegments) {
    document_.records->Grow(8);
    for (std::int32_t i = 1; i < 200000; ++i) {
        ASSERT_EQ(TakeRecord(document_), i);
        (*document_.records)[i].start = i;
    }
    for (std::uint32_t i = 1; i < 200000; ++i) {
        ASSERT_EQ((*document_.records)[i].start, i);
    }
}

// ---- The record

TEST(TableRecord, StoresTagLengthsThatFitAndTheHighestValueForOthers) {
    ElementRecord record{};
    record.SetTagLengths(4194303, 1023);
    EXPECT_EQ(record.tagLengths, 0xFFFFFFFFu);
    record.SetTagLengths(5, 3);
    EXPECT_EQ(record.tagLengths, 3u << 22 | 5u);
    record.SetTagLengths(4194304, 1024);
    EXPECT_EQ(record.StartTagLength(), 4194303u);
    EXPECT_EQ(record.EndTagLength(), 1023u);
}

TEST(TableRecord, KeepsADepthBeyondItsFieldOutOfTheFlags) {
    ElementRecord record{};
    record.flagsAndLevel = kRecordFirstSibling;
    record.SetLevel(65535);
    EXPECT_EQ(record.flagsAndLevel, 0x8FFFFu);
    record.SetLevel(65536);
    EXPECT_EQ(record.flagsAndLevel, 0x8FFFFu);
    record.SetLevel(2);
    EXPECT_EQ(record.flagsAndLevel, 0x80002u);
}

TEST(TablePosition, IsEmptyOrOnAnElement) {
    DocumentState document;
    document.nodeOffset = 5;
    document.nodeLength = 7;
    document.nodeType = kNodeComment;
    SetPosition(document, 1, 2, 3);
    EXPECT_EQ(document.parentPos, 1);
    EXPECT_EQ(document.currentPos, 2);
    EXPECT_EQ(document.childPos, 3);
    EXPECT_EQ(document.nodeType, 1);
    EXPECT_EQ(document.nodeOffset, 0);
    EXPECT_EQ(document.nodeLength, 0);
    SetPosition(document, 1, 0, 0);
    EXPECT_EQ(document.nodeType, 0);
}

} // namespace
} // namespace ObLibX
