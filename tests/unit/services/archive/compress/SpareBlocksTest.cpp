#include "services/archive/compress/SpareBlocks.h"

#include <gtest/gtest.h>

#include "services/archive/compress/BlockCompressor.h"

namespace {

using obarchive::BlockCompressor;
using obarchive::ByteBuffer;
using obarchive::SpareBlocks;

constexpr std::size_t kMegabyte = 1024 * 1024;

TEST(SpareBlocksTest, ABufferHasRoomForEachSize) {
    SpareBlocks blocks(8 * kMegabyte);
    for (std::size_t size = 0; size < 3 * kMegabyte; size += size / 97 + 1) {
        const ByteBuffer buffer = blocks.Take(size);
        ASSERT_GE(buffer.Capacity(), size);
        EXPECT_EQ(buffer.Size(), 0U);
    }
    for (const std::size_t size : {64 * 1024UL, 65 * 1024UL, 130 * 1024UL, 1040UL * 1024}) {
        EXPECT_GE(blocks.Take(size).Capacity(), size);
        EXPECT_GE(blocks.Take(size + 1).Capacity(), size + 1);
    }
}

TEST(SpareBlocksTest, ALargeBufferIsUsedAgainForFilesOfAboutItsSize) {
    SpareBlocks blocks(8 * kMegabyte);
    ByteBuffer first = blocks.Take(kMegabyte);
    const auto* const memory = first.Data();
    ASSERT_TRUE(first.Resize(kMegabyte));
    blocks.Give(std::move(first));
    ByteBuffer second = blocks.Take(700 * 1024);
    EXPECT_EQ(second.Data(), memory);
    EXPECT_EQ(second.Size(), 0U);
    EXPECT_NE(blocks.Take(700 * 1024).Data(), memory) << "it isn't spare any more";
}

// A block of a file and what it becomes when it doesn't shrink have buffers of one size.
TEST(SpareBlocksTest, TheCompressorsRoomForABlockIsABlock) {
    SpareBlocks blocks(8 * kMegabyte);
    EXPECT_EQ(blocks.Take(BlockCompressor::Bound(kMegabyte)).Capacity(),
              blocks.Take(kMegabyte).Capacity());
}

TEST(SpareBlocksTest, KeepsNoMoreThanItsLimit) {
    SpareBlocks blocks(3 * kMegabyte);
    std::vector<ByteBuffer> buffers;
    for (int index = 0; index < 5; ++index) buffers.push_back(blocks.Take(kMegabyte));
    std::vector<const std::uint8_t*> kept;
    for (ByteBuffer& buffer : buffers) {
        kept.push_back(buffer.Data());
        blocks.Give(std::move(buffer));
    }
    kept.resize(2); // two with what they have beyond a megabyte; a third would pass the limit
    ByteBuffer one = blocks.Take(kMegabyte);
    ByteBuffer other = blocks.Take(kMegabyte);
    EXPECT_TRUE(one.Data() == kept[0] || one.Data() == kept[1]);
    EXPECT_TRUE(other.Data() == kept[0] || other.Data() == kept[1]);
    EXPECT_NE(one.Data(), other.Data());
}

TEST(SpareBlocksTest, TakesBackEmptyAndSmallBuffersToo) {
    SpareBlocks blocks(kMegabyte);
    blocks.Give({});
    blocks.Give(blocks.Take(100));
    EXPECT_GE(blocks.Take(100).Capacity(), 100U);
}

} // namespace
